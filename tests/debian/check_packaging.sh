#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# check_packaging.sh SOURCE_DIR VERSION INTERFACE: debian/ must state the version, name the packages
# of the libraries after the number of the interface, and list the names that each library exports.
set -euo pipefail
source=$1 version=$2 interface=$3
failed=0

# expect WHAT FOUND EXPECTED
expect() {
    [[ $2 == "$3" ]] && return
    echo "$1: found '$2', expected '$3'"
    failed=1
}

expect "version in debian/changelog" \
    "$(sed -n '1s/^beatatlas (\(.*\)) .*/\1/p' "$source/debian/changelog")" "$version"
expect "packages of libraries" \
    "$(awk '/^Package: libbeatatlas.*[0-9]$/ { print $2 }' "$source/debian/control" |
        LC_ALL=C sort | paste -sd ' ')" \
    "libbeatatlas-media$interface libbeatatlas$interface"

# check_names LIBRARY PACKAGE LIST: the symbols of a library in its package, without versions.
check_names() {
    local symbols=$source/debian/$2.symbols listed
    if [[ ! -e $symbols ]]; then
        echo "there is no debian/$2.symbols"
        failed=1
        return
    fi
    listed=$(awk -v library="lib$1.so.$interface" '
        /^[^ *]/ { inside = $1 == library }
        inside && /^ / { sub(/@.*/, "", $1); if ($1 !~ /^BEATATLAS/) print $1 }' \
        "$symbols" | LC_ALL=C sort)
    if ! diff <(grep -v "^#" "$source/tests/abi/$3" | LC_ALL=C sort) - <<<"$listed"; then
        echo "debian/$2.symbols does not list what lib$1 exports: < exported, > listed"
        failed=1
    fi
}
check_names beatatlas "libbeatatlas$interface" exported_names.txt
check_names beatatlas_track "libbeatatlas$interface" exported_track_names.txt
check_names beatatlas_media "libbeatatlas-media$interface" exported_media_names.txt
exit $failed
