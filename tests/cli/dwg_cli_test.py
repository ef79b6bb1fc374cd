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

    def test_lines_are_drawn_cut_and_merged_and_nothing_else_changes(self):
        for version in WRITTEN:
            with self.subTest(version):
                plan = self.sample(version)
                names = [self.path(f"{version}-{step}.dwg") for step in range(4)]
                # A layer that the drawing does not have with a line, one that goes on from it,
                # both as one, and a line that cuts it.
                self.run_ok("draw", plan, "--from", "0,-1000", "--to", "600,-1000",
                            "--layer", "WALL", "-o", names[0])
                self.run_ok("draw", names[0], "--from", "600,-1000", "--to", "1000,-1000",
                            "--layer", "WALL", "-o", names[1])
                self.run_ok("merge", names[1], "--layer", "WALL", "-o", names[2])
                self.run_ok("draw", names[2], "--from", "500,-1000", "--to", "500,-500",
                            "--layer", "WALL", "-o", names[3])
                before = self.lines_of(plan)
                for name, count in zip(names, (1, 2, 1, 3)):
                    self.assertEqual(name.read_bytes()[:6], version.encode())
                    after = self.lines_of(name)
                    self.assertEqual({h: after[h] for h in before}, before)
                    self.assertEqual(len(after) - len(before), count)
                drawn = [sorted(line) for handle, line in self.lines_of(names[3]).items()
                         if handle not in before]
                self.assertEqual(sorted(drawn), [[(0, -1000, 0), (500, -1000, 0)],
                                                 [(500, -1000, 0), (500, -500, 0)],
                                                 [(500, -1000, 0), (1000, -1000, 0)]])

    def test_neighbours_are_erased_together(self):
        for version in WRITTEN:
            with self.subTest(version):
                before, plan = self.lines_of(self.sample(version)), self.sample(version)
                for step, (start, end, layer) in enumerate((
                        ("0,-1000", "300,-1000", "WALL"), ("300,-1000", "600,-1000", "WALL"),
                        ("600,-1000", "1000,-1000", "WALL"), ("0,-2000", "9,-2000", "OTHER"))):
                    drawn = self.path(f"{version}-{step}.dwg")
                    self.run_ok("draw", plan, "--from", start, "--to", end, "--layer", layer,
                                "-o", drawn)
                    plan = drawn
                merged = self.path(f"{version}-merged.dwg")
                self.run_ok("merge", plan, "--layer", "WALL", "-o", merged)
                after = self.lines_of(merged)
                self.assertEqual({h: after[h] for h in before}, before)
                drawn = sorted(sorted(line) for h, line in after.items() if h not in before)
                self.assertEqual(drawn, [[(0, -2000, 0), (9, -2000, 0)],
                                         [(0, -1000, 0), (1000, -1000, 0)]])

    def test_a_drawing_that_nothing_changes_stays_byte_for_byte(self):
        for version in WRITTEN + READ_ONLY:
            plan = self.path(f"{version}.dwg")
            plan.write_bytes(self.sample(version).read_bytes())
            before = plan.read_bytes()
            self.run_ok("to-origin", plan, "--at", "center", "--dry-run", "--leave-behind")
            self.run_ok("break", plan, "--layer", "Layer2", "--in-place")
            self.assertEqual(plan.read_bytes(), before)

    def test_a_result_takes_the_format_of_its_drawing(self):
        plan = self.sample("AC1032")
        message = self.fails(2, "break", plan, "--layer", "*", "-o", self.path("o.dxf"))
        self.assertIn("quoin convert", message)

    def test_a_version_that_is_only_read_is_not_written(self):
        for version in READ_ONLY:
            plan = self.sample(version)
            message = self.fails(5, "draw", plan, "--from", "0,0", "--to", "9,9", "--layer", "0",
                                 "-o", self.path("o.dwg"))
            self.assertIn("read, and not written", message)
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
                document, findings = cli.read(copy)
                self.assertEqual(len(document.modelspace()), 163 - 6)
                self.assertEqual(findings, [])

    def test_a_name_of_another_format(self):
        self.fails(2, "convert", self.sample("AC1015"), "-o", self.path("o.png"),
                   "--leave-behind")


if __name__ == "__main__":
    unittest.main()
