#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Tries the project in bare systems made by debootstrap, as it lies in the last commit.
# packaging/bare_debian.sh [--tests WORDS] [--packages] [--folder FOLDER] RELEASE...   (bookworm, trixie)
#   ./run in a fresh clone always; --tests: ./test with these words for ctest ("" for all); --packages: makes the packages
#   there, installs them in another bare system, extracts the sample, removes them and looks for what they left.
# Needs root, debootstrap and the machine's Debian mirror; says so and does nothing where they are missing.
set -euo pipefail
top=$(cd "$(dirname "$0")/.." && pwd)
folder=${TMPDIR:-/tmp}/cortana-bare run_tests=0 tests='' make_packages=0
while [[ ${1:-} == --* ]]; do
    case $1 in
        --tests) run_tests=1 tests=$2; shift ;;
        --packages) make_packages=1 ;;
        --folder) folder=$2; shift ;;
        *) echo "bare_debian: unknown word '$1'" >&2; exit 2 ;;
    esac
    shift
done
if [ "$(id -u)" != 0 ] || ! command -v debootstrap >/dev/null; then
    echo "left out: a bare Debian needs root and debootstrap"
    exit 0
fi
# The mirror is the one the machine already uses for Debian itself (not for security updates or third parties).
mirror=$(apt-get indextargets --format '$(ORIGIN)|$(LABEL)|$(REPO_URI)' 'Identifier: Packages' |
    sed -n 's/^Debian|Debian|//p' | head -n 1)

log() { printf 'bare %s: %s (%s s so far)\n' "$release" "$1" "$SECONDS"; }
in_bare() { # ROOT COMMAND...: runs it as the only command of a machine would be, with /proc and /dev/shm
    local root=$1
    shift
    unshare --mount --pid --fork --kill-child bash -c 'mount -t proc proc "$0/proc" && mount -t tmpfs tmpfs "$0/dev/shm" &&
        mount -t devpts devpts "$0/dev/pts" && exec chroot "$0" /usr/bin/env -i HOME=/root PATH=/usr/sbin:/usr/bin:/sbin:/bin TERM=dumb "$@"' "$root" "$@"
}
new_system() { # ROOT
    rm -rf "$1"
    mkdir -p "$1"
    debootstrap --variant=minbase --include=git,ca-certificates,netbase "$release" "$1" "$mirror" >"$1.log" 2>&1 ||
        { tail -n 20 "$1.log" >&2; exit 1; }
    cp /etc/resolv.conf "$1/etc/resolv.conf"
}
files_of() { # ROOT: every file but those that apt and dpkg keep for themselves
    (cd "$1" && find . -xdev \( -path ./proc -o -path ./dev -o -path ./tmp -o -path ./root -o -path ./var/cache -o -path ./var/log \
        -o -path ./var/lib/apt -o -path ./var/lib/dpkg \) -prune -o -print | sort)
}

for release in "$@"; do
    build=$folder/$release
    log "making the system"
    new_system "$build"
    git clone --quiet --no-hardlinks "$top" "$build/root/cortana"
    log "./run"
    in_bare "$build" bash -c 'cd /root/cortana && ./run' >"$build.run.log" 2>&1 || { tail -n 40 "$build.run.log" >&2; exit 1; }
    grep -q 'system_user: anna' "$build.run.log" || { echo "./run listed no row of anna" >&2; exit 1; }
    if [ "$run_tests" = 1 ]; then
        log "./test $tests"
        in_bare "$build" bash -c "cd /root/cortana && ./test $tests" >"$build.test.log" 2>&1 ||
            { tail -n 60 "$build.test.log" >&2; exit 1; }
        tail -n 3 "$build.test.log"
    fi
    [ "$make_packages" = 1 ] || continue
    log "packages"
    in_bare "$build" bash -c 'cd /root/cortana && packaging/deb.sh' >"$build.deb.log" 2>&1 || { tail -n 60 "$build.deb.log" >&2; exit 1; }
    user=$build-user
    new_system "$user"
    files_of "$user" >"$user.before"
    cp "$build"/root/cortana/build/packages/*.deb "$user/root/"
    cp -r "$build/root/cortana/build/sample_case/source" "$user/root/source"
    in_bare "$user" bash -ec 'cd /root; export DEBIAN_FRONTEND=noninteractive
        apt-get -qq update; apt-get -qq install -y --no-install-recommends ./cortana_*.deb ./cortana-dev_*.deb
        cortana extract source result; cortana rows result | grep "system_user: anna"
        apt-get -qq purge -y --auto-remove cortana cortana-dev' >"$user.log" 2>&1 || { tail -n 40 "$user.log" >&2; exit 1; }
    left=$(comm -13 "$user.before" <(files_of "$user"))
    [ -z "$left" ] || { echo "left after removal: $left" >&2; exit 1; }
    log "packages install, work and leave nothing"
done
