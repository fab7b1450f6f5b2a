#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Every refusal of a command out of order, through the Tcl shell, with its exact text.

One script goes through a whole life; each row is a command and all that the transcript shows for it.
"""

import unittest

from programs import HERE, WFSIM, FolderCase, run

ERROR = "Error (KLVA-PWR): "
DONE = "Information (KLVA-PWR): "

LIFE = [
    ("toggle_start", [ERROR + "set_toggle_region must be done before toggle_start."]),
    ("toggle_stop", [ERROR + "set_toggle_region must be done before toggle_stop."]),
    ("toggle_report a.saif 1.0e-9 /top",
     [ERROR + "set_toggle_region must be done before toggle_report"]),
    ("toggle_reset", [ERROR + "set_toggle_region must be done before toggle_reset"]),
    ("set_toggle_region /nowhere",
     ["Warning (KLVA-PWR): Could not find signal or region for argument /nowhere, Skipping",
      DONE + "Completed set_toggle_region"]),
    ("set_net_monitoring_policy on /top", [DONE + "Net monitoring policy done"]),
    ("set_toggle_region /top/clk", [DONE + "Completed set_toggle_region"]),
    ("read_rtl_saif x.fsaif", [ERROR + "read_rtl_saif must be done before set_toggle_region."]),
    ("set_net_monitoring_policy on /top",
     [ERROR + "set_net_monitoring_policy must be done before set_toggle_region."]),
    ("set_toggle_region /top/u1",
     [ERROR + "Multiple calls to set_toggle_region are not allowed."]),
    ("toggle_stop", [ERROR + "toggle_start must be done before toggle_stop."]),
    ("toggle_report a.saif 1.0e-9 /top",
     [ERROR + "toggle_stop must be done before toggle_report"]),
    ("toggle_reset", [ERROR + "toggle_report must be done before toggle_reset"]),
    ("toggle_start", [DONE + "Turned on counting window at time 0.000000"]),
    ("run 25", []),
    ("toggle_start", [ERROR + "Two consecutive calls to toggle_start are not allowed. "
                              "A toggle_stop must be done in between."]),
    ("set_toggle_region /top", [ERROR + "Multiple calls to set_toggle_region are not allowed."]),
    ("toggle_report a.saif 1.0e-9 /top",
     [ERROR + "toggle_stop must be done before toggle_report"]),
    ("toggle_reset", [ERROR + "toggle_report must be done before toggle_reset"]),
    ("toggle_stop", [DONE + "Turned off counting window at time 25.000000"]),
    ("toggle_stop", [ERROR + "toggle_start must be done before toggle_stop."]),
    ("toggle_reset", [ERROR + "toggle_report must be done before toggle_reset"]),
    ("toggle_report a.saif 1.0e-9 /top",
     [DONE + 'Report done, wrote file "a.saif" at time 25.000000']),
    ("toggle_report b.saif 1.0e-9 /top",
     [DONE + 'Report done, wrote file "b.saif" at time 25.000000']),
    ("toggle_start", [DONE + "Turned on counting window at time 25.000000"]),
    ("toggle_report c.saif 1.0e-9 /top",
     [ERROR + "toggle_stop must be done before toggle_report"]),
    ("toggle_stop", [DONE + "Turned off counting window at time 25.000000"]),
    ("toggle_reset", [DONE + "Resetting counting windows at time 25.000000"]),
    ("toggle_reset", [ERROR + "toggle_report must be done before toggle_reset"]),
    ("toggle_report c.saif 1.0e-9 /top",
     [ERROR + "toggle_stop must be done before toggle_report"]),
    ("toggle_start", [DONE + "Turned on counting window at time 25.000000"]),
    ("toggle_stop", [DONE + "Turned off counting window at time 25.000000"]),
    ("toggle_report b.saif 1.0e-9 /top",
     [DONE + 'Report done, wrote file "b.saif" at time 25.000000']),
    ("toggle_start", [DONE + "Turned on counting window at time 25.000000"]),
    ("toggle_reset", [DONE + "Resetting counting windows at time 25.000000"]),  # and the window
    ("toggle_stop", [ERROR + "toggle_start must be done before toggle_stop."]),
    ("toggle_debug_level -1", [ERROR + "incorrect arguments to toggle_debug_level"]),
    ("toggle_debug_level", ["Setting debug level to 0"]),
]
REFUSED = [command for command, lines in LIFE if lines and not lines[0].startswith((DONE, "Setting"))]


class Order(FolderCase):
    def test_every_refusal(self):
        script = "".join(f"puts {{> {command}}}\n{command}\n" for command, _ in LIFE)
        (self.folder / "life.tcl").write_text(script + "puts end\n")
        done = run(WFSIM, HERE / "golden" / "small.vcd", "-do", "life.tcl", folder=self.folder)
        saif = (self.folder / "a.saif").read_text()
        files = {path.name for path in self.folder.iterdir()}
        expected = ["Kelvara power code initialized and linked successfully"]
        for command, lines in LIFE:
            expected += ["> " + command, *lines]
        self.assertEqual(done.stdout.splitlines(),
                         expected + ["end", f"Error: {len(REFUSED)} errors were reported"])
        self.assertEqual(done.returncode, 1)
        self.assertEqual(files, {"life.tcl", "a.saif", "b.saif"})
        # The refused commands changed nothing: clk is 0 until 10, 1 until 20, then 0 again.
        self.assertIn("(T0 1.500000) (T1 1.000000) (TX 0.000000)\n         (TC 2.000000)", saif)


if __name__ == "__main__":
    unittest.main()
