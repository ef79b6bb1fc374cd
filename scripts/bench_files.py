#!/usr/bin/python3
"""Measures commands from file to file beside programs that copy or read the same file.

usage: bench_files.py --quoin QUOIN [--size N] [--rounds N] [--folder FOLDER] [--json FILE]
                      [--write-docs FILE.md] | --self-test

The plan comes from make_large_plan.py. The programs take turns, round after round; what counts is
the processor's time, as the disk and other programs have a part in the clock's, and the largest
memory of the process, whose goal is MOST_MEMORY times the file. Times are medians with half the
distance between the fastest and the slowest round behind them. Peers: ogr2ogr, which copies the
drawing (GDAL), and ezdxf, which reads it. Both must have seen as many lines as the plan has.
"""

import argparse
import json
import pathlib
import re
import shutil
import statistics
import subprocess
import sys

import make_large_plan
import measure_commands

MOST_MEMORY = 3
WALLS, WIDTHS = measure_commands.WALLS, measure_commands.WIDTHS
READ_WITH_EZDXF = "import ezdxf, sys; print(len(ezdxf.readfile(sys.argv[1]).modelspace()))"
COMMANDS = {
    "info": ["info", "{plan}"],
    "extents": ["extents", "{plan}"],
    "break": ["break", "{plan}", "--layer", WALLS, "-o", "{out}"],
    "merge": ["merge", "{plan}", "--layer", WALLS, "-o", "{out}"],
    "outline": ["outline", "{plan}", *WIDTHS, "-o", "{out}"],
    "rescale": ["rescale", "{copy}", "--drawing-factor", "0.001"],
}
PEERS = {
    "ogr2ogr, copying": ["ogr2ogr", "-f", "DXF", "{out}", "{plan}"],
    "ezdxf, reading": [sys.executable, "-c", READ_WITH_EZDXF, "{plan}"],
}
HEADINGS = ["file to file", "lines", "file", "processor", "memory", "memory / file", "goal",
            "reached"]
BEGIN, END = "<!-- files, {size}: begin -->", "<!-- files, {size}: end -->"


def lines_in(file):
    """How many lines a DXF file has; ogr2ogr writes polylines."""
    return len(re.findall(rb"\n *0\r?\n(?:LINE|LWPOLYLINE|POLYLINE)\r?\n", file.read_bytes()))


def row_of(name, runs, size, file_bytes):
    seconds = statistics.median(run["processor"] for run in runs)
    spread = (max(run["processor"] for run in runs) - min(run["processor"] for run in runs)) / 2
    memory = statistics.median(run["bytes"] for run in runs)
    ratio = memory / file_bytes
    has_goal = name in COMMANDS
    return [name, f"{size:,}", f"{file_bytes / 1e6:.0f} MB",
            f"{seconds:.2f} s ±{100 * spread / seconds:.0f}%", f"{memory / 1e6:.0f} MB",
            f"{ratio:.1f}", f"<= {MOST_MEMORY}" if has_goal else "",
            ("yes" if ratio <= MOST_MEMORY else "no") if has_goal else ""]


def as_markdown(table, headings=HEADINGS):
    lines = ["| " + " | ".join(headings) + " |", "|" + " --- |" * len(headings)]
    return "\n".join(lines + ["| " + " | ".join(row) + " |" for row in table])


def measure(quoin, size, rounds, folder):
    """{name: [a run a round]} and the size of the plan in bytes."""
    folder.mkdir(parents=True, exist_ok=True)
    plan, out, copy = folder / f"rooms-{size}.dxf", folder / "out.dxf", folder / "copy.dxf"
    if not plan.exists():
        with open(plan, "w", encoding="ascii", newline="") as stream:
            make_large_plan.write(stream, "rooms", size)
    programs = {name: [quoin, *words] for name, words in COMMANDS.items()} | PEERS
    runs = {name: [] for name in programs}
    for _ in range(rounds):
        for name, words in programs.items():
            out.unlink(missing_ok=True)
            if "{copy}" in words:
                shutil.copy(plan, copy)
            line = [word.format(plan=plan, out=out, copy=copy) for word in words]
            _, usage, code, error = measure_commands.run(line, 3600)
            if code != 0:
                sys.exit(f"{' '.join(line)}: exit code {code}: {error}")
            runs[name].append({"processor": usage.ru_utime + usage.ru_stime,
                               "bytes": usage.ru_maxrss * 1024})
            if name == "ogr2ogr, copying" and lines_in(out) != size:
                sys.exit(f"ogr2ogr copied {lines_in(out)} of {size} lines")
    seen = int(subprocess.run([sys.executable, "-c", READ_WITH_EZDXF, plan], check=True,
                              capture_output=True, text=True).stdout)
    if seen < size:
        sys.exit(f"ezdxf read {seen} entities, of {size} lines")
    for file in (out, copy):
        file.unlink(missing_ok=True)
    return runs, plan.stat().st_size


def write_docs(text, begin, end):
    """Puts the text between two marks of docs/benchmarks.md."""
    file = pathlib.Path(__file__).parent.parent / "docs" / "benchmarks.md"
    before, rest = file.read_text(encoding="utf-8").split(begin)
    after = rest.split(end)[1]
    file.write_text(f"{before}{begin}\n{text}\n{end}{after}", encoding="utf-8")


def self_test():
    runs = [{"processor": 1.0, "bytes": 30e6}, {"processor": 1.2, "bytes": 32e6},
            {"processor": 1.1, "bytes": 31e6}]
    wanted = ["info", "1,000", "10 MB", "1.10 s ±9%", "31 MB", "3.1", "<= 3", "no"]
    if row_of("info", runs, 1000, 10e6) != wanted:
        sys.exit(f"bench_files: {row_of('info', runs, 1000, 10e6)}")
    if row_of("ezdxf, reading", runs, 1000, 20e6)[-1] != "":
        sys.exit("bench_files: a peer has a goal")
    print("bench_files: medians, spreads and goals are right")


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--quoin")
    parser.add_argument("--size", type=int, default=100_000)
    parser.add_argument("--rounds", type=int, default=3)
    parser.add_argument("--folder", type=pathlib.Path, default=pathlib.Path("build/speed"))
    parser.add_argument("--json", type=pathlib.Path)
    parser.add_argument("--write-docs", action="store_true")
    parser.add_argument("--self-test", action="store_true")
    arguments = parser.parse_args()
    if arguments.self_test:
        self_test()
        return
    runs, file_bytes = measure(arguments.quoin, arguments.size, arguments.rounds, arguments.folder)
    table = [row_of(name, ran, arguments.size, file_bytes) for name, ran in runs.items()]
    print(as_markdown(table))
    if arguments.json:
        arguments.json.write_text(json.dumps(runs, indent=1) + "\n", encoding="utf-8")
    if arguments.write_docs:
        write_docs(as_markdown(table), *(mark.format(size=arguments.size) for mark in (BEGIN, END)))


if __name__ == "__main__":
    main()
