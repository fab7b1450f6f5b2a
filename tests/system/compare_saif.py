#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Compares a SAIF file, every field of every bit, with an independent count or another SAIF file.

    compare_saif.py REPORT --vcd FILE --window START STOP ... --instance /tb/dut --unit 1e-9
    compare_saif.py REPORT --saif OTHER

Exits with 1 and one line for each difference; also when for any bit T0 + T1 + TX is not DURATION.
"""

import argparse
import math
import re
import sys

import count_vcd

FIELDS = ("T0", "T1", "TX", "TC", "IG")
WORD = re.compile(r'"[^"]*"|[()]|(?:\\.|[^\s()"\\])+')


class Report:
    """A SAIF file: header fields as lists of words, path of a bit -> list of field tables, and the
    paths that are ports."""

    def __init__(self, path):
        with open(path, encoding="latin-1") as file:
            self.words = WORD.findall(file.read())
        self.at = 0
        self.header = {}
        self.bits = {}
        self.ports = set()
        self.expect("(", "SAIFILE")
        self.read_blocks("")
        if self.at != len(self.words):
            raise ValueError("text after the end of the file")

    def take(self):
        if self.at == len(self.words):
            raise ValueError("the file ends too early")
        self.at += 1
        return self.words[self.at - 1]

    def expect(self, *words):
        for word in words:
            got = self.take()
            if got != word:
                raise ValueError(f"expected {word}, got {got}")

    def read_blocks(self, path):
        while (word := self.take()) == "(":
            keyword = self.take()
            if keyword in ("INSTANCE", "VIRTUAL_INSTANCE"):
                if keyword == "VIRTUAL_INSTANCE":
                    self.take()
                self.read_blocks(path + "/" + plain(self.take()))
            elif keyword in ("PORT", "NET"):
                self.read_records(path, keyword == "PORT")
            else:
                self.header[keyword] = self.read_words()
        if word != ")":
            raise ValueError(f"expected a block, got {word}")

    def read_words(self):
        words = []
        while (word := self.take()) != ")":
            words.append(word)
        return words

    def read_records(self, path, ports):
        while (word := self.take()) == "(":
            name = path + "/" + plain(self.take())
            fields = {}
            while self.take() == "(":
                key, value = self.read_words()
                fields[key] = value
            if tuple(fields) != FIELDS:
                raise ValueError(f"{name}: fields {list(fields)}")
            self.bits.setdefault(name, []).append(fields)
            if ports:
                self.ports.add(name)
        if word != ")":
            raise ValueError(f"expected a record, got {word}")

    def check_sums(self):
        duration = float(self.header["DURATION"][0])
        for path, records in self.bits.items():
            for fields in records:
                total = sum(float(fields[key]) for key in ("T0", "T1", "TX"))
                # DURATION has two decimals, each of the three times has six.
                if not math.isclose(total, duration, rel_tol=1e-12, abs_tol=0.0050016):
                    yield f"{path}: T0 + T1 + TX = {total}, DURATION = {duration}"


def plain(name):
    """A name without its escapes, indices in parentheses."""
    return re.sub(r"\\(.)", r"\1", name).replace("[", "(").replace("]", ")")


def expected_from_vcd(options):
    """What the report must hold by the independent count: path -> list of one field table."""
    bits, resolution, length = count_vcd.count(options.vcd, options.window)
    scale = 10.0 ** (resolution - int(math.log10(float(options.unit))))
    expected = {}
    for path, figures in bits.items():
        owner = path.rsplit("/", 1)[0]
        if not inside(owner, options.instance):
            continue
        if any(inside(owner, region) for region in options.off) and not any(
                inside(owner, region) for region in options.on):
            continue
        expected[path] = [{key: f"{value * scale if key[0] == 'T' and key != 'TC' else value:.6f}"
                           for key, value in figures.items()}]
    return expected, f"{length * scale:.2f}"


def inside(region, outer):
    return region == outer or region.startswith(outer + "/")


def differences(got, want):
    for path in want.keys() - got.keys():
        yield f"{path}: missing"
    for path in got.keys() - want.keys():
        yield f"{path}: not expected"
    for path in got.keys() & want.keys():
        if sorted(map(str, got[path])) != sorted(map(str, want[path])):
            yield f"{path}: got {got[path]}, expected {want[path]}"


def compare(options):
    report = Report(options.report)
    yield from report.check_sums()
    if options.saif:
        other = Report(options.saif)
        expected, duration = other.bits, other.header["DURATION"][0]
    else:
        expected, duration = expected_from_vcd(options)
    if report.header["DURATION"] != [duration]:
        yield f"DURATION: got {report.header['DURATION']}, expected {duration}"
    if not expected:
        yield "nothing to compare: no bit is expected"
    yield from sorted(differences(report.bits, expected))


def main():
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("report")
    parser.add_argument("--saif")
    parser.add_argument("--vcd")
    parser.add_argument("--window", nargs=2, action="append", metavar=("START", "STOP"))
    parser.add_argument("--instance", default="")
    parser.add_argument("--off", action="append", default=[], metavar="REGION",
                        help="a region that is not watched")
    parser.add_argument("--on", action="append", default=[], metavar="REGION",
                        help="a watched region inside one that is not")
    parser.add_argument("--unit", default="1e-9")
    options = parser.parse_args()
    found = list(compare(options))
    for line in found[:50]:
        print(line)
    if len(found) > 50:
        print(f"... and {len(found) - 50} more")
    if found:
        sys.exit(1)
    print("every field of every bit agrees")


if __name__ == "__main__":
    main()
