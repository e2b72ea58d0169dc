#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Merges the catalogues of all shares into CATALOGUE: merge.sh CATALOGUE
# What is in CATALOGUE already, corrections for instance, stays.
set -euo pipefail

catalogue=$1
rm -f -- "$catalogue.new"
sources=("$catalogue".parts/*.sqlite)
[[ ! -e $catalogue ]] || sources+=("$catalogue")
"${BEATATLAS:-beatatlas}" merge -o "$catalogue.new" -- "${sources[@]}"
mv -- "$catalogue.new" "$catalogue"
