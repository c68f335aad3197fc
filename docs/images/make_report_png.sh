#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Makes docs/images/report.png: the top of the report of the sample, packed as an archive and read from it.
# Wants a release build, chromium, and the fonts fonts-noto-core, fonts-noto-color-emoji.
set -euo pipefail
cd "$(dirname "$0")/../.."
case=$(mktemp -d)
trap 'rm -rf "$case"' EXIT
mkdir "$case/evidence"
build/release/bin/cortana_write_sample "$case/sample" >/dev/null
tar -C "$case/sample" --mtime='2019-05-02 18:30:00Z' -cf "$case/evidence/laptop-C.tar" .
build/release/bin/cortana extract --quiet "$case/evidence/laptop-C.tar" "$case/c1"
build/release/bin/cortana export --format html --out "$case/out" "$case/c1" >/dev/null
sed -i "s,$case/,/,g" "$case/out/report.html"
chromium --headless --no-sandbox --disable-gpu --hide-scrollbars --user-data-dir="$case/chromium" \
    --window-size=1360,1640 --screenshot=docs/images/report.png "file://$case/out/report.html" >"$case/log" 2>&1 ||
    { cat "$case/log" >&2; exit 1; }
