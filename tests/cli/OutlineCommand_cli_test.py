#!/usr/bin/python3
"""End-to-end runs of `quoin outline`.

usage: OutlineCommand_cli_test.py [UNITTEST ARGUMENT...]
The environment is that of quoin_cli_test.py, whose helpers it uses.
"""

import unittest

import quoin_cli_test as cli


class OutlineTest(cli.CliTest):
    def corner(self):
        space = self.draw("axes.dxf", **{"$INSUNITS": 4})
        space.add_line((0, 0), (4000, 0), dxfattribs={"layer": "AXIS"})
        space.add_line((4000, 0), (4000, 3000), dxfattribs={"layer": "AXIS"})
        return self.save("axes.dxf")

    def test_a_corner_is_mitred(self):
        report = self.report("outline", self.corner(), "--layer", "AXIS", "--left", "100",
                             "--right", "150", "-o", self.path("o.dxf"))
        after, findings = cli.read(self.path("o.dxf"))
        self.assertEqual(findings, [])
        lines = {(line[0][:2], line[1][:2]) for line in cli.lines_of(after, "WALL-OUTLINE")}
        self.assertEqual(lines, {((0, 100), (3900, 100)), ((0, -150), (4150, -150)),
                                 ((0, 100), (0, -150)), ((3900, 100), (3900, 3000)),
                                 ((4150, -150), (4150, 3000)), ((3900, 3000), (4150, 3000))})
        self.assertEqual(report["lines"], 2)

    def test_widths_come_from_extended_data_layers_or_options(self):
        space = self.draw("w.dxf")
        self.documents["w.dxf"].appids.new("QUOIN")
        line = space.add_line((0, 0), (4000, 0), dxfattribs={"layer": "AXIS"})
        line.set_xdata("QUOIN", [(1040, 11.0), (1040, 22.0)])
        space.add_line((0, 900), (4000, 900), dxfattribs={"layer": "AXIS-B"})
        space.add_line((0, 1900), (4000, 1900), dxfattribs={"layer": "AXIS-C"})
        report = self.report("outline", self.save("w.dxf"), "--layer", "AXIS*", "--left", "1",
                             "--right", "2", "--width", "axis-b=60", "-o", self.path("o.dxf"))
        self.assertEqual([(change["left"], change["right"]) for change in report["walls"]],
                         [(11, 22), (30, 30), (1, 2)])

    def test_a_wall_without_width_is_refused(self):
        message = self.fails(2, "outline", self.corner(), "--layer", "AXIS", "--dry-run")
        self.assertIn("has no width", message)

    def wall_with_openings(self, openings, kind="door"):
        """A wall 200 wide from 0 to 6000, and openings along it."""
        space = self.draw("axes.dxf", **{"$INSUNITS": 4})
        self.documents["axes.dxf"].appids.new("QUOIN")
        space.add_line((0, 0), (6000, 0), dxfattribs={"layer": "AXIS"})
        for start, end in openings:
            line = space.add_line((start, 0), (end, 0), dxfattribs={"layer": "QUOIN-OPENING"})
            line.set_xdata("QUOIN", [(1000, kind)])
        return self.save("axes.dxf")

    def outline(self, plan, *options):
        report = self.report("outline", plan, "--layer", "AXIS", "--left", "120", "--right", "80",
                             "-o", self.path("o.dxf"), *options)
        after, findings = cli.read(self.path("o.dxf"))
        self.assertEqual(findings, [])
        return report, {(line[0][:2], line[1][:2]) for line in cli.lines_of(after, "WALL-OUTLINE")}

    def test_an_opening_is_a_gap_with_jambs(self):
        report, lines = self.outline(self.wall_with_openings([(1000, 1900), (3000, 4500)]))
        self.assertEqual(lines, {((0, 120), (1000, 120)), ((1900, 120), (3000, 120)),
                                 ((4500, 120), (6000, 120)), ((0, -80), (1000, -80)),
                                 ((1900, -80), (3000, -80)), ((4500, -80), (6000, -80)),
                                 ((0, 120), (0, -80)), ((6000, 120), (6000, -80)),
                                 ((1000, 120), (1000, -80)), ((1900, 120), (1900, -80)),
                                 ((3000, 120), (3000, -80)), ((4500, 120), (4500, -80))})
        self.assertEqual(report["openingLayers"], ["QUOIN-OPENING"])
        self.assertEqual(report["openingCounts"], {"cut": 2, "shortened": 0, "leftOut": 0})
        roles = [line["role"] for line in report["walls"][0]["results"]]
        self.assertEqual(roles.count("jamb"), 4)

    def test_openings_that_overlap_are_one_gap(self):
        report, lines = self.outline(self.wall_with_openings([(1000, 2000), (1500, 2500)]))
        self.assertEqual(len(lines), 8)
        self.assertIn(((2500, 120), (2500, -80)), lines)
        self.assertNotIn(((2000, 120), (2000, -80)), lines)
        self.assertEqual(report["openingCounts"]["cut"], 2)

    def test_no_openings_leaves_the_walls_whole(self):
        report, lines = self.outline(self.wall_with_openings([(1000, 2000)]), "--no-openings")
        self.assertEqual(len(lines), 4)
        self.assertEqual(report["openingLayers"], [])

    def test_openings_without_room_are_named(self):
        space = self.draw("axes.dxf", **{"$INSUNITS": 4})
        space.add_line((0, 0), (4000, 0), dxfattribs={"layer": "AXIS"})
        space.add_line((4000, 0), (4000, 3000), dxfattribs={"layer": "AXIS"})
        for start, end in (((3950, 0), (4000, 0)), ((3000, 0), (3990, 0)), ((90, 90), (99, 99))):
            space.add_line(start, end, dxfattribs={"layer": "QUOIN-OPENING"})
        report, lines = self.outline(self.save("axes.dxf"))
        self.assertEqual(report["openingCounts"], {"cut": 1, "shortened": 1, "leftOut": 2})
        self.assertEqual([skipped["reason"] for skipped in report["openingsLeftOut"]],
                         ["lies on no wall", "lies in the joint at the end of its wall"])
        self.assertIn(((3000, 120), (3000, -80)), lines)

    def test_what_walls_found_is_drawn_again(self):
        """The outline of a plan's walls and openings is a plan with the same walls and openings."""
        plan = cli.SOURCE / "examples" / "house-gbk" / "house.dxf"
        first = self.report("walls", plan, "-o", self.path("walls.dxf"))
        self.report("outline", self.path("walls.dxf"), "--layer", "QUOIN-WALL", "-o",
                    self.path("outline.dxf"))
        again = self.report("walls", self.path("outline.dxf"), "--layer", "WALL-OUTLINE",
                            "--dry-run")

        def places(report, what):
            return {tuple(sorted(tuple(round(value, 6) for value in thing[end][:2])
                                 for end in ("start", "end"))) + (round(thing["width"], 9),)
                    for thing in report[what]}
        for what in ("walls", "openings"):
            self.assertEqual(places(first, what), places(again, what))


if __name__ == "__main__":
    unittest.main()
