#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# A real Slurm of one node: an array of 20 sources, the node dies while some are done, comes back, and the merged result
# is that of one program after the other. Usage: tests/batch/one_node_slurm.sh BIN_FOLDER
# Wants munge, slurmctld, slurmd and slurm-client, and processes in a namespace of their own: the node is one, so that
# all of it dies at once. Exit code 77 where this machine cannot do that.
set -euo pipefail
bin=$(realpath "$1") top=$(cd "$(dirname "$0")/../.." && pwd)
user=$(id -un)
readonly sources=20 user
base=$(mktemp -d)
chmod 755 "$base"
export PATH=$bin:/usr/sbin:/sbin:$PATH SLURM_CONF=$base/slurm.conf QT_QPA_PLATFORM=offscreen

namespace=(unshare --pid --fork --kill-child --mount-proc)
[ "$user" = root ] || namespace=(unshare --user --map-current-user --pid --fork --kill-child --mount-proc)
not_here() { echo "slurm: left out on this machine: $1"; rm -rf "$base"; exit 77; }
for program in munged slurmctld slurmd sbatch; do
    command -v $program >/dev/null || not_here "$program is not installed"
done
"${namespace[@]}" true 2>"$base/why" || not_here "no process namespaces: $(cat "$base/why")"

daemons=()
node=
finish() { # only what was started here
    for pid in "${daemons[@]}"; do
        if [ "$pid" = "$node" ]; then kill -KILL "$pid"; else kill "$pid"; fi 2>/dev/null || true
    done
    wait
    rm -rf "$base"
}
trap finish EXIT
logs() { tail -n 20 "$base"/*.log >&2; exit 1; }
wait_for() { # what for, seconds, command
    local i
    for ((i = 0; i < $2 * 5; i++)); do
        "${@:3}" >/dev/null 2>&1 && return
        sleep 0.2
    done
    echo "slurm: waited in vain for $1" >&2
    logs
}

# Ports that are likely to be free; two such tests may run at once.
port=$((20000 + $$ % 20000))
cat >"$base/slurm.conf" <<END
ClusterName=one
SlurmctldHost=$(hostname -s)(127.0.0.1)
SlurmctldPort=$port
SlurmdPort=$((port + 1))
SlurmUser=$user
SlurmdUser=$user
AuthType=auth/munge
CredType=cred/munge
AuthInfo=socket=$base/munge.socket,cred_expire=5
StateSaveLocation=$base/state
SlurmdSpoolDir=$base/spool
SlurmctldPidFile=$base/slurmctld.pid
SlurmdPidFile=$base/slurmd.pid
SlurmctldLogFile=$base/slurmctld.log
SlurmdLogFile=$base/slurmd.log
ProctrackType=proctrack/linuxproc
TaskPlugin=task/none
SelectType=select/cons_tres
SelectTypeParameters=CR_CPU
MpiDefault=none
ReturnToService=2
SchedulerParameters=batch_sched_delay=0,sched_interval=2
NodeName=$(hostname -s) NodeAddr=127.0.0.1 CPUs=2 RealMemory=1000
PartitionName=all Nodes=ALL Default=YES State=UP OverSubscribe=NO
END
# No control groups: later versions have a word for that, earlier ones look at theirs only when something uses them.
plugin=disabled
printf '%s\n' "slurm-wlm 23.11" "$(slurmd -V)" | sort -CV || plugin=cgroup/v1
echo "CgroupPlugin=$plugin" >"$base/cgroup.conf"
mkdir "$base/state" "$base/spool" "$base/tmp" "$base/logs"
export TMPDIR=$base/tmp

head -c 1024 /dev/urandom >"$base/munge.key"
chmod 400 "$base/munge.key"
start() { "$@" >>"$base/daemons.log" 2>&1 & daemons+=($!); }
start munged --foreground --socket="$base/munge.socket" --key-file="$base/munge.key" --pid-file="$base/munge.pid" \
    --log-file="$base/munged.log" --seed-file="$base/munge.seed"
wait_for munged 10 munge -n -S "$base/munge.socket"
start slurmctld -D
wait_for slurmctld 20 scontrol ping
start_node() { start "${namespace[@]}" slurmd -D; node=${daemons[-1]}; }
is_idle() { sinfo -h -o %t | grep -qE '^(idle|mix)$'; }
start_node
wait_for slurmd 30 is_idle

# The sources, and what one program after the other makes of them.
cortana_write_sample "$base/sample"
for ((i = 1; i <= sources; i++)); do
    mkdir -p "$base/ev/pc$i/Users"
    cp -r "$base/sample/Users/anna" "$base/ev/pc$i/Users/pc$i"
done
cortana batch create "$base/m.jsonl" "$base/ev"
number=0
while read -r path; do
    cortana extract --quiet --jobs 1 --source-number $((++number)) "$path" "$base/serial"
done < <(sed 's/.*"path":"\([^"]*\)".*/\1/' "$base/m.jsonl")

export MANIFEST=$base/m.jsonl OUT=$base/out
job=$(sbatch --parsable --array=1-$sources --mem=100M --chdir="$base/logs" "$top/contrib/slurm.sbatch")
done_are() { [ "$(find "$OUT" -maxdepth 1 -name 'pc*' | wc -l)" -ge "$1" ]; }
wait_for "five sources" 120 done_are 5
running=$(squeue -h -j "$job" -t RUNNING -r | wc -l)
kill -KILL "$node"
wait "$node" 2>/dev/null || true
scontrol update nodename="$(hostname -s)" state=down reason=died
echo "slurm: the node died with $(find "$OUT" -maxdepth 1 -name 'pc*' | wc -l) of $sources sources done," \
    "$running running"
start_node
scontrol update nodename="$(hostname -s)" state=resume 2>/dev/null || true
wait_for "the node's return" 60 is_idle
queue_is_empty() { [ -z "$(squeue -h -j "$job")" ]; }
wait_for "the array's end" 300 queue_is_empty

cortana batch status "$OUT"
cortana batch merge "$OUT" -o "$base/merged"
cmp <(cortana rows "$base/serial") <(cortana rows "$base/merged")
echo "slurm: $(cortana rows "$base/merged" | grep -c source_count_name) rows, the same as one after the other"
