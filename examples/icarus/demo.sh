#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Records the serial port while Icarus Verilog simulates it, without a waveform, and shows what was
# recorded. Then has the same simulation dump a waveform, replays it with the same script, and
# compares the two reports. ./run demo icarus starts this with the programs built, WATTFORGE_BUILD
# set to the build folder and the output folder as the current one.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
uart=$here/../uart
mkdir -p icarus/replayed
cd icarus

iverilog -g2005 -Wall -o uart.vvp "$uart/uart.v" "$uart/uart_tb.v"
vvp -n -M "$WATTFORGE_BUILD/lib" -m wattforge uart.vvp +wf_do="$uart/run.tcl"
python3 "$here/../../tools/saif_summary.py" uart.saif

echo
echo "The same from a waveform:"
vvp -n uart.vvp +vcd
(cd replayed && "$WATTFORGE_BUILD/bin/wfsim" ../uart.vcd -do "$uart/run.tcl")
python3 "$here/../../tests/system/compare_saif.py" uart.saif --saif replayed/uart.saif
