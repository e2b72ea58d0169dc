#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# compare_variants.sh PROGRAM: lists the lines of the record that change when the C library uses
# other variants of its mathematics functions. Changes are reported but are no failure, since the
# library does not control these functions.
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
