#!/usr/bin/python3
"""End-to-end runs of `quoin survey`.

usage: SurveyCommand_cli_test.py [UNITTEST ARGUMENT...]
The environment is that of quoin_cli_test.py, whose helpers it uses.
"""

import base64
import csv
import html.parser
import json
import shutil
import struct
import unittest
import xml.etree.ElementTree

import ezdxf
import quoin_cli_test as cli

FILES = {"walls.svg", "rooms.svg", "model.svg", "model.glb", "schedule.csv", "rooms.csv",
         "rooms.geojson", "report.json", "index.html"}
NASTY = "<b>&\"'</b><script>alert(1)</script>"
VOID = {"meta", "img", "br", "hr", "link"}


class Page(html.parser.HTMLParser):
    """The elements of a page, its texts, and whether each element is closed."""

    def __init__(self, text):
        super().__init__()
        self.open, self.elements, self.texts, self.style = [], [], [], ""
        self.feed(text)
        self.close()

    def handle_starttag(self, tag, attributes):
        self.elements.append((tag, dict(attributes)))
        if tag not in VOID:
            self.open.append(tag)

    def handle_endtag(self, tag):
        if self.open.pop() != tag:
            raise ValueError(f"</{tag}> closes nothing")

    def handle_data(self, data):
        if self.open and self.open[-1] == "style":
            self.style += data
        elif data.strip():
            self.texts.append(data.strip())

    def pictures(self):
        for tag, attributes in self.elements:
            if tag == "img":
                kind, data = attributes["src"].split(",", 1)
                assert kind == "data:image/svg+xml;base64", kind
                yield base64.b64decode(data, validate=True)


