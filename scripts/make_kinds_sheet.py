#!/usr/bin/python3
"""Draws examples/kinds.dxf: each kind of entity once, in a cell with its name; and beside it the
image that it names.

usage: make_kinds_sheet.py [FILE]

Needs ezdxf. The same version of it writes the same bytes.
"""

import os
import pathlib
import struct
import sys
import zlib

# ezdxf walks sets of names in places: the same bytes need the same hashes of texts.
if os.environ.get("PYTHONHASHSEED") != "0":
    os.execve(sys.executable, [sys.executable, *sys.argv], {**os.environ, "PYTHONHASHSEED": "0"})

import ezdxf  # noqa: E402
from ezdxf.entities import MText, factory  # noqa: E402
from ezdxf.enums import TextEntityAlignment  # noqa: E402
from ezdxf.lldxf.extendedtags import ExtendedTags  # noqa: E402
from ezdxf.math import Vec2  # noqa: E402
from ezdxf.render import MeshBuilder, mleader  # noqa: E402

ezdxf.options.write_fixed_meta_data_for_testing = True  # no dates, no fresh identifiers

COLUMNS = 8
WIDTH, HEIGHT = 60.0, 50.0
CELLS = []


def cell(name):
    def keep(draw):
        CELLS.append((name, draw))
        return draw

    return keep


def raw(space, kind, subclass, tags):
    """Adds an entity that the library cannot make, by its own tags: "10 1.5", one a line."""
    handle = space.doc.entitydb.next_handle()
    lines = [f"0 {kind}", f"5 {handle}", f"330 {space.layout_key}", "100 AcDbEntity", "8 0",
             *([f"100 {subclass}"] if subclass else []), *tags]
    text = "".join("{}\n{}\n".format(*line.split(" ", 1)) for line in lines)
    entity = factory.load(ExtendedTags.from_text(text), space.doc)
    factory.bind(entity, space.doc)
    space.add_entity(entity)


def at(code, x, y, z=0.0):
    return [f"{code} {x}", f"{code + 10} {y}", f"{code + 20} {z}"]


@cell("LINE")
def line(space, x, y):
    space.add_line((x, y), (x + 40, y + 20))
    space.add_line((x, y + 5), (x + 40, y + 25), dxfattribs={"linetype": "DASHDOT", "color": 1})
    space.add_line((x, y + 10), (x + 40, y + 30), dxfattribs={"lineweight": 100, "color": 5})


@cell("CIRCLE ARC")
def circle(space, x, y):
    space.add_circle((x + 15, y + 15), 13)
    space.add_arc((x + 15, y + 15), 9, 30, 240, dxfattribs={"color": 3})


@cell("ELLIPSE")
def ellipse(space, x, y):
    space.add_ellipse((x + 20, y + 15), (18, 6), 0.4)
    space.add_ellipse((x + 20, y + 15), (9, 3), 0.6, 0.5, 4.5, dxfattribs={"color": 6})


@cell("LWPOLYLINE")
def light(space, x, y):
    space.add_lwpolyline([(x, y, 0, 0, 0.6), (x + 20, y, 0, 0, 0), (x + 20, y + 12)], close=True)
    space.add_lwpolyline(
        [(x + 25, y, 3, 3, 0), (x + 42, y, 3, 3, 0), (x + 42, y + 12, 3, 0, 0.7), (x + 25, y + 25)],
        dxfattribs={"color": 4})


@cell("POLYLINE")
def heavy(space, x, y):
    space.add_polyline2d([(x, y), (x + 20, y), (x + 20, y + 15)], close=True)
    space.add_polyline3d([(x + 22, y, 0), (x + 40, y + 5, 10), (x + 30, y + 20, 20)])
    mesh = space.add_polymesh((4, 3))
    for row in range(4):
        for column in range(3):
            mesh.set_mesh_vertex((row, column), (x + 6 * row, y + 18 + 5 * column, 0))
    builder = MeshBuilder()
    builder.add_face([(x + 28, y + 22, 0), (x + 40, y + 22, 0), (x + 40, y + 32, 0)])
    builder.add_face([(x + 28, y + 22, 0), (x + 40, y + 32, 0), (x + 28, y + 32, 0)])
    builder.render_polyface(space)


