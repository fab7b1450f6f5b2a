#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Replays waveforms of GHDL: against the count that the design made of itself in the same run,
against the VCD file of that run, and every message about a type."""

import re
import shutil
import unittest

from compare_saif import FIELDS, Report
from programs import HERE, ROOT, UART, WFSIM, FolderCase, must, run, without_date

# The windows of types.vhd.
SCRIPT = """set_toggle_region /dut
toggle_start; run 4us; toggle_stop; run 1003ns
toggle_start; run 13997ns; toggle_stop
toggle_report out.saif 1.0e-12 /dut
quit
"""

# What the types of types.vhd have to say when they are registered, in this order.
MESSAGES = [
    "Error (KLVA-PWR): Could not determine bitwidth",  # nought: 0 to 0
    "Error (KLVA-PWR): Could not determine bitwidth",  # falling: 15 downto 0
    "Warning (KLVA-PWR): Not registered signal = /dut/amount; INVALID_TYPE",
    "Warning (KLVA-PWR): Not registered signal = /dut/moment; INVALID_TYPE",
    "Warning (KLVA-PWR): Not registered signal = /dut/ratio; INVALID_TYPE",
    "Error (KLVA-PWR): Unable to register /dut/pair_of_reals",
    "Error (KLVA-PWR): Unable to register /dut/pair_of_times",
    "Warning (KLVA-PWR): Not registered signal = /dut/one.gain; INVALID_TYPE",
    "Warning (KLVA-PWR): Not registered signal = /dut/many(2).gain; INVALID_TYPE",
    "Warning (KLVA-PWR): Not registered signal = /dut/many(1).gain; INVALID_TYPE",
    "Warning (KLVA-PWR): Not registered signal = /dut/u1/packet_in.gain; INVALID_TYPE",
    "Warning (KLVA-PWR): Not registered signal = "
    "/dut/copies(2)/deeper/u2/packet_in.gain; INVALID_TYPE",
]

# How many bits each signal has: by the right bound, and by the number of elements.
WIDTHS = {"clock": 1, "wired": 1, "plain": 1, "narrow": 1, "b": 1, "truth": 1, "letter": 8, "st": 3,
          "sub": 3, "tri": 2, "nine": 4, "small": 8, "larger": 9, "nought": 1, "falling": 1,
          "full": 31, "minus": 32, "amount": 0, "moment": 0, "ratio": 0, "vector": 8, "upward": 3,
          "text": 16, "memory": 12, "square": 4, "numbers": 12, "seen": 5, "pair_of_reals": 0,
          "pair_of_times": 0, "one": 10, "many": 20, "open_words": 4, "open_record": 5,
          "nothing": 0, "answer": 1, "pad": 1, "mood": 3, "settled": 1}

PORTS = {"/dut/u1/" + name for name in (
    ["clock", "pad", "parity", "crossed(0)", "crossed(1)", "packet_in.valid", "packet_in.data(0)",
     "packet_in.data(1)"] + [f"nibble({i})" for i in range(4)] + [f"mood({i})" for i in range(3)] +
    [f"packet_in.left({i})" for i in range(4)] + [f"packet_in.mood({i})" for i in range(3)])}


def simulate(sources, top, folder, *options):
    """Runs a design with GHDL: what it printed."""
    must("ghdl", "-a", "--std=08", *sources, folder=folder)
    must("ghdl", "-e", "--std=08", top, folder=folder)
    return must("ghdl", "-r", "--std=08", top, *options, folder=folder)


def counted(output):
    """The lines of the design's own counters: path -> list of one field table."""
    counts = {}
    for line in output.splitlines():
        words = line.split()
        assert words[0] == "count" and len(words) == 7, line
        figures = [f"{int(word)}.000000" for word in words[2:]]
        counts["/dut/" + words[1]] = [dict(zip(FIELDS, figures))]
    return counts


