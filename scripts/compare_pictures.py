#!/usr/bin/python3
"""Compares what pictures show with what two other renderers show of the same drawings.

usage: compare_pictures.py --quoin PROGRAM [--check DOCUMENT] [--quick] [DRAWING...]
       compare_pictures.py --self-test

Each kind of entity of a drawing is drawn alone, with a frame around all of the drawing that tells
which dot is which place: by the program, by LibreCAD (its PDF is read as the lines that are in it)
and by ezdxf's drawing add-on. For every entity it is counted whether ink appears where its box
says. What is missing in ours and present in another one is a failure, unless DOCUMENT lists the
kind with a reason, in a table with rows "| KIND | drawings (a pattern) | reason |".

Without drawings all DXF files of examples/ and of QUOIN_SHARED_DATA are taken; --quick takes the
sheet of kinds and one plan of examples/. Where LibreCAD is not installed ezdxf is the only other one.
"""

import argparse
import collections
import fnmatch
import logging
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import zlib

import ezdxf
import ezdxf.recover
import numpy
from ezdxf import bbox
from ezdxf.addons.drawing import Frontend, RenderContext
from ezdxf.addons.drawing.backend import Backend
from PIL import Image, ImageDraw

ROOT = pathlib.Path(__file__).resolve().parent.parent
FRAME_LAYER = "QUOIN-CHECK-FRAME"
MAGENTA = (255, 0, 255)
DOTS = 1600       # of the longer side of the frame
SLACK = 2         # dots around a box: line widths and rounding
MARGIN = 0.05     # of the drawing, between it and the frame


# --- LibreCAD: the lines of a PDF page ------------------------------------------------------------

TOKEN = re.compile(rb"\[[^\]]*\]|/[^\s/\[\]<>()]+|\([^)]*\)|<[^>]*>|[^\s/\[\]<>()]+")


def multiplied(a, b):
    """The matrix that does `a` first."""
    return (a[0] * b[0] + a[1] * b[2], a[0] * b[1] + a[1] * b[3],
            a[2] * b[0] + a[3] * b[2], a[2] * b[1] + a[3] * b[3],
            a[4] * b[0] + a[5] * b[2] + b[4], a[4] * b[1] + a[5] * b[3] + b[5])


def page_streams(data):
    for match in re.finditer(rb"stream\r?\n", data):
        end = data.find(b"endstream", match.end())
        try:
            text = zlib.decompress(data[match.end():end])
        except zlib.error:
            continue
        if re.search(rb"\b(?:m|re)\b", text) and b" cm" in text[:400]:
            yield text


def pdf_paths(data):
    """(points, is filled, colour) of every path that a page draws, in the page's units."""
    for text in page_streams(data):
        matrix = (1, 0, 0, 1, 0, 0)
        stroke = fill = (0.0, 0.0, 0.0)
        stack, numbers, paths = [], [], []
        for token in TOKEN.findall(text):
            try:
                numbers.append(float(token))
                continue
            except ValueError:
                pass
            place = lambda x, y: (matrix[0] * x + matrix[2] * y + matrix[4],
                                  matrix[1] * x + matrix[3] * y + matrix[5])
            if token == b"q":
                stack.append((matrix, stroke, fill))
            elif token == b"Q" and stack:
                matrix, stroke, fill = stack.pop()
            elif token == b"cm" and len(numbers) >= 6:
                matrix = multiplied(tuple(numbers[-6:]), matrix)
            elif token in (b"SCN", b"RG") and len(numbers) >= 3:
                stroke = tuple(numbers[-3:])
            elif token in (b"scn", b"rg") and len(numbers) >= 3:
                fill = tuple(numbers[-3:])
            elif token == b"m" and len(numbers) >= 2:
                paths.append([place(*numbers[-2:])])
            elif token == b"l" and len(numbers) >= 2 and paths:
                paths[-1].append(place(*numbers[-2:]))
            elif token == b"c" and len(numbers) >= 6 and paths:
                curve = numbers[-6:]
                paths[-1] += [place(*curve[i:i + 2]) for i in (0, 2, 4)]
            elif token == b"re" and len(numbers) >= 4:
                x, y, width, height = numbers[-4:]
                paths.append([place(x, y), place(x + width, y), place(x + width, y + height),
                              place(x, y + height), place(x, y)])
            elif token == b"h" and paths:
                paths[-1].append(paths[-1][0])
            elif token in (b"S", b"s", b"f", b"F", b"f*", b"B", b"B*", b"b", b"b*"):
                is_filled = token not in (b"S", b"s")
                yield from ((path, is_filled, fill if is_filled else stroke) for path in paths)
                paths = []
            elif token == b"n":
                paths = []
            elif token == b"Do":
                yield [place(0, 0), place(1, 0), place(1, 1), place(0, 1)], True, (0.5, 0.5, 0.5)
            numbers = []


