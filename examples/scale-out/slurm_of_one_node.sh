#!/usr/bin/env bash
# A Slurm of this machine alone, for as long as a command runs: to try an array job. As root.
# usage: slurm_of_one_node.sh WORK COMMAND...
set -euo pipefail
work=$1
shift
mkdir -p "$work/state" "$work/spool"
chmod 711 "$work"
host=$(hostname -s)
head -c 1024 /dev/urandom >"$work/munge.key"
chmod 600 "$work/munge.key"
export SLURM_CONF=$work/slurm.conf
cat >"$SLURM_CONF" <<CONF
ClusterName=one
SlurmctldHost=$host(127.0.0.1)
SlurmUser=root
AuthInfo=socket=$work/munge.socket
CredType=cred/munge
ProctrackType=proctrack/linuxproc
TaskPlugin=task/none
MpiDefault=none
ReturnToService=2
SelectType=select/cons_tres
SelectTypeParameters=CR_CPU
SchedulerParameters=sched_interval=1
SlurmctldPort=26817
SlurmdPort=26818
SlurmctldPidFile=$work/slurmctld.pid
SlurmdPidFile=$work/slurmd.pid
SlurmctldLogFile=$work/slurmctld.log
SlurmdLogFile=$work/slurmd.log
StateSaveLocation=$work/state
SlurmdSpoolDir=$work/spool
NodeName=$host NodeAddr=127.0.0.1 CPUs=$(nproc) State=UNKNOWN
PartitionName=main Nodes=$host Default=YES MaxTime=INFINITE State=UP
CONF
pids=()
stop() { kill "${pids[@]}" 2>/dev/null || true; }
trap stop EXIT
munged --foreground --force --socket="$work/munge.socket" --key-file="$work/munge.key" \
  --pid-file="$work/munge.pid" --log-file="$work/munge.log" --seed-file="$work/munge.seed" &
pids+=($!)
for ((i = 0; i < 50; ++i)); do [[ -S $work/munge.socket ]] && break; sleep 0.2; done
slurmctld -D >/dev/null 2>&1 &
pids+=($!)
slurmd -D -N "$host" >/dev/null 2>&1 &
pids+=($!)
for ((i = 0; i < 150; ++i)); do
  sinfo --noheader --format=%t 2>/dev/null | grep -q idle && break
  sleep 0.2
done
sinfo --noheader --format=%t | grep -q idle || { tail "$work"/slurm*.log; exit 1; }
"$@"
