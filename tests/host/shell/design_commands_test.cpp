// SPDX-License-Identifier: Apache-2.0
// find, examine, environment, radix and the completion of words, over one design with every kind of
// name and value.
#include <gmock/gmock.h>

#include "host/shell/completion.h"
#include "host/shell/radix.h"
#include "tests/host/shell/shell_fixture.h"

namespace wf::test {
namespace {

using testing::ElementsAre;

class DesignCommandsTest : public ShellTest {
  protected:
    DesignCommandsTest() {
        TypeTable &types = sim.types;
        const Type *logic = types.std_logic();
        const Type *byte = types.array(logic, 7, 0);
        const Type *state = types.enumeration("state", {"idle", "busy", "done"});
        const Type *entry = types.record(
            "entry",
            {{"flag", types.bit()}, {"phase", state}, {"count", types.integer("n", 0, 9)}});
        sim.region("/pkg", RegionKind::package);
        sim.signal("/tb/clk", logic);
        sim.signal("/tb/dut/clk", logic, Mode::in);
        sim.signal("/tb/dut/q", byte, Mode::out);
        sim.signal("/tb/dut/pad", logic, Mode::inout);
        sim.signal("/tb/dut/u[0]/state", state);
        sim.signal("/tb/dut/u[1]/state", state);
        sim.signal("/tb/dut/u[1]/mem", types.array(byte, 0, 1));
        sim.signal("/tb/dut/log", types.array(entry, 1, 2));
        sim.signal("/tb/level", types.real());
        sim.set("/tb/clk", '1');
        sim.set("/tb/dut/q", "010110Z1");
        sim.set("/tb/dut/u[1]/state", "done");
        sim.set("/tb/dut/u[1]/mem(1)", "1111000H");
        sim.set("/tb/dut/log(2).phase", "busy");
        sim.set("/tb/dut/log(2).count", 7);
        sim.set("/tb/level", 2.5);
    }
};

TEST_F(DesignCommandsTest, FindMatchesLevelByLevel) {
    const std::pair<const char *, const char *> rows[] = {
        {"regions /*", "/pkg /tb"},
        {"regions *", "/tb/dut"},
        {"regions /tb/dut/*", "{/tb/dut/u[0]} {/tb/dut/u[1]}"},
        {"regions {/tb/dut/u[1]}", "{/tb/dut/u[1]}"},  // letter for letter although [] is a set
        {"regions -r u*", "{/tb/dut/u[0]} {/tb/dut/u[1]}"},
        {"regions /t?", "/tb"},
        {"regions tb/d*", "/tb/dut"},  // not below the top region, so from the roots
        {"regions /tb/*/*/*", ""},
        {"signals *", "/tb/clk /tb/level"},
        {"signals /*/clk", "/tb/clk"},
        {"signals -r /tb/clk", "/tb/clk /tb/dut/clk"},
        {"signals -r /tb/dut/s*", "{/tb/dut/u[0]/state} {/tb/dut/u[1]/state}"},
        {"signals dut/* -in -out", "/tb/dut/clk /tb/dut/q"},
        {"signals -ports -r *", "/tb/dut/clk /tb/dut/q /tb/dut/pad"},
        {"signals -inout -r *", "/tb/dut/pad"},
        {"signals -internal dut/*", "/tb/dut/log"},
        {"signals /*", ""},
        {"nets {dut/u\\[1\\]/*}", "{/tb/dut/u[1]/state} {/tb/dut/u[1]/mem}"},
    };
    for (const auto &[arguments, found] : rows) {
        EXPECT_EQ(result_of(std::string("find ") + arguments), found) << arguments;
    }
    for (const char *wrong : {"", "signals", "wires *", "signals -fast *", "signals a b"}) {
        EXPECT_EQ(run(std::string("find ") + wrong), ScriptEnd::failed) << wrong;
    }
}

TEST_F(DesignCommandsTest, ExamineShowsValues) {
    const std::pair<const char *, const char *> rows[] = {
        {"/tb/clk", "1"},
        {"dut/clk", "U"},
        {"/tb/dut/q", "010110Z1"},
        {"/tb/dut/q(6)", "1"},
        {"-hex /tb/dut/q", "5X"},
        {"-oct /tb/dut/q", "13X"},
        {"-radix unsigned {/tb/dut/u[1]/mem(1)}", "241"},
        {"-radix decimal {/tb/dut/u[1]/mem(1)}", "-15"},
        {"{/tb/dut/u[1]/mem}", "UUUUUUUU 1111000H"},
        {"{/tb/dut/u[1]/state}", "done"},
        {"/tb/dut/log(2)", "0 busy 7"},
        {"/tb/dut/log(2).phase", "busy"},
        {"/tb/level", "2.5"},
        {"/tb/clk /tb/dut/log(2) /tb/level", "1 {0 busy 7} 2.5"},
    };
    for (const auto &[arguments, value] : rows) {
        EXPECT_EQ(result_of(std::string("examine ") + arguments), value) << arguments;
    }
    for (const char *wrong : {"", "-radix", "-radix roman /tb/clk", "-hex"}) {
        EXPECT_EQ(run(std::string("examine ") + wrong), ScriptEnd::failed) << wrong;
    }
    EXPECT_EQ(result_of("radix -hex; list [radix] [examine dut/q] [examine -bin dut/q]"),
              "hexadecimal 5X 010110Z1");
    EXPECT_EQ(result_of("radix symb; list [radix] [examine dut/q]"), "symbolic 010110Z1");
    shown();
    run("examine /tb/clk /tb/dut/q(8)");
    EXPECT_EQ(shown(), "Error: test:1: examine: no signal \"/tb/dut/q(8)\"\n");
}

TEST_F(DesignCommandsTest, TheEnvironmentIsWhereRelativePathsStart) {
    const std::pair<const char *, const char *> rows[] = {
        {"environment", "/tb"},
        {"env dut", "/tb/dut"},
        {"examine q", "010110Z1"},
        {"examine ../clk", "1"},
        {"find signals -in *", "/tb/dut/clk"},
        {"find regions ../d*", "/tb/dut"},
        {"environment u(1)", "/tb/dut/u[1]"},
        {"examine state", "done"},
        {"find signals ../../cl?", "/tb/clk"},
        {"environment ../..", "/tb"},
        {"env dut; catch {examine level}", "1"},  // nowhere but there
        {"env /", "/tb"},
    };
    for (const auto &[command, result] : rows) {
        EXPECT_EQ(result_of(command), result) << command;
    }
    for (const char *wrong : {"environment ..", "environment clk", "environment a b"}) {
        EXPECT_EQ(run(wrong), ScriptEnd::failed) << wrong;
    }
}

TEST_F(DesignCommandsTest, HalfTypedWordsAreCompleted) {
    struct Row {
        const char *before;
        const char *word;
        std::vector<std::string> words;
    };
    write_file("one.tcl", "");
    std::filesystem::create_directory(path("odd"));
    const Row rows[] = {
        {"", "exa", {"examine"}},
        {"puts ", "[exa", {"[examine"}},
        {"if 1 {", "exa", {"examine"}},
        {"examine ", "/", {"/pkg", "/tb"}},
        {"examine ", "/tb/d", {"/tb/dut"}},
        {"examine ", "/tb/dut", {"/tb/dut/"}},
        {"examine ", "/tb/", {"/tb/clk", "/tb/dut", "/tb/level"}},
        {"examine {", "/tb/dut/u", {"/tb/dut/u[0]", "/tb/dut/u[1]"}},
        {"examine {/tb/dut/u[1]/state} ", "dut/p", {"dut/pad"}},
        {"examine ", "/tb/none/", {}},
        {"examine ", "-o", {"-octal"}},
        {"examine -radix ", "o", {"octal"}},
        {"run 5; find ", "re", {"regions"}},
        {"find signals ", "-i", {"-in", "-inout", "-internal"}},
        {"set x [find signals ", "cl", {"clk"}},
        {"run ", "-", {"-all"}},
    };
    for (const auto &[before, word, words] : rows) {
        EXPECT_EQ(complete(shell(), before, word).words, words) << before << word;
    }
    const Completion files = complete(shell(), "do ", path("o"));
    EXPECT_THAT(files.words, ElementsAre(path("odd/"), path("one.tcl")));
    EXPECT_EQ(in_columns(files, 15), "odd/\none.tcl\n");
    EXPECT_EQ(in_columns(files, 17), "odd/     one.tcl\n");
}

TEST(Radix, TurnsBitsIntoDigits) {
    struct Row {
        const char *bits;
        const char *hex;
        const char *unsigned_decimal;
        const char *decimal;
    };
    static constexpr Row rows[] = {
        {"0", "0", "0", "0"},
        {"1", "1", "1", "-1"},
        {"10000000", "80", "128", "-128"},
        {"01111111", "7F", "127", "127"},
        {"1111111111111111111111111111111111111111111111111111111111111111", "FFFFFFFFFFFFFFFF",
         "18446744073709551615", "-1"},
        {"1000000000000000000000000000000000000000000000000000000000000000000", "40000000000000000",
         "73786976294838206464", "-73786976294838206464"},
    };
    for (const Row &row : rows) {
        EXPECT_EQ(in_radix(row.bits, Radix::hex), row.hex);
        EXPECT_EQ(in_radix(row.bits, Radix::unsigned_decimal), row.unsigned_decimal);
        EXPECT_EQ(in_radix(row.bits, Radix::decimal), row.decimal);
    }
    EXPECT_EQ(in_radix("HLLH1", Radix::hex), "13");
    EXPECT_EQ(in_radix("1ZZZZ010U", Radix::hex), "1ZX");
    EXPECT_EQ(in_radix("1Z", Radix::decimal), "X");
    EXPECT_EQ(in_radix("10Z", Radix::binary), "10Z");
    EXPECT_EQ(in_radix("{idle 0}", Radix::hex), "{idle 0}");
}

}  // namespace
}  // namespace wf::test
