#!/usr/bin/python3
"""End-to-end runs of `quoin walls`.

usage: WallsCommand_cli_test.py [UNITTEST ARGUMENT...]
The environment is that of quoin_cli_test.py, whose helpers it uses.
"""

import collections
import csv
import json
import math
import subprocess
import sys
import unittest

import quoin_cli_test as cli

# The plan by the name of its truth, and the widths that its walls are drawn with.
PLANS = {
    "flat": ("flat/flat.dxf", {80, 120, 200, 300}),
    "office": ("office/office.dxf", {0.05, 0.1, 0.15, 0.2, 0.35}),
    "house-gbk": ("house-gbk/house.dxf", {120, 240}),
}
ROUNDS = cli.SOURCE / "scripts" / "plan_rounds.py"


def example(name):
    return cli.SOURCE / "examples" / PLANS[name][0]


def lines_on(document, layer):
    return {line.dxf.handle: line
            for line in document.modelspace().query(f'LINE[layer=="{layer}"]')}


class WallsTest(cli.CliTest):
    def plan(self, name="plan.dxf", version="R2010"):
        """Four walls, 200 wide, around 4.6 by 2.6 m; a door in the south, a window in the north."""
        space = self.draw(name, version)
        wall = {"layer": "WALL"}
        for start, end in (((0, 0), (1000, 0)), ((1900, 0), (5000, 0)), ((5000, 0), (5000, 3000)),
                           ((5000, 3000), (3500, 3000)), ((2000, 3000), (0, 3000)),
                           ((0, 3000), (0, 0)),
                           ((200, 200), (1000, 200)), ((1900, 200), (4800, 200)),
                           ((4800, 200), (4800, 2800)), ((4800, 2800), (3500, 2800)),
                           ((2000, 2800), (200, 2800)), ((200, 2800), (200, 200)),
                           ((1000, 0), (1000, 200)), ((1900, 0), (1900, 200)),
                           ((2000, 2800), (2000, 3000)), ((3500, 2800), (3500, 3000))):
            space.add_line(start, end, dxfattribs=wall)
        space.add_arc((1000, 200), 900, 0, 90, dxfattribs={"layer": "DOORS"})
        for y in (2880, 2920):
            space.add_line((2000, y), (3500, y), dxfattribs={"layer": "GLASS"})
        return self.save(name)

    def test_columns_are_drawn_and_taken_out_of_rooms(self):
        plan = self.plan()
        space = self.documents["plan.dxf"].modelspace()
        space.add_lwpolyline([(2000, 1000), (2400, 1000), (2400, 1500), (2000, 1500)], close=True,
                             dxfattribs={"layer": "COLUMNS"})
        self.save("plan.dxf")
        report = self.report("walls", plan, "-o", self.path("o.dxf"))
        self.assertEqual(report["columnLayer"], "QUOIN-COLUMN")
        (column,) = report["columns"]
        self.assertEqual(column["polygon"], [[2000, 1000], [2400, 1000], [2400, 1500],
                                             [2000, 1500]])
        after, findings = cli.read(self.path("o.dxf"))
        self.assertEqual(findings, [])
        drawn = after.entitydb[column["handle"]]
        self.assertEqual((drawn.dxftype(), drawn.dxf.layer, drawn.closed),
                         ("LWPOLYLINE", "QUOIN-COLUMN", True))
        rooms = self.report("rooms", self.path("o.dxf"), "--layer", "QUOIN-WALL", "--dry-run")
        self.assertAlmostEqual(rooms["rooms"][0]["netArea"], 4.6 * 2.6 - 0.4 * 0.5, 9)

    def test_walls_and_openings_of_a_room(self):
        report = self.report("walls", self.plan(), "-o", self.path("o.dxf"))
        self.assertEqual(report["layers"], ["WALL"])
        self.assertEqual((report["outLayer"], report["openingLayer"]),
                         ("QUOIN-WALL", "QUOIN-OPENING"))
        self.assertEqual((report["lines"], len(report["walls"]), report["leftOver"]), (16, 4, []))
        corners = collections.Counter()
        for wall in report["walls"]:
            self.assertEqual((wall["left"], wall["right"], wall["width"]), (100, 100, 200))
            self.assertEqual(wall["layer"], "WALL")
            self.assertTrue(0.55 <= wall["confidence"] <= 1)
            corners.update((tuple(wall["start"]), tuple(wall["end"])))
        self.assertEqual(corners, {(x, y, 0): 2 for x in (100, 4900) for y in (100, 2900)})
        self.assertEqual(report["widths"], [{"width": 200, "length": 2 * 4800 + 2 * 2800}])
        openings = {opening["kind"]: opening for opening in report["openings"]}
        self.assertEqual(set(openings), {"door", "window"})
        for kind, width, y in (("door", 900, 100), ("window", 1500, 2900)):
            self.assertAlmostEqual(openings[kind]["width"], width, 9)
            wall = report["walls"][openings[kind]["wall"]]
            for point in ("start", "end"):
                self.assertEqual(openings[kind][point][1], y)
                self.assertEqual(wall[point][1], y)

    def test_faces_are_named_by_their_handles(self):
        plan = self.plan()
        handles = {line.dxf.handle for line in self.documents["plan.dxf"].modelspace()
                   if line.dxf.layer == "WALL"}
        for wall in self.report("walls", plan, "--dry-run")["walls"]:
            self.assertEqual(wall["handle"], "")
            self.assertGreaterEqual(len(wall["faces"]), 2)
            self.assertLessEqual(set(wall["faces"]), handles)

    def check_drawing(self, report, path):
        """The lines of the drawing are those of the report, with their extended data."""
        after, findings = cli.read(path)
        walls = lines_on(after, report["outLayer"])
        openings = lines_on(after, report["openingLayer"])
        self.assertEqual([*walls], [wall["handle"] for wall in report["walls"]])
        self.assertEqual([*openings], [opening["handle"] for opening in report["openings"]])
        for wall in report["walls"]:
            line = walls[wall["handle"]]
            self.assertEqual([*line.dxf.start], wall["start"])
            self.assertEqual([*line.dxf.end], wall["end"])
            self.assertEqual([(tag.code, tag.value) for tag in line.get_xdata("QUOIN")],
                             [(1040, wall["left"]), (1040, wall["right"])])
        for opening in report["openings"]:
            data = openings[opening["handle"]].get_xdata("QUOIN")
            self.assertEqual((data[0].code, data[0].value), (1000, opening["kind"]))
        return findings

    def test_the_drawing_has_lines_with_extended_data(self):
        for version in ("R12", "R2000", "R2018"):
            with self.subTest(version=version):
                report = self.report("walls", self.plan(version=version), "-o", self.path("o.dxf"))
                self.assertEqual(self.check_drawing(report, self.path("o.dxf")), [])

    def test_layers_of_the_result_are_named_by_options(self):
        report = self.report("walls", self.plan(), "-o", self.path("o.dxf"), "--out-layer", "AXES",
                             "--opening-layer", "HOLES")
        self.assertEqual((report["outLayer"], report["openingLayer"]), ("AXES", "HOLES"))
        self.check_drawing(report, self.path("o.dxf"))

    def test_other_commands_read_the_walls_back(self):
        plan = self.path("walls.dxf")
        self.run_ok("walls", self.plan(), "-o", plan)
        room, = self.report("rooms", plan, "--layer", "QUOIN-WALL", "--dry-run")["rooms"]
        self.assertAlmostEqual(room["netArea"], 4.6 * 2.6, 9)
        self.assertEqual(len(room["openings"]), 2)
        outlined = self.report("outline", plan, "--layer", "QUOIN-WALL", "-o", self.path("o.dxf"))
        self.assertEqual(len(outlined["walls"]), 4)
        outlines = cli.lines_of(cli.read(self.path("o.dxf"))[0], "WALL-OUTLINE")
        lengths = sorted(math.dist(start, end) for start, end, _ in outlines)
        # Four jambs; a door 900 wide in the south and a window 1500 wide in the north.
        self.assertEqual(lengths, [200, 200, 200, 200, 800, 1000, 1300, 1500, 1800, 2000, 2600, 2600,
                                   2900, 3000, 3000, 3100])

    def test_widths_are_told(self):
        plan = self.plan()
        report = self.report("walls", plan, "--dry-run", "--max-width", "15cm")
        self.assertEqual((report["walls"], len(report["leftOver"])), ([], 16))
        self.assertEqual(self.report("walls", plan, "--dry-run", "--min-width", "250")["walls"], [])

    def test_a_drawing_without_wall_layers_lists_its_layers(self):
        space = self.draw("none.dxf")
        space.add_line((0, 0), (900, 0), dxfattribs={"layer": "FURN"})
        message = self.fails(4, "walls", self.save("none.dxf"), "-o", self.path("o.dxf"))
        self.assertIn("no layer's name holds a word for wall", message)
        self.assertIn("FURN", message)
        self.assertFalse(self.path("o.dxf").exists())
        self.fails(4, "walls", self.path("none.dxf"), "--layer", "W*", "--dry-run")

    def test_lines_that_are_no_faces_are_left_over(self):
        space = self.draw("single.dxf")
        space.add_line((0, 0), (4000, 0), dxfattribs={"layer": "WALL"})
        report = self.report("walls", self.save("single.dxf"), "--dry-run")
        self.assertEqual((report["walls"], len(report["leftOver"])), ([], 1))

    def test_options_that_make_no_sense(self):
        plan = self.plan()
        self.fails(2, "walls", plan)
        for options in (["--min-width", "-5"], ["--min-width", "wide"], ["--min-confidence", "2"],
                        ["--min-width", "500", "--max-width", "100"], ["--max-opening", "0"]):
            with self.subTest(options=options):
                self.fails(2, "walls", plan, "--dry-run", *options)

    def test_the_schedule_is_a_table(self):
        table = self.folder / "schedule.csv"
        self.run_ok("walls", self.plan(), "--dry-run", "--csv", table)
        rows = list(csv.DictReader(table.read_text("utf-8").splitlines()))
        self.assertEqual([row["item"] for row in rows], ["wall", "door", "window"])
        self.assertEqual(rows[0]["width_mm"], "200")
        self.assertAlmostEqual(float(rows[0]["length_m"]), 2 * (4.8 + 2.8), 3)
        self.assertAlmostEqual(float(rows[0]["area_m2"]), 0.2 * 2 * (4.8 + 2.8), 3)
        self.assertEqual((rows[1]["width_mm"], rows[1]["count"]), ("900", "1"))
        self.assertEqual((rows[2]["width_mm"], rows[2]["count"]), ("1500", "1"))

    def test_a_picture_shows_the_plan(self):
        self.run_ok("walls", self.plan(), "--dry-run", "--picture", self.path("p.svg"))
        self.assertIn(b"<svg", self.path("p.svg").read_bytes())


