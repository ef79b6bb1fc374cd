#!/usr/bin/python3
"""End-to-end runs of `quoin clean`.

usage: CleanCommand_cli_test.py [UNITTEST ARGUMENT...]
The environment is that of quoin_cli_test.py, whose helpers it uses.
"""

import unittest

import quoin_cli_test as cli


class CleanTest(cli.CliTest):
    def draw_lines(self, name, *lines, **more):
        space = self.draw(name)
        for start, end in lines:
            space.add_line(start, end, dxfattribs={"layer": "WALL", **more})
        return space

    def lines(self, name):
        return [tuple(tuple(round(number, 6) for number in end) for end in line[:2])
                for line in cli.lines_of(cli.read(self.path(name))[0])]

    def test_a_messy_corner_a_junction_a_duplicate_and_a_spur(self):
        self.draw_lines("m.dxf", ((3, 0), (5000, 0)), ((0, -2), (0, 4000)), ((2000, 15), (2000, 3000)),
                        ((1000, 0), (4000, 0)), ((3000, 0), (3004, 12)), ((5000, 0), (6000, 0)))
        report = self.report("clean", self.save("m.dxf"), "-o", self.path("o.dxf"),
                             "--picture", self.path("p.png"))
        self.assertEqual(report["counts"], {"duplicate": 1, "overlap": 0, "snap": 2, "extend": 1,
                                            "trim": 0, "spur": 1, "join": 1})
        self.assertEqual(self.lines("o.dxf"), [((0, 0, 0), (6000, 0, 0)), ((0, 0, 0), (0, 4000, 0)),
                                               ((2000, 0, 0), (2000, 3000, 0))])
        self.assertEqual(len(report["removed"]), 3)
        self.assertTrue(self.path("p.png").exists())

    def test_steps_are_turned_off_one_by_one(self):
        self.draw_lines("m.dxf", ((3, 0), (5000, 0)), ((0, -2), (0, 4000)), ((2000, 15), (2000, 3000)),
                        ((1000, 0), (4000, 0)), ((3000, 0), (3004, 12)), ((5000, 0), (6000, 0)))
        plan = self.save("m.dxf")
        self.run_ok("clean", plan, "-o", self.path("o.dxf"), "--snap", "off", "--reach", "off",
                    "--spur", "off", "--duplicates", "off", "--no-join")
        self.assertEqual(self.path("o.dxf").read_bytes(), plan.read_bytes())

    def test_lengths_have_units_and_make_sense(self):
        self.draw_lines("m.dxf", ((12, 0), (5000, 0)), ((0, 0), (0, 4000)))
        plan = self.save("m.dxf")
        self.assertEqual(self.report("clean", plan, "--dry-run", "--reach", "10mm")["changed"], 0)
        self.assertEqual(self.report("clean", plan, "--dry-run", "--reach", "0.5in")["changed"], 1)
        self.fails(2, "clean", plan, "--dry-run", "--reach", "-1")
        self.fails(2, "clean", plan, "--dry-run", "--snap", "nan")

    def test_what_cannot_be_decided_is_marked_once_and_no_longer_than_needed(self):
        self.draw_lines("u.dxf", ((0, 0), (0, 3000)), ((12, 0), (12, 3000)), ((-1000, 1500), (-3, 1500)))
        plan = self.save("u.dxf")
        first = self.report("clean", plan, "-o", self.path("1.dxf"))
        self.assertEqual([place["why"] for place in first["undecided"]], ["severalPlaces"])
        document, findings = cli.read(self.path("1.dxf"))
        self.assertEqual(findings, [])
        circle, = document.modelspace().query("CIRCLE")
        self.assertEqual((circle.dxf.layer, circle.dxf.handle),
                         ("QUOIN-MARK", first["undecided"][0]["mark"]))
        second = self.report("clean", self.path("1.dxf"), "-o", self.path("2.dxf"))
        self.assertEqual(second["marks"], {"layer": "QUOIN-MARK", "added": 0, "erased": 0})
        self.assertEqual(self.path("2.dxf").read_bytes(), self.path("1.dxf").read_bytes())
        third = self.report("clean", self.path("1.dxf"), "-o", self.path("3.dxf"), "--reach", "4mm")
        self.assertEqual((third["marks"]["erased"], third["counts"]["extend"]), (1, 1))

    def test_duplicates_with_other_properties_are_told(self):
        space = self.draw_lines("d.dxf", ((0, 0), (1000, 0)), ((0, 500), (1000, 500)))
        space.add_line((1000, 0), (0, 0), dxfattribs={"layer": "WALL", "color": 1})
        plan = self.save("d.dxf")
        report = self.report("clean", plan, "-o", self.path("o.dxf"))
        self.assertEqual([place["why"] for place in report["undecided"]], ["otherProperties"])
        report = self.report("clean", plan, "-o", self.path("a.dxf"), "--duplicates", "any")
        self.assertEqual(len(report["removed"]), 1)
        after, _ = cli.read(self.path("a.dxf"))
        self.assertEqual([line.dxf.color for line in after.modelspace().query("LINE")], [256, 256])

    def test_polylines_take_part(self):
        space = self.draw_lines("p.dxf", ((2000, 10), (2000, 3000)))
        points = [(0, 0), (5000, 0), (5000, 3000), (3, 3000)]
        for _ in range(2):
            space.add_lwpolyline(points, dxfattribs={"layer": "WALL"})
        space.add_line((0, 1000), (0, 3004), dxfattribs={"layer": "WALL"})
        report = self.report("clean", self.save("p.dxf"), "-o", self.path("o.dxf"))
        after, findings = cli.read(self.path("o.dxf"))
        self.assertEqual(findings, [])
        polyline, = after.modelspace().query("LWPOLYLINE")
        self.assertEqual([tuple(point) for point in polyline.get_points("xy")],
                         [(0, 0), (5000, 0), (5000, 3000), (0, 3000)])
        self.assertIn(((2000, 0, 0), (2000, 3000, 0)), self.lines("o.dxf"))
        self.assertIn(((0, 1000, 0), (0, 3000, 0)), self.lines("o.dxf"))
        self.assertEqual(report["counts"]["duplicate"], 1)

    def test_locked_lines_and_ends_of_arcs_are_met_and_stay(self):
        space = self.draw("l.dxf")
        self.documents["l.dxf"].layers.add("WALL-LOCKED").lock()
        space.add_line((0, 0), (1000, 0), dxfattribs={"layer": "WALL-LOCKED"})
        space.add_line((500, 8), (500, 2000), dxfattribs={"layer": "WALL"})
        space.add_arc((0, 5000), 1000, 0, 90, dxfattribs={"layer": "WALL"})
        space.add_line((1003, 5000), (3000, 5000), dxfattribs={"layer": "WALL"})
        report = self.report("clean", self.save("l.dxf"), "-o", self.path("o.dxf"))
        self.assertEqual([one["reason"] for one in report["skipped"]], ["is on a locked layer"])
        self.assertEqual(self.lines("o.dxf"), [((0, 0, 0), (1000, 0, 0)), ((500, 0, 0), (500, 2000, 0)),
                                               ((1000, 5000, 0), (3000, 5000, 0))])

    def test_lines_at_other_heights_do_not_meet(self):
        self.draw_lines("z.dxf", ((3, 0, 0), (5000, 0, 0)), ((0, 0, 3), (0, 4000, 3)))
        self.assertEqual(self.report("clean", self.save("z.dxf"), "--dry-run")["changed"], 0)

    def test_examples_are_clean_after_one_run(self):
        for plan in cli.EXAMPLES:
            with self.subTest(plan.name):
                first = self.path("1" + plan.suffix)
                self.run_ok("clean", plan, "-o", first)
                report = self.report("clean", first, "-o", self.path("2" + plan.suffix))
                self.assertEqual(report["actions"], [])
                self.assertEqual(report["marks"]["added"] + report["marks"]["erased"], 0)
                self.assertEqual(self.path("2" + plan.suffix).read_bytes(), first.read_bytes())
                if plan.suffix == ".dxf":
                    self.assert_no_new_findings(plan, first)

    def test_a_dwg_is_cleaned_as_its_twin(self):
        folder = cli.SOURCE / "examples" / "studio"
        reports = [self.report("clean", folder / f"studio.{ending}", "--layer", "W-*", "-o",
                               self.path(f"o.{ending}"), "--snap", "5mm") for ending in ("dxf", "dwg")]
        for report in reports:
            self.assertEqual(report["counts"], reports[0]["counts"])
            self.assertEqual([change["source"] for change in report["changes"]],
                             [change["source"] for change in reports[0]["changes"]])
        again = self.report("clean", self.path("o.dwg"), "--layer", "W-*", "-o", self.path("p.dwg"))
        self.assertEqual(again["actions"], [])
        self.assertEqual(self.path("p.dwg").read_bytes(), self.path("o.dwg").read_bytes())


if __name__ == "__main__":
    unittest.main()
