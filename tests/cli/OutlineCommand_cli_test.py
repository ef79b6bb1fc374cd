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


if __name__ == "__main__":
    unittest.main()
