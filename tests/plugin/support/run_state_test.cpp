// SPDX-License-Identifier: Apache-2.0
// The word of what has been done over a typical run, and the message buffer.
#include "plugin/support/run_state.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "plugin/support/messages.h"

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

TEST(Messages, FitTheBuffer) {
    mfli_print("level %d", -3);
    EXPECT_STREQ(mfli_msg_buf, "level -3");
    mfli_print("100%% done", 0);
    EXPECT_STREQ(mfli_msg_buf, "100% done");
    mfli_message("%s|%d", std::string(2000, 'n').c_str(), 1);
    EXPECT_EQ(std::string(mfli_msg_buf), std::string(1023, 'n'));
    mfli_print_text("a text leaves the buffer alone: %d");
    EXPECT_EQ(strlen(mfli_msg_buf), 1023U);
}

}  // namespace
