#!/usr/bin/python3
"""End-to-end runs of `quoin rooms`.

usage: RoomsCommand_cli_test.py [UNITTEST ARGUMENT...]
The environment is that of quoin_cli_test.py, whose helpers it uses.
"""

import csv
import json
import unittest

import quoin_cli_test as cli

STUDIO = ["--layer", "W-*", "--width", "W-EXT=300", "--width", "W-INT=120"]


def area_of(ring):
    return sum(x0 * y1 - x1 * y0 for (x0, y0), (x1, y1) in zip(ring, ring[1:] + ring[:1])) / 2


class RoomsTest(cli.CliTest):
    WIDTHS = ["--layer", "AXIS", "--left", "100", "--right", "100"]

    def flat(self, version="R2010", scale=1.0, **header):
        """Two rooms, a door between them, one to the outside, a window; 4 by 3 and 2 by 3 m."""
        space = self.draw("flat.dxf", version, **header)
        document = self.documents["flat.dxf"]
        document.appids.new("QUOIN")

        def at(*point):
            return tuple(scale * value for value in point)

        for start, end in (((0, 0), (6000, 0)), ((6000, 0), (6000, 3000)), ((6000, 3000), (0, 3000)),
                           ((0, 3000), (0, 0)), ((4000, 0), (4000, 3000))):
            space.add_line(at(*start), at(*end), dxfattribs={"layer": "AXIS"})
        for start, end, kind in (((4000, 1000), (4000, 1900), "door"),
                                 ((1000, 0), (1900, 0), "door"), ((6000, 800), (6000, 2000), "window"),
                                 ((9000, 9000), (9900, 9000), "door")):
            line = space.add_line(at(*start), at(*end), dxfattribs={"layer": "QUOIN-OPENING"})
            line.set_xdata("QUOIN", [(1000, kind)])
        for text, place, height in (("LIVING", (1500, 1500), 200), ("10.6 m²", (1500, 1200), 120),
                                    ("101", (1500, 1800), 200), ("M0921", (4600, 1000), 100)):
            space.add_text(text, dxfattribs={"height": scale * height, "insert": at(*place)})
        if version != "R12":
            space.add_mtext("Bed room\\P102", dxfattribs={"insert": at(4700, 1700),
                                                          "char_height": scale * 150})
        return self.save("flat.dxf")

    def test_areas_names_and_ways(self):
        report = self.report("rooms", self.flat(), *self.WIDTHS, "-o", self.path("o.dxf"))
        west, east = report["rooms"]
        self.assertAlmostEqual(west["netArea"], 3.8 * 2.8, 9)
        self.assertAlmostEqual(west["grossArea"], 4 * 3, 9)
        self.assertAlmostEqual(west["perimeter"], 2 * (3.8 + 2.8), 9)
        self.assertAlmostEqual(east["netArea"], 1.8 * 2.8, 9)
        self.assertEqual((west["name"], west["number"], west["statedArea"]), ("LIVING", "101", 10.6))
        self.assertEqual((east["name"], east["number"], east["statedArea"]),
                         ("Bed room", "102", None))
        self.assertEqual(west["walls"], [0, 2, 3, 4])
        self.assertEqual(west["neighbours"], [{"opening": 0, "room": 1}, {"opening": 1, "room": None}])
        self.assertEqual(east["openings"], [0, 2])
        self.assertEqual(east["neighbours"], [{"opening": 0, "room": 0}])
        self.assertEqual([opening["type"] for opening in report["openings"]],
                         ["door", "door", "window"])
        self.assertEqual(report["openings"][0]["width"], 900)
        self.assertEqual([skipped["reason"] for skipped in report["skippedOpenings"]],
                         ["lies on no wall"])

    def test_the_drawing_has_outlines_hatches_and_labels(self):
        report = self.report("rooms", self.flat(), *self.WIDTHS, "-o", self.path("o.dxf"))
        after, findings = cli.read(self.path("o.dxf"))
        self.assertEqual(findings, [])
        made = after.modelspace().query('*[layer=="QUOIN-ROOM"]')
        outlines = made.query("LWPOLYLINE")
        self.assertEqual([room["outline"] for room in report["rooms"]],
                         [outline.dxf.handle for outline in outlines])
        for outline, room in zip(outlines, report["rooms"]):
            self.assertTrue(outline.closed)
            points = [tuple(point) for point in outline.get_points("xy")]
            self.assertAlmostEqual(area_of(points) / 1e6, room["netArea"], 9)
            self.assertEqual(points, [tuple(point) for point in room["polygon"]])
        hatches = made.query("HATCH")
        self.assertEqual([room["hatch"] for room in report["rooms"]],
                         [hatch.dxf.handle for hatch in hatches])
        for hatch, room in zip(hatches, report["rooms"]):
            self.assertEqual(hatch.dxf.solid_fill, 1)
            path, = hatch.paths
            self.assertEqual([tuple(vertex[:2]) for vertex in path.vertices],
                             [tuple(point) for point in room["polygon"]])
        self.assertEqual({text.dxf.text for text in made.query("TEXT")},
                         {"LIVING", "101", "10.6 m²", "Bed room", "102", "5.0 m²"})
        # What the command wrote itself names no room.
        again = self.report("rooms", self.path("o.dxf"), *self.WIDTHS, "--dry-run")
        self.assertEqual(again["rooms"][1]["statedArea"], None)

    def test_drawings_of_r12_get_polylines_of_theirs(self):
        self.run_ok("rooms", self.flat("R12"), *self.WIDTHS, "-o", self.path("o.dxf"))
        after, findings = cli.read(self.path("o.dxf"))
        self.assertEqual(findings, [])
        outlines = after.modelspace().query('POLYLINE[layer=="QUOIN-ROOM"]')
        self.assertEqual([outline.is_closed for outline in outlines], [True, True])
        self.assertEqual(len(after.modelspace().query("HATCH")), 0)

    def test_metres_and_units_that_are_said(self):
        plan = self.flat(scale=0.001, **{"$INSUNITS": 6})
        widths = ["--layer", "AXIS", "--left", "0.1", "--right", "0.1"]
        self.assertAlmostEqual(self.report("rooms", plan, *widths, "--dry-run")["rooms"][0]["netArea"],
                               3.8 * 2.8, 9)
        plan = self.flat(scale=0.1)
        rooms = self.report("rooms", plan, "--layer", "AXIS", "--left", "10", "--right", "10",
                            "--units", "cm", "--dry-run")["rooms"]
        self.assertAlmostEqual(rooms[0]["netArea"], 3.8 * 2.8, 9)

    def test_tables_say_what_the_report_says(self):
        space = self.draw("hole.dxf")
        for start, end in (((0, 0), (8000, 0)), ((8000, 0), (8000, 6000)), ((8000, 6000), (0, 6000)),
                           ((0, 6000), (0, 0)), ((2000, 3000), (5000, 3000))):
            space.add_line(start, end, dxfattribs={"layer": "AXIS"})
        space.add_text('a "b", c', dxfattribs={"height": 200, "insert": (1000, 1000)})
        report = self.report("rooms", self.save("hole.dxf"), *self.WIDTHS, "--dry-run",
                             "--csv", self.path("r.csv"), "--geojson", self.path("r.geojson"))
        room, = report["rooms"]
        self.assertAlmostEqual(room["netArea"], 7.8 * 5.8 - 3 * 0.2, 9)
        with open(self.path("r.csv"), newline="", encoding="utf-8") as stream:
            row, = csv.DictReader(stream)
        self.assertEqual(row["name"], 'a "b", c')
        self.assertEqual(float(row["net_area_m2"]), room["netArea"])
        self.assertEqual(row["walls"], "0;1;2;3;4")
        features = json.loads(self.path("r.geojson").read_text())["features"]
        feature, = features
        outer, hole = feature["geometry"]["coordinates"]
        for ring in (outer, hole):
            self.assertEqual(ring[0], ring[-1])
        self.assertGreater(area_of(outer[:-1]), 0)
        self.assertLess(area_of(hole[:-1]), 0)
        self.assertAlmostEqual((area_of(outer[:-1]) + area_of(hole[:-1])) / 1e6,
                               feature["properties"]["netArea"], 9)

    def test_several_drawings_have_a_table_each(self):
        first = self.flat()
        second = self.path("b.dxf")
        second.write_bytes(first.read_bytes())
        self.fails(2, "rooms", first, second, *self.WIDTHS, "--dry-run", "--csv",
                   self.path("r.csv"))
        self.fails(2, "rooms", first, *self.WIDTHS, "--dry-run", "--csv", first)
        self.run_ok("rooms", first, second, *self.WIDTHS, "--dry-run", "--csv", self.path("tables"),
                    "--geojson", self.path("{name}.geojson"))
        for name in ("tables/flat.csv", "tables/b.csv", "flat.geojson", "b.geojson"):
            self.assertTrue(self.path(name).exists(), name)

    def test_attributes_of_tags_name_rooms(self):
        plan = self.flat()
        document = self.documents["flat.dxf"]
        block = document.blocks.new("ROOMTAG")
        block.add_attdef("NAME", (0, 0), dxfattribs={"height": 300})
        tag = document.modelspace().add_blockref("ROOMTAG", (1000, 600))
        tag.add_auto_attribs({"NAME": "PARLOUR"})
        rooms = self.report("rooms", self.save("flat.dxf"), *self.WIDTHS, "--dry-run")["rooms"]
        self.assertEqual(rooms[0]["name"], "PARLOUR")

    def test_what_is_too_small_is_counted(self):
        plan = self.flat()
        report = self.report("rooms", plan, *self.WIDTHS, "--dry-run", "--min-area", "8")
        self.assertEqual((len(report["rooms"]), len(report["tooSmall"])), (1, 1))
        self.fails(2, "rooms", plan, *self.WIDTHS, "--dry-run", "--min-area", "-1")

    def test_the_studio_as_dxf_and_dwg(self):
        plans = [cli.SOURCE / "examples" / "studio" / name for name in ("studio.dxf", "studio.dwg")]
        found = [self.report("rooms", plan, *STUDIO, "-o", self.path("o" + plan.suffix),
                             "--picture", self.path("o.png")) for plan in plans]
        names = sorted(room["name"] for room in found[0]["rooms"])
        self.assertEqual(names, ["gallery", "library", "office", "roof light", "stairs", "store",
                                 "studio", "workshop"])
        for room, same in zip(*(report["rooms"] for report in found)):
            self.assertEqual(room["name"], same["name"])
            self.assertAlmostEqual(room["netArea"], same["netArea"], 9)
        self.assertGreater(self.path("o.png").stat().st_size, 10000)
        again = self.report("rooms", self.path("o.dwg"), *STUDIO, "--dry-run")
        self.assertEqual(len(again["rooms"]), len(found[0]["rooms"]))


if __name__ == "__main__":
    unittest.main()
