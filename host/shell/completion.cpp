// SPDX-License-Identifier: Apache-2.0
// One table says what stands in the words of each command; everything else is a path in the design.
#include "host/shell/completion.h"

#include <algorithm>
#include <filesystem>

#include "host/fli/session.h"
#include "host/shell/radix.h"
#include "host/shell/search.h"
#include "host/shell/shell.h"
#include "host/shell/words.h"

namespace wf {
namespace {

namespace fs = std::filesystem;

using Words = std::vector<std::string>;

constexpr size_t longest_list = 200;
constexpr std::string_view blanks = " \t\n";

// --- what a command's words are ---

enum class Kind { path, file, nothing };

struct Usage {
    std::string_view command;
    const char *const *first;    // what the first word can be; null: as the rest
    const char *const *options;  // null: none
    Kind first_kind;             // where `first` is null
    Kind rest;
};

constexpr const char *quit_options[] = {"-code", "-force", nullptr};
constexpr const char *examine_options[] = {"-binary",   "-decimal",  "-hexadecimal",
                                           "-octal",    "-radix",    "-signed",
                                           "-symbolic", "-unsigned", nullptr};
constexpr const char *policies[] = {"off", "on", "rtl_on", nullptr};

// The plug-in's commands stand here as far as not all of their words are paths.
constexpr Usage usages[] = {
    {"cd", nullptr, nullptr, Kind::file, Kind::nothing},
    {"do", nullptr, nullptr, Kind::file, Kind::file},
    {"echo", nullptr, nullptr, Kind::nothing, Kind::nothing},
    {"examine", nullptr, examine_options, Kind::path, Kind::path},
    {"find", words::find_kinds, words::find_options, Kind::nothing, Kind::path},
    {"open", nullptr, nullptr, Kind::file, Kind::nothing},
    {"quit", nullptr, quit_options, Kind::nothing, Kind::nothing},
    {"radix", radix_names, nullptr, Kind::nothing, Kind::nothing},
    {"read_rtl_saif", nullptr, nullptr, Kind::file, Kind::path},
    {"restart", nullptr, words::restart_options, Kind::nothing, Kind::nothing},
    {"run", nullptr, words::run_options, Kind::nothing, Kind::nothing},
    {"set_net_monitoring_policy", policies, nullptr, Kind::nothing, Kind::path},
    {"source", nullptr, nullptr, Kind::file, Kind::file},
    {"toggle_report", nullptr, nullptr, Kind::file, Kind::path},
    {"transcript", words::transcript_actions, nullptr, Kind::nothing, Kind::file},
};
constexpr Usage any_command = {"", nullptr, nullptr, Kind::path, Kind::path};

const Usage &usage_of(std::string_view command) {
    const auto *found =
        std::find_if(std::begin(usages), std::end(usages),
                     [command](const Usage &usage) { return usage.command == command; });
    return found != std::end(usages) ? *found : any_command;
}

// The words of the innermost command that has begun and not ended in this text.
Words words_of_command(std::string_view text) {
    std::vector<size_t> starts{0};
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '[' || text[i] == '{') {
            starts.push_back(i + 1);
        } else if ((text[i] == ']' || text[i] == '}') && starts.size() > 1) {
            starts.pop_back();
        } else if (text[i] == ';' || text[i] == '\n') {
            starts.back() = i + 1;
        }
    }
    Words words;
    for (size_t at = text.find_first_not_of(blanks, starts.back()); at != std::string_view::npos;) {
        const size_t end = std::min(text.find_first_of(blanks, at), text.size());
        words.emplace_back(text.substr(at, end - at));
        at = text.find_first_not_of(blanks, end);
    }
    return words;
}

// --- what a word can become ---

Completion from_list(const char *const *list, std::string_view word) {
    Completion completion;
    for (; list != nullptr && *list != nullptr; ++list) {
        if (std::string_view(*list).starts_with(word)) {
            completion.words.emplace_back(*list);
        }
    }
    return completion;
}

// A bracket is no end of words, since paths hold them ({/tb/slot[2]/full}), but it may begin a
// command.
Completion from_commands(const Shell &shell, std::string_view word) {
    const std::string bracket = word.starts_with('[') ? "[" : "";
    Completion completion;
    for (const std::string &name : shell.command_names(word.substr(bracket.size()))) {
        completion.words.push_back(bracket + name);
    }
    return completion;
}

