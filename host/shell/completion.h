// SPDX-License-Identifier: Apache-2.0
// What a half-typed word on a command line can become. Text in, text out: it draws nothing.
#ifndef WATTFORGE_HOST_SHELL_COMPLETION_H
#define WATTFORGE_HOST_SHELL_COMPLETION_H

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace wf {

class Shell;

struct Completion {
    // Everything that the word can become, sorted, each one whole.
    std::vector<std::string> words;
    // So many first characters of each are a path that need not be shown in a list.
    size_t hidden = 0;
    // Whether a word that is the only one is finished: a region or a folder may go on.
    bool ends_word = true;

    // What all words have in common: the typed word itself or more. Empty without any.
    std::string common() const;
};

// `before` is the line up to the word: it decides whether commands, their own words and options,
// files, or paths in the design are offered.
Completion complete(const Shell &shell, std::string_view before, std::string_view word);

// The words of a completion in columns for a terminal of that width, line by line; no word is
// broken. A long list is cut, and its last line says how much is missing.
std::string in_columns(const Completion &completion, size_t width);

}  // namespace wf

#endif
