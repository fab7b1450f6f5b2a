// SPDX-License-Identifier: Apache-2.0
// Times as users write them ("100", "100ns", "1.5 us") and as messages show them, against the
// simulator's resolution. Pure text and integers; knows nothing of the shell.
#ifndef WATTFORGE_HOST_SHELL_TIMES_H
#define WATTFORGE_HOST_SHELL_TIMES_H

#include <cstdint>
#include <string>
#include <string_view>

namespace wf {

using Ticks = std::int64_t;

// What a text came to. `error` is empty when it is a time; `exact` is false when the time had to
// be rounded to a whole number of ticks (to the nearest, halves upwards).
struct ParsedTime {
    Ticks ticks = 0;
    bool exact = true;
    std::string error;
};

// A non-negative decimal number, with or without an exponent, and a unit: fs, ps, ns, us, ms, s or
// sec, min, hr; blanks between the two are allowed, capitals as well. Without a unit the number
// counts ticks of ten to the power `resolution_exponent` seconds.
ParsedTime parse_time(std::string_view text, int resolution_exponent);

// In the unit of the resolution, so that scripts can compare: 1500000 ticks of 10 ps are
// "15000000 ps".
std::string format_ticks(Ticks ticks, int resolution_exponent);

// In the largest unit that shows it as a whole number: the same time is "15 us".
std::string format_time(Ticks ticks, int resolution_exponent);

}  // namespace wf

#endif
