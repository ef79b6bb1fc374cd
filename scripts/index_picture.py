#!/usr/bin/python3
"""Draws the picture of docs/spatial-index.md: a few buildings, the columns and rows that their ends
fall into, and what one search reads.

usage: index_picture.py FILE.png
"""

import math
import random
import sys

import matplotlib
matplotlib.use("Agg")
from matplotlib import patches, pyplot


def building(rng, x, y):
    """The wall lines of a house of four rooms."""
    walls = [x, x + 9 + rng.uniform(-1, 1), x + 18]
    lines = [((at, y), (at, y + 14)) for at in walls]
    lines += [((walls[0], y), (walls[2], y)), ((walls[0], y + 14), (walls[2], y + 14))]
    for left, right in zip(walls, walls[1:]):
        at = y + rng.uniform(4, 10)
        lines.append(((left, at), (right, at)))
    return lines


def main():
    rng = random.Random(7)
    lines = [line for place in ((0, 0), (30, 3), (62, 0), (2, 24), (58, 25), (84, 22))
             for line in building(rng, *place)]
    ends = sorted(end for line in lines for end in line)
    size = math.isqrt(len(ends)) + 1
    columns, at = [], 0
    while at < len(ends):
        last = min(at + size, len(ends))
        while last < len(ends) and ends[last][0] == ends[last - 1][0]:
            last += 1
        columns.append(ends[at:last])
        at = last
    _, axes = pyplot.subplots(figsize=(11, 5), dpi=90)
    chosen, reach = lines[1], 1.2
    low = (min(p[0] for p in chosen) - reach, min(p[1] for p in chosen) - reach)
    high = (max(p[0] for p in chosen) + reach, max(p[1] for p in chosen) + reach)
    for number, column in enumerate(columns):
        left, right = column[0][0], column[-1][0]
        bottom, top = min(y for _, y in column), max(y for _, y in column)
        met = right >= low[0] and left <= high[0]
        axes.add_patch(patches.Rectangle((left - 0.4, bottom - 0.4), right - left + 0.8,
                                         top - bottom + 0.8, edgecolor="steelblue", linewidth=1.2,
                                         facecolor="#e8f0fa" if met else "none"))
        rows = len(column) // 2 + 1
        for row in range(1, rows):
            y = bottom + (top - bottom) * row / rows
            axes.plot([left - 0.4, right + 0.4], [y, y], color="steelblue", linewidth=0.5)
        axes.text((left + right) / 2, -5, str(number), ha="center", color="steelblue", fontsize=9)
    for start, end in lines:
        axes.plot(*zip(start, end), color="0.55", linewidth=1)
    axes.plot(*zip(*chosen), color="black", linewidth=2.5)
    axes.add_patch(patches.Rectangle(low, high[0] - low[0], high[1] - low[1], facecolor="none",
                                     edgecolor="crimson", linestyle="--"))
    for x, y in ends:
        held = low[0] <= x <= high[0] and low[1] <= y <= high[1]
        axes.plot(x, y, ".", color="crimson" if held else "0.3", markersize=9 if held else 4)
    axes.set_aspect("equal")
    axes.axis("off")
    pyplot.tight_layout()
    pyplot.savefig(sys.argv[1])


if __name__ == "__main__":
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    main()
