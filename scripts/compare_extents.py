#!/usr/bin/python3
"""Compares the extents of every entity of drawings with those that ezdxf computes.

usage: compare_extents.py --probe geometry_probe [--list] FILE-OR-FOLDER...

ezdxf flattens curves, so that its boxes may be smaller by its flattening distance; it measures
text with a font of its own. The table counts, for each kind:

  same       no coordinate differs by more than 1e-9 of the size
  flattened  none by more than the flattening distance
  text       they differ, and the entity is or shows text
  differ     they differ
  ours       only we measure it
  theirs     only ezdxf does
  neither

--list names each entity that differs. Ends with 1 when one differs, or only ezdxf measures it,
for no known reason. A folder that does not exist is left out.
"""

import argparse
import collections
import pathlib
import subprocess
import sys

import ezdxf
from ezdxf import bbox, disassemble, recover
from ezdxf.math import BoundingBox

# Where the plotting library is installed, ezdxf measures text with whatever fonts that finds;
# without, by a rule of its own, the same on every machine.
ezdxf.options.use_matplotlib = False

FLATTENING = 1e-3
ROUNDING = 1e-9
COLUMNS = ["same", "flattened", "text", "differ", "ours", "theirs", "neither"]
TEXTS = {"TEXT", "MTEXT", "ATTRIB", "ATTDEF", "TOLERANCE"}


def explanation(entity):
    """Why ezdxf's box is another one, where that is known; else nothing."""
    kind = entity.dxftype()
    if kind in ("LWPOLYLINE", "POLYLINE") and entity.has_width:
        return "ezdxf mitres the corners of wide polylines and flattens their arcs"
    fitted = 2 | 4  # curve fit or spline fit vertices
    if kind == "POLYLINE" and entity.dxf.flags & fitted:
        return "ezdxf measures the frame of smoothed polylines, we what is shown"
    if kind == "INSERT" and any(part.dxf.get("invisible") for part in entity.block() or ()
                                if part.dxf.is_supported("invisible")):
        return "ezdxf counts the invisible parts of a block, we what is shown"
    if kind == "SPLINE" and not entity.control_points:
        return "ezdxf leads splines that have fit points alone out of their ends another way"
    return ""


def documents(paths):
    for path in paths:
        files = sorted(path.rglob("*.dxf")) if path.is_dir() else [path]
        for file in files:
            if not file.exists():
                continue
            try:
                yield file, ezdxf.readfile(file)
            except (ezdxf.DXFError, OSError, ValueError):
                try:
                    yield file, recover.readfile(file)[0]
                except (ezdxf.DXFError, OSError, ValueError) as error:
                    print(f"{file.name}: ezdxf cannot read it: {error}")


def probed(probe, file):
    """Handle -> (status, six numbers or None)."""
    result = subprocess.run([probe, "extents", str(file)], capture_output=True, text=True)
    if result.returncode:
        sys.exit(f"{file}: {result.stderr}")
    boxes = {}
    for line in result.stdout.splitlines():
        handle, _, status, *numbers = line.split()
        boxes[handle] = (status, [float(number) for number in numbers] or None)
    return boxes


def box_of(entity):
    try:
        if entity.dxftype() == "ELLIPSE":  # its paths are Bézier curves, off by 1e-4 of the size
            box = BoundingBox(entity.flattening(FLATTENING))
        else:
            box = bbox.extents([entity])
    except Exception as error:  # what it makes of odd records is its own business
        return f"{type(error).__name__}: {error}"
    return [*box.extmin, *box.extmax] if box.has_data else None


def shows_text(entity):
    try:
        if entity.dxftype() == "INSERT" and (entity.attribs or any(
                part.dxftype() == "ATTDEF" for part in entity.block() or ())):
            return True
        return entity.dxftype() in TEXTS or any(
            part.dxftype() in TEXTS for part in disassemble.recursive_decompose([entity]))
    except Exception:
        return True


def verdict(entity, ours, theirs):
    if isinstance(theirs, str):
        theirs = None
    if not ours or not theirs:
        return "ours" if ours else "theirs" if theirs else "neither"
    size = max(1.0, *(abs(value) for value in ours))
    worst = max(abs(a - b) for a, b in zip(ours, theirs))
    if worst <= ROUNDING * size:
        return "same"
    if worst <= FLATTENING:
        return "flattened"
    return "text" if shows_text(entity) else "differ"


def print_table(counts, columns):
    """Counts by kind and verdict, as a table of a document."""
    print("| kind | " + " | ".join(columns) + " |")
    print("|---|" + "---:|" * len(columns))
    for kind in sorted(counts):
        print(f"| {kind} | " + " | ".join(str(counts[kind][column]) for column in columns) + " |")


def arguments_of(description):
    parser = argparse.ArgumentParser(description=description)
    parser.add_argument("--probe", required=True)
    parser.add_argument("--list", action="store_true")
    parser.add_argument("paths", nargs="+", type=pathlib.Path)
    disassemble.Primitive.max_flattening_distance = FLATTENING
    return parser.parse_args()


def main():
    arguments = arguments_of(__doc__.splitlines()[0])
    counts = collections.defaultdict(collections.Counter)
    unexplained = 0
    files = 0
    for file, document in documents(arguments.paths):
        files += 1
        boxes = probed(arguments.probe, file)
        for layout in document.layouts:
            for entity in layout:
                handle = (entity.dxf.handle or "").lstrip("0").upper()
                if handle not in boxes:
                    continue
                status, ours = boxes[handle]
                theirs = box_of(entity)
                answer = verdict(entity, ours, theirs)
                kind = entity.dxftype()
                counts[kind][answer] += 1
                is_odd = answer in ("differ", "theirs")
                reason = explanation(entity) if is_odd else ""
                unexplained += is_odd and not reason
                if arguments.list and (is_odd or answer in ("text", "ours")):
                    print(f"{file.name} {kind} {handle} {answer} {status} {reason}\n"
                          f"  ours   {ours}\n  theirs {theirs}")
    if not files:
        print("no drawings to compare")
        return 0
    print_table(counts, COLUMNS)
    return 1 if unexplained else 0


if __name__ == "__main__":
    sys.exit(main())
