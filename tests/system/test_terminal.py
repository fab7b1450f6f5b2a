#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""What shows on a terminal only: the prompt with completion and history, and the progress line."""

import os
import pty
import re
import select
import signal
import subprocess
import termios
import time
import unittest

from programs import WFSIM, FolderCase

WAVEFORM = """$timescale 1 ns $end
$scope module tb $end
$var wire 1 ! clk $end
$scope module dut $end
$var wire 4 " data [3:0] $end
$var wire 1 # done $end
$scope begin lane[1] $end
$var wire 1 # busy $end
$upscope $end
$upscope $end
$upscope $end
$enddefinitions $end
#0
0!
b0110 "
1#
#100
1!
"""
PROMPT = "wfsim> "


def plain(shown):
    return re.sub(r"\x1b\[[0-9;?]*[A-Za-z]|\x1b[=>]|\x07|\r", "", shown)


class Terminal:
    """A program on a terminal of its own; screen() is what it has shown since the last call."""

    def __init__(self, folder, *command, stdin=None, only_errors=False):
        self.ours, theirs = pty.openpty()
        environment = os.environ | {"HOME": str(folder), "TERM": "xterm"}
        self.process = subprocess.Popen(
            command, cwd=folder, env=environment, start_new_session=True,
            stdin=theirs if stdin is None else stdin,
            stdout=subprocess.DEVNULL if only_errors else theirs, stderr=theirs)
        os.close(theirs)

    def close(self):
        self.process.kill()
        self.process.wait()
        os.close(self.ours)

    def type(self, text):
        """Types when the line editor is ready: it shows its prompt before it takes the terminal."""
        while termios.tcgetattr(self.ours)[3] & termios.ICANON:
            time.sleep(0.01)
        os.write(self.ours, text.encode())

    def read(self, ended):
        """Shown text until ended(text) holds or the program has ended."""
        text = ""
        deadline = time.monotonic() + 60
        while not ended(text) and time.monotonic() < deadline:
            if not select.select([self.ours], [], [], 1.0)[0]:
                continue
            try:
                data = os.read(self.ours, 65536)
            except OSError:  # the other end is closed
                break
            if not data:
                break
            text += data.decode()
        return text

    def until(self, text):
        """Shown text up to and including this; screen codes are taken out."""
        shown = self.read(lambda shown: text in plain(shown))
        return plain(shown)

    def rest(self):
        return self.read(lambda _: False)


class OnTerminal(FolderCase):
    def setUp(self):
        super().setUp()
        (self.folder / "t.vcd").write_text(WAVEFORM)

    def open(self, *arguments, **more):
        terminal = Terminal(self.folder, WFSIM, *arguments, **more)
        self.addCleanup(terminal.close)
        return terminal