@unittest.skipUnless(shutil.which("ghdl"), "GHDL is not installed (package ghdl-mcode)")
class Ghw(FolderCase):
    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        folder = cls.shared
        printed = simulate([HERE / "types.vhd"], "dut", folder, "--wave=types.ghw", "--vcd=types.vcd")
        cls.counts = counted(printed)
        cls.ghw, cls.vcd = folder / "types.ghw", folder / "types.vcd"

    def setUp(self):
        super().setUp()
        (self.folder / "run.tcl").write_text(SCRIPT)

    def record(self, waveform, **more):
        """Replays with SCRIPT: the transcript and the report."""
        shown = must(WFSIM, waveform, "-do", "run.tcl", folder=self.folder, **more)
        return shown, Report(self.folder / "out.saif")

    def test_agrees_with_the_design_s_own_count(self):
        _, report = self.record(self.ghw)
        self.assertEqual(list(report.check_sums()), [])
        self.assertEqual(report.header["DURATION"], ["17997000.00"])
        self.assertGreater(len(self.counts), 190)
        for path, expected in self.counts.items():
            with self.subTest(path):
                self.assertEqual(report.bits.get(path), expected)
        active = sum(counts[0]["TC"] != "0.000000" for counts in self.counts.values())
        glitches = sum(counts[0]["IG"] != "0.000000" for counts in self.counts.values())
        self.assertGreater(active, 150)
        self.assertGreater(glitches, 30)

    def test_agrees_with_the_vcd_of_the_same_run(self):
        _, ghw = self.record(self.ghw)
        _, vcd = self.record(self.vcd)
        self.assertEqual(ghw.header["DURATION"], vcd.header["DURATION"])
        # The VCD file has 32 bits of every integer, and a question mark for an index that is a state.
        integers = ("small", "larger", "nought", "falling", "full", "u1/steps",
                    "copies(2)/deeper/u2/steps")
        alone = {path for path in vcd.bits
                 if path.rsplit("(", 1)[0] not in {"/dut/" + name for name in integers}
                 and "(?)" not in path}
        self.assertGreater(len(alone), 250)
        self.assertEqual(alone - ghw.bits.keys(), set())
        for path in ghw.bits.keys() & vcd.bits.keys():
            with self.subTest(path):
                self.assertEqual(ghw.bits[path], vcd.bits[path])

    def test_the_serial_port_in_vhdl_gives_one_report_by_both_routes(self):
        example = ROOT / "examples" / "ghdl"
        simulate([example / "uart.vhd", example / "uart_tb.vhd"], "tb", self.folder,
                 "--wave=uart.ghw", "--vcd=uart.vcd")
        bits = []
        for waveform in ("uart.ghw", "uart.vcd"):
            must(WFSIM, waveform, "-do", UART / "run.tcl", folder=self.folder)
            bits.append(Report(self.folder / "uart.saif").bits)
        self.assertGreater(len(bits[0]), 100)
        self.assertEqual(bits[0], bits[1])

    def test_types_and_their_messages(self):
        shown, report = self.record(self.ghw)
        found = [line for line in shown.splitlines() if line.startswith(("Error", "Warning"))]
        self.assertEqual(found, MESSAGES)
        for name, width in WIDTHS.items():
            with self.subTest(name):
                pattern = re.compile(re.escape("/dut/" + name) + r"([(.][^/]*)?")
                self.assertEqual(sum(bool(pattern.fullmatch(path)) for path in report.bits), width)
        self.assertEqual({path for path in report.ports if path.startswith("/dut/u1/")}, PORTS)

    def test_every_way_in_gives_the_same_report(self):
        self.record(self.ghw)
        expected = without_date(self.folder / "out.saif")
        with self.subTest("pipe"), open(self.ghw, encoding="latin-1") as pipe:
            (self.folder / "out.saif").unlink()
            self.record("-", stdin=pipe)
            self.assertEqual(without_date(self.folder / "out.saif"), expected)
        with self.subTest("one command"):
            must(WFSIM, self.ghw, "-saif", "one.saif", "-stop", "4us", folder=self.folder)
            self.assertEqual(Report(self.folder / "one.saif").header["DURATION"], ["4000.00"])

    def test_a_file_that_was_cut_is_used_up_to_the_cut(self):
        content = self.ghw.read_bytes()
        (self.folder / "cut.ghw").write_bytes(content[:len(content) // 2])
        done = run(WFSIM, "cut.ghw", "-saif", "out.saif", folder=self.folder)
        self.assertEqual(done.returncode, 3, done.stdout)
        self.assertRegex(done.stdout, r"cut\.ghw: byte \d+, section CYC: expected .*end of file")
        self.assertGreater(len(Report(self.folder / "out.saif").bits), 400)


if __name__ == "__main__":
    unittest.main()
