#!/usr/bin/python3
"""End-to-end runs of `quoin style mline` and `quoin style dim`.

usage: StyleCommand_cli_test.py [UNITTEST ARGUMENT...]
The environment is that of quoin_cli_test.py, whose helpers it uses.
"""

import unittest

import quoin_cli_test as cli
import styles_cli_test as styles


class MlineStyleTest(styles.StylesTest):
    def test_a_new_style_is_there_with_its_caps_and_elements(self):
        for version in styles.VERSIONS[1:]:
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


class DimStyleTest(styles.StylesTest):
    def assert_settings(self, path, name, version):
        style = cli.read(path)[0].dimstyles.get(name)
        expected = dict(styles.DIM_SETTINGS)
        if version != "R12":
            expected.update(styles.DIM_SETTINGS_SINCE_R13)
        if version not in ("R12", "R13", "R14"):
            expected.update(styles.DIM_SETTINGS_SINCE_R2000)
        actual = {key: style.get_dxf_attrib(key) for key in expected}
        self.assertEqual(actual, expected, version)

    def test_a_new_style_has_its_settings_in_every_release(self):
        for version in styles.VERSIONS:
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


if __name__ == "__main__":
    unittest.main()
