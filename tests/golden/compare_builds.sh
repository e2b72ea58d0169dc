#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# compare_builds.sh BUILD_DIR
# Builds the library with both compilers, unoptimised and optimised, and compares the four results
# with each other and with the record.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
source=$(cd "$here/../.." && pwd)
build=$1
failed=0
for compiler in gcc:g++ clang:clang++; do
    for level in O0 O3; do
        name=${compiler%%:*}-$level
        printf '%s: ' "$name"
        if [[ ! -f $build/$name/build.ninja ]]; then
            cmake -S "$source" -B "$build/$name" -G Ninja -DCMAKE_BUILD_TYPE= -DCMAKE_C_COMPILER="${compiler%%:*}" \
                -DCMAKE_CXX_COMPILER="${compiler##*:}" -DCMAKE_CXX_FLAGS="-$level" -DBEATATLAS_BUILD_APP=OFF >/dev/null
        fi
        cmake --build "$build/$name" --target record_results >"$build/$name/build.log" 2>&1 ||
            { tail -40 "$build/$name/build.log"; exit 1; }
        if "$here/compare_results.sh" "$build/$name/tests/golden/record_results" "$here/results.txt" "$build/$name/results.txt"; then
            echo "the recorded results"
        else
            failed=1
        fi
    done
done
if [[ $failed -eq 0 ]]; then echo "4 passed, 0 failed"; fi
exit $failed
