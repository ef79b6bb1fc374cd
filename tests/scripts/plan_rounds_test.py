#!/usr/bin/python3
"""The random plans of scripts/plan_rounds.py, and their judge.

usage: plan_rounds_test.py [UNITTEST ARGUMENT...]
"""

import copy
import io
import math
import os
import pathlib
import sys
import tempfile
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT / "scripts"))

from ezdxf import recover  # noqa: E402 - the line above is for what follows

from plan_rounds import campaign, command, drawing, dxf, examples, judge, network, readings  # noqa: E402


def scores(truth, found, tolerance=None):
    """What -> Score, of a report with walls, openings, rooms and columns."""
    tolerance = tolerance or judge.tolerance_of(truth, truth["millimetersPerUnit"])
    table, _ = judge.scores(truth, found["walls"], found["openings"], found["rooms"], tolerance,
                            found["columns"])
    return {score.what: score for score in table}


class JudgeTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.truth = drawing.make_plan(5, 120).truth()

    def setUp(self):
        self.found = copy.deepcopy(self.truth)

    def test_the_truth_itself_is_perfect(self):
        for units in dxf.UNITS:
            truth = drawing.make_plan(6, 60, units=units).truth()
            for what, score in scores(truth, truth).items():
                with self.subTest(units=units, what=what):
                    self.assertEqual((score.recall, score.precision), (1.0, 1.0))

    def test_walls_may_be_reversed_and_shuffled(self):
        for wall in self.found["walls"]:
            wall["start"], wall["end"] = wall["end"], wall["start"]
        self.found["openings"] = []
        self.found["walls"].reverse()
        result = scores(self.truth, self.found)
        self.assertEqual(result["walls"].recall, 1.0)
        self.assertEqual(result["walls, metres"].precision, 1.0)

    def test_a_reference_line_may_lie_beside_the_middle(self):
        for wall in self.found["walls"]:
            (ax, ay), (bx, by) = wall["start"], wall["end"]
            length = math.dist((ax, ay), (bx, by))
            shift = 0.5 * wall["width"]
            nx, ny = -(by - ay) / length * shift, (bx - ax) / length * shift
            # The reference line on the right face.
            wall["start"], wall["end"] = [ax - nx, ay - ny], [bx - nx, by - ny]
            wall["left"], wall["right"] = wall["width"], 0.0
        self.assertEqual(scores(self.truth, self.found)["walls"].recall, 1.0)

    def test_a_missing_wall_lowers_recall_alone(self):
        count = len(self.truth["walls"])
        length = judge.wall_line(0, self.found["walls"].pop()).length / 1000.0
        result = scores(self.truth, self.found)
        self.assertEqual(result["walls"].recall, (count - 1) / count)
        self.assertEqual(result["walls"].precision, 1.0)
        metres = result["walls, metres"]
        self.assertAlmostEqual(metres.true - metres.true_right, length, 6)
        self.assertEqual(metres.precision, 1.0)

    def test_a_wall_found_twice_or_made_up_lowers_precision_alone(self):
        self.found["walls"].append(copy.deepcopy(self.found["walls"][0]))
        result = scores(self.truth, self.found)
        self.assertEqual(result["walls"].recall, 1.0)
        self.assertLess(result["walls"].precision, 1.0)
        self.found["walls"][-1]["start"] = [-5000.0, -5000.0]
        self.found["walls"][-1]["end"] = [-5000.0, -9000.0]
        result = scores(self.truth, self.found)
        self.assertEqual(result["walls, metres"].recall, 1.0)
        self.assertLess(result["walls, metres"].precision, 1.0)
        self.assertLess(result["walls, cut or joined"].precision, 1.0)

    def test_a_wrong_width_lowers_both(self):
        self.found["walls"][3]["left"] += 10.0
        self.found["walls"][3]["width"] += 10.0
        for what in ("walls", "walls, cut or joined", "walls, metres"):
            score = scores(self.truth, self.found)[what]
            self.assertLess(score.recall, 1.0, what)
            self.assertLess(score.precision, 1.0, what)

    def test_a_wall_beside_its_place_lowers_both(self):
        for end in ("start", "end"):
            self.found["walls"][3][end] = [c + 20.0 for c in self.found["walls"][3][end]]
        for what in ("walls", "walls, cut or joined", "walls, metres"):
            score = scores(self.truth, self.found)[what]
            self.assertLess(score.recall, 1.0, what)
            self.assertLess(score.precision, 1.0, what)

    def test_a_wall_in_two_pieces_is_covered_though_its_ends_differ(self):
        wall = self.found["walls"][0]
        half = copy.deepcopy(wall)
        half["start"] = wall["end"] = [0.5 * (a + b) for a, b in zip(wall["start"], wall["end"])]
        self.found["walls"].append(half)
        result = scores(self.truth, self.found)
        self.assertLess(result["walls"].recall, 1.0)
        for what in ("walls, cut or joined", "walls, metres"):
            self.assertAlmostEqual(result[what].recall, 1.0, 9)
            self.assertAlmostEqual(result[what].precision, 1.0, 9)

    def test_ends_some_millimetres_off_pass_with_noise_alone(self):
        for wall in self.found["walls"]:
            (ax, ay), (bx, by) = wall["start"], wall["end"]
            length = math.dist((ax, ay), (bx, by))
            wall["end"] = [bx + (bx - ax) / length * 8.0, by + (by - ay) / length * 8.0]
        self.assertLess(scores(self.truth, self.found)["walls"].recall, 0.2)  # slack at steps
        noisy = judge.Tolerance.noisy(1.0)
        self.assertEqual(scores(self.truth, self.found, noisy)["walls"].recall, 1.0)

    def test_openings_need_their_ends_kind_and_wall(self):
        openings = self.found["openings"]
        count = len(openings)
        openings[0]["kind"] = "nothing"
        openings[1]["wall"] = next(i for i, wall in enumerate(self.found["walls"])
                                   if i != openings[1]["wall"])
        openings[2]["end"] = openings[2]["start"]
        result = scores(self.truth, self.found)
        self.assertEqual(result["openings"].true_right, count - 1)
        self.assertEqual(result["openings by kind"].true_right, count - 2)
        self.assertEqual(result["openings by kind"].true, count - 1)  # of those that match
        self.assertEqual(result["openings in their wall"].true_right, count - 2)

    def test_rooms_need_area_place_and_name(self):
        rooms = self.found["rooms"]
        count = len(rooms)
        rooms[0]["netArea"] *= 1.001
        rooms[1]["polygon"] = [[x + 9000.0, y] for x, y in rooms[1]["polygon"]]
        rooms[2]["name"] = "ELSEWHERE"
        rooms[3]["name"], rooms[3]["number"] = f"{rooms[3]['name']} {rooms[3]['number']}", None
        result = scores(self.truth, self.found)
        self.assertEqual(result["rooms"].true_right, count - 2)
        self.assertEqual(result["rooms by name"].true_right, count - 3)

    def test_optional_things_count_neither_when_found_nor_when_missed(self):
        for what in ("walls", "rooms"):
            self.truth[what][0]["optional"] = True
            for found in (self.found, self.found | {what: self.found[what][1:]}):
                score = scores(self.truth, found)[what]
                self.assertEqual((score.recall, score.precision), (1.0, 1.0))
            del self.truth[what][0]["optional"]

    def test_a_column_counts_as_part_of_its_room_or_not(self):
        room, found = self.truth["rooms"][0], self.found["rooms"][0]
        self.truth["rooms"][0]["columnAreas"] = [0.09, 0.5]
        for area, right in ((0.09, True), (0.59, True), (0.3, False)):
            found["netArea"] = room["netArea"] - area
            score = scores(self.truth, self.found)["rooms"]
            self.assertEqual(score.recall == 1.0, right)
        self.truth["rooms"][0]["columnAreas"] = []

    def test_reports_of_one_drawing_are_read_with_and_without_their_frame(self):
        self.assertIs(judge.drawing_of(self.found), self.found)
        self.assertIs(judge.drawing_of({"drawings": [self.found]}), self.found)
        self.assertRaises(ValueError, judge.drawing_of, {"drawings": [{}, {}]})


