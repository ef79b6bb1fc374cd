#!/usr/bin/python3
"""End-to-end runs of the program on real and made-up drawings.

usage: quoin_cli_test.py [UNITTEST ARGUMENT...]
The environment names the program (QUOIN), the source tree (QUOIN_SOURCE) and, where they are
there, drawings that others publish (QUOIN_SHARED_DATA).
"""

import itertools
import json
import math
import os
import pathlib
import shutil
import signal
import subprocess
import sys
import tempfile
import time
import unittest

import ezdxf
import ezdxf.recover
import jsonschema

QUOIN = os.path.abspath(os.environ["QUOIN"])
SOURCE = pathlib.Path(os.environ["QUOIN_SOURCE"])
SHARED = pathlib.Path(os.environ.get("QUOIN_SHARED_DATA", SOURCE / ".." / "shared" / "data"))
# The studio has reference lines, no walls with faces: nothing on it looks like walls by name.
EXAMPLES = sorted(plan for plan in (SOURCE / "examples").glob("*/*.dxf")
                  if plan.parent.name != "studio")


SCHEMA = jsonschema.Draft202012Validator(
    json.loads((SOURCE / "docs" / "report.schema.json").read_text()))


def quoin(*arguments, timeout=300):
    """Runs the program; no shell, no input. Every JSON report must be as documented."""
    result = subprocess.run([QUOIN, *map(str, arguments)], stdin=subprocess.DEVNULL,
                            capture_output=True, timeout=timeout)
    if "json" in arguments and result.returncode != 2:
        streams = [text for text in (result.stdout, result.stderr) if text.startswith(b"{")]
        for error in itertools.chain(*(SCHEMA.iter_errors(json.loads(text)) for text in streams)):
            raise AssertionError(f"{'/'.join(map(str, error.absolute_path))}: {error.message}")
    return result


def read(path):
    """A drawing as ezdxf reads it, and what its audit finds."""
    with open(path, "rb") as stream:
        is_binary = stream.read(22).startswith(b"AutoCAD Binary DXF")
    if is_binary:
        document = ezdxf.readfile(str(path))
        auditor = document.audit()
    else:
        document, auditor = ezdxf.recover.readfile(str(path))
    return document, [(error.code, str(error.entity)) for error in auditor.errors + auditor.fixes]


def lines_of(document, layer=None):
    """End points of the lines of model space, rounded, with their handles."""
    result = []
    for line in document.modelspace().query("LINE"):
        if layer is None or line.dxf.layer == layer:
            result.append((tuple(round(c, 6) for c in line.dxf.start),
                           tuple(round(c, 6) for c in line.dxf.end), line.dxf.handle))
    return result


def length_of(document, layers):
    """Total length of lines and straight polyline segments on the layers."""
    total = 0.0
    for entity in document.modelspace():
        if entity.dxf.layer not in layers:
            continue
        if entity.dxftype() == "LINE":
            total += (entity.dxf.end - entity.dxf.start).magnitude
        elif entity.dxftype() == "LWPOLYLINE":
            points = entity.get_points("xyb")
            ends = points[1:] + (points[:1] if entity.closed else [])
            for (x1, y1, bulge), (x2, y2, _) in zip(points, ends):
                if bulge == 0:
                    total += math.hypot(x2 - x1, y2 - y1)
        elif entity.dxftype() == "POLYLINE":
            points = [vertex.dxf.location for vertex in entity.vertices]
            ends = points[1:] + (points[:1] if entity.is_closed else [])
            total += sum((end - start).magnitude for start, end in zip(points, ends))
    return total


class CliTest(unittest.TestCase):
    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="quoin-cli-"))
        self.addCleanup(shutil.rmtree, self.folder, ignore_errors=True)

    def path(self, name):
        return self.folder / name

    def run_ok(self, *arguments):
        result = quoin(*arguments)
        self.assertEqual(result.returncode, 0, result.stderr.decode())
        return result.stdout.decode()

    def document(self, *arguments):
        """The whole JSON report of a run."""
        return json.loads(self.run_ok(*arguments, "--report", "json"))

    def report(self, *arguments):
        """What the JSON report says of a run's one drawing."""
        document = self.document(*arguments)
        return document["drawings"][0] if "drawings" in document else document

    def fails(self, code, *arguments):
        """The message of a run that must fail with this exit code."""
        result = quoin(*arguments)
        self.assertEqual(result.returncode, code, result.stdout + result.stderr)
        message = result.stderr.decode()
        self.assertTrue(message.startswith("quoin: ") or code == 2, message)
        return message

    def draw(self, name, version="R2010", **attributes):
        """A new drawing and its model space."""
        document = ezdxf.new(version)
        for key, value in {"$INSUNITS": 4, **attributes}.items():
            document.header[key] = value
        self.documents = getattr(self, "documents", {})
        self.documents[name] = document
        return document.modelspace()

    def save(self, name):
        path = self.path(name)
        self.documents[name].saveas(path)
        return path

    def assert_no_new_findings(self, before, after):
        old = read(before)[1]
        new = read(after)[1]
        self.assertLessEqual(len(new), len(old), new)


