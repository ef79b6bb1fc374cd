#!/usr/bin/python3
"""Measures plan reading beside programs that do a part of it.

usage: bench_plans.py --quoin QUOIN [--sizes N,N] [--rounds N] [--folder FOLDER] [--json FILE]
                      | --self-test

Plans come from plan_rounds. The programs take turns, round after round; what counts is the
processor's time, as others have a part in the clock's, and the largest memory of the process.
Times are medians. A peer gets the same lines as text, which is less to read than the drawing:

  rooms  shapely.ops.polygonize closes rooms between the reference lines. It must find as many.
  clean  GRASS v.clean snaps ends, breaks, removes duplicates and dangles, from v.in.ascii on. The
         areas that it builds must be the rooms but one in fifty.

A peer that is not installed (python3-shapely, grass-core) is left out.
"""

import argparse
import importlib.util
import json
import pathlib
import random
import re
import shutil
import statistics
import subprocess
import sys

import measure_commands
from plan_rounds import drawing, dxf

POLYGONIZE = """
import sys
from shapely.geometry import LineString
from shapely.ops import polygonize
lines = []
for row in open(sys.argv[1]):
    ax, ay, bx, by = map(float, row.split())
    lines.append(LineString([(ax, ay), (bx, by)]))
rooms = list(polygonize(lines))
print("areas:", len(rooms), sum(room.area for room in rooms))
"""

# Thresholds in millimetres: ends are off by no more than REACH, dangles no longer than three times it.
REACH = 8.0
V_CLEAN = """set -e
v.in.ascii -n input={lines} output=lines format=standard --quiet
v.clean input=lines output=cleaned type=line tool=snap,break,rmdupl,rmdangle \
  threshold={snap},0,0,{dangle} --quiet
v.type input=cleaned output=bounds from_type=line to_type=boundary --quiet
v.info -t bounds | grep areas
"""
HEADINGS = ["plan reading", "walls", "processor", "memory", "times the peer's speed"]


def faults(references, seed):
    """The reference lines with ends that are off along them, some of them twice."""
    some = random.Random(seed)
    found = []
    for _, _, (ax, ay), (bx, by), *_ in (line for line in references if line[0] == "wall"):
        length = ((bx - ax) ** 2 + (by - ay) ** 2) ** 0.5
        dx, dy = (bx - ax) / length, (by - ay) / length
        s, t = (some.uniform(-REACH, REACH) if some.random() < 0.3 else 0.0 for _ in range(2))
        line = ("line", "A-WALL", (ax - s * dx, ay - s * dy), (bx + t * dx, by + t * dy))
        found += [line] * (2 if some.random() < 0.05 else 1)
    return found


def write_lines(lines, path):
    with open(path, "w", encoding="ascii") as stream:
        for _, _, (ax, ay), (bx, by), *_ in lines:
            stream.write(f"{ax!r} {ay!r} {bx!r} {by!r}\n")


def write_grass(lines, path):
    with open(path, "w", encoding="ascii") as stream:
        for _, _, (ax, ay), (bx, by), *_ in lines:
            stream.write(f"L 2\n {ax!r} {ay!r}\n {bx!r} {by!r}\n")


def write_drawing(primitives, path):
    with open(path, "w", encoding="ascii", newline="") as stream:
        dxf.write(stream, primitives, "mm", drawing.DOOR_BLOCK)


def make(size, folder):
    """Writes everything that is read. In a process of its own, as the largest memory of a process
    counts for those that it starts."""
    clean, noisy = drawing.make_plan(1, size), drawing.make_plan(1, size, drawing.ALL_NOISE)
    lines = faults(clean.references, size)
    for name, primitives in (("clean", clean.primitives), ("noisy", noisy.primitives),
                             ("references", clean.references), ("faults", lines)):
        write_drawing(primitives, folder / f"{name}.dxf")
    write_lines([p for p in clean.references if p[0] == "wall"], folder / "references.txt")
    write_grass(lines, folder / "faults.txt")
    (folder / "rooms.txt").write_text(str(len(clean.rooms)), encoding="ascii")


def programs(quoin, size, folder):
    """{name: (words, the peer's name or None)} and how many rooms there are."""
    subprocess.run([sys.executable, __file__, "--make", str(size), "--folder", folder], check=True)
    rooms = int((folder / "rooms.txt").read_text(encoding="ascii"))
    names = {name: folder / f"{name}.dxf" for name in ("clean", "noisy", "references", "faults")}
    out = folder / "out.dxf"
    found = {
        "walls, clean": ([quoin, "walls", names["clean"], "-o", out], None),
        "walls, noisy": ([quoin, "walls", names["noisy"], "-o", out], None),
        "rooms": ([quoin, "rooms", names["references"], "--layer", drawing.REFERENCE, "-o", out],
                  "shapely.ops.polygonize"),
        "clean": ([quoin, "clean", names["faults"], "-o", out], "GRASS v.clean"),
    }
    if importlib.util.find_spec("shapely"):
        found["shapely.ops.polygonize"] = (
            [sys.executable, "-c", POLYGONIZE, folder / "references.txt"], None)
    if shutil.which("grass"):
        script = folder / "clean.sh"
        script.write_text(V_CLEAN.format(lines=folder.resolve() / "faults.txt", snap=2.0 * REACH + 1.0,
                                         dangle=3.0 * REACH), encoding="ascii")
        found["GRASS v.clean"] = (["grass", "--tmp-location", "XY", "--exec", "sh", script], None)
    return found, rooms


