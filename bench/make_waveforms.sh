#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Makes the waveforms that the measurements replay: make_waveforms.sh FOLDER MEGABYTES...
# For each size and each kind of design one file FOLDER/KIND_MEGABYTES.vcd, simulated by Icarus
# Verilog; a file that is there already stays. The number of cycles is scaled from a short run.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
readonly kinds=(cpu netlist buses)

size_of() { stat -c %s "$1"; }

# simulate CYCLES: leaves bench.vcd in the current folder.
simulate() { vvp -n design.vvp +cycles="$1" >/dev/null; }

# The cycles that fill the given number of bytes.
cycles_for() {
    local bytes=$1 short long
    simulate 40
    short=$(size_of bench.vcd)
    simulate 120
    long=$(size_of bench.vcd)
    echo $(((bytes - short) * 80 / (long - short) + 40))
}

make_one() {
    local kind=$1 megabytes=$2 target=$3 scratch
    scratch=$(mktemp -d "$(dirname "$target")/making.XXXXXX")
    (
        cd "$scratch"
        iverilog -g2005 -o design.vvp "$here/designs/$kind.v"
        simulate "$(cycles_for $((megabytes * 1000000)))"
    )
    mv "$scratch/bench.vcd" "$target"
    rm -r "$scratch"
    echo "$target: $(size_of "$target") bytes"
}

[ $# -ge 2 ] || {
    echo "usage: make_waveforms.sh FOLDER MEGABYTES..." >&2
    exit 2
}
mkdir -p "$1"
folder=$(cd "$1" && pwd)
for megabytes in "${@:2}"; do
    for kind in "${kinds[@]}"; do
        target=$folder/${kind}_$megabytes.vcd
        [ -f "$target" ] || make_one "$kind" "$megabytes" "$target"
    done
done
