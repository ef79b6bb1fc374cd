#!/usr/bin/python3
"""End-to-end runs of any command about what it leaves out.

usage: LeftOut_cli_test.py [UNITTEST ARGUMENT...]
The environment is that of quoin_cli_test.py, whose helpers it uses.
"""

import unittest

import ezdxf

import quoin_cli_test as cli


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
