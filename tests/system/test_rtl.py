#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""From a forward file to the report under RTL names, with the built programs."""

import unittest

from programs import HERE, ROOT, WFSIM, FolderCase, must, without_date

EXAMPLE = ROOT / "examples" / "rtl"
GOLDEN = HERE / "golden"
RECORD = "run 25ns; toggle_start; run 500ns; toggle_stop; toggle_report out.saif 1.0e-9 "

# Forward files for one sensor, whose outermost instance stands for it.
HEADER = ('(SAIFILE (SAIFVERSION "2.0") (DIRECTION "forward") (DESIGN) (DATE) (VENDOR)\n'
          "(PROGRAM_NAME) (VERSION) (DIVIDER /)\n")
COUNT = HEADER + '(INSTANCE top (NET (count[0] r0/Q "sequential") (count[1] r1/Q)\n(gone gone))))\n'
GRANT = HEADER + '(INSTANCE top (PORT (grant grant) (count[0] again))))\n'


class RtlFlow(FolderCase):
    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        must("iverilog", "-g2005", "-o", "s.vvp", *sorted(EXAMPLE.glob("*.v")),
             folder=cls.shared)
        must("vvp", "-n", "s.vvp", "+vcd", folder=cls.shared)
        cls.vcd = cls.shared / "sensor_bus.vcd"

    def setUp(self):
        super().setUp()
        self.forward = self.write("sensor_bus.fsaif", (EXAMPLE / "sensor_bus.fsaif").read_text())
        self.write("count.fsaif", COUNT)
        self.write("grant.fsaif", GRANT)

    def write(self, name, text):
        (self.folder / name).write_text(text)
        return self.folder / name

    def replay(self, script):
        """The transcript of a run script, line by line."""
        script = self.write("test.tcl", script + "\nquit\n")
        return must(WFSIM, self.vcd, "-do", script, folder=self.folder).splitlines()

    def assert_golden(self, report, golden):
        self.assertEqual(without_date(self.folder / report), golden.read_text())

    def test_the_example(self):
        must(WFSIM, self.vcd, "-do", EXAMPLE / "run.tcl", folder=self.folder)
        self.assert_golden("sensor_bus.saif", EXAMPLE / "expected.saif")

    def test_one_command_without_a_script(self):
        must(WFSIM, self.vcd, "-saif", "out.saif", "-instance", "/tb/dut", "-start", "25ns", "-stop",
             "525ns", "-policy", "on /tb/dut/u_arbiter", "-rtl", self.forward, "-testbench",
             "/tb/dut", folder=self.folder)
        self.assert_golden("out.saif", EXAMPLE / "expected.saif")

    def test_only_objects_in_scope_are_watched(self):
        said = self.replay("read_rtl_saif sensor_bus.fsaif tb/dut/; set_toggle_region /tb/dut/u_low\n"
                           + RECORD + "/tb/dut")
        self.assert_golden("out.saif", GOLDEN / "rtl_scope.saif")
        for line in ("Warning (KLVA-PWR): Signal /tb/dut/clk not in scope, skipping",
                     "Warning (KLVA-PWR): Signal /tb/dut/u_high/count(3) not in scope, skipping",
                     "Warning (KLVA-PWR): could not find signal /tb/dut/scan_enable, skipping"):
            self.assertIn(line, said)
        self.assertNotIn("Warning (KLVA-PWR): Signal /tb/dut/u_low/count(3) not in scope, skipping",
                         said)

    def test_one_file_for_two_paths_and_two_files_for_one(self):
        self.replay("read_rtl_saif count.fsaif /tb/dut/u_low; read_rtl_saif count.fsaif tb/dut/u_high.\n"
                    "read_rtl_saif grant.fsaif /tb/dut/u_low; set_toggle_region /tb/dut\n"
                    + RECORD + "/tb/dut/u_low; toggle_report high.saif 1.0e-9 /tb/dut/u_high")
        self.assert_golden("out.saif", GOLDEN / "rtl_low.saif")
        self.assert_golden("high.saif", GOLDEN / "rtl_high.saif")


if __name__ == "__main__":
    unittest.main()
