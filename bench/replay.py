#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Measures replay beside two yardsticks in one run.

For each waveform, interleaved, medians of all rounds: `wc -l`; the bare counter; and wfsim with every
bit watched and the report written, with the whole instances watched that make up a tenth of the bits,
with nothing watched, and with every object named by a forward file (each fourth one sequential).
CPU is user and system time, the ratios are of CPU times.
"""

import argparse
import os
import pathlib
import platform
import re
import statistics
import subprocess
import sys
import tempfile
import time

import header

KINDS = ("cpu", "netlist", "buses")
COLUMNS = ("waveform", "MB", "bits", "program", "CPU s", "wall s", "MB/s", "peak MB", "x wc -l",
           "x bare", "x nothing", "bytes/bit")


def measure(command, folder):
    """One run: (CPU seconds, wall seconds, peak bytes). GNU time starts it, since a process's peak
    begins with that of the one that it was forked from."""
    peak = pathlib.Path(folder) / "peak.txt"
    started = time.perf_counter()
    process = subprocess.Popen(["time", "-f", "%M", "-o", peak, *command], cwd=folder,
                               stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                               stderr=subprocess.PIPE)
    complaint = process.stderr.read()
    _, status, usage = os.wait4(process.pid, 0)
    wall = time.perf_counter() - started
    process.returncode = os.waitstatus_to_exitcode(status)
    if process.returncode != 0:
        sys.exit(f"{' '.join(map(str, command))}: {complaint.decode()}")
    return usage.ru_utime + usage.ru_stime, wall, int(peak.read_text()) * 1024


def count_bits(report):
    with open(report, encoding="latin-1") as file:
        return sum(1 for line in file if "(T0 " in line)


def script(watched, forward=""):
    """Commands that record the whole waveform."""
    words = " ".join("{" + path + "}" for path in watched)
    read = f"read_rtl_saif {forward} /tb; " if forward else ""
    return (f"{read}set_toggle_region {words}; toggle_start; run -all; toggle_stop; "
            "toggle_report out.saif 1.0e-9 /tb; quit")


def programs(build, waveform, folder):
    design = header.read_header(waveform)
    header.write_forward(design, pathlib.Path(folder) / "forward.saif")
    tenth, _ = header.share_of(design, design.bits() // 10)
    wfsim = [build / "bin/wfsim", waveform]
    return {
        "wc -l": ["wc", "-l", waveform],
        "bare": [build / "bin/bare_counter", waveform],
        "all bits": [*wfsim, "-saif", "out.saif"],
        "a tenth": [*wfsim, "-do", script(tenth)],
        "nothing": [*wfsim, "-do", "run -all; quit"],
        "forward RTL": [*wfsim, "-do", script(["/tb"], "forward.saif")],
    }


def ghw_programs(build, waveform):
    """The yardsticks read VCD: they take the one that the same simulation wrote."""
    vcd = waveform.with_suffix(".vcd")
    wfsim = build / "bin/wfsim"
    record = ["-saif", "out.saif", "-instance", "/stages"]
    return {
        "wc -l": ["wc", "-l", vcd],
        "bare": [build / "bin/bare_counter", vcd],
        "all, VCD": [wfsim, vcd, *record],
        "all, GHW": [wfsim, waveform, *record],
        "nothing": [wfsim, waveform, "-do", "run -all; quit"],
    }


def rows_for(build, waveform, rounds):
    """The table rows of one waveform."""
    with tempfile.TemporaryDirectory() as folder:
        commands = (ghw_programs(build, waveform) if waveform.suffix == ".ghw" else
                    programs(build, waveform, folder))
        samples = {name: [] for name in commands}
        bits = {}
        for _ in range(rounds):
            for name, command in commands.items():
                samples[name].append(measure(command, folder))
                bits[name] = take_bits(pathlib.Path(folder) / "out.saif")
    megabytes = waveform.stat().st_size / 1e6
    middle = {name: [statistics.median(column) for column in zip(*runs)]
              for name, runs in samples.items()}
    for name, (cpu, wall, peak) in middle.items():
        recorded = bits[name]
        yield (waveform.stem, f"{megabytes:.0f}", recorded or "", name, f"{cpu:.2f}", f"{wall:.2f}",
               f"{megabytes / cpu:.0f}", f"{peak / 1e6:.1f}", f"{cpu / middle['wc -l'][0]:.1f}",
               f"{cpu / middle['bare'][0]:.2f}", f"{cpu / middle['nothing'][0]:.2f}",
               f"{peak / recorded:.0f}" if recorded else "")


def take_bits(report):
    """The bits in the report of the last run, if it wrote one; the next run begins without it."""
    if not report.exists():
        return 0
    bits = count_bits(report)
    report.unlink()
    return bits


def print_table(rows):
    widths = [max(len(str(cell)) for cell in column) for column in zip(*rows)]
    for row in rows:
        print("  ".join(str(cell).rjust(width) for cell, width in zip(row, widths)))


def processor():
    found = re.search(r"model name\s*: (.*)", pathlib.Path("/proc/cpuinfo").read_text())
    return found[1] if found else platform.machine()


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--build", type=pathlib.Path, required=True)
    parser.add_argument("--data", type=pathlib.Path, required=True)
    parser.add_argument("--rounds", type=int, default=5)
    parser.add_argument("--ghw", action="store_true", help="GHDL's waveforms, not Icarus Verilog's")
    parser.add_argument("sizes", nargs="+", help="megabytes")
    options = parser.parse_args()
    build, data = options.build.resolve(), options.data.resolve()
    print(f"{processor()}, {os.cpu_count()} processors; medians of {options.rounds} rounds")
    rows = [COLUMNS]
    for size in options.sizes:
        names = [f"stages_{size}.ghw"] if options.ghw else [f"{kind}_{size}.vcd" for kind in KINDS]
        for name in names:
            rows += rows_for(build, data / name, options.rounds)
    print_table(rows)


if __name__ == "__main__":
    main()
