#!/usr/bin/python3
"""End-to-end runs of `quoin merge`.

usage: MergeCommand_cli_test.py [UNITTEST ARGUMENT...]
The environment is that of quoin_cli_test.py, whose helpers it uses.
"""

import unittest

import quoin_cli_test as cli


class MergeTest(cli.CliTest):
    def test_broken_lines_merge_again(self):
        for plan in cli.EXAMPLES:
            with self.subTest(plan.name):
                self.run_ok("break", plan, "-o", self.path("broken.dxf"))
                report = self.report("merge", self.path("broken.dxf"), "-o", self.path("o.dxf"))
                self.assert_no_new_findings(plan, self.path("o.dxf"))
                after, _ = cli.read(self.path("o.dxf"))
                for change in report["changes"]:
                    self.assertIn(change["source"], after.entitydb)
                    for absorbed in change["absorbed"]:
                        self.assertNotIn(absorbed["source"], after.entitydb)

    def test_collinear_lines_merge_and_others_do_not(self):
        space = self.draw("m.dxf")
        add = lambda start, end, **more: space.add_line(
            start, end, dxfattribs={"layer": "WALL", **more}).dxf.handle
        first = add((0, 0), (1000, 0))
        second = add((1000, 0), (2000, 0))
        add((3000, 0), (4000, 0))
        add((4000, 0), (5000, 0), color=1)  # another colour
        add((0, 500, 0), (1000, 500, 0))
        add((1000, 500, 3), (2000, 500, 3))  # another height
        report = self.report("merge", self.save("m.dxf"), "-o", self.path("o.dxf"))
        self.assertEqual([(change["source"], [gone["source"] for gone in change["absorbed"]])
                          for change in report["changes"]], [(second, [first])])
        self.assertEqual(report["changes"][0]["results"][0]["length"], 2000)
        after, _ = cli.read(self.path("o.dxf"))
        self.assertEqual(len(cli.lines_of(after)), 5)
        survivor = [line for line in cli.lines_of(after) if line[2] == second][0]
        self.assertEqual({survivor[0], survivor[1]}, {(0, 0, 0), (2000, 0, 0)})

    def test_lines_are_kept_apart_where_asked(self):
        space = self.draw("k.dxf")
        for x in (0, 1000, 2000):
            space.add_line((x, 0), (x + 1000, 0), dxfattribs={"layer": "WALL"})
        report = self.report("merge", self.save("k.dxf"), "-o", self.path("o.dxf"),
                             "--keep-at", "1000,0")
        self.assertEqual(report["absorbed"], 1)


if __name__ == "__main__":
    unittest.main()
