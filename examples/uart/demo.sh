#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Simulates the serial port with Icarus Verilog, replays its waveform and shows what was recorded.
# ./run demo starts this with the programs built, WATTFORGE_BUILD set to the build folder and the
# output folder as the current one.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)

iverilog -g2005 -Wall -o uart.vvp "$here/uart.v" "$here/uart_tb.v"
vvp -n uart.vvp +vcd
"$WATTFORGE_BUILD/bin/wfsim" uart.vcd -do "$here/run.tcl"
python3 "$here/../../tools/saif_summary.py" uart.saif
