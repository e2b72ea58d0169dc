#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Clang finds nothing wrong with the comments of the public headers: every parameter that is
# explained is there.
#   check_documentation.sh CLANG++ SOURCES
set -euo pipefail
clang=$1 sources=$2
for header in "$sources"/include/beatatlas/*.h "$sources"/include/beatatlas/*.hpp; do
    printf '#include "%s"\n' "$header" |
        "$clang" -std=c++17 -x c++ -I"$sources/include" -fsyntax-only -Werror \
            -Wdocumentation -Wdocumentation-pedantic -
done