def librecad_ink(drawing, folder):
    """A picture of what LibreCAD prints, cut to the frame; None where it prints nothing."""
    page = drawing.with_suffix(".pdf")
    page.unlink(missing_ok=True)
    try:
        subprocess.run(["librecad", "dxf2pdf", "-a", drawing.name], timeout=120,
                       cwd=folder, env={**os.environ, "QT_QPA_PLATFORM": "offscreen",
                                        "HOME": str(folder), "XDG_RUNTIME_DIR": str(folder)},
                       stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, check=False)
        paths = list(pdf_paths(page.read_bytes()))
    except (OSError, subprocess.TimeoutExpired):
        return None
    frame = [point for path, _, color in paths if color == (1, 0, 1) for point in path]
    if not frame:
        return None
    left, right = min(x for x, _ in frame), max(x for x, _ in frame)
    low, high = min(y for _, y in frame), max(y for _, y in frame)
    scale = DOTS / max(right - left, high - low, 1e-9)
    image = Image.new("1", (round((right - left) * scale) + 1, round((high - low) * scale) + 1))
    draw = ImageDraw.Draw(image)
    for path, is_filled, color in paths:
        if color in ((1, 0, 1), (1, 1, 1)):
            continue
        points = [((x - left) * scale, (high - y) * scale) for x, y in path]
        if is_filled and len(points) > 2:
            draw.polygon(points, fill=1, outline=1)
        else:
            draw.line(points + points[:1] if len(points) == 1 else points, fill=1)
    return numpy.array(image)


# --- ezdxf: who draws anything --------------------------------------------------------------------


class Witness(Backend):
    """Notes which entities draw something."""

    def __init__(self):
        super().__init__()
        self.seen = set()

    def note(self, *_, **__):
        if self.entity_stack:
            self.seen.add(id(self.entity_stack[0][0]))

    draw_point = draw_line = draw_filled_polygon = draw_filled_paths = draw_path = note

    def draw_solid_lines(self, lines, properties):
        if list(lines):
            self.note()

    def draw_text(self, text, transform, properties, cap_height):
        if text.strip():
            self.note()

    def set_background(self, color):
        pass

    def get_font_measurements(self, cap_height, font=None):
        from ezdxf.tools.fonts import FontMeasurements
        return FontMeasurements(0, cap_height, 0.7 * cap_height, 0.3 * cap_height)

    def get_text_line_width(self, text, cap_height, font=None):
        return 0.7 * cap_height * len(text)

    def clear(self):
        pass

    def finalize(self):
        pass


def drawn_by_ezdxf(document):
    witness = Witness()
    frontend = Frontend(RenderContext(document), witness)
    frontend.log_message = lambda message: None
    for entity in list(document.modelspace()):
        try:
            frontend.draw_entities([entity])
        except Exception:  # the renderer's own trouble with one entity
            witness.entity_stack.clear()
    return witness.seen


# --- ours -------------------------------------------------------------------------------------------


def has_picture_command(program):
    return subprocess.run([program, "picture", "--help"], capture_output=True).returncode == 0


def our_ink(program, is_command, drawing, folder):
    picture = folder / "ours.png"
    words = ["picture", drawing, "-o", picture] if is_command else \
        ["extents", drawing, "--all", "--picture", picture]
    run = subprocess.run([program, *words], capture_output=True)
    if run.returncode != 0:
        raise RuntimeError(run.stderr.decode().strip())
    dots = numpy.array(Image.open(picture).convert("RGB")).astype(int)
    red, green, blue = dots[..., 0], dots[..., 1], dots[..., 2]
    if is_command:
        is_frame = (red > 180) & (green < 120) & (blue > 180)
    else:
        is_frame = (red > 150) & (green < 90) & (blue < 110)
    # The legend has a short stroke of that colour too.
    rows = numpy.where(is_frame.sum(1) > 0.2 * is_frame.sum(1).max())[0]
    columns = numpy.where(is_frame.sum(0) > 0.2 * is_frame.sum(0).max())[0]
    ink = (dots.min(2) < 245)[rows[0]:rows[-1] + 1, columns[0]:columns[-1] + 1]
    # The frame itself; inside, its colour may be that of the drawing.
    inner = numpy.zeros_like(ink)
    inner[2 * SLACK:-2 * SLACK, 2 * SLACK:-2 * SLACK] = ink[2 * SLACK:-2 * SLACK,
                                                            2 * SLACK:-2 * SLACK]
    return inner


