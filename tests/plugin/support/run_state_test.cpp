// SPDX-License-Identifier: Apache-2.0
// The word of what has been done over a typical run.
#include "plugin/support/run_state.h"

#include <gtest/gtest.h>

namespace {

TEST(RunState, FollowsARun) {
    const uint32_t before = mfli_window_active;
    mfli_window_active = 0;
    const struct {
        void (*operation)();
        uint32_t word;
    } steps[] = {{mfli_set_read_rtl_status, 128},      {mfli_set_toggle_region_status, 129},
                 {mfli_set_toggle_start_status, 131},  {mfli_set_toggle_stop_status, 133},
                 {mfli_set_toggle_start_status, 131},  {mfli_set_toggle_stop_status, 133},
                 {mfli_set_toggle_report_status, 141}, {mfli_set_toggle_start_status, 139},
                 {mfli_set_toggle_reset_status, 129},  {mfli_set_toggle_stop_status, 133},
                 {mfli_set_toggle_reset_status, 129}};
    EXPECT_EQ(mfli_is_rtl_read(), 0U);
    for (const auto &[operation, word] : steps) {
        operation();
        EXPECT_EQ(mfli_window_active, word);
        EXPECT_EQ(mfli_is_monitoring_window_active(), word & 2U);
        EXPECT_EQ(mfli_is_rtl_read(), 128U);
    }
    mfli_window_active = before;
}

}  // namespace
