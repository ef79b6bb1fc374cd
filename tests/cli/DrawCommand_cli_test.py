#!/usr/bin/python3
"""End-to-end runs of `quoin draw`.

usage: DrawCommand_cli_test.py [UNITTEST ARGUMENT...]
The environment is that of quoin_cli_test.py, whose helpers it uses.
"""

import math
import unittest

import quoin_cli_test as cli


class DrawTest(cli.CliTest):
    def room(self):
        space = self.draw("room.dxf", **{"$INSUNITS": 4})
        for start, end in (((0, 0), (4000, 0)), ((4000, 0), (4000, 3000)),
                           ((4000, 3000), (0, 3000)), ((0, 3000), (0, 0))):
            space.add_line(start, end, dxfattribs={"layer": "A-WALL"})
        return self.save("room.dxf")

    def test_a_wall_across_a_room_cuts_and_is_cut(self):
        report = self.report("draw", self.room(), "--from", "-500,1500", "--to", "4500,1500",
                             "--layer", "A-WALL-NEW", "-o", self.path("o.dxf"))
        drawn = report["drawn"][0]
        self.assertEqual([piece["start"][0] for piece in drawn["results"]], [-500, 0, 4000])
        self.assertEqual(len(drawn["changes"]), 2)
        after, findings = cli.read(self.path("o.dxf"))
        self.assertEqual(findings, [])
        self.assertEqual(len(cli.lines_of(after, "A-WALL")), 6)
        self.assertEqual(len(cli.lines_of(after, "A-WALL-NEW")), 3)
        self.assertIn("A-WALL-NEW", after.layers)

    def test_a_path_draws_each_line_against_the_result_of_the_last(self):
        report = self.report("draw", self.room(), "--path",
                             "1000,-500 1000,3500 3000,3500 3000,-500", "--layer", "A-WALL", "-o", self.path("o.dxf"))
        self.assertEqual([len(line["changes"]) for line in report["drawn"]], [2, 0, 2])
        self.assertEqual(cli.read(self.path("o.dxf"))[1], [])

    def test_the_angle_lock_turns_each_line(self):
        report = self.report("draw", self.room(), "--from", "0,0", "--to", "1000,40",
                             "--layer", "A-WALL", "--angle-lock", "--dry-run")
        end = report["drawn"][0]["to"]
        self.assertEqual(end[1], 0.0)
        self.assertAlmostEqual(end[0], math.hypot(1000, 40))

    def test_a_line_without_ends_is_refused(self):
        self.fails(2, "draw", self.room(), "--layer", "X", "--from", "0,0", "--dry-run")


if __name__ == "__main__":
    unittest.main()
