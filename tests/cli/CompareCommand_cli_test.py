#!/usr/bin/python3
"""End-to-end runs of `quoin compare`.

usage: CompareCommand_cli_test.py [UNITTEST ARGUMENT...]
The environment is that of quoin_cli_test.py, whose helpers it uses.
"""

import json
import random
import re
import time
import unittest

import quoin_cli_test as cli


class CompareCase(cli.CliTest):
    def compare(self, old, new, *options):
        """The JSON report of two drawings; the exit code must say the same."""
        result = cli.quoin("compare", old, new, *options, "--report", "json")
        self.assertIn(result.returncode, (0, 1), result.stderr.decode())
        document = json.loads(result.stdout)
        drawing = document["drawings"][0]
        self.assertEqual(result.returncode, 0 if drawing["same"] else 1)
        self.assertEqual((document["exitCode"], drawing["exitCode"]), (result.returncode,) * 2)
        self.assertEqual((document["done"], document["failed"]), (1, 0))
        return drawing

    @staticmethod
    def counts(drawing):
        counts = drawing["counts"]
        return tuple(counts[name] for name in ("added", "removed", "moved", "changed", "same"))

    def model(self, drawing):
        return next(space for space in drawing["spaces"] if space["space"] == "model")


class CompareTest(CompareCase):
    def plan(self, name="old.dxf", version="R2010"):
        space = self.draw(name, version)
        document = self.documents[name]
        document.layers.add("WALL", color=1)
        document.layers.add("DOOR", color=3)
        door = document.blocks.new("DOOR-90")
        door.add_line((0, 0), (90, 0))
        door.add_arc((0, 0), 90, 0, 90)
        for i in range(5):
            space.add_line((i * 100, 0), (i * 100, 400 + i), dxfattribs={"layer": "WALL"})
        space.add_blockref("DOOR-90", (50, 0), dxfattribs={"layer": "DOOR"})
        space.add_text("Kitchen", dxfattribs={"insert": (20, 200), "height": 10})
        space.add_lwpolyline([(0, 0), (500, 0), (500, 500)], close=True)
        return space

    def edited(self, edit, *options, version="R2010"):
        self.plan(version=version)
        old = self.save("old.dxf")
        document, _ = cli.read(old)
        edit(document, document.modelspace())
        document.saveas(self.path("new.dxf"))
        return self.compare(old, self.path("new.dxf"), *options)

    def test_a_drawing_is_the_same_as_itself(self):
        self.plan()
        plan = self.save("old.dxf")
        drawing = self.compare(plan, plan)
        self.assertTrue(drawing["same"])
        self.assertEqual(self.counts(drawing), (0, 0, 0, 0, 10))
        self.assertIn("the drawings are the same", self.run_ok("compare", plan, plan))

    def test_what_was_added_and_removed(self):
        def edit(_, space):
            space.delete_entity(space.query("LINE")[1])
            space.add_circle((1, 2), 3, dxfattribs={"layer": "DOOR"})
        drawing = self.edited(edit)
        self.assertEqual(self.counts(drawing), (1, 1, 0, 0, 9))
        model = self.model(drawing)
        self.assertEqual(model["added"][0]["after"]["kind"], "CIRCLE")
        self.assertEqual((model["removed"][0]["before"]["kind"], model["removed"][0]["layer"]),
                         ("LINE", "WALL"))
        layers = {layer["name"]: layer["counts"] for layer in drawing["layers"]}
        self.assertEqual(layers["WALL"]["removed"], 1)
        self.assertEqual(layers["DOOR"]["added"], 1)

    def test_a_place_ten_times_as_far_is_another(self):
        """Far from the origin numbers are compared by their digits, and those are the same here."""
        plans = []
        for name, x in (("old.dxf", 15000), ("new.dxf", 150000)):
            self.draw(name).add_circle((x, 0), 2)
            plans.append(self.save(name))
        self.assertEqual(self.counts(self.compare(*plans)), (0, 0, 1, 0, 0))

    def test_what_moved_and_by_which_vector(self):
        def edit(_, space):
            space.query("INSERT")[0].translate(12.5, -3, 0)
            # Under a new handle, too.
            line = space.query("LINE")[2]
            space.add_line(line.dxf.start + (7, 7, 0), line.dxf.end + (7, 7, 0),
                           dxfattribs={"layer": "WALL"})
            space.delete_entity(line)
        drawing = self.edited(edit)
        self.assertEqual(self.counts(drawing), (0, 0, 2, 0, 8))
        moves = {one["after"]["kind"]: one["by"] for one in self.model(drawing)["moved"]}
        self.assertEqual(moves, {"INSERT": [12.5, -3, 0], "LINE": [7, 7, 0]})

    def test_what_changed_and_from_what(self):
        def edit(_, space):
            first, second, third = space.query("LINE")[:3]
            first.dxf.layer = "DOOR"
            second.dxf.end = (1, 2, 0)
            third.dxf.color = 5
            third.dxf.lineweight = 50
            space.query("TEXT")[0].dxf.text = "Bath"
        drawing = self.edited(edit)
        self.assertEqual(self.counts(drawing), (0, 0, 0, 4, 6))
        changes = [{p["name"]: (p["before"], p["after"]) for p in one["properties"]}
                   for one in self.model(drawing)["changed"]]
        self.assertEqual(changes, [{"layer": ("WALL", "DOOR")}, {"end": ("100,401", "1,2")},
                                   {"colour": ("ByLayer", "5"),
                                    "line weight": ("ByLayer", "0.5 mm")},
                                   {"text": ("Kitchen", "Bath")}])

    def test_tables_blocks_and_settings(self):
        def edit(document, _):
            document.layers.add("NEW")
            document.layers.get("WALL").color = 6
            document.layers.get("DOOR").freeze()
            document.layers.get("DOOR").off()
            document.blocks.get("DOOR-90").add_circle((0, 0), 5)
            document.blocks.new("WINDOW").add_line((0, 0), (1, 1))
            document.header["$INSUNITS"] = 6
        drawing = self.edited(edit)
        tables = {table["name"]: table for table in drawing["tables"]}
        self.assertEqual(tables["layers"]["added"], ["NEW"])
        self.assertEqual({one["name"]: {p["name"]: p["after"] for p in one["properties"]}
                          for one in tables["layers"]["changed"]},
                         {"WALL": {"colour": "6"}, "DOOR": {"frozen": "yes", "off": "yes"}})
        self.assertEqual(tables["blocks"]["added"], ["WINDOW"])
        block = next(space for space in drawing["spaces"] if space["name"] == "DOOR-90")
        self.assertEqual((block["counts"]["added"], block["counts"]["same"]), (1, 2))
        self.assertEqual(drawing["settings"], [{"name": "units", "before": "4", "after": "6"}])
        self.assertIn("different units", drawing["warnings"][0])

    def test_layouts(self):
        def edit(document, _):
            document.layout("Layout1").add_line((0, 0), (5, 5))
            document.layouts.new("A3")
        drawing = self.edited(edit)
        self.assertEqual(next(table for table in drawing["tables"]
                              if table["name"] == "layouts")["added"], ["A3"])
        layout = next(space for space in drawing["spaces"] if space["name"] == "Layout1")
        self.assertEqual((layout["space"], layout["counts"]["added"]), ("layout", 1))

    def test_attributes_and_vertices_belong_to_what_has_them(self):
        for version in ("R12", "R2010"):
            space = self.draw("old.dxf", version)
            block = self.documents["old.dxf"].blocks.new("TAG")
            block.add_attdef("NO", (0, 0))
            space.add_blockref("TAG", (5, 5)).add_attrib("NO", "12", (5, 5))
            space.add_polyline3d([(0, 0, 0), (1, 1, 1), (2, 0, 0)])
            old = self.save("old.dxf")
            document, _ = cli.read(old)
            document.modelspace().query("INSERT")[0].attribs[0].dxf.text = "13"
            polyline = document.modelspace().query("POLYLINE")[0]
            polyline.vertices[1].dxf.location = (1, 1, 9)
            document.saveas(self.path("new.dxf"))
            changed = self.model(self.compare(old, self.path("new.dxf")))["changed"]
            self.assertEqual([p["name"] for one in changed for p in one["properties"]],
                             ["attributes", "vertices"])
            self.assertEqual(changed[0]["properties"][0]["after"], "13")

    def test_order_and_handles_are_no_difference(self):
        self.plan()
        old = self.save("old.dxf")
        names = ["LINE"] * 5 + ["INSERT", "TEXT", "LWPOLYLINE"]
        space = self.draw("new.dxf")
        document = self.documents["new.dxf"]
        document.layers.add("WALL", color=1)
        document.layers.add("DOOR", color=3)
        door = document.blocks.new("DOOR-90")
        door.add_arc((0, 0), 90, 0, 90)
        door.add_line((0, 0), (90, 0))
        source = list(cli.read(old)[0].modelspace())
        self.assertEqual([one.dxftype() for one in source], names)
        random.Random(1).shuffle(source)
        for one in source:
            if one.dxftype() == "INSERT":
                space.add_blockref("DOOR-90", one.dxf.insert, dxfattribs={"layer": "DOOR"})
            else:
                space.add_foreign_entity(one)
        new = self.save("new.dxf")
        for options in ((), ("--ignore", "handles")):
            drawing = self.compare(old, new, *options)
            self.assertEqual(self.counts(drawing), (0, 0, 0, 0, 10))
            self.assertTrue(drawing["same"], drawing["tables"])

    def test_the_other_way_round_is_the_mirror_image(self):
        def edit(_, space):
            lines = space.query("LINE")
            space.delete_entity(lines[0])
            lines[1].dxf.layer = "DOOR"
            lines[2].translate(1, 1, 0)
            space.add_circle((1, 2), 3)
            space.add_circle((1, 2), 4)
        there = self.edited(edit)
        back = self.compare(self.path("new.dxf"), self.path("old.dxf"))
        self.assertEqual(self.counts(there), (2, 1, 1, 1, 7))
        self.assertEqual(self.counts(back), (1, 2, 1, 1, 7))
        self.assertEqual([-v for v in self.model(there)["moved"][0]["by"][:2]],
                         self.model(back)["moved"][0]["by"][:2])

    def test_layers_are_chosen_by_pattern(self):
        def edit(_, space):
            for line in space.query("LINE")[:2]:
                line.dxf.color = 5
            space.query("TEXT")[0].dxf.text = "Bath"
        self.assertEqual(self.counts(self.edited(edit, "--layer", "wa*")), (0, 0, 0, 2, 3))
        old, new = self.path("old.dxf"), self.path("new.dxf")
        self.assertEqual(self.counts(self.compare(old, new, "--layer", "DOOR")), (0, 0, 0, 0, 1))
        self.assertIn("on these layers", self.fails(4, "compare", old, new, "--layer", "NONE"))

    def test_tolerance(self):
        def edit(_, space):
            space.query("LINE")[0].dxf.end = (0, 400.004, 0)
        self.assertEqual(self.counts(self.edited(edit)), (0, 0, 0, 1, 9))
        drawing = self.compare(self.path("old.dxf"), self.path("new.dxf"), "--tolerance", "0.005")
        self.assertEqual(self.counts(drawing), (0, 0, 0, 0, 10))
        self.assertEqual(drawing["tolerance"], 0.005)

    def test_after_break_it_says_what_break_says(self):
        for plan in cli.EXAMPLES:
            with self.subTest(plan.parent.name):
                result = cli.quoin("break", plan, "-o", self.path("broken.dxf"), "--report", "json")
                if result.returncode == 4:
                    continue
                told = json.loads(result.stdout)["drawings"][0]
                model = self.model(self.compare(plan, self.path("broken.dxf")))
                changed = {one["source"] for one in told["changes"]}
                new = {piece["handle"] for one in told["changes"] for piece in one["results"]}
                self.assertEqual({one["after"]["source"] for one in model["added"]}, new - changed)
                # A polyline that gives a segment away is changed without being a piece.
                self.assertEqual({one["before"]["source"] for one in
                                  model["changed"] + model["removed"]}, changed)
                self.assertEqual(new & {one["before"]["source"] for one in model["removed"]},
                                 set())
                self.assertEqual(model["moved"], [])

    def test_pictures(self):
        def edit(_, space):
            space.delete_entity(space.query("LINE")[0])
            space.add_circle((250, 200), 50)
        self.edited(edit)
        for ending in ("png", "svg", "pdf"):
            picture = self.path("p." + ending)
            result = cli.quoin("compare", self.path("old.dxf"), self.path("new.dxf"),
                               "--picture", picture)
            self.assertEqual(result.returncode, 1, result.stderr)
            self.assertGreater(picture.stat().st_size, 500)
            self.assertIn(f"picture: {picture}", result.stdout.decode())

    def marks(self, *options):
        """How often the picture has what was, what is, and a frame around a block."""
        picture = self.path("p.svg")
        result = cli.quoin("compare", self.path("old.dxf"), self.path("new.dxf"), "--picture",
                           picture, *options)
        self.assertEqual(result.returncode, 1, result.stderr)
        strokes = re.findall(r'stroke="(#[0-9a-f]{6})" stroke-width="([0-9.]+)"[^>]* d="([^"]*)"',
                             picture.read_text())
        count = lambda color, width: sum(d.count("M") for c, w, d in strokes
                                         if (c, w) == (color, width))
        # The legend has a line for what was, too; the others are wider there.
        return (count("#cc0d33", "3.6") - 1, count("#1a8c59", "1.6"), count("#e0750d", "1.2"),
                picture.read_text())

    def test_a_block_that_differs_is_marked_wherever_it_shows(self):
        def edit(document):
            door = document.blocks.get("DOOR-90")
            door.delete_entity(door.query("ARC")[0])
            door.add_lwpolyline([(0, 90), (64, 64), (90, 0)])
        def plan():
            space = self.plan()
            room = self.documents["old.dxf"].blocks.new("ROOM")
            room.add_blockref("DOOR-90", (10, 10), dxfattribs={"xscale": -1, "rotation": 30})
            space.add_blockref("ROOM", (900, 0), dxfattribs={
                "column_count": 3, "column_spacing": 300, "row_count": 2, "row_spacing": 300})
            self.documents["old.dxf"].blocks.new("UNUSED").add_line((0, 0), (1, 0))
        plan()
        old = self.save("old.dxf")
        document, _ = cli.read(old)
        edit(document)
        document.saveas(self.path("new.dxf"))
        drawing = self.compare(old, self.path("new.dxf"))
        block = next(one for one in drawing["spaces"] if one["name"] == "DOOR-90")
        self.assertEqual(block["places"], 7)
        self.assertEqual([one["before"]["kind"] for one in block["removed"]], ["ARC"])
        self.assertEqual([one["after"]["kind"] for one in block["added"]], ["LWPOLYLINE"])
        self.assertEqual([one["name"] for one in drawing["spaces"] if "places" in one], ["DOOR-90"])
        self.assertEqual(self.marks()[:3], (7, 7, 7))
        text = cli.quoin("compare", old, self.path("new.dxf")).stdout.decode()
        self.assertIn("block DOOR-90, at 7 places of model space: 1 added, 1 removed", text)

    def test_a_reference_that_is_new_itself_is_marked_as_a_whole(self):
        def edit(document, space):
            document.blocks.get("DOOR-90").add_circle((0, 0), 5)
            space.query("INSERT")[0].dxf.layer = "WALL"
        self.edited(edit)
        # Line and arc as they were; line, arc and circle as they are.
        old, new, frames, picture = self.marks()
        self.assertEqual((old, new, frames), (2, 3, 0))
        self.assertNotIn("differ inside", picture)

    def test_blocks_with_another_base_point_and_blocks_that_show_nowhere(self):
        def edit(document, _):
            document.blocks.get("DOOR-90").block.dxf.base_point = (45, 0, 0)
            document.layout("Layout1").add_line((0, 0), (5, 5))
            document.blocks.get("UNUSED").add_circle((0, 0), 5)
        self.plan()
        self.documents["old.dxf"].blocks.new("UNUSED").add_line((0, 0), (1, 0))
        old = self.save("old.dxf")
        document, _ = cli.read(old)
        edit(document, None)
        document.saveas(self.path("new.dxf"))
        drawing = self.compare(old, self.path("new.dxf"))
        self.assertEqual({one["name"]: one["places"] for one in drawing["spaces"]
                          if "places" in one}, {"DOOR-90": 1, "UNUSED": 0})
        old, new, frames, picture = self.marks()
        self.assertEqual((old, new, frames), (2, 2, 1))
        self.assertIn("layouts that differ, too: Layout1", picture)
        self.assertIn("model space does not show: 1", picture)

    def test_more_places_than_anybody_can_look_at(self):
        def edit(document, space):
            document.blocks.get("DOOR-90").add_circle((0, 0), 5)
        self.plan()
        self.documents["old.dxf"].modelspace().add_blockref("DOOR-90", (900, 0), dxfattribs={
            "column_count": 30000, "column_spacing": 9, "row_count": 30000, "row_spacing": 9})
        old = self.save("old.dxf")
        document, _ = cli.read(old)
        edit(document, None)
        document.saveas(self.path("new.dxf"))
        drawing = self.compare(old, self.path("new.dxf"))
        self.assertEqual(max(one.get("places", 0) for one in drawing["spaces"]), 900000001)
        self.assertIn("the first 20000 are marked", self.marks()[3])

    def test_empty_drawings(self):
        self.draw("a.dxf")
        self.draw("b.dxf", "R12")
        drawing = self.compare(self.save("a.dxf"), self.save("a.dxf"), "--picture",
                               self.path("p.png"))
        self.assertEqual(self.counts(drawing), (0, 0, 0, 0, 0))
        self.plan()
        self.assertEqual(self.counts(self.compare(self.path("a.dxf"), self.save("old.dxf")))[0], 8)
        self.compare(self.path("a.dxf"), self.save("b.dxf"))

    def test_the_text_report_names_a_few_and_all_names_all(self):
        def edit(_, space):
            for i in range(30):
                space.add_point((i, i * i))
        self.edited(edit)
        words = ("compare", self.path("old.dxf"), self.path("new.dxf"))
        text = cli.quoin(*words).stdout.decode()
        self.assertIn("... and 20 more; --all lists them", text)
        self.assertEqual(text.count("POINT "), 10)
        self.assertEqual(cli.quoin(*words, "--all").stdout.decode().count("POINT "), 30)
        quiet = cli.quoin(*words, "--quiet")
        self.assertEqual((quiet.returncode, quiet.stdout, quiet.stderr), (1, b"", b""))

    def test_what_cannot_be(self):
        self.plan()
        plan = self.save("old.dxf")
        self.assertIn("nosuch.dxf", self.fails(3, "compare", plan, self.path("nosuch.dxf")))
        self.assertIn("nosuch.dxf", self.fails(3, "compare", self.path("nosuch.dxf"), plan))
        self.path("bad.dxf").write_text("no drawing")
        self.fails(3, "compare", plan, self.path("bad.dxf"))
        self.fails(2, "compare", plan)
        self.fails(2, "compare", "-", "-")
        self.fails(2, "compare", plan, plan, "--picture", self.path("p.gif"))
        self.fails(2, "compare", plan, plan, "--picture", plan)
        self.fails(2, "compare", plan, plan, "--tolerance", "-1")
        self.fails(2, "compare", plan, plan, "--ignore", "everything")
        self.fails(5, "compare", plan, plan, "--picture", self.path("no/where/p.png"))

    def test_a_large_drawing_takes_no_longer_than_reading_it(self):
        lines = []
        for i in range(100000):
            x = i % 1000 * 10
            lines.append(f"  0\nLINE\n  5\n{i + 256:X}\n  8\nWALL\n 10\n{x}.5\n 20\n{i}.0\n"
                         f" 11\n{x + 5}.5\n 21\n{i + 3}.0\n")
        frame = "  0\nSECTION\n  2\nENTITIES\n{}  0\nENDSEC\n  0\nEOF\n"
        old, new = self.path("old.dxf"), self.path("new.dxf")
        old.write_text(frame.format("".join(lines)))
        # All renumbered, moved, and one recoloured.
        moved = [line.replace("LINE\n  5\n", "LINE\n  5\nF").replace(" 20\n", " 20\n1")
                 for line in reversed(lines)]
        new.write_text(frame.format("".join(moved)))
        began = time.monotonic()
        self.run_ok("info", old)
        reading = time.monotonic() - began
        began = time.monotonic()
        result = cli.quoin("compare", old, new, "--quiet")
        self.assertEqual(result.returncode, 1)
        # Generous, since tests run side by side: this guards against loops over all pairs.
        self.assertLess(time.monotonic() - began, 2 * reading + 20)


