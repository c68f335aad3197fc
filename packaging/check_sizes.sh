#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Size limits that keep files readable: no source file over 350 lines, no tracked file over 1 MiB.
set -euo pipefail
cd "$(dirname "$0")/.."
bad=0
while IFS= read -r file; do
    case "$file" in
        common/media_extensions_*.cpp) continue ;; # tables of literals
        *.cpp | *.h) [ "$(wc -l <"$file")" -le 350 ] || { echo "too long: $(wc -l <"$file") lines in $file"; bad=1; } ;;
    esac
    [ "$(stat -c %s "$file")" -le 1048576 ] || { echo "too large: $file"; bad=1; }
done < <(git ls-files)
exit $bad
