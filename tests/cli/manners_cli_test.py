#!/usr/bin/python3
"""End-to-end runs over several drawings, and about what all commands have in common.

usage: manners_cli_test.py [UNITTEST ARGUMENT...]
The environment is that of quoin_cli_test.py, whose helpers it uses.
"""

import json
import sys
import unittest

import quoin_cli_test as cli


class SeveralDrawingsTest(cli.CliTest):
    def plan(self, name):
        space = self.draw(name)
        space.add_line((0, 0), (1000, 0), dxfattribs={"layer": "WALL"})
        space.add_line((400, 0), (400, 800), dxfattribs={"layer": "WALL"})
        return self.save(name)

    def test_each_gets_its_place_and_a_failing_one_keeps_none_back(self):
        plans = [self.plan("a.dxf"), self.path("gone.dxf"), self.plan("b.dxf")]
        result = cli.quoin("break", *plans, "-o", self.path("out"), "--jobs", "2",
                           "--picture", self.path("{name}.svg"), "--report", "json")
        self.assertEqual(result.returncode, 3)
        document = json.loads(result.stdout)
        self.assertEqual([drawing["exitCode"] for drawing in document["drawings"]], [0, 3, 0])
        self.assertIn("gone.dxf", document["drawings"][1]["error"])
        for name in ("a", "b"):
            self.assertEqual(len(cli.lines_of(cli.read(self.path(f"out/{name}.dxf"))[0])), 3)
            self.assertTrue(self.path(f"{name}.svg").exists())
        self.assertIn(b"1 of 3 drawings failed", result.stderr)

    def test_an_option_takes_one_value_so_that_the_drawing_may_follow(self):
        plan = self.plan("a.dxf")
        self.run_ok("break", "--layer", "WALL*", "--at", "700,0", plan, "--dry-run")

    def test_quiet_prints_nothing_and_verbose_more(self):
        self.assertEqual(self.run_ok("break", self.plan("a.dxf"), "--dry-run", "--quiet"), "")

    def test_large_coordinates_keep_their_digits(self):
        space = self.draw("utm.dxf")
        space.add_line((500123.125, 4649776.0625), (500200.5, 4649776.0625))
        text = self.run_ok("info", self.save("utm.dxf"))
        self.assertIn("500123.125,4649776.0625,0 to 500200.5,4649776.0625,0", text)


if __name__ == "__main__":
    unittest.main(argv=[sys.argv[0], *sys.argv[1:]], verbosity=1)
