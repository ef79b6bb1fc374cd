#!/usr/bin/env bash
# Runs the ways of scaling out that this machine has on the same drawings, one broken among them, and
# compares their results; restarts one that was cut short.
# usage: test.sh WORK [COPIES]
set -euo pipefail
here=$(cd -- "$(dirname -- "${BASH_SOURCE[0]}")" && pwd)
work=$1 copies=${2:-4}
rm -rf "$work"
mkdir -p "$work/plans"
for ((i = 0; i < copies; ++i)); do
  mkdir "$work/plans/$i"
  cp "$here"/../{flat/flat.dxf,flat/flat.dwg,office/office.dxf,house-gbk/house.dxf} "$work/plans/$i"
done
printf 'no drawing\n' >"$work/plans/0/broken.dxf"
count=$("$here/list.sh" "$work/plans" | wc -l)

try() { # NAME COMMAND...
  local name=$1 begin=$EPOCHREALTIME status=0
  shift
  "$@" >"$work/$name.log" 2>&1 || status=$?
  [[ $status -eq 1 ]] || { cat "$work/$name.log"; printf '%s ended with %d\n' "$name" "$status"; exit 1; }
  awk -v name="$name" -v count="$count" -v begin="$begin" -v end="$EPOCHREALTIME" 'BEGIN {
    printf "%-10s %d drawings in %.2f s: %.1f a second\n", name, count, end - begin, count / (end - begin) }'
  cut -d, -f1-5 "$work/$name/summary.csv" >"$work/$name.csv"
  cmp "$work/$name.csv" "$work/one.csv"
}
# One process after another, as what the others are compared with.
one() { "$here/list.sh" "$work/plans" | tr '\n' '\0' |
  (xargs -0 "$here/work.py" "$work/plans" "$work/one" || true)
  "$here/summary.py" "$work/plans" "$work/one"; }
# `sbatch --wait` looks after 2, 10, 42 seconds and so on, too seldom to measure by.
slurm() {
  local job
  job=$(QUOIN_SCALE_OUT=$here sbatch --parsable --array=0-1 --chdir="$work" "$here/array.sbatch" \
    "$work/plans" "$work/slurm") || return
  while [[ -n $(squeue --noheader --jobs "$job" 2>/dev/null) ]]; do sleep 0.2; done
  "$here/summary.py" "$work/plans" "$work/slurm"
}

one >"$work/one.log" 2>&1 || true
cut -d, -f1-5 "$work/one/summary.csv" >"$work/one.csv"
rm -r "$work/one"
try one one
if command -v parallel >/dev/null; then
  try parallel env QUOIN_CHUNK="${QUOIN_CHUNK:-2}" "$here/run_parallel.sh" "$work/plans" "$work/parallel" 2
  # Cut short: half of the rows are gone, and one process has died.
  find "$work/parallel" -name 'flat*.json' -delete
  rm "$work/parallel/1/office.dxf.json" && touch "$work/parallel/1/office.dxf.running"
  env QUOIN_CHUNK="${QUOIN_CHUNK:-2}" "$here/run_parallel.sh" "$work/plans" "$work/parallel" 2 >"$work/again.log" && exit 1
  grep -q 'the process died at this drawing' "$work/again.log"
  "$here/work.py" --retry "$work/plans" "$work/parallel" 1/office.dxf
  "$here/summary.py" "$work/plans" "$work/parallel" >/dev/null || true
  cut -d, -f1-5 "$work/parallel/summary.csv" | cmp - "$work/one.csv"
  printf 'restarted where it was\n'
fi
if /usr/bin/python3 -c 'import distributed' 2>/dev/null; then
  try dask /usr/bin/python3 "$here/run_dask.py" "$work/plans" "$work/dask" 2
fi
if command -v sbatch >/dev/null && sinfo >/dev/null 2>&1; then
  try slurm slurm
fi
