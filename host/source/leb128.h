// SPDX-License-Identifier: Apache-2.0
// Numbers of seven bits a byte, the lowest first, as binary waveforms write them.
#pragma once

#include <cstdint>

namespace wf {

// How many bytes must be readable from where a number is read on.
inline constexpr unsigned longest_number = 10;

// A number at `at`; both answer the place behind, or null for one of more than ten bytes.
inline const char *read_unsigned(const char *at, uint64_t &value) {
    uint64_t bits = static_cast<unsigned char>(*at++);
    value = bits;
    if (bits < 0x80) [[likely]] {
        return at;
    }
    value &= 0x7f;
    for (unsigned shift = 7; shift < 70; shift += 7) {
        bits = static_cast<unsigned char>(*at++);
        value |= (bits & 0x7f) << shift;
        if (bits < 0x80) {
            return at;
        }
    }
    return nullptr;
}

inline const char *read_signed(const char *at, int64_t &value) {
    uint64_t result = 0;
    for (unsigned shift = 0; shift < 70;) {
        const uint64_t bits = static_cast<unsigned char>(*at++);
        result |= (bits & 0x7f) << shift;
        shift += 7;
        if (bits < 0x80) {
            if (shift < 64 && (bits & 0x40) != 0) {
                result |= ~uint64_t{0} << shift;
            }
            value = static_cast<int64_t>(result);
            return at;
        }
    }
    return nullptr;
}

}  // namespace wf