class PlanTest(unittest.TestCase):
    def test_the_same_seed_gives_the_same_plan(self):
        one, other = (drawing.make_plan(9, 80, drawing.ALL_NOISE) for _ in range(2))
        self.assertEqual(one.primitives, other.primitives)
        self.assertEqual(one.truth(), other.truth())

    def test_noise_changes_no_walls(self):
        clean, noisy = drawing.make_plan(9, 80), drawing.make_plan(9, 80, drawing.ALL_NOISE)
        self.assertEqual(clean.walls, noisy.walls)
        self.assertEqual(clean.openings, noisy.openings)
        self.assertGreater(len(noisy.primitives), len(clean.primitives))

    def test_drawings_open_without_findings(self):
        for units, (insunits, _, _) in dxf.UNITS.items():
            for style in drawing.STYLES:
                with self.subTest(units=units, style=style):
                    plan = drawing.make_plan(2, 60, drawing.ALL_NOISE, units, style)
                    stream = io.StringIO()
                    dxf.write(stream, plan.primitives, units, drawing.DOOR_BLOCK)
                    document, auditor = recover.read(io.BytesIO(stream.getvalue().encode("ascii")))
                    self.assertEqual(auditor.errors, [])
                    self.assertEqual(document.header["$INSUNITS"], insunits)
                    self.assertEqual(len(document.modelspace()), len(plan.primitives))

    def test_net_areas_are_gross_areas_without_the_walls(self):
        """Around every room, half of each wall's body: the sum over a plan without corners that
        overlap more than twice is known for a rectangle alone."""
        nodes = [(0.0, 0.0), (4000.0, 0.0), (4000.0, 3000.0), (0.0, 3000.0)]
        edges = [network.Edge(i, (i + 1) % 4, 100.0, 200.0, "outer") for i in range(4)]
        walls = network.Network(nodes, edges)
        corners, loops = walls.corners(), walls.loops()
        areas = sorted(network.area(network.net_polygon(loop, corners, walls)) for loop in loops)
        self.assertEqual(areas, [-4400.0 * 3400.0, 3800.0 * 2800.0])

    def test_faces_of_equal_walls_run_through_and_others_step(self):
        nodes = [(0.0, 0.0), (1000.0, 0.0), (2000.0, 0.0)]
        for left, faces, steps in ((100.0, 2, 2), (150.0, 3, 3)):
            walls = network.Network(nodes, [network.Edge(0, 1, 100.0, 100.0, "outer"),
                                            network.Edge(1, 2, left, 100.0, "outer")])
            segments = network.outlines(walls, walls.corners(), walls.loops())
            self.assertEqual(sum(s.what == "face" for s in segments), faces)
            self.assertEqual(sum(s.what == "step" for s in segments), steps)  # caps among them

    def test_reference_lines_are_a_drawing_of_the_same_walls(self):
        plan = drawing.make_plan(2, 60, units="m")
        stream = io.StringIO()
        dxf.write(stream, plan.references, "m")
        document, auditor = recover.read(io.BytesIO(stream.getvalue().encode("ascii")))
        self.assertEqual(auditor.errors, [])
        walls = [line for line in document.modelspace().query("LINE")
                 if line.dxf.layer == drawing.REFERENCE]
        found = [{"start": line.dxf.start.xyz, "end": line.dxf.end.xyz, "left": data[0].value,
                  "right": data[1].value}
                 for line in walls for data in [line.get_xdata("QUOIN")]]
        table, _ = judge.scores(plan.truth(), found, tolerance=judge.Tolerance.clean(1000.0, 1.0))
        self.assertEqual((table[0].recall, table[0].precision), (1.0, 1.0))

    def test_outlines_are_closed_rings(self):
        plan_network, corners, loops = drawing.random_building(drawing.Random(4), 60)
        segments = network.outlines(plan_network, corners, loops)
        rings = network.piers(segments)
        self.assertEqual(sum(map(len, rings)), len(segments))
        for ring in rings:
            for segment, following in zip(ring, ring[1:] + ring[:1]):
                self.assertEqual(segment.end, following.start)


