#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Records the serial port in VHDL while GHDL simulates it, with the run script of the Verilog one,
# and shows what was recorded. Then replays the waveform that the same simulation dumped and compares
# the two reports. ./run demo ghdl starts this with the programs built, WATTFORGE_BUILD set to the
# build folder and the output folder as the current one.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
script=$here/../uart/run.tcl
mkdir -p ghdl/replayed
cd ghdl

ghdl -a --std=08 "$here/uart.vhd" "$here/uart_tb.vhd"
ghdl -e --std=08 tb
ghdl -r --std=08 tb --vpi="$WATTFORGE_BUILD/lib/wattforge.vpi" +wf_do="$script"
python3 "$here/../../tools/saif_summary.py" uart.saif

echo
echo "The same from a waveform:"
ghdl -r --std=08 tb --vcd=uart.vcd
(cd replayed && "$WATTFORGE_BUILD/bin/wfsim" ../uart.vcd -do "$script")
python3 "$here/../../tests/system/compare_saif.py" uart.saif --saif replayed/uart.saif
