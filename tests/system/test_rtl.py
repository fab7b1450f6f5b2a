#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""From a forward file to the report under RTL names, with the built programs."""

import unittest

from programs import HERE, ROOT, WFSIM, FolderCase, must, run, without_date

EXAMPLE = ROOT / "examples" / "rtl"
WINDOW = ["--window", "25ns", "525ns"]
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

    def replay(self, script, status=0):
        """The transcript of a run script, line by line."""
        script = self.write("test.tcl", script + "\nquit\n")
        done = run(WFSIM, self.vcd, "-do", script, folder=self.folder)
        self.assertEqual(done.returncode, status, done.stdout)
        return done.stdout.splitlines()

    def compare(self, report, forward, testbench, *further):
        return run("python3", HERE / "compare_rtl.py", report, "--vcd", self.vcd, "--forward",
                   forward, "--testbench", testbench, *WINDOW, *further, folder=self.folder)

    def agree(self, *arguments):
        done = self.compare(*arguments)
        self.assertEqual((done.returncode, done.stderr), (0, ""), done.stdout)
        return done.stdout

    def test_the_example(self):
        must(WFSIM, self.vcd, "-do", EXAMPLE / "run.tcl", folder=self.folder)
        arguments = ("sensor_bus.saif", self.forward, "/tb/dut", "--on", "/tb/dut/u_arbiter")
        self.assertEqual(self.agree(*arguments), "all 59 objects agree: 18 sequential, "
                         "8 tri-state, 33 ordinary\n")
        report = self.folder / "sensor_bus.saif"
        self.assertEqual(without_date(report), (EXAMPLE / "expected.saif").read_text())

        right = report.read_text()
        for old, new in {'"sequential" count': '"tri-state" count', "INSTANCE u_low": "INSTANCE u_lo",
                         "(IG 5.0": "(IG 6.0", r"(grant\[1\]": r"(grant\(1\)"}.items():
            with self.subTest("the comparison sees a fault", fault=new):
                self.assertIn(old, right)
                report.write_text(right.replace(old, new, 1))
                self.assertEqual(self.compare(*arguments).returncode, 1)

    def test_one_command_without_a_script(self):
        must(WFSIM, self.vcd, "-saif", "out.saif", "-instance", "/tb/dut", "-start", "25ns", "-stop",
             "525ns", "-rtl", self.forward, "-testbench", "/tb/dut", folder=self.folder)
        self.agree("out.saif", self.forward, "/tb/dut")

    def test_only_objects_in_scope_are_watched(self):
        said = self.replay("read_rtl_saif sensor_bus.fsaif tb/dut/; set_toggle_region /tb/dut/u_low\n"
                           + RECORD + "/tb/dut")
        self.agree("out.saif", self.forward, "/tb/dut", "--scope", "/tb/dut/u_low")
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
        both = self.write("both.fsaif", HEADER + '(INSTANCE top (NET (count[0] r0/Q "sequential")'
                          "(count[0] again) (count[1] r1/Q) (grant grant))))\n")
        self.agree("out.saif", both, "/tb/dut/u_low")
        self.agree("high.saif", "count.fsaif", "/tb/dut/u_high")

    def test_a_damaged_file_is_told_at_debug_level_1_and_leaves_nothing_behind(self):
        self.write("cut.fsaif", COUNT[:COUNT.index("(gone")] + "(PORT PORT\n;")
        done = "Information (KLVA-PWR): Reading rtl saif file \"cut.fsaif\" done."
        where = "Syntax error in the forward RTL SAIF file at 5"
        quiet = self.replay("read_rtl_saif cut.fsaif /tb/dut/u_low")
        self.assertIn(done, quiet)
        self.assertNotIn(where, quiet)
        told = self.replay("toggle_debug_level 1; read_rtl_saif cut.fsaif /tb/dut/u_low\n"
                           "toggle_debug_level 0; read_rtl_saif grant.fsaif /tb/dut/u_low\n"
                           "set_toggle_region /tb/dut\n" + RECORD + "/tb/dut/u_low", status=1)
        self.assertLess(told.index(where), told.index(done))
        kept = self.write("kept.fsaif", HEADER + '(INSTANCE top (NET (count[0] r0/Q "sequential")'
                          "(count[0] again) (count[1] r1/Q) (grant grant))))\n")
        self.agree("out.saif", kept, "/tb/dut/u_low")

    def test_an_overlong_token_ends_the_simulator(self):
        self.write("long.fsaif", HEADER + "(INSTANCE " + "a" * 1025)
        self.write("test.tcl", "read_rtl_saif long.fsaif /tb/dut\nputs survived\n")
        done = run(WFSIM, self.vcd, "-do", "test.tcl", folder=self.folder)
        self.assertEqual(done.returncode, 1)
        self.assertIn("Input string too long, limit 1024\n", done.stdout)
        self.assertNotIn("survived", done.stdout)


if __name__ == "__main__":
    unittest.main()
