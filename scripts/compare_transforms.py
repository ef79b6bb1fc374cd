#!/usr/bin/python3
"""Compares the transforms of every entity of drawings with those of ezdxf.

usage: compare_transforms.py --probe geometry_probe [--list] FILE-OR-FOLDER...

Every drawing is moved, turned, scaled, mirrored, turned in space and stretched: once by the
embedded host, once entity by entity by ezdxf. Then ezdxf reads both. The table counts, for each
kind over all maps:

  same     every coordinate, vector, length and angle, and the box of what shows, agree
  shape    the box agrees, the numbers that describe it do not
  differ   the boxes differ
  refused  the host returns an error, the entity stays
  theirs   ezdxf refuses, or replaces the entity by others
  neither  both refuse

--list names each entity that differs. Ends with 1 when one differs for no known reason. A folder
that does not exist is left out.
"""

import collections
import math
import pathlib
import subprocess
import sys
import tempfile

from ezdxf.math import Matrix44, Vec2, Vec3

import compare_extents

COLUMNS = ["same", "shape", "differ", "refused", "theirs", "neither"]
TOLERANCE = 1e-6  # of the size: ezdxf builds its planes anew, and its text boxes are coarse
FLATTENED = 1e-4  # of the size: how far its chains of points may lie inside turned curves
MAPS = {
    "moved": Matrix44.translate(12.5, -7.25, 3.0),
    "turned": Matrix44.z_rotate(math.radians(30.0)),
    "scaled": Matrix44.scale(2.5, 2.5, 2.5),
    "mirrored": Matrix44.scale(-1.0, 1.0, 1.0),
    "turned in space": Matrix44.axis_rotate((1.0, 2.0, 3.0), math.radians(40.0)),
    "stretched": Matrix44.scale(2.0, 1.0, 1.0),
}
# Why the boxes differ, by kind and map.
EXPLAINED = {
    ("INSERT", "stretched"): "ezdxf stretches the wrong axis of a turned block",
    ("LEADER", "scaled"): "ezdxf leaves the size of the leader's text as it is",
    ("MLINE", "mirrored"): "ezdxf puts the elements on the other side",
    ("MTEXT", "scaled"): "ezdxf lengthens the direction, and wraps the text anew",
}
ALONG_TWO_POINTS = (3, 5)  # aligned and fit


def explanation(entity, name):
    """Why the boxes of an entity differ after a map; empty where nobody knows."""
    kind = entity.dxftype()
    if kind == "INSERT" and name in ("scaled", "mirrored") and entity.mcount > 1:
        return "ezdxf leaves the distances of an array as they are"
    if kind == "TEXT" and name == "mirrored" and entity.dxf.get("halign", 0) in ALONG_TWO_POINTS:
        return "ezdxf turns a text between two points over"
    return EXPLAINED.get((kind, name), "")


def rows_of(matrix):
    """The twelve numbers of the probe; ezdxf's matrices act on row vectors."""
    columns = [matrix.transform_direction(axis) for axis in
               (Vec3(1, 0, 0), Vec3(0, 1, 0), Vec3(0, 0, 1))] + [matrix.transform(Vec3())]
    return [repr(column[row]) for row in range(3) for column in columns]


def numbers_of(entity):
    """What describes the entity, by name; angles modulo a turn."""
    values = {}
    for name, value in entity.dxfattribs().items():
        if isinstance(value, (Vec2, Vec3)):
            values[name] = tuple(Vec3(value))
        elif isinstance(value, float):
            isangle = "angle" in name or name == "rotation"
            values[name] = (value % 360.0,) if isangle else (value,)
    kind = entity.dxftype()
    if kind == "LWPOLYLINE":
        values["points"] = tuple(v for point in entity.lwpoints for v in point)
    elif kind == "POLYLINE":
        values["points"] = tuple(v for vertex in entity.vertices for v in vertex.dxf.location)
    elif kind == "SPLINE":
        values["points"] = tuple(v for point in entity.control_points for v in point)
    elif kind == "MESH":
        values["points"] = tuple(v for point in entity.vertices for v in point)
    return values


