#!/usr/bin/python3
"""End-to-end runs of the commands for styles and entity properties.

usage: styles_cli_test.py [UNITTEST ARGUMENT...]
The environment is that of quoin_cli_test.py, whose helpers it uses.
"""

import sys
import unittest

import quoin_cli_test as cli

VERSIONS = ["R12", "R2000", "R2004", "R2007", "R2010", "R2013", "R2018"]
DIM_SETTINGS = {"dimexe": 2.5, "dimexo": 8.0, "dimasz": 2.0, "dimtxt": 2.5, "dimtad": 1,
                "dimtix": 1, "dimtofl": 1, "dimrnd": 0.0, "dimgap": 1.5, "dimtih": 0, "dimtoh": 0,
                "dimlfac": 0.01, "dimscale": 8000.0}
DIM_SETTINGS_SINCE_R13 = {"dimjust": 0, "dimdec": 0}
DIM_SETTINGS_SINCE_R2000 = {"dimtmove": 2, "dimlunit": 2}


class StylesTest(cli.CliTest):
    """What the test classes below share."""

    def shared(self):
        drawings = sorted(cli.SHARED.glob("*.dxf")) if cli.SHARED.is_dir() else []
        if not drawings:
            self.skipTest("no shared drawings here")
        return drawings

    def plan(self, version="R2010"):
        space = self.draw("plan.dxf", version)
        document = self.documents["plan.dxf"]
        document.layers.add("A-WALL", color=3)
        document.layers.add("A-NEW")
        document.layers.add("A-LOCKED").lock()
        document.linetypes.add("DASHED", [0.6, 0.5, -0.1])
        space.add_line((0, 0), (1000, 0), dxfattribs={"layer": "A-WALL", "color": 2,
                                                      "linetype": "DASHED"})
        space.add_line((0, 50), (1000, 50), dxfattribs={"layer": "A-NEW"})
        space.add_polyline2d([(0, 100), (900, 100), (900, 200)], dxfattribs={"layer": "A-NEW"})
        space.add_line((0, 300), (1000, 300), dxfattribs={"layer": "A-LOCKED"})
        return self.save("plan.dxf")

    def handle_of(self, path, layer):
        document, _ = cli.read(path)
        return next(entity.dxf.handle for entity in document.modelspace()
                    if entity.dxf.layer == layer)


class MlineStyleTest(StylesTest):
    def test_a_new_style_is_there_with_its_caps_and_elements(self):
        for version in VERSIONS[1:]:
            plan = self.plan(version)
            out = self.path(version + ".dxf")
            report = self.report("style", "mline", plan, "--name", "WALL-1", "--start-cap",
                                 "-o", out)
            self.assertTrue(report["new"])
            self.assert_no_new_findings(plan, out)
            style = cli.read(out)[0].mline_styles.get("WALL-1")
            self.assertEqual(style.dxf.handle, report["handle"])
            self.assertEqual(style.dxf.flags, 16)
            self.assertEqual([(e.offset, e.color, e.linetype) for e in style.elements],
                             [(0.5, 256, "BYLAYER"), (-0.5, 256, "BYLAYER")])

    def test_both_caps_and_none(self):
        plan = self.plan()
        for flags, options in ((0, []), (256, ["--end-cap"]), (272, ["--start-cap", "--end-cap"])):
            out = self.path("o.dxf")
            self.run_ok("style", "mline", plan, "--name", "W", *options, "-o", out)
            self.assertEqual(cli.read(out)[0].mline_styles.get("W").dxf.flags, flags)

    def test_an_existing_style_stays_as_it_is(self):
        plan = self.plan()
        first, second = self.path("1.dxf"), self.path("2.dxf")
        self.run_ok("style", "mline", plan, "--name", "W", "--start-cap", "-o", first)
        text = self.run_ok("style", "mline", first, "--name", "w", "--end-cap", "-o", second)
        self.assertIn("found, left as it is", text)
        self.assertEqual(first.read_bytes(), second.read_bytes())

    def test_r12_has_none(self):
        plan, out = self.plan("R12"), self.path("o.dxf")
        message = self.fails(6, "style", "mline", plan, "--name", "W", "-o", out)
        self.assertIn("R12 drawings have no multiline styles", message)
        self.assertIn("plan.dxf", message)
        self.assertFalse(out.exists())

    def test_names_that_no_style_may_have_are_refused(self):
        message = self.fails(6, "style", "mline", self.plan(), "--name", "a|b", "--dry-run")
        self.assertIn("'a|b'", message)

    def test_in_place_keeps_the_old_drawing(self):
        plan = self.plan()
        before = plan.read_bytes()
        self.run_ok("style", "mline", plan, "--name", "墙线", "--in-place")
        self.assertEqual(self.path("plan.dxf.bak").read_bytes(), before)
        self.assertIn("墙线", [name for name, _ in cli.read(plan)[0].mline_styles])

    def test_the_sample_is_drawn(self):
        for ending in ("png", "svg", "pdf"):
            picture = self.path("sample." + ending)
            self.run_ok("style", "mline", self.plan(), "--name", "W", "--dry-run", "--picture",
                        picture)
            self.assertGreater(picture.stat().st_size, 500)

    def test_shared_drawings_stay_whole(self):
        for plan in self.shared():
            out = self.path(plan.name)
            result = cli.quoin("style", "mline", plan, "--name", "QUOIN-W", "-o", out)
            if result.returncode == 6:
                self.assertIn("R12", result.stderr.decode(), plan.name)
                continue
            self.assertEqual(result.returncode, 0, plan.name)
            self.assert_no_new_findings(plan, out)
            self.assertIn("QUOIN-W", [n for n, _ in cli.read(out)[0].mline_styles], plan.name)


