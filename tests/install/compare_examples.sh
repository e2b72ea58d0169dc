#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# compare_examples.sh CMAKE CC SOURCE_DIR PREFIX WORK_DIR
# Builds the example against the installed copy as two hosts would: one finds the CMake package, one asks pkg-config.
# Both must run and say the same.
set -euo pipefail
cmake=$1 cc=$2 source=$3 prefix=$4 work=$5
rm -rf "$work"
mkdir -p "$work"
libdir=$(dirname "$(find "$prefix" -name 'libbeatatlas.so')")
export PKG_CONFIG_PATH=$libdir/pkgconfig

"$cmake" -G Ninja -S "$source/examples" -B "$work/cmake-host" -DCMAKE_PREFIX_PATH="$prefix" -DCMAKE_C_COMPILER="$cc" >"$work/configure.log"
"$cmake" --build "$work/cmake-host" >"$work/build.log"

# shellcheck disable=SC2046
"$cc" -std=c99 -Wall -Wextra -Werror -pedantic "$source/examples/overview.c" -o "$work/pkg-host" \
    $(pkg-config --cflags --libs beatatlas)

# Two seconds of a loud square wave at 150 Hz, 16-bit stereo.
awk 'BEGIN { for (i = 0; i < 88200; ++i) printf (int(i / 147) % 2) ? "\\x00\\x40\\x00\\x40" : "\\x00\\xc0\\x00\\xc0" }' |
    { read -r -d '' text || true; printf '%b' "$text"; } >"$work/track.raw"
[[ $(stat -c %s "$work/track.raw") -eq 352800 ]] || { echo "track.raw has the wrong size"; exit 1; }

"$work/cmake-host/overview" "$work/track.raw" >"$work/cmake-host.txt"
LD_LIBRARY_PATH=$libdir "$work/pkg-host" "$work/track.raw" >"$work/pkg-host.txt"
cat "$work/pkg-host.txt"
cmp "$work/cmake-host.txt" "$work/pkg-host.txt"
grep -q 'loud 400, dots 100, zoom 300 points' "$work/pkg-host.txt"