class Prompt(OnTerminal):
    def setUp(self):
        super().setUp()
        self.terminal = self.open("t.vcd")
        self.assertIn(PROMPT, self.terminal.until(PROMPT))

    def answer(self, typed, until=PROMPT):
        self.terminal.type(typed + "\r")
        shown = self.terminal.until("\n" + until)
        self.assertTrue(shown.endswith("\n" + until), shown)
        return shown.splitlines()[1:-1]

    def test_results_errors_and_several_lines(self):
        rows = [
            ("run 10 us", ["Note: run stopped at 100 ns, the end of the data"]),
            ("now", ["100 ns"]),
            ("set x 5; puts a", ["a"]),
            ("nonsense", ['Error: invalid command name "nonsense"']),
            ("list $x", ["5"]),
            ("toggle_interrupt", ["Error: interrupted"]),
            ("toggle_stop",
             ["Error (KLVA-PWR): set_toggle_region must be done before toggle_stop."]),
        ]
        for typed, shown in rows:
            self.assertEqual(self.answer(typed), shown)
        self.answer("if 1 {", "> ")
        self.assertEqual(self.answer("puts one }"), ["one"])

    def test_completion(self):
        rows = [  # typed, what is shown of it; Ctrl-U begins anew
            ("exa\t/tb/du\t", "examine /tb/dut"),
            ("\tda\t", "/data "),
            ("\x15set_t\tdut/do\t", "set_toggle_region dut/done "),
            ("\x15puts [exa\t{dut/la\t\tbu\t", "puts [examine {dut/lane[1]/busy"),
            ("\x15find re\t-re\t", "find regions -recursive "),
            ("\x15puts a; examine /tb/dut/d\t",
             "\ndata  done\n" + PROMPT + "puts a; examine /tb/dut/d"),
            ("\x15do t.v\t", "do t.vcd "),
        ]
        for typed, line in rows:
            self.terminal.type(typed)
            self.assertTrue(self.terminal.until(line).endswith(line), line)
        self.terminal.type("\x15")
        self.assertEqual(self.answer("puts [examine {dut/lane[1]/busy}]"), ["U"])  # before time 0

    def test_the_prompt_begins_a_line(self):
        self.assertEqual(self.answer("puts -nonewline open"), ["open"])

    def test_the_interrupt_key_clears_the_line(self):
        self.terminal.type("nonsense")
        self.terminal.until("nonsense")
        os.kill(self.terminal.process.pid, signal.SIGINT)
        self.terminal.until(PROMPT)
        self.assertEqual(self.answer("puts kept"), ["kept"])

    def test_end_of_input_and_history(self):
        self.answer("puts remembered")
        self.terminal.type("\x04")
        self.terminal.rest()
        self.assertEqual(self.terminal.process.wait(60), 0)
        self.assertIn("remembered", (self.folder / ".wfsim_history").read_text().replace(r"\040", " "))
        again = self.open("t.vcd")
        again.until(PROMPT)
        again.type("\x1b[A")  # cursor up
        self.assertIn("puts remembered", again.until("puts remembered"))
        again.type("\rquit -code 4\r")
        again.rest()
        self.assertEqual(again.process.wait(60), 4)


class Progress(OnTerminal):
    ERASED = "\r\x1b\\[K"
    LINE = r"\d+ MB, at [\d.]+ [num]s, \d+ MB/s"

    def feed(self, waveform):
        """Events, slowly."""
        at = 100
        for _ in range(4):
            lines = []
            while len(lines) < 150000:
                at += 10
                lines.append(f"#{at}\n{at // 10 % 2}!\n")
            waveform.write("".join(lines))
            waveform.flush()
            time.sleep(0.3)

    def shown_on_the_way(self, *arguments):
        """What a terminal shows while the waveform comes slowly."""
        reading, writing = os.pipe()
        terminal = self.open("-", "-do", "run -all", *arguments, stdin=reading, only_errors=True)
        os.close(reading)
        with os.fdopen(writing, "w") as waveform:
            waveform.write(WAVEFORM)
            self.feed(waveform)
        shown = terminal.rest()
        self.assertEqual(terminal.process.wait(60), 0)
        return shown

    def test_drawn_over_itself_and_taken_away(self):
        self.assertRegex(self.shown_on_the_way(),
                         f"^(({self.ERASED})+{self.LINE})+{self.ERASED}$")

    def test_taken_away_before_the_prompt(self):
        os.mkfifo(self.folder / "wave")
        terminal = self.open("wave")
        with open(self.folder / "wave", "w") as waveform:
            waveform.write("$comment " + 4096 * "." + " $end\n" + WAVEFORM)
            waveform.flush()
            terminal.until(PROMPT)
            terminal.type("run -all\r")
            self.feed(waveform)
        shown = terminal.read(lambda shown: PROMPT in shown)
        self.assertRegex(shown, self.LINE + self.ERASED + r"\r?" + PROMPT)

    def test_not_shown_when_it_shall_be_quiet(self):
        self.assertEqual(self.shown_on_the_way("-quiet"), "")


if __name__ == "__main__":
    unittest.main()