class DimStyleTest(StylesTest):
    def assert_settings(self, path, name, version):
        style = cli.read(path)[0].dimstyles.get(name)
        expected = dict(DIM_SETTINGS)
        if version != "R12":
            expected.update(DIM_SETTINGS_SINCE_R13)
        if version not in ("R12", "R13", "R14"):
            expected.update(DIM_SETTINGS_SINCE_R2000)
        actual = {key: style.get_dxf_attrib(key) for key in expected}
        self.assertEqual(actual, expected, version)

    def test_a_new_style_has_its_settings_in_every_release(self):
        for version in VERSIONS:
            plan = self.plan(version)
            out = self.path(version + ".dxf")
            report = self.report("style", "dim", plan, "--name", "ARCH", "--scale", "100", "-o",
                                 out)
            self.assertTrue(report["new"])
            self.assertEqual(report["settings"]["DIMSCALE"], "8000")
            self.assert_no_new_findings(plan, out)
            self.assert_settings(out, "ARCH", version)

    def test_the_arrow_is_the_first_of_two_blocks_that_is_there(self):
        for blocks, expected in (((), ""), (("建筑标记",), "建筑标记"),
                                 (("建筑标记", "ArchTick"), "ArchTick")):
            for version in ("R12", "R2000", "R2010"):
                self.plan(version)
                self.documents["plan.dxf"].encoding = "gbk"  # of text before R2007
                for block in blocks:
                    self.documents["plan.dxf"].blocks.new(block)
                plan, out = self.save("plan.dxf"), self.path("o.dxf")
                report = self.report("style", "dim", plan, "--name", "ARCH", "--scale", "50",
                                     "-o", out)
                name = cli.read(out)[0].dimstyles.get("ARCH").get_dxf_attrib("dimblk", "")
                self.assertEqual(name, expected, (version, blocks))
                warned = any("no block named ArchTick" in text for text in report["warnings"])
                self.assertEqual(warned, not blocks, report["warnings"])

    def test_an_existing_style_stays_as_it_is(self):
        plan, out = self.plan(), self.path("o.dxf")
        text = self.run_ok("style", "dim", plan, "--name", "standard", "--scale", "3", "-o", out)
        self.assertIn("dimension style Standard", text)
        self.assertIn("found, left as it is", text)
        self.assertEqual(plan.read_bytes(), out.read_bytes())

    def test_what_is_wrong_is_told(self):
        plan = self.plan()
        for scale in ("0", "-1", "nan", "inf"):
            message = self.fails(2, "style", "dim", plan, "--name", "A", "--scale=" + scale,
                                 "--dry-run")
            self.assertIn("a scale is above 0", message)
        self.fails(6, "style", "dim", plan, "--name", "a/b", "--scale", "1", "--dry-run")
        self.fails(3, "style", "dim", self.path("none.dxf"), "--name", "A", "--scale", "1",
                   "--dry-run")
        self.fails(2, "style", "dim", plan, "--scale", "1", "--dry-run")
        self.fails(2, "style", plan)

    def test_shared_drawings_stay_whole(self):
        for plan in self.shared():
            out = self.path(plan.name)
            report = self.report("style", "dim", plan, "--name", "QUOIN-100", "--scale", "100",
                                 "-o", out)
            self.assert_no_new_findings(plan, out)
            self.assert_settings(out, "QUOIN-100", report["input"]["release"])


class PaintTest(StylesTest):
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


class MatchPropertiesTest(StylesTest):
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
    unittest.main(argv=[sys.argv[0], *sys.argv[1:]], verbosity=1)
