#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# use_pkg_config.sh CC CXX HOSTS_DIR PREFIX WORK_DIR FORM…
# Builds each small host with the flags from pkg-config and runs it. FORM is shared, static
# (everything static), or plain: without a choice, for a copy that has only the static library.
set -euo pipefail
cc=$1 cxx=$2 hosts=$3 prefix=$4 work=$5
shift 5
libdir=$(dirname "$(find "$prefix" -name libbeatatlas.a)")
export PKG_CONFIG_PATH=$libdir/pkgconfig
mkdir -p "$work"

# build_and_run LIBRARY SOURCE FORM
build_and_run() {
    local library=$1 source=$2 form=$3 words=() options=() flags
    local compiler=("$cc" -std=c99) program=$work/$library-${source##*.}-$form
    [[ $source == *.c ]] || compiler=("$cxx" -std=c++17)
    case $form in
        static) words=(--static) options=(-static) ;;
        shared) options=("-Wl,-rpath,$libdir") ;;
    esac
    flags=$(pkg-config "${words[@]}" --cflags --libs "$library")
    if [[ $flags == *//* ]]; then
        echo "a doubled slash in: $flags"
        return 1
    fi
    # shellcheck disable=SC2086
    "${compiler[@]}" -Wall -Wextra -Werror "$hosts/$source" -o "$program" "${options[@]}" $flags
    "$program" | grep -x "${source%.*} $(pkg-config --modversion "$library") analyzed"
}

for form in "$@"; do
    for ending in c cpp; do
        build_and_run beatatlas session.$ending "$form"
        build_and_run beatatlas_track track.$ending "$form"
        # Files take FFmpeg's libraries along, which are linked dynamically.
        [[ $form != shared || ! -e $libdir/libbeatatlas_media.so ]] ||
            build_and_run beatatlas_media media.$ending shared
    done
done
