#!/usr/bin/python3
"""End-to-end runs of `break --in-blocks` where lines inside blocks and multilines are cut.

usage: Explode_cli_test.py [UNITTEST ARGUMENT...]
The environment is that of quoin_cli_test.py, whose helpers it uses.
"""

import unittest

import ezdxf
from ezdxf.addons.drawing import Frontend, RenderContext
from ezdxf.addons.drawing.backend import Backend
from ezdxf.math import Vec3

import quoin_cli_test as cli

WALL = {"layer": "WALL"}


class Ink(Backend):
    """What a drawing shows, by another program's rules: straight strokes, curves, marks and texts,
    each with its colour, linetype, line weight and layer."""

    def __init__(self):
        super().__init__()
        self.strokes = []
        self.curves = []
        self.others = []

    @staticmethod
    def look(properties):
        # Where nothing says what by block is, the other program has a name of its own for it.
        linetype = properties.linetype_name.upper().replace("STANDARD", "CONTINUOUS")
        return (properties.color, linetype,
                round(properties.lineweight, 3), properties.layer)

    def draw_line(self, start, end, properties):
        self.strokes.append((self.look(properties), start, end))

    def draw_path(self, path, properties):
        if not path.has_curves:
            return super().draw_path(path, properties)
        points = list(path.flattening(0.001))
        steps = [(a.distance(b), a.lerp(b)) for a, b in zip(points, points[1:])]
        length = sum(step for step, _ in steps)
        middle = sum((point * step for step, point in steps), start=Vec3()) / length
        self.curves.append((self.look(properties), length, middle, {points[0], points[-1]}))

    def draw_point(self, pos, properties):
        self.others.append((self.look(properties), "point", pos.round(4) + Vec3()))

    def draw_filled_polygon(self, points, properties):
        self.others.append((self.look(properties), "fill", tuple(p.round(4) + Vec3() for p in points)))

    def draw_text(self, text, transform, properties, cap_height):
        matrix = tuple(round(value, 4) + 0.0 for value in transform)
        self.others.append((self.look(properties), text, matrix, round(cap_height, 4)))

    def get_font_measurements(self, cap_height, font=None):
        from ezdxf.tools.fonts import FontMeasurements
        return FontMeasurements(0, cap_height, cap_height / 2, cap_height / 4)

    def get_text_line_width(self, text, cap_height, font=None):
        return len(text) * cap_height

    def set_background(self, color):
        pass

    def clear(self):
        pass


def ink(path):
    document = ezdxf.readfile(path)
    backend = Ink()
    Frontend(RenderContext(document), backend).draw_layout(document.modelspace())
    return backend


def is_same_curve(one, other):
    """Whether curves agree but for how another program makes chords of them."""
    close = 1e-3 * one[1]
    return (one[0] == other[0] and abs(one[1] - other[1]) < close
            and one[2].distance(other[2]) < close
            and (len(one[3]) == 1  # closed: where it begins does not show
                 or all(any(a.distance(b) < 1e-6 for b in other[3]) for a in one[3])))


def hang_dictionary(document, entity):
    dictionary = entity.new_extension_dict().dictionary
    dictionary["DATA"] = document.objects.add_dictionary(dictionary.dxf.handle)


def lies_on(point, start, end):
    length = start.distance(end)
    return abs(start.distance(point) + point.distance(end) - length) <= 1e-6 * max(length, 1.0)


