#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# refuse_loose_flags.sh CMAKE CXX SOURCE_DIR
# Flags that loosen arithmetic are refused by name wherever they may stand, and by their macros while compiling.
set -euo pipefail
cmake=$1 cxx=$2 source=$3
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
failed=0

# expect refused|taken VARIABLE FLAGS
expect() {
    local answer=refused output
    if output=$("$cmake" "-D$2=$3" "-DSOURCE=$source" -P "$here/ask_for_flags.cmake" 2>&1); then answer=taken; fi
    if [[ $answer != "$1" || ($answer == refused && $output != *"Beat Atlas defines its results to the bit"*) ]]; then
        echo "$2=$3: $answer: $output"
        failed=1
    fi
}

for flag in -ffast-math -Ofast -funsafe-math-optimizations -fassociative-math -freciprocal-math -ffinite-math-only \
    -fno-signed-zeros -fsingle-precision-constant -mfpmath=387; do
    expect refused CMAKE_CXX_FLAGS "$flag"
done
expect refused CMAKE_CXX_FLAGS "-O2 -ffast-math -g"
expect refused CMAKE_CXX_FLAGS_RELEASE "-O3 -ffast-math"
expect refused CMAKE_SHARED_LINKER_FLAGS "-Wl,-O1 -ffast-math"
expect refused OPTIONS "-Wall;-ffast-math"
expect refused OPTIONS "\$<\$<CONFIG:Release>:-ffast-math>"
expect taken CMAKE_CXX_FLAGS "-O3 -march=x86-64-v3 -flto -fno-math-errno -fno-fast-math -fsigned-zeros"
expect taken CMAKE_CXX_FLAGS_DEBUG "-O3 -ffast-math" # of a configuration that is not built

# Clang drops the one macro where contraction is off, and keeps the other.
for flag in -ffast-math -Ofast -ffinite-math-only; do
    if "$cxx" -fsyntax-only -x c++ -ffp-contract=off -frounding-math "$flag" "$source/src/dsp/exactArithmetic.h" 2>/dev/null; then
        echo "$flag: compiled"
        failed=1
    fi
done
"$cxx" -fsyntax-only -x c++ -ffp-contract=off -frounding-math -O3 "$source/src/dsp/exactArithmetic.h"
exit $failed
