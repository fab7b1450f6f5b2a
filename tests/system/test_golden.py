#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""A report worked out by hand, byte for byte apart from its date."""

import unittest

from programs import HERE, WFSIM, FolderCase, must, without_date


class Golden(FolderCase):
    def test_small_design(self):
        golden = HERE / "golden"
        must(WFSIM, golden / "small.vcd", "-do", golden / "small.tcl", folder=self.folder)
        self.assertEqual(without_date(self.folder / "small.saif"), (golden / "small.saif").read_text())


if __name__ == "__main__":
    unittest.main()