class ExplodeCase(cli.CliTest):
    def plan(self, version="R2010"):
        self.draw("plan.dxf", version)
        document = self.documents["plan.dxf"]
        document.header["$LTSCALE"] = 1e7  # dashes longer than any line: pieces begin them anew
        document.linetypes.add("DASHES", pattern=[2.0, 1.0, -1.0])
        for layer, color in (("WALL", 1), ("WALL-IN", 2), ("PAPER", 3)):
            document.layers.add(layer, color=color)
        return document

    def block(self, document, name="HOUSE"):
        """A wall from 0,0 to 1000,0 on layer 0, and another one above."""
        block = document.blocks.new(name)
        block.add_line((0, 0), (1000, 0))
        block.add_line((0, 300), (1000, 300), dxfattribs={"layer": "WALL-IN"})
        return block

    def run_break(self, *options):
        plan = self.save("plan.dxf")
        self.path("o.dxf").unlink(missing_ok=True)
        report = self.report("break", plan, "-o", self.path("o.dxf"), "--in-blocks", *options)
        self.assert_no_new_findings(plan, self.path("o.dxf"))
        self.assert_same_plan(plan, self.path("o.dxf"))
        return report, ezdxf.readfile(self.path("o.dxf"))

    def assert_same_plan(self, before, after):
        """The same strokes with the same look, but that some come in pieces; nothing else changes."""
        old, new = ink(before), ink(after)
        self.assertEqual(sorted(map(str, old.others)), sorted(map(str, new.others)))
        self.assertEqual(len(old.curves), len(new.curves))
        for curve in old.curves:
            self.assertTrue(any(is_same_curve(curve, other) for other in new.curves), curve)
        rest = list(new.strokes)
        for look, start, end in old.strokes:
            pieces = [stroke for stroke in rest if stroke[0] == look
                      and lies_on(stroke[1], start, end) and lies_on(stroke[2], start, end)]
            covered = sum(piece[1].distance(piece[2]) for piece in pieces)
            self.assertAlmostEqual(covered, start.distance(end), places=5, msg=(look, start, end))
            rest = [stroke for stroke in rest if not any(stroke is piece for piece in pieces)]
        self.assertEqual(rest, [])

    def assert_whole(self, report, document, count=1):
        self.assertEqual(report["exploded"], [])
        self.assertEqual(len(document.modelspace().query("INSERT MLINE")), count)
        return [left["reason"] for left in report["leftWhole"]]


