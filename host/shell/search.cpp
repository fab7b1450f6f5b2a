// SPDX-License-Identifier: Apache-2.0
// One walk serves both kinds of search: it goes down the levels of the pattern and hands every
// region in which the last level applies to a collector.
#include "host/shell/search.h"

#include <tcl.h>

#include <algorithm>

namespace wf {
namespace {

using Levels = std::vector<std::string>;
using Paths = std::vector<std::string>;

bool matches(std::string_view name, const std::string &pattern) {
    return name == pattern || Tcl_StringMatch(std::string(name).c_str(), pattern.c_str()) != 0;
}

Levels split_levels(std::string_view pattern) {
    Levels levels;
    while (!pattern.empty()) {
        const size_t slash = std::min(pattern.find('/'), pattern.size());
        if (slash > 0) {
            levels.emplace_back(pattern.substr(0, slash));
        }
        pattern.remove_prefix(std::min(slash + 1, pattern.size()));
    }
    return levels;
}

const std::vector<Region *> &children_of(const Design &design, const Region *region) {
    return region == nullptr ? design.roots() : region->children;
}

// Calls collect(region) for every region whose contents the last level is to be matched with; a
// null region stands for the place above the roots.
template <typename Collect>
void walk(const Design &design, Region *start, const Levels &levels, bool recursive,
          const Collect &collect) {
    struct Place {
        Region *region;
        size_t level;
    };
    // What is left to visit, the next last: regions may nest deeper than the stack allows.
    std::vector<Place> left = {{start, 0}};
    while (!left.empty()) {
        const auto [region, level] = left.back();
        left.pop_back();
        const bool last = level + 1 == levels.size();
        if (last) {
            collect(region);
        }
        if (last && !recursive) {
            continue;
        }
        const std::vector<Region *> &children = children_of(design, region);
        for (auto child = children.rbegin(); child != children.rend(); ++child) {
            if (last || matches((*child)->name, levels[level])) {
                left.push_back({*child, last ? level : level + 1});
            }
        }
    }
}

template <typename Collect>
Paths find(Design &design, const Search &search, const Collect &collect) {
    std::string_view pattern = search.pattern;
    const bool absolute = pattern.starts_with('/');
    Region *start = absolute ? nullptr : design.start_of(pattern);
    const Levels levels = split_levels(pattern);
    Paths found;
    if (levels.empty()) {
        return found;
    }
    const auto collect_here = [&](Region *region) { collect(region, levels.back(), found); };
    walk(design, start, levels, search.recursive, collect_here);
    if (found.empty() && !absolute && pattern == search.pattern) {
        walk(design, nullptr, levels, search.recursive, collect_here);
    }
    return found;
}

std::string path_below(Design &design, const Region *region, std::string_view name) {
    std::string path = region == nullptr ? "" : design.full_name(region);
    path += '/';
    path += name;
    return path;
}

}  // namespace

Paths find_regions(Design &design, const Search &search) {
    return find(design, search, [&](Region *region, const std::string &pattern, Paths &found) {
        for (const Region *child : children_of(design, region)) {
            if (matches(child->name, pattern)) {
                found.push_back(path_below(design, region, child->name));
            }
        }
    });
}

Paths find_signals(Design &design, const Search &search) {
    const auto wanted = [&](const Signal *signal) {
        return search.modes.empty() || std::find(search.modes.begin(), search.modes.end(),
                                                 design.mode_of(signal)) != search.modes.end();
    };
    return find(design, search, [&](Region *region, const std::string &pattern, Paths &found) {
        if (region == nullptr) {
            return;
        }
        for (const Signal *signal : region->signals) {
            const std::string_view name = design.name_of(signal);
            if (wanted(signal) && matches(name, pattern)) {
                found.push_back(path_below(design, region, name));
            }
        }
    });
}

Paths complete_path(Design &design, std::string_view typed) {
    const size_t slash = typed.rfind('/');
    const bool absolute = typed.starts_with('/');
    const std::string_view above = slash == std::string_view::npos ? "" : typed.substr(0, slash);
    const std::string stem(typed.substr(0, slash == std::string_view::npos ? 0 : slash + 1));
    const std::string_view begun = typed.substr(stem.size());
    Paths paths;
    const auto add_children = [&](const std::vector<Region *> &regions) {
        for (const Region *region : regions) {
            if (std::string_view(region->name).starts_with(begun)) {
                paths.push_back(stem + region->name);
            }
        }
    };
    const auto add_signals = [&](const Region &of) {
        for (const Signal *signal : of.signals) {
            const std::string_view name = design.name_of(signal);
            if (name.starts_with(begun)) {
                paths.push_back(stem + std::string(name));
            }
        }
    };
    const bool at_roots = absolute && above.empty();
    const Region *region = above.empty() ? design.environment() : design.find_region(above);
    if (at_roots) {
        add_children(design.roots());
    } else if (region != nullptr) {
        add_children(region->children);
        add_signals(*region);
    }
    if (paths.size() == 1 && paths.front() == typed && design.find_region(typed) != nullptr) {
        paths.front() += '/';
    }
    return paths;
}

}  // namespace wf