# --- both together ------------------------------------------------------------------------------------


def boxes_of(document):
    """The boxes of the entities that show on paper and are somewhere."""
    hidden = {layer.dxf.name.lower() for layer in document.layers
              if layer.is_off() or layer.is_frozen() or not layer.dxf.get("plot", 1)} | {"defpoints"}
    cache = bbox.Cache()
    boxes = {}
    for entity in document.modelspace():
        is_known = entity.dxf.is_supported("layer")  # else ezdxf only keeps its tags
        if is_known and (entity.dxf.get("layer", "0").lower() in hidden
                         or entity.dxf.get("invisible", 0)):
            continue
        try:
            box = bbox.extents([entity], cache=cache)
        except Exception:  # an entity that ezdxf cannot measure
            continue
        if box.has_data and all(map(numpy.isfinite, (*box.extmin, *box.extmax))):
            boxes[id(entity)] = (box.extmin.x, box.extmin.y, box.extmax.x, box.extmax.y)
    return boxes


def add_frame(document, boxes):
    left, low = (min(box[i] for box in boxes) for i in (0, 1))
    right, high = (max(box[i] for box in boxes) for i in (2, 3))
    gap = MARGIN * max(right - left, high - low, 1e-3)
    left, low, right, high = left - gap, low - gap, right + gap, high + gap
    document.layers.add(FRAME_LAYER, true_color=ezdxf.rgb2int(MAGENTA), color=6)
    corners = [(left, low), (right, low), (right, high), (left, high)]
    lines = [document.modelspace().add_line(corners[i - 1], corners[i], dxfattribs={
        "layer": FRAME_LAYER, "color": 6, "true_color": ezdxf.rgb2int(MAGENTA)}) for i in range(4)]
    return lines, (left, low, right, high)


def shows(ink, box, frame):
    """Whether there is ink in a box."""
    if ink is None:
        return False
    height, width = ink.shape
    across = (width - 1) / (frame[2] - frame[0])
    up = (height - 1) / (frame[3] - frame[1])
    left = max(0, int((box[0] - frame[0]) * across) - SLACK)
    right = int((box[2] - frame[0]) * across) + SLACK + 1
    top = max(0, int((frame[3] - box[3]) * up) - SLACK)
    bottom = int((frame[3] - box[1]) * up) + SLACK + 1
    return bool(ink[top:bottom, left:right].any())


def compare(path, program, is_command, has_librecad, folder):
    """Counts by kind: entities, and how many of them ours, LibreCAD and ezdxf show; how many the
    others show alone."""
    try:
        document = ezdxf.readfile(path)
    except ezdxf.DXFStructureError:
        document, _ = ezdxf.recover.readfile(path)
    if document.dxfversion < "AC1018":
        document.dxfversion = "AC1018" if document.dxfversion >= "AC1015" else document.dxfversion
    boxes = boxes_of(document)
    if not boxes:
        return {}
    lines, frame = add_frame(document, boxes.values())
    seen = drawn_by_ezdxf(document)
    space = document.modelspace().entity_space
    everything = list(space.entities)
    frame_ids = {id(line) for line in lines}
    kinds = collections.defaultdict(list)
    for entity in everything:
        if id(entity) in boxes and id(entity) not in frame_ids:
            kinds[entity.dxftype()].append(entity)
    counts = {}
    copy = folder / "kind.dxf"
    for kind, entities in sorted(kinds.items()):
        space.entities = [entity for entity in everything
                          if entity.dxftype() == kind or id(entity) in frame_ids]
        if kind == "LINE":
            space.entities = entities + lines
        document.saveas(copy)
        ours = our_ink(program, is_command, copy, folder)
        other = librecad_ink(copy, folder) if has_librecad else None
        row = [len(entities), 0, 0, 0, 0]
        for entity in entities:
            box = boxes[id(entity)]
            by_us = shows(ours, box, frame)
            by_librecad = shows(other, box, frame)
            by_ezdxf = id(entity) in seen
            row[1] += by_us
            row[2] += by_librecad
            row[3] += by_ezdxf
            row[4] += not by_us and (by_librecad or by_ezdxf)
        counts[kind] = row
    space.entities = everything
    return counts


