// SPDX-License-Identifier: Apache-2.0
// Decimal arithmetic in 128-bit integers: no time is ever a floating point number, so that 0.3 us
// is exactly 300000 ps.
#include "host/shell/times.h"

#include <array>
#include <cctype>
#include <limits>

namespace wf {
namespace {

__extension__ using Wide = unsigned __int128;

struct Unit {
    std::string_view name;
    int exponent;  // of ten, seconds
    int factor;
};

constexpr std::array<Unit, 9> units{{{"fs", -15, 1},
                                     {"ps", -12, 1},
                                     {"ns", -9, 1},
                                     {"us", -6, 1},
                                     {"ms", -3, 1},
                                     {"s", 0, 1},
                                     {"sec", 0, 1},
                                     {"min", 0, 60},
                                     {"hr", 0, 3600}}};

// 30 digits times an hour's factor still fit into 128 bits.
constexpr int digits_kept = 30;
constexpr auto largest_ticks = static_cast<Wide>(std::numeric_limits<Ticks>::max());

struct Decimal {
    Wide digits = 0;
    int exponent = 0;  // value = digits * ten ^ exponent
};

bool is_digit(char c) {
    return c >= '0' && c <= '9';
}

std::string_view trim(std::string_view text) {
    while (!text.empty() && std::isspace(static_cast<unsigned char>(text.front()))) {
        text.remove_prefix(1);
    }
    while (!text.empty() && std::isspace(static_cast<unsigned char>(text.back()))) {
        text.remove_suffix(1);
    }
    return text;
}

// Takes digits off the front of `text`; false if there are more than can be kept.
bool take_digits(std::string_view &text, Decimal &number, int exponent_step, int &taken) {
    while (!text.empty() && is_digit(text.front())) {
        number.digits = number.digits * 10 + static_cast<unsigned>(text.front() - '0');
        number.exponent += exponent_step;
        text.remove_prefix(1);
        ++taken;
    }
    return taken <= digits_kept;
}

// Takes "e-3" off the front of `text` if it stands there.
void take_exponent(std::string_view &text, Decimal &number) {
    size_t at = 1;
    if (text.empty() || (text[0] != 'e' && text[0] != 'E')) {
        return;
    }
    const bool negative = text.size() > at && text[at] == '-';
    at += negative || (text.size() > at && text[at] == '+') ? 1U : 0U;
    if (at >= text.size() || !is_digit(text[at])) {
        return;
    }
    int exponent = 0;
    for (; at < text.size() && is_digit(text[at]); ++at) {
        exponent = exponent < 1000 ? exponent * 10 + (text[at] - '0') : exponent;
    }
    number.exponent += negative ? -exponent : exponent;
    text.remove_prefix(at);
}

const Unit *find_unit(std::string_view name) {
    std::string lower;
    for (const char c : name) {
        lower += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    }
    for (const Unit &unit : units) {
        if (unit.name == lower) {
            return &unit;
        }
    }
    return nullptr;
}

// False: more ticks than can be counted.
bool to_ticks(Decimal number, ParsedTime &time) {
    for (; number.exponent > 0 && number.digits != 0; --number.exponent) {
        if (number.digits > largest_ticks) {
            return false;
        }
        number.digits *= 10;
    }
    // All but the last division only note what they cut off: halves are judged once.
    bool remainder_below = false;
    for (; number.exponent < -1 && number.digits != 0; ++number.exponent) {
        remainder_below = remainder_below || number.digits % 10 != 0;
        number.digits /= 10;
    }
    if (number.exponent < 0) {
        const auto last = static_cast<int>(number.digits % 10);
        number.digits = number.digits / 10 + (last >= 5 ? 1 : 0);
        time.exact = last == 0 && !remainder_below;
    }
    time.ticks = static_cast<Ticks>(number.digits);
    return number.digits <= largest_ticks;
}

std::string quoted(std::string_view text) {
    return "\"" + std::string(text) + "\"";
}

std::string decimal_text(Wide value) {
    std::string text;
    do {
        text.insert(text.begin(), static_cast<char>('0' + static_cast<int>(value % 10)));
        value /= 10;
    } while (value != 0);
    return text;
}

// The unit that a resolution is shown in, and how many of it one tick is: 10 ps for -11.
const Unit &unit_of(int resolution_exponent, int *multiple) {
    const int clipped = resolution_exponent < -15 ? -15 : resolution_exponent;
    int below = clipped > 0 ? 5 : (clipped + 15) / 3;
    *multiple = 1;
    for (int exponent = units[static_cast<size_t>(below)].exponent; exponent < clipped;
         ++exponent) {
        *multiple *= 10;
    }
    return units[static_cast<size_t>(below)];
}

std::string with_unit(Ticks ticks, int resolution_exponent, bool largest) {
    int multiple = 1;
    const Unit *unit = &unit_of(resolution_exponent, &multiple);
    const bool negative = ticks < 0;
    const auto magnitude = static_cast<std::uint64_t>(ticks);
    Wide value = Wide{negative ? 0 - magnitude : magnitude} * static_cast<unsigned>(multiple);
    while (largest && value != 0 && value % 1000 == 0 && unit->exponent < 0) {
        value /= 1000;
        ++unit;
    }
    return (negative ? "-" : "") + decimal_text(value) + " " + std::string(unit->name);
}

}  // namespace

ParsedTime parse_time(std::string_view text, int resolution_exponent) {
    ParsedTime time;
    std::string_view rest = trim(text);
    Decimal number;
    int taken = 0;
    bool fits = take_digits(rest, number, 0, taken);
    if (rest.size() > 1 && rest[0] == '.' && is_digit(rest[1])) {
        rest.remove_prefix(1);
        fits = take_digits(rest, number, -1, taken) && fits;
    }
    if (taken == 0) {
        time.error = "expected a time such as 100, 100ns or 1.5 us, got " + quoted(text);
        return time;
    }
    take_exponent(rest, number);
    rest = trim(rest);
    const Unit *unit = rest.empty() ? nullptr : find_unit(rest);
    if (!rest.empty() && unit == nullptr) {
        time.error = "expected a unit (fs, ps, ns, us, ms, s, min, hr), got " + quoted(rest) +
                     " in " + quoted(text);
        return time;
    }
    if (unit != nullptr) {
        number.digits *= static_cast<unsigned>(unit->factor);
        number.exponent += unit->exponent - resolution_exponent;
    }
    if (!fits || !to_ticks(number, time)) {
        time.error = "the time " + quoted(text) + " is more than the simulator can count";
    }
    return time;
}

std::string format_ticks(Ticks ticks, int resolution_exponent) {
    return with_unit(ticks, resolution_exponent, false);
}

std::string format_time(Ticks ticks, int resolution_exponent) {
    return with_unit(ticks, resolution_exponent, true);
}

}  // namespace wf
