#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
#
# By hand, as root: runs the sample with 24 channels as an array of a real Slurm with two nodes on this machine, kills one
# task in the middle and gives the same command again, collects the report, and compares what is finished with a run of one process,
# byte for byte. Stops whatever it started.
set -euo pipefail
cd "$(dirname "$0")/.."
export LC_ALL=C.UTF-8
[ "$(id -u)" -eq 0 ] || { echo "test-farm: needs root, as the farm's services do" >&2; exit 1; }

scripts/dependencies.sh farm
cmake --preset release >/dev/null
cmake --build --preset release -j"$(nproc)" --target quenzo runtime_folders >/dev/null
export PATH="$PWD/build/release/bin:$PATH"
example=$PWD/examples/slurm.sh
sample=$PWD/host/sample

farm=$(mktemp -d /var/tmp/farm.XXXXXX)
chmod 755 "$farm"
tidy() {
    for service in n1 n2 slurmctld munged; do
        [ ! -s "$farm/$service.pid" ] || kill "$(cat "$farm/$service.pid")" 2>/dev/null || true
    done
    [ -n "${FARM_KEEP-}" ] || { sleep 1; rm -rf "$farm"; }
}
trap tidy EXIT

# The job: 24 channels, each with a file of its own, so that no two packages are equal.
marks=(harbor meadow nimbus quartz tideway)
write_job() {
    mkdir -p "$1"
    {
        printf '{"game": "Sky Harbour", "base": "%s/skyharbour.apk",\n' "$sample"
        printf ' "icons": {"master": "%s/icons/icon.png", "marks": "%s/icons/marks"},\n' "$sample" "$sample"
        printf ' "sdks": {"pay": {"package": "%s/packages/harbourpay.zip", "id": 7}},\n "channels": [\n' "$sample"
        for number in $(seq 1 24); do
            [ "$number" = 1 ] || printf ',\n'
            printf '  {"folder": "c%02d", "mark": "%s", "sdks": ["pay"], "settings": {"number": %d}}' "$number" \
                "${marks[number % 5]}" "$number"
        done
        printf ']}\n'
    } >"$1/job.json"
}
write_job "$farm/alone"
write_job "$farm/array"
quenzo build -q "$farm/alone/job.json"

# A farm of two nodes.
mkdir -m 711 "$farm/munge" "$farm/state" "$farm/spool"
head -c 1024 /dev/urandom >"$farm/munge/key"
chmod 600 "$farm/munge/key"
munged --key-file "$farm/munge/key" --socket "$farm/munge/socket" --pid-file "$farm/munged.pid" \
    --log-file "$farm/munge/log" --seed-file "$farm/munge/seed" -f
host=$(hostname)
cores=$(nproc)
cat >"$farm/slurm.conf" <<CONF
ClusterName=farm
SlurmctldHost=$host(127.0.0.1)
SlurmUser=root
AuthType=auth/munge
AuthInfo=socket=$farm/munge/socket
SlurmctldPort=26817
SlurmctldPidFile=$farm/slurmctld.pid
SlurmctldLogFile=$farm/slurmctld.log
StateSaveLocation=$farm/state
SlurmdPidFile=$farm/%n.pid
SlurmdLogFile=$farm/%n.log
SlurmdSpoolDir=$farm/spool/%n
ProctrackType=proctrack/linuxproc
TaskPlugin=task/none
SelectType=select/cons_tres
SelectTypeParameters=CR_CPU
JobAcctGatherType=jobacct_gather/none
AccountingStorageType=accounting_storage/none
SwitchType=switch/none
MpiDefault=none
ReturnToService=2
NodeName=n1 NodeHostname=$host NodeAddr=127.0.0.1 Port=26818 CPUs=$cores State=UNKNOWN
NodeName=n2 NodeHostname=$host NodeAddr=127.0.0.1 Port=26819 CPUs=$cores State=UNKNOWN
PartitionName=all Nodes=n1,n2 Default=YES State=UP
CONF
export SLURM_CONF=$farm/slurm.conf
slurmctld -i
slurmd -N n1
slurmd -N n2

# wait_for WORDS...: until a command succeeds.
wait_for() {
    for _ in $(seq 600); do
        if "$@" 2>/dev/null; then return 0; fi
        sleep 0.1
    done
    printf 'test-farm: waited in vain for: %s\n' "$*" >&2
    tail -n 5 "$farm"/*.log >&2
    exit 1
}
nodes_are_idle() { [ "$(sinfo -h -N -o %t | grep -c idle)" = 2 ]; }
is_over() { [ -z "$(squeue -h -j "$1")" ]; }
has_package() { [ -s "$farm/array/output/c02/c02.apk" ]; }
wait_for nodes_are_idle

cd "$farm/array"
first=$(sbatch --parsable --array=1-4 --chdir="$farm/array" --output="$farm/task-%a.log" "$example" "$farm/array/job.json")
wait_for has_package
scancel --signal=KILL --full "${first}_2"
wait_for is_over "$first"
printf 'test-farm: of c02, c06, c10, … finished when their task was killed: %s\n' \
    "$(ls -d "$farm"/array/output/c{02,06,10,14,18,22}/*.apk 2>/dev/null | wc -l)"
again=$(sbatch --parsable --array=1-4 --chdir="$farm/array" --output="$farm/again-%a.log" "$example" "$farm/array/job.json")
wait_for is_over "$again"
quenzo build --collect job.json

# Everything but records and reports is the same.
for run in alone array; do
    (cd "$farm/$run/output" && find c* -type f | LC_ALL=C sort | xargs sha256sum) >"$farm/$run.sums"
done
cmp "$farm/alone.sums" "$farm/array.sums"
grep -q '"folder": *"c24"' "$farm/array/output/report.json"
printf 'test-farm: %s files are the same as of one process\n' "$(wc -l <"$farm/array.sums")"