@cell("SPLINE")
def spline(space, x, y):
    space.add_open_spline([(x, y), (x + 5, y + 30), (x + 20, y - 5), (x + 40, y + 25)])
    space.add_spline([(x, y + 5), (x + 15, y + 20), (x + 25, y + 8), (x + 42, y + 12)],
                     dxfattribs={"color": 1})


@cell("HELIX")
def helix(space, x, y):
    spiral = space.add_helix(radius=10, pitch=4, turns=3)
    spiral.translate(x + 20, y + 15, 0)


@cell("POINT")
def point(space, x, y):
    space.add_point((x + 20, y + 15))


@cell("TEXT")
def text(space, x, y):
    space.add_text("Hall %%u12%%u m2", height=4).set_placement((x, y))
    space.add_text("slanted", height=4, dxfattribs={"oblique": 20}).set_placement((x, y + 8))
    space.add_text("fit", height=4).set_placement((x, y + 16), (x + 40, y + 16),
                                                  TextEntityAlignment.FIT)
    space.add_text("back", height=4, dxfattribs={"text_generation_flag": 2}).set_placement(
        (x + 40, y + 24))
    space.add_text("45%%d %%p1 %%c8", height=4, dxfattribs={"rotation": 15}).set_placement(
        (x, y + 24))


@cell("MTEXT")
def mtext(space, x, y):
    space.add_mtext(
        "Words are {\\C1;wrapped} at the width,\\P\\pqc;{\\H1.4x;\\Lcentred}\\P\\pql;"
        "\\S1/2; \\Sa^b; {\\W0.7;narrow} {\\Q20;slanted}",
        dxfattribs={"char_height": 3, "width": 42, "insert": (x, y + 33)})


@cell("ATTRIB INSERT")
def insert(space, x, y):
    for place, scale in (((x, y), (1, 1)), ((x + 40, y), (-1, 1)), ((x, y + 18), (2, 0.6))):
        reference = space.add_blockref(
            "SIGN", place, dxfattribs={"xscale": scale[0], "yscale": scale[1], "color": 5})
        reference.add_auto_attribs({"NUMBER": "7"})
    lines = space.add_blockref("SIGN", (x + 16, y + 5), dxfattribs={"color": 3})
    value = lines.add_attrib("NUMBER", "north", (x + 17, y + 13))
    text = MText.new(dxfattribs={"char_height": 3, "insert": (x + 17, y + 14)}, doc=space.doc)
    text.text = "north\\Pwall"
    value.set_mtext(text)
    space.add_blockref("SIGN", (x, y + 28), dxfattribs={
        "xscale": 0.3, "yscale": 0.3, "row_count": 2, "column_count": 8, "row_spacing": 5,
        "column_spacing": 5})


@cell("HATCH")
def hatch(space, x, y):
    solid = space.add_hatch(color=3)
    solid.paths.add_polyline_path([(x, y), (x + 12, y), (x + 12, y + 12), (x, y + 12)],
                                  is_closed=True)
    lines = space.add_hatch(color=1)
    lines.set_pattern_fill("ANSI31", scale=1.0)
    lines.paths.add_polyline_path([(x + 15, y), (x + 42, y), (x + 42, y + 30), (x + 15, y + 30)],
                                  is_closed=True)
    edges = lines.paths.add_edge_path()
    edges.add_arc((x + 28, y + 15), 6, 0, 360)
    bricks = space.add_hatch(color=5)
    bricks.set_pattern_fill("AR-BRSTD", scale=0.05)
    bricks.paths.add_polyline_path([(x, y + 15), (x + 12, y + 15), (x + 12, y + 30)],
                                   is_closed=True)


