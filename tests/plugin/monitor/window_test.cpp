// SPDX-License-Identifier: Apache-2.0
// Opening, closing and resetting the counting window.
#include "plugin/monitor/window.h"

#include "tests/plugin/recorder.h"

using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

class Window : public Recorder {
  protected:
    Window() {
        sim.signal("/top/a", sim.types.std_logic());
        sim.signal("/top/n", sim.types.integer("n", 0, 3));
        watch("/top");
    }
};

TEST_F(Window, AddsUpOverSeveralOpenings) {
    sim.set("/top/a", '1');
    sim.drive(10, "/top/n", 2);
    open();
    sim.drive(60, "/top/a", '0');
    sim.set("/top/n", 1);
    sim.run_to(110);
    close();
    EXPECT_THAT(
        sim.lines(),
        ElementsAre("Information (KLVA-PWR): Turned on counting window at time 10.000000",
                    "Information (KLVA-PWR): Turned off counting window at time 110.000000"));
    // Between windows: neither the changes nor the time count.
    sim.drive(150, "/top/a", '1');
    sim.drive(160, "/top/a", 'X');
    sim.run_to(200);
    open();
    sim.drive(230, "/top/a", '0');
    sim.run_to(250);
    close();
    EXPECT_EQ(mfli_window_time, 150);
    EXPECT_THAT(activity(), ElementsAre("/top/a 70 50 30 1 0 2", "0:/top/n 50 100 0 1 0 2",
                                        "1:/top/n 100 50 0 1 0 2"));
}

TEST_F(Window, StartsAgainAfterAReset) {
    sim.set("/top/a", '0');
    open();
    sim.drive(10, "/top/a", '1');
    sim.run_to(20);
    close();
    mfli_set_toggle_report_status();
    mfli_start(nullptr);
    mfli_process_event(element_of("/top/a"));
    mfli_reset(nullptr);
    mfli_update_event_count(nullptr);  // passes over what was marked before
    EXPECT_EQ(mfli_window_time, 0);
    EXPECT_EQ(mfli_start_time, 20);
    EXPECT_EQ(mfli_stop_time, 20);
    EXPECT_THAT(activity(),
                ElementsAre("/top/a 0 0 0 0 0 2", "0:/top/n 0 0 0 0 0 2", "1:/top/n 0 0 0 0 0 2"));
    open();
    sim.run_to(25);
    close();
    EXPECT_EQ(mfli_window_time, 5);
    EXPECT_THAT(activity(),
                ElementsAre("/top/a 0 5 0 0 0 2", "0:/top/n 5 0 0 0 0 2", "1:/top/n 5 0 0 0 0 2"));
}

// Commands within a time step: what was marked before them is passed over afterwards.
TEST_F(Window, ClosesOverAPendingCount) {
    sim.set("/top/a", '0');
    open();
    sim.run_to(10);
    mfli_process_event(element_of("/top/a"));
    mfli_stop(nullptr);
    EXPECT_EQ(*mfli_dirty_mark(element_of("/top/a")), 0);
    sim.run_to(30);
    mfli_update_event_count(nullptr);
    EXPECT_THAT(activity(), ElementsAre("/top/a 10 0 0 0 0 2", "0:/top/n 10 0 0 0 0 2",
                                        "1:/top/n 10 0 0 0 0 2"));
    // Marked before a stop and again after a start of the same step: counted once.
    mfli_start(nullptr);
    mfli_process_event(element_of("/top/a"));
    mfli_stop(nullptr);
    mfli_start(nullptr);
    mfli_process_event(element_of("/top/a"));
    mfli_update_event_count(nullptr);
    sim.run_to(40);
    close();
    EXPECT_EQ(activity()[0], "/top/a 20 0 0 0 0 2");
}

TEST_F(Window, ThatEndsBeforeItBeganHasNoLength) {
    sim.run_to(100);
    for (const int warned : {1, 0}) {
        mfli_start(nullptr);
        mfli_start_time = 150;
        sim.lines();
        mfli_stop(nullptr);
        Lines messages = sim.lines();
        if (warned != 0) {
            EXPECT_THAT(messages[0],
                        "Warning (KLVA-PWR): System time overflow at time 100.000000, "
                        "start_time 150.000000");
            messages.erase(messages.begin());
        }
        EXPECT_THAT(messages, ElementsAre("Information (KLVA-PWR): Turned off counting window at "
                                          "time 100.000000"));
        EXPECT_EQ(mfli_window_time, 0);
    }
    mfli_set_toggle_report_status();
    mfli_reset(nullptr);
    EXPECT_EQ(mfli_overflow_flag, 1);
}

}  // namespace
