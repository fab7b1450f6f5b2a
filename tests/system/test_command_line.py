#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Word for word what the program answers to command lines, scripts from a pipe and interrupts."""

import array
import fcntl
import os
import pathlib
import re
import shutil
import signal
import subprocess
import termios
import time
import unittest

from programs import BUILD, WFSIM, FolderCase, run

HEADER = """$timescale 1 ns $end
$scope module tb $end
$var wire 1 ! clk $end
$scope module dut $end
$var wire 1 ! clk $end
$var wire 4 " q [3:0] $end
$upscope $end
$upscope $end
$enddefinitions $end
"""
EVENTS = '#0\n0!\nb0000 "\n#10\n1!\nb0001 "\n#20\n0!\n#30\n1!\nb0010 "\n#40\n0!\n'
START = "Kelvara power code initialized and linked successfully\n"
INFO = "Information (KLVA-PWR): "
SELECTED = INFO + "Completed set_toggle_region\n"
OPENED = INFO + "Turned on counting window at time %d.000000\n"
ENDED = "Note: run stopped at 40 ns, the end of the data\n"
STILL_OPEN = "Warning: the counting window is still open at the end; it is in no report\n"
MORE = "; wfsim -help tells more\n"
POLICY = INFO + "Net monitoring policy done\n"
READ = INFO + 'Reading rtl saif file "%s.fsaif" done.\n'
SKIPPED = "Warning (KLVA-PWR): could not find signal %s, skipping\n"
FORWARD = ["-saif", "o.saif", "-testbench", "/tb", "-rtl"]
FORWARD_TEXT = """(SAIFILE (SAIFVERSION "2.0") (DIRECTION "forward") (DESIGN) (DATE) (VENDOR)
(PROGRAM_NAME) (VERSION) (DIVIDER /)
(INSTANCE top (NET (q q) (q again) (gone gone))))
"""


def recorded(start, stop, note="", end=None):
    done = INFO + f'Report done, wrote file "o.saif" at time {stop}.000000\n'
    return (SELECTED + OPENED % start + note
            + INFO + f"Turned off counting window at time {stop}.000000\n"
            + (done if end is None else end))


# Refused before anything is opened: arguments, standard error.
REFUSED = [
    ([], "no waveform given" + MORE),
    (["t.vcd", "b.vcd"], "a second waveform: b.vcd" + MORE),
    (["t.vcd", "-wave"], "unknown option -wave" + MORE),
    (["t.vcd", "-do"], "-do needs a word after it" + MORE),
    (["t.vcd", "-saif", "a", "-saif", "b"], "-saif is given twice" + MORE),
    (["t.vcd", "-stop", "5", "-do", "now"], "-stop goes with -saif only" + MORE),
    (["t.vcd", "-saif", "a", "-do", "now"], "-saif and -do exclude each other" + MORE),
    (["t.vcd", "-saif", "a", "-testbench", "/tb"], "-testbench goes with -rtl only" + MORE),
    (["t.vcd", "-foreign", "init"], '-foreign: expected "function library", got "init"\n'),
    (["t.vcd", "--", "sim", "{}"], "a waveform and a command exclude each other: t.vcd" + MORE),
    (["--", "sim"], "the command has no {} for the waveform's path, and no -fifo names it" + MORE),
    (["-saif", "a", "--"], "no command after --" + MORE),
    (["t.vcd", "-fifo", "x"], "-fifo goes with -- COMMAND only" + MORE),
    (["--", "sim", "{}"], "the waveform is a command's, so commands need -do or -saif\n"),
    (["-", "-batch"], "the waveform is standard input, so commands need -do or -saif\n"),
    (["t.vcd", "-saif", "./t.vcd"], "-saif ./t.vcd: the same file as the waveform\n"),
    (["t.vcd", "-saif", "link.vcd"], "-saif link.vcd: the same file as the waveform\n"),
    (["t.vcd", "-saif", "o", "-rtl", "r.saif", "-trace=r.saif"],
     "-trace=r.saif: the same file as the forward file\n"),
    (["t.vcd", "-do", "run.tcl", "-l", "run.tcl"], "-l run.tcl: the same file as the script\n"),
    (["t.vcd", "-saif", "o", "-l", "o"], "-saif o: the same file as the transcript\n"),
]

