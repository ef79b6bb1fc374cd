#!/usr/bin/python3
"""Breaks the walls of drawings and has ezdxf, an independent reader, look at what was written.

usage: audit_drawings.py --quoin PROGRAM FILE-OR-FOLDER...
       audit_drawings.py INPUT OUTPUT
       audit_drawings.py --self-test

A written drawing passes when ezdxf finds nothing in it that it does not find in the input, when
no layer has lost or gained any entity but the lines that the report names, when the straight
parts of every layer have the length that they had, and when handles are unique. A folder that
does not exist is left out.
"""

import argparse
import collections
import io
import json
import math
import pathlib
import subprocess
import sys
import tempfile

import ezdxf
from ezdxf import recover

NOTHING_TO_DO = 4  # quoin's exit code for a drawing without wall lines
BROKEN = {"LINE", "LWPOLYLINE", "POLYLINE"}  # what breaking may replace by pieces


class Content:
    """What two drawings are compared by."""

    def __init__(self, document, auditor):
        self.findings = collections.Counter()
        for error in [*auditor.errors, *auditor.fixes]:
            kind = error.entity.dxftype() if error.entity is not None else ""
            self.findings[f"{error.code.name if hasattr(error.code, 'name') else error.code} {kind}"] += 1
        self.counts = collections.Counter()
        self.lengths = collections.defaultdict(float)
        self.lines = 0
        for layout in document.layouts:
            for entity in layout:
                self._add(layout.name, entity)
        for block in document.blocks:
            if not block.is_any_layout:
                for entity in block:
                    self._add(block.name, entity)
        self.handles = collections.Counter(
            entity.dxf.handle for layout in document.layouts for entity in layout)

    def _add(self, where, entity):
        kind = entity.dxftype()
        # ezdxf keeps kinds that it does not know without their attributes.
        layer = entity.dxf.get("layer", "0") if entity.dxf.is_supported("layer") else "?"
        length = straight_length(entity)
        if kind in BROKEN and length is not None:
            self.lengths[where, layer] += length
            self.lines += kind == "LINE"
        else:
            self.counts[where, layer, kind] += 1


def straight_length(entity):
    """The length of a line or of a polyline's straight parts; None for what is never broken."""
    kind = entity.dxftype()
    if kind == "LINE":
        return math.dist(entity.dxf.start.xyz, entity.dxf.end.xyz)
    if kind == "LWPOLYLINE":
        points = [(x, y, 0.0, bulge) for x, y, bulge in entity.get_points("xyb")]
        closed = entity.closed
    elif kind == "POLYLINE" and entity.get_mode() == "AcDb2dPolyline":
        points = [(*v.dxf.location.xyz, v.dxf.get("bulge", 0.0)) for v in entity.vertices]
        closed = entity.is_closed
    else:
        return None
    pairs = list(zip(points, points[1:] + points[:1] if closed else points[1:]))
    return sum(math.dist(a[:3], b[:3]) for a, b in pairs if not a[3])


def read(data):
    document, auditor = recover.read(io.BytesIO(data)) if not data.startswith(
        b"AutoCAD Binary DXF") else read_binary(data)
    return Content(document, auditor)


def read_binary(data):
    """ezdxf reads binary files by name only."""
    with tempfile.NamedTemporaryFile(suffix=".dxf") as file:
        file.write(data)
        file.flush()
        document = ezdxf.readfile(file.name)
    return document, document.audit()


def differences(before, after):
    """What the second drawing has that it should not, as lines."""
    for finding, count in (after.findings - before.findings).items():
        yield f"new finding, {count} times: {finding}"
    for key in before.counts.keys() | after.counts.keys():
        if before.counts[key] != after.counts[key]:
            yield f"{' / '.join(key)}: {before.counts[key]} became {after.counts[key]}"
    for key in before.lengths.keys() | after.lengths.keys():
        was, now = before.lengths[key], after.lengths[key]
        if not math.isclose(was, now, rel_tol=1e-9, abs_tol=1e-6):
            yield f"{' / '.join(key)}: lines {was:.9g} long became {now:.9g}"
    for handle, count in after.handles.items():
        if count > 1 and before.handles[handle] <= 1 and handle is not None:
            yield f"handle {handle} stands {count} times"


