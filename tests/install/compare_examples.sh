#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# compare_examples.sh CMAKE GENERATOR CC CXX SOURCE_DIR PREFIX WORK_DIR
# Builds the examples against the installed copy as two hosts would: one with the CMake package, one
# with pkg-config. Both must run, print the same, and report a missing file. Both also compile as
# C++.
set -euo pipefail
cmake=$1 generator=$2 cc=$3 cxx=$4 source=$5 prefix=$6 work=$7
rm -rf "$work"
mkdir -p "$work"
libdir=$(dirname "$(find "$prefix" -name 'libbeatatlas.so')")
export PKG_CONFIG_PATH=$libdir/pkgconfig

"$cmake" -G "$generator" -S "$source/examples" -B "$work/cmake-host" -DCMAKE_PREFIX_PATH="$prefix" \
    -DCMAKE_C_COMPILER="$cc" >"$work/configure.log"
"$cmake" --build "$work/cmake-host" >"$work/build.log"

# build_host EXAMPLE PACKAGE
build_host() {
    # shellcheck disable=SC2046
    "$cc" -std=c99 -Wall -Wextra -Werror -pedantic "$source/examples/$1.c" -o "$work/pkg-$1" \
        $(pkg-config --cflags --libs "$2")
    # shellcheck disable=SC2046
    "$cxx" -x c++ -fsyntax-only -Wall -Wextra -Werror $(pkg-config --cflags "$2") \
        "$source/examples/$1.c"
}
build_host overview beatatlas
build_host track beatatlas_track

# Two seconds of a loud square wave at 150 Hz, 16-bit stereo.
awk 'BEGIN { for (i = 0; i < 88200; ++i) printf (int(i / 147) % 2) ? "\\x00\\x40\\x00\\x40" : "\\x00\\xc0\\x00\\xc0" }' |
    { read -r -d '' text || true; printf '%b' "$text"; } >"$work/track.raw"
[[ $(stat -c %s "$work/track.raw") -eq 352800 ]] || { echo "track.raw has the wrong size"; exit 1; }

for example in overview track; do
    "$work/cmake-host/$example" "$work/track.raw" >"$work/cmake-$example.txt"
    LD_LIBRARY_PATH=$libdir "$work/pkg-$example" "$work/track.raw" >"$work/pkg-$example.txt"
    cat "$work/pkg-$example.txt"
    cmp "$work/cmake-$example.txt" "$work/pkg-$example.txt"
    if "$work/cmake-host/$example" "$work/missing.raw" 2>"$work/error.txt"; then
        echo "$example is content with a file that is missing"
        exit 1
    fi
    grep -q 'missing.raw: No such file' "$work/error.txt"
done

# What cannot be a track is refused by its name.
: >"$work/empty.raw"
for name in empty.raw .; do
    if "$work/cmake-host/track" "$work/$name" 2>"$work/error.txt"; then
        echo "track is content with $name"
        exit 1
    fi
    grep -q "$work/$name: empty, a folder or too long" "$work/error.txt"
done

# The whole-track library prints nothing of its own to a host in C.
"$work/cmake-host/track" "$work/track.raw" 2>"$work/error.txt" |
    awk '!/^(tempo|bar) / { print "unexpected: " $0; found = 1 } END { exit found }'
[[ ! -s $work/error.txt ]]
grep -q 'loud 400, dots 100, zoom 300 points' "$work/pkg-overview.txt"
grep -q 'tempo 0.00 BPM, key ' "$work/pkg-track.txt"
