#!/usr/bin/python3
"""Makes one table, and a plot, of what the benchmark program measured.

usage: bench_table.py RESULTS.json [--plot FILE.png] [--write-docs FILE.md]

RESULTS.json is what `quoin_bench --benchmark_out=... --benchmark_out_format=json` wrote. Every
benchmark is called "workload/form/size"; the form "ours" is the project's own, the others are
peers. The time is the best of the iterations. The growth exponent is the slope between the
smallest and the largest size on logarithmic scales: 1 is proportional.
"""

import argparse
import json
import math
import pathlib
import sys

# What is aimed at: for a size, how many times faster than the peer, or how many times its time at
# most. A workload without a peer is there for its growth.
FASTER, AT_MOST = "faster", "at most"
GOALS = {
    ("break", "rtree"): (FASTER, {10_000: 2, 100_000: 3, 1_000_000: 4.5}),
    ("break", "union"): (FASTER, {100_000: 50}),
    ("merge", "linemerge"): (FASTER, {10_000: 8, 100_000: 20, 1_000_000: 20}),
    ("draw-ordered", "boxes"): (AT_MOST, 1),
    ("draw-ordered", "touch"): (AT_MOST, None),
    ("draw-ordered-again", "boxes"): (AT_MOST, None),
    ("draw-ordered-again", "touch"): (AT_MOST, None),
    ("draw-shuffled", "boxes"): (AT_MOST, 1),
    ("draw-shuffled", "touch"): (AT_MOST, None),
    ("draw-shuffled-again", "boxes"): (AT_MOST, None),
    ("draw-shuffled-again", "touch"): (AT_MOST, None),
    ("show", "touch"): (AT_MOST, 2),
    ("show-again", "touch"): (AT_MOST, None),
    ("axes", "pairs"): (FASTER, {100: 5, 300: 12, 1000: 40}),
    ("polygon-few-crossings", "intersection"): (AT_MOST, 1.5),
    ("polygon-many-crossings", "intersection"): (AT_MOST, 1.5),
    ("load", "dime"): (FASTER, 5),
    ("load", "scan"): (AT_MOST, None),
    ("save-changed", "dime"): (FASTER, 3),
    ("save-untouched", "write-fsync"): (AT_MOST, 1.5),
    ("save-untouched", "write"): (AT_MOST, None),
}
# How fast the time may grow. All goals are for first frames: what is done again, with a small set in
# the caches and a large one not, grows as reading the records does.
MOST_GROWTH = 1.05
GROWING = {"break", "merge", "draw-ordered", "draw-shuffled", "show", "load", "save-changed",
           "save-untouched"}
BEGIN, END = "<!-- table: begin -->", "<!-- table: end -->"


def read(file):
    """{workload: {form: {size: benchmark}}}, in the order of the file."""
    data = json.loads(pathlib.Path(file).read_text())
    found = {}
    for benchmark in data["benchmarks"]:
        workload, form, size = benchmark["name"].split("/")[:3]
        found.setdefault(workload, {}).setdefault(form, {})[int(size)] = benchmark
    return data["context"], found


def shown_time(seconds):
    if seconds < 1e-3:
        return f"{seconds * 1e6:.1f} us"
    return f"{seconds * 1e3:.2f} ms" if seconds < 1 else f"{seconds:.2f} s"


def growth(workload, sizes):
    first, last = min(sizes), max(sizes)
    if first == last:
        return ""
    ratio = sizes[last]["best_s"] / sizes[first]["best_s"]
    exponent = round(math.log(ratio) / math.log(last / first), 2)
    is_too_much = workload in GROWING and exponent > MOST_GROWTH
    return f"{exponent:.2f}" + (f" (> {MOST_GROWTH})" if is_too_much else "")


def compared(workload, peer, size, ours, theirs):
    """The ratio as text, the goal as text, and whether it is reached (None: no goal)."""
    kind, goal = GOALS.get((workload, peer), (FASTER, None))
    if isinstance(goal, dict):
        goal = goal.get(size)
    faster = theirs / ours
    if kind == FASTER:
        text = f"{faster:.2f} times as fast"
        return text, f">= {goal:g}" if goal else "", None if goal is None else faster >= goal
    text = f"{1 / faster:.2f} of its time"
    return text, f"<= {goal:g}" if goal else "", None if goal is None else 1 / faster <= goal


def rows(found):
    for workload, forms in found.items():
        own = {form: sizes for form, sizes in forms.items() if (workload, form) not in GOALS}
        peers = [form for form in forms if (workload, form) in GOALS]
        for form, sizes in own.items():
            for size, benchmark in sorted(sizes.items()):
                ours = benchmark["best_s"]
                name = workload if form == "ours" else f"{workload} ({form})"
                last = size == max(sizes)
                common = [name, f"{size:,}", shown_time(ours)]
                memory = f"{benchmark['peak_bytes'] / size:.0f}"
                exponent = growth(workload, sizes) if last else ""
                with_size = [peer for peer in peers if size in forms[peer] and form == "ours"]
                for peer in with_size or [None]:
                    if peer is None:
                        yield common + ["", "", "", "", "", exponent, memory]
                        continue
                    theirs = forms[peer][size]["best_s"]
                    ratio, goal, reached = compared(workload, peer, size, ours, theirs)
                    mark = "" if reached is None else ("yes" if reached else "no")
                    yield common + [peer, shown_time(theirs), ratio, goal, mark, exponent, memory]


HEADINGS = ["workload", "size", "ours", "peer", "its time", "ours is", "goal", "reached", "growth",
            "bytes each"]


def as_text(table):
    lines = [HEADINGS] + table
    widths = [max(len(line[i]) for line in lines) for i in range(len(HEADINGS))]
    return "\n".join("  ".join(cell.ljust(width) for cell, width in zip(line, widths)).rstrip()
                     for line in lines)


def as_markdown(table):
    lines = ["| " + " | ".join(HEADINGS) + " |", "|" + " --- |" * len(HEADINGS)]
    return "\n".join(lines + ["| " + " | ".join(row) + " |" for row in table])


def plot(found, file):
    import matplotlib
    matplotlib.use("Agg")
    from matplotlib import pyplot
    shown = {workload: forms for workload, forms in found.items() if len(forms) > 1}
    columns = 4
    figure, places = pyplot.subplots(-(-len(shown) // columns), columns, figsize=(15, 10), dpi=80,
                                     squeeze=False)
    for place in places.flat[len(shown):]:
        place.axis("off")
    for place, (workload, forms) in zip(places.flat, shown.items()):
        for form, sizes in forms.items():
            points = sorted((size, 1e9 * one["best_s"] / size) for size, one in sizes.items())
            place.loglog(*zip(*points), marker="o", linewidth=2.5 if form == "ours" else 1,
                         color="black" if form == "ours" else None, label=form)
        place.set_title(workload)
        place.set_ylabel("ns each")
        place.grid(True, which="both", alpha=0.2)
        place.legend(fontsize=8)
    figure.tight_layout()
    figure.savefig(file)


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("results")
    parser.add_argument("--plot")
    parser.add_argument("--write-docs")
    arguments = parser.parse_args()
    context, found = read(arguments.results)
    table = list(rows(found))
    if not table:
        sys.exit("bench_table: nothing was measured")
    print(as_text(table))
    if arguments.plot:
        plot(found, arguments.plot)
    if arguments.write_docs:
        file = pathlib.Path(arguments.write_docs)
        before, rest = file.read_text().split(BEGIN)
        after = rest.split(END)[1]
        file.write_text(before + BEGIN + "\n" + as_markdown(table) + "\n" + END + after)


if __name__ == "__main__":
    main()
