#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Doxygen has nothing to complain about in the public headers: every name and every parameter is
# explained.
#   check_headers.sh SOURCES FOLDER DOXYGEN
set -euo pipefail
sources=$1 folder=$2 doxygen=$3
if [[ ! -x $doxygen ]]; then
    echo "skipped: there is no Doxygen"
    exit 77
fi
mkdir -p "$folder"
cd "$sources"
{
    cat docs/site/Doxyfile
    printf 'OUTPUT_DIRECTORY = "%s"\n' "$folder"
} | "$doxygen" -