STAND_IN = """#!/usr/bin/python3
import json, pathlib, sys
folder = pathlib.Path(sys.argv[2]).parent
truth = json.loads((folder / "truth.json").read_text())
if sys.argv[1] == "walls" and "-o" in sys.argv:
    pathlib.Path(sys.argv[sys.argv.index("-o") + 1]).write_text("")
drop = {drop}
if drop:
    truth["walls"] = truth["walls"][drop:]
    truth["openings"] = []
print(json.dumps({{"drawings": [truth]}}))
"""


class CampaignTest(unittest.TestCase):
    """Rounds with a program that says the truth, or leaves something out."""

    def rounds(self, drop):
        with tempfile.TemporaryDirectory() as folder:
            program = pathlib.Path(folder, "quoin")
            program.write_text(STAND_IN.format(drop=drop), encoding="utf-8")
            program.chmod(0o755)
            rows = list(campaign.random_rows(program, [30], [1, 2, 3], [("clean", ())],
                                             pathlib.Path(folder)))
            self.assertEqual(len(rows), 1)
            return rows[0][1]

    def test_a_program_that_finds_all_reaches_every_goal(self):
        row = self.rounds(0)
        self.assertEqual((row.plans, row.below(campaign.GOALS["clean"])), (3, []))
        self.assertIn("1.0000 / 1.0000", campaign.as_markdown([row]))

    def test_a_program_that_leaves_walls_out_does_not(self):
        row = self.rounds(2)
        below = row.below(campaign.GOALS["clean"])
        self.assertTrue(any("walls" in line for line in below))
        self.assertTrue(any("openings" in line for line in below))
        self.assertEqual(row.scores["walls"].true - row.scores["walls"].true_right, 6)

    def test_a_program_that_fails_counts_as_having_found_nothing(self):
        with tempfile.TemporaryDirectory() as folder:
            _, row = next(campaign.random_rows("/bin/false", [30], [1], [("clean", ())],
                                               pathlib.Path(folder)))
        self.assertEqual(row.scores["walls"].recall, 0.0)
        self.assertEqual(len(row.failed), 2)  # walls, and rooms of reference lines

    def test_variants_come_back_to_where_they_were(self):
        primitives = drawing.make_plan(3, 40, drawing.ALL_NOISE).primitives
        ends = sorted(p[2] for p in primitives if p[0] == "line")
        for name, change, back in campaign.variants(1, 1.0):
            with self.subTest(name):
                again = change(primitives)
                self.assertEqual(len(again), len(primitives))
                found = sorted(back(p[3] if name == "reversed" else p[2])
                               for p in again if p[0] == "line")
                for one, other in zip(ends, found):
                    self.assertAlmostEqual(one[0], other[0], 6)


