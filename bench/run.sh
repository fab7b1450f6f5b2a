#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Measures everything that docs/performance.md has figures of: run.sh [full]
# Without "full" it takes small waveforms and designs, which is some minutes; with it also waveforms
# of 300 MB and 1 GB (4 GB of disk) and designs of ten million bits (16 GB of memory), half an hour.
# WATTFORGE_BUILD is the build folder; WATTFORGE_BENCH_DATA is where the waveforms lie (build/bench).
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
data=${WATTFORGE_BENCH_DATA:-$here/../build/bench}
sizes=(20)
ghw_sizes=(10)
rounds=3
bits=(100000 1000000)
if [ "${1:-}" = full ]; then
    sizes+=(300 1000)
    ghw_sizes+=(100)
    rounds=5
    bits+=(10000000)
fi
export PYTHONDONTWRITEBYTECODE=1

title() { printf '\n## %s\n\n' "$*"; }

title "Replay of waveforms"
"$here/make_waveforms.sh" "$data" "${sizes[@]}"
python3 "$here/replay.py" --build "$WATTFORGE_BUILD" --data "$data" "${sizes[@]}"

"$here/make_ghw.sh" "$data" "${ghw_sizes[@]}"
python3 "$here/replay.py" --build "$WATTFORGE_BUILD" --data "$data" --ghw "${ghw_sizes[@]}"

title "Recording inside Icarus Verilog"
python3 "$here/in_simulator.py" --build "$WATTFORGE_BUILD" --rounds "$rounds"

title "Size of the design"
python3 "$here/scale.py" --build "$WATTFORGE_BUILD" "${bits[@]}"

title "Single operations"
"$WATTFORGE_BUILD/bin/wf_bench" --benchmark_min_time=0.1
