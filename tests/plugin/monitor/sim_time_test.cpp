// SPDX-License-Identifier: Apache-2.0
// 64-bit time in two words, and its differences.
#include "plugin/monitor/sim_time.h"

#include "tests/plugin/recorder.h"

#include <cstdlib>

namespace {

constexpr int64_t two_to_32 = INT64_C(1) << 32;

mtiTime64T time_of(int64_t ticks) {
    mtiTime64T time;
    MTI_TIME64_ASGN(time, static_cast<int32_t>(ticks >> 32), static_cast<uint32_t>(ticks));
    return time;
}

TEST(SimTime, ConvertsAndSubtractsWholeTicks) {
    const struct {
        int64_t earlier;
        int64_t later;
        double difference;
    } rows[] = {
        {0, 0, 0},
        {0, 4294967295, 4294967295.0},
        {two_to_32 - 1, two_to_32, 1},
        {two_to_32 + 5, two_to_32 * 3 + 2, 2.0 * 4294967296.0 - 3},
        {two_to_32, two_to_32 - 1, -1},
        {100, 40, -60},
        {-1, 1, 2},
        {two_to_32 * 1000000, two_to_32 * 1000000 + 7, 7},
        {INT64_MIN, INT64_MAX, -1},  // wraps, as two's complement does
    };
    for (const auto &row : rows) {
        const mtiTime64T earlier = time_of(row.earlier);
        const mtiTime64T later = time_of(row.later);
        EXPECT_EQ(mfli_convert_time(&later), static_cast<double>(row.later));
        mtiTime64T *difference = mfli_diff_time64(&later, &earlier);
        EXPECT_EQ(mfli_convert_time(difference), row.difference) << row.earlier << ' ' << row.later;
        free(difference);
        EXPECT_EQ(mfli_ticks_between(earlier, later), row.difference);
    }
}

TEST_F(Recorder, ReadsTheSimulatorsClock) {
    sim.run_to(two_to_32 + 3);
    mtiTime64T buffer = time_of(0);
    EXPECT_EQ(mfli_stime(&buffer), &buffer);
    EXPECT_EQ(mfli_convert_time(&buffer), 4294967299.0);
    mtiTime64T *owned = mfli_stime(nullptr);
    EXPECT_EQ(mfli_convert_time(owned), 4294967299.0);
    free(owned);
    EXPECT_EQ(mfli_current_ticks(), 4294967299.0);
    const mtiTime64T last = time_of(two_to_32 - 1);
    EXPECT_EQ(mfli_time_in_prev_state(&last), 4);
    const mtiTime64T ahead = time_of(two_to_32 + 10);
    EXPECT_EQ(mfli_time_in_prev_state(&ahead), -7);
}

}  // namespace
