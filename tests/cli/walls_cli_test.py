#!/usr/bin/python3
"""End-to-end runs about what counts as a wall line: units, blocks and multilines, what is left out.

usage: walls_cli_test.py [UNITTEST ARGUMENT...]
The environment is that of quoin_cli_test.py, whose helpers it uses.
"""

import unittest

import ezdxf

import quoin_cli_test as cli


class UnitsTest(cli.CliTest):
    """The capture distance and the unit that it follows from."""

    def house(self, factor, insunits):
        """Twelve walls of two faces, 100 mm thick, in a unit of 1/factor mm; and a stem whose end is
        5 mm away from one of them."""
        space = self.draw("house.dxf", **{"$INSUNITS": insunits})
        for row in range(12):
            for face in (0, 100):
                y = (row * 1200 + face) * factor
                space.add_line((0, y), (12000 * factor, y), dxfattribs={"layer": "WALL"})
        space.add_line((3000 * factor, 105 * factor), (3000 * factor, 900 * factor),
                       dxfattribs={"layer": "WALL"})
        return self.save("house.dxf")

    def test_a_drawing_in_another_unit_than_it_names_is_doubted_with_what_to_type(self):
        plan = self.house(1 / 25.4, 4)
        report = self.report("break", plan, "--dry-run")
        self.assertEqual(len(report["warnings"]), 1)
        self.assertIn("--units in", report["warnings"][0])
        self.assertIn("3.94 mm apart", report["warnings"][0])
        report = self.report("break", plan, "--dry-run", "--units", "in")
        self.assertEqual(report["warnings"], [])
        self.assertAlmostEqual(report["capture"]["distance"], 10 / 25.4)
        self.assertEqual(report["capture"]["units"], "in")
        self.assertEqual(report["changed"], 1)
        for command in ("merge", "outline", "draw", "solid"):
            arguments = {"merge": ["--layer", "WALL"], "draw": ["--layer", "WALL", "--from", "0,0",
                                                                "--to", "9,9"],
                         "outline": ["--layer", "WALL", "--left", "1"],
                         "solid": ["--layer", "WALL", "--left", "1", "--height", "90"]}[command]
            result = ["-o", self.path("m.obj")] if command == "solid" else ["--dry-run"]
            found = self.report(command, plan, *arguments, *result)["warnings"]
            self.assertTrue(any("--units in" in warning for warning in found), (command, found))

    def test_a_drawing_in_its_own_unit_is_not_doubted(self):
        for factor, insunits in ((1, 4), (0.001, 6), (1 / 25.4, 1), (0.1, 5), (1, 0)):
            report = self.report("break", self.house(factor, insunits), "--dry-run")
            self.assertEqual(report["warnings"], [])
            self.assertEqual(report["changed"], 1)

    def test_a_tolerance_has_a_unit_or_is_in_drawing_units(self):
        plan = self.house(0.001, 6)
        for text, distance in (("5mm", 0.005), ("0.2in", 0.00508), ("0.5 cm", 0.005),
                               ("0.01m", 0.01), ("1ft", 0.3048), ("0.25", 0.25)):
            report = self.report("break", plan, "--dry-run", "--tolerance", text)
            self.assertAlmostEqual(report["capture"]["distance"], distance, places=12)
        report = self.report("break", plan, "--dry-run", "--tolerance", "4mm")
        self.assertEqual(report["changed"], 0)

    def test_values_that_are_no_distance_are_refused(self):
        plan = self.house(1, 4)
        for option, values in (("--tolerance", ["0", "-5mm", "nan", "inf", "5 miles", "mm", "",
                                                "1e999", "5mm2", "0x5"]),
                               ("--project-scale", ["0", "-1", "nan", "inf", "", "1mm", "1e-320",
                                                    "1e999"]),
                               ("--units", ["", "inch", "MM", "0"])):
            for value in values:
                result = cli.quoin("break", plan, "--dry-run", f"{option}={value}")
                self.assertEqual(result.returncode, 2, (option, value, result.stdout))
                self.assertNotEqual(result.stderr, b"")

    def test_options_that_say_the_same_exclude_each_other(self):
        plan = self.house(1, 4)
        for second in (["--tolerance", "5"], ["--units", "in"]):
            result = cli.quoin("break", plan, "--dry-run", "--project-scale", "1", *second)
            self.assertEqual(result.returncode, 2, result.stdout)
        self.run_ok("break", plan, "--dry-run", "--units", "m", "--tolerance", "5mm")

    def test_a_published_plan_marked_wrongly(self):
        plan = cli.SHARED / "house_bishop_floorplan_r2004.dxf"
        if not plan.exists():
            self.skipTest("no shared drawings")
        report = self.report("break", plan, "--dry-run")
        self.assertEqual(report["changed"], 47)
        self.assertIn("--units in", " ".join(report["warnings"]))
        report = self.report("break", plan, "--dry-run", "--units", "in")
        self.assertEqual((report["changed"], report["warnings"]), (21, []))