class ExplodeTest(ExplodeCase):
    def test_an_insert_whose_walls_are_cut_gives_way_to_its_contents(self):
        document = self.plan()
        block = self.block(document)
        block.add_circle((500, 150), 20)
        block.add_text("room", dxfattribs={"height": 50, "insert": (100, 100)})
        space = document.modelspace()
        insert = space.add_blockref("HOUSE", (2000, 500), dxfattribs=WALL)
        space.add_line((2400, 0), (2400, 495), dxfattribs=WALL)
        report, after = self.run_break()
        self.assertEqual(len(after.modelspace().query("INSERT")), 0)
        self.assertEqual(len(after.blocks.get("HOUSE")), 4)
        self.assertEqual(len(report["exploded"]), 1)
        exploded = report["exploded"][0]
        self.assertEqual((exploded["source"], exploded["kind"], exploded["block"],
                          exploded["entities"]), (insert.dxf.handle, "INSERT", "HOUSE", 4))
        lines = self.path("plan.dxf").read_text().splitlines()
        self.assertEqual(lines[exploded["line"]].strip(), "INSERT")
        self.assertEqual((report["changed"], report["heldInside"], report["lines"]), (1, 0, 3))
        pieces = report["changes"][0]["results"]
        self.assertEqual([(piece["start"][:2], piece["end"][:2]) for piece in pieces],
                         [([2000, 500], [2400, 500]), ([2400, 500], [3000, 500])])
        text = self.run_ok("break", self.path("plan.dxf"), "--dry-run", "--in-blocks")
        self.assertIn("exploded, since lines in them are cut: 1 insert into 4 entities",
                      text)
        self.assertIn(f"exploded: INSERT {insert.dxf.handle} at line", text)
        self.assertIn("(block HOUSE) into 4 entities", text)
        self.assertIn("2 lines (HOUSE once): taken along", text)

    def test_inserts_that_are_not_cut_stay(self):
        document = self.plan()
        self.block(document)
        space = document.modelspace()
        space.add_blockref("HOUSE", (0, 0), dxfattribs=WALL)
        space.add_blockref("HOUSE", (0, 2000), dxfattribs=WALL)
        space.add_line((400, 2295), (400, 2100), dxfattribs=WALL)
        report, after = self.run_break()
        self.assertEqual([piece["entities"] for piece in report["exploded"]], [2])
        self.assertEqual(len(after.modelspace().query("INSERT")), 1)
        report = self.report("break", self.path("o.dxf"), "--dry-run", "--in-blocks")
        self.assertEqual((report["changed"], report["exploded"]), (0, []))

    def test_without_the_option_nothing_is_exploded(self):
        document = self.plan()
        self.block(document)
        document.modelspace().add_blockref("HOUSE", (0, 0), dxfattribs=WALL)
        document.modelspace().add_line((400, 10), (400, 200), dxfattribs=WALL)
        plan = self.save("plan.dxf")
        report = self.report("break", plan, "-o", self.path("o.dxf"))
        self.assertEqual((report["exploded"], report["leftWhole"]), ([], []))
        self.assertEqual(plan.read_bytes(), self.path("o.dxf").read_bytes())

    def test_turned_mirrored_and_scaled_inserts_keep_their_place(self):
        for look in ({"rotation": 30}, {"xscale": -1}, {"yscale": -2, "xscale": 2, "zscale": 2},
                     {"rotation": 200, "xscale": -0.5, "yscale": 0.5, "zscale": 0.5},
                     {"extrusion": (0, 0, -1), "rotation": 20}):
            with self.subTest(look):
                document = self.plan()
                block = self.block(document)
                block.block.dxf.base_point = (500, 0)
                block.add_lwpolyline([(0, 0), (0, 300, 0, 0, 0.5), (1000, 300), (1000, 0)],
                                     dxfattribs=WALL)
                block.add_arc((500, 100), 50, 10, 100)
                block.add_polyline2d([(0, 600), (100, 600), (100, 700)], dxfattribs=WALL)
                block.add_text("a", dxfattribs={"height": 50, "rotation": 20})
                block.add_mtext("b", dxfattribs={"char_height": 40, "insert": (300, 100)})
                block.add_ellipse((200, 200), (50, 10), 0.5)
                block.add_hatch(color=4).paths.add_polyline_path([(0, 0), (9, 0), (9, 9)])
                space = document.modelspace()
                insert = space.add_blockref("HOUSE", (100, 200, 50), dxfattribs={**WALL, **look})
                cut, away = insert.matrix44().transform_vertices([(480, 0), (480, 200)])
                space.add_line(cut + (away - cut) * 0.01, away, dxfattribs=WALL)
                report, _ = self.run_break()
                self.assertEqual([entry["entities"] for entry in report["exploded"]], [9])
                self.assertEqual(report["changed"], 1)

    def test_scaled_unevenly_lines_follow(self):
        document = self.plan()
        self.block(document).add_lwpolyline([(0, 50), (1000, 50), (900, 80)], dxfattribs=WALL)
        space = document.modelspace()
        space.add_blockref("HOUSE", (0, 0), dxfattribs={**WALL, "xscale": 3, "yscale": 0.5,
                                                        "rotation": 15})
        space.add_blockref("HOUSE", (0, 2000), dxfattribs={**WALL, "xscale": 2})
        space.add_line((900, 2005), (900, 2009), dxfattribs=WALL)
        report, _ = self.run_break()
        self.assertEqual(len(report["exploded"]), 1)

    def test_layer_0_and_what_is_by_block_become_what_the_insert_says(self):
        document = self.plan()
        block = document.blocks.new("LOOKS")
        block.add_line((0, 0), (1000, 0))
        by_block = {"color": 0, "linetype": "BYBLOCK", "lineweight": -2}
        for row, layer in enumerate(("0", "WALL", "PAPER"), start=1):
            block.add_line((0, row * 100), (1000, row * 100),
                           dxfattribs={"layer": layer, **by_block})
            block.add_line((0, row * 100 + 20), (1000, row * 100 + 20), dxfattribs={"layer": layer})
        block.add_line((0, 500), (1000, 500), dxfattribs={"color": 5, "lineweight": 50})
        block.add_polyline2d([(0, 600), (500, 700)], dxfattribs=by_block)
        document.layers.get("WALL").dxf.linetype = "DASHES"
        document.layers.get("WALL").dxf.lineweight = 70
        block.add_line((0, 800), (1000, 800)).dxf.transparency = 0x01000000
        block.add_attdef("NUMBER", (0, 0), "7")
        space = document.modelspace()
        for row, look in enumerate(({"transparency": 0x0200007F}, {"color": 6, "linetype": "DASHES", "lineweight": 100},
                                    {"color": 0, "linetype": "BYBLOCK", "lineweight": -2},
                                    {"true_color": 0x123456})):
            space.add_blockref("LOOKS", (0, row * 2000), dxfattribs={**WALL, **look})
            space.add_line((300, row * 2000 + 5), (300, row * 2000 + 50), dxfattribs=WALL)
        report, after = self.run_break()
        self.assertEqual(len(report["exploded"]), 4)
        self.assertEqual(len(after.modelspace().query('*[layer=="0"]')), 0)
        self.assertEqual(len(after.modelspace().query("*[color==0]")), 0)
        for polyline in after.modelspace().query("POLYLINE"):
            self.assertEqual({vertex.dxf.layer for vertex in polyline.vertices}, {"WALL"})
        faint = [line.dxf.get("transparency") for line in after.modelspace().query("LINE")
                 if line.dxf.start.y % 2000 == 800]
        self.assertEqual(faint, [0x0200007F, None, None, None])
        self.assertEqual({entry["entities"] for entry in report["exploded"]}, {10})

    def test_of_nested_inserts_those_on_the_way_to_a_cut_are_exploded(self):
        document = self.plan()
        self.block(document, "ROOM")
        self.block(document, "DOOR").add_text("door", dxfattribs={"height": 9})
        floor = document.blocks.new("FLOOR")
        floor.add_blockref("ROOM", (100, 0), dxfattribs={"rotation": 90})
        floor.add_blockref("ROOM", (3000, 0), dxfattribs={"color": 0})
        door = floor.add_blockref("DOOR", (5000, 0), dxfattribs={"layer": "PAPER", "xscale": 2,
                                                                 "yscale": 2, "zscale": 2})
        door.add_attrib("NUMBER", "7", (5000, 9), dxfattribs={"height": 30, "color": 0,
                                                            "layer": "0"})
        space = document.modelspace()
        space.add_blockref("FLOOR", (0, 0), dxfattribs={**WALL, "rotation": 10, "color": 4})
        stem = ezdxf.math.Matrix44.z_rotate(0.17453292519943295).transform_vertices(
            [(105, 400), (205, 400)])
        space.add_line(*stem, dxfattribs=WALL)
        report, after = self.run_break()
        self.assertEqual([entry["entities"] for entry in report["exploded"]], [4])
        inserts = after.modelspace().query("INSERT")
        self.assertEqual(sorted(insert.dxf.name for insert in inserts), ["DOOR", "ROOM"])
        number, = [part for insert in inserts for part in insert.attribs]
        self.assertEqual((number.dxf.text, number.dxf.layer, number.dxf.color), ("7", "0", 0))
        self.assertEqual(report["changed"], 1)

    def test_all_cells_of_an_array_are_put_in_place(self):
        document = self.plan()
        self.block(document)
        space = document.modelspace()
        array = space.add_blockref("HOUSE", (0, 0), dxfattribs={**WALL, "rotation": 30})
        array.dxf.column_count, array.dxf.column_spacing = 3, 1500
        array.dxf.row_count, array.dxf.row_spacing = 2, 700
        cell = list(array.multi_insert())[4]
        space.add_line(*cell.matrix44().transform_vertices([(700, 8), (700, 90)]), dxfattribs=WALL)
        report, after = self.run_break()
        self.assertEqual([entry["entities"] for entry in report["exploded"]], [12])
        self.assertEqual(len(after.modelspace().query("LINE")), 14)

    def test_a_multiline_gives_way_to_its_elements(self):
        document = self.plan()
        style = document.mline_styles.new("CAPPED")
        style.dxf.flags = 16 + 256 + 2
        style.elements.append(1.0, 5, "DASHES")
        style.elements.append(0.0, 256, "BYLAYER")
        style.elements.append(-1.0, 6, "BYLAYER")
        space = document.modelspace()
        for row, (name, closed) in enumerate((("Standard", False), ("CAPPED", False),
                                              ("CAPPED", True))):
            line = space.add_mline([(0, row * 2000), (1000, row * 2000), (1000, row * 2000 + 900)],
                                   close=closed, dxfattribs={**WALL, "scale_factor": 40})
            line.set_style(name)
            line.update_geometry()
            edge = min(part.dxf.start.y for part in line.virtual_entities()
                       if part.dxf.start.y == part.dxf.end.y and part.dxf.start.x < 1
                       or part.dxf.start.y == part.dxf.end.y)
            space.add_line((500, edge - 5), (500, edge - 300), dxfattribs=WALL)
        report, after = self.run_break()
        self.assertEqual([(entry["kind"], "block" in entry) for entry in report["exploded"]],
                         [("MLINE", False)] * 3)
        self.assertEqual(report["changed"], 3)
        self.assertEqual(len(after.modelspace().query("MLINE")), 0)
        self.assertIn("exploded, since lines in them are cut: 3 multilines into",
                      self.run_ok("break", self.path("plan.dxf"), "--dry-run", "--in-blocks"))

    def test_a_multiline_in_a_block_is_taken_out_and_exploded(self):
        document = self.plan()
        document.blocks.new("MULTI").add_mline([(0, 0), (1000, 0)],
                                               dxfattribs={"scale_factor": 40})
        space = document.modelspace()
        space.add_blockref("MULTI", (0, 100), dxfattribs={**WALL, "rotation": 90})
        space.add_line((-10, 400), (-300, 400), dxfattribs=WALL)
        report, _ = self.run_break("--tolerance", "60")
        self.assertEqual([entry["kind"] for entry in report["exploded"]], ["INSERT", "MLINE"])
        self.assertGreater(report["changed"], 0)

    def test_a_point_cuts_the_nearest_line_inside_too(self):
        document = self.plan()
        self.block(document)
        space = document.modelspace()
        space.add_blockref("HOUSE", (0, 0), dxfattribs=WALL)
        space.add_line((0, 5000), (1000, 5000), dxfattribs=WALL)
        report, _ = self.run_break("--at", "250,20")
        self.assertEqual((report["changed"], len(report["exploded"])), (1, 1))
        insert = space.add_blockref("HOUSE", (0, 0), dxfattribs=WALL)
        document.modelspace().delete_entity(space.query("INSERT").first)
        insert.add_attrib("NUMBER", "7", (10, 10))
        report, _ = self.run_break("--at", "250,20")
        self.assertEqual(report["exploded"], [])
        self.assertEqual(report["changes"][0]["results"][0]["start"][1], 5000)

    def test_old_drawings_and_binary_ones(self):
        for version in ("R12", "R2000", "R2018"):
            with self.subTest(version):
                document = self.plan(version)
                self.block(document).add_polyline2d([(0, 600), (500, 700)],
                                                    dxfattribs={"color": 0})
                space = document.modelspace()
                space.add_blockref("HOUSE", (0, 0), dxfattribs={**WALL, "rotation": 45})
                stem = ezdxf.math.Matrix44.z_rotate(0.7853981633974483).transform_vertices(
                    [(400, 8), (400, 90)])
                space.add_line(*stem, dxfattribs=WALL)
                report, _ = self.run_break()
                self.assertEqual(len(report["exploded"]), 1)

    def test_a_hatch_is_tied_to_the_block_no_longer(self):
        document = self.plan()
        block = self.block(document)
        outline = block.add_lwpolyline([(0, 50), (1000, 50), (1000, 250)], close=True)
        hatch = block.add_hatch(color=4)
        path = hatch.paths.add_polyline_path([(0, 50), (1000, 50), (1000, 250)])
        hatch.associate(path, [outline])
        space = document.modelspace()
        space.add_blockref("HOUSE", (0, 0), dxfattribs=WALL)
        space.add_line((400, -5), (400, -90), dxfattribs=WALL)
        _, after = self.run_break()
        copy = after.modelspace().query("HATCH").first
        self.assertEqual((copy.dxf.associative, copy.paths[0].source_boundary_objects), (0, []))
        kept = after.blocks.get("HOUSE").query("HATCH").first
        self.assertEqual((kept.dxf.associative, len(kept.paths[0].source_boundary_objects)), (1, 1))


