#!/usr/bin/python3
"""End-to-end runs of --before-after, for every command that changes a drawing, on the example plans.

usage: before_after_cli_test.py [UNITTEST ARGUMENT...]
The environment is that of quoin_cli_test.py, whose helpers it uses.
"""

import pathlib
import re
import subprocess
import unittest

import quoin_cli_test as cli

FLAT = cli.SOURCE / "examples" / "flat" / "flat.dxf"
OFFICE = cli.SOURCE / "examples" / "office" / "office.dxf"
STUDIO = cli.SOURCE / "examples" / "studio" / "studio.dxf"
RECEIVED = cli.SOURCE / "examples" / "received" / "received.dxf"
MODULE = pathlib.Path(cli.QUOIN).resolve().parents[1] / "test_modules" / "Commands.so"

# The command, its plan and options, and whether anything that was there is red. A few words that
# the command passes on stand behind all options.
RUNS = {
    "break": (FLAT, [], True),
    "clean": (RECEIVED, [], True),
    "draw": (FLAT, ["--path", "900,4500 900,5850 9000,5850", "--layer", "A-WALL-NEW"], True),
    "match-properties": (FLAT, ["--from", "D3", "--layer", "A-DOOR"], True),
    "merge": (FLAT, ["--layer", "A-WALL*"], True),
    "outline": (STUDIO, ["--layer", "W-*", "--width", "W-EXT=300", "--width", "W-INT*=60,60"],
                False),
    "paint": (FLAT, ["--layer", "A-FURN", "--rgb", "200,60,20"], True),
    "rescale": (FLAT, ["--drawing-factor", "0.5"], True),
    "rooms": (FLAT, [], False),
    "to-origin": (FLAT, ["--at", "center"], True),
    "trim-axes": (OFFICE, ["--layer", "S-GRID"], True),
    "walls": (FLAT, [], False),
    "run": (FLAT, [], False),
}


def strokes(picture, color, width):
    """How many lines of this colour and width a picture has."""
    found = re.findall(r'stroke="(#[0-9a-f]{6})" stroke-width="([0-9.]+)"[^>]* d="([^"]*)"',
                       picture.read_text())
    return sum(d.count("M") for c, w, d in found if (c, w) == (color, width))


class BeforeAfterTest(cli.CliTest):
    def words(self, command, plan, options, picture, *more):
        if command == "run":
            return ("run", MODULE, "addline", plan, *more, "--picture", picture, "--", "10,20", "500")
        return (command, plan, *options, *more, "--picture", picture)

    def plan_for(self, command, plan):
        if command != "merge":
            return plan
        broken = self.path("broken.dxf")
        self.run_ok("break", plan, "-o", broken, "--quiet")
        return broken

    def test_every_changing_command_has_it_and_is_tried_here(self):
        listed = set(re.findall(r"^  ([a-z-]+)  ", self.run_ok("help"), re.M))
        self.assertIn("picture", listed)
        having = {command for command in listed
                  if "--before-after" in cli.quoin("help", command).stdout.decode()}
        self.assertEqual(having, set(RUNS))

    def test_what_was_is_red_and_what_is_is_green(self):
        for command, (plan, options, hasOld) in RUNS.items():
            with self.subTest(command):
                if command == "run" and not MODULE.is_file():
                    continue
                plan = self.plan_for(command, plan)
                changed = self.path(f"{command}.dxf")
                pictures = []
                for i in range(2):
                    picture = self.path(f"{command}{i}.svg")
                    self.run_ok(*self.words(command, plan, options, picture, "-o", changed,
                                            "--before-after"))
                    pictures.append(picture)
                self.assertEqual(pictures[0].read_bytes(), pictures[1].read_bytes())
                # One red line is the legend's.
                red = strokes(pictures[0], "#cc0d33", "3.6") - 1
                self.assertEqual(red > 0, hasOld)
                self.assertGreater(strokes(pictures[0], "#1a8c59", "1.6"), 0)
                self.assertIn("before and after", pictures[0].read_text())
                # It is the picture that compare makes of both.
                told = self.path("told.svg")
                compared = cli.quoin("compare", plan, changed, "--picture", told)
                self.assertEqual(compared.returncode, 1, compared.stderr)
                for color, width in (("#cc0d33", "3.6"), ("#1a8c59", "1.6")):
                    self.assertEqual(strokes(told, color, width),
                                     strokes(pictures[0], color, width))

    def test_a_command_that_changes_nothing_shows_the_plan_alone(self):
        space = self.draw("plan.dxf")
        space.add_line((0, 0), (1000, 0))
        picture = self.path("p.svg")
        self.run_ok("break", self.save("plan.dxf"), "-o", self.path("o.dxf"), "--layer", "0",
                    "--picture", picture, "--before-after")
        self.assertEqual(strokes(picture, "#1a8c59", "1.6"), 0)
        self.assertIn("0 added, 0 removed, 0 moved, 0 changed, 1 same", picture.read_text())

    def test_a_dry_run_shows_what_would_change(self):
        for command, (plan, options, _) in RUNS.items():
            with self.subTest(command):
                if command == "run" and not MODULE.is_file():
                    continue
                plan = self.plan_for(command, plan)
                pictures = []
                for places in (["--dry-run"], ["-o", self.path("o.dxf")]):
                    picture = self.path(f"{len(pictures)}.svg")
                    self.run_ok(*self.words(command, plan, options, picture, *places,
                                            "--report", "json", "--before-after"))
                    pictures.append(picture.read_bytes())
                self.assertEqual(*pictures)

    def test_a_drawing_that_is_replaced_and_one_that_is_not_written(self):
        plan = self.path("flat.dxf")
        plan.write_bytes(FLAT.read_bytes())
        self.run_ok("break", plan, "--dry-run", "--picture", self.path("dry.svg"),
                    "--before-after")
        self.assertEqual(plan.read_bytes(), FLAT.read_bytes())
        self.run_ok("break", plan, "--in-place", "--picture", self.path("p.svg"), "--before-after")
        self.assertNotEqual(plan.read_bytes(), FLAT.read_bytes())
        self.assertEqual(self.path("p.svg").read_bytes(), self.path("dry.svg").read_bytes())

    def test_the_standard_input_is_refused_with_a_reason(self):
        result = subprocess.run([cli.QUOIN, "break", "-", "-o", self.path("o.dxf"), "--picture",
                                 self.path("p.svg"), "--before-after"],
                                input=FLAT.read_bytes(), capture_output=True, timeout=300)
        self.assertEqual(result.returncode, 2)
        self.assertIn(b"--before-after reads the drawing twice, which standard input does not "
                      b"give; name a file", result.stderr)
        self.assertFalse(self.path("o.dxf").exists() or self.path("p.svg").exists())
        self.fails(2, "break", FLAT, "-o", self.path("o.dxf"), "--before-after")


if __name__ == "__main__":
    unittest.main()