class TruthsTest(unittest.TestCase):
    """What the example plans, and plans of others where they are, are said to show."""

    def truths(self):
        shared = os.environ.get("QUOIN_SHARED_DATA")
        for file in sorted((ROOT / "tests" / "data" / "plans").glob("*.json")):
            truth = judge.load(file)
            drawing_file = ROOT / truth["drawing"]
            if not drawing_file.exists() and shared:
                drawing_file = pathlib.Path(shared) / truth["drawing"]
            yield file.stem, truth, drawing_file if drawing_file.exists() else None

    def test_the_files_are_what_the_readings_say(self):
        for name, truth in (examples.truths() | readings.truths()).items():
            file = ROOT / "tests" / "data" / "plans" / f"{name}.json"
            self.assertEqual(file.read_text(encoding="utf-8"), command.truth_text(truth), name)

    def test_each_is_perfect_by_itself(self):
        for name, truth, _ in self.truths():
            for what, score in scores(truth, truth).items():
                with self.subTest(name, what=what):
                    self.assertEqual((score.recall, score.precision), (1.0, 1.0))

    def test_rooms_are_where_lines_are_drawn(self):
        """Around every room there are lines but in openings."""
        for name, truth, file in self.truths():
            if not file or truth["noise"]:
                continue
            with self.subTest(name):
                drawn = lines_of(recover.readfile(file)[0])
                unit = truth["millimetersPerUnit"]
                tolerance = judge.Tolerance(0.0, 0.01 / unit, 1.0, 0.0, 0.0)
                sides = [judge.Line(a, b, 0.0, None) for room in truth["rooms"]
                         for ring in [room["polygon"], *room.get("holes", [])]
                         for a, b in zip(ring, ring[1:] + ring[:1])]
                open_length = sum(line.length for line in sides) - \
                    sum(judge.covered(sides, drawn, tolerance, 2000.0 / unit))
                # An opening inside has two sides in rooms, one to the outside has one.
                most = sum(2.0 * opening["width"] for opening in truth["openings"])
                self.assertLessEqual(open_length, most + 1e-6 / unit)
                self.assertGreater(open_length, 0.0)

    def test_labels_of_the_flat_are_listed(self):
        flat = judge.load(ROOT / "tests" / "data" / "plans" / "flat.json")
        self.assertEqual(sum("label" in room for room in flat["rooms"]), 11)


def lines_of(document):
    """The straight lines of model space, as the judge's."""
    found = []
    for entity in document.modelspace():
        if entity.dxftype() == "LINE":
            found.append((entity.dxf.start, entity.dxf.end))
        elif entity.dxftype() == "LWPOLYLINE":
            points = list(entity.get_points("xy"))
            points += points[:1] if entity.closed else []
            found += zip(points, points[1:])
    return [judge.Line(a[:2], b[:2], 0.0, None) for a, b in
            (((p[0], p[1]), (q[0], q[1])) for p, q in found)]


if __name__ == "__main__":
    unittest.main()
