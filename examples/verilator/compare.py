#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Compares the reports of one design from a simulator with two states and from one with four.

    compare.py TWO_STATES.saif FOUR_STATES.saif

A bit that is never unknown in the four-state run must have the same figures in both. Exits with 1 if
one differs, or if a bit is in one report only.
"""

import pathlib
import sys

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "tests" / "system"))
from compare_saif import Report  # noqa: E402


def is_known(records):
    return all(float(fields["TX"]) == 0 for fields in records)


def main():
    two, four = (Report(path).bits for path in sys.argv[1:3])
    for path in sorted(two.keys() ^ four.keys()):
        print(f"{path}: only in the report of {'two' if path in two else 'four'} states")
    both = two.keys() & four.keys()
    known = {path for path in both if is_known(four[path])}
    wrong = sorted(path for path in known if two[path] != four[path])
    for path in wrong:
        print(f"{path}: {two[path]} with two states, {four[path]} with four")
    different = sum(two[path] != four[path] for path in both - known)
    print(f"{len(known) - len(wrong)} of {len(known)} bits that are never X or Z: the same figures")
    print(f"{different} of {len(both) - len(known)} bits that are X or Z for a time: other figures, "
          "as two states count it as 0 or 1")
    if wrong or two.keys() ^ four.keys():
        sys.exit(1)


if __name__ == "__main__":
    main()
