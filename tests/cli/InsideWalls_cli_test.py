#!/usr/bin/python3
"""End-to-end runs of any command about lines that blocks and multilines show.

usage: InsideWalls_cli_test.py [UNITTEST ARGUMENT...]
The environment is that of quoin_cli_test.py, whose helpers it uses.
"""

import unittest

import ezdxf

import quoin_cli_test as cli


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


if __name__ == "__main__":
    unittest.main()