def reasons_of(document):
    """(kind or * for the whole drawing, pattern of drawings) of the rows of a document's tables."""
    rows = re.findall(r"^\| `?([A-Z0-9_]+|\*)`? \| `?([^|`]+?)`? \| [^|]+ \|$", document.read_text("utf-8"),
                      re.MULTILINE)
    return [(kind, pattern) for kind, pattern in rows]


def self_test():
    page = (b"2 0 0 2 1 1 cm\n1 0 1 SCN\n0 0 m\n3 4 l\nS\n0 0 0 scn\n0 0 1 1 re\nf\n"
            b"0 0 m 0 1 1 1 1 0 c S\n")
    assert list(pdf_paths(b"stream\n" + zlib.compress(page) + b"endstream")) == [
        ([(1, 1), (7, 9)], False, (1, 0, 1)),
        ([(1, 1), (3, 1), (3, 3), (1, 3), (1, 1)], True, (0, 0, 0)),
        ([(1, 1), (1, 3), (3, 3), (3, 1)], False, (1, 0, 1))]
    ink = numpy.zeros((101, 201), bool)
    ink[50, 20] = True
    frame = (0, 0, 20, 10)
    assert shows(ink, (2, 5, 2, 5), frame) and not shows(ink, (4, 5, 20, 10), frame)
    assert not shows(None, (2, 5, 2, 5), frame)
    print("compare_pictures: reads pages and sees ink")


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--quoin", type=pathlib.Path)
    parser.add_argument("--check", type=pathlib.Path)
    parser.add_argument("--quick", action="store_true")
    parser.add_argument("--self-test", action="store_true")
    parser.add_argument("drawings", nargs="*", type=pathlib.Path)
    arguments = parser.parse_args()
    if arguments.self_test:
        return self_test()
    logging.getLogger("matplotlib").setLevel(logging.ERROR)  # fonts that are not there
    examples = ROOT / "examples"
    quick = [examples / "kinds.dxf", examples / "flat" / "flat.dxf"]
    drawings = arguments.drawings or (quick if arguments.quick else sorted(examples.rglob("*.dxf")))
    shared = pathlib.Path(os.environ.get("QUOIN_SHARED_DATA", ROOT.parent / "shared" / "data"))
    if not arguments.drawings and not arguments.quick and shared.is_dir():
        drawings += sorted(shared.glob("*.dxf"))
    reasons = reasons_of(arguments.check) if arguments.check else []
    has_librecad = shutil.which("librecad") is not None
    is_command = has_picture_command(arguments.quoin)
    failures = []
    print(f"{'kind':<20}{'entities':>9}{'ours':>8}{'LibreCAD':>10}{'ezdxf':>8}{'missing':>9}")
    for drawing in drawings:
        print(drawing.name, flush=True)
        try:
            with tempfile.TemporaryDirectory() as folder:
                counts = compare(drawing, arguments.quoin, is_command, has_librecad,
                                 pathlib.Path(folder))
        except RuntimeError as error:
            print(f"  the copy that ezdxf writes cannot be drawn: {error}")
            if not any(kind == "*" and fnmatch.fnmatch(drawing.name, pattern)
                       for kind, pattern in reasons):
                failures.append(f"{drawing.name}: {error}")
            continue
        for kind, row in counts.items():
            is_known = any(kind == known and fnmatch.fnmatch(drawing.name, pattern)
                           for known, pattern in reasons)
            note = "  has its reason" if row[4] and is_known else "  MISSING" if row[4] else ""
            print(f"  {kind:<18}{row[0]:>9}{row[1]:>8}{row[2]:>10}{row[3]:>8}{row[4]:>9}{note}")
            if row[4] and not is_known:
                failures.append(f"{drawing.name}: {row[4]} of {row[0]} {kind}")
    if failures:
        print("compare_pictures: others show what we do not:\n  " + "\n  ".join(failures),
              file=sys.stderr)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
