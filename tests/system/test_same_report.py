#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Keeps the reports of the three kinds of design that the benchmarks use the same, byte for byte,
whatever is done for speed: golden/three_kinds.txt holds the digests of each waveform and report.

Called as `test_same_report.py --write FILE` it writes the digests that this build gives.
"""

import hashlib
import pathlib
import re
import sys
import tempfile
import unittest

from programs import HERE, ROOT, WFSIM, must, run, without_date

GOLDEN = HERE / "golden" / "three_kinds.txt"
CYCLES = {"cpu": 150, "netlist": 6, "buses": 30}


def digest(text):
    return hashlib.sha256(text.encode("latin-1")).hexdigest()[:32]


def without_origin(vcd):
    """A waveform's text without the simulator's date and version."""
    text = vcd.read_text(encoding="latin-1")
    return re.sub(r"^\$(date|version)\b.*?\$end\n", "", text, count=2, flags=re.DOTALL | re.MULTILINE)


def record(kind, folder):
    """Simulates and records one kind: the waveform's path and both digests."""
    must("iverilog", "-g2005", "-o", "design.vvp", ROOT / "bench/designs" / f"{kind}.v",
         folder=folder)
    must("vvp", "-n", "design.vvp", f"+cycles={CYCLES[kind]}", folder=folder)
    must(WFSIM, "bench.vcd", "-saif", "out.saif", folder=folder)
    waveform = pathlib.Path(folder) / "bench.vcd"
    return waveform, digest(without_origin(waveform)), digest(
        without_date(pathlib.Path(folder) / "out.saif"))


class SameReport(unittest.TestCase):
    def test_three_kinds(self):
        golden = dict((line.split()[0], line.split()[1:])
                      for line in GOLDEN.read_text().splitlines())
        self.assertEqual(set(golden), set(CYCLES))
        for kind, (waveform_digest, report_digest) in golden.items():
            with self.subTest(kind), tempfile.TemporaryDirectory() as folder:
                waveform, this_waveform, this_report = record(kind, folder)
                if this_waveform == waveform_digest:
                    self.assertEqual(this_report, report_digest, "another report than before")
                else:
                    self.recount(folder, waveform, kind)

    def recount(self, folder, waveform, kind):
        """For a simulator that dumps another waveform: every figure by the independent count."""
        print(f"{kind}: another waveform than the golden one's; comparing with a count instead")
        end = re.findall(r"^#(\d+)$", waveform.read_text(encoding="latin-1"), re.MULTILINE)[-1]
        done = run("python3", HERE / "compare_saif.py", "out.saif", "--vcd", waveform,
                   "--window", "0", end, "--instance", "/tb", folder=folder)
        self.assertEqual(done.returncode, 0, done.stdout + done.stderr)


def write(path):
    with open(path, "w", encoding="ascii") as file:
        for kind in CYCLES:
            with tempfile.TemporaryDirectory() as folder:
                file.write(" ".join((kind, *record(kind, folder)[1:])) + "\n")


if __name__ == "__main__":
    if sys.argv[1:2] == ["--write"]:
        write(sys.argv[2])
    else:
        unittest.main()