# Arguments after the waveform, exit status, what the transcript shows after the plug-in's greeting.
ANSWERED = [
    (["-do", "puts [now]", "-quiet", "-do", "run 15; puts [now]"], 0, "0 ns\n15 ns\n"),
    (["-c", "-do", "run 10; puts [examine /tb/clk],[examine -hex dut/q]"], 0, "1,1\n"),
    (["-do", "set x 1\nputs $y"], 1, "Error: -do:2: can't read \"y\": no such variable\n"),
    (["-do", "gone.tcl"], 1, "Error: do: cannot read gone.tcl: No such file or directory\n"),
    (["-do", "toggle_interrupt; puts on"], 130, "Error: -do:1: interrupted\n"),
    (["-do", "set_toggle_region /tb; toggle_start"], 0, SELECTED + OPENED % 0 + STILL_OPEN),
    (["-do", "set_toggle_region /tb; toggle_start; run 10; toggle_stop; "
             "toggle_report o.saif 1.0e-9 /tb; toggle_start; toggle_reset"], 0,
     recorded(0, 10) + OPENED % 10 + INFO + "Resetting counting windows at time 10.000000\n"),
    (["-saif", "o.saif"], 0, recorded(0, 40)),
    (["-saif", "o.saif", "-start", "5", "-stop", "0.02us", "-instance", "dut", "-region",
      "/tb/dut/q(1)", "-region", "clk"], 0, recorded(5, 20)),
    (["-saif", "o.saif", "-stop", "1us"], 0, recorded(0, 40, ENDED)),
    (["-saif", "o.saif", "-start", "1.5ns"], 0,
     'Warning: "1.5ns" is not a whole number of ticks of 1 ns; rounded to 2 ns\n' + recorded(2, 40)),
    (["-saif", "o.saif", "-start", "41"], 1,
     SELECTED + ENDED + "Error: no report: the waveform ends at 40 ns, before -start\n"),
    (["-saif", "o.saif", "-start", "soon"], 2,
     'Error: expected a time such as 100, 100ns or 1.5 us, got "soon"\n'),
    (["-saif", "o.saif", "-unit", "5e-9"], 2, "Error: -unit: expected a power of ten from 1.0e-15 "
     'to 1.0 (seconds), got "5e-9"\n'),
    (["-saif", "o.saif", "-region", "/tb/y"], 2,
     "Error: no region or signal /tb/y in the waveform\n"),
    (["-saif", "a b.saif"], 2, "Error: \"a b.saif\" has a blank or a comma, where the plug-in's "
     "commands end a word\n"),
    (["-saif", "."], 1, "Error: .: cannot write the report: it is a folder\n"),
    (["-saif", "o.saif", "-policy", "maybe /tb"], 1,
     'Error (KLVA-PWR): First argument must be "on" or "off"\n' + POLICY),
    (["-saif", "o.saif", "-policy", "off /no"], 1,
     "Warning (KLVA-PWR): Could not find Region /no; Skipping\n" + POLICY),
    (["-saif", "o.saif", "-region", "/tb/dut", "-region", "/tb"], 2,
     "Error: -region /tb would be passed over, as its name and that of /tb/dut begin alike; name "
     "one region around both\n"),
    # Reports without a signal. The two clocks share their storage, but not their instance.
    (["-saif", "o.saif", "-region", "clk", "-instance", "dut"], 1,
     SELECTED + "Error: no report: nothing in dut is watched; what is watched lies in clk\n"),
    (["-saif", "o.saif", "-policy", "off /tb"], 1,
     POLICY + SELECTED + "Error: no report: nothing in /tb is watched under this policy\n"),
    ([*FORWARD, "none.fsaif"], 1, "Error (KLVA-PWR): Unable to open file none.fsaif\n"),
    ([*FORWARD, "."], 1, "Error: .: expected a forward SAIF file, got a folder\n"),
    ([*FORWARD, "empty.fsaif"], 1,
     "Error: empty.fsaif: expected a forward SAIF file, got an empty file\n"),
    ([*FORWARD, "cut.fsaif"], 1,
     READ % "cut" + "Error: cut.fsaif:3: expected a forward SAIF file, got a syntax error\n"),
    ([*FORWARD, "dut.fsaif"], 1, READ % "dut" + "Error: dut.fsaif: expected top as the outermost "
     "instance, got dut; its objects would not be found or lose their names\n"),
    (["-saif", "o.saif", "-rtl", "top.fsaif", "-testbench", "/tb/dut"], 0,
     READ % "top" + SKIPPED % "/tb/dut/gone" + recorded(0, 40)),
    ([*FORWARD, "top.fsaif"], 1, READ % "top" + SKIPPED % "/tb/q" + SKIPPED % "/tb/gone" + SELECTED
     + "Error: no report: nothing in /tb is watched, no object of top.fsaif either\n"),
    ([*FORWARD, "top.fsaif", "-policy", "on /tb"], 1,
     READ % "top" + POLICY + SKIPPED % "/tb/q" + SKIPPED % "/tb/gone" + SELECTED
     + "Error: no report: the design and the regions have no object of top.fsaif\n"),
    (["-do", "set_toggle_region /tb; toggle_start; run 10; toggle_stop; "
             "toggle_report t.vcd 1.0e-9 /tb; catch {transcript file ./t.vcd} x; puts $x"], 1,
     recorded(0, 10, end="Error: toggle_report: t.vcd: the same file as the waveform\n"
              "./t.vcd: the same file as the waveform\nError: 1 error was reported\n")),
]


