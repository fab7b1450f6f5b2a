#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Says what the report of an RTL run must hold, object by object, and compares a report with that.

    compare_rtl.py REPORT --vcd FILE --forward FILE --testbench /tb/dut --window START STOP
                   [--scope REGION]... [--on REGION]... [--unit 1e-9]

Reads the waveform and the forward file by itself and counts with count_vcd.py; shares no code with
the product. Exits with 1 and one line for each difference.
"""

import argparse
import math
import re
import sys

import compare_saif
import count_vcd

COMMENT = re.compile(r"//[^\n]*|/\*.*?\*/", re.DOTALL)
KINDS = {'"sequential"': "sequential", '"tri-state"': "tri-state"}


class ForwardFile:
    """The objects of a forward file: full RTL name -> list of (name for synthesis, kind or None)."""

    def __init__(self, path):
        with open(path, encoding="latin-1") as file:
            self.words = iter(compare_saif.WORD.findall(COMMENT.sub(" ", file.read())))
        self.divider = "."
        self.objects = {}
        self.block("")

    def group(self):
        """The words up to the next closing parenthesis."""
        return list(iter(lambda: next(self.words), ")"))

    def block(self, path):
        for word in self.words:
            if word == ")":
                return
            keyword = next(self.words)
            if keyword == "INSTANCE":
                name = next(self.words)
                self.block(path + self.path(next(self.words) if name[0] == '"' else name) + "/")
            elif keyword in ("PORT", "NET"):
                self.entries(path)
            elif keyword != "SAIFILE":
                words = self.group()
                if keyword == "DIVIDER" and words:
                    self.divider = words[0]
            else:
                self.block(path)

    def entries(self, path):
        while next(self.words) == "(":
            first, second, *kind = self.group()
            mapped = (path + self.path(second), KINDS.get(kind[0]) if kind else None)
            self.objects.setdefault(path + self.path(first), []).append(mapped)

    def path(self, word):
        parts = re.split(rf"(?<!\\){re.escape(self.divider)}", word)
        return "/".join(re.sub(r"\\(.)", r"\1", part) for part in parts)


class Report(compare_saif.Report):
    """A report's records as (name, PORT or NET, kind of the instance) -> list of figures."""

    def read_blocks(self, path):
        self.kind = getattr(self, "kind", [None])
        while (word := self.take()) == "(":
            keyword = self.take()
            if keyword in ("INSTANCE", "VIRTUAL_INSTANCE"):
                self.kind.append(self.take().strip('"') if keyword[0] == "V" else None)
                self.read_blocks(path + "/" + unescaped(self.take()))
                self.kind.pop()
            elif keyword in ("PORT", "NET"):
                self.section = keyword
                self.read_records(path)
            else:
                self.header[keyword] = self.read_words()

    def read_records(self, path):
        while self.take() == "(":
            key = (path + "/" + unescaped(self.take()), self.section, self.kind[-1])
            fields = {}
            while self.take() == "(":
                name, value = self.read_words()
                fields[name] = value
            self.bits.setdefault(key, []).append(fields)


def unescaped(name):
    return re.sub(r"\\(.)", r"\1", name)


def expected_records(options):
    """What must be in the report, in the form of Report.bits."""
    bits, resolution, _ = count_vcd.count(options.vcd, options.window)
    objects = ForwardFile(options.forward).objects
    scale = 10.0 ** (resolution - int(math.log10(float(options.unit))))
    expected = {}
    for path, figures in bits.items():
        # The outermost instance stands for the testbench path; an object has square brackets.
        below = path.removeprefix(options.testbench).replace("(", "[").replace(")", "]")
        mapped = objects.get("top" + below, []) if path.startswith(options.testbench) else []
        in_scope = any(path.startswith(region) for region in options.scope)
        is_on = any(path.rsplit("/", 1)[0].startswith(region) for region in options.on)
        if not in_scope or not (mapped or is_on) or not path.startswith(options.testbench):
            continue
        fields = {name: f"{value * scale if name in ('T0', 'T1', 'TX') else value:.6f}"
                  for name, value in figures.items()}
        keys = [(options.testbench + name[3:], "PORT", kind) for name, kind in mapped]
        # A waveform does not say which of its variables are ports.
        for key in keys or [(options.testbench + below, "NET", None)]:
            expected.setdefault(key, []).append(fields)
    return expected


def main():
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("report")
    parser.add_argument("--vcd", required=True)
    parser.add_argument("--forward", required=True)
    parser.add_argument("--testbench", required=True, help="also the reported instance")
    parser.add_argument("--window", nargs=2, action="append", required=True,
                        metavar=("START", "STOP"))
    parser.add_argument("--scope", action="append", metavar="REGION")
    parser.add_argument("--on", action="append", default=[], metavar="REGION")
    parser.add_argument("--unit", default="1e-9")
    options = parser.parse_args()
    options.scope = options.scope or [options.testbench]

    want = expected_records(options)
    got = Report(options.report).bits
    shown = {" ".join(map(str, key)): value for key, value in got.items()}
    wanted = {" ".join(map(str, key)): value for key, value in want.items()}
    found = sorted(compare_saif.differences(shown, wanted))
    print(*found, sep="\n", end="\n" if found else "")
    if found or not want:
        sys.exit(1)
    kinds = [kind for _, _, kind in want]
    print(f"all {len(want)} objects agree: {kinds.count('sequential')} sequential, "
          f"{kinds.count('tri-state')} tri-state, {kinds.count(None)} ordinary")


if __name__ == "__main__":
    main()
