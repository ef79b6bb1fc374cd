#!/usr/bin/python3
"""Measures every command on large plans, file to file, and prints one table.

usage: measure_commands.py --quoin QUOIN [--sizes N,N...] [--only REGEX] [--limit SECONDS]
                           [--folder FOLDER] [--json FILE]

Plans come from make_large_plan.py. A row is a command, a column a size: wall-clock time, the
processor's time (what counts where others work on the machine) and the largest memory of the
process. A run that takes longer than the limit is ended by Ctrl-C and shows as "> limit", with
the time that the end took; larger sizes of that row are left out.
"""

import argparse
import json
import os
import pathlib
import re
import resource
import shutil
import signal
import subprocess
import sys
import time

import make_large_plan

WALLS = "A-WALL"
WIDTHS = ["--layer", WALLS, "--left", "60", "--right", "60"]

# name: (kind of plan, words, ending of what is written or None, makes pictures)
COMMANDS = {
    "info": ("rooms", ["info", "{plan}"], None, False),
    "info, JSON": ("rooms", ["info", "{plan}", "--report", "json"], None, False),
    "extents": ("rooms", ["extents", "{plan}"], None, True),
    "break": ("rooms", ["break", "{plan}", "--layer", WALLS], "dxf", True),
    "break, JSON": ("rooms", ["break", "{plan}", "--layer", WALLS, "--report", "json"],
                    "dxf", False),
    "merge": ("rooms", ["merge", "{plan}", "--layer", WALLS], "dxf", True),
    "merge, JSON": ("rooms", ["merge", "{plan}", "--layer", WALLS, "--report", "json"],
                    "dxf", False),
    "draw": ("rooms", ["draw", "{plan}", "--path", "-500,1900 300000,1900", "--layer", WALLS],
             "dxf", True),
    "trim-axes, grid": ("grid", ["trim-axes", "{plan}", "--layer", "S-GRID"], "dxf", True),
    "trim-axes, at an angle": ("slanted", ["trim-axes", "{plan}", "--layer", "S-GRID"], "dxf",
                               False),
    "outline": ("rooms", ["outline", "{plan}", *WIDTHS], "dxf", True),
    "outline, JSON": ("rooms", ["outline", "{plan}", *WIDTHS, "--report", "json"], "dxf", False),
    "solid, OBJ": ("rooms", ["solid", "{plan}", *WIDTHS, "--height", "2800"], "obj", True),
    "solid, GLB": ("rooms", ["solid", "{plan}", *WIDTHS, "--height", "2800"], "glb", False),
    "solid, DXF": ("rooms", ["solid", "{plan}", *WIDTHS, "--height", "2800"], "dxf", False),
    "style dim": ("rooms", ["style", "dim", "{plan}", "--name", "ARCH-100", "--scale", "100"],
                  "dxf", True),
    "style mline": ("rooms", ["style", "mline", "{plan}", "--name", "WALL"], "dxf", True),
    "paint": ("rooms", ["paint", "{plan}", "--layer", WALLS, "--rgb", "200,60,20"], "dxf", True),
    "match-properties": ("rooms", ["match-properties", "{plan}", "--from", "101", "--layer",
                                   WALLS], "dxf", True),
    "to-origin": ("rooms", ["to-origin", "{plan}", "--at", "center"], "dxf", True),
    "rescale": ("rooms", ["rescale", "{copy}", "--drawing-factor", "0.001"], None, False),
}

PICTURES = {"break": ["png", "svg", "pdf"]}


def rows():
    """(name, kind of plan, words, ending, picture's ending or "") of every row."""
    for name, (kind, words, ending, has_picture) in COMMANDS.items():
        yield name, kind, words, ending, ""
        for picture in PICTURES.get(name, ["png"]) if has_picture else []:
            yield f"{name}, {picture}", kind, words, ending, picture


def run(words, limit):
    """Wall-clock seconds, what the system says of the process, its exit code (None after the
    limit) and its errors."""
    begin = time.monotonic()
    with open(os.devnull, "w", encoding="ascii") as nowhere:
        process = subprocess.Popen(words, stdout=nowhere, stderr=subprocess.PIPE)
    code, stopped = 0, False
    while True:
        pid, status, usage = os.wait4(process.pid, os.WNOHANG)
        if pid:
            code = os.waitstatus_to_exitcode(status)
            break
        if not stopped and time.monotonic() - begin > limit:
            stopped = True
            begin = time.monotonic()
            process.send_signal(signal.SIGINT)
        time.sleep(0.002)
    process.returncode = code
    seconds = time.monotonic() - begin
    words_of_error = process.stderr.read().decode(errors="replace").strip()
    process.stderr.close()
    return seconds, usage, None if stopped else code, words_of_error


def measure(quoin, row, size, folder, limit):
    name, kind, words, ending, picture = row
    plan = folder / f"{kind}-{size}.dxf"
    if not plan.exists():
        with open(plan, "w", encoding="ascii", newline="") as stream:
            make_large_plan.write(stream, kind, size)
    out = folder / "out"
    shutil.rmtree(out, ignore_errors=True)
    out.mkdir()
    copy = out / "copy.dxf"
    if "{copy}" in words:
        shutil.copy(plan, copy)
    line = [quoin] + [word.format(plan=plan, copy=copy) for word in words]
    if ending:
        line += ["-o", str(out / f"out.{ending}")]
    if picture:
        line += ["--picture", str(out / f"out.{picture}")]
    seconds, usage, code, error = run(line, limit)
    if code not in (0, None):
        sys.exit(f"{' '.join(line)}: exit code {code}: {error}")
    shutil.rmtree(out, ignore_errors=True)
    return {"row": name, "size": size, "seconds": seconds,
            "processor": usage.ru_utime + usage.ru_stime, "mebibytes": usage.ru_maxrss / 1024,
            "limit": limit if code is None else None}


def cell(result):
    if result is None:
        return "-"
    if result["limit"]:
        return f"> {result['limit']:g} s (ended in {result['seconds']:.2f} s)"
    return (f"{result['seconds']:.2f} s ({result['processor']:.2f} s), "
            f"{result['mebibytes']:,.0f} MiB")


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n", 1)[0])
    parser.add_argument("--quoin", required=True)
    parser.add_argument("--sizes", default="10000,100000")
    parser.add_argument("--only", default=".")
    parser.add_argument("--limit", type=float, default=120.0)
    parser.add_argument("--folder", type=pathlib.Path, default=pathlib.Path("build/speed"))
    parser.add_argument("--json", type=pathlib.Path)
    arguments = parser.parse_args()
    sizes = [int(size) for size in arguments.sizes.split(",")]
    arguments.folder.mkdir(parents=True, exist_ok=True)
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))
    results = []
    print("| command | " + " | ".join(f"{size:,} lines" for size in sizes) + " |")
    print("|---|" + "---|" * len(sizes), flush=True)
    for row in rows():
        if not re.search(arguments.only, row[0]):
            continue
        cells, given_up = [], False
        for size in sizes:
            result = None if given_up else \
                measure(arguments.quoin, row, size, arguments.folder, arguments.limit)
            given_up = given_up or bool(result["limit"])
            cells.append(cell(result))
            results += [result] if result else []
        print(f"| {row[0]} | " + " | ".join(cells) + " |", flush=True)
    if arguments.json:
        arguments.json.write_text(json.dumps(results, indent=1) + "\n", encoding="utf-8")


if __name__ == "__main__":
    main()
