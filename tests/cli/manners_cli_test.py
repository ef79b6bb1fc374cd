#!/usr/bin/python3
"""End-to-end runs about the manners of the command line: several drawings, streams, help, errors.

usage: manners_cli_test.py [UNITTEST ARGUMENT...]
The environment is that of quoin_cli_test.py, whose helpers it uses.
"""

import json
import subprocess
import sys
import unittest

import quoin_cli_test as cli


class SeveralDrawingsTest(cli.CliTest):
    def plan(self, name):
        space = self.draw(name)
        space.add_line((0, 0), (1000, 0), dxfattribs={"layer": "WALL"})
        space.add_line((400, 0), (400, 800), dxfattribs={"layer": "WALL"})
        return self.save(name)

    def test_each_gets_its_place_and_a_failing_one_keeps_none_back(self):
        plans = [self.plan("a.dxf"), self.path("gone.dxf"), self.plan("b.dxf")]
        result = cli.quoin("break", *plans, "-o", self.path("out"), "--jobs", "2",
                           "--picture", self.path("{name}.svg"), "--report", "json")
        self.assertEqual(result.returncode, 3)
        document = json.loads(result.stdout)
        self.assertEqual([drawing["exitCode"] for drawing in document["drawings"]], [0, 3, 0])
        self.assertIn("gone.dxf", document["drawings"][1]["error"])
        for name in ("a", "b"):
            self.assertEqual(len(cli.lines_of(cli.read(self.path(f"out/{name}.dxf"))[0])), 3)
            self.assertTrue(self.path(f"{name}.svg").exists())
        self.assertIn(b"1 of 3 drawings failed", result.stderr)

    def test_a_folder_that_cannot_be_made_is_named_with_the_cause(self):
        plans = [self.plan("a.dxf"), self.plan("b.dxf")]
        self.path("file").write_text("no folder")
        for words in (("break", *plans), ("survey", plans[0])):
            message = self.fails(5, *words, "-o", self.path("file/out"))
            self.assertIn("out: cannot make the folder: Not a directory", message)

    def test_an_option_takes_one_value_so_that_the_drawing_may_follow(self):
        plan = self.plan("a.dxf")
        self.run_ok("break", "--layer", "WALL*", "--at", "700,0", plan, "--dry-run")

    def test_quiet_prints_nothing_and_verbose_more(self):
        self.assertEqual(self.run_ok("break", self.plan("a.dxf"), "--dry-run", "--quiet"), "")

    def test_large_coordinates_keep_their_digits(self):
        space = self.draw("utm.dxf")
        space.add_line((500123.125, 4649776.0625), (500200.5, 4649776.0625))
        text = self.run_ok("info", self.save("utm.dxf"))
        self.assertIn("500123.125,4649776.0625,0 to 500200.5,4649776.0625,0", text)


class JsonTest(cli.CliTest):
    """Every report that any test asks for is held against its schema (cli.quoin)."""

    RUNS = {
        "break": [], "clean": [], "merge": [], "trim-axes": ["--layer", "WALL"], "info": None, "extents": None,
        "to-origin": ["--at", "center"],
        "outline": ["--layer", "WALL", "--left", "50", "--right", "50"],
        "solid": ["--layer", "WALL", "--left", "50", "--right", "50", "--height", "2800"],
        "walls": [], "rooms": ["--layer", "WALL", "--left", "50", "--right", "50"],
        "draw": ["--from", "200,500", "--to", "900,500", "--layer", "WALL"],
        "style mline": ["--name", "W"], "style dim": ["--name", "D", "--scale", "1"],
        "paint": ["--layer", "WALL", "--rgb", "1,2,3"],
        "match-properties": ["--layer", "WALL", "--from", "{handle}"],
        "rescale": ["--drawing-factor", "2"], "convert": [], "restore": None, "picture": None,
    }

    def plan(self):
        space = self.draw("plan.dxf")
        for start, end in (((0, 0), (1000, 0)), ((400, 0), (400, 800)), ((1000, 0), (1500, 0)),
                           ((800, -50), (800, 300)), ((403, -50), (403, 300))):
            line = space.add_line(start, end, dxfattribs={"layer": "WALL"})
        space.add_circle((0, 0), 10, dxfattribs={"layer": "WALL"})
        return self.save("plan.dxf"), line.dxf.handle

    def test_every_command_reports_as_its_schema_says(self):
        # run has its own (RunCommand_cli_test.py), with a module; survey too, on walls with faces;
        # compare has two drawings (CompareCommand_cli_test.py).
        self.assertEqual({*self.RUNS, "run", "survey", "compare"},
                         set(cli.SCHEMA.schema["properties"]["command"]["enum"]))
        for command, options in self.RUNS.items():
            with self.subTest(command=command):
                plan, handle = self.plan()
                words = [option.format(handle=handle) for option in options or []]
                if options is not None:
                    ending = ".obj" if command == "solid" else ".dxf"
                    words += ["-o", self.path("o" + ending)]
                if command == "picture":
                    words += ["-o", self.path("p.png")]
                if command == "restore":
                    self.path("plan.dxf.bak").write_bytes(plan.read_bytes() + b"\n")
                document = self.document(*command.split(), plan, *words)
                self.assertEqual((document["command"], document["done"]), (command, 1))
                if command not in ("info", "extents", "picture"):
                    self.assertIsNotNone(document["drawings"][0]["output"])

    def test_an_entity_is_named_the_same_way_everywhere(self):
        plan, handle = self.plan()
        entity = {"source": handle, "kind": "LINE"}
        merged = self.report("merge", plan, "-o", self.path("m.dxf"))["changes"][0]
        painted = self.report("paint", plan, "--layer", "WALL", "--rgb", "1,2,3", "--dry-run")
        line = next(change for change in painted["changes"] if change["source"] == handle)["line"]
        text = plan.read_text().splitlines()
        self.assertEqual((text[line - 1].strip(), text[line].strip()), ("0", "LINE"))
        self.assertEqual(set(merged["absorbed"][0]), {*entity, "line"})
        walls = self.report("solid", plan, "--layer", "WALL", "--left", "5", "--right", "5",
                            "--height", "1", "-o", self.path("s.obj"))["walls"]
        self.assertEqual([wall["length"] for wall in walls], [1000, 800, 500, 350, 350])
        self.assertEqual(walls[-1], {**walls[-1], **entity, "line": line})


