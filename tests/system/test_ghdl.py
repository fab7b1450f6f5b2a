#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""The recorder inside GHDL: figures against a replay of the waveform of the same run, the example's
run script unchanged, and what can go wrong."""

import shutil
import unittest

from compare_saif import Report
from inside import DESIGNS, FAILURES_ANYWHERE, STILL_OPEN, Ghdl, InsideCase, levels
from programs import ROOT, UART, WFSIM, must, simulate_uart

VHDL_UART = ROOT / "examples" / "ghdl"
END = 1_002_000

WINDOWS = {"the whole run": [], "in the middle": [(103_000, 612_345)],
           "two": [(50_000, 200_000), (507_000, 831_000)]}

# Names that one of the two does not have: none, extended identifiers included.
ONLY_INSIDE = {}
ONLY_DUMPED = {}

OPEN = "set_toggle_region /tb\ntoggle_start\n"

# name: (script, options, status, lines that begin with a level)
FAILURES = {
    "the design fails with the window open": (
        OPEN + "run 700ns\n", ["-gFAIL=true"], 1,
        ["Note: run stopped at 600 ns, the end of the simulation", STILL_OPEN]),
    "the design fails, the report is still written": (
        OPEN + "run -all\ntoggle_stop\ntoggle_report out.saif 1.0e-9 /tb\n", ["-gFAIL=true"], 1, []),
    "an error in the script": (
        OPEN + "run 10ns\nputs $nothing\n", [], 1,
        ["Error: run.tcl:4: can't read \"nothing\": no such variable", STILL_OPEN]),
    "quit with a status": ("run 10ns\nquit -code 4\n", [], 4, []),
    "a script that ends early": ("run 10ns\n", [], 0, []),
}


@unittest.skipUnless(shutil.which("ghdl"), "GHDL is not installed (package ghdl-mcode)")
class Kinds(InsideCase):
    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        cls.design = Ghdl(cls.shared, DESIGNS / "kinds.vhd")

    def test_every_bit(self):
        for part, windows in WINDOWS.items():
            with self.subTest(windows=part):
                self.assert_equal_with_replay(self.design, windows, END, ONLY_INSIDE, ONLY_DUMPED)

    def test_failures(self):
        for name, (script, options, status, told) in (FAILURES_ANYWHERE | FAILURES).items():
            with self.subTest(name):
                shown = self.simulate(self.design, script, *options, status=status)
                self.assertEqual(levels(shown), told, shown)


@unittest.skipUnless(shutil.which("ghdl"), "GHDL is not installed (package ghdl-mcode)")
class SerialPort(InsideCase):
    def test_script_of_the_example(self):
        script = (UART / "run.tcl").read_text()
        port = Ghdl(self.shared, VHDL_UART / "uart.vhd", VHDL_UART / "uart_tb.vhd")
        self.simulate(port, script)
        inside = Report(self.folder / "uart.saif").bits
        # Another run, as `quit` ends this one before its last time step is dumped.
        self.simulate(port, None, dump=True)
        replayed = self.replay(self.folder / port.waveform, script) / "uart.saif"
        self.assert_same_bits(self.folder / "uart.saif", replayed)
        # Where VHDL and Verilog give an object the same name, it does the same.
        must(WFSIM, simulate_uart(self.folder), "-do", "run.tcl", folder=self.folder)
        verilog = Report(self.folder / "uart.saif").bits
        both = inside.keys() & verilog.keys()
        self.assertEqual(len(both), 235)
        self.assert_same_figures(inside, verilog, both)


if __name__ == "__main__":
    unittest.main()
