#!/usr/bin/python3
"""Draws examples/kinds.dxf: each kind of entity once, in a cell with its name.

usage: make_kinds_sheet.py [FILE]

Needs ezdxf. The same version of it writes the same bytes.
"""

import os
import pathlib
import sys

# ezdxf walks sets of names in places: the same bytes need the same hashes of texts.
if os.environ.get("PYTHONHASHSEED") != "0":
    os.execve(sys.executable, [sys.executable, *sys.argv], {**os.environ, "PYTHONHASHSEED": "0"})

import ezdxf  # noqa: E402
from ezdxf.enums import TextEntityAlignment  # noqa: E402
from ezdxf.math import Vec2  # noqa: E402
from ezdxf.render import MeshBuilder, mleader  # noqa: E402

ezdxf.options.write_fixed_meta_data_for_testing = True  # no dates, no fresh identifiers

COLUMNS = 7
WIDTH, HEIGHT = 60.0, 50.0
CELLS = []


def cell(name):
    def keep(draw):
        CELLS.append((name, draw))
        return draw

    return keep


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
    space.add_radius_dim(center=(x + 15, y + 26), radius=8, angle=30,
                         override={"dimtxt": 3, "dimasz": 3}).render()


@cell("TOLERANCE")
def tolerance(space, x, y):
    entity = space.new_entity("TOLERANCE", {
        "insert": (x, y + 15), "dimstyle": "Standard",
        "content": "{\\Fgdt;j}%%v{\\Fgdt;n}0.1{\\Fgdt;m}%%vA%%vB"})
    entity.set_xdata("ACAD", [(1000, "DSTYLE"), (1002, "{"), (1070, 140), (1040, 4.0), (1002, "}")])


@cell("WIPEOUT")
def wipeout(space, x, y):
    hidden = space.add_hatch(color=9)
    hidden.paths.add_polyline_path([(x, y), (x + 40, y), (x + 40, y + 30), (x, y + 30)])
    space.add_wipeout([(x + 8, y + 6), (x + 30, y + 6), (x + 20, y + 24)])
    space.add_line((x, y + 12), (x + 40, y + 12))


@cell("IMAGE")
def image(space, x, y):
    definition = space.doc.add_image_def(filename="site/house.png", size_in_pixel=(64, 48))
    space.add_image(definition, insert=(x, y), size_in_units=(40, 30))


@cell("PDFUNDERLAY")
def underlay(space, x, y):
    definition = space.doc.add_underlay_def(filename="site/survey.pdf", fmt="pdf", name="1")
    entity = space.add_underlay(definition, insert=(x, y), scale=(1, 1, 1))
    entity.set_boundary_path([(0, 0), (40, 0), (40, 30), (0, 30)])


@cell("SHAPE LIGHT 3DSOLID")
def left_out(space, x, y):
    space.add_shape("BOX", (x, y), 5)
    space.add_3dsolid(dxfattribs={"uid": "{00000000-0000-0000-0000-000000000001}"})


@cell("RAY XLINE")
def ray(space, x, y):
    space.add_ray((x + 20, y + 25), (0, -1), dxfattribs={"color": 8})
    space.add_xline((x, y + 5), (1, 0), dxfattribs={"color": 8})


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
    sheet.add_viewport((150, 100), (280, 180), (COLUMNS * WIDTH / 2, -HEIGHT * 2), HEIGHT * 6)
    document.saveas(path)


if __name__ == "__main__":
    default = pathlib.Path(__file__).resolve().parent.parent / "examples" / "kinds.dxf"
    draw(sys.argv[1] if len(sys.argv) > 1 else default)
