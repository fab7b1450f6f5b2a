#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Builds the serial port with Verilator, records it while it runs (its VCD goes through a FIFO, so no
# waveform lies on the disk), shows what was recorded, and compares it with what Icarus Verilog's four
# states give. ./run demo verilator starts this with the programs built, WATTFORGE_BUILD set to the
# build folder and the output folder as the current one.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
uart=$here/../uart
mkdir -p verilator/icarus
cd verilator

# verilate FOLDER OPTION: the program FOLDER/uart
verilate() {
    verilator --cc --exe --build -j 2 --timing --no-trace-params --top-module tb -Wno-WIDTH -Wno-LITENDIAN \
        --Mdir "$1" -o uart "$2" "$uart/uart.v" "$uart/uart_tb.v" "$here/main.cpp" >"$1.log" || {
        cat "$1.log" >&2
        return 1
    }
}

echo "Building with Verilator (see verilator/vcd.log)"
verilate vcd --trace
"$WATTFORGE_BUILD/bin/wfsim" -do "$uart/run.tcl" -fifo uart.vcd -- vcd/uart +vcd
python3 "$here/../../tools/saif_summary.py" uart.saif

echo
echo "The same design in Icarus Verilog:"
cd icarus
iverilog -g2005 -Wall -o uart.vvp "$uart/uart.v" "$uart/uart_tb.v"
"$WATTFORGE_BUILD/bin/wfsim" -do "$uart/run.tcl" -fifo uart.vcd -- vvp -n uart.vvp +vcd
cd ..
python3 "$here/compare.py" uart.saif icarus/uart.saif
