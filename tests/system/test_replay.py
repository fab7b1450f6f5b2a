#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Replays a waveform made by Icarus Verilog and compares every figure with an independent count."""

import gzip
import os
import shutil
import subprocess
import unittest

from compare_saif import Report
from programs import HERE, UART, WFSIM, FolderCase, must, run, simulate_uart, without_date

REPORT = "toggle_report out.saif 1.0e-9 /tb/dut\n"

# name: (script, windows, further arguments of the comparison)
SCRIPTS = {
    "two windows": (
        "set_toggle_region /tb/dut; run 1us; toggle_start; run 10us; toggle_stop; run 333ns\n"
        "toggle_start; run 20.5us; toggle_stop\n" + REPORT,
        [("1us", "11us"), ("11.333us", "31.833us")], []),
    "opens in the middle, between two events": (
        "set_toggle_region /tb/dut; run 12344321; toggle_start; run 7us; toggle_stop\n" + REPORT,
        [("12344321", "19344321")], []),
    "opens and closes on a clock edge": (
        "set_toggle_region /tb/dut; run 1.005us; toggle_start; run 1us; toggle_stop\n" + REPORT,
        [("1.005us", "2.005us")], []),
    "opens before the first event and ends with the file": (
        "set_toggle_region /tb/dut; toggle_start; run -all; toggle_stop\n" + REPORT,
        [("0", "46706000")], []),
    "windows before a reset are gone": (
        "set_toggle_region /tb/dut; toggle_start; run 9us; toggle_stop\n" + REPORT +
        "toggle_reset; run 1us; toggle_start; run 4us; toggle_stop; run 1us\n"
        "toggle_start; run 2us; toggle_stop\n" + REPORT,
        [("10us", "14us"), ("15us", "17us")], []),
    "an instance is off by policy, and what shares its prefix": (
        "set_net_monitoring_policy off /tb/dut/rx\n"
        "set_toggle_region /tb/dut; run 1us; toggle_start; run 40us; toggle_stop\n" + REPORT,
        [("1us", "41us")], ["--off", "/tb/dut/rx", "--off", "/tb/dut/rx_queue"]),
    "an instance is on inside one that is off": (
        "set_net_monitoring_policy off /tb/dut/tx_queue on {/tb/dut/tx_queue/slot[2]}\n"
        "set_toggle_region /tb/dut; run 1us; toggle_start; run 40us; toggle_stop\n" + REPORT,
        [("1us", "41us")],
        ["--off", "/tb/dut/tx_queue", "--on", "/tb/dut/tx_queue/slot(2)"]),
    "another unit": (
        "set_toggle_region /tb; run 1us; toggle_start; run 40us; toggle_stop\n"
        "toggle_report out.saif 1.0e-12 /tb\n",
        [("1us", "41us")], ["--instance", "/tb", "--unit", "1e-12"]),
}