size_t size_of_folder(std::string_view word) {
    const size_t slash = word.rfind('/');
    return slash == std::string_view::npos ? 0 : slash + 1;
}

Completion from_paths(const Shell &shell, std::string_view word) {
    Design &design = shell.simulation().session.design;
    Completion completion{.words = complete_path(design, word), .hidden = size_of_folder(word)};
    completion.ends_word = completion.words.size() == 1 &&
                           !completion.words.front().ends_with('/') &&
                           design.find_region(completion.words.front()) == nullptr;
    return completion;
}

// Files that begin with a dot are offered to who types the dot.
Completion from_files(std::string_view word) {
    const size_t hidden = size_of_folder(word);
    const std::string folder(word.substr(0, hidden));
    const std::string_view begun = word.substr(hidden);
    Completion completion{.words = {}, .hidden = hidden};
    std::error_code error;
    fs::directory_iterator entry(folder.empty() ? "." : folder, error);
    for (; !error && entry != fs::directory_iterator(); entry.increment(error)) {
        const std::string name = entry->path().filename();
        if (name.starts_with(begun) && (name.front() != '.' || begun.starts_with('.'))) {
            std::error_code ignored;
            completion.words.push_back(folder + name + (entry->is_directory(ignored) ? "/" : ""));
        }
    }
    completion.ends_word = completion.words.size() == 1 && completion.words[0].back() != '/';
    return completion;
}

Completion from_kind(const Shell &shell, Kind kind, std::string_view word) {
    switch (kind) {
        case Kind::path:
            return from_paths(shell, word);
        case Kind::file:
            return from_files(word);
        case Kind::nothing:
            break;
    }
    return {};
}

Completion from_usage(const Shell &shell, const Words &before, std::string_view word) {
    const Usage &usage = usage_of(before.front());
    if (before.back() == "-radix") {
        return from_list(radix_names, word);
    }
    if (word.starts_with('-')) {
        return from_list(usage.options, word);
    }
    if (before.size() > 1) {
        return from_kind(shell, usage.rest, word);
    }
    return usage.first != nullptr ? from_list(usage.first, word)
                                  : from_kind(shell, usage.first_kind, word);
}

Completion unsorted(const Shell &shell, std::string_view before, std::string_view word) {
    const Words words = words_of_command(before);
    if (word.starts_with('[')) {
        return from_commands(shell, word);
    }
    if (!words.empty()) {
        return from_usage(shell, words, word);
    }
    // After a brace stands a script or a path.
    Completion completion = from_commands(shell, word);
    return completion.words.empty() ? from_paths(shell, word) : completion;
}

}  // namespace

std::string Completion::common() const {
    if (words.empty()) {
        return {};
    }
    // Of a sorted list, what the first and the last have in common.
    const std::string &first = words.front();
    const std::string &last = words.back();
    return {first.begin(),
            std::mismatch(first.begin(), first.end(), last.begin(), last.end()).first};
}

Completion complete(const Shell &shell, std::string_view before, std::string_view word) {
    Completion completion = unsorted(shell, before, word);
    std::sort(completion.words.begin(), completion.words.end());
    return completion;
}

std::string in_columns(const Completion &completion, size_t width) {
    const Words &words = completion.words;
    const size_t shown = std::min(words.size(), longest_list);
    size_t column = 1;
    for (size_t i = 0; i < shown; ++i) {
        column = std::max(column, words[i].size() - completion.hidden + 2);
    }
    const size_t columns = std::max<size_t>(1, (width + 1) / column);
    const size_t lines = (shown + columns - 1) / columns;
    std::string text;
    for (size_t line = 0; line < lines; ++line) {
        for (size_t i = line; i < shown; i += lines) {
            const std::string_view name = std::string_view(words[i]).substr(completion.hidden);
            text += name;
            text.append(i + lines < shown ? column - name.size() : 0, ' ');
        }
        text += '\n';
    }
    if (shown < words.size()) {
        text += "... and " + std::to_string(words.size() - shown) + " more\n";
    }
    return text;
}

}  // namespace wf