def areas_of(text):
    """How many areas a peer tells of."""
    found = re.search(r"areas[:=]\s*(\d+)", text)
    return int(found[1]) if found else None


def check_peers(all_programs, rooms):
    for name, (words, _) in all_programs.items():
        if name.split()[0] in ("GRASS", "shapely.ops.polygonize"):
            text = subprocess.run([str(word) for word in words], check=True, capture_output=True,
                                  text=True).stdout
            areas = areas_of(text)
            allowed = 0 if name.startswith("shapely") else rooms // 50
            if areas is None or abs(areas - rooms) > allowed:
                sys.exit(f"{name} found {areas} areas, of {rooms} rooms")


def measure(quoin, size, rounds, folder):
    """(name -> its runs, name -> peer)"""
    folder.mkdir(parents=True, exist_ok=True)
    all_programs, rooms = programs(quoin, size, folder)
    check_peers(all_programs, rooms)
    runs = {name: [] for name in all_programs}
    for _ in range(rounds):
        for name, (words, _) in all_programs.items():
            _, usage, code, error = measure_commands.run([str(word) for word in words], 3600)
            if code != 0:
                print(f"{name}: exit code {code}: {error}", file=sys.stderr)
                continue
            runs[name].append({"processor": usage.ru_utime + usage.ru_stime,
                               "bytes": usage.ru_maxrss * 1024})
    return ({name: ran for name, ran in runs.items() if ran},
            {name: peer for name, (_, peer) in all_programs.items()})


def rows_of(runs, peers, size):
    seconds = {name: statistics.median(run["processor"] for run in ran) for name, ran in runs.items()}
    rows = []
    for name, ran in runs.items():
        memory = statistics.median(run["bytes"] for run in ran)
        peer = peers.get(name)
        times = f"{seconds[peer] / seconds[name]:.1f}" if peer in seconds else ""
        rows.append([name, f"{size:,}", f"{seconds[name]:.2f} s", f"{memory / 1e6:.0f} MB", times])
    return rows


def as_markdown(rows, headings):
    lines = ["| " + " | ".join(headings) + " |", "|" + " --- |" * len(headings)]
    return "\n".join(lines + ["| " + " | ".join(row) + " |" for row in rows])


def self_test():
    runs = {"rooms": [{"processor": 0.5, "bytes": 20e6}, {"processor": 0.7, "bytes": 22e6}],
            "peer": [{"processor": 3.0, "bytes": 90e6}]}
    wanted = [["rooms", "1,000", "0.60 s", "21 MB", "5.0"], ["peer", "1,000", "3.00 s", "90 MB", ""]]
    if rows_of(runs, {"rooms": "peer"}, 1000) != wanted:
        sys.exit(f"bench_plans: {rows_of(runs, {'rooms': 'peer'}, 1000)}")
    if areas_of("x\nareas=12\n") != 12 or areas_of("areas: 7 1.5") != 7 or areas_of("none") is not None:
        sys.exit("bench_plans: areas are misread")
    lines = faults(drawing.make_plan(1, 60).references, 1)
    if lines != faults(drawing.make_plan(1, 60).references, 1) or len(lines) < 60:
        sys.exit("bench_plans: the same lines differ from time to time")
    print("bench_plans: medians, ratios and lines are right")


def parsed_arguments(description):
    parser = argparse.ArgumentParser(description=description)
    parser.add_argument("--quoin", type=pathlib.Path)
    parser.add_argument("--sizes", default="10000,100000")
    parser.add_argument("--rounds", type=int, default=3)
    parser.add_argument("--folder", type=pathlib.Path, default=pathlib.Path("build/speed"))
    parser.add_argument("--json", type=pathlib.Path)
    parser.add_argument("--make", type=int, help=argparse.SUPPRESS)
    parser.add_argument("--self-test", action="store_true")
    return parser.parse_args()


def run_sizes(arguments, measure_one, rows_of_one, headings):
    """Measures every size and prints the table; the runs go to a file where one is named."""
    rows, all_runs = [], {}
    for size in map(int, arguments.sizes.split(",")):
        runs, peers = measure_one(arguments.quoin.resolve(), size, arguments.rounds,
                                  arguments.folder)
        all_runs[size] = runs
        rows += rows_of_one(runs, peers, size)
    print(as_markdown(rows, headings))
    if arguments.json:
        arguments.json.write_text(json.dumps(all_runs, indent=1) + "\n", encoding="utf-8")


def main():
    arguments = parsed_arguments(__doc__.splitlines()[0])
    if arguments.self_test:
        self_test()
    elif arguments.make:
        make(arguments.make, arguments.folder)
    else:
        run_sizes(arguments, measure, rows_of, HEADINGS)


if __name__ == "__main__":
    main()
