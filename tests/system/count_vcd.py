#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""A second opinion: counts the switching activity in a VCD file, bit by bit, by itself.

Shares no code with the product and follows only the counting rules: the value at the end of a time
step is what counts; a window starts with the value that its first instant settled on; a change at
exactly the window's start belongs to before, one at exactly its end is counted; anything but 0 and 1
is unknown; a pass through unknown to the other level is one toggle, back to the same level one
glitch; the first known level after unknown counts nothing; windows add up, each with a fresh start.
"""

import argparse
import gzip
import re
import sys
from dataclasses import dataclass, field

UNITS = {"fs": -15, "ps": -12, "ns": -9, "us": -6, "ms": -3, "s": 0}
NOT_BITS = {"real", "realtime", "string", "event", "parameter"}
UNWATCHED_SCOPES = {"task", "function"}


@dataclass
class Bit:
    """What is kept of one bit: its level ('0', '1' or 'x') and its figures in ticks and counts."""

    level: str = "x"
    known: str | None = None
    since: int = 0
    time: dict = field(default_factory=lambda: {"0": 0, "1": 0, "x": 0})
    toggles: int = 0
    glitches: int = 0

    def credit(self, now):
        self.time[self.level] += now - self.since
        self.since = now

    def move(self, level, now):
        self.credit(now)
        self.level = level
        if level == "x":
            return
        if self.known == level:
            self.glitches += 1
        elif self.known is not None:
            self.toggles += 1
        self.known = level

    def figures(self):
        return {"T0": self.time["0"], "T1": self.time["1"], "TX": self.time["x"],
                "TC": self.toggles, "IG": self.glitches}


class Waveform:
    """The declarations of a VCD file and its changes, one settled time step after the other."""

    def __init__(self, path):
        opener = gzip.open if path.endswith(".gz") else open
        with opener(path, "rt", encoding="latin-1") as file:
            self.words = iter(file.read().split())
        self.resolution = -9
        self.width = {}
        self.names = []
        self.read_declarations()

    def section(self):
        text = []
        for word in self.words:
            if word == "$end":
                return text
            text.append(word)
        raise ValueError("the file ends inside a section")

    def read_declarations(self):
        scopes = []
        for word in self.words:
            text = self.section() if word.startswith("$") else []
            if word == "$enddefinitions":
                return
            if word == "$scope":
                scopes.append((text[0], text[1]))
            elif word == "$upscope":
                scopes.pop()
            elif word == "$timescale":
                count, unit = re.fullmatch(r"(1|10|100)([munpf]?s)", "".join(text)).groups()
                self.resolution = UNITS[unit] + len(count) - 1
            elif word == "$var":
                self.declare(scopes, *text)
        raise ValueError("the declarations have no end")

    def declare(self, scopes, kind, width, code, name, *select):
        if kind in NOT_BITS:
            return
        width = int(width)
        inside = None if name.startswith("\\") else re.fullmatch(r"(.+?)(\[-?\d+(?::-?\d+)?\])", name)
        if inside and not select:
            name, select = inside[1], [inside[2]]
        self.width[code] = width
        if any(scope in UNWATCHED_SCOPES for scope, _ in scopes):
            return
        # A VHDL extended identifier keeps its two backslashes.
        name = name if re.fullmatch(r"\\.+\\", name) else name.removeprefix("\\")
        base = "".join(f"/{scope}" for _, scope in scopes) + "/" + name
        for place, index in enumerate(indices(width, "".join(select))):
            path = base if index is None else f"{base}({index})"
            self.names.append((path.replace("[", "(").replace("]", ")"), code, place))

    def steps(self):
        """Yields (time, code -> levels) for each time step, with the last value of each code."""
        now, changed = 0, {}
        for word in self.words:
            head = word[0]
            if head == "#":
                if int(word[1:]) != now:
                    yield now, changed
                    now, changed = int(word[1:]), {}
            elif head in "bB":
                changed[next(self.words)] = word[1:]
            elif head in "rRsS":
                next(self.words)
            elif word == "$comment":
                self.section()
            elif head != "$":
                changed[word[1:]] = head
        yield now, changed

    def levels(self, code, text):
        text = text.lower()
        fill = "0" if text[0] in "01" else text[0]
        text = text.rjust(self.width[code], fill)[-self.width[code]:]
        return "".join(level if level in "01" else "x" for level in text)


def indices(width, select):
    """The index of every bit from left to right, or [None] for a scalar without one."""
    numbers = [int(number) for number in re.findall(r"-?\d+", select)]
    if len(numbers) == 2:
        step = 1 if numbers[1] >= numbers[0] else -1
        return list(range(numbers[0], numbers[1] + step, step))
    if len(numbers) == 1:
        return numbers
    return [None] if width == 1 else list(range(width - 1, -1, -1))


class Counter:
    """Runs over a waveform's steps with a list of windows (start, stop) in ticks."""

    def __init__(self, waveform, windows):
        self.waveform = waveform
        self.value = {code: "x" * width for code, width in waveform.width.items()}
        self.bits = {code: [Bit() for _ in value] for code, value in self.value.items()}
        self.edges = [edge for start, stop in windows for edge in ((start, True), (stop, False))]
        self.open = False

    def pass_edge(self):
        now, opens = self.edges.pop(0)
        for code, bits in self.bits.items():
            for bit, level in zip(bits, self.value[code]):
                if opens:
                    bit.level, bit.since = level, now
                    bit.known = None if level == "x" else level
                else:
                    bit.credit(now)
        self.open = opens

    def settle(self, now, changed):
        for code, text in changed.items():
            if code not in self.value:
                continue
            new = self.waveform.levels(code, text)
            if self.open and new != self.value[code]:
                for bit, level in zip(self.bits[code], new):
                    if level != bit.level:
                        bit.move(level, now)
            self.value[code] = new

    def run(self):
        for now, changed in self.waveform.steps():
            while self.edges and self.edges[0][0] < now:
                self.pass_edge()
            self.settle(now, changed)
        while self.edges:
            self.pass_edge()
        return {path: self.bits[code][place].figures()
                for path, code, place in self.waveform.names}


def ticks(text, resolution):
    """A time such as 1.5us or a bare number of ticks, in ticks."""
    number, unit = re.fullmatch(r"([\d.eE+-]+)\s*([munpf]?s)?", text).groups()
    return int(number) if unit is None else round(float(number) * 10.0 ** (UNITS[unit] - resolution))


def count(path, windows):
    """(path of a bit -> figures, resolution exponent, ticks in all windows)"""
    waveform = Waveform(path)
    edges = [(ticks(start, waveform.resolution), ticks(stop, waveform.resolution))
             for start, stop in windows]
    return Counter(waveform, edges).run(), waveform.resolution, sum(b - a for a, b in edges)


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("vcd")
    parser.add_argument("--window", nargs=2, action="append", required=True,
                        metavar=("START", "STOP"))
    options = parser.parse_args()
    bits, resolution, duration = count(options.vcd, options.window)
    print(f"# resolution 1e{resolution} s, {duration} ticks")
    for path, figures in bits.items():
        print(path, *(f"{name}={value}" for name, value in figures.items()))


if __name__ == "__main__":
    try:
        main()
    except BrokenPipeError:
        sys.exit(1)
