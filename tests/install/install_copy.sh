#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# install_copy.sh CMAKE BUILD_DIR PREFIX
# Installs the build and moves the copy to PREFIX. No text file in it may contain the path it was
# installed to or built in, and the name of each shared library must carry the interface's number.
set -euo pipefail
cmake=$1 build=$2 prefix=$3
rm -rf "$prefix" "$prefix.first"
"$cmake" --install "$build" --prefix "$prefix.first" >/dev/null
mv "$prefix.first" "$prefix"
if grep -rnI -e "$prefix.first" -e "$build" "$prefix"; then
    echo "the copy is tied to these places"
    exit 1
fi
number=$(sed -n 's/^#define BEATATLAS_INTERFACE //p' "$prefix/include/beatatlas/version.h")
for library in beatatlas beatatlas_track beatatlas_media; do
    file=$(find "$prefix" -name "lib$library.so")
    [[ $file || $library != beatatlas_media ]] || continue
    if ! readelf -d "$file" | grep -q "SONAME.*\[lib$library\.so\.$number\]"; then
        echo "lib$library.so has no SONAME with the number $number"
        exit 1
    fi
done
