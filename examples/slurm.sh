#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
#
# Builds a job's channels as an array of Slurm, and makes one report of all slices when the last task has ended:
#   id=$(sbatch --parsable --array=1-24 examples/slurm.sh /share/harbour/job.json)
#   sbatch --dependency=afterany:"${id%%;*}" examples/slurm.sh /share/harbour/job.json --collect
# The job's folder is one that all nodes see under the same name.
#SBATCH --job-name=quenzo
#SBATCH --ntasks=1
#SBATCH --cpus-per-task=2
#SBATCH --output=quenzo-%A-%a.log
#SBATCH --requeue
# A task that runs out of time ends after the step at hand, and goes on there when it is submitted again.
#SBATCH --signal=B:TERM@60
set -euo pipefail
case " $* " in
*" --collect "*) exec quenzo build "$@" ;;
esac
exec quenzo build --jobs "${SLURM_CPUS_PER_TASK-1}" "$@"
