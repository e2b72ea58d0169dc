#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# check_demo.sh X NINJA BUILD_DIR
# Checks that ./x demo builds everything that is installed, so that `cmake --install` can follow it
# directly.
set -euo pipefail
x=$1 ninja=$2 build=$3
read -r -a targets < <(sed -n '/^task_demo/,/^}/s/^ *build release //p' "$x")
echo "built by the demo: ${targets[*]}"
commands=$("$ninja" -C "$build" -t commands "${targets[@]}")
made=$(sed -nE 's/.* (-o|qc) +([^ ]+) .*/\2/p' <<<"$commands")

checked=0 missing=0
while read -r file; do
    # Text files are written by CMake or are in the source tree. A library's other names are created
    # together with it.
    case $file in
        # Written all at once, by a program of the build.
        "$build/app/manual/made"*)
            checked=$((checked + 1))
            grep -q "beatatlas_make_manual .*/app/manual/made" <<<"$commands" && continue
            echo "not built by the demo: $file"
            missing=1
            continue
            ;;
        "$build"/*.a | "$build"/*.so | "$build"/*.so.* | "$build/app/"*) ;;
        *) continue ;;
    esac
    file=$(realpath -m "$file")
    checked=$((checked + 1))
    if ! grep -qxF "${file#"$build"/}" <<<"$made"; then
        echo "not built by the demo: $file"
        missing=1
    fi
done < <(sed -n '/file(INSTALL/s/.*FILES "\([^"]*\)".*/\1/p' "$build/cmake_install.cmake")
echo "$checked files that are built and installed"
[[ $checked -ge 5 && $missing -eq 0 ]]
