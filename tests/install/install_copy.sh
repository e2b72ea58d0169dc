#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# install_copy.sh CMAKE BUILD_DIR PREFIX
# Installs the build and moves the copy to PREFIX. No text file in it may contain the path it was
# installed to or built in, and the name of each shared library must carry the major version.
set -euo pipefail
cmake=$1 build=$2 prefix=$3
rm -rf "$prefix" "$prefix.first"
"$cmake" --install "$build" --prefix "$prefix.first" >/dev/null
mv "$prefix.first" "$prefix"
if grep -rnI -e "$prefix.first" -e "$build" "$prefix"; then
    echo "the copy is tied to these places"
    exit 1
fi
for library in beatatlas beatatlas_track; do
    if ! readelf -d "$(find "$prefix" -name "lib$library.so")" | grep -q "SONAME.*lib$library\.so\.[0-9]"; then
        echo "lib$library.so has no SONAME with a major version"
        exit 1
    fi
done
