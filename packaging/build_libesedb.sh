#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Builds libesedb 20240420 as a static, position-independent library into build/deps/libesedb.
#
# Why: releases before 20240420 cannot find most long values, decode characters above U+FFFF wrongly and can be
# killed by one damaged byte. The Debian source package is fetched with a private apt directory (the machine's own
# apt lists stay untouched), verified by apt with the archive keyring and once more against the sums below.
set -euo pipefail

readonly version=20240420 revision=20240420-1 suite=trixie
readonly keyring=/usr/share/keyrings/debian-archive-keyring.gpg
readonly sums="63c83b6ec86eb37df41bd693bfe437803c494dde2d17152f795dedeb74879dee  libesedb_20240420-1.dsc
07250741dff8a1ea1f5e38c02f1b9a1ae5e9fa52d013401067338842883a5b9f  libesedb_20240420.orig.tar.gz
f77944371b68a0d0ab4ceb4b34e5a0842147bb7ac8c98b2245a12a7f1c20d310  libesedb_20240420-1.debian.tar.xz"

top=$(cd "$(dirname "$0")/.." && pwd)
readonly top work="$top/build/deps/libesedb-work" prefix="$top/build/deps/libesedb"
readonly stamp="$prefix/.built-$revision"
[ -e "$stamp" ] && exit 0

# The mirror is the one the machine already uses for Debian itself (not for security updates or third parties).
mirror=$(apt-get indextargets --format '$(ORIGIN)|$(LABEL)|$(REPO_URI)' 'Identifier: Packages' |
    sed -n 's/^Debian|Debian|//p' | head -n 1)
[ -n "$mirror" ] || { echo "build_libesedb: no Debian mirror in this machine's apt sources" >&2; exit 1; }

rm -rf "$work" "$prefix"
mkdir -p "$work"/{etc,state/lists/partial,cache/archives/partial,source}
echo "deb-src [signed-by=$keyring] $mirror $suite main" >"$work/etc/sources.list"
private_apt=(apt-get -qq -o "Dir::Etc::sourcelist=$work/etc/sources.list" -o Dir::Etc::sourceparts=/dev/null
    -o "Dir::State=$work/state" -o "Dir::Cache=$work/cache" -o Dir::State::status=/var/lib/dpkg/status
    -o APT::Sandbox::User=root)

echo "build_libesedb: fetching libesedb $revision from $suite"
"${private_apt[@]}" update
(cd "$work/source" && "${private_apt[@]}" source --download-only "libesedb=$revision" >/dev/null &&
    sha256sum --check --quiet - <<<"$sums")
(cd "$work/source" && dpkg-source --no-check -x "libesedb_$revision.dsc" unpacked >/dev/null)

echo "build_libesedb: building libesedb $version (about a minute, log in build/deps/libesedb-build.log)"
(cd "$work/source/unpacked" &&
    CFLAGS="-O2 -g -fPIC -fvisibility=hidden -ffile-prefix-map=$PWD=libesedb" ./configure --prefix="$prefix" --localedir=/usr/share/locale --disable-shared --enable-static \
        --with-pic --disable-nls --disable-python &&
    make -j"$(nproc)" && make install) >"$top/build/deps/libesedb-build.log" 2>&1 ||
    { tail -n 20 "$top/build/deps/libesedb-build.log" >&2; exit 1; }
# What the library is made of, for the list of what is linked in statically: a name and a version a line.
ar t "$prefix/lib/libesedb.a" | sed 's/[_.].*//' | sort -u | while read -r part; do
    echo "$part $(sed -n "s/^#define ${part^^}_VERSION[[:space:]]*\([0-9]\)/\1/p" "$work/source/unpacked/$part/${part}_definitions.h")"
done >"$prefix/parts"
rm -rf "$work"
touch "$stamp"
