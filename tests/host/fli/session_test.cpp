// SPDX-License-Identifier: Apache-2.0
// Sessions: loading plug-ins, commands, quitting, and the trace.
#include "host/fli/session.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <stdexcept>

#include "tests/support/memory_design.h"
#include "tests/support/scratch.h"

namespace wf::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::MatchesRegex;

const std::string good = TEST_PLUGIN_DIR "/good_plugin.so";

class SessionTest : public testing::Test {
  protected:
    SessionTest() { sim.signal("/top/clk", sim.types.bit()); }
    MemorySimulator sim;
};

TEST_F(SessionTest, LoadsAPluginAsASimulatorDoes) {
    std::vector<std::string> heard;
    sim.session().on_command([&heard](const Command &command) { heard.push_back(command.name); });
    ASSERT_EQ(sim.load("good_init", good), "");
    EXPECT_THAT(sim.lines(), ElementsAre("loaded at /top, without arguments"));
    EXPECT_THAT(heard, ElementsAre("echo_line"));
    const std::string line = "echo_line  a  b ";
    EXPECT_THAT(sim.output_of(line), ElementsAre("got {echo_line  a  b }"));
    EXPECT_EQ(line, "echo_line  a  b ") << "the plug-in cut a copy up";
    EXPECT_FALSE(sim.session().run_command("echo", "echo"));
    sim.set("/top/clk", '1');
    EXPECT_THAT(sim.lines(), IsEmpty()) << "it never runs by itself";
    sim.run_to(5);
    EXPECT_THAT(sim.lines(), ElementsAre("clk changed"));
    sim.quit();
    EXPECT_THAT(sim.lines(), ElementsAre("first to quit", "second to quit"));
    sim.quit();
    EXPECT_THAT(sim.lines(), IsEmpty());
}

TEST_F(SessionTest, SaysWhyAPluginCannotBeLoaded) {
    const std::string lacking = TEST_PLUGIN_DIR "/lacking_plugin.so";
    EXPECT_EQ(sim.load("lacking_init", lacking),
              "cannot load the plug-in \"" + lacking +
                  "\": it needs mti_Levitate, which this simulator does not offer");
    EXPECT_THAT(sim.load("init", "/nowhere/none.so"),
                MatchesRegex("cannot load the plug-in \"/nowhere/none.so\": .*No such file.*"));
    EXPECT_EQ(sim.load("bad_init", good),
              "the plug-in \"" + good + "\" has no function \"bad_init\"");
    const std::string broken = test::scratch_file("broken_plugin.so");
    std::ofstream(broken) << "not a library";
    EXPECT_THAT(sim.load("init", broken), HasSubstr("broken_plugin.so\": "));
    EXPECT_THAT(sim.lines(), IsEmpty());
}

TEST_F(SessionTest, ReplacesACommandAndAllowsOneSimulatorAtATime) {
    static int last = 0;
    mti_AddCommand(const_cast<char *>("twice"), [](void *) { last = 1; });
    mti_AddCommand(const_cast<char *>("twice"), [](void *) { last = 2; });
    sim.command("twice");
    EXPECT_EQ(last, 2);
    EXPECT_EQ(sim.session().commands().size(), 1U);
    EXPECT_THROW(MemorySimulator(), std::logic_error);
    EXPECT_EQ(Session::current(), &sim.session());
}

TEST_F(SessionTest, ReleasesWhatThePluginForgot) {
    mti_AddQuitCB([](void *) { mti_GetRegionFullName(mti_GetTopRegion()); }, nullptr);
    mti_NowIndirect(nullptr);
    sim.session().trace_to_console();
    sim.quit();
    EXPECT_EQ(sim.session().ledger.outstanding(), 0U);
    EXPECT_EQ(sim.lines().back(), "fli: 2 blocks were not released with mti_VsimFree");
}

}  // namespace
}  // namespace wf::test
