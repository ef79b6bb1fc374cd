#!/usr/bin/env bash
# All drawings of a folder with GNU parallel, on one machine or, with machines in ~/.parallel/sshloginfile
# and `QUOIN_PARALLEL='--sshloginfile ..'`, on several that see the same folders.
# usage: run_parallel.sh FOLDER OUT [WORKERS]
set -uo pipefail
here=$(cd -- "$(dirname -- "${BASH_SOURCE[0]}")" && pwd)
mkdir -p "$2"
# Many drawings a process, so that its start does not count; a process that dies takes no other along.
"$here/list.sh" "$1" |
  parallel --jobs "${3:-$(nproc)}" -n "${QUOIN_CHUNK:-25}" --joblog "$2/parallel.log" \
    ${QUOIN_PARALLEL-} "$here/work.py" "$1" "$2" {}
"$here/summary.py" "$1" "$2"