class Folder(FolderCase):
    def setUp(self):
        super().setUp()
        (self.folder / "t.vcd").write_text(HEADER + EVENTS)
        for name, text in {"empty": "", "cut": FORWARD_TEXT[:-9], "top": FORWARD_TEXT,
                           "dut": FORWARD_TEXT.replace("top", "dut")}.items():
            (self.folder / f"{name}.fsaif").write_text(text)

    def expect(self, done, status, output, errors=""):
        self.assertEqual((done.returncode, done.stdout, done.stderr), (status, output, errors))

    def wfsim(self, *arguments, **more):
        more = more if "input" in more else more | {"stdin": subprocess.DEVNULL}
        return run(WFSIM, *arguments, folder=self.folder, **more)


class CommandLines(Folder):
    def test_refused_lines(self):
        (self.folder / "link.vcd").symlink_to("t.vcd")
        for name in ("run.tcl", "r.saif"):
            (self.folder / name).touch()
        for arguments, errors in REFUSED:
            with self.subTest(arguments):
                self.expect(self.wfsim(*arguments), 2, "", "wfsim: " + errors)
        self.assertEqual((self.folder / "t.vcd").read_text(), HEADER + EVENTS)

    def test_answered_lines(self):
        for arguments, status, output in ANSWERED:
            with self.subTest(arguments):
                # Options may stand on either side of the waveform.
                self.expect(self.wfsim("t.vcd", *arguments), status, START + output)
                self.expect(self.wfsim(*arguments, "t.vcd"), status, START + output)

    def test_several_top_modules_need_a_choice(self):
        tops = HEADER.replace("$endd", "$scope module glbl $end\n%s$upscope $end\n$endd")
        for variable, status, output in [
                ("", 0, recorded(0, 40)),  # a package, perhaps: the one with signals is meant
                ("$var wire 1 ~ gsr $end\n", 2,
                 "Error: several modules at the top; choose with -instance: /tb /glbl\n")]:
            with self.subTest(variable):
                (self.folder / "two.vcd").write_text(tops % variable + EVENTS)
                self.expect(self.wfsim("two.vcd", "-saif", "o.saif"), status, START + output)

    def test_scopes_nest_deeper_than_the_stack(self):
        depth = 200000
        nest = "$scope module s $end\n" * depth + "$upscope $end\n" * (depth + 1)
        (self.folder / "deep.vcd").write_text(HEADER.replace("$upscope $end\n", nest, 1) + EVENTS)
        self.expect(self.wfsim("deep.vcd", "-saif", "o.saif"), 0, START + recorded(0, 40))
        (self.folder / "deep.tcl").write_text("puts [llength [find signals -r clk]],"
                                              "[llength [find regions /tb/dut%s]]" % ("/s" * depth))
        self.expect(self.wfsim("deep.vcd", "-do", "deep.tcl"), 0, START + "2,1\n")

    def test_commands_from_standard_input(self):
        wrong = 'Error: <stdin>:%d: invalid command name "nonsense"\n'
        for commands, status, output in [
                ("proc p {} {\n puts [now]\n}\nrun 25\np\nnow\n", 0, "25 ns\n"),
                ("puts {a\nb}\nputs c", 0, "a\nb\nc\n"),
                ("now\n\nnonsense\nputs on\n", 1, wrong % 3),
                ("if 1 {\n  puts a\n}\n\nif 1 {\n puts b\n nonsense\n}\nputs c\n", 1,
                 "a\nb\n" + wrong % 5),
                ("puts a\nputs {b\n", 1, "a\nError: <stdin>:2: missing close-brace\n"),
                ("quit -code 9\nputs on\n", 9, "")]:
            with self.subTest(commands):
                self.expect(self.wfsim("t.vcd", input=commands), status, START + output)

    def test_the_plugin_is_found_where_installations_put_it(self):
        for program, library in (("bin", "lib"), ("flat", "flat")):
            with self.subTest(program):
                for name, file in ((program, WFSIM), (library, BUILD / "lib" / "libswfli.so")):
                    (self.folder / name).mkdir(exist_ok=True)
                    shutil.copy(file, self.folder / name)
                program_path = self.folder / program / "wfsim"
                done = run(program_path, "t.vcd", "-do", "puts ok", folder=self.folder)
                self.expect(done, 0, START + "ok\n")
                shutil.rmtree(self.folder / library)

    def test_transcript_file_and_trace(self):
        script = 'puts "a\u20ac"; set_toggle_region /tb/dut/q; puts stderr e; run 1.2'
        done = self.wfsim("t.vcd", "-l", "log", "-trace=calls", "-do", script)
        rounded = 'Warning: "1.2" is not a whole number of ticks of 1 ns; rounded to 1 ns\n'
        self.expect(done, 0, START + "a\u20ac\n" + SELECTED + rounded, "e\n")
        self.assertEqual((self.folder / "log").read_text(),
                         START + "a\u20ac\n" + SELECTED + "e\n" + rounded)
        calls = (self.folder / "calls").read_text()
        self.assertRegex(calls, r"(?m)^fli: .*mti_FindSignal\(/tb/dut/q\)")
        self.assertTrue(all(line.startswith("fli: ") for line in calls.splitlines()))
        done = self.wfsim("t.vcd", "-trace", "-do", "set_toggle_region /tb/dut/q")
        self.assertIn("mti_Sensitize(", done.stdout)

    def test_files_that_cannot_be_written(self):
        full = "/dev/full: the %s could not be written completely\n"
        rows = [("-l", "/nowhere/x", "/nowhere/x: cannot open the transcript: No such file or "
                 "directory\n"), ("-l", "/dev/full", full % "transcript"),
                ("-trace=/nowhere/x", None, "/nowhere/x: cannot open the trace: No such file or "
                 "directory\n"), ("-trace=/dev/full", None, full % "trace")]
        for option, word, errors in rows:
            with self.subTest(option):
                done = self.wfsim("t.vcd", "-do", "now", *filter(None, (option, word)))
                self.assertEqual((done.returncode, done.stderr), (1, "wfsim: " + errors))
        with open("/dev/full", "w", encoding="ascii") as disk:
            done = subprocess.run([WFSIM, "t.vcd", "-do", "now"], cwd=self.folder, stdout=disk,
                                  stderr=subprocess.PIPE, text=True, check=False)
        self.assertEqual((done.returncode, done.stderr),
                         (1, "wfsim: standard output could not be written completely\n"))


