#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Runs the example from its waveform to its report under valgrind: no error and no lost memory from
# the plug-in or the host. Usage: valgrind.sh BUILD_FOLDER
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
wfsim=$(cd "$1" && pwd)/bin/wfsim
example=$here/../../examples/uart
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cd "$folder"

iverilog -g2005 -o uart.vvp "$example/uart.v" "$example/uart_tb.v"
vvp -n uart.vvp +vcd
# --keep-debuginfo: the plug-in is unloaded by the end, its names are still wanted.
valgrind --error-exitcode=9 --leak-check=full --show-leak-kinds=all \
    --errors-for-leak-kinds=all --keep-debuginfo=yes \
    --suppressions="$here/valgrind.supp" "$wfsim" uart.vcd -do "$example/run.tcl"
python3 "$here/compare_saif.py" uart.saif --vcd uart.vcd --window 1us 41us --instance /tb/dut
