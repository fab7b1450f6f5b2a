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
