#!/usr/bin/python3
"""Breaks the walls of drawings and counts their rooms: what every way of scaling out runs.

usage: work.py [--retry] FOLDER OUT DRAWING...

DRAWINGs are named by their paths below FOLDER; results go to the same paths below OUT: the drawing
that was made, and behind it a row, DRAWING.json. A drawing that has a row is not worked on again,
so a run that was ended goes on where it was; --retry works on those that failed. A drawing that
fails keeps no other back: its row says why. One at which the process died is known by the mark that
it left, and is not tried again without --retry.
"""

import argparse
import json
import os
import pathlib
import sys
import time

import quoin


def break_and_count(source, target):
    """What a row tells of a drawing."""
    with quoin.Drawing(source) as drawing:
        lines, handles = drawing.lines()
        pieces, index = quoin.break_lines(lines, drawing.capture)
        drawing.replace(pieces, handles[index])
        drawing.save(target)
        unit = drawing.mm_per_unit
    rooms = quoin.find_rooms(quoin.find_walls(lines, mm_per_unit=unit), capture=10.0 / unit,
                             min_area=0.25e6 / unit**2, min_width=150.0 / unit)
    return {"lines": len(lines), "pieces": len(pieces), "rooms": len(rooms),
            "net_m2": round(sum(room.net_area for room in rooms) * unit**2 / 1e6, 2)}


def write_whole(path, text):
    """The file is there whole, or not at all."""
    beside = path.with_name(f"{path.name}.{os.getpid()}")
    beside.write_text(text, "utf-8")
    os.replace(beside, path)


def work(folder, out, name, retry=False):
    """The row of a drawing, made now or before."""
    target = pathlib.Path(out) / name
    row_path = target.with_name(target.name + ".json")
    mark = target.with_name(target.name + ".running")
    if row_path.exists():
        row = json.loads(row_path.read_text("utf-8"))
        if not (retry and row["error"]):
            return row
    target.parent.mkdir(parents=True, exist_ok=True)
    row = {"drawing": name, "error": ""}
    begin = time.monotonic()
    if mark.exists() and not retry:
        row["error"] = "the process died at this drawing"
    else:
        mark.touch()
        try:
            row.update(break_and_count(pathlib.Path(folder) / name, target))
        except quoin.Error as error:
            row["error"] = str(error)
        except Exception as error:  # whatever it is, the others go on
            row["error"] = f"{type(error).__name__}: {error}"
    row["seconds"] = round(time.monotonic() - begin, 4)
    write_whole(row_path, json.dumps(row))
    mark.unlink(missing_ok=True)
    return row


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--retry", action="store_true")
    parser.add_argument("folder")
    parser.add_argument("out")
    parser.add_argument("drawings", nargs="+")
    arguments = parser.parse_args()
    rows = [work(arguments.folder, arguments.out, name, arguments.retry)
            for name in arguments.drawings]
    sys.exit(1 if any(row["error"] for row in rows) else 0)


if __name__ == "__main__":
    main()
