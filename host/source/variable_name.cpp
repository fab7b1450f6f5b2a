// SPDX-License-Identifier: Apache-2.0
// Brackets from the end of a name, as far as they are not part of it.
#include "host/source/variable_name.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>

namespace wf {
namespace {

bool read_number(std::string_view text, int32_t &value) {
    const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
    return !text.empty() && result.ec == std::errc() && result.ptr == text.data() + text.size();
}

// The last group in brackets of `text`, not looking before `floor`; empty when it does not end in
// one.
std::string_view last_group(std::string_view text, std::size_t floor) {
    const std::size_t open = text.rfind('[');
    if (text.empty() || text.back() != ']' || open == std::string_view::npos || open < floor) {
        return {};
    }
    return text.substr(open);
}

bool read_index(std::string_view group, int32_t &index) {
    return group.size() > 2 && read_number(group.substr(1, group.size() - 2), index);
}

}  // namespace

bool split_index(std::string_view &name, int32_t &index) {
    const std::string_view group = last_group(name, 1);
    if (!read_index(group, index)) {
        return false;
    }
    name.remove_suffix(group.size());
    return true;
}

bool read_range(std::string_view group, int32_t &left, int32_t &right) {
    const std::size_t colon = group.find(':');
    return colon != std::string_view::npos && read_number(group.substr(1, colon - 1), left) &&
           read_number(group.substr(colon + 1, group.size() - colon - 2), right);
}

uint64_t range_width(int32_t left, int32_t right) {
    return static_cast<uint64_t>(std::abs(int64_t{left} - right)) + 1;
}

bool is_escaped(std::string_view text) {
    return text.size() > 1 && text[0] == '\\' && text[1] != ' ';
}

std::size_t extended_length(std::string_view text) {
    const std::size_t last = text.rfind('\\');
    if (!text.starts_with('\\') || last < 2) {
        return 0;
    }
    const std::string_view rest = text.substr(last + 1);
    return rest.empty() || rest[0] == ' ' || rest[0] == '[' ? last + 1 : 0;
}

// In an escaped or extended name, brackets belong to the name; but a vector whose escaped name ends
// in an index is how memories' words are dumped.
std::string_view split_name(std::string &text, Variable &variable) {
    std::size_t own = extended_length(text);
    if (own == 0 && is_escaped(text)) {
        text.erase(0, 1);
        own = std::min(text.find(' '), text.size());
    }
    text.erase(std::remove(text.begin() + static_cast<std::ptrdiff_t>(own), text.end(), ' '),
               text.end());
    std::string_view name = text;
    const std::string_view group = last_group(name, own);
    int32_t left = 0;
    int32_t right = 0;
    if (read_range(group, left, right) &&
        (!variable.has_range || (left == variable.left && right == variable.right))) {
        variable.has_range = true;
        variable.left = left;
        variable.right = right;
        name.remove_suffix(group.size());
    } else if (variable.width == 1 && read_index(group, variable.left)) {
        variable.has_index = true;
        name.remove_suffix(group.size());
    }
    variable.name = variable.base = name;
    if (variable.has_range || variable.width > 1) {
        split_index(variable.base, variable.word);
    }
    return group;
}

}  // namespace wf
