#!/usr/bin/python3
"""End-to-end runs of any command about the capture distance and the unit that it follows from.

usage: UnitsJudgement_cli_test.py [UNITTEST ARGUMENT...]
The environment is that of quoin_cli_test.py, whose helpers it uses.
"""

import unittest

import quoin_cli_test as cli


class UnitsTest(cli.CliTest):
    """The capture distance and the unit that it follows from."""

    def house(self, factor, insunits):
        """Twelve walls of two faces, 100 mm thick, in a unit of 1/factor mm; and a stem whose end is
        5 mm away from one of them."""
        space = self.draw("house.dxf", **{"$INSUNITS": insunits})
        for row in range(12):
            for face in (0, 100):
                y = (row * 1200 + face) * factor
                space.add_line((0, y), (12000 * factor, y), dxfattribs={"layer": "WALL"})
        space.add_line((3000 * factor, 105 * factor), (3000 * factor, 900 * factor),
                       dxfattribs={"layer": "WALL"})
        return self.save("house.dxf")

    def test_a_drawing_in_another_unit_than_it_names_is_doubted_with_what_to_type(self):
        plan = self.house(1 / 25.4, 4)
        report = self.report("break", plan, "--dry-run")
        self.assertEqual(len(report["warnings"]), 1)
        self.assertIn("--units in", report["warnings"][0])
        self.assertIn("3.94 mm apart", report["warnings"][0])
        report = self.report("break", plan, "--dry-run", "--units", "in")
        self.assertEqual(report["warnings"], [])
        self.assertAlmostEqual(report["capture"]["distance"], 10 / 25.4)
        self.assertEqual(report["capture"]["units"], "in")
        self.assertEqual(report["changed"], 1)
        for command in ("merge", "outline", "draw", "solid"):
            arguments = {"merge": ["--layer", "WALL"], "draw": ["--layer", "WALL", "--from", "0,0",
                                                                "--to", "9,9"],
                         "outline": ["--layer", "WALL", "--left", "1"],
                         "solid": ["--layer", "WALL", "--left", "1", "--height", "90"]}[command]
            result = ["-o", self.path("m.obj")] if command == "solid" else ["--dry-run"]
            found = self.report(command, plan, *arguments, *result)["warnings"]
            self.assertTrue(any("--units in" in warning for warning in found), (command, found))

    def test_a_drawing_in_its_own_unit_is_not_doubted(self):
        for factor, insunits in ((1, 4), (0.001, 6), (1 / 25.4, 1), (0.1, 5), (1, 0)):
            report = self.report("break", self.house(factor, insunits), "--dry-run")
            self.assertEqual(report["warnings"], [])
            self.assertEqual(report["changed"], 1)

    def test_a_tolerance_has_a_unit_or_is_in_drawing_units(self):
        plan = self.house(0.001, 6)
        for text, distance in (("5mm", 0.005), ("0.2in", 0.00508), ("0.5 cm", 0.005),
                               ("0.01m", 0.01), ("1ft", 0.3048), ("0.25", 0.25)):
            report = self.report("break", plan, "--dry-run", "--tolerance", text)
            self.assertAlmostEqual(report["capture"]["distance"], distance, places=12)
        report = self.report("break", plan, "--dry-run", "--tolerance", "4mm")
        self.assertEqual(report["changed"], 0)

    def test_values_that_are_no_distance_are_refused(self):
        plan = self.house(1, 4)
        for option, values in (("--tolerance", ["0", "-5mm", "nan", "inf", "5 miles", "mm", "",
                                                "1e999", "5mm2", "0x5"]),
                               ("--project-scale", ["0", "-1", "nan", "inf", "", "1mm", "1e-320",
                                                    "1e999"]),
                               ("--units", ["", "inch", "MM", "0"])):
            for value in values:
                result = cli.quoin("break", plan, "--dry-run", f"{option}={value}")
                self.assertEqual(result.returncode, 2, (option, value, result.stdout))
                self.assertNotEqual(result.stderr, b"")

    def test_options_that_say_the_same_exclude_each_other(self):
        plan = self.house(1, 4)
        for second in (["--tolerance", "5"], ["--units", "in"]):
            result = cli.quoin("break", plan, "--dry-run", "--project-scale", "1", *second)
            self.assertEqual(result.returncode, 2, result.stdout)
        self.run_ok("break", plan, "--dry-run", "--units", "m", "--tolerance", "5mm")

    def test_a_published_plan_marked_wrongly(self):
        plan = cli.SHARED / "house_bishop_floorplan_r2004.dxf"
        if not plan.exists():
            self.skipTest("no shared drawings")
        report = self.report("break", plan, "--dry-run")
        self.assertEqual(report["changed"], 47)
        self.assertIn("--units in", " ".join(report["warnings"]))
        report = self.report("break", plan, "--dry-run", "--units", "in")
        self.assertEqual((report["changed"], report["warnings"]), (21, []))


if __name__ == "__main__":
    unittest.main()
