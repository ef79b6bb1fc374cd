#!/usr/bin/python3
"""End-to-end runs of `quoin paint`.

usage: PaintCommand_cli_test.py [UNITTEST ARGUMENT...]
The environment is that of quoin_cli_test.py, whose helpers it uses.
"""

import unittest

import quoin_cli_test as cli
import styles_cli_test as styles


class PaintTest(styles.StylesTest):
    def test_entities_with_their_vertices_are_painted(self):
        plan, out = self.plan(), self.path("o.dxf")
        report = self.report("paint", plan, "--layer", "a-new", "--rgb", "200,60,20", "-o", out,
                             "--picture", self.path("o.png"))
        self.assertEqual((report["changed"], report["kinds"]), (2, {"LINE": 1, "POLYLINE": 1}))
        self.assert_no_new_findings(plan, out)
        for entity in cli.read(out)[0].modelspace():
            isPainted = entity.dxf.layer == "A-NEW"
            self.assertEqual(entity.rgb, (200, 60, 20) if isPainted else None)
            for vertex in getattr(entity, "vertices", []):
                self.assertEqual(vertex.rgb, (200, 60, 20))
        self.assertGreater(self.path("o.png").stat().st_size, 1000)

    def test_old_releases_get_the_nearest_index(self):
        for version in ("R12", "R2000"):
            plan, out = self.plan(version), self.path("o.dxf")
            text = self.run_ok("paint", plan, "--layer", "A-NEW", "--rgb", "255,0,0", "-o", out)
            self.assertIn("colour 1 of the palette is the nearest", text)
            colors = {entity.dxf.color for entity in cli.read(out)[0].modelspace()
                      if entity.dxf.layer == "A-NEW"}
            self.assertEqual(colors, {1})

    def test_locked_layers_are_left_alone(self):
        plan, out = self.plan(), self.path("o.dxf")
        text = self.run_ok("paint", plan, "--layer", "A-LOCKED", "--rgb", "1,2,3", "-o", out)
        self.assertIn("not painted, on locked layers: 1 entity", text)
        self.assertEqual(plan.read_bytes(), out.read_bytes())

    def test_what_is_wrong_is_told(self):
        plan = self.plan()
        for rgb in ("256,0,0", "1,2", "1,2,3,4", "-1,0,0", "red", "1,2,3 "):
            self.assertIn("is no colour", self.fails(2, "paint", plan, "--layer", "*",
                                                     "--rgb=" + rgb, "--dry-run"))
        self.fails(2, "paint", plan, "--rgb", "1,2,3", "--dry-run")
        message = self.fails(4, "paint", plan, "--layer", "NONE", "--rgb", "1,2,3", "--dry-run")
        self.assertIn("A-WALL", message)
        self.assertIn("nothing to change",
                      self.fails(4, "paint", plan, "--layer", "0", "--rgb", "1,2,3", "--dry-run"))

    def test_shared_drawings_stay_whole(self):
        for plan in self.shared():
            out = self.path(plan.name)
            report = self.report("paint", plan, "--layer", "*", "--rgb", "10,20,30", "-o", out)
            self.assertGreater(report["changed"], 0, plan.name)
            self.assert_no_new_findings(plan, out)


if __name__ == "__main__":
    unittest.main()
