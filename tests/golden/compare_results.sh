#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# compare_results.sh PROGRAM RECORDED OUT: runs the recording program and compares its output with
# the record.
set -euo pipefail
export GLIBC_TUNABLES=glibc.cpu.hwcaps=-AVX2,-FMA,-FMA4
"$1" "$3" >/dev/null
diff -u "$2" "$3"