class BreakTest(CliTest):
    def t_junction(self, version="R2010", **attributes):
        space = self.draw("t.dxf", version, **attributes)
        space.add_line((0, 0), (1000, 0), dxfattribs={"layer": "WALL", "color": 3})
        space.add_line((400, 5), (400, 800), dxfattribs={"layer": "WALL"})
        return self.save("t.dxf")

    def test_a_t_junction_cuts_the_top(self):
        plan = self.t_junction()
        report = self.report("break", plan, "-o", self.path("o.dxf"))
        self.assertEqual((report["lines"], report["changed"], report["pieces"]), (2, 1, 2))
        self.assertEqual(report["capture"]["distance"], 10.0)
        before, _ = read(plan)
        after, _ = read(self.path("o.dxf"))
        source = lines_of(before)[0][2]
        self.assertEqual(report["changes"][0]["source"], source)
        self.assertEqual(report["changes"][0]["results"][0]["handle"], source)
        self.assertEqual([(line[0][:2], line[1][:2]) for line in lines_of(after)],
                         [((0, 0), (400, 0)), ((400, 5), (400, 800)), ((400, 0), (1000, 0))])
        self.assertEqual([line.dxf.color for line in after.modelspace()], [3, 256, 3])

    def test_a_line_with_a_number_that_is_none_is_skipped_and_named(self):
        # Taken for 0, its end would stand somewhere else and cut what it does not meet.
        plan = self.t_junction()
        whole = pathlib.Path(plan).read_bytes()
        for number in (b"abc", b"1e999", b"nan"):
            stem = whole.rindex(b"AcDbLine")
            begin = whole.index(b" 10\n", stem) + len(b" 10\n")
            end = whole.index(b"\n", begin)
            bad = self.path("bad.dxf")
            pathlib.Path(bad).write_bytes(whole[:begin] + number + whole[end:])
            shown = self.run_ok("break", bad, "-o", self.path("o.dxf"))
            self.assertIn("has a number that cannot be read", shown)
            report = self.report("break", bad, "-o", self.path("o.dxf"))
            self.assertEqual((report["lines"], report["changed"]), (1, 0))

    def test_every_version_is_written_as_it_was_read(self):
        for version in ("R12", "R2000", "R2004", "R2007", "R2010", "R2013", "R2018"):
            with self.subTest(version):
                plan = self.t_junction(version)
                self.run_ok("break", plan, "-o", self.path("o.dxf"))
                after, _ = read(self.path("o.dxf"))
                self.assertEqual(after.dxfversion, read(plan)[0].dxfversion)
                self.assertEqual(len(lines_of(after)), 3)
                self.assert_no_new_findings(plan, self.path("o.dxf"))

    def test_pieces_keep_properties_and_extended_data(self):
        space = self.draw("p.dxf", "R2010")
        document = self.documents["p.dxf"]
        document.appids.new("QUOIN-TEST")
        document.linetypes.new("DASHED2", dxfattribs={"description": "- -"})
        line = space.add_line((0, 0, 5), (1000, 0, 5), dxfattribs={
            "layer": "WALL", "true_color": 0x112233, "linetype": "DASHED2", "lineweight": 35,
            "ltscale": 2.5, "thickness": 7})
        line.set_xdata("QUOIN-TEST", [(1000, "墙"), (1040, 1.5)])
        space.add_line((400, 0, 5), (400, 800, 5), dxfattribs={"layer": "WALL"})
        self.run_ok("break", self.save("p.dxf"), "-o", self.path("o.dxf"))
        after, _ = read(self.path("o.dxf"))
        pieces = [line for line in after.modelspace().query("LINE") if line.dxf.start.y == 0
                  and line.dxf.end.y == 0]
        self.assertEqual(len(pieces), 2)
        for piece in pieces:
            self.assertEqual((piece.dxf.layer, piece.dxf.true_color, piece.dxf.linetype,
                              piece.dxf.lineweight, piece.dxf.ltscale, piece.dxf.thickness),
                             ("WALL", 0x112233, "DASHED2", 35, 2.5, 7))
            self.assertEqual(piece.get_xdata("QUOIN-TEST"), [(1000, "墙"), (1040, 1.5)])
        self.assertEqual(len({piece.dxf.handle for piece in pieces}), 2)

    def test_a_cut_segment_of_a_polyline_becomes_lines_and_the_rest_stays(self):
        space = self.draw("poly.dxf")
        poly = space.add_lwpolyline([(0, 0, 0, 0, 0), (1000, 0, 0, 0, 0.5), (1000, 500, 0, 0, 0),
                                     (0, 500, 0, 0, 0)], dxfattribs={"layer": "WALL"})
        handle = poly.dxf.handle
        space.add_line((400, 0), (400, -800), dxfattribs={"layer": "WALL"})
        report = self.report("break", self.save("poly.dxf"), "-o", self.path("o.dxf"))
        self.assertEqual(report["changes"][0]["segment"], 0)
        after, _ = read(self.path("o.dxf"))
        rest = after.modelspace().query("LWPOLYLINE")
        self.assertEqual([[tuple(p) for p in poly.get_points("xyb")] for poly in rest],
                         [[(1000, 0, 0.5), (1000, 500, 0), (0, 500, 0)]])
        self.assertEqual(rest[0].dxf.handle, handle)
        self.assertEqual(len(lines_of(after)), 3)

    def test_a_cut_in_the_middle_leaves_a_polyline_on_each_side(self):
        space = self.draw("poly.dxf")
        space.add_lwpolyline([(0, 300), (0, 0), (1000, 0), (1000, 300)],
                             dxfattribs={"layer": "WALL"})
        space.add_line((400, 0), (400, -800), dxfattribs={"layer": "WALL"})
        self.run_ok("break", self.save("poly.dxf"), "-o", self.path("o.dxf"))
        after, findings = read(self.path("o.dxf"))
        self.assertEqual(sorted([tuple(p[:2]) for p in poly.get_points()]
                                for poly in after.modelspace().query("LWPOLYLINE")),
                         [[(0, 300), (0, 0)], [(1000, 0), (1000, 300)]])
        self.assertEqual(findings, [])

    def test_a_closed_polyline_opens_where_it_is_cut(self):
        for version, kind in (("R2010", "LWPOLYLINE"), ("R12", "POLYLINE")):
            with self.subTest(version):
                space = self.draw("c.dxf", version)
                corners = [(0, 0), (1000, 0), (1000, 500), (0, 500)]
                if kind == "POLYLINE":
                    space.add_polyline2d(corners, close=True, dxfattribs={"layer": "WALL"})
                else:
                    space.add_lwpolyline(corners, close=True, dxfattribs={"layer": "WALL"})
                space.add_line((1000, 200), (2000, 200), dxfattribs={"layer": "WALL"})
                self.run_ok("break", self.save("c.dxf"), "-o", self.path("o.dxf"))
                after, findings = read(self.path("o.dxf"))
                self.assertEqual(findings, [])
                rest = after.modelspace().query(kind)
                self.assertEqual(len(rest), 1)
                points = ([tuple(p[:2]) for p in rest[0].get_points()] if kind == "LWPOLYLINE"
                          else [tuple(v.dxf.location)[:2] for v in rest[0].vertices])
                self.assertEqual(points, [(1000, 500), (0, 500), (0, 0), (1000, 0)])
                self.assertFalse(rest[0].is_closed if kind == "POLYLINE" else rest[0].closed)
                self.assertEqual(len(lines_of(after)), 3)

    def test_where_nothing_is_left_of_a_polyline_the_first_line_takes_its_handle(self):
        for version in ("R2010", "R12"):
            with self.subTest(version):
                space = self.draw("one.dxf", version)
                add = space.add_polyline2d if version == "R12" else space.add_lwpolyline
                handle = add([(0, 0), (1000, 0)], dxfattribs={"layer": "WALL"}).dxf.handle
                space.add_line((400, 0), (400, -800), dxfattribs={"layer": "WALL"})
                self.run_ok("break", self.save("one.dxf"), "-o", self.path("o.dxf"))
                after, findings = read(self.path("o.dxf"))
                self.assertEqual(findings, [])
                self.assertEqual(len(after.modelspace()), 3)
                first = [line for line in lines_of(after) if line[2] == handle]
                self.assertEqual(first[0][:2], ((0, 0, 0), (400, 0, 0)))

    def test_a_polyline_of_many_vertices_is_cut_many_times_in_no_time(self):
        # The parts of a polyline take time in proportion to the parts: minutes otherwise.
        corners = [(1000 * i, 3000 * (i // 2 % 2)) for i in range(4000)]
        for kind in ("LWPOLYLINE", "POLYLINE"):
            with self.subTest(kind):
                space = self.draw("comb.dxf")
                add = space.add_lwpolyline if kind == "LWPOLYLINE" else space.add_polyline2d
                add(corners, dxfattribs={"layer": "WALL"})
                for x, y in corners[::8]:
                    space.add_line((x + 400, y), (x + 400, y - 500), dxfattribs={"layer": "WALL"})
                result = subprocess.run(
                    [QUOIN, "break", self.save("comb.dxf"), "-o", self.path("o.dxf")],
                    capture_output=True, timeout=60)
                self.assertEqual(result.returncode, 0, result.stderr)
                after, findings = read(self.path("o.dxf"))
                self.assertEqual(findings, [])
                parts = after.modelspace().query(kind)
                self.assertEqual(sorted(len(part) for part in parts), [7] + [8] * 499)
                self.assertEqual(len(lines_of(after)), 1500)

    def test_a_polyline_of_very_many_vertices_is_cut_into_two_in_no_time(self):
        corners = [(1000 * i, 3000 * (i // 2 % 2)) for i in range(200000)]
        space = self.draw("long.dxf")
        space.add_lwpolyline(corners, dxfattribs={"layer": "WALL"})
        x, y = corners[100000]
        space.add_line((x + 400, y), (x + 400, y - 500), dxfattribs={"layer": "WALL"})
        plan = self.save("long.dxf")
        result = quoin("break", plan, "-o", self.path("o.dxf"), timeout=15)
        self.assertEqual(result.returncode, 0, result.stderr)
        parts = read(self.path("o.dxf"))[0].modelspace().query("LWPOLYLINE")
        self.assertEqual([len(part) for part in parts], [100001, 99999])

    def test_units_choose_the_capture_distance(self):
        for units, distance in ((0, 10), (4, 10), (6, 0.01), (5, 1), (1, 10 / 25.4)):
            with self.subTest(units):
                plan = self.t_junction(**{"$INSUNITS": units})
                report = self.report("break", plan, "--dry-run")
                self.assertAlmostEqual(report["capture"]["distance"], distance, places=12)

    def test_the_project_scale_can_be_given(self):
        report = self.report("break", self.t_junction(), "--dry-run", "--project-scale", "100")
        self.assertEqual(report["capture"], {"distance": 0.1, "projectScale": 100.0, "units": "mm"})
        self.assertEqual(report["changed"], 0)

    def test_a_point_cuts_the_nearest_wall_line_at_its_foot(self):
        report = self.report("break", self.t_junction(), "-o", self.path("o.dxf"),
                             "--at", "700,30", "--at", "-50,20")
        ends = [piece["end"][:2] for piece in report["changes"][0]["results"]]
        self.assertEqual(ends, [[400, 0], [700, 0], [1000, 0]])

    def test_a_dry_run_writes_nothing(self):
        plan = self.t_junction()
        before = plan.read_bytes()
        self.run_ok("break", plan, "-o", self.path("o.dxf"), "--dry-run")
        self.assertEqual(os.listdir(self.folder), ["t.dxf"])
        self.assertEqual(plan.read_bytes(), before)

    def test_in_place_keeps_the_old_drawing(self):
        plan = self.t_junction()
        before = plan.read_bytes()
        self.run_ok("break", plan, "--in-place")
        self.assertEqual(self.path("t.dxf.bak").read_bytes(), before)
        self.assertEqual(len(lines_of(read(plan)[0])), 3)

    def test_a_broken_plan_has_nothing_left_to_break(self):
        for plan in EXAMPLES:
            with self.subTest(plan.name):
                first = self.report("break", plan, "-o", self.path("1.dxf"))
                again = self.report("break", self.path("1.dxf"), "-o", self.path("2.dxf"))
                self.assertGreater(first["changed"], 5)
                self.assertEqual(again["changed"], 0)
                self.assertEqual(self.path("1.dxf").read_bytes(), self.path("2.dxf").read_bytes())

    def test_the_examples_keep_their_length_and_pass_the_audit(self):
        for plan in EXAMPLES:
            with self.subTest(plan.name):
                report = self.report("break", plan, "-o", self.path("o.dxf"))
                self.assert_no_new_findings(plan, self.path("o.dxf"))
                layers = set(report["layers"])
                self.assertAlmostEqual(length_of(read(plan)[0], layers),
                                       length_of(read(self.path("o.dxf"))[0], layers), places=3)

    def test_locked_layers_cut_others_and_stay(self):
        space = self.draw("l.dxf")
        self.documents["l.dxf"].layers.new("WALL-LOCKED").lock()
        space.add_line((0, 0), (1000, 0), dxfattribs={"layer": "WALL-LOCKED"})
        space.add_line((400, 0), (400, 800), dxfattribs={"layer": "WALL"})
        space.add_line((400, 500), (900, 500), dxfattribs={"layer": "WALL-LOCKED"})
        report = self.report("break", self.save("l.dxf"), "-o", self.path("o.dxf"))
        self.assertEqual((report["changed"], report["heldByLockedLayers"]), (1, 1))

    def test_layer_names_that_differ_in_case_are_one_layer(self):
        space = self.draw("case.dxf")
        self.documents["case.dxf"].layers.new("WALL-A").lock()
        space.add_line((0, 0), (1000, 0), dxfattribs={"layer": "wall-a"})
        space.add_line((400, 0), (400, 800), dxfattribs={"layer": "Wall"})
        plan = self.save("case.dxf")
        layers = {layer["name"].upper(): layer["kinds"]
                  for layer in self.report("info", plan)["layers"]}
        self.assertEqual(layers["WALL-A"], {"LINE": 1})
        self.assertEqual(layers["WALL"], {"LINE": 1})
        report = self.report("break", plan, "-o", self.path("o.dxf"))
        self.assertEqual((report["lines"], report["heldByLockedLayers"]), (2, 1))

    def test_a_layer_without_lines_is_told_and_nothing_is_written(self):
        self.draw("none.dxf").add_circle((0, 0), 5, dxfattribs={"layer": "WALL"})
        plan = self.save("none.dxf")
        message = self.fails(4, "break", plan, "--layer", "WALL*", "--layer", "0",
                             "-o", self.path("o.dxf"))
        self.assertIn("1 CIRCLE", message)
        self.assertFalse(self.path("o.dxf").exists())

    def test_pictures_come_in_three_formats(self):
        plan = self.t_junction()
        for ending, magic in ((".png", b"\x89PNG"), (".svg", b"<?xml"), (".pdf", b"%PDF")):
            picture = self.path("p" + ending)
            self.run_ok("break", plan, "--dry-run", "--picture", picture)
            self.assertTrue(picture.read_bytes().startswith(magic))


class SharedDrawingsTest(CliTest):
    def setUp(self):
        super().setUp()
        if not SHARED.is_dir():
            self.skipTest("no shared drawings on this machine")

    def drawings(self):
        return sorted(SHARED.glob("*.dxf"))

    def test_all_drawings_are_told_about(self):
        for plan in self.drawings():
            with self.subTest(plan.name):
                report = self.report("info", plan)
                self.assertGreater(report["records"], 10)

    def test_all_drawings_break_and_pass_the_audit(self):
        for plan in self.drawings():
            with self.subTest(plan.name):
                self.path("o.dxf").unlink(missing_ok=True)
                result = quoin("break", plan, "--layer", "*", "-o", self.path("o.dxf"))
                if result.returncode == 4:
                    self.assertIn(b"no LINE and no straight polyline segment", result.stderr)
                    continue
                self.assertEqual(result.returncode, 0, result.stderr.decode())
                self.assert_no_new_findings(plan, self.path("o.dxf"))

    def test_the_walls_of_real_plans_are_found_by_themselves(self):
        for name, least in (("barcelona_pavilion_r2000.dxf", 40), ("barcelona_plan_r2013.dxf", 1),
                            ("house_bishop_floorplan_r2004.dxf", 40)):
            with self.subTest(name):
                report = self.report("break", SHARED / name, "--dry-run")
                self.assertGreaterEqual(report["changed"], least)

    def test_a_dwg_file_is_told_apart(self):
        for plan in sorted(SHARED.glob("*.dwg")):
            message = self.fails(3, "break", plan, "-o", self.path("o.dxf"))
            self.assertIn("DWG", message)
            self.assertFalse(self.path("o.dxf").exists())


class ErrorTest(CliTest):
    def plan(self):
        space = self.draw("plan.dxf")
        space.add_line((0, 0), (1000, 0), dxfattribs={"layer": "A-ROOF"})
        return self.save("plan.dxf")

    def test_a_missing_file(self):
        self.assertIn("nowhere.dxf", self.fails(3, "info", self.path("nowhere.dxf")))

    def test_an_unknown_command_names_the_nearest(self):
        message = self.fails(2, "brek", "plan.dxf")
        self.assertIn('no command brek, did you mean break?', message)
        self.assertNotIn("did you mean", self.fails(2, "frobnicate"))

    def test_an_empty_file(self):
        self.path("empty.dxf").write_bytes(b"")
        self.assertIn("empty", self.fails(3, "info", self.path("empty.dxf")))

    def test_a_folder(self):
        self.fails(3, "info", self.folder)

    def test_bytes_that_are_no_drawing(self):
        self.path("x.dxf").write_bytes(bytes(range(256)) * 40)
        self.fails(3, "info", self.path("x.dxf"))

    def test_a_drawing_that_is_cut_short_names_the_line(self):
        plan = self.plan()
        data = plan.read_bytes()
        self.path("short.dxf").write_bytes(data[:len(data) // 2])
        message = self.fails(3, "info", self.path("short.dxf"))
        self.assertRegex(message, r"short\.dxf:\d+")

    def test_without_wall_layers_the_layers_are_listed(self):
        message = self.fails(4, "break", self.plan(), "-o", self.path("o.dxf"))
        self.assertIn("A-ROOF", message)
        self.assertIn("--layer", message)

    def test_a_pattern_that_matches_nothing(self):
        self.assertIn("B-*", self.fails(4, "break", self.plan(), "--dry-run", "--layer", "B-*"))

    def test_no_place_for_the_result(self):
        self.assertIn("--in-place", self.fails(2, "break", self.plan(), "--layer", "*"))

    def test_the_input_as_output(self):
        plan = self.plan()
        before = plan.read_bytes()
        self.assertIn("--in-place", self.fails(2, "break", plan, "--layer", "*", "-o", plan))
        self.assertEqual(plan.read_bytes(), before)

    def test_a_folder_that_is_not_there(self):
        self.fails(5, "break", self.plan(), "--layer", "*", "-o", self.path("no/where/o.dxf"))

    def test_a_dwg_name_is_refused(self):
        # Before anything is read: the drawing need not even be there.
        for name in ("o.dwg", "o.SVG", "o.png", "o.pdf", "o.obj"):
            message = self.fails(2, "break", self.path("none.dxf"), "-o", self.path(name))
            self.assertIn("drawings are written as DXF", message)
            self.assertFalse(self.path(name).exists())

    def test_words_that_make_no_sense(self):
        self.fails(2, "break")
        self.fails(2, "brake", "x.dxf")
        self.fails(2)
        self.fails(2, "break", self.plan(), "--layer", "*", "--dry-run", "--at", "five,three")
        self.fails(2, "break", self.plan(), "--layer", "*", "--dry-run", "--picture", "p.gif")

    def test_help_names_the_commands_and_exit_codes(self):
        text = self.run_ok("--help")
        for word in ("break", "info", "draw", "merge", "trim-axes", "outline", "solid",
                     "130", "interrupted"):
            self.assertIn(word, text)
        self.assertIn("--picture", self.run_ok("break", "--help"))
        self.assertRegex(self.run_ok("--version"), r"^quoin \d")

    def test_huge_coordinates(self):
        space = self.draw("far.dxf")
        space.add_line((1e300, 0), (-1e300, 0), dxfattribs={"layer": "WALL"})
        space.add_line((0, 0), (0, 1e15), dxfattribs={"layer": "WALL"})
        self.run_ok("break", self.save("far.dxf"), "-o", self.path("o.dxf"),
                    "--picture", self.path("p.png"))

    def test_a_missing_module(self):
        environment = dict(os.environ, QUOIN_MODULES=str(self.folder))
        result = subprocess.run([QUOIN, "--help"], env=environment, capture_output=True)
        self.assertEqual(result.returncode, 70)
        self.assertIn(b"libquoin.so", result.stderr)

    def test_an_interrupt_leaves_every_file_whole(self):
        space = self.draw("big.dxf", "R2000")
        for i in range(6000):
            space.add_line((0, i * 20), (5000, i * 20), dxfattribs={"layer": "WALL"})
            space.add_line((2000, i * 20), (2000, i * 20 + 9), dxfattribs={"layer": "WALL"})
        plan = self.save("big.dxf")
        before = plan.read_bytes()
        self.run_ok("break", plan, "-o", self.path("broken.dxf"))
        broken = self.path("broken.dxf").read_bytes()
        self.path("broken.dxf").unlink()
        for delay in (0.05, 0.3, 0.8):
            process = subprocess.Popen([QUOIN, "break", str(plan), "--in-place"],
                                       stdout=subprocess.DEVNULL, stderr=subprocess.PIPE)
            time.sleep(delay)
            process.send_signal(signal.SIGINT)
            errors = process.communicate(timeout=120)[1]
            self.assertIn(process.returncode, (0, 130, -signal.SIGINT))
            # The request may come when the new file is being put in its place.
            if process.returncode == 0 or b"written before stay" in errors:
                self.assertEqual(plan.read_bytes(), broken)
                self.assertEqual(self.path("big.dxf.bak").read_bytes(), before)
                break
            self.assertEqual(plan.read_bytes(), before)
            self.assertEqual(os.listdir(self.folder), ["big.dxf"])


class DrawTest(CliTest):
    def room(self):
        space = self.draw("room.dxf", **{"$INSUNITS": 4})
        for start, end in (((0, 0), (4000, 0)), ((4000, 0), (4000, 3000)),
                           ((4000, 3000), (0, 3000)), ((0, 3000), (0, 0))):
            space.add_line(start, end, dxfattribs={"layer": "A-WALL"})
        return self.save("room.dxf")

    def test_a_wall_across_a_room_cuts_and_is_cut(self):
        report = self.report("draw", self.room(), "--from", "-500,1500", "--to", "4500,1500",
                             "--layer", "A-WALL-NEW", "-o", self.path("o.dxf"))
        drawn = report["drawn"][0]
        self.assertEqual([piece["start"][0] for piece in drawn["results"]], [-500, 0, 4000])
        self.assertEqual(len(drawn["changes"]), 2)
        after, findings = read(self.path("o.dxf"))
        self.assertEqual(findings, [])
        self.assertEqual(len(lines_of(after, "A-WALL")), 6)
        self.assertEqual(len(lines_of(after, "A-WALL-NEW")), 3)
        self.assertIn("A-WALL-NEW", after.layers)

    def test_a_path_draws_each_line_against_the_result_of_the_last(self):
        report = self.report("draw", self.room(), "--path",
                             "1000,-500 1000,3500 3000,3500 3000,-500", "--layer", "A-WALL", "-o", self.path("o.dxf"))
        self.assertEqual([len(line["changes"]) for line in report["drawn"]], [2, 0, 2])
        self.assertEqual(read(self.path("o.dxf"))[1], [])

    def test_the_angle_lock_turns_each_line(self):
        report = self.report("draw", self.room(), "--from", "0,0", "--to", "1000,40",
                             "--layer", "A-WALL", "--angle-lock", "--dry-run")
        end = report["drawn"][0]["to"]
        self.assertEqual(end[1], 0.0)
        self.assertAlmostEqual(end[0], math.hypot(1000, 40))

    def test_a_line_without_ends_is_refused(self):
        self.fails(2, "draw", self.room(), "--layer", "X", "--from", "0,0", "--dry-run")


class MergeTest(CliTest):
    def test_broken_lines_merge_again(self):
        for plan in EXAMPLES:
            with self.subTest(plan.name):
                self.run_ok("break", plan, "-o", self.path("broken.dxf"))
                report = self.report("merge", self.path("broken.dxf"), "-o", self.path("o.dxf"))
                self.assert_no_new_findings(plan, self.path("o.dxf"))
                after, _ = read(self.path("o.dxf"))
                for change in report["changes"]:
                    self.assertIn(change["source"], after.entitydb)
                    for absorbed in change["absorbed"]:
                        self.assertNotIn(absorbed["source"], after.entitydb)

    def test_collinear_lines_merge_and_others_do_not(self):
        space = self.draw("m.dxf")
        add = lambda start, end, **more: space.add_line(
            start, end, dxfattribs={"layer": "WALL", **more}).dxf.handle
        first = add((0, 0), (1000, 0))
        second = add((1000, 0), (2000, 0))
        add((3000, 0), (4000, 0))
        add((4000, 0), (5000, 0), color=1)  # another colour
        add((0, 500, 0), (1000, 500, 0))
        add((1000, 500, 3), (2000, 500, 3))  # another height
        report = self.report("merge", self.save("m.dxf"), "-o", self.path("o.dxf"))
        self.assertEqual([(change["source"], [gone["source"] for gone in change["absorbed"]])
                          for change in report["changes"]], [(second, [first])])
        self.assertEqual(report["changes"][0]["results"][0]["length"], 2000)
        after, _ = read(self.path("o.dxf"))
        self.assertEqual(len(lines_of(after)), 5)
        survivor = [line for line in lines_of(after) if line[2] == second][0]
        self.assertEqual({survivor[0], survivor[1]}, {(0, 0, 0), (2000, 0, 0)})

    def test_lines_are_kept_apart_where_asked(self):
        space = self.draw("k.dxf")
        for x in (0, 1000, 2000):
            space.add_line((x, 0), (x + 1000, 0), dxfattribs={"layer": "WALL"})
        report = self.report("merge", self.save("k.dxf"), "-o", self.path("o.dxf"),
                             "--keep-at", "1000,0")
        self.assertEqual(report["absorbed"], 1)


class TrimAxesTest(CliTest):
    def test_grid_lines_end_at_their_outermost_crossings(self):
        space = self.draw("grid.dxf")
        for x in (0, 6000, 12000):
            space.add_line((x, -900), (x, 8000), dxfattribs={"layer": "GRID"})
        for y in (0, 5000):
            space.add_line((13000, y), (-700, y), dxfattribs={"layer": "GRID"})
        report = self.report("trim-axes", self.save("grid.dxf"), "--layer", "grid",
                             "-o", self.path("o.dxf"), "--picture", self.path("p.png"))
        self.assertEqual(len(report["changes"]), 5)
        after, findings = read(self.path("o.dxf"))
        self.assertEqual(findings, [])
        self.assertEqual([line[:2] for line in lines_of(after)],
                         [((0, 0, 0), (0, 5000, 0)), ((6000, 0, 0), (6000, 5000, 0)),
                          ((12000, 0, 0), (12000, 5000, 0)), ((12000, 0, 0), (0, 0, 0)),
                          ((12000, 5000, 0), (0, 5000, 0))])


class OutlineTest(CliTest):
    def corner(self):
        space = self.draw("axes.dxf", **{"$INSUNITS": 4})
        space.add_line((0, 0), (4000, 0), dxfattribs={"layer": "AXIS"})
        space.add_line((4000, 0), (4000, 3000), dxfattribs={"layer": "AXIS"})
        return self.save("axes.dxf")

    def test_a_corner_is_mitred(self):
        report = self.report("outline", self.corner(), "--layer", "AXIS", "--left", "100",
                             "--right", "150", "-o", self.path("o.dxf"))
        after, findings = read(self.path("o.dxf"))
        self.assertEqual(findings, [])
        lines = {(line[0][:2], line[1][:2]) for line in lines_of(after, "WALL-OUTLINE")}
        self.assertEqual(lines, {((0, 100), (3900, 100)), ((0, -150), (4150, -150)),
                                 ((0, 100), (0, -150)), ((3900, 100), (3900, 3000)),
                                 ((4150, -150), (4150, 3000)), ((3900, 3000), (4150, 3000))})
        self.assertEqual(report["lines"], 2)

    def test_widths_come_from_extended_data_layers_or_options(self):
        space = self.draw("w.dxf")
        self.documents["w.dxf"].appids.new("QUOIN")
        line = space.add_line((0, 0), (4000, 0), dxfattribs={"layer": "AXIS"})
        line.set_xdata("QUOIN", [(1040, 11.0), (1040, 22.0)])
        space.add_line((0, 900), (4000, 900), dxfattribs={"layer": "AXIS-B"})
        space.add_line((0, 1900), (4000, 1900), dxfattribs={"layer": "AXIS-C"})
        report = self.report("outline", self.save("w.dxf"), "--layer", "AXIS*", "--left", "1",
                             "--right", "2", "--width", "axis-b=60", "-o", self.path("o.dxf"))
        self.assertEqual([(change["left"], change["right"]) for change in report["walls"]],
                         [(11, 22), (30, 30), (1, 2)])

    def test_a_wall_without_width_is_refused(self):
        message = self.fails(2, "outline", self.corner(), "--layer", "AXIS", "--dry-run")
        self.assertIn("has no width", message)


class SolidTest(CliTest):
    def rooms(self):
        space = self.draw("axes.dxf", **{"$INSUNITS": 4})
        for start, end in (((0, 0), (4000, 0)), ((4000, 0), (4000, 3000)),
                           ((4000, 3000), (0, 3000)), ((0, 3000), (0, 0)),
                           ((4000, 0), (8000, 0))):
            space.add_line(start, end, dxfattribs={"layer": "AXIS"})
        return self.save("axes.dxf")

    def solid(self, name):
        return self.report("solid", self.rooms(), "--layer", "AXIS", "--left", "100", "--right",
                           "100", "--height", "2800", "-o", self.path(name),
                           "--picture", self.path("p.png"))

    def test_every_wall_is_a_closed_body_in_an_obj_file(self):
        self.solid("m.obj")
        vertices, groups = [], {}
        for line in self.path("m.obj").read_text().splitlines():
            words = line.split()
            if words[0] == "v":
                vertices.append(tuple(map(float, words[1:])))
            elif words[0] == "g":
                faces = groups.setdefault(words[1], [])
            elif words[0] == "f":
                faces.append([int(word) for word in words[1:]])
        self.assertEqual(len(groups), 5)
        for faces in groups.values():
            edges = {}
            volume = 0.0
            for face in faces:
                for a, b in zip(face, face[1:] + face[:1]):
                    edges[(a, b)] = edges.get((a, b), 0) + 1
                a = vertices[face[0] - 1]
                for second, third in zip(face[1:], face[2:]):
                    b, c = vertices[second - 1], vertices[third - 1]
                    volume += (a[0] * (b[1] * c[2] - b[2] * c[1]) -
                               a[1] * (b[0] * c[2] - b[2] * c[0]) +
                               a[2] * (b[0] * c[1] - b[1] * c[0])) / 6
            # Every edge is walked once in each direction: the body is closed and oriented.
            for (a, b), count in edges.items():
                self.assertEqual((count, edges.get((b, a))), (1, 1))
            self.assertGreater(volume, 0)

    def test_a_dxf_model_holds_its_faces(self):
        report = self.solid("m.dxf")
        after, findings = read(self.path("m.dxf"))
        self.assertEqual(findings, [])
        self.assertEqual(len(after.modelspace().query("3DFACE")), 10 * len(report["walls"]))

    def test_a_height_of_nothing_is_refused(self):
        self.fails(2, "solid", self.rooms(), "--layer", "AXIS", "--left", "1", "--right", "1",
                   "--height", "0", "-o", self.path("m.obj"))


class InfoTest(CliTest):
    def test_it_tells_version_units_layers_and_extents(self):
        space = self.draw("i.dxf", "R2004", **{"$INSUNITS": 6})
        space.add_line((0, 0), (10, 5), dxfattribs={"layer": "A-WALL"})
        space.add_circle((20, 0), 2, dxfattribs={"layer": "S-COLS"})
        text = self.run_ok("info", self.save("i.dxf"))
        for words in ("R2004", "AC1018", "ASCII", "A-WALL", "[walls]", "1 LINE", "1 CIRCLE",
                      "0,-2,0 to 22,5,0"):
            self.assertIn(words, text)

    def test_it_names_what_cannot_be_measured_or_moved(self):
        space = self.draw("kept.dxf", "R2010")
        space.add_line((0, 0), (10, 5))
        space.new_entity("ACAD_PROXY_ENTITY", {})
        plan = self.save("kept.dxf")
        text = self.run_ok("info", plan)
        self.assertIn("left out, they have none: 1 ACAD_PROXY_ENTITY", text)
        self.assertIn("not to be moved or scaled: 1 ACAD_PROXY_ENTITY", text)

    def test_chinese_names_of_a_gbk_drawing_come_out(self):
        plan = SOURCE / "examples" / "house-gbk" / "house.dxf"
        text = self.run_ok("info", plan)
        self.assertIn("墙", text)
        self.assertIn("ANSI_936", text)


if __name__ == "__main__":
    unittest.main(argv=[sys.argv[0], *sys.argv[1:]], verbosity=1)
