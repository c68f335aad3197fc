#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Makes docs/images/run.svg of what ./run prints: the first lines, cut to the picture's width.
set -euo pipefail
cd "$(dirname "$0")/../.."
readonly lines=44 columns=118
escape() { sed -e 's/&/\&amp;/g' -e 's/</\&lt;/g' -e 's/>/\&gt;/g'; }
rm -rf build/sample_case
mapfile -t text < <(./run 2>&1 | grep -v "^build: " | sed "s,$PWD/,," | cut -c1-"$columns" | head -n "$lines" | escape)
height=$(((${#text[@]} + 4) * 17))
{
    echo "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"951\" height=\"$height\" viewBox=\"0 0 951 $height\">"
    echo "<title>What ./run prints: the summary, and the first rows of the sample's tables</title>"
    echo "<rect width=\"951\" height=\"$height\" rx=\"8\" fill=\"#1d2530\"/>"
    echo '<g font-family="DejaVu Sans Mono, Menlo, Consolas, monospace" font-size="13" fill="#d7dee8" xml:space="preserve">'
    echo '<text x="14" y="34" fill="#8fd18f">$ ./run</text>'
    for i in "${!text[@]}"; do
        printf '<text x="14" y="%d">%s</text>\n' $((68 + i * 17)) "${text[$i]}"
    done
    echo '</g>'
    echo '</svg>'
} >docs/images/run.svg