class CodePageTest(cli.CliTest):
    def plan(self):
        """A drawing in GBK that does not say so."""
        space = self.draw("gbk.dxf", "R2000")
        document = self.documents["gbk.dxf"]
        document.encoding = "gbk"
        document.layers.add("墙")
        space.add_line((0, 0), (1000, 0), dxfattribs={"layer": "墙"})
        space.add_line((400, 0), (400, 800), dxfattribs={"layer": "墙"})
        whole = self.save("gbk.dxf").read_bytes()
        begin = whole.index(b"  9\n$DWGCODEPAGE")
        end = whole.index(b"  9\n", begin + 4)
        self.assertIn("墙".encode("gbk"), whole)
        self.path("gbk.dxf").write_bytes(whole[:begin] + whole[end:])
        return self.path("gbk.dxf")

    def test_a_drawing_that_names_none_is_read_in_the_one_given(self):
        plan = self.plan()
        self.fails(4, "break", plan, "--dry-run")
        report = self.report("break", plan, "-o", self.path("o.dxf"), "--code-page", "GBK")
        self.assertEqual((report["layers"], report["changed"]), (["墙"], 1))
        written = self.path("o.dxf").read_bytes()
        self.assertNotIn(b"$DWGCODEPAGE", written)
        self.assertEqual(written.count("墙".encode("gbk")),
                         plan.read_bytes().count("墙".encode("gbk")) + 1)

    def test_every_command_takes_it_from_a_pipe_too(self):
        plan = self.plan()
        for command in ("info", "extents"):
            self.run_ok(command, plan, "--code-page", "ansi_936")
        piped = subprocess.run([cli.QUOIN, "break", "-", "-o", "-", "--code-page", "gbk"],
                               input=plan.read_bytes(), capture_output=True, check=False)
        self.assertEqual(piped.returncode, 0, piped.stderr)
        self.assertIn("墙", piped.stderr.decode())

    def test_one_that_nobody_knows_is_refused_with_names_that_are(self):
        message = self.fails(2, "info", self.plan(), "--code-page", "gibberish")
        self.assertIn("--code-page: 'gibberish' is no code page that is known; there are utf-8, "
                      "gbk", message)


class PipesTest(cli.CliTest):
    def test_a_drawing_goes_through_a_pipe(self):
        space = self.draw("a.dxf")
        space.add_line((0, 0), (1000, 0), dxfattribs={"layer": "WALL"})
        space.add_line((400, 0), (400, 800), dxfattribs={"layer": "WALL"})
        plan = self.save("a.dxf")
        self.run_ok("break", plan, "-o", self.path("file.dxf"))
        piped = subprocess.run([cli.QUOIN, "break", "-", "-o", "-"], input=plan.read_bytes(),
                               capture_output=True, check=False)
        self.assertEqual(piped.returncode, 0, piped.stderr)
        self.assertEqual(piped.stdout, self.path("file.dxf").read_bytes())
        self.assertIn(b"1 of them cut", piped.stderr)


class OverhangTest(cli.CliTest):
    def test_axes_go_on_beyond_their_crossings_but_not_beyond_their_ends(self):
        space = self.draw("grid.dxf")
        for x in (0, 6000):
            space.add_line((x, -900), (x, 5300), dxfattribs={"layer": "GRID"})
        for y in (0, 5000):
            space.add_line((-900, y), (6900, y), dxfattribs={"layer": "GRID"})
        self.run_ok("trim-axes", self.save("grid.dxf"), "--layer", "GRID", "--overhang", "500",
                    "-o", self.path("o.dxf"))
        after = [line[:2] for line in cli.lines_of(cli.read(self.path("o.dxf"))[0])]
        self.assertEqual(after[0], ((0, -500, 0), (0, 5300, 0)))
        self.assertEqual(after[2], ((-500, 0, 0), (6500, 0, 0)))
        self.fails(2, "trim-axes", self.path("grid.dxf"), "--layer", "GRID", "--overhang", "-1",
                   "--dry-run")


if __name__ == "__main__":
    unittest.main(argv=[sys.argv[0], *sys.argv[1:]], verbosity=1)
