#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""What cannot go well: damaged waveforms, missing plug-ins, a full disk; nothing is lost silently."""

import pathlib
import tempfile
import unittest

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
