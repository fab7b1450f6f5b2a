// SPDX-License-Identifier: Apache-2.0
// The names of a design's objects: making them, and finding objects by them.
#include "host/design/design.h"

#include <algorithm>
#include <charconv>

namespace wf {

namespace {

// Lists up to this long are searched; an index would cost more than it saves.
constexpr size_t short_list = 8;

// The position of a name in a list, through the list's index when it is long. The index takes in
// what was added since the last look-up.
template <typename List, typename Index, typename NameOf>
uint32_t find_in_list(const List &list, Index &&index_of_list, std::string_view name,
                      NameOf name_of) {
    const auto size = static_cast<uint32_t>(list.size());
    if (size <= short_list) {
        uint32_t position = 0;
        while (position < size && name_of(position) != name) {
            ++position;
        }
        return position < size ? position : NameIndex::none;
    }
    NameIndex &index = index_of_list();
    while (index.size() < size) {
        index.add_next(name_of);
    }
    return index.find(name, name_of);
}

NameIndex &made(std::unique_ptr<NameIndex> &index) {
    if (index == nullptr) {
        index = std::make_unique<NameIndex>();
    }
    return *index;
}

void append_number(int64_t number, std::string &text) {
    char digits[24];
    text.append(digits, std::to_chars(digits, digits + sizeof digits, number).ptr);
}

// The position of the part that "(3)" or ".field" selects, or -1.
int64_t position_of_part(const Type &type, std::string_view part) {
    if (type.kind == TypeKind::record && part.front() == '.') {
        return type.field_position(part.substr(1));
    }
    int64_t index = 0;
    const char *last = part.data() + part.size() - 1;
    if (type.kind != TypeKind::array || part.front() != '(' || part.back() != ')') {
        return -1;
    }
    const auto [stop, error] = std::from_chars(part.data() + 1, last, index);
    return error == std::errc() && stop == last ? type.position_of(index) : -1;
}

// The position of the next '/' of a path at or after `from`; past the first one only when names may
// hold it.
size_t next_split(std::string_view path, size_t from, bool odd_names) {
    return from == 0 || odd_names ? path.find('/', from) : std::string_view::npos;
}

// Where no name of a region's children has a '/', there is one way down: takes it as far as that
// holds. Paths may be deeper than the stack allows. False: there is no region of that name.
template <typename IsOdd, typename FindChild>
bool descend(Region *&from, std::string_view &path, IsOdd is_odd, FindChild find_child) {
    for (size_t split = path.find('/'); split != std::string_view::npos && !is_odd(from);
         split = path.find('/')) {
        from = find_child(from, path.substr(0, split));
        if (from == nullptr) {
            return false;
        }
        path.remove_prefix(split + 1);
    }
    return true;
}

}  // namespace

const std::string &Design::full_name(const Region *region) {
    if (region == named_) {
        return full_name_;
    }
    if (named_ == nullptr || region->parent != named_) {
        std::vector<const Region *> above;
        for (const Region *level = region->parent; level != nullptr; level = level->parent) {
            above.push_back(level);
        }
        full_name_.clear();
        for (auto level = above.rbegin(); level != above.rend(); ++level) {
            full_name_.append(1, '/').append((*level)->name);
        }
    }
    full_name_.append(1, '/').append(region->name);
    named_ = region;
    return full_name_;
}

std::string Design::full_name(const Signal *signal) {
    std::string name = full_name(region_of(signal));
    name += '/';
    append_indirect_name(signal, name);
    return name;
}

void Design::append_indirect_name(const Signal *signal, std::string &text) const {
    if (signal->is_declared()) {
        text += name_of(signal);
        return;
    }
    append_indirect_name(signal->parent(), text);
    const Type &whole = *signal->parent()->type;
    if (whole.kind == TypeKind::record) {
        text.append(1, '.').append(whole.fields[signal->index].name);
        return;
    }
    text += '(';
    append_number(whole.index_of(signal->index), text);
    text += ')';
}

Region *Design::find_child_by_path(Region *region, std::string_view name) {
    Region *child = find_child(region, name);
    if (child != nullptr || name.find('(') == std::string_view::npos) {
        return child;
    }
    std::string bracketed(name);
    std::replace(bracketed.begin(), bracketed.end(), '(', '[');
    std::replace(bracketed.begin(), bracketed.end(), ')', ']');
    return find_child(region, bracketed);
}

Region *Design::find_child(Region *region, std::string_view name) {
    const auto &list = region == nullptr ? roots_ : region->children;
    const uint32_t position = find_in_list(
        list,
        [&]() -> NameIndex & {
            return region == nullptr ? root_index_ : made(region->child_index);
        },
        name, [&list](uint32_t i) { return std::string_view(list[i]->name); });
    return position == NameIndex::none ? nullptr : list[position];
}

Signal *Design::find_local(Region *region, std::string_view name) {
    const uint32_t position = find_in_list(
        region->signals, [&]() -> NameIndex & { return made(region->signal_index); }, name,
        [this, region](uint32_t i) { return listed_name(region, i); });
    return position == NameIndex::none ? nullptr : region->signals[position];
}

std::string_view Design::listed_name(const Region *region, uint32_t position) const {
    const auto &renamed = region->alias_names;
    const auto found =
        std::lower_bound(renamed.begin(), renamed.end(), position,
                         [](const auto &entry, uint32_t wanted) { return entry.first < wanted; });
    const bool has_own = found != renamed.end() && found->first == position;
    return has_own ? found->second : name_of(region->signals[position]);
}

Region *Design::find_region(std::string_view path) {
    if (path == "/") {
        return top();
    }
    if (path.starts_with('/')) {
        return walk_regions(nullptr, path.substr(1));
    }
    std::string_view rest = path;
    Region *start = start_of(rest);
    Region *found = rest.empty() && !path.empty() ? start : walk_regions(start, rest);
    return found != nullptr ? found : walk_regions(nullptr, path);
}

Region *Design::walk_regions(Region *from, std::string_view path) {
    const auto is_odd = [this](const Region *region) {
        return region == nullptr ? roots_have_odd_names_ : region->has_odd_names;
    };
    const auto child_of = [this](Region *region, std::string_view name) {
        return find_child_by_path(region, name);
    };
    if (!descend(from, path, is_odd, child_of)) {
        return nullptr;
    }
    const bool odd = is_odd(from);
    for (size_t split = next_split(path, 0, odd); split != std::string_view::npos;
         split = next_split(path, split + 1, odd)) {
        Region *child = find_child_by_path(from, path.substr(0, split));
        Region *found = child == nullptr ? nullptr : walk_regions(child, path.substr(split + 1));
        if (found != nullptr) {
            return found;
        }
    }
    return find_child_by_path(from, path);
}

Signal *Design::find_signal(std::string_view path) {
    return find_path(path, false);
}

Signal *Design::find_object(std::string_view path) {
    return find_path(path, true);
}

Signal *Design::find_path(std::string_view path, bool exact) {
    if (path.starts_with('/')) {
        return walk_signal(nullptr, path.substr(1), exact);
    }
    std::string_view rest = path;
    Region *start = start_of(rest);
    Signal *found = walk_signal(start, rest, exact);
    return found != nullptr ? found : walk_signal(nullptr, path, exact);
}

Signal *Design::walk_signal(Region *from, std::string_view path, bool exact) {
    const auto is_odd = [this](const Region *region) {
        return region == nullptr ? roots_have_odd_names_ : region->has_odd_names;
    };
    const auto child_of = [this](Region *region, std::string_view name) {
        return find_child_by_path(region, name);
    };
    if (!descend(from, path, is_odd, child_of)) {
        return nullptr;
    }
    const bool odd = is_odd(from);
    for (size_t split = next_split(path, 0, odd); split != std::string_view::npos;
         split = next_split(path, split + 1, odd)) {
        Region *child = find_child_by_path(from, path.substr(0, split));
        Signal *found =
            child == nullptr ? nullptr : walk_signal(child, path.substr(split + 1), exact);
        if (found != nullptr) {
            return found;
        }
    }
    return from == nullptr ? nullptr : find_in_region(from, path, exact);
}

Signal *Design::find_in_region(Region *region, std::string_view name, bool exact) {
    if (Signal *signal = find_local(region, name)) {
        return signal;
    }
    // The longest name first: a net may be called "bus(3)" itself.
    for (size_t end = name.find_last_of("(."); end != std::string_view::npos && end != 0;
         end = name.find_last_of("(.", end - 1)) {
        Signal *signal = find_local(region, name.substr(0, end));
        Signal *part = signal == nullptr ? nullptr : find_part(signal, name.substr(end), exact);
        if (part != nullptr) {
            return part;
        }
    }
    return nullptr;
}

Signal *Design::find_part(Signal *signal, std::string_view suffix, bool exact) {
    Signal *selected = select(signal, suffix);
    const size_t index = suffix.find('(');
    const bool is_leaf = selected != nullptr && !selected->type->is_composite();
    if (exact || is_leaf || index == std::string_view::npos) {
        return selected;
    }
    return select(signal, suffix.substr(0, index));
}

Signal *Design::select(Signal *signal, std::string_view suffix) {
    while (signal != nullptr && !suffix.empty()) {
        const size_t end = std::min(suffix.find_first_of("(.", 1), suffix.size());
        const int64_t position = position_of_part(*signal->type, suffix.substr(0, end));
        signal = position < 0 ? nullptr : elements(signal) + position;
        suffix.remove_prefix(end);
    }
    return signal;
}

}  // namespace wf
