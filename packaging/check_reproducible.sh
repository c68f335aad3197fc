#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Makes the packages twice, in two folders with names of different length, and compares them byte for byte.
# packaging/check_reproducible.sh [FOLDER]   (default build/reproducible)
set -euo pipefail
top=$(cd "$(dirname "$0")/.." && pwd)
folder=${1:-$top/build/reproducible}
for build in one the_other_one; do
    "$top/packaging/deb.sh" --fresh "$folder/$build"
done
cd "$folder"
different=0
for package in one/*.deb; do
    if cmp "$package" "the_other_one/${package#one/}"; then
        echo "the same: ${package#one/} ($(sha256sum "$package" | cut -c1-16)...)"
    else
        different=1
    fi
done
exit $different
