#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# compare_builds.sh BUILD_DIR RELEASE_BUILD
# Builds the library with both compilers, unoptimised and optimised, and compares the four results
# with the record. What GCC optimises is in RELEASE_BUILD already.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
source=$(cd "$here/../.." && pwd)
build=$1 release=$2
failed=0

# compare NAME BUILD
compare() {
    mkdir -p "$build/$1"
    if "$here/compare_results.sh" "$2/tests/golden/record_results" "$here/results.txt" "$build/$1/results.txt"; then
        echo "the recorded results"
    else
        failed=1
    fi
}

for name in gcc-O0 clang-O0 clang-O3; do
    printf '%s: ' "$name"
    compiler=${name%-*}
    if [[ ! -f $build/$name/build.ninja ]]; then
        cmake -S "$source" -B "$build/$name" -G Ninja -DCMAKE_BUILD_TYPE= -DCMAKE_C_COMPILER="$compiler" \
            -DCMAKE_CXX_COMPILER="${compiler/gcc/g}++" -DCMAKE_CXX_FLAGS="-${name#*-}" -DBEATATLAS_BUILD_APP=OFF >/dev/null
    fi
    cmake --build "$build/$name" --target record_results >"$build/$name/build.log" 2>&1 ||
        { tail -40 "$build/$name/build.log"; exit 1; }
    compare "$name" "$build/$name"
done
printf 'gcc-O3: '
compare gcc-O3 "$release"
if [[ $failed -eq 0 ]]; then echo "4 passed, 0 failed"; fi
exit $failed
