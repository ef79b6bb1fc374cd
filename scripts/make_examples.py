#!/usr/bin/python3
"""Draws the plans of examples/ with ezdxf.

usage: make_examples.py [--check] [FOLDER]

Writes the same bytes whenever the same version of ezdxf runs it. With --check nothing is
written: the drawings of FOLDER are compared with what would be, byte for byte where they come
from the same version of ezdxf, else entity by entity.
"""

import io
import os
import pathlib
import sys

# ezdxf walks sets of names in places: the same bytes need the same hashes of texts.
if os.environ.get("PYTHONHASHSEED") != "0":
    os.execve(sys.executable, [sys.executable, *sys.argv], {**os.environ, "PYTHONHASHSEED": "0"})

import ezdxf  # noqa: E402

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent))

from drafting import flat, house, office, received, studio  # noqa: E402 - the line above finds it

ezdxf.options.write_fixed_meta_data_for_testing = True  # no dates, no fresh identifiers


def ascii_bytes(document, line_end):
    stream = io.StringIO()
    document.write(stream)
    return document.encode(stream.getvalue()).replace(b"\n", line_end)


def binary_bytes(document):
    stream = io.BytesIO()
    document.write(stream, fmt="bin")
    return stream.getvalue()


def drawings():
    """(path in the folder, its bytes) of every example."""
    yield "flat/flat.dxf", ascii_bytes(flat.draw(), b"\r\n")
    yield "flat/flat_binary.dxf", binary_bytes(flat.draw())
    yield "flat/flat_r12.dxf", ascii_bytes(flat.draw("R12"), b"\n")
    yield "office/office.dxf", ascii_bytes(office.draw(), b"\r\n")
    yield "house-gbk/house.dxf", ascii_bytes(house.draw(), b"\r\n")
    yield "studio/studio.dxf", ascii_bytes(studio.draw(), b"\r\n")
    yield "received/received.dxf", ascii_bytes(received.draw(), b"\r\n")


def contents(data):
    """What a drawing shows, apart from how it is written: its entities, rounded and sorted."""
    from ezdxf import recover
    document, auditor = recover.read(io.BytesIO(data))
    if auditor.has_errors:
        raise ValueError(f"{len(auditor.errors)} errors in the drawing")
    found = []
    for entity in document.modelspace():
        attributes = {}
        for name, value in entity.dxfattribs(drop={"handle", "owner", "paperspace"}).items():
            if isinstance(value, float):
                value = round(value, 6)
            elif hasattr(value, "xyz"):
                value = tuple(round(v, 6) for v in value.xyz)
            attributes[name] = value
        points = []
        if entity.dxftype() == "LWPOLYLINE":
            points = [tuple(round(v, 6) for v in point) for point in entity.get_points()]
        elif entity.dxftype() == "POLYLINE":
            points = [tuple(round(v, 6) for v in point.xyz) for point in entity.points()]
        found.append(repr((entity.dxftype(), sorted(attributes.items(), key=str), points)))
    return sorted(found)


def check(folder):
    wrong = 0
    for name, data in drawings():
        there = (folder / name).read_bytes()
        mark = ezdxf.__version__.encode()
        if there == data:
            print(f"{name}: the same bytes")
        elif mark not in there and contents(there) == contents(data):
            print(f"{name}: the same entities, from another version of ezdxf")
        else:
            print(f"{name}: differs from what scripts/make_examples.py draws")
            wrong += 1
    return 1 if wrong else 0


def main(arguments):
    checks = "--check" in arguments
    arguments = [argument for argument in arguments if argument != "--check"]
    root = pathlib.Path(__file__).resolve().parent.parent
    folder = pathlib.Path(arguments[0]) if arguments else root / "examples"
    if checks:
        return check(folder)
    for name, data in drawings():
        (folder / name).parent.mkdir(parents=True, exist_ok=True)
        (folder / name).write_bytes(data)
        print(f"{folder / name}: {len(data)} bytes")
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
