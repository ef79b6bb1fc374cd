#!/usr/bin/python3
"""Measures commands on large DWG drawings beside a package of npm's that reads and writes DWG.

usage: bench_dwg.py --quoin QUOIN --grow GROW_DRAWING --modules NODE_MODULES [--size N]
                    [--rounds N] [--folder FOLDER] [--json FILE] [--write-docs] | --self-test

The plans are examples/house-gbk/house.dwg (R2000) and examples/flat/flat.dwg (R2010) with the lines
of make_large_plan.py added. Programs take turns, round after round; what counts is the processor's
time and the largest memory of the process. The peer must see as many lines as the plan has. It
writes R2000 alone: packing a drawing of R2010 takes it minutes.
"""

import argparse
import json
import pathlib
import statistics
import subprocess
import sys

import bench_files
import make_large_plan
import measure_commands

SOURCE = pathlib.Path(__file__).parent.parent
PEER = ["node", SOURCE / "bench" / "dwg_peer.mjs", "{modules}", "{plan}"]
PLANS = {"R2000": SOURCE / "examples" / "house-gbk" / "house.dwg",
         "R2010": SOURCE / "examples" / "flat" / "flat.dwg"}
# Each row: the command, and the peer that does as much.
COMMANDS = {
    "info": (["{quoin}", "info", "{plan}"], PEER, 10),
    "to-origin, all records": (["{quoin}", "to-origin", "{plan}", "--at", "center",
                                "--leave-behind", "-o", "{out}"], [*PEER, "{out}"], 5),
    "break": (["{quoin}", "break", "{plan}", "--layer", bench_files.WALLS, "-o", "{out}"], None, 0),
}
WRITING_PEER = "R2000"
HEADINGS = ["file to file", "version", "lines", "file", "processor", "memory", "peer's processor",
            "its memory", "ours is", "goal", "reached"]
BEGIN, END = "<!-- dwg, {size}: begin -->", "<!-- dwg, {size}: end -->"


def median_of(runs, what):
    return statistics.median(run[what] for run in runs)


def row_of(name, version, size, file_bytes, ours, peers, goal):
    row = [name, version, f"{size:,}", f"{file_bytes / 1e6:.1f} MB",
           f"{median_of(ours, 'processor'):.2f} s", f"{median_of(ours, 'bytes') / 1e6:.0f} MB"]
    if not peers:
        return row + [""] * 5
    # Of one round each: what slows the machine down slows both.
    ratio = statistics.median(peer["processor"] / our["processor"]
                              for our, peer in zip(ours, peers))
    return row + [f"{median_of(peers, 'processor'):.2f} s",
                  f"{median_of(peers, 'bytes') / 1e6:.0f} MB", f"{ratio:.1f} times as fast",
                  f">= {goal}", "yes" if ratio >= goal else "no"]


def run(words, names):
    line = [str(word).format(**names) for word in words]
    _, usage, code, error = measure_commands.run(line, 3600)
    if code != 0:
        sys.exit(f"{' '.join(line)}: exit code {code}: {error}")
    return {"processor": usage.ru_utime + usage.ru_stime, "bytes": usage.ru_maxrss * 1024}


def grown(arguments, version):
    """The plan of this version, with the lines added."""
    lines = arguments.folder / f"rooms-{arguments.size}.dxf"
    if not lines.exists():
        with open(lines, "w", encoding="ascii", newline="") as stream:
            make_large_plan.write(stream, "rooms", arguments.size)
    plan = arguments.folder / f"rooms-{arguments.size}-{version}.dwg"
    subprocess.run([arguments.grow, PLANS[version], lines, plan], check=True,
                   stdout=subprocess.DEVNULL)
    return plan


def measure(arguments):
    arguments.folder.mkdir(parents=True, exist_ok=True)
    table, figures = [], {}
    for version in PLANS:
        names = {"quoin": arguments.quoin, "modules": arguments.modules,
                 "plan": grown(arguments, version), "out": arguments.folder / "out.dwg"}
        seen = subprocess.run([str(word).format(**names) for word in PEER], check=True,
                              capture_output=True, text=True).stdout
        if int(seen) < arguments.size:
            sys.exit(f"the peer read {seen.strip()} entities, of {arguments.size} lines")
        for name, (ours, peer, goal) in COMMANDS.items():
            has_peer = peer is not None and (peer is PEER or version == WRITING_PEER)
            runs = {"ours": [], "peer": []}
            for _ in range(arguments.rounds):
                runs["ours"].append(run(ours, names))
                if has_peer:
                    runs["peer"].append(run(peer, names))
            figures[f"{name}, {version}"] = runs
            table.append(row_of(name, version, arguments.size, names["plan"].stat().st_size,
                                runs["ours"], runs["peer"], goal))
    (arguments.folder / "out.dwg").unlink(missing_ok=True)
    return table, figures


def self_test():
    ours = [{"processor": 1.0, "bytes": 30e6}, {"processor": 2.0, "bytes": 32e6},
            {"processor": 1.0, "bytes": 31e6}]
    peers = [{"processor": 4.0, "bytes": 90e6}, {"processor": 8.0, "bytes": 90e6},
             {"processor": 5.0, "bytes": 90e6}]
    row = row_of("info", "R2000", 1000, 10e6, ours, peers, 5)
    if row[-3:] != ["4.0 times as fast", ">= 5", "no"]:
        sys.exit(f"bench_dwg: {row}")
    if row_of("break", "R2000", 1000, 10e6, ours, [], 0)[-5:] != [""] * 5:
        sys.exit("bench_dwg: a row without a peer has a ratio")
    print("bench_dwg: ratios are those of rounds, and goals are compared")


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--quoin")
    parser.add_argument("--grow")
    parser.add_argument("--modules")
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
    table, figures = measure(arguments)
    text = bench_files.as_markdown(table, HEADINGS)
    print(text)
    if arguments.json:
        arguments.json.write_text(json.dumps(figures, indent=1) + "\n", encoding="utf-8")
    if arguments.write_docs:
        bench_files.write_docs(text, *(mark.format(size=arguments.size) for mark in (BEGIN, END)))


if __name__ == "__main__":
    main()
