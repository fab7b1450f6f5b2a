// SPDX-License-Identifier: Apache-2.0
// Scripts in the shell: running time, errors and where they are, quitting, nested scripts, the
// interrupt key, the transcript, and a host that suspends the script.
#include "host/shell/shell.h"

#include <gmock/gmock.h>

#include <csignal>

#include "host/shell/interrupt.h"
#include "tests/host/shell/shell_fixture.h"

namespace wf::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

std::vector<std::string> command_lines;

void record_line(void *line) {
    command_lines.emplace_back(static_cast<char *>(line));
}

void register_commands(mtiRegionIdT, char *, mtiInterfaceListT *, mtiInterfaceListT *) {
    static char one[] = "toggle_one";
    static char puts_again[] = "find";
    mti_AddCommand(one, record_line);
    mti_AddCommand(puts_again, record_line);
}

TEST_F(ShellTest, RunMovesTimeAndNowTellsIt) {
    struct Row {
        const char *command;
        const char *now;
        const char *shown;
    };
    control.data_end = 5000;
    control.end = RunEnd::end_of_data;  // the note depends on the time, not on this alone
    const Row rows[] = {
        {"run 100", "100 ns", ""},
        {"run 1 us", "1100 ns", ""},
        {"run 0.0004us", "1100 ns",
         "Warning: \"0.0004us\" is not a whole number of ticks of 1 ns; rounded to 0 ns\n"},
        {"run [expr {2 * 100}]ns", "1300 ns", ""},
        {"run", "1400 ns", ""},
        {"run 5 us", "5000 ns", "Note: run stopped at 5 us, the end of the data\n"},
        {"run -all", "5000 ns", ""},
    };
    for (const Row &row : rows) {
        EXPECT_EQ(run(row.command), ScriptEnd::done) << row.command;
        EXPECT_EQ(shown(), row.shown) << row.command;
        EXPECT_EQ(result_of("now"), row.now) << row.command;
    }
    EXPECT_EQ(control.limits.back(), run_to_end);
}

TEST_F(ShellTest, MistakesAreToldOnceWithTheirPlace) {
    const std::string inner = write_file("inner.tcl", "proc p {} {\n  nonsense 1\n}\n\np\n");
    const std::string outer = write_file("outer.tcl", "set x 1\ndo inner.tcl\n");
    const std::pair<std::string, std::string> rows[] = {
        {"set a 1\nrun -step", "test:2: bad option \"-step\": must be -all"},
        {"restart -all",
         "test:1: bad option \"-all\": must be -force, -nobreakpoint, -nolist, -nolog, or "
         "-nowave"},
        {"force -deposit /tb/clk 1", "test:1: force: a replay has no forced values"},
        {"add wave *", "test:1: add: a replay has no wave, list or log windows"},
        {"nolog -r /*", "test:1: nolog: a replay has no signal log"},
        {"bp top.v 12", "test:1: bp: a replay has no breakpoints"},
        {"run 5 apples",
         "test:1: run: expected a unit (fs, ps, ns, us, ms, s, min, hr), got \"apples\" in \"5 "
         "apples\""},
        {"run 9223372036854775807",
         "test:1: run: the time \"9223372036854775807\" is more than the simulator can count"},
        {"puts [nonsense]", "test:1: invalid command name \"nonsense\""},
        {"do " + outer, inner + ":5: invalid command name \"nonsense\""},
        {"do " + path("none.tcl"),
         "test:1: do: cannot read " + path("none.tcl") + ": No such file or directory"},
        {"now 5", "test:1: wrong # args: should be \"now\""},
        {"quit -code 256", "test:1: quit: expected a status from 0 to 255, got \"256\""},
        {"quit -f -sim",
         "test:1: quit: -sim is not offered, as a run has one design; quit without it ends the "
         "run"},
        {"quit please", "test:1: usage: quit [-f] [-code STATUS]"},
        {"transcript fly",
         "test:1: usage: transcript file [NAME] | transcript on | transcript off"},
        {"transcript file /nowhere/x",
         "test:1: /nowhere/x: cannot open the transcript: No such file or directory"},
        {"puts {unfinished", "test:1: missing close-brace"},
    };
    for (const auto &[commands, message] : rows) {
        EXPECT_EQ(run(commands), ScriptEnd::failed) << commands;
        EXPECT_EQ(shown(), "Error: " + message + "\n");
    }
    EXPECT_EQ(shell().run_file(outer, {}), ScriptEnd::failed);
    EXPECT_EQ(shown(), "Error: " + inner + ":5: invalid command name \"nonsense\"\n");
}

