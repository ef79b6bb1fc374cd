#!/usr/bin/python3
"""End-to-end runs with QUOIN_TRACE, which tells what goes on inside.

usage: trace_cli_test.py [UNITTEST ARGUMENT...]
The environment is that of quoin_cli_test.py.
"""

import json
import os
import subprocess
import unittest

import quoin_cli_test as cli


class TraceTest(cli.CliTest):
    def plan(self):
        space = self.draw("plan.dxf")
        space.add_line((0, 0), (1000, 0), dxfattribs={"layer": "WALL"})
        space.add_line((400, 0), (400, 500), dxfattribs={"layer": "WALL"})
        return self.save("plan.dxf")

    def traced(self, value, *words):
        environment = dict(os.environ, QUOIN_TRACE=value)
        result = subprocess.run([cli.QUOIN, *map(str, words)], env=environment, timeout=300,
                                capture_output=True, text=True, check=True)
        return result.stdout, [line for line in result.stderr.splitlines() if "trace" in line]

    def subjects(self, lines):
        return {line.split(" ms ")[1].split(":")[0] for line in lines}

    def test_everything_is_told_on_the_standard_error_alone(self):
        plan = self.plan()
        stdout, lines = self.traced("1", "break", plan, "-o", self.path("o.dxf"), "--report", "json")
        self.assertEqual(self.subjects(lines), {"loader", "store", "saver"})
        self.assertEqual(json.loads(stdout)["drawings"][0]["changed"], 1)
        text = "\n".join(lines)
        for word in ("libquoin.so", "libquoincommands.so", "plan.dxf: read as DXF", "records",
                     "places changed", "o.dxf: replaced"):
            self.assertIn(word, text)

    def test_subjects_can_be_named(self):
        plan = self.plan()
        for value in ("store", "loader", "saver"):
            lines = self.traced(value, "break", plan, "-o", self.path("o.dxf"))[1]
            self.assertEqual(self.subjects(lines), {value})
        lines = self.traced("store,saver", "break", plan, "-o", self.path("o.dxf"))[1]
        self.assertEqual(self.subjects(lines), {"store", "saver"})

    def test_nothing_is_told_unless_asked_and_unknown_names_are_named(self):
        plan = self.plan()
        self.assertEqual(self.traced("", "info", plan)[1], [])
        self.assertEqual(len(self.traced("storage", "info", plan)[1]), 1)

    def test_a_name_cannot_write_to_the_terminal(self):
        self.plan().rename(self.path("a\x1b[2Jb.dxf"))
        lines = self.traced("store", "info", self.path("a\x1b[2Jb.dxf"))[1]
        self.assertTrue(lines)
        self.assertNotIn("\x1b", "".join(lines))


if __name__ == "__main__":
    unittest.main()
