#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Shows what a backward SAIF file holds on one screen: window, number of bits, most active bits."""

import argparse
import os
import re
import sys

TOKEN = re.compile(r'"[^"]*"|[()]|(?:\\.|[^\s()"])+')


def read_tree(path):
    """The file as nested lists of words; a quoted text keeps its quotes."""
    stack = [[]]
    with open(path, encoding="utf-8", errors="surrogateescape") as file:
        for token in TOKEN.findall(file.read()):
            if token == "(":
                stack.append([])
            elif token == ")" and len(stack) > 1:
                done = stack.pop()
                stack[-1].append(done)
            elif token == ")":
                raise ValueError("a closing parenthesis too many")
            else:
                stack[-1].append(token)
    if len(stack) != 1 or len(stack[0]) != 1 or stack[0][0][:1] != ["SAIFILE"]:
        raise ValueError("not a complete SAIF file")
    return stack[0][0]


def collect(node, path, bits):
    """Appends (path, field name -> number) for every port and net below one block."""
    for part in node:
        if not isinstance(part, list):
            continue
        if part[0] == "INSTANCE":
            collect(part[2:], f"{path}/{part[1]}", bits)
        elif part[0] == "VIRTUAL_INSTANCE":
            collect(part[3:], f"{path}/{part[2]}", bits)
        elif part[0] in ("PORT", "NET"):
            for record in part[1:]:
                fields = {name: float(value) for name, value in record[1:]}
                bits.append((f"{path}/{record[0]}".replace("\\", ""), fields))


def alike(bits):
    """(path, fields, further places) for each group of equal figures under one name: one net seen in
    several instances, most likely. Stands where the first of the group stood."""
    groups = {}
    for path, fields in bits:
        groups.setdefault((path.rsplit("/", 1)[1], *fields.values()), []).append((path, fields))
    return [(*group[0], len(group) - 1) for group in groups.values()]


def show(path, count):
    tree = read_tree(path)
    header = {part[0]: part[1:] for part in tree if isinstance(part, list)}
    bits = []
    collect(tree, "", bits)
    duration = float(header["DURATION"][0])
    unit = " ".join(header["TIMESCALE"])
    quiet = sum(1 for _, fields in bits if not fields["TC"])
    unknown = sum(1 for _, fields in bits if fields["TX"])
    glitches = sum(int(fields["IG"]) for _, fields in bits)
    print(f"\n{os.path.abspath(path)}")
    print(f"  {len(bits)} bits over a window of {duration:g} x {unit}")
    print(f"  {quiet} never toggled, {unknown} were unknown for a time, {glitches} glitches")
    print(f"\n  {'most active':<50} {'toggles':>9} {'at 1':>7} {'unknown':>8} {'glitches':>9}")
    for name, fields, further in sorted(alike(bits), key=lambda bit: -bit[1]["TC"])[:count]:
        share = {key: fields[key] / duration if duration else 0.0 for key in ("T1", "TX")}
        label = name + (f" (and {further} alike)" if further else "")
        print(f"  {label:<50} {fields['TC']:>9.0f} {share['T1']:>7.1%} {share['TX']:>8.1%}"
              f" {fields['IG']:>9.0f}")


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("file")
    parser.add_argument("-n", type=int, default=10, help="how many bits to list (10)")
    options = parser.parse_args()
    try:
        show(options.file, options.n)
    except (OSError, ValueError, KeyError, IndexError) as error:
        sys.exit(f"{options.file}: cannot be shown: {error}")


if __name__ == "__main__":
    main()