class CompareTwinsTest(CompareCase):
    """Drawings that another program saved as DWG and as DXF, ASCII and binary."""

    def test_twins_show_the_same(self):
        drawings = sorted(cli.SHARED.glob("*.dwg")) if cli.SHARED.is_dir() else []
        if not drawings:
            self.skipTest("no shared drawings here")
        for plan in drawings:
            for ending in (".dxf", "_ascii.dxf", "_binary.dxf"):
                twin = plan.with_name(plan.stem + ending)
                if twin.is_file():
                    with self.subTest(twin.name):
                        drawing = self.compare(plan, twin)
                        self.assertEqual(self.counts(drawing)[:4], (0, 0, 0, 0))
                        told = {(table["name"], name) for table in drawing["tables"] for name in
                                table["added"] + table["removed"] +
                                [one["name"] for one in table["changed"]]}
                        # Palette colours beside true ones, and a dynamic block (docs/dwg-check.md).
                        self.assertLessEqual(told, {("dimension styles", "custom_dim_style"),
                                                    ("blocks", "my-dynamic-block")})

    def test_what_differs_between_twins_is_told(self):
        plan = cli.SHARED / "acadsharp_sample_AC1032.dwg"
        twin = cli.SHARED / "acadsharp_sample_AC1032_ascii.dxf"
        if not twin.is_file():
            self.skipTest("no shared drawings here")
        text = twin.read_bytes()
        # A control point, a vertex of the leader, the end of its hook with all before it.
        for old, new, handle in ((b"17.50312151541948", b"17.6", "434"),
                                 (b"729.2681170780972", b"729.5", "512"),
                                 (b"14.07181240225556", b"14.5", "512")):
            self.assertIn(old, text)
            self.path("other.dxf").write_bytes(text.replace(old, new))
            for pair in ((plan, self.path("other.dxf")), (self.path("other.dxf"), plan)):
                changed = self.model(self.compare(*pair))["changed"]
                self.assertEqual([one["after"]["source"] for one in changed], [handle])


if __name__ == "__main__":
    unittest.main()
