#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Scans one library of music in shares, each into a catalogue of its own, and merges them.
#   parallel.sh MUSIC CATALOGUE SHARES [OPTION OF GNU PARALLEL…]
# A share that was killed begins again where it was; so does the whole when it is called again.
# With --sshloginfile HOSTS the shares run on several machines: MUSIC and the folder of CATALOGUE
# have to be reached under the same names from all of them, and beatatlas be installed there.
set -euo pipefail

music=$(realpath -- "$1") catalogue=$(realpath -- "$2") shares=$3
shift 3
beatatlas=${BEATATLAS:-beatatlas}
parts=$catalogue.parts
mkdir -p -- "$parts"

# A share of which files fail ends with 1, once: failures are remembered like results. So what fails
# three times is something else.
failed=0
seq "$shares" | parallel --retries 3 --joblog "$parts/log" "$@" \
    "${beatatlas@Q} scan --quiet --jobs 1 --wait --shard {}/$shares --catalogue ${parts@Q}/{}.sqlite -- ${music@Q}" ||
    failed=$?
"$(dirname -- "$(realpath -- "${BASH_SOURCE[0]}")")/merge.sh" "$catalogue"
exit "$failed"
