#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""What cannot go well: damaged waveforms, missing plug-ins, a full disk; nothing is lost silently.
One table of scripts says which status each host ends with."""

import os
import pathlib
import shutil
import signal
import subprocess
import tempfile
import unittest

from inside import Ghdl, Icarus, InsideCase, levels
from programs import HERE, WFSIM, FolderCase, run, without_date

SMALL = HERE / "golden" / "small.vcd"
RECORD = ["-saif", "out.saif", "-instance", "/top"]

# name: (arguments after the waveform, exit status, a part of what is told, is there a report)
MISSING = {
    "no such plug-in": (["-do", "quit", "-foreign", "swfli_init ./nowhere.so"], 1, "nowhere.so",
                        False),
    "no such function": (["-do", "quit", "-foreign", "nowhere_init libm.so.6"], 1, "nowhere_init",
                         False),
    "a report in a folder that is not there": (["-saif", "no/out.saif"], 1, "no/out.saif", False),
    "a full disk": (["-saif", "/dev/full"], 1, "Could not write file /dev/full", False),
    "a script that fails has its own status": (["-do", "catch nonsense; quit -code 7"], 7, "",
                                               False),
}

# name: (what is done to the waveform's text, exit status, a part of what is told, is there a report)
DAMAGED = {
    "cut in a value": (lambda text: text[:text.index("b101 ")] + "b10", 3, "small.vcd:", True),
    "an unknown id code": (lambda text: text.replace("#30\n1!", "#30\n1~"), 3, "small.vcd:", True),
    "time runs backwards": (lambda text: text.replace("#40", "#4"), 3, "small.vcd:", True),
    "cut in the declarations": (lambda text: text[:text.index("$enddef")], 3, "small.vcd", False),
    "empty": (lambda text: "", 1, "small.vcd", False),
    "something else": (lambda text: "\x7fELF" + text, 1, "small.vcd", False),
}

# The same design twice: /tb, /tb/clk and /tb/dut with its q.
VERILOG = """`timescale 1ns / 1ps
module dut(input clk, output reg [3:0] q = 0);
    always @(posedge clk) q <= q + 1;
endmodule
module tb;
    reg clk = 0;
    dut dut(clk, );
    always #5 clk = !clk;
    initial begin
        $dumpfile("tb.vcd");
        if ($test$plusargs("vcd")) $dumpvars;
        if ($test$plusargs("tasks")) begin $toggle_start; $toggle_stop; end
        if (!$test$plusargs("endless")) #100 $finish;
    end
endmodule
"""
VHDL = """entity counter is port (clk : in bit; q : out integer := 0); end;
architecture a of counter is begin q <= q + 1 when clk'event and clk = '1'; end;
entity tb is generic (ENDLESS : boolean := false); end;
architecture a of tb is signal clk : bit; begin
    clk <= not clk after 5 ns when ENDLESS or now < 100 ns;
    dut : entity work.counter port map (clk, open);
end;
"""

# What scripts give first: the recording, and a forward file that ends too early.
RECORDED = ["set_toggle_region /tb/dut", "toggle_start", "run 40ns", "toggle_stop"]
CUT = "close [open cut.fsaif w]"

# name: (commands, exit status). A command behind "!" has a plug-in report one error, which ends the
# script under -strict; each counts in the last line.
STATUS = {
    "all is well": ([*RECORDED, "toggle_report out.saif 1.0e-9 /tb/dut", "quit"], 0),
    "no such region": (["!set_toggle_region /tb/no", *RECORDED], 1),
    "no region": (["!set_toggle_region", "quit -f"], 1),
    "an index too many": (["!set_toggle_region /tb/dut/q(99)(1) /tb", "exit"], 1),
    "no such region for a policy": (["!set_net_monitoring_policy off /tb/no"], 1),
    "a policy of no kind": (["!set_net_monitoring_policy maybe /tb", "quit -code 0"], 1),
    "out of order": (["!toggle_stop", "!toggle_start", *RECORDED, "!toggle_stop"], 1),
    "no such instance": ([*RECORDED, "!toggle_report out.saif 1.0e-9 /tb/no"], 1),
    "no such folder": ([*RECORDED, "!toggle_report no/out.saif 1.0e-9 /tb/dut"], 1),
    "a full disk": ([*RECORDED, "!toggle_report /dev/full 1.0e-9 /tb/dut"], 1),
    "no unit": ([*RECORDED, "!toggle_report out.saif 1.0e-99 /tb/dut"], 1),
    "no such forward file": (["!read_rtl_saif no.fsaif /tb/dut"], 1),
    "a damaged forward file": (
        [CUT, "toggle_debug_level 1", "!read_rtl_saif cut.fsaif /tb/dut"], 1),
    "the script's own status": (["!toggle_stop", "quit -code 7"], 7),
    "what simulators offer": (
        ["if {[env dut] ne {/tb/dut}} {error env}", "radix hex", "echo [examine q]", "run", "env ..",
         "catch {add wave *}", "catch {bp x 1}", *RECORDED, "toggle_report out.saif 1e-9 dut"], 0),
    "leaving the design alone": (["catch {quit -sim} why", "error $why"], 1),
}


class Status(InsideCase):
    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        (cls.shared / "tb.v").write_text(VERILOG)
        (cls.shared / "tb.vhd").write_text(VHDL)
        cls.icarus = Icarus(cls.shared, "tb.v")
        run(*cls.icarus.command(dump=True), folder=cls.shared)
        cls.waveform = cls.shared / "tb.vcd"
        cls.hosts = {
            "-do": (WFSIM, cls.waveform, "-do", "run.tcl"),
            "standard input": (WFSIM, cls.waveform, "-c"),
            "Icarus Verilog": cls.icarus.command("+wf_do=run.tcl"),
        }
        if shutil.which("ghdl"):
            cls.hosts["GHDL"] = Ghdl(cls.shared, "tb.vhd").command("+wf_do=run.tcl")

    def each_host(self, strict, check):
        """For each row and host: check(commands, status, how the run ended, lines with a level)"""
        for name, (commands, status) in STATUS.items():
            script = "".join(command.lstrip("!") + "\n" for command in commands)
            (self.folder / "run.tcl").write_text(script)
            for host, command in self.hosts.items():
                option = "-strict" if WFSIM in command else "+wf_strict"
                with self.subTest(name, host=host, strict=strict):
                    done = run(*command, *[option][:strict], folder=self.folder, input=script)
                    check(commands, status, done, levels(done.stdout))

    def test_scripts_go_on_and_errors_are_counted(self):
        def check(commands, status, done, told):
            self.assertEqual(done.returncode, status, done.stdout + done.stderr)
            errors = sum(command.startswith("!") for command in commands)
            expected = {0: [], 1: ["Error: 1 error was reported"]}.get(
                errors, [f"Error: {errors} errors were reported"])
            self.assertEqual([line for line in told if "reported" in line], expected)
            self.assertEqual(told[-1:], expected or told[-1:])
        self.each_host(False, check)

    def test_strict_scripts_stop_at_the_first_error(self):
        def check(commands, status, done, told):
            failing = [i for i, command in enumerate(commands, 1) if command.startswith("!")]
            self.assertEqual(done.returncode, 1 if failing else status, done.stdout)
            if failing:
                self.assertRegex(told[-1], rf"^Error: (run\.tcl|<stdin>):{failing[0]}: [^(]+")
        self.each_host(True, check)

    def test_a_caught_error_is_the_scripts_own(self):
        script = "catch {toggle_stop} why; puts <$why>"
        done = run(WFSIM, self.waveform, "-strict", "-do", script, folder=self.folder)
        self.assertEqual(done.returncode, 0)
        self.assertTrue(done.stdout.endswith(
            "\n<set_toggle_region must be done before toggle_stop.>\n"), done.stdout)

    def test_signals_inside_simulators(self):
        """The script's run ends, the script goes on; what is no run ends past every catch."""
        send = 'exec sh -c "sleep 0.3; kill -{} [pid]" &'
        rows = [([RECORDED[0], "toggle_start", "run -all", "toggle_stop",
                  "toggle_report out.saif 1.0e-9 /tb/dut"], True),
                (["run 10ns", "while 1 {catch {while 1 {}}}"], False), (["vwait ever"], False)]
        for host in self.hosts.keys() & {"Icarus Verilog", "GHDL"}:
            endless = {"Icarus Verilog": "+endless", "GHDL": "-gENDLESS=true"}[host]
            for commands, reports in rows:
                for sent in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
                    with self.subTest(commands[-1], host=host, sent=sent):
                        lines = [send.format(int(sent)), *commands, ""]
                        (self.folder / "run.tcl").write_text("\n".join(lines))
                        report = self.folder / "out.saif"
                        report.write_text("old")
                        done = run(*self.hosts[host], endless, folder=self.folder)
                        self.assertEqual(done.returncode, 128 + sent, done.stdout + done.stderr)
                        self.assertEqual(report.read_text().endswith("\n)\n"), reports)

    def test_system_tasks(self):
        for option, count in (([], "2 errors were"), (["+wf_strict"], "1 error was")):
            shown = self.simulate(self.icarus, None, "+tasks", *option, status=1)
            self.assertTrue(shown.endswith(f"\nError: {count} reported\n"), shown)


class Failures(FolderCase):
    def check(self, waveform, arguments, status, told, reported, folder):
        done = run(WFSIM, waveform, *arguments, folder=folder)
        shown = done.stdout + done.stderr
        self.assertEqual(done.returncode, status, shown)
        self.assertIn(told, shown)
        self.assertEqual(pathlib.Path(folder, "out.saif").exists(), reported, shown)
        return shown

    def test_missing_things(self):
        for name, row in MISSING.items():
            with self.subTest(name), tempfile.TemporaryDirectory() as folder:
                self.check(SMALL, *row, folder)

    def test_what_stops_the_writing(self):
        """An earlier report stays; a reader that goes away costs none."""
        report = self.folder / "out.saif"
        report.write_text("old")
        limited = run("prlimit", "--fsize=1000", WFSIM, SMALL, *RECORD, folder=self.folder)
        self.assertEqual(limited.returncode, 1)
        self.assertIn("Could not write file out.saif: File too large", limited.stdout)
        self.assertEqual(report.read_text(), "old")
        reading, writing = os.pipe()
        os.close(reading)
        done = subprocess.run([WFSIM, SMALL, *RECORD], cwd=self.folder, stdout=writing,
                              stderr=subprocess.PIPE, text=True, check=False)
        os.close(writing)
        self.assertEqual((done.returncode, done.stderr),
                         (1, "wfsim: standard output could not be written completely\n"))
        self.assertTrue(report.read_text().endswith("\n)\n"))
        self.assertEqual(os.listdir(self.folder), ["out.saif"])

    def test_damaged_waveforms(self):
        for name, (damage, *expected) in DAMAGED.items():
            with self.subTest(name), tempfile.TemporaryDirectory() as folder:
                text = damage(SMALL.read_text())
                pathlib.Path(folder, "small.vcd").write_text(text)
                shown = self.check("small.vcd", RECORD, *expected, folder)
                complaints = [line for line in shown.splitlines() if "small.vcd" in line]
                self.assertEqual(len(complaints), 1, shown)

    def test_what_was_recorded_before_the_damage_is_in_the_report(self):
        text = SMALL.read_text()
        reports = []
        for waveform in (text[:text.index("#30")], text.replace("#30\n1!", "#25\n1~")):
            (self.folder / "small.vcd").write_text(waveform)
            run(WFSIM, "small.vcd", *RECORD, folder=self.folder)
            reports.append(without_date(self.folder / "out.saif"))
        self.assertEqual(*reports)


if __name__ == "__main__":
    unittest.main()
