#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# refuse_loose_flags.sh CMAKE CXX SOURCE_DIR
# Checks that flags that loosen arithmetic are refused: by name wherever they are set, and by their
# macros during compilation.
set -euo pipefail
cmake=$1 cxx=$2 source=$3
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
failed=0

# expect refused|taken VARIABLE FLAGS
expect() {
    local answer=refused output
    if output=$("$cmake" "-D$2=$3" "-DSOURCE=$source" -P "$here/ask_for_flags.cmake" 2>&1); then
        answer=taken
    fi
    if [[ $answer == refused && $output != *"Beat Atlas defines its results to the bit"* ]]; then
        answer=silent
    fi
    if [[ $answer != "$1" ]]; then
        echo "$2=$3: $answer: $output"
        failed=1
    fi
}

for flag in -ffast-math -Ofast -funsafe-math-optimizations -fassociative-math -freciprocal-math \
    -ffinite-math-only -fno-signed-zeros -fsingle-precision-constant -mfpmath=387 -mdaz-ftz \
    -ffp-model=fast -ffp-model=aggressive -fdenormal-fp-math=preserve-sign \
    -fdenormal-fp-math=ieee,positive-zero -fdenormal-fp-math-f32=preserve-sign; do
    expect refused CMAKE_CXX_FLAGS "$flag"
done
for variable in CMAKE_CXX_FLAGS CMAKE_EXE_LINKER_FLAGS CMAKE_MODULE_LINKER_FLAGS \
    CMAKE_SHARED_LINKER_FLAGS; do
    expect refused "$variable" "-Wl,-O1 -ffast-math"
    expect refused "${variable}_RELEASE" "-O2 -ffast-math"
    expect taken "${variable}_DEBUG" "-ffast-math" # of a configuration that is not built
done
expect refused CMAKE_CXX_FLAGS "-O2 -ffast-math -g"
expect refused CMAKE_CXX_COMPILER_ARG1 " -ffast-math"
for options in COMPILE_OPTIONS LINK_OPTIONS; do
    expect refused $options "-Wall;-ffast-math"
    expect refused $options "\$<\$<CONFIG:Release>:-ffast-math>"
done
expect taken CMAKE_CXX_FLAGS \
    "-O3 -march=x86-64-v3 -flto -fno-math-errno -fno-fast-math -fsigned-zeros"
expect taken CMAKE_CXX_FLAGS "-ffp-model=strict -fdenormal-fp-math=ieee,ieee -ffp-contract=fast"

# With contraction off, Clang does not define the first macro but still defines the other.
for flag in -ffast-math -Ofast -ffinite-math-only; do
    if "$cxx" -fsyntax-only -x c++ -ffp-contract=off -frounding-math "$flag" \
        "$source/src/dsp/exactArithmetic.h" 2>/dev/null; then
        echo "$flag: compiled"
        failed=1
    fi
done
"$cxx" -fsyntax-only -x c++ -ffp-contract=off -frounding-math -O3 \
    "$source/src/dsp/exactArithmetic.h"
exit $failed
