#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# check_folders.sh CMAKE GENERATOR CXX SOURCE_DIR WORK_DIR
# Checks that the pkg-config files name the requested folders: unchanged outside the prefix,
# relative to themselves inside it.
set -euo pipefail
cmake=$1 generator=$2 cxx=$3 source=$4 work=$5
rm -rf "$work"
failed=0

# configure [OPTION…]
configure() {
    "$cmake" -G "$generator" -S "$source" -B "$work" -DCMAKE_CXX_COMPILER="$cxx" \
        -DBEATATLAS_BUILD_APP=OFF \
        -DBEATATLAS_BUILD_TESTS=OFF -DCMAKE_INSTALL_PREFIX=/opt/atlas "$@" >/dev/null
}

# expect VARIABLE VALUE
expect() {
    local library value
    for library in beatatlas beatatlas_track; do
        value=$(pkg-config --define-variable=pcfiledir=HERE --variable="$1" "$work/$library.pc")
        if [[ $value != "$2" ]]; then
            echo "$library: $1 is $value, not $2"
            failed=1
        fi
    done
}

configure -DCMAKE_INSTALL_LIBDIR=lib
expect prefix HERE/../..
expect libdir HERE/../../lib
expect includedir HERE/../../include
configure -DCMAKE_INSTALL_LIBDIR=lib/machine
expect prefix HERE/../../..
expect libdir HERE/../../../lib/machine
expect includedir HERE/../../../include
configure -DCMAKE_INSTALL_LIBDIR=/opt/libraries -DCMAKE_INSTALL_INCLUDEDIR=include
expect libdir /opt/libraries
expect includedir /opt/atlas/include
configure -DCMAKE_INSTALL_LIBDIR=/opt/libraries -DCMAKE_INSTALL_INCLUDEDIR=/opt/headers
expect libdir /opt/libraries
expect includedir /opt/headers
exit $failed
