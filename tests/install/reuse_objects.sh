#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# reuse_objects.sh BUILD_DIR COMPILER ARGUMENT…
# A compiler launcher for a build inside a parent project. The inner rooms of the core have been
# compiled in BUILD_DIR with the same compiler and are taken from there; the outer ones are
# compiled, with what the parent's build makes of their flags.
set -euo pipefail
build=$1
shift
object=$(printf '%s\n' "$@" | grep -A1 -x -e -o | tail -1)
inner='^beatatlas/(src/CMakeFiles/beatatlas_objects.dir/(dsp|view|peakss|envelope|key|util|session)/.*\.o)$'
if [[ $object =~ $inner && -f $build/${BASH_REMATCH[1]} ]]; then
    cp "$build/${BASH_REMATCH[1]}" "$object"
else
    exec "$@"
fi
