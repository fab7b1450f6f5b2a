// SPDX-License-Identifier: Apache-2.0
// Numbers and units as the report writes them: against the C library, and line by line.
#include "plugin/saif/fixed_text.h"

#include <gtest/gtest.h>

#include "plugin/saif/time_units.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <random>
#include <sstream>
#include <string>

namespace {

void expect_as_printf(double value) {
    char ours[FIXED_TEXT_SIZE];
    char theirs[FIXED_TEXT_SIZE];
    const size_t length = saif_format_fixed(ours, value);
    snprintf(theirs, sizeof theirs, "%f", value);
    ASSERT_STREQ(ours, theirs) << std::hexfloat << value;
    ASSERT_EQ(length, strlen(theirs));
}

TEST(FixedText, IsPrintfsText) {
    std::istringstream texts(
        "0 0.5e-6 1.5e-6 2.5e-6 0.25 0.9999995 0.99999949999999 999999.9999996 1e15 "
        "9007199254740993 9.2e18 1.8446744073709552e19 1e22 1e300 0x1.fffffffffffffp+1023 "
        "0x1p-1074 0x1p-1022 inf nan");
    for (std::string text; texts >> text;) {
        const double value = strtod(text.c_str(), nullptr);
        expect_as_printf(value);
        expect_as_printf(-value);
    }
    const unsigned seed = std::random_device()();
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937_64 random(seed);
    for (int i = 0; i < 50000; ++i) {
        const uint64_t word = random();
        double any;
        memcpy(&any, &word, sizeof any);
        const auto ticks = static_cast<double>(word >> (word % 64));
        expect_as_printf(any);
        expect_as_printf(ticks * 0.001);
        expect_as_printf(std::ldexp(ticks, -static_cast<int>(word % 80)));  // ties among them
    }
}

TEST(TimeUnits, AreATable) {
    const char *const names[] = {"fs", "fs", "fs", "ps", "ps", "ps", "ns", "ns",
                                 "ns", "us", "us", "us", "ms", "ms", "ms", "s"};
    for (int exponent = -15; exponent <= 0; ++exponent) {
        const char *unit = nullptr;
        double multiplier = 0.0;
        // What the user writes is the unit itself; its logarithm must not fall short.
        const double given = std::log10(std::stod("1.0e" + std::to_string(exponent)));
        ASSERT_EQ(convert_time_to_printing_units(given, &unit, &multiplier), 1) << exponent;
        EXPECT_STREQ(unit, names[exponent + 15]) << exponent;
        EXPECT_EQ(multiplier, std::pow(10.0, (exponent + 15) % 3)) << exponent;
    }
}

}  // namespace
