#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Makes the VHDL waveforms that the measurements replay: make_ghw.sh FOLDER MEGABYTES...
# For each size two files of one run, FOLDER/stages_MEGABYTES.ghw of about that size and, beside it,
# the VCD file, simulated by GHDL; files that are there already stay. The number of cycles is scaled
# from a short run.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)

size_of() { stat -c %s "$1"; }

# simulate CYCLES OPTION...: runs the design in the current folder.
simulate() { ghdl -r --std=08 stages -gcycles="$1" --ieee-asserts=disable "${@:2}" >/dev/null; }

# The cycles that fill the given number of bytes.
cycles_for() {
    local bytes=$1 short long
    simulate 40 --wave=bench.ghw
    short=$(size_of bench.ghw)
    simulate 120 --wave=bench.ghw
    long=$(size_of bench.ghw)
    echo $(((bytes - short) * 80 / (long - short) + 40))
}

make_one() {
    local megabytes=$1 target=$2 scratch
    scratch=$(mktemp -d "$(dirname "$target")/making.XXXXXX")
    (
        cd "$scratch"
        ghdl -a --std=08 "$here/designs/stages.vhd"
        ghdl -e --std=08 stages
        simulate "$(cycles_for $((megabytes * 1000000)))" --wave=bench.ghw --vcd=bench.vcd
    )
    mv "$scratch/bench.vcd" "$target.vcd"
    mv "$scratch/bench.ghw" "$target.ghw"
    rm -r "$scratch"
    echo "$target.ghw: $(size_of "$target.ghw") bytes"
    echo "$target.vcd: $(size_of "$target.vcd") bytes"
}

[ $# -ge 2 ] || {
    echo "usage: make_ghw.sh FOLDER MEGABYTES..." >&2
    exit 2
}
mkdir -p "$1"
folder=$(cd "$1" && pwd)
for megabytes in "${@:2}"; do
    target=$folder/stages_$megabytes
    [ -f "$target.ghw" ] || make_one "$megabytes" "$target"
done
