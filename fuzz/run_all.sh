#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# fuzz/run_all.sh [SECONDS]: runs every fuzz target so long over the kept inputs and new ones. New inputs go to
# build/fuzz/found/ and are kept by hand when they are worth it.
set -euo pipefail
cd "$(dirname "$0")/.."
seconds=${1:-60}
# As many at a time as there are processors.
run_target() {
    program=$1
    seconds=$2
    name=$(basename "$program")
    mkdir -p "build/fuzz/found/$name"
    kept=()
    [ -d "fuzz/corpus/$name" ] && kept=("fuzz/corpus/$name")
    echo "fuzz: $name, $seconds s"
    "$program" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 -verbosity=0 \
        -artifact_prefix="build/fuzz/found/" "build/fuzz/found/$name" "${kept[@]}" 2>"build/fuzz/$name.log" ||
        { tail -n 40 "build/fuzz/$name.log" >&2; return 1; }
}
export -f run_target
printf '%s\0' build/asan-ubsan/bin/fuzz_* | xargs -0 -P"$(nproc)" -I{} bash -euo pipefail -c 'run_target "$@"' - {} "$seconds"
