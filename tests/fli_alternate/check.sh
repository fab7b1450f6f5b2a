#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Builds the plug-in against the second set of interface headers and runs it in a small simulator
# that is built against the same: check.sh BUILD_FOLDER
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
folder=$1

cmake -G Ninja -S "$here/../.." -B "$folder" -DFLI_INCLUDE_DIR="$here" -DWATTFORGE_HOSTS=OFF
ninja -C "$folder" swfli
"${CXX:-g++}" -std=c++20 -Wall -Wextra -O1 -g -isystem "$here" -o "$folder/mini_simulator" \
    "$here/mini_simulator.cpp" -rdynamic -ldl
"$folder/mini_simulator" "$folder/lib/libswfli.so" "$folder/report.saif"
