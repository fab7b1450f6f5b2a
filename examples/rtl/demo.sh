#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Simulates the sensor bus with Icarus Verilog, records the objects of its forward file, shows what
# was recorded and compares the report with the expected one. ./run demo rtl starts this with the
# programs built, WATTFORGE_BUILD set to the build folder (or given as the argument) and the output
# folder as the current one.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
build=${1:-$WATTFORGE_BUILD}

iverilog -g2005 -Wall -o sensor_bus.vvp "$here/sensor_bus.v" "$here/sensor_bus_tb.v"
vvp -n sensor_bus.vvp +vcd
cp "$here/sensor_bus.fsaif" .
"$build/bin/wfsim" sensor_bus.vcd -do "$here/run.tcl"
python3 "$here/../../tools/saif_summary.py" sensor_bus.saif
sed 's/^(DATE .*/(DATE)/' sensor_bus.saif | diff "$here/expected.saif" -
echo "The report is the expected one."
