#!/usr/bin/python3
"""End-to-end runs of `quoin to-origin`.

usage: ToOriginCommand_cli_test.py [UNITTEST ARGUMENT...]
The environment is that of quoin_cli_test.py, whose helpers it uses.
"""

import unittest

import files_cli_test as files


class ToOriginTest(files.FilesTest):
    def test_every_position(self):
        plan = self.plan()
        for at, x, y in (("left-top", 100, 450), ("left-bottom", 100, 50), ("center", 600, 250),
                         ("right-top", 1100, 450), ("right-bottom", 1100, 50)):
            out = self.path(at + ".dxf")
            self.run_ok("to-origin", plan, "--at", at, "-o", out)
            self.assertEqual(self.first_line(out), ((100 - x, 50 - y, 0), (1100 - x, 50 - y, 0)))
            self.assert_no_new_findings(plan, out)

    def test_what_cannot_be_moved_is_named_and_nothing_written(self):
        plan = self.with_proxy("proxy.dxf")
        out = self.path("out.dxf")
        message = self.fails(6, "to-origin", plan, "--at", "center", "-o", out)
        self.assertIn("1 ACAD_PROXY_ENTITY", message)
        self.assertRegex(message, r"at line \d+ of")
        self.assertFalse(out.exists())
        text = self.run_ok("to-origin", plan, "--at", "center", "-o", out, "--leave-behind")
        self.assertIn("left as they are, the host cannot move them: 1 ACAD_PROXY_ENTITY", text)
        self.assertRegex(text, r"ACAD_PROXY_ENTITY [0-9A-F]+ at line \d+ of")
        self.assertEqual(self.first_line(out)[0], (-5, -2.5, 0))

    def test_places_that_are_no_entities_are_named(self):
        self.draw("geo.dxf").add_line((1, 2), (3, 4))
        self.documents["geo.dxf"].modelspace().new_geodata()
        plan = self.save("geo.dxf")
        for command in (("to-origin", plan, "--at", "center"),
                        ("rescale", plan, "--drawing-factor", "2")):
            report = self.report(*command, "--dry-run")
            self.assertEqual([row["kind"] for row in report["leftBehind"]], ["GEODATA"])
            self.assertIn("1 GEODATA", report["warnings"][0])
        report = self.report("rescale", plan, "--drawing-factor", "1", "--dry-run")
        self.assertEqual(report["leftBehind"], [])

    def test_a_drawing_is_moved_wholly_or_not_at_all(self):
        space = self.draw("far.dxf")
        space.add_line((1, 2), (3, 4))
        space.add_xline((777.5, 2), (1, 0))
        plan = self.save("far.dxf")
        plan.write_bytes(plan.read_bytes().replace(b"\n777.5\n", b"\nnorth\n"))
        message = self.fails(6, "to-origin", plan, "--at", "center", "-o", self.path("out.dxf"))
        self.assertIn("cannot move 1 of 2 entities (1 XLINE; the first is XLINE", message)
        self.assertFalse(self.path("out.dxf").exists())
        report = self.report("to-origin", plan, "--at", "center", "-o", self.path("out.dxf"),
                             "--leave-behind")
        self.assertEqual((report["changed"], len(report["leftBehind"])), (1, 1))

    def test_a_drawing_that_is_there_already_is_not_rewritten(self):
        plan = self.plan()
        self.run_ok("to-origin", plan, "--at", "left-bottom", "-o", self.path("out.dxf"))
        self.run_ok("to-origin", self.path("out.dxf"), "--at", "left-bottom", "-o",
                    self.path("again.dxf"))
        self.assertEqual(self.path("out.dxf").read_bytes(), self.path("again.dxf").read_bytes())

    def test_shared_drawings_come_to_the_origin(self):
        for drawing in self.shared():
            out = self.path(drawing.name)
            report = self.report("to-origin", drawing, "--at", "right-top", "-o", out,
                                 "--leave-behind")
            self.assertGreater(report["changed"], 0)
            # What cannot be moved cannot be measured either.
            high = self.report("extents", out)["extents"][1]
            size = max(1.0, *(abs(v) for v in report["basePoint"]))
            self.assertLess(abs(high[0]) + abs(high[1]), 1e-9 * size, drawing.name)
            self.assert_no_new_findings(drawing, out)

    def test_a_drawing_without_extents(self):
        self.draw("empty.dxf")
        self.fails(4, "to-origin", self.save("empty.dxf"), "--at", "center", "--dry-run")

    def test_an_unknown_position(self):
        self.fails(2, "to-origin", self.plan(), "--at", "top", "--dry-run")


if __name__ == "__main__":
    unittest.main()
