#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Checks who includes whom: the plug-in and the hosts meet in the interface headers and nowhere else.

plugin/ includes plugin/ and the interface; host/ includes host/ and the interface. In the plug-in,
core stands above select, monitor, rtlsaif and saif, and support below; nothing includes upwards.
Headers never include each other in a circle. Each run first shows itself the faults that it must find.
"""

import pathlib
import re
import sys
import tempfile

INCLUDE = re.compile(r'^\s*#\s*include\s*([<"])([^>"]+)[>"]', re.MULTILINE)
RANK = {"support": 0, "select": 1, "monitor": 1, "rtlsaif": 1, "saif": 1, "core": 2}
INTERFACE = {"mti.h", "acc_user.h"}
SUFFIXES = {".h", ".cpp", ".y", ".inc"}


def project_files(root):
    for side in ("plugin", "host"):
        for path in sorted((root / side).rglob("*")):
            if path.suffix in SUFFIXES:
                yield path.relative_to(root)


def includes(root, path):
    return INCLUDE.findall((root / path).read_text(encoding="utf-8"))


def fault_of(path, bracket, target):
    """What is wrong with one include, or None."""
    side = path.parts[0]
    if target in INTERFACE:
        return None if bracket == "<" else "the interface is included with <>"
    if bracket == "<":
        return "project headers are included with quotes" if "/" in target and target.split("/")[0] in (
            "plugin", "host", "fli") else None
    if target.split("/")[0] != side:
        return f"{side}/ includes its own files and the interface only"
    if side == "plugin" and RANK[target.split("/")[1]] > RANK[path.parts[1]]:
        return "includes upwards"
    return None


def circles(graph):
    """Every circle of files, once, as a list of names."""
    state, trail = {}, []

    def visit(name):
        state[name] = "open"
        trail.append(name)
        for target in graph.get(name, ()):
            if state.get(target) == "open":
                yield trail[trail.index(target):] + [target]
            elif target not in state:
                yield from visit(target)
        trail.pop()
        state[name] = "done"

    for name in graph:
        if name not in state:
            yield from visit(name)


def check(root):
    graph, faults = {}, []
    for path in project_files(root):
        if path.parts[0] == "plugin" and len(path.parts) > 2 and path.parts[1] not in RANK:
            faults.append(f"{path}: unknown folder of the plug-in")
            continue
        found = includes(root, path)
        graph[str(path)] = [target for bracket, target in found if bracket == '"']
        for bracket, target in found:
            fault = fault_of(path, bracket, target)
            if fault:
                faults.append(f"{path}: #include {target}: {fault}")
    faults += ["circle: " + " -> ".join(circle) for circle in circles(graph)]
    return len(graph), faults


def self_test():
    cases = {
        "up": ({"plugin/saif/a.h": '#include "plugin/core/b.h"', "plugin/core/b.h": ""}, "upwards"),
        "wall": ({"plugin/core/a.cpp": '#include "host/design/b.h"'}, "its own files"),
        "wall back": ({"host/fli/a.cpp": '#include "plugin/core/b.h"'}, "its own files"),
        "circle": ({"plugin/saif/a.h": '#include "plugin/select/b.h"',
                    "plugin/select/b.h": '#include "plugin/saif/a.h"'}, "circle"),
        "clean": ({"plugin/core/a.cpp": '#include "plugin/support/b.h"\n#include <mti.h>',
                   "plugin/support/b.h": "#include <stdint.h>"}, None),
    }
    for name, (files, expected) in cases.items():
        with tempfile.TemporaryDirectory() as folder:
            root = pathlib.Path(folder)
            for path, text in files.items():
                (root / path).parent.mkdir(parents=True, exist_ok=True)
                (root / path).write_text(text)
            faults = check(root)[1]
        right = not faults if expected is None else len(faults) == 1 and expected in faults[0]
        if not right:
            sys.exit(f"self-test {name}: got {faults}")


def main():
    self_test()
    count, faults = check(pathlib.Path(__file__).resolve().parents[2])
    for fault in faults:
        print(fault)
    if faults or not count:
        sys.exit(1)
    print(f"{count} files, no include out of place")


if __name__ == "__main__":
    main()