TEST_F(ShellTest, QuitEndsEveryScriptPastEveryCatch) {
    const std::pair<const char *, int> rows[] = {
        {"quit", 0},
        {"quit -f -code 7; puts on", 7},
        {"exit 300", 44},
        {"proc p {} { catch {quit -code 3}; puts on }; p; puts on", 3},
        {"foreach i {1 2} { try { quit -code 4 } finally { puts on } }", 4},
    };
    for (const auto &[commands, code] : rows) {
        Transcript transcript(nullptr);
        MessageWatch watch(transcript);
        UsedFiles files;
        Shell shell(Simulation{sim.session(), control, transcript, watch, files});
        EXPECT_EQ(shell.run_text(commands, "test"), ScriptEnd::quit) << commands;
        EXPECT_EQ(shell.exit_status(ScriptEnd::quit), code) << commands;
    }
    const std::string nested = write_file("nested.tcl", "quit -code 5\nputs on\n");
    EXPECT_EQ(shell().run_file(write_file("run.tcl", "catch {do nested.tcl}\nputs on\n"), {}),
              ScriptEnd::quit);
    EXPECT_EQ(shell().exit_status(ScriptEnd::quit), 5);
    EXPECT_EQ(shown(), "");
}

TEST_F(ShellTest, ScriptsNestAndKeepTheirArgumentsApart) {
    write_file("inner.tcl", "puts \"inner $argc $1 [info exists 2]\"\nset kept 1\n");
    const std::string outer = write_file(
        "outer.tcl", "puts \"outer $argc $argv $2\"\ndo inner.tcl x\nputs \"outer $1 $2 $kept\"\n");
    EXPECT_EQ(shell().run_file(outer, {"a b", "c"}), ScriptEnd::done);
    EXPECT_EQ(shown(), "outer 2 {a b} c c\ninner 1 x 1\nouter a b c 1\n");
    EXPECT_EQ(result_of("list [info exists 1] [info exists argc]"), "0 0");
}

TEST_F(ShellTest, PluginCommandsGetTheirLineAsTclLeavesIt) {
    command_lines.clear();
    shell();
    sim.start(register_commands);  // after the shell was made; "find" takes the shell's place
    run("set region /top/u1; toggle_one  ${region}(3)\t{/top/bus(3)} \"a  b\" [string repeat x 3]");
    run("toggle_one; find all");
    EXPECT_THAT(command_lines, ElementsAre("toggle_one /top/u1(3) /top/bus(3) a  b xxx",
                                           "toggle_one", "find all"));
    EXPECT_THAT(shell().command_names("toggle"), ElementsAre("toggle_one"));
}

TEST_F(ShellTest, InterruptEndsScriptsPastEveryCatch) {
    catch_interrupts(OnInterrupt::record);
    for (const char *loop : {"while 1 {}", "while 1 {catch {while 1 {}}}", "vwait forever"}) {
        EXPECT_EQ(run(std::string("puts a; exec kill -INT [pid]; ") + loop),
                  ScriptEnd::interrupted);
        EXPECT_EQ(shown(), "a\nError: test:1: interrupted\n");
        EXPECT_EQ(*interrupt_flag(), 0);
        EXPECT_EQ(shell().exit_status(ScriptEnd::interrupted), 130);
    }
    std::signal(SIGINT, SIG_DFL);
}

