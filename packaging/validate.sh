#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Tries this build on this machine and writes what was tried, with which outcome, as Markdown: what a laboratory attaches
# to its procedure. Needs a built tree (./test makes one); takes some minutes.
# packaging/validate.sh [FILE]   (default docs/validation.md)
set -euo pipefail
file=$(realpath -m "${1:-$(dirname "$0")/../docs/validation.md}")
cd "$(dirname "$0")/.."
bin=build/release/bin rounds=12 # of each file and way to change it: 216 changed files
for program in cortana cortana_write_sample mutated_sources; do
    [ -x "$bin/$program" ] || { echo "validate: $bin/$program is not built; run ./test first" >&2; exit 1; }
done
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

echo "validate: the tests"
code=0
ctest --preset release -j"$(nproc)" --output-junit "$work/tests.xml" >"$work/tests.log" 2>&1 || code=$?
attribute() { grep -oE "$1=\"[0-9]+\"" "$work/tests.xml" | head -n 1 | tr -dc 0-9; }

echo "validate: sources with a mutated file"
mkdir "$work/mutated"
"$bin/mutated_sources" "$rounds" "$work/mutated" >"$work/mutated.txt" 2>"$work/mutated.log" || code=$?
grep -q 'supervisors died: 0; sound profiles with other rows: 0' "$work/mutated.txt" || code=1

echo "validate: the sample"
"$bin/cortana_write_sample" "$work/sample"
"$bin/cortana" extract --quiet "$work/sample" "$work/result"
"$bin/cortana" verify "$work/result" "$work/sample" >"$work/verify.txt" || code=$?

{
    echo "# Validation"
    echo
    echo "Made by \`packaging/validate.sh\`; make it anew on the machine that is to be validated."
    echo
    echo "| | |"
    echo "|---|---|"
    echo "| outcome | $([ $code = 0 ] && echo passed || echo "**not passed**") |"
    echo "| made on | $(date -u +%Y-%m-%d) |"
    echo "| commit | $(git rev-parse --short HEAD)$(git diff --quiet HEAD -- && : || echo ", with changes") |"
    echo "| system | $(. /etc/os-release && echo "$PRETTY_NAME"), Linux $(uname -r | cut -d- -f1), $(uname -m) |"
    echo "| tests | $(attribute tests) programs, $(attribute failures) failed, $(attribute skipped) left out |"
    echo
    echo "## Versions"
    echo
    "$bin/cortana" --version | sed 's/^/    /'
    echo
    echo "## Mutated sources"
    echo
    echo "A source holds a sound profile beside those with a file that was changed, by fixed seeds. What became of them"
    echo "([reliability.md](reliability.md) explains the columns):"
    echo
    sed 's/^/    /' "$work/mutated.txt"
    echo
    echo "## The sample"
    echo
    echo "The sample source is written anew and extracted; \`cortana verify\` says: $(tail -n 1 "$work/verify.txt")."
    echo
    echo "| table | rows |"
    echo "|---|---|"
    "$bin/cortana" rows "$work/result" | awk '/^[a-z]/ {table = $1; rows[table] = 0; order[++n] = table}
        /^ *[0-9]+  / {++rows[table]} END {for (i = 1; i <= n; ++i) print "| `" order[i] "` | " rows[order[i]] " |"}'
    echo
    echo "## Digests of the corpus"
    echo
    echo "SHA-256 of each file of the sample, and of all inputs kept for the fuzz targets together."
    echo
    (cd "$work/sample" && find . -type f -print0 | sort -z | xargs -0 sha256sum | sed 's/^/    /')
    echo "    $(git ls-files -z fuzz/corpus | xargs -0 cat | sha256sum | cut -d' ' -f1)  fuzz/corpus ($(git ls-files fuzz/corpus | wc -l) files)"
} >"$file"
echo "validate: $file"
exit $code