# Of wfsim -saif o.saif OPTIONS -- sh -c TEXT: options, text, status, output, errors. PATH is the
# FIFO's path. What follows the window is much more than a FIFO holds.
LONG = "t.vcd; seq 100 200000 | sed 's/^/#/'"
WRITERS = {
    "streams are its own": ([], "cat t.vcd >{}; cat; echo told >&2", 0,
                            recorded(0, 40) + "typed\n", "told\n"),
    "it goes on after the window": (["-stop", "20"], f"(cat {LONG}) >{{}}; echo on", 0,
                                    recorded(0, 20) + "on\n", ""),
    "it fails": ([], "cat t.vcd >{}; exit 7", 7, recorded(0, 40), "wfsim: sh ended with exit status 7\n"),
    "it is killed": ([], "cat t.vcd >{}; kill -9 $$", 137, recorded(0, 40),
                     "wfsim: sh was ended by signal 9 (Killed)\n"),
    "it writes to a name of its own": (["-fifo", "w"], "test -p w && cat t.vcd >w", 0,
                                       recorded(0, 40), ""),
    "no such instance": (["-instance", "/no"], f"while cat {LONG}; do :; done >{{}}", 2,
                         "Error: no instance /no in the waveform\n",
                         "wfsim: ending sh, as nothing is recorded any more\n"),
    "no waveform": ([], "echo ready {} >&2", 1, None,
                    "ready PATH\nwfsim: sh ended without writing a waveform to PATH\n"),
    "no waveform and a failure": ([], ">{}; exit 9", 9, None, "wfsim: sh ended with exit status 9 "
                                  "without writing a waveform to PATH\n"),
    "a file in its place": (["-fifo", "w"], "rm w; echo x >w; exec sleep 99", 1, None,
                            "wfsim: w: sh has put a file in the FIFO's place; writers of FST do "
                            "so, and FST needs a file: simulate first, then record from the file\n"
                            "wfsim: ending sh, as nothing is recorded any more\n"),
    "no FIFO": (["-fifo", "t.vcd"], "cat", 1, None,
                "wfsim: t.vcd: cannot make a FIFO: File exists\n"),
}


