# shellcheck shell=bash
# SPDX-License-Identifier: MIT
# For scripts that run what documents show: commands, and what they print. Expects TOOL, the program.

# Settings and catalogue of whoever runs the tests are no part of them.
export XDG_CONFIG_HOME=$PWD/settings XDG_DATA_HOME=$PWD/data

beatatlas() {
    # It answers until it is interrupted.
    if [[ $1 == serve ]]; then
        timeout --preserve-status --signal=INT 3 "$TOOL" "$@"
    else
        "$TOOL" "$@"
    fi
}

faults=0 compared=0 run=0
fault() {
    printf '%s\n' "$1" >&2
    faults=$((faults + 1))
}

# compare DOCUMENT COMMAND PRINTED EXPECTED: "..." in what is expected stands for whatever is there
compare() {
    local pattern
    pattern=$(sed 's/[^[:alnum:][:space:]]/\\&/g; s/\\\.\\\.\\\./*/g' <<<"$4")
    compared=$((compared + 1))
    # shellcheck disable=SC2053 # a pattern
    [[ $3 == $pattern ]] || fault "$1: $2 prints"$'\n'"$3"$'\n'"and not"$'\n'"$4"
}

# succeed DOCUMENT COMMAND
succeed() {
    local log
    log=$(mktemp)
    run=$((run + 1))
    eval "$2" >"$log" 2>&1 || fault "$1: $2 fails:"$'\n'"$(tail -n 20 "$log")"
    rm "$log"
}

# Words such as FILE and OUT are to be put in, and options in brackets may be.
is_pattern() { [[ $1 =~ (^|[ =])([A-Z]{2,}|[A-Z]+[.])|\[ ]]; }
