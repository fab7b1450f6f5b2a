// SPDX-License-Identifier: Apache-2.0
// printf's "%f" by integer arithmetic.
#include "plugin/saif/fixed_text.h"

#include <cstdint>
#include <cstdio>
#include <cstring>

__extension__ typedef unsigned __int128 uint128;

static constexpr uint64_t MICRO = 1000000;

// A finite double is mantissa * 2^exponent.
static constexpr int EXPONENT_BIAS = 1075;
static constexpr uint64_t MANTISSA_MASK = (uint64_t{1} << 52) - 1;

// The digits of `whole`, at least one, written so that they end before `end`.
static char *digits_before(char *end, uint64_t whole) {
    do {
        *--end = static_cast<char>('0' + whole % 10);
        whole /= 10;
    } while (whole != 0);
    return end;
}

static size_t write_parts(char *text, bool negative, uint64_t whole, uint64_t micro) {
    char digits[24];
    char *const end = digits + sizeof digits;
    const char *first = digits_before(end, whole);
    char *at = text;
    if (negative) {
        *at++ = '-';
    }
    const auto length = static_cast<size_t>(end - first);
    memcpy(at, first, length);
    at += length;
    memcpy(at, ".000000", 8);
    for (char *place = at + 6; micro != 0; place--) {
        *place = static_cast<char>('0' + micro % 10);
        micro /= 10;
    }
    return static_cast<size_t>(at + 7 - text);
}

// mantissa * 10^6 / 2^shift is the count of millionths with all its bits: it
// is rounded once, as printf rounds.
static size_t write_fraction(char *text, bool negative, uint64_t mantissa, int shift) {
    const uint64_t whole = shift < 64 ? mantissa >> shift : 0;
    if (shift > 75) {
        return write_parts(text, negative, 0, 0);  // mantissa * 10^6 is below 2^73
    }
    const uint128 one = uint128{1} << shift;
    const uint128 fraction = (uint128{mantissa} & (one - 1)) * MICRO;
    auto micro = static_cast<uint64_t>(fraction >> shift);
    const uint128 rest = fraction & (one - 1);
    const uint128 half = one >> 1;
    if (rest > half || (rest == half && (micro & 1) != 0)) {
        micro++;
    }
    if (micro == MICRO) {
        return write_parts(text, negative, whole + 1, 0);
    }
    return write_parts(text, negative, whole, micro);
}

size_t saif_format_fixed(char *text, double value) {
    uint64_t bits;
    memcpy(&bits, &value, sizeof bits);
    const bool negative = bits >> 63 != 0;
    const int biased = static_cast<int>(bits >> 52 & 0x7ff);
    const uint64_t mantissa = (bits & MANTISSA_MASK) | (biased != 0 ? MANTISSA_MASK + 1 : 0);
    const int exponent = (biased != 0 ? biased : 1) - EXPONENT_BIAS;
    if (exponent < 0) {
        return write_fraction(text, negative, mantissa, -exponent);
    }
    if (exponent <= 11) {
        return write_parts(text, negative, mantissa << exponent, 0);
    }
    // Beyond 2^64, infinite, or not a number: no duration or count gets there.
    return static_cast<size_t>(snprintf(text, FIXED_TEXT_SIZE, "%f", value));
}
