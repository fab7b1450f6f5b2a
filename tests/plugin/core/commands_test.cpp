// SPDX-License-Identifier: Apache-2.0
// The plug-in as a simulator sees it: loaded, given command lines, and asked to clean up. Every
// message is compared. The order of commands is tried by tests/system/test_order.py.
#include "plugin/core/entry.h"

#include "tests/plugin/recorder.h"

#include <csignal>

using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;

namespace {

// A command line and all that it must print.
struct Step {
    const char *line;
    Lines messages;
};

class Commands : public ::testing::Test {
  protected:
    Commands() {
        mfli_window_active = 0;
        const wf::Type *logic = sim.types.std_logic();
        sim.signal("/top/clk", logic);
        sim.signal("/top/bus", sim.types.array(logic, 1, 0));
        sim.signal("/top/u1/q", logic);
        sim.signal("/top/u1/v/w", logic);
        sim.signal("/top/u10/q", logic);
        sim.start(swfli_init);
        start_up = sim.lines();
    }
    ~Commands() override {
        sim.quit();
        mfli_window_active = 0;
    }
    void expect(const std::vector<Step> &steps) {
        for (const Step &step : steps) {
            EXPECT_THAT(sim.output_of(step.line), ElementsAreArray(step.messages)) << step.line;
        }
    }

