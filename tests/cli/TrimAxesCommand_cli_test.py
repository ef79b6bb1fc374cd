#!/usr/bin/python3
"""End-to-end runs of `quoin trim-axes`.

usage: TrimAxesCommand_cli_test.py [UNITTEST ARGUMENT...]
The environment is that of quoin_cli_test.py, whose helpers it uses.
"""

import unittest

import quoin_cli_test as cli


class TrimAxesTest(cli.CliTest):
    def test_grid_lines_end_at_their_outermost_crossings(self):
        space = self.draw("grid.dxf")
        for x in (0, 6000, 12000):
            space.add_line((x, -900), (x, 8000), dxfattribs={"layer": "GRID"})
        for y in (0, 5000):
            space.add_line((13000, y), (-700, y), dxfattribs={"layer": "GRID"})
        report = self.report("trim-axes", self.save("grid.dxf"), "--layer", "grid",
                             "-o", self.path("o.dxf"), "--picture", self.path("p.png"))
        self.assertEqual(len(report["changes"]), 5)
        after, findings = cli.read(self.path("o.dxf"))
        self.assertEqual(findings, [])
        self.assertEqual([line[:2] for line in cli.lines_of(after)],
                         [((0, 0, 0), (0, 5000, 0)), ((6000, 0, 0), (6000, 5000, 0)),
                          ((12000, 0, 0), (12000, 5000, 0)), ((12000, 0, 0), (0, 0, 0)),
                          ((12000, 5000, 0), (0, 5000, 0))])


if __name__ == "__main__":
    unittest.main()