TEST_F(ShellTest, InterruptEndsOneRunAndThenTheScript) {
    catch_interrupts(OnInterrupt::record);
    control.end = RunEnd::interrupted;
    control.data_end = 300;
    const std::string note = "Note: interrupted at 300 ns\n";
    EXPECT_EQ(run("run 1us\nputs on"), ScriptEnd::done);
    EXPECT_EQ(shown(), note + "on\n");
    EXPECT_EQ(shell().exit_status(ScriptEnd::done), 130);
    shell().forget_interruption();
    EXPECT_EQ(shell().run_file(write_file("run.tcl", "run 5\ncatch {run 5}\nputs on\n"), {}),
              ScriptEnd::interrupted);
    EXPECT_EQ(shown(), note + "Error: " + path("run.tcl") + ":2: interrupted at 300 ns\n");
    EXPECT_EQ(*interrupt_flag(), 0);
    std::signal(SIGINT, SIG_DFL);
}

TEST_F(ShellTest, TranscriptFileHoldsWhatTheScreenShows) {
    const std::string file = path("out.log");
    run("puts before; transcript file " + file +
        "; puts one; puts -nonewline stdout two\n"
        "run 1.5; transcript off; puts hidden; transcript on; puts \"three \\u20ac\"");
    EXPECT_EQ(result_of("transcript file"), file);
    EXPECT_EQ(result_of("transcript"), "on");
    result_of("transcript file {}; puts after");
    const std::string warning =
        "Warning: \"1.5\" is not a whole number of ticks of 1 ns; rounded to 2 ns\n";
    EXPECT_EQ(shown(), "before\none\ntwo\n" + warning + "hidden\nthree \u20ac\nafter\n");
    EXPECT_EQ(read_file(file), "one\ntwo\n" + warning + "three \u20ac\n");
    EXPECT_EQ(run("transcript file /dev/full; puts x"), ScriptEnd::done);
    EXPECT_EQ(run("transcript file {}"), ScriptEnd::failed);
    EXPECT_THAT(shown(), HasSubstr("/dev/full: the transcript could not be written completely"));
}

TEST_F(ShellTest, DamageIsToldOnce) {
    control.end = RunEnd::damaged;
    control.data_end = 40;
    EXPECT_EQ(run("run 10us; run -all; puts [now]"), ScriptEnd::done);
    EXPECT_EQ(shown(),
              "Error: x.vcd:7: expected a time, got \"#\"\n"
              "Note: run stopped at 40 ns, the end of the data\n"
              "Note: run stopped at 40 ns, the end of the data\n40 ns\n");
}

TEST_F(ShellTest, ScriptWaitsInRunWhereTheHostOwnsTheLoop) {
    control.suspends = true;
    write_file("inner.tcl", "puts \"inner [now]\"; run 20; puts \"inner [now]\"");
    const std::string script = write_file("run.tcl",
                                          "proc go t { run $t; return [now] }\nputs [go 100ns]\n"
                                          "do inner.tcl\nrun -all\nputs end\nrun 1\nputs on\n");
    EXPECT_EQ(run("coroutine script do " + script), ScriptEnd::done);
    EXPECT_EQ(shown(), "");
    const auto resume = [this](Ticks to) {
        control.move(to);
        return shell().run_text("script", "host");
    };
    EXPECT_EQ(resume(100), ScriptEnd::done);
    EXPECT_EQ(shown(), "100 ns\ninner 100 ns\n");
    EXPECT_EQ(resume(120), ScriptEnd::done);
    EXPECT_EQ(shown(), "inner 120 ns\n");
    EXPECT_EQ(resume(500), ScriptEnd::done);
    EXPECT_EQ(shown(), "end\n");
    EXPECT_THAT(control.limits, ElementsAre(100, 120, run_to_end, 501));
    control.end = RunEnd::interrupted;
    EXPECT_EQ(resume(501), ScriptEnd::done);
    EXPECT_EQ(shown(), "Note: interrupted at 501 ns\non\n");
    // A script that is never resumed goes with its shell.
    run("coroutine script do " + script);
}

}  // namespace
}  // namespace wf::test
