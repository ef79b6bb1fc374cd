#!/usr/bin/python3
"""All drawings of a folder with dask.distributed.

usage: run_dask.py FOLDER OUT [SCHEDULER | WORKERS]

SCHEDULER is the address of one that runs (tcp://host:8786), WORKERS how many processes to start here
(default 2). Workers see the same folders. A worker that dies is begun again; the drawing at which it
died twice is left out, and the mark that it left says so in the next run.
"""

import pathlib
import subprocess
import sys

from distributed import Client, KilledWorker, LocalCluster, as_completed

HERE = pathlib.Path(__file__).resolve().parent


def work_on(here, folder, out, names):
    """Runs in a worker."""
    if here not in sys.path:
        sys.path.insert(0, here)
    import work
    return [work.work(folder, out, name) for name in names]


def main():
    folder, out = sys.argv[1:3]
    place = sys.argv[3] if len(sys.argv) > 3 else "2"
    pathlib.Path(out).mkdir(parents=True, exist_ok=True)
    names = subprocess.run([HERE / "list.sh", folder], check=True, capture_output=True,
                           text=True).stdout.splitlines()
    # One thread a worker: the work of a process goes through one thread anyway.
    cluster = None if place.startswith("tcp://") else \
        LocalCluster(n_workers=int(place), threads_per_worker=1, dashboard_address=None)
    chunks = [names[i:i + 25] for i in range(0, len(names), 25)]
    with Client(cluster or place) as client:
        futures = [client.submit(work_on, str(HERE), folder, out, chunk, pure=False, retries=1)
                   for chunk in chunks]
        for future in as_completed(futures):
            try:
                future.result()
            except KilledWorker as error:
                print(f"run_dask: a worker died: {error}", file=sys.stderr)
    if cluster:
        cluster.close()
    sys.exit(subprocess.run([HERE / "summary.py", folder, out], check=False).returncode)


if __name__ == "__main__":
    main()
