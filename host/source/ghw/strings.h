// SPDX-License-Identifier: Apache-2.0
// The table of strings of a GHW file: every name and literal of the design, by number.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "host/source/ghw/tokens.h"

namespace wf::ghw {

// Number 0 is the empty string of what has no name; those of the file count from 1.
class Strings {
  public:
    // Limits that no design meets, so that a few damaged bytes cannot fill the memory: strings
    // share their beginnings with the one before.
    static constexpr std::size_t longest = 4096;
    static constexpr std::size_t largest = std::size_t{1} << 28;

    // Reads the section behind its tag.
    bool read(Tokens &tokens);
    // Reads the number of a string, and gives the string.
    bool read_reference(Tokens &tokens, std::string_view &value, std::string_view expected) const;

    uint32_t count() const { return static_cast<uint32_t>(ends_.size()); }
    std::string_view at(uint32_t number) const;

  private:
    bool read_string(Tokens &tokens, std::size_t shared);
    static bool read_shared(Tokens &tokens, std::size_t &shared);

    std::string text_;            // one after the other
    std::vector<uint32_t> ends_;  // of each of them
};

}  // namespace wf::ghw