class WallsOfPlansTest(cli.CliTest):
    def judge(self, truth, walls, goal, opening_goal, rooms=None):
        """Holds reports against the truth; the goals are for recall and precision."""
        words = ["--truth", truth, "--goal", str(goal), "--opening-goal", str(opening_goal)]
        for option, report in (("--report", walls), ("--rooms", rooms)):
            if report is not None:
                file = self.path(f"report{option}.json")
                file.write_text(json.dumps(report))
                words += [option, file]
        if rooms is not None:
            words += ["--room-goal", "0.95"]
        result = subprocess.run([sys.executable, ROUNDS, "judge", *words], capture_output=True)
        self.assertEqual(result.returncode, 0, (result.stdout + result.stderr).decode())

    def test_the_example_plans_have_the_walls_and_rooms_that_they_show(self):
        for name, (_, widths) in PLANS.items():
            with self.subTest(plan=name):
                document = self.document("walls", example(name), "-o", self.path("o.dxf"))
                rooms = self.document("rooms", self.path("o.dxf"), "--layer", "QUOIN-WALL",
                                      "--dry-run")
                self.judge(cli.SOURCE / "tests" / "data" / "plans" / f"{name}.json", document,
                           0.95, 0.9, rooms)
                report, = document["drawings"]
                for width in report["widths"]:
                    self.assertLess(min(abs(width["width"] / drawn - 1) for drawn in widths), 1e-6)
                self.assertAlmostEqual(sum(width["length"] for width in report["widths"]),
                                       sum(wall["length"] for wall in report["walls"]), 4)
                for opening in report["openings"]:
                    self.assertLess(opening["wall"], len(report["walls"]))
                self.assert_no_new_findings(example(name), self.path("o.dxf"))

    def test_a_dwg_drawing_gives_the_same(self):
        for name in ("flat", "house-gbk"):
            with self.subTest(plan=name):
                found = [self.report("walls", example(name).with_suffix(suffix), "-o",
                                     self.path("o" + suffix)) for suffix in (".dxf", ".dwg")]
                for what in ("walls", "openings"):
                    self.assertEqual(*([(thing["start"], thing["end"], thing["width"])
                                        for thing in report[what]] for report in found))
                again = self.report("outline", self.path("o.dwg"), "--layer", "QUOIN-WALL",
                                    "--dry-run")
                self.assertEqual([wall["left"] for wall in again["walls"]],
                                 [wall["left"] for wall in found[1]["walls"]])

    def test_rooms_finds_the_walls_by_itself(self):
        rooms = self.report("rooms", example("flat"), "--dry-run")["rooms"]
        labelled = [room for room in rooms if room["statedArea"] is not None]
        self.assertEqual(len(labelled), 11)
        # Labels have one digit after the point.
        for room in labelled:
            self.assertAlmostEqual(room["netArea"], room["statedArea"], delta=0.055,
                                   msg=room["name"])

    def test_a_clean_random_plan_is_read(self):
        plan, truth = self.path("r.dxf"), self.path("r.json")
        subprocess.run([sys.executable, ROUNDS, "make", "--walls", "100", "--seed", "2", "-o", plan,
                        "--truth", truth], check=True, capture_output=True)
        self.judge(truth, self.document("walls", plan, "--dry-run"), 0.99, 0.99)


if __name__ == "__main__":
    unittest.main()
