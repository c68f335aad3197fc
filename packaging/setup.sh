#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Installs what a build needs on Debian 12 or 13, and nothing that is already there.
# Usage: packaging/setup.sh [lint] [test] [bench] [deb] [bare] [slurm]
# The extra words add what the checks, the tests, the benchmarks, packages, bare systems or a real Slurm need.
set -euo pipefail
top=$(cd "$(dirname "$0")/.." && pwd)

packages=(g++ cmake ninja-build pkg-config qtbase5-dev libqt5sql5-sqlite libarchive-dev libbfio-dev libhivex-dev
    libmimalloc-dev libminizip-dev libseccomp-dev libsqlite3-dev libssl-dev libtsk-dev libxlsxwriter-dev ntfs-3g-dev)
for extra in "$@"; do
    case "$extra" in
        lint) packages+=(clang clang-tidy clang-format cppcheck libclang-rt-dev lld shellcheck) ;;
        test)
            packages+=(chromium fish gdal-bin parallel python3-html5lib python3-jsonschema python3-openpyxl sleuthkit zsh)
            packages+=(bzip2 dosfstools e2fsprogs ewf-tools exfat-fuse exfatprogs fdisk mtools p7zip-full)
            packages+=(ntfs-3g qemu-utils xz-utils zip zstd)
            ;;
        deb) packages+=(build-essential debhelper dpkg-dev lintian) ;;
        bare) packages+=(debootstrap) ;;
        slurm) packages+=(munge slurm-client slurmctld slurmd) ;;
        bench) packages+=(sqlite3 libwin-hivex-perl libhivex-bin) ;;
        *) echo "setup: unknown word '$extra'" >&2; exit 2 ;;
    esac
done

as_root() { if [ "$(id -u)" = 0 ]; then "$@"; else sudo "$@"; fi; }
is_installed() { [ "$(dpkg-query -W -f '${db:Status-Status}' "$1" 2>/dev/null)" = installed ]; }

missing=()
need() { is_installed "$1" || missing+=("$1"); }
install_missing() {
    [ ${#missing[@]} = 0 ] && return
    echo "setup: installing ${missing[*]}"
    as_root apt-get -qq update
    as_root env DEBIAN_FRONTEND=noninteractive apt-get -qq install -y --no-install-recommends "${missing[@]}" >/dev/null
    missing=()
}

for package in "${packages[@]}"; do need "$package"; done
install_missing

# libesedb: the system's where it is new enough, else a static one of our own (see build_libesedb.sh).
readonly wanted=20240420
if [ ! -e "$top/build/deps/libesedb/lib/libesedb.a" ]; then
    candidate=$(apt-cache policy libesedb-dev | sed -n 's/^ *Candidate: *//p')
    if [ -z "$candidate" ] || [ "$candidate" = "(none)" ]; then
        as_root apt-get -qq update
        candidate=$(apt-cache policy libesedb-dev | sed -n 's/^ *Candidate: *//p')
    fi
    if dpkg --compare-versions "$candidate" ge "$wanted"; then
        need libesedb-dev
    else
        for package in dpkg-dev make xz-utils patch zlib1g-dev; do need "$package"; done
    fi
    install_missing
    dpkg --compare-versions "$candidate" ge "$wanted" || "$top/packaging/build_libesedb.sh"
fi
