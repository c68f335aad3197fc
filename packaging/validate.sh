#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Tries this build on this machine and writes what was tried, with which outcome, as Markdown: what a laboratory attaches
# to its procedure. Needs a built tree (./test makes one); takes one to four minutes.
# packaging/validate.sh [FILE]   (default docs/validation.md)
set -euo pipefail
file=$(realpath -m "${1:-$(dirname "$0")/../docs/validation.md}")
cd "$(dirname "$0")/.."
bin=$PWD/build/release/bin rounds=12 # of each file and way to change it: 216 changed files
for program in cortana cortana_write_sample mutated_sources; do
    [ -x "$bin/$program" ] || { echo "validate: $bin/$program is not built; run ./test first" >&2; exit 1; }
done
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export LC_ALL=C.UTF-8 TZ=UTC
code=0
say() { echo "validate: $*"; }

say "the tests"
ctest --preset release --output-junit "$work/tests.xml" --test-output-size-passed 10000000 >"$work/tests.log" 2>&1 || code=$?
ctest --preset release --show-only=json-v1 >"$work/tests.json"
packaging/validation_tests.py "$work/tests.xml" "$work/tests.json" >"$work/tests.md"

say "sources with a mutated file"
mkdir "$work/mutated"
"$bin/mutated_sources" "$rounds" "$work/mutated" >"$work/mutated.txt" 2>"$work/mutated.log" || code=$?
grep -q 'supervisors died: 0; sound profiles with other rows: 0' "$work/mutated.txt" || code=1

say "the sample in several kinds of source"
"$bin/cortana_write_sample" "$work/folder"
(
    cd "$work/folder"
    zip -qr "$work/sample.zip" .
    tar -czf "$work/sample.tar.gz" .
    7z a -bd "$work/sample.7z" . >/dev/null
    mkfs.vfat -C "$work/sample.dd" 65536 >/dev/null
    mcopy -s -i "$work/sample.dd" Users ::
    ewfacquirestream -q -t "$work/sample" <"$work/sample.dd" >/dev/null 2>&1
)
# Every table but recordings: their rows hold times of files, which not every kind of source keeps.
tables=$("$bin/cortana" schema | sed -n 's/^### //p' | grep -v latest_audio_search | paste -sd,)
contents_of() { find "$1" -type f -print0 | sort -z | xargs -0 sha256sum; }
times_of() { find "$1" -type f -printf "%p %s $2\n" | sort; } # SOURCE WHICH
try_kind() { # NAME SOURCE: a line of the table; what differs from the folder's rows is not passed
    local rows state=unchanged outcome=0
    contents_of "$2" >"$work/contents"
    find "$2" -type f -exec touch -a -d 2001-01-01 {} + # so that a reader shows
    times_of "$2" '%T@ %C@' >"$work/times"
    times_of "$2" %A@ >"$work/access_times"
    "$bin/cortana" extract --quiet "$2" "$work/result_$1" || outcome=$?
    times_of "$2" %A@ | cmp -s - "$work/access_times" || state="access time changed"
    times_of "$2" '%T@ %C@' | cmp -s - "$work/times" || state="**times changed**"
    contents_of "$2" | cmp -s - "$work/contents" || state="**changed**"
    rows=$("$bin/cortana" rows --tables "$tables" "$work/result_$1" | sha256sum | cut -c1-16)
    case "$1 $state" in *" unchanged" | "raw image access time changed" | "E01 access time changed") ;; *) code=1 ;; esac
    [ "$outcome" = 0 ] && [ "${first_rows:=$rows}" = "$rows" ] || code=1
    echo "| $1 | $outcome | $rows | $state |" >>"$work/kinds.md"
}
try_kind folder "$work/folder"
try_kind zip "$work/sample.zip"
try_kind tar.gz "$work/sample.tar.gz"
try_kind 7z "$work/sample.7z"
try_kind 'raw image' "$work/sample.dd"
try_kind E01 "$work/sample.E01"
"$bin/cortana" verify "$work/result_folder" "$work/folder" >"$work/verify.txt" || code=$?

{
    echo "# Validation"
    echo
    echo "Made by \`packaging/validate.sh\`; make it anew on the machine that is to be validated."
    echo
    echo "| | |"
    echo "|---|---|"
    echo "| outcome | $([ $code = 0 ] && echo passed || echo "**not passed**") |"
    echo "| made on | $(date +%Y-%m-%d), in $SECONDS seconds |"
    echo "| commit | $(git rev-parse HEAD)$(git diff --quiet HEAD -- . ':!docs/validation.md' && : || echo ", with changes") |"
    echo "| system | $(. /etc/os-release && echo "$PRETTY_NAME"), Linux $(uname -r | cut -d- -f1), $(uname -m) |"
    echo "| machine | $(nproc) × $(sed -n 's/^model name.*: //p' /proc/cpuinfo | head -n 1), $(free --giga | awk '/^Mem/ {print $2}') GB |"
    echo "| confinement of workers | $(python3 -c 'import json, sys
with open(sys.argv[1], encoding="utf-8") as file:
    s = json.load(file)["sandbox"]
print("Landlock", s["landlock"], "(version", str(s["landlock_abi"]) + "), filter of system calls", s["syscall_filter"])
' "$work/result_folder/Artifacts_Result/Cortana/run.json") |"
    echo
    echo "## What was validated"
    echo
    (cd "$bin" && sha256sum cortana cortana-stage libcortana.so | sed 's/^/    /')
    echo
    "$bin/cortana" --version | sed 's/^/    /'
    echo
    echo "## Tests"
    echo
    cat "$work/tests.md"
    echo
    echo "## Kinds of source"
    echo
    echo "The sample source is written anew and extracted from a folder, archives and images. Rows are the same where the start of"
    echo "their SHA-256 is; content and times of the source are compared by other programs than this one. The libraries that open"
    echo "images cannot leave the access time alone ([sources.md](sources.md))."
    echo
    echo "| source | exit code | rows | its files |"
    echo "|---|---|---|---|"
    cat "$work/kinds.md"
    echo
    echo "\`cortana verify\` says of the folder: $(tail -n 1 "$work/verify.txt"). Its rows:"
    echo
    echo "| table | rows |"
    echo "|---|---|"
    "$bin/cortana" rows "$work/result_folder" | awk '/^[a-z]/ {table = $1; rows[table] = 0; order[++n] = table}
        /^ *[0-9]+  / {++rows[table]} END {for (i = 1; i <= n; ++i) print "| `" order[i] "` | " rows[order[i]] " |"}'
    echo
    echo "## Mutated sources"
    echo
    echo "A source holds a sound profile beside one with a file that was changed, by fixed seeds. What became of them"
    echo "([reliability.md](reliability.md) explains the columns):"
    echo
    sed 's/^/    /' "$work/mutated.txt"
    echo
    echo "## Digests of the corpus"
    echo
    echo "SHA-256 of each file of the sample; then of the lists of digests of all inputs kept for the fuzz targets and of all files"
    echo "with expected rows (\`git ls-files -z PATTERN | xargs -0 sha256sum | sha256sum\`)."
    echo
    (cd "$work/folder" && find . -type f -print0 | sort -z | xargs -0 sha256sum | sed 's/^/    /')
    for pattern in 'fuzz/corpus/*' 'tests/*/golden/*'; do
        echo "    $(git ls-files -z "$pattern" | xargs -0 sha256sum | sha256sum | cut -d' ' -f1)  $pattern ($(git ls-files "$pattern" | wc -l) files)"
    done
} >"$file"
say "$file"
exit $code
