#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Makes the packages cortana and cortana-dev for this release of Debian and lets lintian judge them.
# packaging/deb.sh [FOLDER]   (default build/packages; its subfolder "source" is where they are built)
set -euo pipefail
top=$(cd "$(dirname "$0")/.." && pwd)
mkdir -p "${1:-$top/build/packages}"
folder=$(cd "${1:-$top/build/packages}" && pwd)
source=$folder/source/cortana
log=$folder/build.log
"$top/packaging/setup.sh" deb

rm -rf "$folder/source"
mkdir -p "$source"
(cd "$top" && git ls-files -z | tar --null -T - -cf -) | tar -C "$source" -xf -
if [ -e "$top/build/deps/libesedb/parts" ]; then # else debian/rules makes it where it is needed
    mkdir -p "$source/build/deps"
    cp -a "$top/build/deps/libesedb" "$source/build/deps/"
fi
echo "deb: building (some minutes, log in $log)"
(cd "$source" && dpkg-buildpackage --build=binary --no-sign) >"$log" 2>&1 || { tail -n 40 "$log" >&2; exit 1; }
rm -f "$folder"/*.deb "$folder"/*.changes "$folder"/*.buildinfo
mv "$folder"/source/*.deb "$folder"/source/*.changes "$folder"/source/*.buildinfo "$folder/"
lintian --allow-root --fail-on error,warning --tag-display-limit 0 "$folder"/*.changes
ls -l "$folder"/*.deb
