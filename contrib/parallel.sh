#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# All sources of a manifest with GNU parallel: on this machine or, with HOSTS, on several over ssh.
#
#   cortana batch create m.jsonl /mnt/evidence
#   contrib/parallel.sh m.jsonl /shared/out                        this machine
#   HOSTS=4/node1,4/node2 contrib/parallel.sh m.jsonl /shared/out  four at once on each
#   contrib/parallel.sh m.jsonl /shared/out                        again: only what is not through yet
#   cortana batch status /shared/out
#
# Evidence, manifest and OUT have the same paths on every machine, and cortana is installed on each.
set -euo pipefail
[ $# = 2 ] || { sed -n '3,11s/^# \{0,1\}//p' "$0"; exit 2; }
MANIFEST=$(realpath "$1") OUT=$(realpath -m "$2")
MEMORY=${MEMORY:-2G} # a worker may hold so much, and no job begins with less free
LIMIT=${LIMIT:-4h}   # a source may take so long
export MANIFEST OUT MEMORY LIMIT

# What another run cannot better (2 usage, 3 failures, 4 nothing found) is through, and "batch status" names it. The
# rest (1, 5, killed) counts as failed: it is tried again, now and by the next call.
# shellcheck disable=SC2016 # the variables are those of the machine that does the job
job='timeout --kill-after=60 "$LIMIT" cortana batch run --manifest "$MANIFEST" --index {} --out "$OUT" \
    --memory-limit "$MEMORY" || { code=$?; [ $code -ge 2 ] && [ $code -le 4 ] || exit $code; }'

seq "$(grep -c '' "$MANIFEST")" | parallel --will-cite --joblog "$OUT.joblog" --resume-failed --line-buffer \
    --retries "${RETRIES:-3}" --memfree "$MEMORY" --jobs "${JOBS:-100%}" \
    ${HOSTS:+--sshlogin "$HOSTS" --env MANIFEST --env OUT --env MEMORY --env LIMIT} "$job"
