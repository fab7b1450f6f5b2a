#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Records what one writer of waveforms makes of a run in each of its formats: every bit has the same
figures in all of them, and those that an independent count of the VCD gives. Designs that are counter.v
have those of Icarus Verilog, too.

    test_writers.py WRITER...

Ends with 77 and says so when a tool of the writer is not installed.
"""

import os
import pathlib
import shutil
import sys
import tempfile

import count_vcd
from compare_saif import FIELDS, Report
from programs import HERE, ROOT, WFSIM, must

DESIGNS = HERE / "designs"
COUNTER = [DESIGNS / "counter.v", DESIGNS / "counter_tb.v"]
WINDOW = ("100ns", "300ns")
SKIPPED = 77
CACHE = ["ccache"] if shutil.which("ccache") else []


def compile_program(folder, source, *options):
    must(*CACHE, "c++", "-O0", "-std=c++17", "-w", "-o", "program", source, *options, folder=folder)
    must("./program", folder=folder)


def icarus(folder):
    must("iverilog", "-g2005", "-o", "design.vvp", *COUNTER, folder=folder)
    for name, option in (("vcd", []), ("fst", ["-fst"])):
        must("vvp", "-n", "design.vvp", *option, folder=folder)
        (folder / "counter.wave").rename(folder / name)
    return {"vcd": "/tb/dut", "fst": "/tb/dut"}


def verilator(folder):
    for name, option in (("vcd", "--trace"), ("fst", "--trace-fst")):
        must("verilator", "--cc", "--exe", "--build", "--timing", "--no-trace-params", option,
             "--top-module", "tb", "--Mdir", f"build_{name}", "-o", "program", "-MAKEFLAGS",
             " ".join(["OPT_FAST=-O0", "OPT_SLOW=-O0", "OPT_GLOBAL=-O0", *[f"OBJCACHE={c}" for c in CACHE]]),
             *COUNTER, ROOT / "examples/verilator/main.cpp", folder=folder)
        must(f"build_{name}/program", folder=folder)
        (folder / "counter.wave").rename(folder / name)
    return {"vcd": "/tb/dut", "fst": "/tb/dut"}


def ghdl(folder):
    sources = [ROOT / "examples/ghdl" / name for name in ("uart.vhd", "uart_tb.vhd")]
    must("ghdl", "-a", "--std=08", *sources, folder=folder)
    must("ghdl", "-e", "--std=08", "tb", folder=folder)
    must("ghdl", "-r", "--std=08", "tb", "--stop-time=5us", "--vcd=vcd", "--fst=fst", "--wave=ghw", folder=folder)
    return {"vcd": "/tb/dut", "fst": "/tb/dut", "ghw": "/tb/dut"}


def yosys(folder, commands):
    must("yosys", "-q", "-p", f"read_verilog {DESIGNS}/counter.v; hierarchy -top counter; proc; {commands}",
         folder=folder)


def yosys_sim(folder):
    yosys(folder, "sim -clock clk -reset reset -rstlen 2 -n 40 -timescale 1ns -vcd vcd -fst fst")
    return {"vcd": "/counter", "fst": "/counter"}


def cxxrtl(folder):
    yosys(folder, "write_cxxrtl counter.cc")
    compile_program(folder, DESIGNS / "counter_cxxrtl.cpp", "-I", folder, "-I", "/usr/share/yosys/include")
    (folder / "counter.wave").rename(folder / "vcd")
    return {"vcd": "/counter"}


def systemc(folder):
    compile_program(folder, DESIGNS / "counter_systemc.cpp", "-lsystemc")
    (folder / "counter.vcd").rename(folder / "vcd")
    return {"vcd": "/SystemC/counter"}


# name: (what makes its files, what it needs: programs or files, is its design counter.v)
WRITERS = {
    "icarus": (icarus, ["iverilog"], True),
    "ghdl": (ghdl, ["ghdl"], False),
    "verilator": (verilator, ["verilator"], True),
    "yosys_sim": (yosys_sim, ["yosys"], True),
    "cxxrtl": (cxxrtl, ["yosys", "/usr/share/yosys/include/backends/cxxrtl/cxxrtl_vcd.h"], True),
    "systemc": (systemc, ["/usr/include/systemc.h"], True),
}


def record(folder, waveform, instance):
    """Path below the instance -> figures of each bit; None when this build does not read the format."""
    window = ["-start", WINDOW[0], "-stop", WINDOW[1]]
    if waveform == "fst" and "FST" not in must(WFSIM, "-help", folder=folder):
        print("skipped: FST, which this build does not read")
        return None
    must(WFSIM, waveform, "-saif", f"{waveform}.saif", "-instance", instance, *window, folder=folder)
    report = Report(folder / f"{waveform}.saif")
    assert not list(report.check_sums()), list(report.check_sums())
    below = len(instance) + 1
    return {path[below:]: records[0] for path, records in report.bits.items()}


def counted(folder, instance):
    """The same by the independent count of the VCD."""
    bits, resolution, _ = count_vcd.count(str(folder / "vcd"), [WINDOW])
    scale = 10.0 ** (resolution + 9)
    return {path[len(instance) + 1:]: {
        name: f"{figures[name] * (scale if name in ('T0', 'T1', 'TX') else 1):.6f}" for name in FIELDS}
        for path, figures in bits.items() if path.startswith(instance + "/")}


def differences(got, expected, whole):
    """Lines; `whole`: the two have the same bits, else some in common."""
    if whole:
        yield from (f"{path}: in one of the two only" for path in sorted(got.keys() ^ expected.keys()))
    both = got.keys() & expected.keys()
    if len(both) < 7:
        yield f"{len(both)} bits in common: {sorted(got)[:9]}, {sorted(expected)[:9]}"
    yield from (f"{path}: got {got[path]}, expected {expected[path]}"
                for path in sorted(both) if got[path] != expected[path])


def check(name, make, is_counter):
    """Lines that tell of differences."""
    with tempfile.TemporaryDirectory() as text:
        folder = pathlib.Path(text)
        instances = make(folder)
        bits = {waveform: record(folder, waveform, instance) for waveform, instance in instances.items()}
        others = {waveform: figures for waveform, figures in bits.items() if figures is not None}
        yield from differences(others["vcd"], counted(folder, instances["vcd"]), True)
        # GHW has more bits than VCD: of enumerations, say.
        for waveform in others:
            yield from differences(others[waveform], others["vcd"], waveform == "fst")
        if is_counter and make is not icarus:
            with tempfile.TemporaryDirectory() as reference:
                icarus(pathlib.Path(reference))
                yield from differences(others["vcd"], record(pathlib.Path(reference), "vcd", "/tb/dut"), False)
        print(f"{name}: {', '.join(f'{len(figures)} bits of {form}' for form, figures in others.items())}")


def main():
    status = 0
    for name in sys.argv[1:] or WRITERS:
        make, needed, is_counter = WRITERS[name]
        missing = [what for what in needed if not (shutil.which(what) or os.path.exists(what))]
        if missing:
            print(f"skipped: {name}, as {', '.join(missing)} is not installed")
            status = status or SKIPPED
            continue
        found = list(check(name, make, is_counter))
        print("\n".join(found[:30]), end="\n" if found else "")
        status = 1 if found else status
    sys.exit(status)


if __name__ == "__main__":
    main()
