#!/usr/bin/python3
"""Makes one table, and a plot, of what the benchmark program measured.

usage: bench_table.py RESULTS.json [--plot FILE.png] [--write-docs FILE.md] [--check] [--self-test]

RESULTS.json is what `quoin_bench --benchmark_out=... --benchmark_out_format=json` wrote. Every
benchmark is a row "workload/size", its counters are "form.what"; the form "ours" is the project's
own, the others are peers that took turns with it. Times are medians of the rounds, with half the
distance of the quartiles behind them; a ratio is the median of the rounds' ratios. The growth
exponent is the slope between the smallest and the largest size on logarithmic scales: 1 is
proportional.

A row that did not find what its peers found fails. With --check a goal that is missed by more than
the spread does, too.
"""

import argparse
import json
import math
import pathlib
import sys

# What is aimed at: for a size, how many times faster than the peer, or how many times its time at
# most. A peer without a goal is there to be looked at.
FASTER, AT_MOST = "faster", "at most"
GOALS = {
    ("break", "rtree"): (FASTER, {10_000: 2, 100_000: 3, 1_000_000: 4.5}),
    ("break-union", "union"): (FASTER, {100_000: 50}),
    ("merge", "linemerge"): (FASTER, {10_000: 8, 100_000: 20, 1_000_000: 20}),
    ("draw-ordered", "boxes"): (AT_MOST, 1.3),
    ("draw-shuffled", "boxes"): (AT_MOST, 1.3),
    ("show", "touch"): (AT_MOST, 2),
    ("axes", "pairs"): (FASTER, {100: 5, 300: 12, 1000: 40}),
    ("polygon-few-crossings", "intersection"): (AT_MOST, 1.5),
    ("polygon-many-crossings", "intersection"): (AT_MOST, 1.5),
    ("load", "dime"): (FASTER, 5),
    ("save-changed", "dime"): (FASTER, 3),
    ("save-untouched", "write-fsync"): (AT_MOST, 1.5),
}
# Peers whose time is an "at most" although it has no goal.
BOUNDS = {"boxes", "touch", "scan", "write"}
# How fast the time may grow; records in memory, of which fewer are cached the more there are,
# explain what is above 1. All goals are for first frames: what is done again, with a small set in
# the caches and a large one not, grows as reading the records does.
MOST_GROWTH = 1.15
GROWING = {"break", "merge", "draw-ordered", "draw-shuffled", "show", "load", "save-changed",
           "save-untouched"}
BEGIN, END = "<!-- table: begin -->", "<!-- table: end -->"


def read(data):
    """{workload: {size: {form: {what: figure}}}} in the order of the file, and what went wrong."""
    found, errors = {}, []
    for benchmark in data["benchmarks"]:
        workload, size = benchmark["name"].split("/")[:2]
        if benchmark.get("error_occurred"):
            errors.append(f"{workload}, {int(size):,}: {benchmark['error_message']}")
            continue
        forms = found.setdefault(workload, {}).setdefault(int(size), {})
        for counter, figure in benchmark.items():
            form, dot, what = counter.rpartition(".")
            if dot:
                forms.setdefault(form, {})[what] = figure
    return found, errors


def shown_time(form):
    seconds, spread = form["median_s"], form["spread_s"]
    unit, scale = ("us", 1e6) if seconds < 1e-3 else ("ms", 1e3) if seconds < 1 else ("s", 1)
    return f"{seconds * scale:.{1 if unit == 'us' else 2}f} {unit} ±{100 * spread / seconds:.0f}%"


def growth(workload, sizes):
    """The exponent, by how much it may be wrong, and whether that is too much all the same."""
    first, last = min(sizes), max(sizes)
    if first == last:
        return None
    ours = [sizes[size]["ours"] for size in (first, last)]
    exponent = math.log(ours[1]["median_s"] / ours[0]["median_s"]) / math.log(last / first)
    spread = sum(math.log1p(one["spread_s"] / one["median_s"]) for one in ours)
    spread /= math.log(last / first)
    return exponent, spread, workload in GROWING and exponent > MOST_GROWTH


def compared(workload, peer, size, figures):
    """The ratio as text, the goal as text, whether it is reached (None: no goal), and whether it
    is missed by more than the spread."""
    kind, goal = GOALS.get((workload, peer), (AT_MOST if peer in BOUNDS else FASTER, None))
    if isinstance(goal, dict):
        goal = goal.get(size)
    share, spread = figures["ours_over"], figures["ours_over_spread"]
    percent = f"±{100 * spread / share:.0f}%"
    if kind == FASTER:
        text, aim = f"{1 / share:.2f} times as fast {percent}", f">= {goal:g}" if goal else ""
        most = 1 / goal if goal else None
    else:
        text, aim = f"{share:.2f} of its time {percent}", f"<= {goal:g}" if goal else ""
        most = goal
    if most is None:
        return text, aim, None, False
    return text, aim, share <= most, share - spread > most


