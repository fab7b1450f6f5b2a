// SPDX-License-Identifier: Apache-2.0
// GHW files for tests: written byte by byte in either order, and read into lists of lines.
#pragma once

#include <bit>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "host/source/ghw/tokens.h"
#include "tests/host/source/reading.h"

namespace wf::test {

// Bytes in a file's order; every function answers the object, so that calls can be strung together.
class GhwBytes {
  public:
    explicit GhwBytes(std::endian order = std::endian::little) : order_(order) {}

    GhwBytes &text(std::string_view bytes);
    GhwBytes &byte(int value) { return text(std::string(1, static_cast<char>(value))); }
    GhwBytes &bytes(std::initializer_list<int> values);
    GhwBytes &word(uint32_t value);       // four bytes
    GhwBytes &long_word(uint64_t value);  // eight
    GhwBytes &real(double value) { return long_word(std::bit_cast<uint64_t>(value)); }
    GhwBytes &number(uint64_t value);  // LEB128
    GhwBytes &signed_number(int64_t value);

    // The first sixteen bytes.
    GhwBytes &preamble(int minor = 1);
    // A section's name and the zero bytes behind it.
    GhwBytes &section(std::string_view name) { return text(name).byte(0).word(0); }
    // The whole section; strings get the numbers 1, 2, ...
    GhwBytes &strings(const std::vector<std::string> &strings);
    GhwBytes &end_of_header() { return text({"EOH\0", 4}); }
    GhwBytes &snapshot(int64_t time) { return section("SNP").long_word(bits(time)); }
    GhwBytes &cycles(int64_t time) { return text({"CYC\0", 4}).long_word(bits(time)); }
    // Ends a cycle; -1 with the section.
    GhwBytes &advance(int64_t time);
    // Directory and tail.
    GhwBytes &tail();

    operator const std::string &() const { return bytes_; }

  private:
    static uint64_t bits(int64_t value) { return static_cast<uint64_t>(value); }

    std::endian order_;
    std::string bytes_;
};

// Its design has lines such as "/top instance", "  bus (7:0) of std_logic/9 in @3",
// "  n integer 15:0 @11".
using GhwReading = Reading;

// Reads `bytes` under the name t.ghw through a buffer of `block` bytes that is filled in pieces of
// at most `piece`.
GhwReading read_ghw(const std::string &bytes, std::size_t block = ghw::Tokens::default_block,
                    std::size_t piece = SIZE_MAX);

// The text of an error at that byte of t.ghw, of "SECTION: what was expected, got ...".
std::string ghw_error(std::size_t offset, const std::string &message);

}  // namespace wf::test
