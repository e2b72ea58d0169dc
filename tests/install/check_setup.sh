#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# check_setup.sh X WORK_DIR
# shellcheck disable=SC2317 # check() calls these
# Checks how ./x installs missing packages, with stand-ins for apt-get, dpkg-query, sudo and id that
# record their calls.
set -euo pipefail
x=$1 work=$2
rm -rf "$work"
mkdir -p "$work/bin"
calls=$work/calls
failed=0

# stand_in NAME COMMANDS: creates a program that records its call.
stand_in() {
    printf '#!/bin/sh\necho "%s $*" >>"%s"\n%s\n' "$1" "$calls" "$2" >"$work/bin/$1"
    chmod +x "$work/bin/$1"
}

# run_setup NO_INSTALL: runs ./x setup without a terminal.
run_setup() {
    : >"$calls"
    status=0
    output=$(PATH=$work/bin:$PATH BEATATLAS_NO_INSTALL=$1 timeout 20 bash "$x" setup 2>&1 \
        </dev/null) || status=$?
}

# check TEXT CONDITION…
check() {
    if ! "${@:2}"; then
        printf 'not so: %s\nstatus %s, it said:\n%s\ncalls:\n%s\n' "$1" "$status" "$output" \
            "$(cat "$calls")"
        failed=1
    fi
}
says() { [[ $output == *"$1"* ]]; }
calls() { grep -q "$1" "$calls"; }
calls_not() { ! grep -q "$1" "$calls"; }
fails() { [[ $status -ne 0 && $status -ne 124 ]]; }

stand_in dpkg-query 'exit 1'
stand_in apt-get ''
stand_in id 'echo 1000'
stand_in sudo 'shift; exec "$@"'
run_setup ''
check "names the packages and sudo first" says \
    "Installing these packages with sudo (BEATATLAS_NO_INSTALL=1 prevents it): gcc "
check "installs them through sudo that asks for no password" calls \
    "^sudo -n env DEBIAN_FRONTEND=noninteractive apt-get install .* gcc "
check "is content" test "$status" -eq 0

run_setup 1
check "refuses, naming the packages" says "these Debian packages are missing: gcc "
check "fails" fails
check "calls neither" calls_not '^\(sudo\|apt-get\)'

stand_in sudo 'exit 1'
run_setup ''
check "says that a password is wanted and what to do" says \
    "sudo wants a password and nobody can type it; as root: apt-get install gcc "
check "fails" fails
check "does not get to apt-get" calls_not '^apt-get'

stand_in id 'echo 0'
run_setup ''
check "names the packages and no sudo" says \
    "Installing these packages (BEATATLAS_NO_INSTALL=1 prevents it): gcc "
check "installs them without" calls_not '^sudo'
check "installs them" calls '^apt-get install .* gcc '
exit $failed