    wf::test::StrictSimulator sim;
    Lines start_up;
};

const char *const completed = "Information (KLVA-PWR): Completed set_toggle_region";
const char *const policy_done = "Information (KLVA-PWR): Net monitoring policy done";
const char *const bad_level = "Error (KLVA-PWR): incorrect arguments to toggle_debug_level";

TEST_F(Commands, AreRegisteredInOrderWithTheStartUpLine) {
    Lines names;
    for (const wf::Command &command : sim.session().commands()) {
        names.push_back(command.name);
    }
    EXPECT_THAT(names,
                ElementsAre("toggle_debug_level", "set_net_monitoring_policy", "set_toggle_region",
                            "toggle_start", "toggle_stop", "toggle_reset", "toggle_report",
                            "read_rtl_saif", "toggle_interrupt"));
    EXPECT_THAT(start_up, ElementsAre("Kelvara power code initialized and linked successfully"));
}

TEST_F(Commands, SetTheDebugLevelBeforeJudgingIt) {
    const struct {
        const char *line;
        int level;
        Lines messages;
    } rows[] = {
        {"toggle_debug_level 3", 3, {"Setting debug level to 3"}},
        {"toggle_debug_level", 0, {"Setting debug level to 0"}},
        {"toggle_debug_level   2abc", 2, {"Setting debug level to 2"}},
        {"toggle_debug_level 010", 10, {"Setting debug level to 10"}},
        {"toggle_debug_level abc", 0, {"Setting debug level to 0"}},
        {"toggle_debug_level -1", -1, {bad_level}},
        {"toggle_debug_level 99999999999", 2147483647, {"Setting debug level to 2147483647"}},
    };
    for (const auto &row : rows) {
        EXPECT_THAT(sim.output_of(row.line), ElementsAreArray(row.messages)) << row.line;
        EXPECT_EQ(mfli_debug_level, row.level) << row.line;
    }
    char other[] = "debug 4";
    sim.session().commands()[0].function(other);
    EXPECT_THAT(sim.lines(),
                ElementsAre("Error (KLVA-PWR): unexpected command name", std::string(bad_level)));
    EXPECT_EQ(mfli_debug_level, 2147483647);
    mfli_debug_level = 0;
}

volatile std::sig_atomic_t interrupts = 0;

TEST_F(Commands, InterruptTheSimulatorInAnyState) {
    auto *before = std::signal(SIGINT, [](int) { interrupts = interrupts + 1; });
    expect({{"toggle_interrupt", {}}, {"set_toggle_region /top", {completed}}});
    expect({{"toggle_interrupt now", {}}});
    std::signal(SIGINT, before);
    EXPECT_EQ(interrupts, 2);
}

TEST_F(Commands, RefuseARegionInAnOpenWindow) {
    mfli_set_toggle_start_status();
    expect({{"set_toggle_region /top",
             {"Error (KLVA-PWR): set_toggle_region must be done before toggle_start."}}});
}

std::string not_found(const std::string &argument) {
    return "Warning (KLVA-PWR): Could not find signal or region for argument " + argument +
           ", Skipping";
}

TEST_F(Commands, ChooseRegionsAndSignals) {
    expect({{"set_toggle_region", {"Set_toggle_region must have at least one argument"}},
            {"set_toggle_region ,", {"Set_toggle_region must have at least one argument"}},
            {"set_toggle_region /no", {not_found("/no"), completed}}});
    EXPECT_EQ(mfli_monitor_table, nullptr);
    expect({{"set_toggle_region /no /top/bus(9) /top/u1 top/bus(0) /top/u10 /top",
             {not_found("/no"),
              "Warning (KLVA-PWR): could not find valid array element for signal /top/bus(9)",
              not_found("/top/bus(9)"), completed}}});
    EXPECT_THAT(watched(), ElementsAre("/top/bus(0) 0/1", "/top/u1/q 0/1", "/top/u1/v/w 0/1"));
}

TEST(Restart, OfASimulatorThatKeepsTheLibraryBeginsAnew) {
    for (const bool calls_back : {true, false, true}) {
        wf::test::StrictSimulator sim;
        sim.answers.calls_back_at_quit = calls_back;
        sim.signal("/top/clk", sim.types.std_logic());
        sim.start(swfli_init);
        for (const Step &step : std::vector<Step>{
                 {"set_toggle_region /top", {completed}},
                 {"toggle_start",
                  {"Information (KLVA-PWR): Turned on counting window at time 0.000000"}}}) {
            sim.lines();
            EXPECT_THAT(sim.output_of(step.line), ElementsAreArray(step.messages)) << step.line;
        }
        EXPECT_THAT(watched(), ElementsAre("/top/clk 0/1"));
        sim.drive(3, "/top/clk", '1');
        sim.run_to(9);
        add_to_policy_table(sim.region_handle("/top"), MFLI_POLICY_OFF);
        mfli_set_read_rtl_status();
        EXPECT_EQ(mfli_window_time, 0.0);
        mfli_window_time = 5.0;
    }
    mfli_window_active = 0;
}

TEST_F(Commands, SetPolicies) {
    const char *const too_few =
        "Error (KLVA-PWR): set_net_monitoring_policy must have at least two arguments";
    const char *const first = "Error (KLVA-PWR): First argument must be \"on\" or \"off\"";
    expect({{"set_net_monitoring_policy", {too_few, policy_done}},
            {"set_net_monitoring_policy on", {too_few, policy_done}},
            {"set_net_monitoring_policy on   ", {too_few, policy_done}},
            {"set_net_monitoring_policy /top on", {first, policy_done}},
            {"set_net_monitoring_policy onn /top", {first, policy_done}},
            {"set_net_monitoring_policy OFF /top/u1 /no Rtl_On /top/u1/v  ",
             {"Warning (KLVA-PWR): Could not find Region /no; Skipping", policy_done}},
            // The first policy of a region stands.
            {"set_net_monitoring_policy on /top/u1", {policy_done}},
            {"toggle_debug_level 2", {"Setting debug level to 2"}},
            {"set_net_monitoring_policy on off /top/u1/v ON /top",
             {"Found Region /top/u1/v", "Found Region /top",
              "Information (KLVA-PWR): Region based policy table", "/top/u1 -- 1", "/top/u1/v -- 3",
              "/top -- 2", policy_done}},
            {"toggle_debug_level", {"Setting debug level to 0"}},
            {"set_toggle_region /top", {completed}}});
    // /top/u10 begins with /top/u1, so it is off too.
    EXPECT_THAT(watched(), ElementsAre("/top/clk 0/1", "/top/bus(1) 0/1", "/top/bus(0) 0/1",
                                       "/top/u1/v/w 0/1"));
}

}  // namespace
