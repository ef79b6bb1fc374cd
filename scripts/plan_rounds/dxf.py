"""Writes primitives as a drawing of R2000, as text: libraries take longer than what is measured.

A primitive is a tuple, angles in degrees: ("line", layer, start, end), ("polyline", layer, points,
closed), ("wide", layer, points, width) for an open one with a width, ("arc", layer, centre, radius,
start angle, end angle), ("circle", layer, centre, radius), ("text", layer, place, height, text,
angle), ("insert", layer, block, place, x scale, y scale, angle), ("hatch", layer, rings) for a solid
one, ("wall", layer, start, end, left, right) and ("opening", layer, start, end, kind): lines with the
extended data by which the program's commands know them.
"""

UNITS = {"mm": (4, 1, 1.0), "m": (6, 1, 1000.0), "in": (1, 0, 25.4)}  # $INSUNITS, $MEASUREMENT, mm

_SPACE, _PAPER = 0x1F, 0x1B


class _Writer:
    def __init__(self, stream, first_handle):
        self.stream = stream
        self.handle = first_handle

    def _entity(self, kind, marker, layer, owner, tags):
        self.handle += 1
        return (f"0\n{kind}\n5\n{self.handle:X}\n330\n{owner:X}\n100\nAcDbEntity\n8\n{layer}\n"
                f"100\n{marker}\n{tags}")

    def text_of(self, primitive, owner=_SPACE):
        kind, layer = primitive[:2]
        rest = primitive[2:]
        if kind == "line":
            (ax, ay), (bx, by) = rest
            return self._entity("LINE", "AcDbLine", layer, owner,
                                f"10\n{ax!r}\n20\n{ay!r}\n30\n0.0\n11\n{bx!r}\n21\n{by!r}\n31\n0.0\n")
        if kind in ("wall", "opening"):
            a, b, *data = rest
            return self.text_of(("line", layer, a, b), owner) + "1001\nQUOIN\n" + "".join(
                f"1000\n{value}\n" if isinstance(value, str) else f"1040\n{value!r}\n"
                for value in data)
        if kind == "polyline":
            points, closed = rest
            return self._entity("LWPOLYLINE", "AcDbPolyline", layer, owner,
                                f"90\n{len(points)}\n70\n{int(closed)}\n"
                                + "".join(f"10\n{x!r}\n20\n{y!r}\n" for x, y in points))
        if kind == "wide":
            points, width = rest
            return self._entity("LWPOLYLINE", "AcDbPolyline", layer, owner,
                                f"90\n{len(points)}\n70\n0\n43\n{width!r}\n"
                                + "".join(f"10\n{x!r}\n20\n{y!r}\n" for x, y in points))
        if kind == "arc":
            (x, y), radius, start, end = rest
            return self._entity("ARC", "AcDbCircle", layer, owner,
                                f"10\n{x!r}\n20\n{y!r}\n30\n0.0\n40\n{radius!r}\n100\nAcDbArc\n"
                                f"50\n{start % 360.0!r}\n51\n{end % 360.0!r}\n")
        if kind == "circle":
            (x, y), radius = rest
            return self._entity("CIRCLE", "AcDbCircle", layer, owner,
                                f"10\n{x!r}\n20\n{y!r}\n30\n0.0\n40\n{radius!r}\n")
        if kind == "text":
            (x, y), height, text, degrees = rest
            return self._entity("TEXT", "AcDbText", layer, owner,
                                f"10\n{x!r}\n20\n{y!r}\n30\n0.0\n40\n{height!r}\n1\n{text}\n"
                                f"50\n{degrees!r}\n100\nAcDbText\n")
        if kind == "insert":
            block, (x, y), sx, sy, degrees = rest
            return self._entity("INSERT", "AcDbBlockReference", layer, owner,
                                f"2\n{block}\n10\n{x!r}\n20\n{y!r}\n30\n0.0\n41\n{sx!r}\n42\n{sy!r}\n"
                                f"43\n1.0\n50\n{degrees!r}\n")
        if kind == "hatch":
            (rings,) = rest
            # The first ring is the outer one.
            paths = "".join(
                f"92\n{3 if i == 0 else 18}\n72\n0\n73\n1\n93\n{len(ring)}\n"
                + "".join(f"10\n{x!r}\n20\n{y!r}\n" for x, y in ring) + "97\n0\n"
                for i, ring in enumerate(rings))
            return self._entity(
                "HATCH", "AcDbHatch", layer, owner,
                "10\n0.0\n20\n0.0\n30\n0.0\n210\n0.0\n220\n0.0\n230\n1.0\n2\nSOLID\n70\n1\n71\n0\n"
                f"91\n{len(rings)}\n{paths}75\n0\n76\n1\n98\n0\n")
        raise ValueError(kind)


