#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Runs the examples under valgrind, replayed from a waveform and inside each simulator, to their
# reports: no error and no lost memory from the plug-in, the host or the adapter module.
# Usage: valgrind.sh BUILD_FOLDER
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
build=$(cd "$1" && pwd)
examples=$here/../../examples
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cd "$folder"

# The script without its `quit`, so that the simulators come to their own end.
sed '/^quit/d' "$examples/uart/run.tcl" >run.tcl

# --keep-debuginfo: plug-ins and modules are unloaded by the end, their names are still wanted.
check() {
    valgrind --error-exitcode=9 --leak-check=full --show-leak-kinds=all \
        --errors-for-leak-kinds=all --keep-debuginfo=yes \
        --suppressions="$here/valgrind.supp" "$@"
}

compare() {
    python3 "$here/compare_saif.py" uart.saif --vcd "$1" --window 1us 41us --instance /tb/dut
    rm uart.saif
}

iverilog -g2005 -o uart.vvp "$examples/uart/uart.v" "$examples/uart/uart_tb.v"
vvp -n uart.vvp +vcd
check "$build/bin/wfsim" uart.vcd -do run.tcl
compare uart.vcd

check vvp -n -M "$build/lib" -m wattforge uart.vvp +wf_do=run.tcl
compare uart.vcd

# ghdl itself is a small program that starts this one.
ghdl=(ghdl-mcode -r --std=08 tb)
ghdl-mcode -a --std=08 "$examples/ghdl/uart.vhd" "$examples/ghdl/uart_tb.vhd"
"${ghdl[@]}" --vcd=vhdl.vcd
check "${ghdl[@]}" --vpi="$build/lib/wattforge.vpi" +wf_do=run.tcl
compare vhdl.vcd
