#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""A report worked out by hand, byte for byte apart from its date, and what every debug level says."""

import os
import unittest

from programs import HERE, ROOT, WFSIM, FolderCase, must, run, without_date

# A forward file without its last parentheses.
FORWARD = ('(SAIFILE (SAIFVERSION "2.0") (DIRECTION "forward") (DESIGN) (DATE) (VENDOR) (PROGRAM_NAME)\n'
           "(VERSION) (DIVIDER /) (INSTANCE top (INSTANCE nested (NET (inner in/Q)))")


class Golden(FolderCase):
    def test_small_design(self):
        golden = HERE / "golden"
        must(WFSIM, golden / "small.vcd", "-do", golden / "small.tcl", folder=self.folder)
        self.assertEqual(without_date(self.folder / "small.saif"), (golden / "small.saif").read_text())

    def test_what_each_debug_level_says(self):
        (self.folder / "damaged.fsaif").write_text(FORWARD)
        (self.folder / "whole.fsaif").write_text(FORWARD + "))")
        said = ""
        for level, is_rtl in [(-1, 0), (0, 1), (1, 0), (1, 1), (2, 0), (2, 1), (3, 0), (4, 0), (5, 0)]:
            said += f"== level {level}, RTL {is_rtl}\n"
            done = run(WFSIM, ROOT / "tests/data/kinds.ghw", "-do", HERE / "golden" / "levels.tcl",
                       folder=self.folder, env=os.environ | {"LEVEL": str(level), "RTL": str(is_rtl)})
            said += done.stdout
        self.assertEqual(said, (HERE / "golden" / "levels.txt").read_text())


if __name__ == "__main__":
    unittest.main()
