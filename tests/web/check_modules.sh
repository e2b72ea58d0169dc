#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# What of the browser's side can be tested without a browser, on the Node of this machine.
#   check_modules.sh tests SOURCES    the unit tests
#   check_modules.sh types SOURCES    names, arguments and types, by the TypeScript compiler
set -euo pipefail
skipped=77 sources=$2

require() {
    command -v "$1" >/dev/null && return
    echo "There is no $1 here: not tested"
    exit $skipped
}

require node
case $1 in
tests)
    if ! node -e 'process.exit(process.versions.node.split(".")[0] < 18 ? 1 : 0)'; then
        echo "Node $(node --version) is too old: not tested"
        exit $skipped
    fi
    mapfile -t tests < <(find "$sources/tests/web" -name '*.test.js' | sort)
    node --test "${tests[@]}"
    ;;
types)
    require tsc
    tsc -p "$sources/web/tsconfig.json"
    ;;
esac
