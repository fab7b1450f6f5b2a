// SPDX-License-Identifier: Apache-2.0
// Times as users write them, exact to the last tick.
#include "host/shell/times.h"

#include <gtest/gtest.h>

namespace wf {
namespace {

constexpr Ticks largest = INT64_MAX;

TEST(Times, ReadsNumbersAndUnitsExactly) {
    struct Row {
        const char *text;
        int resolution;
        Ticks ticks;
        bool exact;
    };
    static constexpr Row rows[] = {
        {"100", -12, 100, true},          // ticks, whatever the resolution
        {"0", -9, 0, true},               //
        {"100ns", -12, 100000, true},     //
        {"1.5 us", -9, 1500, true},       //
        {"  .5\tUS ", -9, 500, true},     //
        {"0.3us", -15, 300000000, true},  // not a whole binary fraction
        {"10 us", -8, 1000, true},        // ticks of 10 ns
        {"2 min", -3, 120000, true},      //
        {"1hr", 0, 3600, true},           //
        {"1 sec", 2, 0, false},           // ticks of 100 s
        {"50 s", 2, 1, false},            //
        {"1e3 ns", -9, 1000, true},       //
        {"2.5E-1us", -9, 250, true},      //
        {"1500e-3", -9, 2, false},        //
        {"15ns", -8, 2, false},           // halves go up
        {"14.999999999999999999ns", -8, 1, false},
        {"1.4999", -9, 1, false},
        {"0.00000000000000000001", -9, 0, false},
        {"9223372036854775807", -9, largest, true},
        {"9223372036.854775807 s", -9, largest, true},
    };
    for (const Row &row : rows) {
        const ParsedTime time = parse_time(row.text, row.resolution);
        EXPECT_EQ(time.error, "") << row.text;
        EXPECT_EQ(time.ticks, row.ticks) << row.text;
        EXPECT_EQ(time.exact, row.exact) << row.text;
    }
}

TEST(Times, SaysWhatIsWrong) {
    const std::string no_time = "expected a time such as 100, 100ns or 1.5 us, got ";
    const std::string no_unit = "expected a unit (fs, ps, ns, us, ms, s, min, hr), got ";
    const std::pair<const char *, std::string> rows[] = {
        {"", no_time + "\"\""},
        {"ns", no_time + "\"ns\""},
        {"-5ns", no_time + "\"-5ns\""},
        {". 5", no_time + "\". 5\""},
        {"5 parsec", no_unit + "\"parsec\" in \"5 parsec\""},
        {"5e", no_unit + "\"e\" in \"5e\""},
        {"1.2.3", no_unit + "\".3\" in \"1.2.3\""},
        {"9223372036854775808",
         "the time \"9223372036854775808\" is more than the simulator can count"},
        {"1e2000s", "the time \"1e2000s\" is more than the simulator can count"},
        {"1000000 hr", "the time \"1000000 hr\" is more than the simulator can count"},
        {"1234567890123456789012345678901",
         "the time \"1234567890123456789012345678901\" is more than the simulator can count"},
    };
    for (const auto &[text, error] : rows) {
        EXPECT_EQ(parse_time(text, -15).error, error);
    }
}

TEST(Times, ShowsTicksForScriptsAndForPeople) {
    struct Row {
        Ticks ticks;
        int resolution;
        const char *in_resolution;
        const char *for_people;
    };
    static constexpr Row rows[] = {
        {0, -12, "0 ps", "0 ps"},
        {1500000, -11, "15000000 ps", "15 us"},
        {1500, -9, "1500 ns", "1500 ns"},
        {3000, -15, "3000 fs", "3 ps"},
        {7, 2, "700 s", "700 s"},
        {5000, 0, "5000 s", "5000 s"},
        {largest, -13, "922337203685477580700 fs", "922337203685477580700 fs"},
    };
    for (const Row &row : rows) {
        EXPECT_EQ(format_ticks(row.ticks, row.resolution), row.in_resolution);
        EXPECT_EQ(format_time(row.ticks, row.resolution), row.for_people);
        EXPECT_EQ(parse_time(row.for_people, row.resolution).ticks, row.ticks);
    }
}

}  // namespace
}  // namespace wf
