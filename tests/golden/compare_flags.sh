#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# compare_flags.sh BUILD_DIR [SETS [SEED]]
# Builds the library with randomly drawn sets of compiler flags and compares the result of each with
# the record. Prints one line per set. Flags that may change arithmetic are never drawn: the build
# refuses them.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
source=$(cd "$here/../.." && pwd)
build=$1
sets=${2:-12}
RANDOM=${3:-1}

levels_gcc=(-O0 -O1 -O2 -O3 -Os -Og)
levels_clang=(-O0 -O1 -O2 -O3 -Os -Oz)
extras_gcc=(-funroll-loops -fno-tree-vectorize -fno-inline -fno-strict-aliasing -fno-omit-frame-pointer -fno-ipa-cp
    -fstack-protector-all -fno-builtin -fno-tree-slp-vectorize -fwrapv -flto -march=x86-64-v2 -march=x86-64-v3
    -mprefer-vector-width=512)
extras_clang=(-funroll-loops -fno-vectorize -fno-slp-vectorize -fno-inline-functions -fno-strict-aliasing
    -fno-omit-frame-pointer -fstack-protector-all -fno-builtin -fwrapv -march=x86-64-v2 -march=x86-64-v3
    -mprefer-vector-width=512)

# draw COMPILER: draws an optimisation level and about one in four of the other flags.
draw() {
    local -n levels=levels_$1 extras=extras_$1
    flags=${levels[RANDOM % ${#levels[@]}]}
    local extra
    for extra in "${extras[@]}"; do
        if ((RANDOM % 4 == 0)); then flags+=" $extra"; fi
    done
}

passed=0
failed=0
for ((set = 1; set <= sets; set++)); do
    compiler=$( ((set % 2)) && echo gcc || echo clang)
    cxx=$([[ $compiler == gcc ]] && echo g++ || echo clang++)
    draw "$compiler"
    tree=$build/set-$set
    rm -rf "$tree"
    printf '%s %s: ' "$compiler" "$flags"
    cmake -S "$source" -B "$tree" -G Ninja -DCMAKE_BUILD_TYPE= -DCMAKE_C_COMPILER=$compiler -DCMAKE_CXX_COMPILER=$cxx \
        -DCMAKE_CXX_FLAGS="$flags" -DBEATATLAS_BUILD_APP=OFF -DBEATATLAS_BUILD_TESTS=ON >/dev/null
    cmake --build "$tree" --target record_results >"$tree/build.log" 2>&1 || { tail -40 "$tree/build.log"; exit 1; }
    if "$here/compare_results.sh" "$tree/tests/golden/record_results" "$here/results.txt" "$tree/results.txt"; then
        echo "the recorded results"
        passed=$((passed + 1))
        rm -rf "$tree"
    else
        failed=$((failed + 1))
    fi
done
echo "$passed passed, $failed failed"
[[ $failed -eq 0 ]]
