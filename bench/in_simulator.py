#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Measures what recording inside Icarus Verilog costs, beside dumping a waveform, in one run.

Each design is simulated plain, with the recorder watching every bit and writing its report, with a
VCD dump (into /dev/null) and with an FST dump; memories are left out, as dumps do. Interleaved, medians of all rounds. Seconds are user
CPU time; `x plain` is the ratio to the plain simulation, `x VCD` what is added to it as a share of
what the VCD dump adds.

    in_simulator.py --build build/plain            # all designs
    in_simulator.py --build build/plain cpu buses  # these only
"""

import argparse
import os
import pathlib
import statistics
import subprocess
import sys
import tempfile

from replay import count_bits, print_table, processor

DESIGNS = pathlib.Path(__file__).resolve().parent / "designs"
# Clock cycles that take some seconds, for the buses when they are dumped or recorded.
CYCLES = {"cpu": 3500, "netlist": 45, "gates": 1500, "buses": 6000}
SCRIPT = """set_toggle_region /tb
toggle_start
run -all
toggle_stop
toggle_report out.saif 1.0e-12 /tb
"""
COLUMNS = ("design", "bits", "run", "user s", "x plain", "added s", "x VCD")


def user_seconds(command, folder):
    """One run: seconds of user CPU time."""
    process = subprocess.Popen([str(word) for word in command], cwd=folder,
                               stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                               stderr=subprocess.STDOUT)
    shown = process.stdout.read()
    _, status, usage = os.wait4(process.pid, 0)
    process.returncode = os.waitstatus_to_exitcode(status)
    if process.returncode != 0:
        sys.exit(f"{' '.join(map(str, command))}: {shown.decode(errors='replace')}")
    return usage.ru_utime


def make_folders(folder, kind):
    """One folder for each run; the VCD dump finds its file to be /dev/null, so that no disk takes
    part."""
    subprocess.run(["iverilog", "-g2005", "-o", folder / "design.vvp", DESIGNS / f"{kind}.v"],
                   check=True)
    for name in ("plain", "recorder", "VCD", "FST"):
        (folder / name).mkdir()
    (folder / "VCD" / "bench.vcd").symlink_to("/dev/null")
    (folder / "recorder" / "run.tcl").write_text(SCRIPT)


def commands(build, folder, cycles):
    design = [folder / "design.vvp", f"+cycles={cycles}"]
    return {
        "plain": ["vvp", "-n", *design, "+nodump"],
        "recorder": ["vvp", "-n", "-M", build / "lib", "-m", "wattforge", *design, "+nodump",
                     "+wf_do=run.tcl", "+wf_memory=0"],
        "VCD": ["vvp", "-n", *design],
        "FST": ["vvp", "-n", *design, "-fst"],
    }


def rows_for(build, kind, cycles, rounds):
    """The table rows of one design."""
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        make_folders(folder, kind)
        runs = commands(build, folder, cycles)
        samples = {run: [] for run in runs}
        for _ in range(rounds):
            for run, command in runs.items():
                samples[run].append(user_seconds(command, folder / run))
        bits = count_bits(folder / "recorder" / "out.saif")
    middle = {run: statistics.median(seconds) for run, seconds in samples.items()}
    added = {run: seconds - middle["plain"] for run, seconds in middle.items()}
    for run, seconds in middle.items():
        yield (kind, bits, run, f"{seconds:.2f}", f"{seconds / middle['plain']:.2f}",
               f"{added[run]:.2f}", f"{added[run] / added['VCD']:.2f}")


def main():
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--build", type=pathlib.Path, required=True)
    parser.add_argument("--rounds", type=int, default=5)
    parser.add_argument("--scale", type=float, default=1.0, help="of the number of clock cycles")
    parser.add_argument("kinds", nargs="*", metavar="DESIGN", help=", ".join(CYCLES))
    options = parser.parse_args()
    build = options.build.resolve()
    if unknown := set(options.kinds) - set(CYCLES):
        parser.error(f"no design {', '.join(sorted(unknown))}; there are {', '.join(CYCLES)}")
    print(f"{processor()}, {os.cpu_count()} processors; medians of {options.rounds} rounds")
    rows = [COLUMNS]
    for kind in options.kinds or CYCLES:
        rows += rows_for(build, kind, round(CYCLES[kind] * options.scale), options.rounds)
    print_table(rows)


if __name__ == "__main__":
    main()
