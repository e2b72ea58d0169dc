#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# A Slurm of one node on this machine, in a folder of its own, for as long as a script lasts that
# sources this and calls start_slurm FOLDER. Needs root and the Debian packages munge and slurm-wlm.

slurm_processes=()

start_slurm() {
    local folder=$1 host
    host=$(hostname -s)
    # The daemon of credentials insists on folders that nobody else may write to.
    mkdir -p "$folder"/{state,spool,munge}
    chmod 755 "$folder" "$folder/munge"
    dd if=/dev/urandom of="$folder/munge/key" bs=128 count=1 status=none
    chmod 600 "$folder/munge/key"
    cat >"$folder/slurm.conf" <<CONF
ClusterName=private
SlurmctldHost=$host(127.0.0.1)
SlurmctldPort=16817
SlurmdPort=16818
AuthType=auth/munge
AuthInfo=socket=$folder/munge/socket,cred_expire=5
CredType=cred/munge
SlurmUser=root
StateSaveLocation=$folder/state
SlurmdSpoolDir=$folder/spool
SlurmctldPidFile=$folder/slurmctld.pid
SlurmdPidFile=$folder/slurmd.pid
SlurmctldLogFile=$folder/slurmctld.log
SlurmdLogFile=$folder/slurmd.log
ProctrackType=proctrack/linuxproc
TaskPlugin=task/none
SwitchType=switch/none
MpiDefault=none
SchedulerType=sched/backfill
SchedulerParameters=batch_sched_delay=0
SelectType=select/cons_tres
SelectTypeParameters=CR_CPU
ReturnToService=2
MinJobAge=3600
KillWait=2
NodeName=$host NodeAddr=127.0.0.1 CPUs=$(nproc) State=UNKNOWN
PartitionName=all Nodes=$host Default=YES MaxTime=INFINITE State=UP OverSubscribe=NO
CONF
    export SLURM_CONF=$folder/slurm.conf
    munged --foreground --force --key-file="$folder/munge/key" --socket="$folder/munge/socket" \
        --pid-file="$folder/munge/pid" --log-file="$folder/munge/log" \
        --seed-file="$folder/munge/seed" 2>>"$folder/munge/err" &
    slurm_processes+=($!)
    await "the daemon of credentials" test -S "$folder/munge/socket"
    slurmctld -D >"$folder/slurmctld.out" 2>&1 &
    slurm_processes+=($!)
    slurmd -D >"$folder/slurmd.out" 2>&1 &
    slurm_processes+=($!)
    await "the node" node_is_idle
}

node_is_idle() {
    sinfo --noheader --format=%t 2>/dev/null | grep -q '^idle'
}

# await WHAT COMMAND…: until it succeeds, a minute at most
await() {
    local what=$1 i
    shift
    for ((i = 0; i < 600; ++i)); do
        if "$@"; then return 0; fi
        sleep 0.1
    done
    echo "$what did not start" >&2
    return 1
}

stop_slurm() {
    local process
    for process in "${slurm_processes[@]}"; do kill "$process" 2>/dev/null || true; done
    wait "${slurm_processes[@]}" 2>/dev/null || true
}
