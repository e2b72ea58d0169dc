#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Merges the catalogues of all shares into CATALOGUE: merge.sh CATALOGUE
# What is in CATALOGUE already, corrections for instance, stays. Nobody else may use it meanwhile: a
# log beside it would be taken for one of the new catalogue.
set -euo pipefail

catalogue=$1
rm -f -- "$catalogue.new"
sources=("$catalogue".parts/*.sqlite)
if [[ -e $catalogue ]]; then
    sources+=("$catalogue")
    # A scan of nothing takes the log over that somebody who was killed left behind.
    "${BEATATLAS:-beatatlas}" scan --quiet --wait --catalogue "$catalogue" - </dev/null
fi
"${BEATATLAS:-beatatlas}" merge -o "$catalogue.new" -- "${sources[@]}"
if [[ -s $catalogue-wal ]]; then
    echo "$catalogue: is in use; the merged catalogue is $catalogue.new" >&2
    exit 1
fi
rm -f -- "$catalogue-wal" "$catalogue-shm"
mv -- "$catalogue.new" "$catalogue"
