#!/usr/bin/python3
"""Measures pictures of plans beside two other renderers.

usage: bench_pictures.py --quoin QUOIN [--sizes N,N] [--rounds N] [--folder FOLDER] [--json FILE]
                         | --self-test

A plan has about N entities: walls' faces, doors in blocks, furniture, hatched columns, texts. The
programs take turns, round after round, and each makes a page of the same drawing; what counts is
the processor's time, as others have a part in the clock's, and the largest memory of the process.
Figures are medians; the last column divides the time of the faster of the others that write the
same kind of file by ours: LibreCAD writes PDF here, ezdxf PDF and PNG.

A peer that is not installed (librecad; python3-ezdxf with python3-matplotlib) is left out.
"""

import importlib.util
import os
import shutil
import statistics
import subprocess
import sys

import bench_plans
import measure_commands
from plan_rounds import drawing

ENTITIES_A_WALL = 10
LIMIT = 3600
EZDXF = """
import sys
import ezdxf
from ezdxf.addons.drawing import matplotlib
document = ezdxf.readfile(sys.argv[1])
matplotlib.qsave(document.modelspace(), sys.argv[2])
"""
HEADINGS = ["picture", "entities", "processor", "memory", "times the faster peer's speed"]


def make(size, path):
    """In a process of its own, as the largest memory of a process counts for those it starts."""
    plan = drawing.make_plan(1, size // ENTITIES_A_WALL, drawing.ALL_NOISE)
    bench_plans.write_drawing(plan.primitives, path)


def programs(quoin, plan):
    """{name: (words, whether it is a peer)}; each makes one page of the plan."""
    found = {f"quoin picture, {ending}": ([quoin, "picture", plan, "-o", plan.with_suffix(ending)],
                                          False) for ending in (".pdf", ".png", ".svg")}
    if shutil.which("librecad"):
        found["LibreCAD, .pdf"] = (["librecad", "dxf2pdf", "-a", plan], True)
    if importlib.util.find_spec("ezdxf") and importlib.util.find_spec("matplotlib"):
        for ending in (".pdf", ".png"):
            found[f"ezdxf drawing, {ending}"] = (
                [sys.executable, "-c", EZDXF, plan, plan.with_suffix(ending)], True)
    return found


def measure(quoin, size, rounds, folder):
    """(name -> its runs, the names of the peers)"""
    folder.mkdir(parents=True, exist_ok=True)
    plan = folder.resolve() / f"plan-{size}.dxf"
    subprocess.run([sys.executable, __file__, "--make", str(size), "--folder", plan], check=True)
    all_programs = programs(quoin, plan)
    runs = {name: [] for name in all_programs}
    for _ in range(rounds):
        for name, (words, is_peer) in all_programs.items():
            page = plan.with_suffix(".pdf") if "LibreCAD" in name else words[-1]
            page.unlink(missing_ok=True)
            _, usage, code, error = measure_commands.run([str(word) for word in words], LIMIT)
            if code != 0 or not page.exists() or page.stat().st_size == 0:
                sys.exit(f"{name}: exit code {code}, no picture: {error}")
            runs[name].append({"processor": usage.ru_utime + usage.ru_stime,
                               "bytes": usage.ru_maxrss * 1024, "file": page.stat().st_size})
    return runs, {name for name, (_, is_peer) in all_programs.items() if is_peer}


def faster_peer(runs, peers, ending):
    """Of those that write the same kind of file; None where none does."""
    same = [name for name in peers if name.endswith(ending)]
    return min(same, default=None,
               key=lambda name: statistics.median(run["processor"] for run in runs[name]))


def rows_of(runs, peers, size):
    ours = {name: faster_peer(runs, peers, name[-len(".pdf"):]) for name in runs if name not in peers}
    return bench_plans.rows_of(runs, ours, size)


def self_test():
    runs = {name: [{"processor": seconds, "bytes": 20e6}] for name, seconds in (
        ("ours, .pdf", 0.5), ("ours, .svg", 0.5), ("a, .pdf", 3.0), ("b, .pdf", 4.0), ("b, .png", 1.0))}
    rows = rows_of(runs, {"a, .pdf", "b, .pdf", "b, .png"}, 10)
    if [row[-1] for row in rows] != ["6.0", "", "", "", ""]:
        sys.exit(f"bench_pictures: {rows}")
    print("bench_pictures: the faster peer counts")


def main():
    arguments = bench_plans.parsed_arguments(__doc__.splitlines()[0])
    if arguments.self_test:
        self_test()
    elif arguments.make:
        make(arguments.make, arguments.folder)
    else:
        os.environ["QT_QPA_PLATFORM"] = "offscreen"
        bench_plans.run_sizes(arguments, measure, rows_of, HEADINGS)


if __name__ == "__main__":
    main()
