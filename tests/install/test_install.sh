#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Installs into a folder of its own, then works with nothing but what lies there: the program, and a host that is built
# with find_package and linked once more with pkg-config.
# test_install.sh BUILD CMAKE CXX_COMPILER
set -euo pipefail
build=$1 cmake=$2 compiler=$3
here=$(cd "$(dirname "$0")" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
stage=$work/stage
export QT_QPA_PLATFORM=offscreen CMAKE_GENERATOR=Ninja
fail() { echo "FAIL: $*" >&2; exit 1; }

"$cmake" --install "$build" --prefix "$stage" >"$work/install.log" || { cat "$work/install.log"; fail "install"; }
"$build/bin/cortana_write_sample" "$work/source"

"$stage/bin/cortana" extract --quiet "$work/source" "$work/by_program"
rows_of() { "$stage/bin/cortana" rows --tables searches,cookies "$1" | grep -E 'system_user: anna '; }
wanted=$(rows_of "$work/by_program")
[ -n "$wanted" ] || fail "the installed program found nothing"
tar -C "$work/source" -czf "$work/source.tgz" .
"$stage/bin/cortana" extract --quiet "$work/source.tgz" "$work/by_archive"
"$stage/bin/cortana" diff --tables searches,cookies,time_reminders "$work/by_program" "$work/by_archive" || fail "the installed program reads an archive otherwise"

check_host() { # NAME PLUGIN: the host of this name, with the plugin that its way of finding it tells
    [ -f "$2" ] || fail "$1: there is no plugin $2"
    case $2 in "$stage"/*) ;; *) fail "$1: the plugin $2 was not installed" ;; esac
    [ "$("$work/$1/small_host" "$2" "$work/source/" "$work/by_$1")" = Cortana ] || fail "$1: another plugin answered"
    # The program shows the operating system and numbers keys over all profiles, the host has one profile.
    [ "$(rows_of "$work/by_$1" | grep -o 'system_user.*')" = "$(grep -o 'system_user.*' <<<"$wanted")" ] ||
        fail "$1: other rows than the program's"
}

mkdir "$work/cmake" "$work/pkgconfig"
cp "$here/found_by_cmake.cmake" "$work/cmake/CMakeLists.txt"
cp "$here/small_host.cpp" "$work/cmake/"
{ "$cmake" -S "$work/cmake" -B "$work/cmake" -DCMAKE_PREFIX_PATH="$stage" -DCMAKE_CXX_COMPILER="$compiler" &&
    "$cmake" --build "$work/cmake"; } >"$work/cmake.log" 2>&1 || { cat "$work/cmake.log"; fail "find_package"; }
check_host cmake "$(realpath "$(cat "$work/cmake/plugin")")"

PKG_CONFIG_PATH=$(dirname "$(find "$stage" -name cortana.pc)")
export PKG_CONFIG_PATH
read -ra flags < <(pkg-config --cflags cortana)
read -ra libraries < <(pkg-config --libs cortana)
"$compiler" -std=c++17 -fPIC -E -o /dev/null "$here/small_host.cpp" "${flags[@]}" # finds every header
"$compiler" -o "$work/pkgconfig/small_host" "$(find "$work/cmake" -name 'small_host*.o')" "${libraries[@]}" -ldl
check_host pkgconfig "$(realpath "$(pkg-config --variable=plugin cortana)")"

while read -r page; do
    grep -qE '^[^#]*\]\(' "$page" || continue
    while read -r target; do
        [ -e "$(dirname "$page")/$target" ] || fail "$page leads to $target, which is not installed"
    done < <(grep -oE '\]\([^)#:]+' "$page" | cut -c3-)
done < <(find "$stage/share/doc" -name '*.md')
