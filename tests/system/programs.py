# SPDX-License-Identifier: Apache-2.0
"""What the system tests share: where the built programs are and how they are run."""

import os
import pathlib
import re
import subprocess
import tempfile
import unittest

BUILD = pathlib.Path(os.environ["WATTFORGE_BUILD"])
ROOT = pathlib.Path(__file__).resolve().parents[2]
HERE = pathlib.Path(__file__).resolve().parent
WFSIM = str(BUILD / "bin" / "wfsim")
UART = ROOT / "examples" / "uart"


def run(*command, folder, **more):
    """Runs a command to its end; the answer has returncode, stdout and stderr as text."""
    return subprocess.run([str(word) for word in command], cwd=folder, text=True,
                          capture_output=True, timeout=300, **more)


def must(*command, folder, **more):
    """The same for a command that has to succeed: its output."""
    done = run(*command, folder=folder, **more)
    if done.returncode != 0:
        raise AssertionError(f"{command} ended with {done.returncode}:\n{done.stdout}{done.stderr}")
    return done.stdout


class FolderCase(unittest.TestCase):
    """Each test has a folder of its own, each class one that its tests share."""

    maxDiff = None

    @classmethod
    def setUpClass(cls):
        shared = tempfile.TemporaryDirectory()
        cls.addClassCleanup(shared.cleanup)
        cls.shared = pathlib.Path(shared.name)

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)


def simulate_uart(folder):
    """The serial port's waveform, made by Icarus Verilog: folder/uart.vcd"""
    must("iverilog", "-g2005", "-o", "uart.vvp", UART / "uart.v", UART / "uart_tb.v", folder=folder)
    must("vvp", "-n", "uart.vvp", "+vcd", folder=folder)
    return pathlib.Path(folder) / "uart.vcd"


def without_date(saif):
    """A report's text with its date masked, the one line that may differ between two runs."""
    text = pathlib.Path(saif).read_text(encoding="latin-1")
    masked, count = re.subn(r'^\(DATE "\w{3} \w{3} [ \d]\d \d\d:\d\d:\d\d \d{4}"\)$', "(DATE)", text,
                            flags=re.MULTILINE)
    assert count == 1, f"{saif}: no date of the expected form"
    return masked
