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
            self.assertIn("drawings are written in the format that they were read in", message)
            self.assertFalse(self.path(name).exists())

    def test_words_that_make_no_sense(self):
        self.fails(2, "break")
        self.fails(2, "brake", "x.dxf")
        self.fails(2)
        self.fails(2, "break", self.plan(), "--layer", "*", "--dry-run", "--at", "five,three")
        self.fails(2, "break", self.plan(), "--layer", "*", "--dry-run", "--picture", "p.gif")

    def test_help_names_the_commands_and_exit_codes(self):
        text = self.run_ok("--help")
        for word in ("break", "clean", "walls", "rooms", "info", "draw", "merge", "trim-axes", "outline",
                     "solid", "survey", "compare",
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


if __name__ == "__main__":
    unittest.main(argv=[sys.argv[0], *sys.argv[1:]], verbosity=1)
