#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Configures (once) and builds a preset: packaging/build.sh release [ninja targets]. Quiet unless something fails.
set -euo pipefail
cd "$(dirname "$0")/.."
preset=$1
shift
log=build/$preset.log
mkdir -p build
if [ ! -e "build/$preset/build.ninja" ]; then
    echo "build: configuring $preset"
    cmake --preset "$preset" >"$log" 2>&1 || { cat "$log" >&2; exit 1; }
fi
echo "build: building $preset (first time some minutes, log in $log)"
cmake --build --preset "$preset" ${1:+--target "$@"} >"$log" 2>&1 || { grep -vE '^\[[0-9]+/' "$log" | tail -n 60 >&2; exit 1; }
