#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""A report worked out by hand, byte for byte apart from its date."""

import pathlib
import shutil
import tempfile
import unittest

from programs import HERE, WFSIM, must, without_date


class Golden(unittest.TestCase):
    def test_small_design(self):
        self.maxDiff = None
        with tempfile.TemporaryDirectory() as name:
            folder = pathlib.Path(name)
            for file in ("small.vcd", "small.tcl"):
                shutil.copy(HERE / "golden" / file, folder)
            must(WFSIM, "small.vcd", "-do", "small.tcl", folder=folder)
            expected = (HERE / "golden" / "small.saif").read_text()
            self.assertEqual(without_date(folder / "small.saif"), expected)


if __name__ == "__main__":
    unittest.main()