def default_of(name):
    """What a tag that is not there stands for."""
    return ((0.0, 0.0, 1.0) if name == "extrusion" else
            (1.0,) if name in ("xscale", "yscale", "zscale", "width") else (0.0,))


def agree(ours, theirs, size):
    for name in ours.keys() | theirs.keys():
        here, there = (side.get(name, default_of(name)) for side in (ours, theirs))
        if len(here) != len(there):
            return False
        for a, b in zip(here, there):
            near = abs(a - b) <= TOLERANCE * max(size, 1.0)
            turn = abs(abs(a - b) - 360.0) <= TOLERANCE
            if not near and not (turn and ("angle" in name or name == "rotation")):
                return False
    return True


def size_of(box):
    return max(1.0, *(abs(v) for v in box)) if isinstance(box, list) else 1.0


def same_box(ours, theirs):
    if not isinstance(ours, list) or not isinstance(theirs, list):
        return not isinstance(ours, list) and not isinstance(theirs, list)
    room = FLATTENED * size_of(ours) + 2.0 * compare_extents.FLATTENING
    return all(abs(a - b) <= room for a, b in zip(ours, theirs))


def verdict(ours, theirs, status, matrix):
    """`ours` is from the drawing that the host wrote, `theirs` from the one it read."""
    try:
        theirs.transform(matrix)
        is_refused = False
    except Exception:  # TransformError, NotImplementedError, or odd records
        is_refused = True
    if status != "eOk":
        return "neither" if is_refused else "refused"
    if is_refused:
        return "theirs"
    our_box, their_box = compare_extents.box_of(ours), compare_extents.box_of(theirs)
    if not same_box(our_box, their_box):
        return "differ"
    return "same" if agree(numbers_of(ours), numbers_of(theirs), size_of(our_box)) else "shape"


def probed(probe, file, out, matrix):
    result = subprocess.run([probe, "transform", str(file), str(out), *rows_of(matrix)],
                            capture_output=True, text=True)
    if result.returncode:
        sys.exit(f"{file}: {result.stderr}")
    return {line.split()[0]: line.split()[2] for line in result.stdout.splitlines()}


def layout_entities(document):
    return {(entity.dxf.handle or "").lstrip("0").upper(): entity
            for layout in document.layouts for entity in layout}


def main():
    arguments = compare_extents.arguments_of(__doc__.splitlines()[0])
    counts = collections.defaultdict(collections.Counter)
    unexplained = 0
    folder = pathlib.Path(tempfile.mkdtemp())
    for name, matrix in MAPS.items():
        for file, document in compare_extents.documents(arguments.paths):
            out = folder / "out.dxf"
            statuses = probed(arguments.probe, file, out, matrix)
            written = next(iter(compare_extents.documents([out])), (None, None))[1]
            if written is None:
                sys.exit(f"{file}: ezdxf cannot read what was written after it was {name}")
            ours = layout_entities(written)
            for handle, theirs in layout_entities(document).items():
                if handle not in ours or handle not in statuses:
                    continue
                kind = theirs.dxftype()
                answer = verdict(ours[handle], theirs, statuses[handle], matrix)
                counts[kind][answer] += 1
                is_odd = answer == "differ"
                unexplained += is_odd and not explanation(theirs, name)
                if arguments.list and (is_odd or answer == "shape"):
                    print(f"{file.name} {name} {kind} {handle} {answer} {statuses[handle]} "
                          f"{explanation(theirs, name)}\n"
                          f"  ours   {compare_extents.box_of(ours[handle])} "
                          f"{numbers_of(ours[handle])}\n"
                          f"  theirs {compare_extents.box_of(theirs)} {numbers_of(theirs)}")
            out.unlink()
    folder.rmdir()
    if not counts:
        print("no drawings to compare")
        return 0
    compare_extents.print_table(counts, COLUMNS)
    return 1 if unexplained else 0


if __name__ == "__main__":
    sys.exit(main())
