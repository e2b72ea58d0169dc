#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# One share of a library, as a task of a Slurm array:
#   sbatch --array=1-SHARES array.sh MUSIC CATALOGUE
# Every task fills a catalogue of its own, CATALOGUE.parts/NUMBER.sqlite. One that is killed is put
# back into the queue, three times at most, and goes on where it was; one whose node fails is put
# back by Slurm.
#SBATCH --job-name=beatatlas
#SBATCH --requeue
#SBATCH --open-mode=append
set -uo pipefail

music=$1 catalogue=$2
parts=$catalogue.parts
mkdir -p -- "$parts"
"${BEATATLAS:-beatatlas}" scan --wait --jobs "${SLURM_CPUS_PER_TASK:-1}" \
    --shard "$SLURM_ARRAY_TASK_ID/$SLURM_ARRAY_TASK_COUNT" \
    --catalogue "$parts/$SLURM_ARRAY_TASK_ID.sqlite" -- "$music"
status=$?
# 1: files failed, and each has said so. From 128 on a signal ended the scan.
if ((status > 128 && ${SLURM_RESTART_COUNT:-0} < 3)); then
    scontrol requeue "${SLURM_ARRAY_JOB_ID}_$SLURM_ARRAY_TASK_ID"
    sleep 60 # until Slurm ends this run of the task
fi
exit "$status"
