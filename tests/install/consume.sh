#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# consume.sh CMAKE CC BUILD_DIR SOURCE_DIR WORK_DIR
# Installs the build into an empty prefix and builds the example against that copy as two hosts would: one finds
# the CMake package, one asks pkg-config. Both must run and say the same.
set -euo pipefail
cmake=$1 cc=$2 build=$3 source=$4 work=$5
rm -rf "$work"
mkdir -p "$work"

"$cmake" --install "$build" --prefix "$work/prefix" >"$work/install.log"
# Moved after the installation: nothing in it may hold the path it was installed to.
mv "$work/prefix" "$work/moved"
prefix=$work/moved
libdir=$(dirname "$(find "$prefix" -name 'libbeatatlas.so' | head -1)")

"$cmake" -G Ninja -S "$source/examples" -B "$work/cmake-host" -DCMAKE_PREFIX_PATH="$prefix" -DCMAKE_C_COMPILER="$cc" >"$work/configure.log"
"$cmake" --build "$work/cmake-host" >"$work/build.log"

# shellcheck disable=SC2046
PKG_CONFIG_PATH=$libdir/pkgconfig "$cc" -std=c99 -Wall -Wextra -Werror -pedantic "$source/examples/overview.c" -o "$work/pkg-host" \
    $(PKG_CONFIG_PATH=$libdir/pkgconfig pkg-config --cflags --libs beatatlas)

# Two seconds of a loud square wave at 150 Hz, 16-bit stereo.
awk 'BEGIN { for (i = 0; i < 88200; ++i) printf (int(i / 147) % 2) ? "\\x00\\x40\\x00\\x40" : "\\x00\\xc0\\x00\\xc0" }' |
    { read -r -d '' text || true; printf '%b' "$text"; } >"$work/track.raw"
[[ $(stat -c %s "$work/track.raw") -eq 352800 ]] || { echo "track.raw has the wrong size"; exit 1; }

"$work/cmake-host/overview" "$work/track.raw" >"$work/cmake-host.txt"
LD_LIBRARY_PATH=$libdir "$work/pkg-host" "$work/track.raw" >"$work/pkg-host.txt"
cat "$work/pkg-host.txt"
cmp "$work/cmake-host.txt" "$work/pkg-host.txt"
grep -q 'loud 400, dots 100, zoom 300 points' "$work/pkg-host.txt"
if ! readelf -d "$libdir/libbeatatlas.so" | grep -q 'SONAME.*libbeatatlas\.so\.[0-9]'; then
    echo "the shared library has no SONAME with a major version"
    exit 1
fi