class Writers(Folder):
    """A command writes the waveform while it is recorded."""

    def setUp(self):
        super().setUp()
        self.temporary = self.folder / "temporary"
        self.temporary.mkdir()
        self.environment = os.environ | {"TMPDIR": str(self.temporary)}

    def assert_clean(self, present):
        self.assertEqual(list(self.temporary.iterdir()), [])
        self.assertEqual({path.name for path in self.folder.iterdir()} - {"o.saif", "w"}, present)
        self.assertFalse((self.folder / "w").is_fifo())

    def test_what_a_command_may_do(self):
        present = {path.name for path in self.folder.iterdir()}
        for name, (options, text, status, output, errors) in WRITERS.items():
            with self.subTest(name):
                done = self.wfsim("-saif", "o.saif", *options, "--", "sh", "-c", text,
                                  env=self.environment, input="typed\n")
                self.assertEqual(done.returncode, status, done.stdout + done.stderr)
                self.assertEqual(re.sub(r"\S*/wfsim\.\w+/waveform", "PATH", done.stderr),
                                 errors)
                # Both write to one output, each when it has something to say.
                self.assertEqual(sorted(done.stdout.splitlines()),
                                 sorted((START + output).splitlines() if output else []))
                self.assert_clean(present)

    def test_a_program_that_is_not_there(self):
        self.expect(self.wfsim("-do", "now", "-fifo", "w", "--", "./gone"), 1, "",
                    "wfsim: ./gone: cannot be started: No such file or directory\n")
        self.assertFalse((self.folder / "w").exists())

    def test_signals_reach_both(self):
        present = {path.name for path in self.folder.iterdir()}
        (self.folder / "t.vcd").write_text("$comment " + 70000 * "." + " $end\n" + HEADER + EVENTS)
        for number in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
            if signal.getsignal(number) == signal.SIG_IGN:
                continue  # started by nohup, say: wfsim leaves it so
            with self.subTest(number):
                process = subprocess.Popen(
                    [WFSIM, "-saif", "o.saif", "--", "sh", "-c", "cat t.vcd >{}; exec sleep 99 >>{}"],
                    cwd=self.folder, env=self.environment, text=True, stdout=subprocess.PIPE,
                    stderr=subprocess.PIPE)
                self.addCleanup(process.kill)
                for line in process.stdout:
                    if "Turned on" in line:
                        break
                while state(process) != "S":  # all that was written is replayed then
                    time.sleep(0.01)
                process.send_signal(number)
                _, told = process.communicate(timeout=60)
                self.assertEqual((process.returncode, told.count("ended by signal")),
                                 (128 + number, 1), told)
                self.assertRegex((self.folder / "o.saif").read_text(), r"\(DURATION 40\.00\)")
                self.assert_clean(present)