@cell("gradient")
def gradient(space, x, y):
    area = space.add_hatch()
    area.set_gradient((255, 0, 0), (0, 0, 255))
    area.paths.add_polyline_path([(x, y), (x + 40, y), (x + 20, y + 30)], is_closed=True)


@cell("MPOLYGON")
def mpolygon(space, x, y):
    area = space.add_mpolygon(color=1, fill_color=4)
    area.paths.add_polyline_path([(x, y), (x + 30, y), (x + 30, y + 25), (x, y + 25)])
    area.paths.add_polyline_path([(x + 8, y + 8), (x + 20, y + 8), (x + 20, y + 18)])


@cell("SOLID TRACE")
def solid(space, x, y):
    space.add_solid([(x, y), (x + 15, y), (x, y + 15), (x + 15, y + 20)], dxfattribs={"color": 2})
    space.add_trace([(x + 20, y), (x + 40, y), (x + 20, y + 5), (x + 40, y + 5)])


@cell("3DFACE MESH")
def faces(space, x, y):
    space.add_3dface([(x, y), (x + 15, y), (x + 15, y + 15), (x, y + 15)],
                     dxfattribs={"invisible": 2})
    mesh = space.add_mesh()
    with mesh.edit_data() as data:
        data.vertices = [(x + 20, y, 0), (x + 40, y, 0), (x + 40, y + 20, 5), (x + 20, y + 20, 5)]
        data.faces = [(0, 1, 2), (0, 2, 3)]


@cell("MLINE")
def mline(space, x, y):
    space.add_mline([(x + 4, y + 14), (x + 24, y + 14), (x + 34, y + 30)],
                    dxfattribs={"style_name": "WALL", "scale_factor": 6})


@cell("LEADER")
def leader(space, x, y):
    space.add_leader([(x, y), (x + 15, y + 20), (x + 35, y + 20)],
                     override={"dimasz": 4})


@cell("MULTILEADER")
def multileader(space, x, y):
    builder = space.add_multileader_mtext("Standard")
    builder.set_content("concrete", char_height=4)
    builder.set_arrow_properties(size=4)
    builder.add_leader_line(mleader.ConnectionSide.left, [(x, y)])
    builder.build(insert=Vec2(x + 15, y + 20))


@cell("DIMENSION")
def dimension(space, x, y):
    space.add_linear_dim(base=(x, y + 12), p1=(x, y), p2=(x + 35, y + 4),
                         override={"dimtxt": 4, "dimasz": 3}).render()
    space.add_arc_dim_cra(center=(x + 36, y + 18), radius=5, start_angle=20, end_angle=160,
                          distance=3, override={"dimtxt": 3, "dimasz": 2}).render()
    space.add_radius_dim(center=(x + 2, y + 22), radius=10, angle=30,
                         override={"dimtxt": 3, "dimasz": 3}).render()


@cell("TOLERANCE")
def tolerance(space, x, y):
    def add(top, content):
        entity = space.new_entity("TOLERANCE", {
            "insert": (x, top), "dimstyle": "Standard", "content": content})
        entity.set_xdata("ACAD",
                         [(1000, "DSTYLE"), (1002, "{"), (1070, 140), (1040, 3.0), (1002, "}")])

    add(y + 28, "{\\Fgdt;j}%%v{\\Fgdt;n}0.1{\\Fgdt;m}%%vA%%vB^J{\\Fgdt;b}%%v0.05%%vC{\\Fgdt;l}")
    add(y + 12, "%%v".join("{\\Fgdt;%s}" % letter for letter in "acdefg"))
    add(y + 4, "%%v".join("{\\Fgdt;%s}" % letter for letter in "hikrtu"))