def rows(found, missed):
    """The table's rows; what is missed by more than the spread goes into `missed`."""
    for workload, sizes in found.items():
        for size, forms in sorted(sizes.items()):
            ours = forms["ours"]
            common = [workload, f"{size:,}", shown_time(ours)]
            memory = f"{ours['peak_bytes'] / size:.0f}"
            exponent = ""
            grown = growth(workload, sizes) if size == max(sizes) else None
            if grown:
                exponent = f"{grown[0]:.2f}" + (f" (> {MOST_GROWTH})" if grown[2] else "")
                if grown[2] and grown[0] - grown[1] > MOST_GROWTH:
                    missed.append(f"{workload} grows by {grown[0]:.2f}, more than {MOST_GROWTH}")
            for peer in [form for form in forms if form != "ours"] or [None]:
                if peer is None:
                    yield common + ["", "", "", "", "", exponent, memory]
                    continue
                ratio, goal, reached, is_missed = compared(workload, peer, size, forms[peer])
                mark = "" if reached is None else "yes" if reached else "no"
                if is_missed:
                    missed.append(f"{workload}, {size:,}, beside {peer}: {ratio}, not {goal}")
                yield common + [peer, shown_time(forms[peer]), ratio, goal, mark, exponent, memory]


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
    shown = {workload: sizes for workload, sizes in found.items()
             if len(sizes) > 1 and any(len(forms) > 1 for forms in sizes.values())}
    columns = 4
    figure, places = pyplot.subplots(-(-len(shown) // columns), columns, figsize=(15, 10), dpi=80,
                                     squeeze=False)
    for place in places.flat[len(shown):]:
        place.axis("off")
    for place, (workload, sizes) in zip(places.flat, shown.items()):
        for form in dict.fromkeys(form for forms in sizes.values() for form in forms):
            points = sorted((size, 1e9 * forms[form]["median_s"] / size)
                            for size, forms in sizes.items() if form in forms)
            place.loglog(*zip(*points), marker="o", linewidth=2.5 if form == "ours" else 1,
                         color="black" if form == "ours" else None, label=form)
        place.set_title(workload)
        place.set_ylabel("ns each")
        place.grid(True, which="both", alpha=0.2)
        place.legend(fontsize=8)
    figure.tight_layout()
    figure.savefig(file)


def self_test():
    def row(name, share, spread=0.02, seconds=1.0):
        return {"name": name, "ours.median_s": seconds, "ours.spread_s": 0.01 * seconds,
                "ours.peak_bytes": 1, "boxes.median_s": seconds, "boxes.spread_s": 0.0,
                "boxes.ours_over": share, "boxes.ours_over_spread": spread}
    cases = [([row("draw-ordered/10", 1.29)], 0), ([row("draw-ordered/10", 1.31)], 0),
             ([row("draw-ordered/10", 1.33)], 1), ([row("draw-ordered/10", 1.33, 0.1)], 0),
             ([row("draw-ordered/10", 1), row("draw-ordered/100", 1, seconds=15.0)], 1),
             ([row("other/10", 9)], 0)]
    for benchmarks, count in cases:
        missed = []
        found, errors = read({"benchmarks": benchmarks})
        if errors or not list(rows(found, missed)) or len(missed) != count:
            sys.exit(f"bench_table: {missed} for {benchmarks}")
    wrong = {"name": "break/10/iterations:1", "error_occurred": True, "error_message": "differs"}
    if read({"benchmarks": [wrong]})[1] != ["break, 10: differs"]:
        sys.exit("bench_table: misses a row that did not find the same")
    print("bench_table: fails what misses its goal by more than the spread, and nothing else")


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("results", nargs="?")
    parser.add_argument("--plot")
    parser.add_argument("--write-docs")
    parser.add_argument("--check", action="store_true")
    parser.add_argument("--self-test", action="store_true")
    arguments = parser.parse_args()
    if arguments.self_test:
        self_test()
        return
    missed = []
    found, errors = read(json.loads(pathlib.Path(arguments.results).read_text()))
    table = list(rows(found, missed))
    if table:
        print(as_text(table))
    if errors or not table:
        sys.exit("\n".join(f"bench_table: {error}" for error in errors)
                 or "bench_table: nothing was measured")
    if arguments.plot:
        plot(found, arguments.plot)
    if arguments.write_docs:
        file = pathlib.Path(arguments.write_docs)
        before, rest = file.read_text().split(BEGIN)
        after = rest.split(END)[1]
        file.write_text(before + BEGIN + "\n" + as_markdown(table) + "\n" + END + after)
    if arguments.check and missed:
        sys.exit("\n".join(f"bench_table: goal missed: {line}" for line in missed))


if __name__ == "__main__":
    main()
