#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Measures what the size of a design costs: every command of a recording, at growing sizes and in
three shapes, and the memory it takes.

A waveform of one-bit signals with few events is made for each shape: flat (all signals in one
region), wide (a region with 50,000 children) and deep (1,000 levels). wfsim replays it with a script
that notes its own CPU time after every command. The table shows nanoseconds of user CPU time a bit
for each command, of system CPU time for all of them, and bytes a bit of resident memory while
recording and at the peak of the report. System time is nearly all for fresh pages, which on a
virtual machine cost what the host makes of them. The report goes to /dev/null: below 1,000 levels
it is mostly indentation, many gigabytes of it.
"""

import argparse
import os
import pathlib
import statistics
import subprocess
import sys
import tempfile
import typing

SHAPES = ("flat", "wide", "deep")
CHILDREN = 50_000
LEVELS = 1_000
STEPS = 20
SIGNALS_PER_STEP = 5_000
NAME_LENGTH = 40

# Notes go to notes.txt, lines of: name, user and system time (hundredths of a second), resident kB,
# peak kB.
SCRIPT = """
proc field {name} {
    set file [open /proc/self/status]
    set text [read $file]
    close $file
    regexp "$name:\\\\s+(\\\\d+)" $text -> kilobytes
    return $kilobytes
}
proc note {name} {
    set file [open /proc/self/stat]
    lassign [lrange [lindex [split [read $file] )] 1] 11 12] user system
    close $file
    puts $::notes "$name $user $system [field VmRSS] [field VmHWM]"
    flush $::notes
}
set notes [open notes.txt w]
note load
set_toggle_region /top
note register
toggle_start
note open
run -all
note replay
toggle_stop
note close
toggle_report /dev/null 1.0e-9 /top
note report
quit
"""
PHASES = ("register", "open", "replay", "close", "report", "quit")


def code(number):
    """Identifier codes as simulators count them: base 94, the lowest digit first."""
    text = chr(33 + number % 94)
    while number := number // 94:
        number -= 1
        text += chr(33 + number % 94)
    return text


class Writer:
    """Writes the waveform's declarations; signals are numbered in the order of declaration."""

    def __init__(self, file):
        self.file = file
        self.count = 0

    def signals(self, count, path_length):
        """Full names of NAME_LENGTH characters, or as short as they can be below a long path."""
        width = max(NAME_LENGTH - path_length - 1, 8)
        self.file.writelines(
            f"$var wire 1 {code(number)} {'s' + str(number).rjust(width - 1, '_')} $end\n"
            for number in range(self.count, self.count + count))
        self.count += count

    def enter(self, name):
        self.file.write(f"$scope module {name} $end\n")

    def leave(self, times=1):
        self.file.write("$upscope $end\n" * times)


def declare(writer, shape, bits):
    writer.enter("top")
    if shape == "flat":
        writer.signals(bits, len("/top"))
    elif shape == "wide":
        for child in range(CHILDREN):
            writer.enter(f"u{child}")
            writer.signals(bits // CHILDREN, len(f"/top/u{child}"))
            writer.leave()
    else:
        length = len("/top")
        for _ in range(LEVELS):
            writer.enter("u")
            length += 2
            writer.signals(bits // LEVELS, length)
        writer.leave(LEVELS)
    writer.leave()


def make_waveform(path, shape, bits):
    with open(path, "w", encoding="ascii") as file:
        file.write("$timescale 1ns $end\n")
        writer = Writer(file)
        declare(writer, shape, bits)
        file.write("$enddefinitions $end\n")
        stride = max(writer.count // SIGNALS_PER_STEP, 1)
        for step in range(STEPS):
            file.write(f"#{step * 10}\n")
            file.writelines(f"{(step + number) % 2}{code(number)}\n"
                            for number in range(step % stride, writer.count, stride))
        file.write(f"#{STEPS * 10}\n")
    return writer.count


class Note(typing.NamedTuple):
    user: float  # seconds
    system: float
    resident: int  # bytes
    peak: int


def record(build, folder):
    """The notes by name, with quit's from outside."""
    (folder / "scale.tcl").write_text(SCRIPT)
    with open(folder / "printed.txt", "w+", encoding="utf-8") as printed:
        process = subprocess.Popen([build / "bin/wfsim", "scale.vcd", "-do", "scale.tcl"],
                                   cwd=folder, stdin=subprocess.DEVNULL, stdout=printed,
                                   stderr=subprocess.STDOUT)
        status, usage = wait(process)
        if status != 0:
            printed.seek(0)
            sys.exit(f"wfsim ended with {status}:\n{printed.read()[-2000:]}")
    notes = {}
    for line in (folder / "notes.txt").read_text().splitlines():
        name, user, system, resident, peak = line.split()
        notes[name] = Note(int(user) / 100, int(system) / 100, int(resident) * 1024,
                           int(peak) * 1024)
    notes["quit"] = Note(usage.ru_utime, usage.ru_stime, 0, usage.ru_maxrss * 1024)
    return notes


def wait(process):
    _, status, usage = os.wait4(process.pid, 0)
    process.returncode = os.waitstatus_to_exitcode(status)
    return process.returncode, usage


def cells_of(notes, count):
    """Load, the phases, system time and the two memory columns: all for one bit."""
    seconds = []
    before = 0.0
    for phase in ("load", *PHASES):
        seconds.append(notes[phase].user - before)
        before = notes[phase].user
    seconds.append(notes["quit"].system)
    return [value / count * 1e9 for value in seconds] + [notes["replay"].resident / count,
                                                         notes["report"].peak / count]


def row_for(build, shape, bits):
    with tempfile.TemporaryDirectory(dir=build) as name:
        folder = pathlib.Path(name)
        count = make_waveform(folder / "scale.vcd", shape, bits)
        # A small design is measured often, since the clock's steps are hundredths of a second.
        rounds = min(max(4_000_000 // bits, 1), 40)
        runs = [cells_of(record(build, folder), count) for _ in range(rounds)]
    return [shape, f"{count:,}", *(f"{statistics.mean(cell):.0f}" for cell in zip(*runs))]


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--build", type=pathlib.Path, required=True)
    parser.add_argument("--shapes", nargs="+", choices=SHAPES, default=SHAPES)
    parser.add_argument("bits", nargs="+", type=int, help="sizes of the design")
    options = parser.parse_args()
    print("nanoseconds of user CPU time a bit for each command, of system CPU time for all; bytes a bit")
    print_row(["shape", "bits", "load", *PHASES, "system", "recording", "peak"])
    for shape in options.shapes:
        for bits in options.bits:
            print_row(row_for(options.build.resolve(), shape, bits))


def print_row(cells):
    """At once: the large sizes take minutes."""
    print(cells[0].rjust(5), cells[1].rjust(11), *(cell.rjust(9) for cell in cells[2:]), flush=True)


if __name__ == "__main__":
    main()