class InsideTest(cli.CliTest):
    """Walls in blocks and multilines."""

    def plan(self):
        """A wall in model space, and a block with a stem on layer 0 that ends 5 away from it."""
        space = self.draw("plan.dxf")
        document = self.documents["plan.dxf"]
        block = document.blocks.new("STEM")
        block.add_line((0, 5), (0, 400))
        block.add_line((50, 5), (50, 400), dxfattribs={"layer": "OTHER"})
        block.add_lwpolyline([(100, 5), (100, 400), (150, 400)], dxfattribs={"layer": "A-WALL"})
        space.add_line((0, 0), (2000, 0), dxfattribs={"layer": "A-WALL"})
        return space, document

    def test_lines_inside_blocks_are_named_and_counted(self):
        space, document = self.plan()
        space.add_blockref("STEM", (200, 0), dxfattribs={"layer": "A-WALL"})
        space.add_blockref("STEM", (600, 0), dxfattribs={"layer": "DOORS"})
        outer = document.blocks.new("HOUSE")
        outer.add_blockref("STEM", (0, 0))
        space.add_blockref("HOUSE", (1000, 0), dxfattribs={"layer": "A-WALL"})
        plan = self.save("plan.dxf")
        report = self.report("break", plan, "--dry-run")
        self.assertEqual(report["insideBlocks"],
                         [{"block": "HOUSE", "inserts": 1, "lines": 3.0},
                          {"block": "STEM", "inserts": 2, "lines": 5.0}])
        self.assertEqual(report["changed"], 0)
        text = self.run_ok("break", plan, "--dry-run")
        self.assertIn("8 lines (HOUSE once, STEM 2 times): not worked on; --in-blocks takes them",
                      text)
        for command in (["merge"], ["trim-axes", "--layer", "A-WALL"]):
            text = self.run_ok(*command, plan, "--dry-run")
            self.assertIn("8 lines (HOUSE once, STEM 2 times): not worked on", text)
            self.assertNotIn("--in-blocks", text)
        for command in (["draw", "--layer", "A-WALL", "--from", "0,50", "--to", "9,50"],
                        ["outline", "--layer", "A-WALL", "--left", "9"]):
            self.assertIn("HOUSE once", self.run_ok(*command, plan, "--dry-run"))
        text = self.run_ok("solid", "--layer", "A-WALL", "--left", "9", "--height", "9", plan, "-o",
                           self.path("m.obj"))
        self.assertIn("HOUSE once", text)

    def test_they_cut_where_they_stand_in_the_plan(self):
        space, document = self.plan()
        space.add_blockref("STEM", (200, 0), dxfattribs={"layer": "A-WALL"})
        # Mirrored, and scaled unevenly: 5 becomes 7.5 above, -5 below.
        space.add_blockref("STEM", (600, 0), dxfattribs={"layer": "A-WALL", "xscale": -1,
                                                         "yscale": 1.5})
        space.add_blockref("STEM", (900, 0), dxfattribs={"layer": "DOORS", "rotation": 180})
        array = space.add_blockref("STEM", (1200, 0), dxfattribs={"layer": "A-WALL"})
        array.dxf.column_count, array.dxf.column_spacing = 2, 300
        array.dxf.row_count, array.dxf.row_spacing = 2, 1000
        plan = self.save("plan.dxf")
        report = self.report("break", plan, "-o", self.path("o.dxf"), "--in-blocks")
        cuts = [piece["start"][0] for piece in report["changes"][0]["results"][1:]]
        expected = [200, 300, 500, 600, 800, 1200, 1300, 1500, 1600]
        self.assertEqual([round(cut, 6) for cut in cuts], expected)
        self.assertEqual(report["lines"], 1 + 3 + 3 + 2 + 4 * 3)
        # The blocks and their inserts stay as they were.
        after = ezdxf.readfile(self.path("o.dxf"))
        self.assertEqual(len(after.modelspace().query("INSERT")), 4)
        self.assertEqual(len(after.blocks.get("STEM")), 3)

    def test_lines_inside_are_cut_by_break_and_stay_for_draw(self):
        space, document = self.plan()
        document.blocks.new("BAR").add_line((0, 0), (500, 0))
        space.add_blockref("BAR", (0, 1000), dxfattribs={"layer": "A-WALL"})
        space.add_line((250, 995), (250, 10), dxfattribs={"layer": "A-WALL"})
        plan = self.save("plan.dxf")
        report = self.report("break", plan, "--dry-run", "--in-blocks")
        self.assertEqual((report["heldInside"], report["changed"]), (0, 1))
        report = self.report("draw", plan, "--layer", "A-WALL", "--from", "100,900", "--to",
                             "100,1100", "--in-blocks", "-o", self.path("d.dxf"))
        self.assertEqual(len(report["drawn"][0]["results"]), 2)
        self.assertEqual(report["drawn"][0]["changes"], [])

    def test_blocks_inside_themselves_deep_and_in_vast_arrays_end(self):
        space, document = self.plan()
        loop = document.blocks.new("LOOP")
        loop.add_line((0, 5), (0, 100))
        loop.add_blockref("LOOP", (10, 0))
        space.add_blockref("LOOP", (0, 0), dxfattribs={"layer": "A-WALL"})
        inner = "STEM"
        for level in range(3000):
            block = document.blocks.new(f"LEVEL{level}")
            block.add_blockref(inner, (0, 0))
            inner = block.name
        space.add_blockref(inner, (300, 0), dxfattribs={"layer": "A-WALL"})
        inner = "STEM"
        for level in range(3):
            block = document.blocks.new(f"ARRAY{level}")
            array = block.add_blockref(inner, (0, 0))
            array.dxf.column_count = array.dxf.row_count = 32767
            array.dxf.column_spacing = array.dxf.row_spacing = 7
            inner = block.name
        plan = self.save("plan.dxf")
        report = self.report("break", plan, "--dry-run", "--in-blocks")
        self.assertEqual(report["changed"], 1)
        space.add_blockref(inner, (0, 0), dxfattribs={"layer": "A-WALL"})
        report = self.report("break", self.save("plan.dxf"), "--dry-run")
        shares = {share["block"]: share["lines"] for share in report["insideBlocks"]}
        self.assertEqual(shares["LOOP"], 1)
        self.assertEqual(shares["LEVEL2999"], 3)
        self.assertAlmostEqual(shares["ARRAY2"] / (3 * 32767.0 ** 6), 1.0)

    def test_multilines_take_part_by_their_elements(self):
        space, _ = self.plan()
        space.add_mline([(300, 10), (300, 500), (700, 500)],
                        dxfattribs={"layer": "A-WALL", "scale_factor": 20})
        space.add_mline([(0, 900), (300, 900)], dxfattribs={"layer": "OTHER"})
        plan = self.save("plan.dxf")
        report = self.report("break", plan, "--dry-run")
        self.assertEqual(report["multilines"], {"count": 1, "lines": 4.0})
        self.assertIn("4 lines (1 MLINE): not worked on; --in-blocks takes them along",
                      self.run_ok("break", plan, "--dry-run"))
        report = self.report("break", plan, "--dry-run", "--in-blocks", "--tolerance", "12")
        cuts = sorted(round(piece["start"][0], 6)
                      for piece in report["changes"][0]["results"][1:])
        lines = [line for line in space.query("MLINE")[0].virtual_entities()
                 if line.dxftype() == "LINE"]
        expected = sorted({round(end.x, 6) for line in lines
                           for end in (line.dxf.start, line.dxf.end) if abs(end.y - 10) < 1})
        self.assertEqual(cuts, expected)
        self.assertEqual(len(cuts), 2)


