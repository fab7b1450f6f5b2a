// SPDX-License-Identifier: Apache-2.0
// Decimal digits are kept one by one, so that a vector may be of any width.
#include "host/shell/radix.h"

#include <algorithm>
#include <iterator>

namespace wf {
namespace {

// Beside radix_names.
constexpr Radix radices[] = {Radix::binary,          Radix::decimal, Radix::hex,
                             Radix::octal,           Radix::decimal, Radix::symbolic,
                             Radix::unsigned_decimal};

bool is_known(char bit) {
    return bit == '0' || bit == '1' || bit == 'L' || bit == 'H';
}

bool is_one(char bit) {
    return bit == '1' || bit == 'H';
}

// Digits of so many bits each.
std::string to_digits(std::string_view bits, size_t bits_each) {
    std::string text;
    while (!bits.empty()) {
        const size_t rest = bits.size() % bits_each;
        const size_t width = rest == 0 ? bits_each : rest;
        const std::string_view digit = bits.substr(0, width);
        unsigned value = 0;
        for (const char bit : digit) {
            value = value * 2 + (is_one(bit) ? 1 : 0);
        }
        if (std::all_of(digit.begin(), digit.end(), is_known)) {
            text += "0123456789ABCDEF"[value];
        } else {
            text += digit.find_first_not_of('Z') == std::string_view::npos ? 'Z' : 'X';
        }
        bits.remove_prefix(width);
    }
    return text;
}

// The bits as they are, or with every bit turned round and one added: the magnitude of a negative.
std::string to_decimal(std::string_view bits, bool negate) {
    std::string digits(1, '0');  // the last digit first
    const auto double_and_add = [&digits](int carry) {
        for (char &digit : digits) {
            const int value = (digit - '0') * 2 + carry;
            digit = static_cast<char>('0' + value % 10);
            carry = value / 10;
        }
        if (carry != 0) {
            digits += static_cast<char>('0' + carry);
        }
    };
    std::string magnitude;
    for (const char bit : bits) {
        magnitude += is_one(bit) != negate ? '1' : '0';
    }
    if (negate) {
        // The sign bit is a 0 by now, so there is one to add to.
        for (size_t i = magnitude.rfind('0'); i < magnitude.size(); ++i) {
            magnitude[i] = magnitude[i] == '0' ? '1' : '0';
        }
    }
    for (const char bit : magnitude) {
        double_and_add(bit == '1' ? 1 : 0);
    }
    std::reverse(digits.begin(), digits.end());
    return negate ? "-" + digits : digits;
}

}  // namespace

Radix radix_at(int position) {
    return radices[position];
}

std::string_view name_of(Radix radix) {
    const auto *found = std::find(std::begin(radices), std::end(radices), radix);
    return radix_names[found - std::begin(radices)];
}

std::string in_radix(std::string_view bits, Radix radix) {
    if (radix == Radix::symbolic || radix == Radix::binary || bits.empty() ||
        bits.find_first_not_of("UX01ZWLH-") != std::string_view::npos) {
        return std::string(bits);
    }
    if (radix == Radix::hex || radix == Radix::octal) {
        return to_digits(bits, radix == Radix::hex ? 4 : 3);
    }
    if (!std::all_of(bits.begin(), bits.end(), is_known)) {
        return "X";
    }
    return to_decimal(bits, radix == Radix::decimal && is_one(bits.front()));
}

}  // namespace wf
