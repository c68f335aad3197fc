#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Each folder includes only itself and folders that stand before it here (contract and source know none but Qt).
# Tests, benchmarks and fuzz targets stand above all of them.
set -euo pipefail
cd "$(dirname "$0")/.."
rooms=(contract source common ese registry samples result_db extractors
    host host/health host/record host/intake host/exports host/run host/batch host/commands host/manual plugin)
bad=0
rank() { # of the room that a file or an include lies in
    local i
    for ((i = ${#rooms[@]} - 1; i >= 0; i--)); do
        [[ ${1%/*} == "${rooms[i]}" ]] && { echo "$i"; return; }
    done
    echo -1
}
while IFS=: read -r file include; do
    own=$(rank "$file") used=$(rank "$include")
    if [ "$own" -lt 0 ] || [ "$used" -gt "$own" ]; then
        echo "upward include: $file includes $include"
        bad=1
    fi
done < <(git ls-files '*.cpp' '*.h' | grep -vE '^(tests|bench|fuzz)/|^host/(main|staging_main)\.cpp$' |
    xargs grep -HoP '^#include "\K[^"]+(?=")' | grep '/')
exit $bad
