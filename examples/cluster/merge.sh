#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Merges the catalogues of all shares: merge.sh CATALOGUE
set -euo pipefail

exec "${BEATATLAS:-beatatlas}" merge "$1".parts/*.sqlite -o "$1"
