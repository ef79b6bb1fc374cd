#!/usr/bin/python3
"""End-to-end runs of `quoin match-properties`.

usage: MatchPropertiesCommand_cli_test.py [UNITTEST ARGUMENT...]
The environment is that of quoin_cli_test.py, whose helpers it uses.
"""

import unittest

import quoin_cli_test as cli
import styles_cli_test as styles


class MatchPropertiesTest(styles.StylesTest):
    def test_five_properties_come_along(self):
        plan = self.plan()
        document, _ = cli.read(plan)
        source = next(e for e in document.modelspace() if e.dxf.layer == "A-WALL")
        source.dxf.lineweight = 50
        source.dxf.material_handle = document.materials.new("Brick").dxf.handle
        document.saveas(plan)
        out = self.path("o.dxf")
        report = self.report("match-properties", plan, "--from", source.dxf.handle, "--layer",
                             "A-NEW", "-o", out, "--picture", self.path("o.svg"))
        self.assertEqual(report["properties"], {"layer": "A-WALL", "colorIndex": 2,
                                                "lineWeight": 50, "linetype": "DASHED",
                                                "material": "Brick"})
        self.assertEqual(report["changed"], 2)
        self.assert_no_new_findings(plan, out)
        after, _ = cli.read(out)
        changed = [e for e in after.modelspace() if e.dxf.layer == "A-WALL"]
        self.assertEqual(len(changed), 3)
        for entity in changed:
            self.assertEqual((entity.dxf.color, entity.dxf.lineweight, entity.dxf.linetype,
                              entity.dxf.material_handle),
                             (2, 50, "DASHED", source.dxf.material_handle))
            for vertex in getattr(entity, "vertices", []):
                self.assertEqual((vertex.dxf.layer, vertex.dxf.color), ("A-WALL", 2))
        self.assertGreater(self.path("o.svg").stat().st_size, 1000)

    def test_a_true_colour_comes_along_as_its_index(self):
        plan = self.plan()
        document, _ = cli.read(plan)
        source = next(e for e in document.modelspace() if e.dxf.layer == "A-WALL")
        source.rgb = (255, 0, 0)
        source.dxf.color = 1
        document.saveas(plan)
        out = self.path("o.dxf")
        self.run_ok("match-properties", plan, "--from", source.dxf.handle, "--layer", "A-NEW",
                    "-o", out)
        changed = [e for e in cli.read(out)[0].modelspace() if e.dxf.handle != source.dxf.handle
                   and e.dxf.layer == "A-WALL"]
        self.assertEqual([(e.dxf.color, e.rgb) for e in changed], [(1, None)] * 2)

    def test_what_a_release_lacks_is_told(self):
        for version, words in (("R12", "R12 knows no line weights or materials"),
                               ("R2000", "R2000 knows no materials")):
            plan = self.plan(version)
            out = self.path("o.dxf")
            text = self.run_ok("match-properties", plan, "--from",
                               self.handle_of(plan, "A-WALL"), "--layer", "A-NEW", "-o", out)
            self.assertIn(words, text)
            self.assert_no_new_findings(plan, out)

    def test_what_is_wrong_is_told(self):
        plan = self.plan()
        document, _ = cli.read(plan)
        layer = document.layers.get("A-WALL").dxf.handle
        run = ("match-properties", plan, "--layer", "A-NEW", "--dry-run", "--from")
        self.assertIn("is no handle", self.fails(2, *run, "XYZ"))
        self.assertIn("nothing has the handle", self.fails(4, *run, "FFFFFF"))
        message = self.fails(4, *run, layer)
        self.assertIn("it is no entity", message)
        self.assertIn("LAYER " + layer, message)
        self.assertIn("nothing to change", self.fails(
            4, "match-properties", plan, "--layer", "A-WALL", "--dry-run", "--from",
            self.handle_of(plan, "A-WALL")))


if __name__ == "__main__":
    unittest.main()
