#!/usr/bin/python3
"""Writes a large plan for measuring: a town of rooms, or a grid of axes.

usage: make_large_plan.py [--kind rooms|grid|slanted] LINES FILE

rooms    long walls with a cross wall at every room, so that nearly every wall has T-junctions;
         every other long wall comes in two halves that touch. All on layer A-WALL, with as many
         text entities on A-NOTE as there are long walls.
grid     axes along X and Y on layer S-GRID, half of them each, that all cross.
slanted  the same, turned by 30 degrees.

Every plan has LINES lines and is the same each time. The drawing is R2000 in millimetres, and
is written as text: libraries take longer than what is measured.
"""

import argparse
import math

ROOM = 4000.0  # millimetres, the side of a room
ROOMS = 10     # along a long wall
STREET = 6000.0


class Writer:
    """The entities of a drawing, counted, with handles of their own."""

    def __init__(self, stream):
        self.stream = stream
        self.handle = 0x100
        self.lines = 0

    def entity(self, kind, marker, layer, tags):
        self.handle += 1
        self.stream.write(f"0\n{kind}\n5\n{self.handle:X}\n330\n1F\n100\nAcDbEntity\n8\n{layer}\n"
                          f"100\n{marker}\n{tags}")

    def line(self, layer, x1, y1, x2, y2):
        self.lines += 1
        self.entity("LINE", "AcDbLine", layer,
                    f"10\n{x1!r}\n20\n{y1!r}\n30\n0.0\n11\n{x2!r}\n21\n{y2!r}\n31\n0.0\n")

    def text(self, layer, x, y, height, text):
        self.entity("TEXT", "AcDbText", layer,
                    f"10\n{x!r}\n20\n{y!r}\n30\n0.0\n40\n{height!r}\n1\n{text}\n100\nAcDbText\n")


def rooms(count):
    """(kind, ...) of everything in a town with `count` walls, block by block."""
    walls = 0
    block = 0
    across = max(1, math.isqrt(count // 250))  # blocks side by side
    while walls < count:
        left = (block % across) * (ROOMS * ROOM + STREET)
        bottom = (block // across) * (ROOMS * ROOM + STREET)
        block += 1
        right = left + ROOMS * ROOM
        for storey in range(ROOMS + 1):
            y = bottom + storey * ROOM
            middle = left + 0.5 * (right - left) + 250.0
            found = [(left, y, right, y)] if storey % 2 == 0 else \
                [(left, y, middle, y), (middle, y, right, y)]
            if storey < ROOMS:
                # Doors' widths shift the cross walls, so that walls of two storeys do not meet.
                shift = 500.0 * (storey % 2)
                found += [(left + i * ROOM + (shift if 0 < i < ROOMS else 0.0), y,
                           left + i * ROOM + (shift if 0 < i < ROOMS else 0.0), y + ROOM)
                          for i in range(ROOMS + 1)]
            yield ("text", left + 300.0, y + 300.0, f"storey {storey} of block {block}")
            for wall in found:
                if walls == count:
                    return
                walls += 1
                yield ("line", *wall)


def grid(count, turned_by):
    """Axes of both directions that all cross."""
    cosine, sine = math.cos(turned_by), math.sin(turned_by)
    size = 10.0 * count
    for i in range(count):
        at = 20.0 * (i // 2) + 5.0
        ends = ((at, -30.0), (at, size)) if i % 2 else ((-30.0, at), (size, at))
        turned = [(cosine * x - sine * y, sine * x + cosine * y) for x, y in ends]
        yield ("line", *turned[0], *turned[1])


HEAD = ("0\nSECTION\n2\nHEADER\n9\n$ACADVER\n1\nAC1015\n9\n$INSUNITS\n70\n4\n9\n$HANDSEED\n5\n"
        "{seed:X}\n0\nENDSEC\n")


def table(name, handle, entries):
    text = f"0\nTABLE\n2\n{name}\n5\n{handle:X}\n330\n0\n100\nAcDbSymbolTable\n70\n{len(entries)}\n"
    return text + "".join(entries) + "0\nENDTAB\n"


def layer(handle, name):
    return (f"0\nLAYER\n5\n{handle:X}\n330\n2\n100\nAcDbSymbolTableRecord\n100\n"
            f"AcDbLayerTableRecord\n2\n{name}\n70\n0\n62\n7\n6\nCONTINUOUS\n")


def linetype(handle, name):
    return (f"0\nLTYPE\n5\n{handle:X}\n330\n5\n100\nAcDbSymbolTableRecord\n100\n"
            f"AcDbLinetypeTableRecord\n2\n{name}\n70\n0\n3\n\n72\n65\n73\n0\n40\n0.0\n")


def block_record(handle, name):
    return (f"0\nBLOCK_RECORD\n5\n{handle:X}\n330\n1\n100\nAcDbSymbolTableRecord\n100\n"
            f"AcDbBlockTableRecord\n2\n{name}\n")


def block(name, handle, owner):
    return (f"0\nBLOCK\n5\n{handle:X}\n330\n{owner:X}\n100\nAcDbEntity\n8\n0\n100\nAcDbBlockBegin\n"
            f"2\n{name}\n70\n0\n10\n0.0\n20\n0.0\n30\n0.0\n3\n{name}\n1\n\n0\nENDBLK\n"
            f"5\n{handle + 1:X}\n330\n{owner:X}\n100\nAcDbEntity\n8\n0\n100\nAcDbBlockEnd\n")


def write(stream, kind, count):
    stream.write(HEAD.format(seed=0x1000 + 3 * count))
    stream.write("0\nSECTION\n2\nTABLES\n")
    stream.write(table("LTYPE", 5, [linetype(0x14, "ByBlock"), linetype(0x15, "ByLayer"),
                                    linetype(0x16, "CONTINUOUS")]))
    stream.write(table("LAYER", 2, [layer(0x10, "0"), layer(0x11, "A-WALL"),
                                    layer(0x12, "A-NOTE"), layer(0x13, "S-GRID")]))
    stream.write(table("BLOCK_RECORD", 1, [block_record(0x1F, "*Model_Space"),
                                           block_record(0x1B, "*Paper_Space")]))
    stream.write("0\nENDSEC\n0\nSECTION\n2\nBLOCKS\n")
    stream.write(block("*Model_Space", 0x20, 0x1F) + block("*Paper_Space", 0x23, 0x1B))
    stream.write("0\nENDSEC\n0\nSECTION\n2\nENTITIES\n")
    writer = Writer(stream)
    if kind == "rooms":
        for what, *values in rooms(count):
            if what == "line":
                writer.line("A-WALL", *values)
            else:
                writer.text("A-NOTE", *values[:2], 250.0, values[2])
    else:
        for _, *ends in grid(count, math.radians(30.0) if kind == "slanted" else 0.0):
            writer.line("S-GRID", *ends)
    stream.write("0\nENDSEC\n0\nSECTION\n2\nOBJECTS\n0\nDICTIONARY\n5\nC\n330\n0\n100\n"
                 "AcDbDictionary\n281\n1\n0\nENDSEC\n0\nEOF\n")
    return writer.lines


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n", 1)[0])
    parser.add_argument("--kind", choices=["rooms", "grid", "slanted"], default="rooms")
    parser.add_argument("lines", type=int)
    parser.add_argument("file")
    arguments = parser.parse_args()
    with open(arguments.file, "w", encoding="ascii", newline="") as stream:
        write(stream, arguments.kind, arguments.lines)


if __name__ == "__main__":
    main()
