#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# run_if_there.sh PYTHON MODULES ARGUMENTS…: runs Python, unless it or one of the modules is missing.
set -euo pipefail
python=$1 modules=$2
shift 2
if [[ ! -x $python ]]; then
    echo "skipped: there is no /usr/bin/python3"
    exit 77
fi
if ! reason=$("$python" -c "import $modules" 2>&1); then
    echo "skipped: ${reason##*$'\n'}"
    exit 77
fi
exec "$python" "$@"
