#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Tries the project in bare systems made by debootstrap, as it lies in the last commit.
# packaging/bare_debian.sh [--tests WORDS] [--packages] [--quick] [--folder FOLDER] RELEASE...   (bookworm, trixie)
#   ./run in a fresh clone always; --tests: ./test with these words for ctest ("" for all); --packages: makes the packages
#   there, installs them in another bare system, extracts the sample, removes them and looks for what they left;
#   --quick: builds without debug information.
# Needs root, debootstrap and the machine's Debian mirror. Where one of them is missing it says "left out", and is no failure.
# The systems are removed after a success; after a failure they stay to be looked at, with their logs beside them.
set -euo pipefail
top=$(cd "$(dirname "$0")/.." && pwd)
folder=${TMPDIR:-/tmp}/cortana-bare run_tests=0 tests='' make_packages=0 quick=0
while [[ ${1:-} == --* ]]; do
    case $1 in
        --tests) run_tests=1 tests=$2; shift ;;
        --packages) make_packages=1 ;;
        --quick) quick=1 ;;
        --folder) folder=$2; shift ;;
        *) echo "bare_debian: unknown word '$1'" >&2; exit 2 ;;
    esac
    shift
done
left_out() { echo "left out: a bare Debian: $1"; exit 0; }
[ "$(id -u)" = 0 ] || left_out "it takes root"
command -v debootstrap >/dev/null || left_out "debootstrap is not installed"
unshare --mount --pid --fork true 2>/dev/null || left_out "this machine does not let us mount"
# The mirror is the one the machine already uses for Debian itself (not for security updates or third parties).
mirror=$(apt-get indextargets --format '$(ORIGIN)|$(LABEL)|$(REPO_URI)' 'Identifier: Packages' |
    sed -n 's/^Debian|Debian|//p' | head -n 1)
[ -n "$mirror" ] || left_out "this machine's apt names no mirror of Debian"
mkdir -p "$folder"
needed_gb=8 # a system with everything that builds and tests need, twice over
free_gb=$(df --output=avail -BG "$folder" | tail -n 1 | tr -dc 0-9)
[ "$free_gb" -ge $needed_gb ] || left_out "$folder has $free_gb GB left, $needed_gb are needed"

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
    timeout 900 debootstrap --variant=minbase --include=git,ca-certificates,netbase "$release" "$1" "$mirror" >"$1.log" 2>&1 ||
        { tail -n 20 "$1.log"; left_out "debootstrap made no $release of this machine's mirror"; }
    cp /etc/resolv.conf "$1/etc/resolv.conf"
    in_bare "$1" true || left_out "this machine does not let us run a system in a folder"
    echo force-unsafe-io >"$1/etc/dpkg/dpkg.cfg.d/unsafe-io" # a system that is lost with the machine anyway
}
step() { # ROOT LOG COMMAND: the command, in the clone where there is one; a mirror that cannot be reached is no failure
    in_bare "$1" bash -ec "cd /root/cortana 2>/dev/null || cd /root; $3" >"$2" 2>&1 && return
    tail -n 60 "$2" >&2
    ! grep -qE '^(E|W): .*(Failed to fetch|Unable to fetch|Could not (resolve|connect))' "$2" || left_out "the mirror was lost"
    echo "bare_debian: $release: failed, see above and $2" >&2
    exit 1
}
files_of() { # ROOT: every file but those that apt and dpkg keep for themselves
    (cd "$1" && find . -xdev \( -path ./proc -o -path ./dev -o -path ./tmp -o -path ./root -o -path ./var/cache -o -path ./var/log \
        -o -path ./var/lib/apt -o -path ./var/lib/dpkg \) -prune -o -print | sort)
}

for release in "$@"; do
    build=$folder/$release
    user=$build-user
    log "making the system"
    new_system "$build"
    git clone --quiet --no-hardlinks "$top" "$build/root/cortana"
    if [ $quick = 1 ]; then
        log "what a build needs"
        step "$build" "$build.setup.log" 'packaging/setup.sh && cmake --preset release -DCMAKE_CXX_FLAGS_RELWITHDEBINFO="-O2 -DNDEBUG"'
    fi
    log "./run"
    step "$build" "$build.run.log" ./run
    grep -q 'system_user: anna' "$build.run.log" || { echo "./run listed no row of anna" >&2; exit 1; }
    if [ $run_tests = 1 ]; then
        log "./test $tests"
        step "$build" "$build.test.log" "./test $tests"
        tail -n 3 "$build.test.log"
    fi
    if [ $make_packages = 1 ]; then
        log "packages"
        step "$build" "$build.deb.log" packaging/deb.sh
        log "a system to install them in"
        new_system "$user"
        files_of "$user" >"$user.before"
        cp "$build"/root/cortana/build/packages/*.deb "$user/root/"
        cp -r "$build/root/cortana/build/sample_case/source" "$user/root/source"
        step "$user" "$user.log" 'export DEBIAN_FRONTEND=noninteractive
            apt-get -qq update; apt-get -qq install -y --no-install-recommends ./cortana_*.deb ./cortana-dev_*.deb
            cortana extract source result; cortana rows result | grep "system_user: anna"
            apt-get -qq purge -y --auto-remove cortana cortana-dev'
        left=$(comm -13 "$user.before" <(files_of "$user"))
        [ -z "$left" ] || { echo "left after removal: $left" >&2; exit 1; }
        log "packages install, work and leave nothing"
    fi
    rm -rf "$build" "$user"
    log "passed"
done
