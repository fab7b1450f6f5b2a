// SPDX-License-Identifier: Apache-2.0
// The counting rules, and the two stages of a time step.
#include "plugin/monitor/value_change.h"

#include "tests/plugin/recorder.h"

using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

struct Outcome {
    int state;
    double tc;
    double ig;
};

// By state and new value: 0, 1, X.
const Outcome outcomes[5][3] = {
    {{0, 0, 0}, {1, 1, 0}, {3, 0, 0}}, {{0, 1, 0}, {1, 0, 0}, {4, 0, 0}},
    {{0, 0, 0}, {1, 0, 0}, {2, 0, 0}}, {{0, 0, 1}, {1, 1, 0}, {3, 0, 0}},
    {{0, 1, 0}, {1, 0, 1}, {4, 0, 0}},
};

TEST(CountingRules, CoverEveryStateAndValue) {
    for (int state = 0; state < 5; ++state) {
        for (int value = 0; value < 3; ++value) {
            BitActivity bit{};
            bit.state = state;
            mfli_update_saif_toggles_and_state(&bit, value);
            const Outcome &expected = outcomes[state][value];
            EXPECT_EQ(bit.state, expected.state) << state << ' ' << value;
            EXPECT_EQ(bit.tc, expected.tc) << state << ' ' << value;
            EXPECT_EQ(bit.ig, expected.ig) << state << ' ' << value;
        }
    }
    for (const int beyond : {5, 1000, -1}) {
        BitActivity bit{};
        bit.state = beyond;
        mfli_update_saif_toggles_and_state(&bit, 1);
        EXPECT_EQ(bit.state, beyond);
        EXPECT_EQ(bit.tc + bit.ig, 0.0);
    }
}

TEST(CountingRules, CreditTheStateThatWas) {
    BitActivity bit{};
    for (const int state : {0, 1, 2, 3, 4, 7}) {
        bit.state = state;
        mfli_update_saif_timing(&bit, 1 << state);
    }
    EXPECT_EQ(bit.t0, 1);
    EXPECT_EQ(bit.t1, 2);
    EXPECT_EQ(bit.tx, 4 + 8 + 16 + 128);
}

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
        {"HXW-1", "0 10 40 0 0"}, {"1U0U1", "10 20 20 2 0"},
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

TEST_F(Recorder, CountsIntegersBitByBit) {
    sim.signal("/top/n", sim.types.integer("n", 0, 7));
    sim.signal("/top/e", sim.types.enumeration("e", {"idle", "run", "stop"}));
    watch("/top");
    sim.set("/top/n", 5);
    open();
    sim.drive(10, "/top/n", 6);
    sim.drive(30, "/top/n", 0);
    sim.drive(30, "/top/e", "stop");
    sim.run_to(60);
    close();
    EXPECT_THAT(activity(), ElementsAre("0:/top/n 50 10 0 1 0 2", "1:/top/n 40 20 0 2 0 2",
                                        "2:/top/n 30 30 0 1 0 2", "0:/top/e 60 0 0 0 0 2",
                                        "1:/top/e 30 30 0 1 0 2"));
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

TEST_F(Recorder, IgnoresEventsOutsideAWindow) {
    sim.signal("/top/s", sim.types.std_logic());
    watch("/top");
    mfli_debug_level = 4;
    sim.drive(5, "/top/s", '1');
    sim.settle();
    EXPECT_THAT(sim.lines(), IsEmpty());
    EXPECT_EQ(*mfli_dirty_mark(element_of("/top/s")), 0);
    EXPECT_THAT(activity(), ElementsAre("/top/s 0 0 0 0 0 2"));
}

}  // namespace
