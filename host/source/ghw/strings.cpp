// SPDX-License-Identifier: Apache-2.0
// A string is its characters behind those that it shares with the one before; the number of those
// stands before it, in bytes that are no characters.
#include "host/source/ghw/strings.h"

namespace wf::ghw {
namespace {

// Latin-1: the control characters count, all others are text.
bool is_text(char character) {
    return (static_cast<unsigned char>(character) & 0x60) != 0;
}

}  // namespace

std::string_view Strings::at(uint32_t number) const {
    if (number == 0) {
        return "";
    }
    const std::size_t begin = number == 1 ? 0 : ends_[number - 2];
    return std::string_view(text_).substr(begin, ends_[number - 1] - begin);
}

bool Strings::read(Tokens &tokens) {
    uint32_t declared = 0;
    uint32_t size = 0;
    if (!tokens.mark({"\0\0\0\0", 4}, "four zero bytes") ||
        !tokens.word(declared, "the number of strings") ||
        !tokens.word(size, "the size of the strings")) {
        return false;
    }
    std::size_t shared = 0;
    for (uint32_t i = 0; i < declared; ++i) {
        if (!read_string(tokens, shared) || !read_shared(tokens, shared)) {
            return false;
        }
        if (shared > at(count()).size()) {
            return tokens.fault("at most " + std::to_string(at(count()).size()) +
                                    " characters of the string before",
                                std::to_string(shared));
        }
    }
    return tokens.mark({"EOS\0", 4}, "the end mark EOS");
}

bool Strings::read_string(Tokens &tokens, std::size_t shared) {
    const std::size_t begin = text_.size();
    const std::size_t before = begin - at(count()).size();
    for (std::size_t i = 0; i < shared; ++i) {
        text_ += text_[before + i];
    }
    while (tokens.have(1) && is_text(*tokens.cursor())) {
        text_ += *tokens.cursor();
        tokens.move_to(tokens.cursor() + 1);
        if (text_.size() - begin > longest) {
            return tokens.fault_here(
                "a string of at most " + std::to_string(longest) + " characters", "a longer one");
        }
    }
    if (text_.size() > largest) {
        return tokens.fault_here("strings of at most " + std::to_string(largest) + " characters",
                                 "more");
    }
    ends_.push_back(static_cast<uint32_t>(text_.size()));
    return true;
}

// Five bits a byte, the lowest first, the top bit says that there are more.
bool Strings::read_shared(Tokens &tokens, std::size_t &shared) {
    shared = 0;
    for (unsigned shift = 0;; shift += 5) {
        uint8_t part = 0;
        if (!tokens.byte(part, "the end of a string")) {
            return false;
        }
        if (is_text(static_cast<char>(part)) || shift > 15) {
            return tokens.fault("the length of what strings share", "byte " + std::to_string(part));
        }
        shared |= std::size_t{part & 0x1fU} << shift;
        if (part < 0x80) {
            return true;
        }
    }
}

bool Strings::read_reference(Tokens &tokens, std::string_view &value,
                             std::string_view expected) const {
    uint32_t number = 0;
    if (!tokens.number(number, count(), expected)) {
        return false;
    }
    value = at(number);
    return true;
}

}  // namespace wf::ghw
