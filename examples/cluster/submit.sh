#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Scans one library of music with Slurm: an array of shares, then a job that merges them.
#   submit.sh MUSIC CATALOGUE SHARES [OPTION OF SBATCH…]
# Both have to be reached under the same names from all nodes. Prints the number of the last job.
set -euo pipefail

here=$(dirname -- "$(realpath -- "${BASH_SOURCE[0]}")")
music=$(realpath -- "$1") catalogue=$(realpath -- "$2") shares=$3
shift 3
array=$(sbatch --parsable --array="1-$shares" "$@" "$here/array.sh" "$music" "$catalogue")
# Whatever became of the shares, what they have is merged.
sbatch --parsable --dependency="afterany:${array%%;*}" "$@" --job-name=beatatlas-merge \
    --wrap="${here@Q}/merge.sh ${catalogue@Q}"