class LeftWholeTest(ExplodeCase):
    """What cannot be exploded without loss stays, and is named."""

    def reason(self, change, holder="HOUSE"):
        """Of an insert of a block that `change` has seen, whose wall would be cut."""
        document = self.plan()
        block = self.block(document)
        space = document.modelspace()
        insert = space.add_blockref(holder, (0, 0), dxfattribs=WALL)
        space.add_line((400, 5), (400, 90), dxfattribs=WALL)
        change(document, block, insert)
        report, after = self.run_break()
        self.assertEqual((report["changed"], report["heldInside"]), (0, 1))
        reasons = self.assert_whole(report, after)
        left = report["leftWhole"][0]
        self.assertEqual((left["source"], left["kind"], left["block"], left["lines"]),
                         (insert.dxf.handle, "INSERT", holder, 1))
        text = self.run_ok("break", self.path("plan.dxf"), "--dry-run", "--in-blocks")
        self.assertIn(f"left whole with 1 line not cut: INSERT {insert.dxf.handle} at line", text)
        self.assertIn(f"(block {holder}) {reasons[0]}", text)
        return reasons[0]

    def test_an_insert_with_more_to_it_than_its_contents(self):
        def attribute(document, block, insert):
            insert.add_attrib("NUMBER", "7", (10, 10))

        def data(document, block, insert):
            document.appids.add("PLANNER")
            insert.set_xdata("PLANNER", [(1000, "x")])

        def dictionary(document, block, insert):
            hang_dictionary(document, insert)

        def mark(document, block, insert):
            block.block_record.dxf.explode = 0

        def group(document, block, insert):
            document.groups.new("GROUP").extend([insert])
            insert.set_reactors([document.groups.get("GROUP").dxf.handle])

        for change, reason in ((attribute, "has attributes"),
                               (data, "has extended data of PLANNER"),
                               (dictionary, "has an extension dictionary (a clip, parameters"),
                               (mark, "shows a block that is marked as not to be exploded"),
                               (group, "is held by another object")):
            with self.subTest(change.__name__):
                self.assertIn(reason, self.reason(change))

    def test_contents_that_have_no_exact_copy(self):
        def dimension(document, block, insert):
            block.add_linear_dim((0, 900), (0, 0), (1000, 0)).render()

        def circle(document, block, insert):
            block.add_circle((0, 0), 5)
            insert.dxf.xscale = 2

        def text(document, block, insert):
            block.add_text("t", dxfattribs={"height": 5})
            insert.dxf.xscale = 2

        def constant(document, block, insert):
            block.add_attdef("KIND", (0, 0), "house", dxfattribs={"flags": 2})

        def dictionary(document, block, insert):
            hang_dictionary(document, block[0])

        for change, reason in ((dimension, "holds DIMENSION, which cannot be taken out"),
                               (circle, "holds CIRCLE that uneven scaling would make another"),
                               (text, "holds TEXT that uneven scaling"),
                               (constant, "holds an attribute with a constant value"),
                               (dictionary, "holds LINE with an extension dictionary")):
            with self.subTest(change.__name__):
                self.assertIn(reason, self.reason(change))

    def test_layers_that_are_locked_or_do_not_show(self):
        document = self.plan()
        self.block(document)
        space = document.modelspace()
        document.layers.add("ALL").lock()
        space.add_blockref("HOUSE", (0, 0), dxfattribs={"layer": "ALL"})
        space.add_line((400, 305), (400, 390), dxfattribs=WALL)
        report, after = self.run_break("--layer", "WALL*")
        self.assertEqual(self.assert_whole(report, after), ["is on a locked layer"])
        document.layers.get("ALL").unlock()
        document.layers.get("ALL").freeze()
        report, after = self.run_break("--layer", "WALL*")
        self.assertEqual(self.assert_whole(report, after), ["is on a layer that does not show"])
        document.layers.get("ALL").thaw()
        document.layers.get("WALL-IN").lock()
        report, after = self.run_break("--layer", "WALL*")
        self.assertEqual(self.assert_whole(report, after), [])
        self.assertEqual(report["heldByLockedLayers"], 1)

    def test_nested_inserts_that_must_stay_are_named(self):
        document = self.plan()
        self.block(document, "ROOM")
        floor = document.blocks.new("FLOOR")
        inner = floor.add_blockref("ROOM", (0, 0))
        inner.add_attrib("NUMBER", "7", (10, 10))
        space = document.modelspace()
        space.add_blockref("FLOOR", (0, 0), dxfattribs=WALL)
        space.add_line((400, 5), (400, 90), dxfattribs=WALL)
        report, after = self.run_break()
        reason, = self.assert_whole(report, after)
        self.assertRegex(reason, f"holds INSERT {inner.dxf.handle} at line .*, which has attributes")

    def test_a_nested_insert_that_no_insert_could_show_keeps_the_outer_one_whole(self):
        document = self.plan()
        self.block(document, "ROOM")
        floor = self.block(document, "FLOOR")
        floor.add_blockref("ROOM", (0, 5000), dxfattribs={"rotation": 30})
        space = document.modelspace()
        space.add_blockref("FLOOR", (0, 0), dxfattribs={**WALL, "xscale": 2})
        space.add_line((400, 5), (400, 90), dxfattribs=WALL)
        report, after = self.run_break()
        reason, = self.assert_whole(report, after)
        self.assertIn("holds INSERT that uneven scaling", reason)

    def test_blocks_inside_themselves_too_deep_and_in_vast_arrays(self):
        document = self.plan()
        space = document.modelspace()
        loop = self.block(document, "LOOP")
        loop.add_blockref("LOOP", (0, 50))
        space.add_blockref("LOOP", (0, 0), dxfattribs=WALL)
        inner = self.block(document, "LEVEL").name
        for level in range(150):
            block = document.blocks.new(f"LEVEL{level}")
            block.add_blockref(inner, (0, 0))
            inner = block.name
        space.add_blockref(inner, (0, 1000), dxfattribs=WALL)
        self.block(document)
        array = space.add_blockref("HOUSE", (0, 2000), dxfattribs=WALL)
        array.dxf.column_count = array.dxf.row_count = 600
        array.dxf.column_spacing = array.dxf.row_spacing = 5000
        for row in range(3):
            space.add_line((400, row * 1000 - 5), (400, row * 1000 - 90), dxfattribs=WALL)
        plan = self.save("plan.dxf")
        report = self.report("break", plan, "-o", self.path("o.dxf"), "--in-blocks")
        self.assertEqual([left["reason"] for left in report["leftWhole"]],
                         ["shows a block that is inside itself", "nests deeper than 100 blocks",
                          "shows more entities than are put into a drawing (500000)"])
        self.assertEqual(plan.read_bytes(), self.path("o.dxf").read_bytes())

    def test_multilines_that_are_more_than_lines(self):
        document = self.plan()
        space = document.modelspace()
        for row, flags in enumerate((1, 64)):
            style = document.mline_styles.new(f"STYLE{row}")
            style.dxf.flags = flags
            style.elements.append(1.0)
            style.elements.append(-1.0)
            line = space.add_mline([(0, row * 2000), (1000, row * 2000)],
                                   dxfattribs={**WALL, "scale_factor": 20})
            line.set_style(style.dxf.name)
            line.update_geometry()
            edge = min(vertex.dxf.start.y for vertex in line.virtual_entities()
                       if vertex.dxftype() == "LINE")
            space.add_line((500, edge - 5), (500, edge - 300), dxfattribs=WALL)
        report, after = self.run_break()
        self.assertEqual(self.assert_whole(report, after, 2), ["has a fill", "has round ends"])


if __name__ == "__main__":
    unittest.main()