class SurveyTest(cli.CliTest):
    def flat(self, layer="A-WALL", room="KITCHEN"):
        """Two rooms of 3.76 by 2.76 m and 1.88 by 2.76 m as faces of walls 120 wide: a door between
        them and one to the outside."""
        space = self.draw("flat.dxf")

        def line(*points):
            space.add_line(*points, dxfattribs={"layer": layer})

        outer = [(1000, 0), (0, 0), (0, 3000), (6000, 3000), (6000, 0), (1900, 0)]
        for start, end in zip(outer, outer[1:]):
            line(start, end)
        west = [(1000, 120), (120, 120), (120, 2880), (3880, 2880), (3880, 2100)]
        east = [(1900, 120), (3880, 120), (3880, 1200)]
        for points in (west, east):
            for start, end in zip(points, points[1:]):
                line(start, end)
        south = [(4000, 1200), (4000, 120), (5880, 120), (5880, 2880), (4000, 2880), (4000, 2100)]
        for start, end in zip(south, south[1:]):
            line(start, end)
        for start, end in (((1000, 0), (1000, 120)), ((1900, 0), (1900, 120)),
                           ((3880, 1200), (4000, 1200)), ((3880, 2100), (4000, 2100))):
            line(start, end)
        for swing in ((1000, 120), (3880, 1200)):
            space.add_arc(swing, 900, 0, 90, dxfattribs={"layer": "DOOR"})
        line((0, 3000), (6000, 3000))  # drawn twice
        space.add_text(room, dxfattribs={"height": 200, "insert": (800, 1500)})
        return self.save("flat.dxf")

    def page(self, folder="out"):
        return Page(self.path(folder).joinpath("index.html").read_text("utf-8"))

    def table(self, name, folder="out"):
        with self.path(folder).joinpath(name).open(encoding="utf-8", newline="") as stream:
            return list(csv.DictReader(stream))

    def assert_glb(self, path):
        data = path.read_bytes()
        magic, version, size = struct.unpack_from("<4sII", data)
        self.assertEqual((magic, version, size), (b"glTF", 2, len(data)))
        length, kind = struct.unpack_from("<I4s", data, 12)
        self.assertEqual(kind, b"JSON")
        return json.loads(data[20:20 + length])

    def test_every_file_is_there_and_can_be_read(self):
        report = self.report("survey", self.flat(), "-o", self.path("out"))
        folder = self.path("out")
        self.assertEqual({file.name for file in folder.iterdir()},
                         FILES | {"flat-clean.dxf", "flat-survey.dxf"})
        self.assertEqual(set(report["files"]), {file.name for file in folder.iterdir()})
        self.assertEqual(report["output"], str(folder / "index.html"))
        self.assertEqual((report["counts"]["rooms"], report["counts"]["openings"]), (2, 2))
        self.assertEqual(report["cleaned"]["duplicate"], 1)
        self.assertAlmostEqual(report["netArea"], 3.76 * 2.76 + 1.88 * 2.76, 6)

        for name in ("flat-clean.dxf", "flat-survey.dxf"):
            document = ezdxf.readfile(folder / name)
            self.assertEqual(document.audit().errors, [])
        space = document.modelspace()
        for layer, kind, count in (("QUOIN-WALL", "LINE", report["counts"]["walls"]),
                                   ("QUOIN-OPENING", "LINE", 2), ("QUOIN-ROOM", "LWPOLYLINE", 2)):
            self.assertEqual(len(space.query(f'{kind}[layer=="{layer}"]')), count)

        table = self.table("schedule.csv")
        self.assertEqual(sum(int(row["count"]) for row in table if row["item"] == "wall"),
                         report["counts"]["walls"])
        self.assertEqual({row["layer"] for row in table if row["item"] == "wall"}, {"A-WALL"})
        self.assertEqual([(row["item"], row["width_mm"], row["count"]) for row in table
                          if row["item"] in ("door", "window", "opening")], [("door", "900", "2")])
        rooms = [row for row in table if row["item"] == "room"]
        self.assertAlmostEqual(sum(float(row["area_m2"]) for row in rooms), 15.567, 6)
        self.assertEqual([row["name"] for row in rooms], ["KITCHEN", ""])
        self.assertEqual(len(self.table("rooms.csv")), 2)
        shapes = json.loads(folder.joinpath("rooms.geojson").read_text("utf-8"))
        self.assertEqual(len(shapes["features"]), 2)
        whole = json.loads(folder.joinpath("report.json").read_text("utf-8"))
        self.assertEqual(len(whole["walls"]), report["counts"]["walls"])
        self.assertEqual((len(whole["rooms"]), len(whole["openings"])), (2, 2))
        handles = {entity.dxf.handle for entity in space}
        for wall in whole["walls"]:
            self.assertIn(wall["handle"], handles)
        for name in ("walls.svg", "rooms.svg", "model.svg"):
            xml.etree.ElementTree.parse(folder / name)
        model = self.assert_glb(folder / "model.glb")
        self.assertEqual(len(model["meshes"]), 2)  # walls and floors

    def test_the_page_needs_no_other_file(self):
        self.run_ok("survey", self.flat(), "-o", self.path("out"))
        page = self.page()
        self.assertEqual(page.open, [])
        tags = [tag for tag, _ in page.elements]
        self.assertEqual(page.elements[0], ("html", {"lang": "en"}))
        for tag in ("title", "style", "table", "h1"):
            self.assertIn(tag, tags)
        for tag in ("script", "link", "iframe", "object", "base"):
            self.assertNotIn(tag, tags)
        for tag, attributes in page.elements:
            self.assertFalse({"href", "srcset", "style"} & set(attributes), (tag, attributes))
            self.assertFalse([name for name in attributes if name.startswith("on")])
            if "src" in attributes:
                self.assertTrue(attributes["src"].startswith("data:image/svg+xml;base64,"))
        self.assertNotIn("url(", page.style)
        self.assertNotIn("@import", page.style)
        pictures = list(page.pictures())
        self.assertEqual(pictures, [self.path("out").joinpath(name).read_bytes()
                                    for name in ("rooms.svg", "walls.svg", "model.svg")])
        for text in ("flat.dxf", "KITCHEN", "A-WALL", "10.38", "door", "900"):
            self.assertIn(text, page.texts)

    def test_large_pictures_are_embedded_as_png(self):
        plan = cli.SOURCE / "examples" / "office" / "office.dxf"
        self.run_ok("survey", plan, "-o", self.path("out"))
        sources = [attributes["src"] for tag, attributes in self.page().elements if tag == "img"]
        self.assertEqual(len(sources), 3)
        kind, data = sources[2].split(",", 1)
        self.assertEqual(kind, "data:image/png;base64")
        self.assertEqual(base64.b64decode(data, validate=True)[:8], b"\x89PNG\r\n\x1a\n")
        self.assertLess(sum(map(len, sources)), 5e6)

    def test_texts_of_the_drawing_are_texts_of_the_page(self):
        plan = self.flat(layer="WALL &'x' é", room=NASTY)
        nasty = self.path("<i>&'n'.dxf")
        shutil.copy(plan, nasty)
        self.run_ok("survey", nasty, "-o", self.path("out"))
        page = self.page()
        tags = {tag for tag, _ in page.elements}
        self.assertFalse({"b", "i", "script"} & tags)
        self.assertIn(nasty.name, page.texts)
        self.assertIn("WALL &'x' é", page.texts)
        self.assertIn(NASTY, page.texts)
        for picture in page.pictures():
            self.assertNotIn(b"<script", picture)
            xml.etree.ElementTree.fromstring(picture)

    def test_the_same_plan_gives_the_same_bytes(self):
        plan = self.flat()
        for folder in ("one", "two/deep"):
            self.run_ok("survey", plan, "-o", self.path(folder))
        self.run_ok("survey", plan, "-o", self.path("one"))  # over what is there
        for file in self.path("one").iterdir():
            self.assertEqual(file.read_bytes(), (self.path("two/deep") / file.name).read_bytes(),
                             file.name)

    def test_it_does_what_clean_does(self):
        plan = self.flat()
        self.run_ok("survey", plan, "-o", self.path("out"))
        self.run_ok("clean", plan, "-o", self.path("clean.dxf"))
        self.assertEqual(self.path("out").joinpath("flat-clean.dxf").read_bytes(),
                         self.path("clean.dxf").read_bytes())

    def test_dwg(self):
        plan = cli.SOURCE / "examples" / "flat" / "flat.dwg"
        report = self.report("survey", plan, "-o", self.path("out"))
        self.assertEqual(set(report["files"]), FILES | {"flat-clean.dwg", "flat-survey.dwg"})
        twin = self.report("survey", plan.with_suffix(".dxf"), "-o", self.path("twin"))
        self.assertEqual(report["counts"], twin["counts"])
        self.assertGreater(report["counts"]["rooms"], 5)
        again = self.report("rooms", self.path("out") / "flat-survey.dwg", "--layer", "QUOIN-WALL",
                            "--dry-run")
        self.assertEqual(len(again["walls"]), report["counts"]["walls"])

    def test_several_drawings_get_a_folder_each(self):
        plan = self.flat()
        shutil.copy(plan, self.path("second.dxf"))
        self.run_ok("survey", plan, self.path("second.dxf"), "-o", self.path("out"))
        self.assertTrue(self.path("out/flat/index.html").is_file())
        self.assertTrue(self.path("out/second/second-survey.dxf").is_file())
        self.path("other").mkdir()
        shutil.copy(plan, self.path("other/flat.dxf"))
        self.fails(2, "survey", plan, self.path("other/flat.dxf"), "-o", self.path("both"))

    def test_height_units_and_tolerance(self):
        plan = self.flat()
        report = self.report("survey", plan, "-o", self.path("out"), "--height", "3m",
                             "--tolerance", "2mm")
        self.assertEqual((report["height"], report["capture"]["distance"]), (3000, 2))
        model = self.assert_glb(self.path("out/model.glb"))
        places = [model["accessors"][primitive["attributes"]["POSITION"]]
                  for mesh in model["meshes"] for primitive in mesh["primitives"]]
        self.assertAlmostEqual(max(place["max"][1] for place in places) -
                               min(place["min"][1] for place in places), 3.2, 5)  # with the floor
        self.fails(2, "survey", plan, "-o", self.path("out"), "--height", "0")

    def test_what_cannot_be_surveyed(self):
        space = self.draw("empty.dxf")
        space.add_line((0, 0), (5000, 0), dxfattribs={"layer": "WALL"})
        plan = self.save("empty.dxf")
        self.assertIn("no wall among 1 line on WALL",
                      self.fails(4, "survey", plan, "-o", self.path("out")))
        self.assertEqual(list(self.path("out").iterdir()), [])
        self.assertIn("GLASS", self.fails(4, "survey", plan, "--layer", "GLASS", "-o",
                                          self.path("out")))
        self.fails(2, "survey", plan)
        self.fails(2, "survey", plan, "-o", "-")
        self.fails(5, "survey", plan, "-o", plan / "out")
        shutil.copy(self.flat(), self.path("walls.svg"))
        self.assertIn("is a drawing that is read", self.fails(2, "survey", self.path("walls.svg"), "-o",
                                                              self.folder))

    def test_a_second_survey_tells_of_the_first(self):
        self.run_ok("survey", self.flat(), "-o", self.path("out"))
        report = self.report("survey", self.path("out/flat-survey.dxf"), "-o", self.path("again"))
        self.assertIn("QUOIN-WALL holds", " ".join(report["warnings"]))
        self.assertEqual(report["counts"]["rooms"], 2)


if __name__ == "__main__":
    unittest.main()
