#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# reuse_objects.sh BUILD_DIR COMPILER ARGUMENT…
# A compiler launcher for a build inside a parent project. The inner rooms of the libraries were
# compiled in BUILD_DIR with the same compiler and are reused; the outer rooms are compiled with the
# flags of the parent's build.
set -euo pipefail
build=$1
shift
object=$(printf '%s\n' "$@" | grep -A1 -x -e -o | tail -1)
core='src/CMakeFiles/beatatlas_objects\.dir/(dsp|view|peakss|envelope|key|util|session)'
track='track/CMakeFiles/beatatlas_track_objects\.dir/(evidence|key|tempo)'
inner="^beatatlas/(($core|$track)/.*\.o)\$"
if [[ $object =~ $inner && -f $build/${BASH_REMATCH[1]} ]]; then
    cp "$build/${BASH_REMATCH[1]}" "$object"
else
    exec "$@"
fi
