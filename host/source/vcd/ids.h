// SPDX-License-Identifier: Apache-2.0
// Identifier codes and what they stand for: from the characters before a blank to the place of a
// value, without a branch that depends on the code. Knows neither names nor regions.
#pragma once

#include <bit>
#include <cstdint>
#include <cstring>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "host/source/variables.h"

namespace wf::vcd {

// A code as it stands in the text: its length and the eight bytes from its first character on.
struct Code {
    static constexpr uint32_t too_long = 9;  // for find(), which leaves it to find_text()

    uint64_t bytes;
    uint32_t length;

    // Reads the code that starts at `text`; nine bytes must be readable there. A code ends at the
    // first byte that is a blank or a control character.
    static Code at(const char *text);
};

inline Code Code::at(const char *text) {
    static_assert(std::endian::native == std::endian::little);
    constexpr uint64_t ones = 0x0101010101010101U;
    Code code;
    std::memcpy(&code.bytes, text, sizeof code.bytes);
    const uint64_t blanks = (code.bytes - ones * 0x21) & ~code.bytes & (ones * 0x80);
    if (blanks != 0) [[likely]] {
        code.length = static_cast<uint32_t>(std::countr_zero(blanks)) / 8;
    } else {
        code.length = static_cast<unsigned char>(text[8]) <= ' ' ? 8 : too_long;
    }
    return code;
}

// Codes are numbers to base 94 that simulators count upwards, some with the first character as the
// lowest digit, some with the last. Whichever reading gives the smaller numbers indexes a plain
// array; only when both leave it mostly empty do codes go through a hash table. Codes of more than
// eight characters always do.
class IdTable {
  public:
    static constexpr uint32_t none = UINT32_MAX;

    // --- while the declarations are read ---
    // The number, counted from 0, of a code; a new one gets the next number.
    uint32_t number(std::string_view code);
    uint32_t count() const { return count_; }

    // --- once they have been read ---
    // Prepares find(): targets[n] is what the code with number n stands for.
    void freeze(const std::vector<Target> &targets, std::vector<Target> extra);
    // The target of a code, undeclared when it is not in the table. find() leaves out the codes
    // that are longer than eight characters or not plain ASCII.
    Target find(Code code) const;
    Target find_text(std::string_view code) const;
    // The first of a target's count(): `single` itself unless it is several.
    const Target *first_of(Target target, const Target *single) const {
        return target.is_several() ? extra_.data() + target.slot : single;
    }
    // Bits of the widest target, at least 1.
    uint32_t widest() const { return widest_; }

  private:
    enum class Order : uint8_t { first_lowest, last_lowest, hashed };
    struct Place {
        uint64_t key = 0;  // the characters, the first lowest; 0: empty
        uint32_t number = 0;
    };
    struct Entry {
        uint64_t key = 0;
        Target target;
    };

    // Lets a long code be looked up without a copy of it.
    struct TextHash {
        using is_transparent = void;
        std::size_t operator()(std::string_view text) const {
            return std::hash<std::string_view>()(text);
        }
    };

    static uint64_t index_of(uint64_t key);
    static uint64_t swapped(uint64_t key);
    static std::size_t hash(uint64_t key) { return (key * 0x9e3779b97f4a7c15U) >> 20; }
    void grow_places();
    Target find_hashed(uint64_t key) const;
    void fill_array(const std::vector<Target> &targets, uint64_t largest);
    void fill_hash(const std::vector<Target> &targets);

    Order order_ = Order::first_lowest;
    std::vector<Target> array_;  // by index_of
    std::vector<Entry> hashed_;
    std::vector<Place> places_;  // only until freeze()
    std::unordered_map<std::string, uint32_t, TextHash, std::equal_to<>> long_codes_;
    std::vector<Target> long_targets_;
    std::vector<Target> extra_;
    uint32_t count_ = 0;
    uint32_t widest_ = 1;
};

// Each character gives 1 to 94, a place without one 0; together a number to base 96.
inline uint64_t IdTable::index_of(uint64_t key) {
    constexpr uint64_t base = 96;
    constexpr uint64_t base2 = base * base;
    constexpr uint64_t base4 = base2 * base2;
    key = (key & 0x00ff00ff00ff00ffU) + base * ((key >> 8) & 0x00ff00ff00ff00ffU);
    key = (key & 0x0000ffff0000ffffU) + base2 * ((key >> 16) & 0x0000ffff0000ffffU);
    return (key & 0xffffffffU) + base4 * (key >> 32);
}

inline Target IdTable::find(Code code) const {
    constexpr uint64_t ones = 0x0101010101010101U;
    const uint32_t spare = (64 - 8 * code.length) & 63;
    const uint64_t key = (code.bytes << spare) >> spare;
    if (code.length - 1 > 7 || (key & (ones * 0x80)) != 0) [[unlikely]] {
        return {};
    }
    if (order_ == Order::hashed) [[unlikely]] {
        return find_hashed(key);
    }
    uint64_t digits = key - ((ones * 0x20 << spare) >> spare);
    if (order_ == Order::last_lowest) {
        digits = __builtin_bswap64(digits) >> spare;
    }
    const uint64_t index = index_of(digits);
    return index < array_.size() ? array_[index] : Target{};
}

}  // namespace wf::vcd