@cell("WIPEOUT")
def wipeout(space, x, y):
    hidden = space.add_hatch(color=9)
    hidden.paths.add_polyline_path([(x, y), (x + 40, y), (x + 40, y + 30), (x, y + 30)])
    space.add_wipeout([(x + 8, y + 6), (x + 30, y + 6), (x + 20, y + 24)])
    space.add_line((x, y + 12), (x + 40, y + 12))


@cell("IMAGE")
def image(space, x, y):
    definition = space.doc.add_image_def(filename=f"site/{IMAGE}", size_in_pixel=(64, 48))
    space.add_image(definition, insert=(x, y), size_in_units=(40, 30))


@cell("PDF DWF DGN UNDERLAY")
def underlay(space, x, y):
    for index, kind in enumerate(("pdf", "dwf", "dgn")):
        definition = space.doc.add_underlay_def(filename=f"site/survey.{kind}", fmt=kind, name="1")
        entity = space.add_underlay(definition, insert=(x + 6 * index, y + 6 * index),
                                    scale=(1, 1, 1))
        entity.set_boundary_path([(0, 0), (28, 0), (28, 18), (0, 18)])


@cell("ACAD_TABLE")
def table(space, x, y):
    block = space.doc.blocks.new("*T1")
    for row in range(4):
        block.add_line((0, -8 * row), (40, -8 * row))
    for column in (0, 20, 40):
        block.add_line((column, 0), (column, -24))
    for index, words in enumerate(("room", "m2", "hall", "12.4", "kitchen", "9.8")):
        block.add_mtext(words, dxfattribs={
            "char_height": 3, "attachment_point": 5,
            "insert": (10 + 20 * (index % 2), -4 - 8 * (index // 2))})
    raw(space, "ACAD_TABLE", "AcDbBlockReference", [
        "2 *T1", *at(10, x, y + 28), "100 AcDbTable", "280 0",
        f"343 {block.block_record_handle}", *at(11, 1.0, 0.0), "90 22", "91 3", "92 2",
        "141 8.0", "141 8.0", "141 8.0", "142 20.0", "142 20.0"])


@cell("OLE2FRAME")
def ole(space, x, y):
    raw(space, "OLE2FRAME", "AcDbOle2Frame", [
        "70 2", "3 Picture", *at(10, x, y + 25), *at(11, x + 40, y), "71 2", "72 0", "73 3",
        "90 0", "1 OLE"])


@cell("ACAD_PROXY_ENTITY")
def proxy(space, x, y):
    box = struct.pack("<iiii6d", 64, 1, 56, 1, x, y, 0, x + 40, y + 25, 0)
    raw(space, "ACAD_PROXY_ENTITY", "AcDbProxyEntity", [
        "90 498", "91 500", "95 0", "70 0", f"160 {len(box)}", f"310 {box.hex().upper()}",
        "162 0"])


@cell("SECTION")
def section(space, x, y):
    raw(space, "SECTIONOBJECT", "AcDbSection", [
        "90 2", "91 0", "1 A", *at(10, 0.0, 0.0, 1.0), "40 0.0", "41 0.0", "70 0", "63 1", "92 3",
        *at(11, x, y + 5), *at(11, x + 20, y + 15), *at(11, x + 40, y + 5), "93 0"])


@cell("POSITIONMARKER")
def marker(space, x, y):
    raw(space, "POSITIONMARKER", "AcDbGeoPositionMarker", [
        "90 0", *at(10, x + 20, y + 15), "40 10.0", "1 well", "41 1.0", "280 0", "290 0"])


@cell("LIGHT shows nothing")
def light(space, x, y):
    raw(space, "LIGHT", "AcDbLight", [
        "90 1", "1 sun", "70 2", "290 1", "291 0", "40 1.0", *at(10, x, y), *at(11, x, y)])


@cell("left out: see below")
def left_out(space, x, y):
    space.add_shape("BOX", (x, y), 5)
    uid = {"uid": "{00000000-0000-0000-0000-000000000001}"}
    space.add_3dsolid(dxfattribs=uid)
    space.add_region(dxfattribs=uid)
    space.add_body(dxfattribs=uid)
    space.add_surface(dxfattribs=uid)
    space.add_extruded_surface(dxfattribs=uid)
    space.add_lofted_surface(dxfattribs=uid)
    space.add_revolved_surface(dxfattribs=uid)
    space.add_swept_surface(dxfattribs=uid)
    raw(space, "OLEFRAME", "AcDbFrame", ["70 2", "90 0", "1 OLE"])


@cell("RAY XLINE")
def ray(space, x, y):
    space.add_ray((x + 20, y + 25), (0, -1), dxfattribs={"color": 8})
    space.add_xline((x, y - 4), (1, 0), dxfattribs={"color": 8})


IMAGE = "kinds-house.png"


def house():
    """A PNG of 64 by 48 pixels: a house below a sky."""
    rows = b""
    for y in range(48):
        rows += b"\0"
        for x in range(64):
            roof = 8 <= y < 24 and abs(x - 32) <= y - 6
            wall = 24 <= y < 44 and 18 <= x < 46
            door = 32 <= y < 44 and 28 <= x < 36
            rows += bytes((110, 70, 40) if door else (235, 225, 190) if wall else
                          (190, 60, 50) if roof else (120, 170, 90) if y >= 44 else
                          (150 + y, 200, 240))
    def chunk(kind, body):
        return (struct.pack(">I", len(body)) + kind + body +
                struct.pack(">I", zlib.crc32(kind + body)))
    return (b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", struct.pack(">IIBBBBB", 64, 48, 8, 2, 0, 0, 0)) +
            chunk(b"IDAT", zlib.compress(rows, 9)) + chunk(b"IEND", b""))


def draw(path):
    document = ezdxf.new("R2018", setup=True)
    document.header["$INSUNITS"] = 4
    document.header["$PDMODE"] = 34
    document.header["$PDSIZE"] = 8.0
    document.header["$LTSCALE"] = 4.0
    sign = document.blocks.new("SIGN")
    sign.add_lwpolyline([(0, 0), (14, 0), (14, 10), (0, 10)], close=True)
    sign.add_arc((7, 0), 5, 0, 120, dxfattribs={"color": 0})
    sign.add_line((0, 0), (14, 10), dxfattribs={"color": 1, "linetype": "DASHED"})
    sign.add_attdef("NUMBER", (9, 5), height=4)
    style = document.mline_styles.new("WALL")
    style.elements.append(1.0, 7)
    style.elements.append(0.0, 1, "DASHED")
    style.elements.append(-1.0, 7)
    style.dxf.flags = 1 | 64 | 256
    style.dxf.fill_color = 8
    space = document.modelspace()
    for index, (name, show) in enumerate(CELLS):
        left = (index % COLUMNS) * WIDTH
        bottom = -(index // COLUMNS + 1) * HEIGHT
        space.add_lwpolyline([(left, bottom), (left + WIDTH, bottom), (left + WIDTH, bottom + HEIGHT),
                              (left, bottom + HEIGHT)], close=True, dxfattribs={"color": 9})
        space.add_text(name, height=3, dxfattribs={"color": 8}).set_placement(
            (left + 3, bottom + HEIGHT - 5))
        show(space, left + 8, bottom + 8)
    sheet = document.layout("Layout1")
    sheet.add_viewport((150, 100), (280, 180), (COLUMNS * WIDTH / 2, -HEIGHT * 2.5), HEIGHT * 6)
    document.saveas(path)
    pathlib.Path(path).with_name(IMAGE).write_bytes(house())


if __name__ == "__main__":
    default = pathlib.Path(__file__).resolve().parent.parent / "examples" / "kinds.dxf"
    draw(sys.argv[1] if len(sys.argv) > 1 else default)
