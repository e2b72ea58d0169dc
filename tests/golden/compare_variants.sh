#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# compare_variants.sh PROGRAM: which lines of the record move when the C library's mathematics takes
# other variants of its own. They are told and are no failure: they are the one thing that is not in
# the library's hands.
set -euo pipefail
program=$1
record=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)/results.txt
lines=$(wc -l <"$record")
out=$(mktemp)
trap 'rm -f "$out"' EXIT
for masked in nothing -FMA,-FMA4 -AVX2,-FMA,-FMA4 -AVX,-AVX2,-FMA,-FMA4,-SSE4_1; do
    GLIBC_TUNABLES=glibc.cpu.hwcaps=${masked/nothing/} "$program" "$out" >/dev/null
    moved=$(diff "$record" "$out" | grep -c '^<' || true)
    echo "masked: $masked: $moved of $lines lines moved"
done
