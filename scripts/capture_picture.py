#!/usr/bin/python3
"""Draws the picture of the capture distance for docs/commands.md: which ends cut a line.

usage: capture_picture.py FILE.svg
"""

import sys

CAPTURE = 26  # the capture distance on the page
PANEL = 230
BASE = 82     # where the line that may be cut lies

WALL, PIECE, STEM, REACH, TEXT = "#444", "#c2571a", "#1f6f8b", "#8fb8c8", "#333"


def line(x1, y1, x2, y2, color, width=4):
    return (f'<line x1="{x1}" y1="{y1}" x2="{x2}" y2="{y2}" stroke="{color}" '
            f'stroke-width="{width}"/>')


def text(x, y, words, size=13, anchor="middle"):
    return (f'<text x="{x}" y="{y}" font-family="sans-serif" font-size="{size}" fill="{TEXT}" '
            f'text-anchor="{anchor}">{words}</text>')


def reach(x, y):
    return (f'<circle cx="{x}" cy="{y}" r="{CAPTURE}" fill="{REACH}" fill-opacity="0.35" '
            f'stroke="{STEM}" stroke-dasharray="4 3"/>')


def dot(x, y):
    return f'<circle cx="{x}" cy="{y}" r="5" fill="#c0182b"/>'


def panel(number, gap, at, words, cut):
    """A line from 20 to 210 and a stem whose end is `gap` below it, at `at` along it."""
    left = number * PANEL
    start, end, foot, tip = left + 20, left + 210, left + at, BASE + gap
    parts = [reach(foot, tip)]
    parts.append(line(start, BASE, foot if cut else end, BASE, WALL))
    if cut:
        parts.append(line(foot, BASE, end, BASE, PIECE))
    parts.append(line(foot, tip, foot, 190, STEM))
    if cut:
        parts.append(dot(foot, BASE))
    for row, part in enumerate(words):
        parts.append(text(left + PANEL / 2, 222 + 17 * row, part))
    return parts


def main():
    parts = []
    parts += panel(0, 15, 115, ("closer than the distance:", "cut at the foot of the end"), True)
    parts += panel(1, 40, 115, ("farther away:", "not cut"), False)
    parts += panel(2, 8, 38, ("the foot is as near", "to the line's own end: not cut"), False)
    parts += panel(3, -45, 115, ("no end near by,", "the lines only cross: not cut"), False)
    parts.append(line(14, BASE + 15, 14, BASE + 15 + CAPTURE, TEXT, 1))
    parts += [line(10, y, 18, y, TEXT, 1) for y in (BASE + 15, BASE + 15 + CAPTURE)]
    parts.append(text(22, BASE + 15 + CAPTURE - 8, "capture", 11, "start"))
    parts.append(text(22, BASE + 15 + CAPTURE + 5, "distance", 11, "start"))
    width, height = 4 * PANEL, 256
    with open(sys.argv[1], "w", encoding="utf-8") as stream:
        stream.write(f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {width} {height}" '
                     f'width="{width}" height="{height}">\n'
                     f'<rect width="{width}" height="{height}" fill="white"/>\n')
        stream.write("\n".join(parts) + "\n</svg>\n")


if __name__ == "__main__":
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    main()