class LeftOutTest(cli.CliTest):
    """Nothing is left out in silence."""

    def odd_plan(self):
        space = self.draw("odd.dxf")
        wall = {"layer": "WALL"}
        space.add_line((0, 0), (1000, 0), dxfattribs=wall)
        space.add_line((5, 5), (5, 5), dxfattribs=wall)
        space.add_lwpolyline([(0, 100, 0), (100, 100, 1), (200, 100, 0)], format="xyb",
                             dxfattribs=wall)
        space.add_arc((0, 0), 50, 0, 90, dxfattribs=wall)
        space.add_solid([(0, 0), (1, 0), (0, 1)], dxfattribs=wall)
        return self.save("odd.dxf")

    def test_every_command_names_what_it_leaves_out(self):
        plan = self.odd_plan()
        for command in (["break"], ["draw", "--layer", "WALL", "--from", "0,50", "--to", "9,50"],
                        ["outline", "--layer", "WALL", "--left", "9"],
                        ["solid", "--layer", "WALL", "--left", "9", "--height", "9"],
                        ["merge"], ["trim-axes", "--layer", "WALL"]):
            result = ["-o", self.path("m.obj")] if command[0] == "solid" else ["--dry-run"]
            report = self.report(*command, plan, *result)
            kinds = {"ARC": 1, "SOLID": 1}
            if command[0] in ("merge", "trim-axes"):
                kinds["LWPOLYLINE"] = 1
            else:
                self.assertEqual(report["arcSegments"], 1, command)
            self.assertEqual(report["otherEntities"], kinds, command)
            self.assertEqual([skipped["reason"] for skipped in report["skipped"]],
                             ["has no length"], command)
            text = self.run_ok(*command, plan, *result)
            self.assertIn("of other kinds on these layers: 1 ARC", text)
            self.assertIn("has no length", text)

    def test_a_plan_without_wall_lines_is_nothing_to_work_on(self):
        space = self.draw("none.dxf")
        space.add_arc((0, 0), 50, 0, 90, dxfattribs={"layer": "WALL"})
        plan = self.save("none.dxf")
        for command in (["break"], ["merge"], ["trim-axes", "--layer", "WALL"],
                        ["outline", "--layer", "WALL", "--left", "9"],
                        ["draw", "--layer", "NEW", "--walls", "WALL", "--from", "0,0", "--to",
                         "9,9"]):
            message = self.fails(4, *command, plan, "--dry-run")
            self.assertIn("1 ARC", message)
        self.fails(4, "solid", "--layer", "WALL", "--left", "9", "--height", "9", plan, "-o",
                   self.path("m.obj"))
        # The first wall of an empty plan may be drawn.
        report = self.report("draw", "--layer", "NEW", "--from", "0,0", "--to", "9,9", plan,
                             "-o", self.path("d.dxf"))
        self.assertIn("no wall line", report["warnings"][0])

    def test_reference_lines_that_are_not_broken_are_told(self):
        space = self.draw("axes.dxf")
        space.add_line((0, 0), (4000, 0), dxfattribs={"layer": "AXIS"})
        space.add_line((1500, 0), (1500, 3000), dxfattribs={"layer": "AXIS"})
        plan = self.save("axes.dxf")
        outline = ["outline", "--layer", "AXIS", "--left", "60", "--right", "60"]
        warnings = self.report(*outline, plan, "--dry-run")["warnings"]
        self.assertEqual(len(warnings), 1)
        self.assertIn("1 reference line is not broken at 1 point", warnings[0])
        warnings = self.report("solid", *outline[1:], "--height", "9", plan, "-o",
                               self.path("m.obj"))["warnings"]
        self.assertIn("run quoin break first", warnings[0])
        self.run_ok("break", plan, "--layer", "AXIS", "-o", self.path("b.dxf"))
        self.assertEqual(self.report(*outline, self.path("b.dxf"), "--dry-run")["warnings"], [])

    def test_faces_of_walls_are_told_from_reference_lines(self):
        flat = cli.SOURCE / "examples" / "flat" / "flat.dxf"
        warnings = self.report("outline", flat, "--layer", "A-WALL*", "--left", "60",
                               "--dry-run")["warnings"]
        self.assertIn("the two faces of walls", " ".join(warnings))
        studio = cli.SOURCE / "examples" / "studio" / "studio.dxf"
        warnings = self.report("outline", studio, "--layer", "W-*", "--left", "60",
                               "--dry-run")["warnings"]
        self.assertNotIn("faces", " ".join(warnings))

    def test_slivers_are_named(self):
        space = self.draw("close.dxf")
        space.add_line((0, 0), (1000, 0), dxfattribs={"layer": "WALL"})
        for x in (400, 404):
            space.add_line((x, 5), (x, 500), dxfattribs={"layer": "WALL"})
        plan = self.save("close.dxf")
        report = self.report("break", plan, "-o", self.path("o.dxf"))
        self.assertEqual([sliver["length"] for sliver in report["slivers"]], [4.0])
        after = ezdxf.readfile(self.path("o.dxf"))
        sliver = after.entitydb[report["slivers"][0]["handle"]]
        self.assertAlmostEqual((sliver.dxf.end - sliver.dxf.start).magnitude, 4.0)
        self.assertIn("1 piece is shorter than the capture distance",
                      self.run_ok("break", plan, "--dry-run"))

    def test_a_second_run_cuts_as_many_more_as_the_first_one_said(self):
        space = self.draw("twice.dxf")
        # The long line's first cut makes an end that the slanting one's foot is near to.
        lines = [((0, 0), (1000, 0)), ((500, 9), (500, 400)), ((494, -7), (900, -300))]
        for start, end in lines:
            space.add_line(start, end, dxfattribs={"layer": "WALL"})
        plan = self.save("twice.dxf")
        said = self.report("break", plan, "-o", self.path("o.dxf"))["secondRun"]
        cut = self.report("break", self.path("o.dxf"), "--dry-run")["changed"]
        self.assertEqual(said, cut)

    def test_cuts_stay_within_a_layer_if_asked(self):
        space = self.draw("layers.dxf")
        space.add_line((0, 0), (1000, 0), dxfattribs={"layer": "WALL-EXT"})
        space.add_line((300, 5), (300, 500), dxfattribs={"layer": "WALL-EXT"})
        space.add_line((600, 5), (600, 500), dxfattribs={"layer": "WALL-INT"})
        plan = self.save("layers.dxf")
        self.assertEqual(self.report("break", plan, "--dry-run")["pieces"], 3)
        report = self.report("break", plan, "--dry-run", "--same-layer")
        self.assertEqual(report["pieces"], 2)
        self.assertEqual(report["changes"][0]["results"][1]["start"][0], 300)
        report = self.report("break", plan, "--dry-run", "--same-layer", "--at", "600,400")
        self.assertEqual(report["changed"], 2)
        draw = ["draw", plan, "--layer", "WALL-INT", "--from", "200,250", "--to", "900,250"]
        self.assertEqual(len(self.report(*draw, "--dry-run")["drawn"][0]["changes"]), 2)
        report = self.report(*draw, "--dry-run", "--same-layer")
        self.assertEqual(len(report["drawn"][0]["changes"]), 1)


if __name__ == "__main__":
    unittest.main()