class Interrupts(Folder):
    """The waveform comes through a pipe, so that the test decides how far the run has got."""

    def start(self, *arguments):
        """The program in the middle of the waveform, all it was sent replayed up to 40 ns."""
        process = subprocess.Popen([WFSIM, "-", *arguments], cwd=self.folder, text=True,
                                   stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                   stderr=subprocess.PIPE)
        self.addCleanup(process.kill)
        # Formats are recognised by more than these few lines.
        process.stdin.write("$comment " + 70000 * "." + " $end\n" + HEADER + EVENTS)
        process.stdin.flush()
        self.wait_until(lambda: unread(process.stdin) == 0 and state(process) == "S")
        return process

    def wait_until(self, holds):
        end = time.monotonic() + 60
        while not holds():
            self.assertLess(time.monotonic(), end, "waited too long")
            time.sleep(0.01)

    def finish(self, process, sent, status, output):
        process.send_signal(sent)
        shown, told = process.communicate("#50\n1!\n#60\n0!\n")
        self.assertEqual((process.returncode, shown, told), (status, START + output, ""))

    def test_the_one_command_form_reports_what_it_has(self):
        for sent in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
            self.finish(self.start("-saif", "o.saif"), sent, 128 + sent,
                        recorded(0, 40, "Note: interrupted at 40 ns\n"))
            self.assertIn("(DURATION 40.00)", (self.folder / "o.saif").read_text())
            (self.folder / "o.saif").unlink()

    def test_nothing_to_report_before_the_window(self):
        self.finish(self.start("-saif", "o.saif", "-start", "55ns"), signal.SIGINT, 130,
                    SELECTED + "Note: interrupted at 40 ns\n"
                    "Error: no report: the run ended before the window opened\n")
        self.assertFalse((self.folder / "o.saif").exists())

    def test_a_script_goes_on_from_its_run(self):
        note = "Note: interrupted at 40 ns\n"
        for sent, script, status, output in [
                (signal.SIGINT, "run -all; puts on; run -all; puts [now]", 130, "on\n60 ns\n"),
                (signal.SIGINT, "run -all; quit -code 3", 3, ""),
                (signal.SIGTERM, "run -all; puts on\ncatch {run -all}; puts no", 143,
                 "on\nError: -do:2: interrupted at 40 ns\n"),
                (signal.SIGHUP, "run -all; quit -f", 129, "")]:
            with self.subTest(script):
                self.finish(self.start("-do", script), sent, status, note + output)

    def test_a_waveform_that_does_not_go_on(self):
        process = self.start("-saif", "o.saif")
        process.send_signal(signal.SIGTERM)
        self.assertEqual(process.wait(60), 143)
        self.assertIn("(DURATION 40.00)", (self.folder / "o.saif").read_text())

    def test_the_second_one_ends_the_program(self):
        process = self.start("-do", "run -all")
        while process.poll() is None:  # two that arrive together would count as one
            process.send_signal(signal.SIGINT)
            time.sleep(0.01)
        self.assertEqual(process.returncode, 130)
        self.assertEqual(process.communicate()[1],
                         "\nwfsim: interrupted twice, leaving at once\n")


def unread(pipe):
    """Bytes that the reader at the other end has not taken yet."""
    count = array.array("i", [0])
    fcntl.ioctl(pipe, termios.FIONREAD, count)
    return count[0]


def state(process):
    """One letter: R for running, S for waiting."""
    text = pathlib.Path(f"/proc/{process.pid}/stat").read_text()
    return text.rpartition(")")[2].split()[0]


if __name__ == "__main__":
    unittest.main()