def compare(source, written):
    """Complaints about the file `written` against `source`, and how many lines it has more."""
    before, after = read(source.read_bytes()), read(written.read_bytes())
    return list(differences(before, after)), after.lines - before.lines


def break_and_compare(quoin, source, folder):
    """(a line that says how it went, whether it went well)"""
    written = folder / source.name
    command = [str(quoin), "break", str(source), "-o", str(written), "--report", "json"]
    run = subprocess.run(command, capture_output=True, text=True)
    if run.returncode == NOTHING_TO_DO:
        run = subprocess.run([*command, "--layer", "*"], capture_output=True, text=True)
    if run.returncode == NOTHING_TO_DO:
        return f"{source.name}: no lines at all", True
    if run.returncode != 0:
        return f"{source.name}: exit code {run.returncode}: {run.stderr.strip()}", False
    report = json.loads(run.stdout)["drawings"][0]
    try:
        complaints, _ = compare(source, written)
    except ezdxf.DXFError as error:
        try:
            read(source.read_bytes())
        except ezdxf.DXFError:
            return f"{source.name}: ezdxf cannot read the input either", True
        complaints = [f"ezdxf cannot read it: {error}"]
    text = f"{source.name}: {report['changed']} lines cut into {report['pieces']} pieces"
    return "\n  ".join([text, *complaints]), not complaints


def self_test():
    """Each kind of damage to a drawing is found."""
    def drawing(change=None):
        document = ezdxf.new("R2000")
        model = document.modelspace()
        line = model.add_line((0, 0), (10, 0), dxfattribs={"layer": "WALL"})
        model.add_circle((0, 0), 1, dxfattribs={"layer": "WALL"})
        if change:
            change(model, line)
        stream = io.StringIO()
        document.write(stream)
        return read(document.encode(stream.getvalue()))

    def split(model, line):
        line.dxf.end = (4, 0)
        model.add_line((4, 0), (10, 0), dxfattribs={"layer": "WALL"})

    def shorten(model, line):
        line.dxf.end = (9, 0)

    def lose(model, line):
        model.delete_entity(next(e for e in model if e.dxftype() == "CIRCLE"))

    def move(model, line):
        line.dxf.layer = "OTHER"

    def damage(model, line):
        model.add_text("x", dxfattribs={"style": "NO-SUCH-STYLE"})

    whole = drawing()
    if list(differences(whole, drawing(split))):
        sys.exit("audit_drawings: complains about a line that was cut")
    for change in (shorten, lose, move, damage):
        if not list(differences(whole, drawing(change))):
            sys.exit(f"audit_drawings: does not see: {change.__name__}")
    print("audit_drawings: sees every kind of damage that it is shown")


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--quoin", type=pathlib.Path)
    parser.add_argument("--self-test", action="store_true")
    parser.add_argument("files", nargs="*", type=pathlib.Path)
    arguments = parser.parse_args()
    if arguments.self_test:
        self_test()
        return 0
    if not arguments.quoin:
        complaints, added = compare(*arguments.files)
        print("\n".join(complaints or [f"nothing new; {added} lines more"]))
        return 1 if complaints else 0

    sources = []
    for path in arguments.files:
        if path.is_dir():
            sources += sorted(file for file in path.rglob("*") if file.suffix.lower() == ".dxf")
        elif path.exists():
            sources.append(path)
        else:
            print(f"{path}: not there, left out")
    good = 0
    with tempfile.TemporaryDirectory() as folder:
        for source in sources:
            text, went_well = break_and_compare(arguments.quoin, source, pathlib.Path(folder))
            print(text, flush=True)
            good += went_well
    print(f"{good} drawings passed the audit, {len(sources) - good} did not")
    return 0 if sources and good == len(sources) else 1


if __name__ == "__main__":
    sys.exit(main())
