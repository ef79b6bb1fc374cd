#!/usr/bin/python3
"""The random plans of scripts/plan_rounds.py, and their judge.

usage: plan_rounds_test.py [UNITTEST ARGUMENT...]
"""

import copy
import io
import math
import pathlib
import sys
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "scripts"))

from ezdxf import recover  # noqa: E402 - the line above is for what follows

from plan_rounds import drawing, dxf, judge, network  # noqa: E402


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

    def test_outlines_are_closed_rings(self):
        plan_network, corners, loops = drawing.random_building(drawing.Random(4), 60)
        segments = network.outlines(plan_network, corners, loops)
        rings = network.piers(segments)
        self.assertEqual(sum(map(len, rings)), len(segments))
        for ring in rings:
            for segment, following in zip(ring, ring[1:] + ring[:1]):
                self.assertEqual(segment.end, following.start)


if __name__ == "__main__":
    unittest.main()