class Replay(FolderCase):
    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        cls.vcd = simulate_uart(cls.shared)

    def compare(self, report, windows, further=(), vcd=None):
        window_arguments = [word for window in windows for word in ("--window", *window)]
        done = run("python3", HERE / "compare_saif.py", report, "--vcd", vcd or self.vcd,
                   *window_arguments, "--instance", "/tb/dut", *further, folder=self.folder)
        self.assertEqual((done.returncode, done.stderr), (0, ""), done.stdout)

    def test_run_script_of_the_example(self):
        must(WFSIM, self.vcd, "-do", UART / "run.tcl", folder=self.folder)
        self.compare("uart.saif", [("1us", "41us")])

    def test_windows_reset_and_policy(self):
        for name, (script, windows, further) in SCRIPTS.items():
            with self.subTest(name):
                (self.folder / "run.tcl").write_text(script + "quit\n")
                must(WFSIM, self.vcd, "-do", "run.tcl", folder=self.folder)
                self.compare("out.saif", windows, further)

    def test_after_a_restart_it_all_happens_again(self):
        packed = self.folder / "packed"
        packed.write_bytes(gzip.compress(self.vcd.read_bytes()))
        for waveform, below, time in ((self.vcd, "dut", "20us"), (packed, "dut", "20us"),
                                      (HERE.parent / "data" / "kinds.ghw", "u", "3ns")):
            (self.folder / "run.tcl").write_text(
                f"set_toggle_region {below}; toggle_start; run {time}; toggle_stop\n"
                f"toggle_report first.saif 1.0e-12 {below}; toggle_reset; run -all; restart -f\n"
                f"toggle_start; run {time}; toggle_stop; environment {below}\n"
                f"toggle_report second.saif 1.0e-12 ../{below}\n"
                f"restart; toggle_start; run {time}; restart\n"
                f"toggle_report both.saif 1.0e-12 ../{below}; puts [now]\n")
            with self.subTest(waveform.name):
                shown = must(WFSIM, waveform, "-do", "run.tcl", folder=self.folder)
                self.assertEqual(without_date(self.folder / "second.saif"),
                                 without_date(self.folder / "first.saif"))
                first, both = (Report(self.folder / f"{name}.saif") for name in ("first", "both"))
                for path, (fields,) in first.bits.items():
                    twice = {name: f"{2 * float(value):.6f}" for name, value in fields.items()}
                    self.assertEqual(both.bits[path], [twice], path)
                self.assertEqual(shown.count("Note: restart closes the counting window"), 1)
                self.assertRegex(shown, r"\n0 [fp]s\n$")

    def test_what_cannot_be_read_twice_is_not_restarted(self):
        os.mkfifo(self.folder / "fifo")
        writer = subprocess.Popen(["cp", self.vcd, "fifo"], cwd=self.folder)
        self.addCleanup(writer.wait)
        shutil.copy(self.vcd, self.folder / "grows.vcd")
        script = ("set_toggle_region dut; toggle_start; run 1us\n"
                  "set f [open grows.vcd a]; puts $f {}; close $f; catch {restart} why; puts $why; puts [now]")
        rows = {"-": "standard input cannot be read a second time",
                "fifo": "fifo is no regular file and cannot be read a second time",
                "grows.vcd": "grows.vcd has changed since it was opened"}
        for name, why in rows.items():
            with self.subTest(name), open(self.vcd, encoding="latin-1") as pipe:
                shown = must(WFSIM, name, "-do", script, folder=self.folder, stdin=pipe)
                self.assertIn(f"\nrestart: {why}\n1000000 ps\nWarning: the counting window is",
                              shown)

    def test_one_command_without_a_script(self):
        must(WFSIM, self.vcd, "-saif", "out.saif", "-instance", "/tb/dut", "-start", "1us",
             "-stop", "41us", folder=self.folder)
        self.compare("out.saif", [("1us", "41us")])

    def test_every_way_in_gives_the_same_report(self):
        must(WFSIM, self.vcd, "-do", UART / "run.tcl", folder=self.folder)
        expected = without_date(self.folder / "uart.saif")
        packed = self.folder / "packed"
        packed.write_bytes(gzip.compress(self.vcd.read_bytes()))
        with open(self.vcd, encoding="latin-1") as pipe:
            routes = {
                "gzip": lambda: must(WFSIM, packed, "-do", UART / "run.tcl", folder=self.folder),
                "pipe": lambda: must(WFSIM, "-", "-do", UART / "run.tcl", folder=self.folder,
                                     stdin=pipe),
            }
            for name, route in routes.items():
                with self.subTest(name):
                    (self.folder / "uart.saif").unlink()
                    route()
                    self.assertEqual(without_date(self.folder / "uart.saif"), expected)

    @unittest.skipUnless(shutil.which("vcd2fst"), "vcd2fst is not installed (package gtkwave)")
    def test_pipe_from_another_format(self):
        must("vcd2fst", self.vcd, "uart.fst", folder=self.folder)
        piped = must("fst2vcd", "uart.fst", folder=self.folder)
        must(WFSIM, "-", "-do", UART / "run.tcl", folder=self.folder, input=piped)
        self.compare("uart.saif", [("1us", "41us")])

    def test_declarations_of_every_shape(self):
        must("iverilog", "-g2005", "-o", "h.vvp", HERE / "designs" / "hierarchy.v", folder=self.folder)
        must("vvp", "-n", "h.vvp", "+vcd", folder=self.folder)
        shown = must(WFSIM, "hierarchy.vcd", "-saif", "out.saif", "-instance", "/tb", "-start", "10ps",
                     "-stop", "812ns", "-unit", "1.0e-12", folder=self.folder)
        self.assertIn("Not registered signal = /tb/dut/level; INVALID_TYPE", shown)
        self.compare("out.saif", [("10ps", "812ns")], ["--instance", "/tb", "--unit", "1e-12"],
                     "hierarchy.vcd")

    def test_the_comparison_sees_a_wrong_figure(self):
        must(WFSIM, self.vcd, "-do", UART / "run.tcl", folder=self.folder)
        report = self.folder / "uart.saif"
        right = report.read_text()
        for old, new in {"(IG 1.000000)": "(IG 2.000000)", "(TC 74.000000)": "(TC 75.000000)",
                         "(INSTANCE baud": "(INSTANCE band", "(DURATION 40000.00)": "(DURATION 1.00)",
                         "(TX 0.000000)": "(TX 0.100000)"}.items():
            with self.subTest(old):
                self.assertIn(old, right)
                report.write_text(right.replace(old, new, 1))
                done = run("python3", HERE / "compare_saif.py", report, "--vcd", self.vcd,
                           "--window", "1us", "41us", "--instance", "/tb/dut", folder=self.folder)
                self.assertEqual(done.returncode, 1, done.stdout)


if __name__ == "__main__":
    unittest.main()
