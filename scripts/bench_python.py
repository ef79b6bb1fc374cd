#!/usr/bin/python3
"""Measures the Python package beside shapely and ezdxf, and prints a table.

usage: bench_python.py [--size LINES] [--rounds N] [--json FILE] [--write-docs FILE]

The package is the one that PYTHONPATH leads to. Every row is measured in a process of its own, ours
and the peer's in turns, with the processor's time of the process and its greatest memory; a row
fails where the two do not find the same. Walls stand in a town of rooms with a T-junction at every
stem, in whole millimetres, so that all find the same junctions.
"""

import argparse
import json
import pathlib
import resource
import statistics
import subprocess
import sys
import tempfile
import time

STREET = 6000.0
ROOM = 4000.0
STEMS = 9


def town(count):
    """Long walls in rows, with stems that end on them."""
    import numpy as np
    index = np.arange(count)
    row, place = divmod(index, STEMS + 1)
    left, bottom = (row % 100) * (40_000.0 + STREET), (row // 100) * STREET
    stem = place > 0
    x = left + place * ROOM
    return np.column_stack((np.where(stem, x, left), bottom, np.where(stem, x, left + 40_000.0),
                            np.where(stem, bottom + ROOM, bottom)))


def write_plan(path, lines):
    """A drawing of the lines, R2000, as text."""
    with open(path, "w", encoding="ascii") as file:
        file.write("0\nSECTION\n2\nHEADER\n9\n$ACADVER\n1\nAC1015\n9\n$HANDSEED\n5\nFFFFFFF\n0\n"
                   "ENDSEC\n0\nSECTION\n2\nENTITIES\n")
        for i, (x1, y1, x2, y2) in enumerate(lines.tolist()):
            file.write(f"0\nLINE\n5\n{i + 256:X}\n100\nAcDbEntity\n8\nWALL\n100\nAcDbLine\n"
                       f"10\n{x1!r}\n20\n{y1!r}\n30\n0.0\n11\n{x2!r}\n21\n{y2!r}\n31\n0.0\n")
        file.write("0\nENDSEC\n0\nEOF\n")


# --- what is measured: each returns what it found ------------------------------------------------

def break_quoin(lines, _):
    import quoin
    return len(quoin.break_lines(lines)[0])


def break_union(lines, _):
    """All lines noded by shapely."""
    import shapely.geometry
    import shapely.ops
    whole = shapely.geometry.MultiLineString([((a, b), (c, d)) for a, b, c, d in lines.tolist()])
    return len(shapely.ops.unary_union(whole).geoms)


def break_tree(lines, _):
    """Ends found near lines by shapely's tree, and lines cut at their feet, by hand."""
    import shapely.geometry
    import shapely.strtree
    rows = lines.tolist()
    points = [shapely.geometry.Point(x, y) for a, b, c, d in rows for x, y in ((a, b), (c, d))]
    owner = {id(point): i // 2 for i, point in enumerate(points)}
    tree = shapely.strtree.STRtree(points)
    count = 0
    for i, (a, b, c, d) in enumerate(rows):
        line = shapely.geometry.LineString(((a, b), (c, d)))
        feet = {line.project(point) for point in tree.query(line.buffer(10.0, 1))
                if owner[id(point)] != i and line.distance(point) < 10.0}
        feet = {foot for foot in feet if 10.0 <= foot <= line.length - 10.0}
        count += len(feet) + 1
    return count


def read_quoin(_, plan):
    import quoin
    with quoin.Drawing(plan) as drawing:
        return len(drawing.lines("*")[0])


def read_ezdxf(_, plan):
    import ezdxf
    import numpy as np
    space = ezdxf.readfile(plan).modelspace()
    return len(np.array([[*line.dxf.start, *line.dxf.end] for line in space.query("LINE")]))


def write_quoin(_, plan):
    """Every line is moved, and the drawing saved."""
    import quoin
    with quoin.Drawing(plan) as drawing:
        lines, handles = drawing.lines("*")
        drawing.replace(lines + 1.0, handles)
        drawing.save(plan + ".out.dxf")
        return len(lines)


def write_ezdxf(_, plan):
    import ezdxf
    document = ezdxf.readfile(plan)
    count = 0
    for line in document.modelspace().query("LINE"):
        line.translate(1.0, 1.0, 1.0)
        count += 1
    document.saveas(plan + ".out.dxf")
    return count


# (row, ours, peer, the peer's name, times faster it is to be; the largest size for the peer)
ROWS = (
    ("break an array", break_quoin, break_union, "shapely, unary_union", 20),
    ("break an array", break_quoin, break_tree, "shapely, STRtree by hand", 20),
    ("read a drawing's lines", read_quoin, read_ezdxf, "ezdxf", 10),
    ("read, move all lines, save", write_quoin, write_ezdxf, "ezdxf", 10),
)


def measure(name, size, plan):
    """In this process: what was found, seconds of the processor, megabytes."""
    lines = town(size)
    work = globals()[name]
    __import__("numpy")
    for library in ("quoin",) if name.endswith("quoin") else ("shapely.ops", "ezdxf"):
        __import__(library)
    before = time.process_time()
    found = work(lines, plan)
    seconds = time.process_time() - before
    return {"found": found, "seconds": seconds,
            "megabytes": resource.getrusage(resource.RUSAGE_SELF).ru_maxrss / 1024}


def run(work, size, plan):
    done = subprocess.run([sys.executable, __file__, "--measure", work.__name__, "--size",
                           str(size), "--plan", str(plan)], capture_output=True, text=True,
                          check=False)
    if done.returncode != 0:
        sys.exit(f"bench_python: {work.__name__}: {done.stderr}")
    return json.loads(done.stdout)


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n", maxsplit=1)[0])
    parser.add_argument("--size", type=int, default=100_000)
    parser.add_argument("--rounds", type=int, default=3)
    parser.add_argument("--json")
    parser.add_argument("--write-docs")
    parser.add_argument("--measure", help=argparse.SUPPRESS)
    parser.add_argument("--plan", help=argparse.SUPPRESS)
    arguments = parser.parse_args()
    if arguments.measure:
        print(json.dumps(measure(arguments.measure, arguments.size, arguments.plan)))
        return
    table = ["| what | lines | Quoin | peer | peer takes | ratio | goal | memory |",
             "|---|---|---|---|---|---|---|---|"]
    results, missed = [], []
    with tempfile.TemporaryDirectory() as folder:
        plan = pathlib.Path(folder) / "plan.dxf"
        write_plan(plan, town(arguments.size))
        for what, ours, peer, name, goal in ROWS:
            rounds = [(run(ours, arguments.size, plan), run(peer, arguments.size, plan))
                      for _ in range(arguments.rounds)]
            first, second = rounds[0]
            if first["found"] != second["found"]:
                missed.append(f"{what}: {first['found']} and {second['found']} found by {name}")
            mine, theirs = ({key: statistics.median(pair[side][key] for pair in rounds)
                             for key in ("seconds", "megabytes")} for side in (0, 1))
            ratio = theirs["seconds"] / mine["seconds"]
            if ratio < goal:
                missed.append(f"{what}: {ratio:.1f} times faster than {name}, not {goal}")
            table.append(f"| {what} | {arguments.size:,} | {mine['seconds']:.2f} s | {name} | "
                         f"{theirs['seconds']:.2f} s | {ratio:.1f} | {goal} | "
                         f"{mine['megabytes']:.0f} MB, {theirs['megabytes']:.0f} MB |")
            results.append({"what": what, "peer": name, "quoin": mine, "other": theirs,
                            "ratio": ratio, "goal": goal})
            print(table[-1], flush=True)
    if arguments.json:
        pathlib.Path(arguments.json).write_text(json.dumps(results, indent=2) + "\n", "utf-8")
    if arguments.write_docs:
        page = pathlib.Path(arguments.write_docs)
        begin, end = "<!-- bench_python: begin -->\n", "<!-- bench_python: end -->"
        text = page.read_text("utf-8")
        head, rest = text.split(begin)
        page.write_text(head + begin + "\n".join(table) + "\n" + end + rest.split(end)[1], "utf-8")
    for words in missed:
        print("bench_python:", words, file=sys.stderr)
    sys.exit(1 if missed else 0)


if __name__ == "__main__":
    main()
