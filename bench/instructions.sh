#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# instructions.sh PROGRAM RECORD [--record]
# Counts the instructions per frame of a fixed workload under callgrind and prints them next to the
# record; fails if the whole session takes over 3 % more. A count depends on the compiler: with
# another one than the record's it only prints. --record updates the record.
# The counts are for the AVX2 form (callgrind does not know AVX-512) and repeat to about a
# thousandth, however busy the machine is. They do not show waiting: a lower count is not always a
# shorter time.
set -euo pipefail
program=$1 record=$2 mode=${3:-}
work=$(mktemp -d)
trap 'rm -r "$work"' EXIT

valgrind --tool=callgrind --callgrind-out-file="$work/counts" --toggle-collect='measured_*' "$program" \
    >"$work/parts" 2>"$work/log" || { cat "$work/log" >&2; exit 1; }
callgrind_annotate --inclusive=yes --threshold=100 "$work/counts" >"$work/functions"

instructions_of() { # PART
    awk -v name=":measured_$1" 'index($0, name " ") { gsub(",", "", $1); print $1; exit }' "$work/functions"
}

read -r _ compiler <"$work/parts"
echo "# instructions per frame, AVX2 form, $compiler" >"$work/now"
while read -r part frames; do
    awk -v name="$part" -v n="$(instructions_of "$part")" -v frames="$frames" \
        'BEGIN { printf "%s %.2f\n", name, n / frames }' >>"$work/now"
done < <(tail -n +2 "$work/parts")

if [[ $mode == --record ]]; then
    cp "$work/now" "$record"
    cat "$record"
    exit
fi
same_compiler=$([[ $(head -1 "$record") == "$(head -1 "$work/now")" ]] && echo 1 || echo 0)
printf 'recorded with %s, counted with %s\n' "$(head -1 "$record" | sed 's/.*, //')" "$compiler"
awk -v judge="$same_compiler" '
    /^#/ { next }
    NR == FNR { recorded[$1] = $2; next }
    { printf "%-24s %9.2f %9.2f %+7.2f %%\n", $1, recorded[$1], $2, 100 * ($2 / recorded[$1] - 1) }
    $1 == "wholeSession" && $2 > 1.03 * recorded[$1] { grown = 1 }
    END {
        if (!judge) print "Another compiler: not judged"
        else if (grown) { print "The whole session takes over 3 % more instructions than recorded"; exit 1 }
    }' "$record" "$work/now"
