#!/usr/bin/python3
"""End-to-end runs of `quoin` on DWG drawings: the published ones of several versions.

usage: dwg_cli_test.py [UNITTEST ARGUMENT...]
The environment is that of quoin_cli_test.py, whose helpers it uses.
"""

import unittest

import quoin_cli_test as cli

# Versions that are written too; the others are read.
WRITTEN = ("AC1015", "AC1018", "AC1024", "AC1027", "AC1032")
READ_ONLY = ("AC1014", "AC1021")


class DwgCase(cli.CliTest):
    """What the test classes below share."""

    def sample(self, version):
        plan = cli.SHARED / f"acadsharp_sample_{version}.dwg"
        if not plan.is_file():
            self.skipTest("no shared drawings here")
        return plan

    def lines_of(self, plan):
        """The lines of a drawing by handle, as independent eyes see a DXF copy of it."""
        copy = self.path("copy.dxf")
        self.run_ok("convert", plan, "-o", copy, "--leave-behind")
        space = cli.read(copy)[0].modelspace()
        return {e.dxf.handle: (tuple(e.dxf.start), tuple(e.dxf.end))
                for e in space if e.dxftype() == "LINE"}


class DwgTest(DwgCase):
    def test_info_tells_version_and_what_is_closed(self):
        for version in WRITTEN + READ_ONLY:
            with self.subTest(version):
                report = self.report("info", self.sample(version))
                self.assertEqual((report["format"], report["acadVersion"]), ("DWG", version))
                self.assertIn("3DSOLID", report["closed"])
                self.assertEqual(bool(report["readOnly"]), version in READ_ONLY)

    def test_one_drawing_measures_alike_in_every_version(self):
        reports = [self.report("extents", self.sample(version)) for version in WRITTEN]
        for report in reports[1:]:
            self.assertEqual(report["entities"], reports[0]["entities"])
            for here, there in zip(report["extents"], reports[0]["extents"]):
                for one, other in zip(here, there):
                    self.assertAlmostEqual(one, other, places=6)

    def test_a_drawing_and_its_twin_measure_alike(self):
        for version in ("AC1015", "AC1018", "AC1027", "AC1032"):
            twin = cli.SHARED / f"acadsharp_sample_{version}_ascii.dxf"
            with self.subTest(version):
                self.assertEqual(self.report("info", self.sample(version))["entities"],
                                 self.report("info", twin)["entities"])

    def test_walls_are_broken_and_nothing_else_changes(self):
        for version in WRITTEN:
            with self.subTest(version):
                plan, broken = self.sample(version), self.path(f"{version}.dwg")
                report = self.report("break", plan, "--layer", "*", "-o", broken)
                self.assertGreater(report["changed"], 0)
                self.assertEqual(broken.read_bytes()[:6], plan.read_bytes()[:6])
                before, after = self.lines_of(plan), self.lines_of(broken)
                self.assertEqual(set(before) - set(after), set())
                moved = [handle for handle in before if before[handle] != after[handle]]
                self.assertLessEqual(len(moved), report["changed"])
                self.assertEqual(len(after) - len(before), report["pieces"] - report["changed"])

    def test_a_result_takes_the_format_of_its_drawing(self):
        plan = self.sample("AC1032")
        message = self.fails(2, "break", plan, "--layer", "*", "-o", self.path("o.dxf"))
        self.assertIn("quoin convert", message)

    def test_a_version_that_is_only_read_is_not_written(self):
        for version in READ_ONLY:
            plan = self.sample(version)
            message = self.fails(5, "break", plan, "--layer", "*", "-o", self.path("o.dwg"))
            self.assertIn("o.dwg", message)
            self.assertFalse(self.path("o.dwg").exists())


class DwgConvertTest(DwgCase):
    def test_what_is_not_read_keeps_it_from_being_written(self):
        message = self.fails(6, "convert", self.sample("AC1032"), "-o", self.path("o.dxf"))
        self.assertIn("3DSOLID", message)
        self.assertIn("--leave-behind", message)
        self.assertFalse(self.path("o.dxf").exists())

    def test_the_copy_is_read_by_others(self):
        for version in WRITTEN + READ_ONLY:
            with self.subTest(version):
                copy = self.path(f"{version}.dxf")
                self.run_ok("convert", self.sample(version), "-o", copy, "--leave-behind")
                document, auditor = cli.read(copy)
                self.assertEqual(document.dxfversion, version)
                self.assertFalse(auditor.has_errors, auditor.errors[:3])

    def test_a_name_of_another_format(self):
        self.fails(2, "convert", self.sample("AC1015"), "-o", self.path("o.png"),
                   "--leave-behind")


if __name__ == "__main__":
    unittest.main()
