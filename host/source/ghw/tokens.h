// SPDX-License-Identifier: Apache-2.0
// The bytes of a GHW file in a sliding block buffer: bytes, words and LEB128 numbers for the
// header, a bare cursor for the event loop, offsets for messages. Knows nothing of what the numbers
// mean.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "host/source/input.h"
#include "host/source/leb128.h"

namespace wf::ghw {

// The bytes between cursor() and end() are in memory, and `slack` bytes from end() on are zero, so
// that an item can be read without a check against the end: who finds himself behind end()
// afterwards has read a file that was cut off. have() sees to it that this happens nowhere else.
//
// Functions that can fail set error() to `file: byte N, section S: expected X, got Y`.
class Tokens {
  public:
    static constexpr std::size_t default_block = std::size_t{1} << 20;
    // More than the longest item or pair of items that is read without a check.
    static constexpr std::size_t slack = 32;

    explicit Tokens(std::unique_ptr<Input> input, std::size_t block = default_block);

    // --- item by item; `expected` words the message ---
    bool byte(uint8_t &value, std::string_view expected);
    // An unsigned LEB128 number of at most `limit`.
    bool number(uint32_t &value, uint32_t limit, std::string_view expected);
    // A signed one.
    bool signed_number(int64_t &value, std::string_view expected);
    // Four and eight bytes in the file's order.
    bool word(uint32_t &value, std::string_view expected);
    bool long_word(int64_t &value, std::string_view expected);
    // Exactly these bytes.
    bool mark(std::string_view bytes, std::string_view expected);
    // The four bytes that open a section.
    bool tag(std::string &value, std::string_view expected);
    // Whether the data has ended, properly or not.
    bool at_end() { return !have(1); }

    // --- by the cursor ---
    const char *cursor() const { return cursor_; }
    const char *end() const { return end_; }
    void move_to(const char *place) { cursor_ = place; }
    // Brings at least `slack` bytes behind the cursor, which may move, or all that there are.
    // False: fewer than `wanted`.
    bool have(std::size_t wanted);
    int64_t swapped(int64_t value) const {
        return is_swapped_ ? static_cast<int64_t>(__builtin_bswap64(static_cast<uint64_t>(value)))
                           : value;
    }

    // --- places ---
    uint64_t place() const { return offset_of(cursor_); }
    // Goes back to a place; false: the input failed on the way.
    bool rewind_to(uint64_t place);

    // --- messages; all answer false ---
    // About the item that was read last.
    bool fault(std::string_view expected, std::string_view got);
    // About the item at the cursor, which is incomplete or malformed when `got` is empty.
    bool fault_here(std::string_view expected, std::string_view got = {});
    // About an item at `place` in the buffer.
    bool fault_at(const char *place, std::string_view expected, std::string_view got);
    const std::string &error() const { return error_; }

    // Which section messages speak of.
    void enter(std::string_view section) { section_ = section; }
    // Words and reals are in this order; native at first.
    void set_order(std::endian order) { is_swapped_ = order != std::endian::native; }

    const Input &input() const { return *input_; }
    // Called after every block that was read.
    void on_block(std::function<void()> listener) { listener_ = std::move(listener); }

  private:
    uint64_t offset_of(const char *place) const {
        return bytes_before_ + static_cast<uint64_t>(place - buffer_.data());
    }
    // Takes the bytes up to `after` as one item, or complains.
    bool take(const char *after, std::string_view expected);
    bool complain(uint64_t offset, std::string_view expected, std::string_view got);
    std::string what_is_here() const;

    std::unique_ptr<Input> input_;
    std::vector<char> buffer_;
    const char *cursor_;
    const char *end_;
    uint64_t bytes_before_ = 0;  // what has left the buffer
    uint64_t item_ = 0;          // offset of the item that was read last
    bool ended_ = false;         // the input has nothing more to give
    bool is_swapped_ = false;
    std::string section_ = "header";
    std::string error_;
    std::function<void()> listener_;
};

// Bytes for a message: `the bytes 00 1f`.
std::string in_hex(std::string_view bytes);

}  // namespace wf::ghw
