#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# check_little_memory.sh PROGRAM
# Runs `doctor` in less and less memory, until the system cannot load the program any more: it always
# reports, or says that there is not enough memory, and no library's way to break down ends it.
set -uo pipefail
program=$1
ulimit -c 0
# The tester's own are none of the test's business.
export XDG_CONFIG_HOME=/nonexistent XDG_DATA_HOME=/nonexistent
log=$(mktemp)
trap 'rm -f "$log"' EXIT
reports=0 failures=0
for ((kilobytes = 400000; kilobytes >= 100000; kilobytes -= 25000)); do
    report=$(ulimit -v "$kilobytes" && "$program" doctor 2>"$log")
    status=$?
    if ((status == 127)); then
        break
    elif ((status > 1)); then
        echo "with $kilobytes KB: status $status: $(tail -n 1 "$log")"
        exit 1
    elif [[ $report == *' checks: '* && ! -s $log ]]; then
        ((reports += 1))
        if ((status == 1)); then ((failures += 1)); fi
    elif ! grep -q 'there is not enough memory' "$log"; then
        echo "with $kilobytes KB: no report: $(tail -n 1 "$log")"
        exit 1
    fi
done
echo "$reports reports, $failures of them of a failed check; it cannot be loaded with $kilobytes KB"
((failures > 0))
