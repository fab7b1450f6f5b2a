#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Builds the plug-in and the replaying host against the second set of interface headers and compares
# what they tell and report with the plain build's, for every type that a GHW file can hold and
# over times whose low word has its highest bit set: check.sh PLAIN_BUILD_FOLDER
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
plain=$1
alternate=$plain/alternate

launcher=()
if command -v ccache >/dev/null; then
    launcher=(-DCMAKE_C_COMPILER_LAUNCHER=ccache -DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
fi
cmake -G Ninja -S "$here/../.." -B "$alternate" -DFLI_INCLUDE_DIR="$here" -DCMAKE_BUILD_TYPE=Debug \
    -DWATTFORGE_HOSTS=ON -DWATTFORGE_TESTS=OFF -DWATTFORGE_BENCH=OFF "${launcher[@]}"
ninja -C "$alternate" wfsim swfli

# record BUILD_FOLDER WAVEFORM: the transcript and the report without its date
record() {
    "$1/bin/wfsim" "$2" -do 'set_net_monitoring_policy on /' -do "set_toggle_region /
        run 10; toggle_start; run -all; toggle_stop; toggle_report $folder/saif 1.0e-9 /" &&
        grep -v '^(DATE ' "$folder/saif"
}

folder=$(mktemp -d)
trap 'rm -r "$folder"' EXIT
sed 's/^#[1-9].*/&000000000/' "$here/../system/golden/small.vcd" >"$folder/long.vcd"
for waveform in "$here/../data/kinds.ghw" "$folder/long.vcd"; do
    record "$plain" "$waveform" >"$folder/plain"
    grep -q 'INVALID_TYPE' "$folder/plain"
    grep -q '(TC [1-9]' "$folder/plain"
    record "$alternate" "$waveform" | diff "$folder/plain" -
done
echo "both sets of headers give the same reports"
