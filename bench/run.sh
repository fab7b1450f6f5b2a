#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Makes the waveforms that are missing and measures replay on them: run.sh [full]
# WATTFORGE_BUILD is the build folder; WATTFORGE_BENCH_DATA is where the waveforms lie (build/bench,
# about 1 GB, with "full" 4 GB).
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
data=${WATTFORGE_BENCH_DATA:-$here/../build/bench}
sizes=(20 300)
[ "${1:-}" != full ] || sizes+=(1000)

"$here/make_waveforms.sh" "$data" "${sizes[@]}"
python3 "$here/replay.py" --build "$WATTFORGE_BUILD" --data "$data" "${sizes[@]}"
