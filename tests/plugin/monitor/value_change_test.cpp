// SPDX-License-Identifier: Apache-2.0
// The counting rules, and the two stages of a time step.
#include "plugin/monitor/value_change.h"

#include "tests/plugin/recorder.h"

using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

// One std_logic, 10 ticks between values, from toggle_start to 10 ticks behind the last value.
TEST_F(Recorder, CountsTheWayOfABit) {
    const struct {
        const char *values;  // the first is there when the window opens
        const char *figures;
    } rows[] = {
        {"0", "10 0 0 0 0"},      {"01", "10 10 0 1 0"},     {"010", "20 10 0 2 0"},
        {"0X0", "20 0 10 0 1"},   {"0X1", "10 10 10 1 0"},   {"1X1", "0 20 10 0 1"},
        {"1Z0", "10 10 10 1 0"},  {"X0", "10 0 10 0 0"},     {"U1", "0 10 10 0 0"},
        {"LH", "0 0 20 0 0"},     {"0XZ0", "20 0 20 0 1"},   {"X0X0", "20 0 20 0 1"},
        {"HXW-1", "0 10 40 0 0"}, {"1U0U1", "10 20 20 2 0"}, {"1XZ1", "0 20 20 0 1"},
    };
    sim.signal("/top/s", sim.types.std_logic());
    watch("/top");
    for (const auto &row : rows) {
        sim.set("/top/s", row.values[0]);
        open();
        for (const char *value = row.values + 1; *value != '\0'; ++value) {
            sim.run(10);
            sim.set("/top/s", *value);
        }
        sim.run(10);
        close();
        EXPECT_THAT(activity(), ElementsAre(std::string("/top/s ") + row.figures + " 2"))
            << row.values;
        reset_saif_calculations();
    }
}

TEST_F(Recorder, CountsTheEndOfAStepOnly) {
    for (const char *name : {"/top/a", "/top/b", "/top/c"}) {
        sim.signal(name, sim.types.std_logic());
        sim.set(name, '0');
    }
    watch("/top");
    mfli_debug_level = 2;
    open();
    sim.lines();
    sim.drive(10, "/top/a", '1');
    sim.set("/top/b", '1');
    // A further delta cycle: every event is tracked, an element is listed once.
    mfli_process_event(element_of("/top/a"));
    sim.set("/top/a", '0');
    sim.settle();
    EXPECT_THAT(
        sim.lines(),
        ElementsAre("Processing event on signal: /top/a", "Processing event on signal: /top/a",
                    "Processing event on signal: /top/b", "Update SA = /top/a; Scalar/Enum; size 1",
                    "Update SA = /top/b; Scalar/Enum; size 1",
                    "Time 10.000000, trash_list 2, changed_list 0"));
    // The undone pulse is no toggle, but the time up to it is credited and refreshed.
    EXPECT_THAT(activity(),
                ElementsAre("/top/a 10 0 0 0 0 0", "/top/b 10 0 0 1 0 1", "/top/c 0 0 0 0 0 0"));
    // Counted in the order of their events, although c's item of the list is a new one.
    sim.drive(15, "/top/a", '1');
    sim.set("/top/b", '0');
    sim.set("/top/c", '1');
    sim.settle();
    const Lines counted = sim.lines();
    EXPECT_THAT(Lines(counted.begin() + 3, counted.end()),
                ElementsAre("Update SA = /top/a; Scalar/Enum; size 1",
                            "Update SA = /top/b; Scalar/Enum; size 1",
                            "Update SA = /top/c; Scalar/Enum; size 1",
                            "Time 15.000000, trash_list 3, changed_list 0"));
    mfli_update_event_count(nullptr);
    EXPECT_THAT(sim.lines(), IsEmpty());
    mfli_debug_level = 3;
    sim.drive(20, "/top/a", '0');
    sim.settle();
    EXPECT_THAT(sim.lines(), ::testing::Contains(" Printing mfli_monitor_table"));
    mfli_debug_level = 0;
    sim.run_to(25);
    close();
    EXPECT_THAT(activity(),
                ElementsAre("/top/a 20 5 0 2 0 2", "/top/b 20 5 0 2 0 2", "/top/c 15 10 0 1 0 2"));
}

}  // namespace