def _table(name, handle, entries):
    return (f"0\nTABLE\n2\n{name}\n5\n{handle:X}\n330\n0\n100\nAcDbSymbolTable\n70\n{len(entries)}\n"
            + "".join(entries) + "0\nENDTAB\n")


def _layer(handle, name):
    return (f"0\nLAYER\n5\n{handle:X}\n330\n2\n100\nAcDbSymbolTableRecord\n100\n"
            f"AcDbLayerTableRecord\n2\n{name}\n70\n0\n62\n7\n6\nCONTINUOUS\n")


def _linetype(handle, name):
    return (f"0\nLTYPE\n5\n{handle:X}\n330\n5\n100\nAcDbSymbolTableRecord\n100\n"
            f"AcDbLinetypeTableRecord\n2\n{name}\n70\n0\n3\n\n72\n65\n73\n0\n40\n0.0\n")


def _application(handle, name):
    return (f"0\nAPPID\n5\n{handle:X}\n330\n9\n100\nAcDbSymbolTableRecord\n100\n"
            f"AcDbRegAppTableRecord\n2\n{name}\n70\n0\n")


def _block_record(handle, name):
    return (f"0\nBLOCK_RECORD\n5\n{handle:X}\n330\n1\n100\nAcDbSymbolTableRecord\n100\n"
            f"AcDbBlockTableRecord\n2\n{name}\n")


def _block(name, handle, owner, entities=""):
    return (f"0\nBLOCK\n5\n{handle:X}\n330\n{owner:X}\n100\nAcDbEntity\n8\n0\n100\nAcDbBlockBegin\n"
            f"2\n{name}\n70\n0\n10\n0.0\n20\n0.0\n30\n0.0\n3\n{name}\n1\n\n{entities}0\nENDBLK\n"
            f"5\n{handle + 1:X}\n330\n{owner:X}\n100\nAcDbEntity\n8\n0\n100\nAcDbBlockEnd\n")


def write(stream, primitives, units, blocks=None):
    """The drawing with these entities in model space; `blocks` is name -> primitives."""
    blocks = blocks or {}
    layers = sorted({primitive[1] for primitive in primitives} - {"0"})
    writer = _Writer(stream, 0x1000 + 16 * len(blocks) + len(layers))
    insunits, measurement, _ = UNITS[units]
    parts = {name: 0x800 + 4 * i for i, name in enumerate(blocks)}
    block_text = []
    for name, owner in parts.items():
        entities = "".join(writer.text_of(primitive, owner) for primitive in blocks[name])
        block_text.append(_block(name, owner + 1, owner, entities))
    seed = writer.handle + len(primitives) + 16
    stream.write(f"0\nSECTION\n2\nHEADER\n9\n$ACADVER\n1\nAC1015\n9\n$INSUNITS\n70\n{insunits}\n"
                 f"9\n$MEASUREMENT\n70\n{measurement}\n9\n$HANDSEED\n5\n{seed:X}\n0\nENDSEC\n")
    stream.write("0\nSECTION\n2\nTABLES\n")
    stream.write(_table("LTYPE", 5, [_linetype(0x14, "ByBlock"), _linetype(0x15, "ByLayer"),
                                     _linetype(0x16, "CONTINUOUS")]))
    stream.write(_table("LAYER", 2, [_layer(0x10, "0")]
                        + [_layer(0x40 + i, name) for i, name in enumerate(layers)]))
    stream.write(_table("APPID", 9, [_application(0x17, "ACAD"), _application(0x18, "QUOIN")]))
    stream.write(_table("BLOCK_RECORD", 1,
                        [_block_record(_SPACE, "*Model_Space"), _block_record(_PAPER, "*Paper_Space")]
                        + [_block_record(owner, name) for name, owner in parts.items()]))
    stream.write("0\nENDSEC\n0\nSECTION\n2\nBLOCKS\n")
    stream.write(_block("*Model_Space", 0x20, _SPACE) + _block("*Paper_Space", 0x23, _PAPER))
    stream.write("".join(block_text))
    stream.write("0\nENDSEC\n0\nSECTION\n2\nENTITIES\n")
    for primitive in primitives:
        stream.write(writer.text_of(primitive))
    stream.write("0\nENDSEC\n0\nSECTION\n2\nOBJECTS\n0\nDICTIONARY\n5\nC\n330\n0\n100\n"
                 "AcDbDictionary\n281\n1\n0\nENDSEC\n0\nEOF\n")
