#!/usr/bin/python3
"""End-to-end runs of `quoin solid`.

usage: SolidCommand_cli_test.py [UNITTEST ARGUMENT...]
"""

import collections
import json
import math
import re
import struct
import subprocess
import unittest

import quoin_cli_test as cli


def read_obj(path):
    """Corners, and under each group's name its faces as indices of corners from 0."""
    corners, groups = [], {}
    for line in path.read_text().splitlines():
        words = line.split()
        if words[0] == "v":
            corners.append(tuple(map(float, words[1:])))
        elif words[0] == "g":
            faces = groups.setdefault(words[1], [])
        elif words[0] == "f":
            faces.append([int(word) - 1 for word in words[1:]])
    return corners, groups


def open_edges(faces):
    """Edges that are not run once in each direction."""
    edges = {}
    for face in faces:
        for edge in zip(face, face[1:] + face[:1]):
            edges[edge] = edges.get(edge, 0) + 1
    return [edge for edge, count in edges.items() if count != 1 or edges.get(edge[::-1]) != 1]


def volume_of(corners, faces):
    """Positive where faces look outwards; from the first corner, for bodies far from the origin."""
    origin = corners[faces[0][0]]
    def at(number):
        return [a - b for a, b in zip(corners[number], origin)]
    volume = 0.0
    for face in faces:
        a = at(face[0])
        for b, c in zip(map(at, face[1:]), map(at, face[2:])):
            volume += (a[0] * (b[1] * c[2] - b[2] * c[1]) - a[1] * (b[0] * c[2] - b[2] * c[0]) +
                       a[2] * (b[0] * c[1] - b[1] * c[0])) / 6
    return volume


class Glb:
    """A binary glTF file, taken apart by the letter of its format."""

    def __init__(self, path):
        data = path.read_bytes()
        magic, version, length = struct.unpack_from("<4sII", data)
        assert (magic, version, length) == (b"glTF", 2, len(data))
        size, kind = struct.unpack_from("<I4s", data, 12)
        assert kind == b"JSON" and size % 4 == 0
        self.json = json.loads(data[20:20 + size])
        binary, kind = struct.unpack_from("<I4s", data, 20 + size)
        assert kind == b"BIN\0" and binary % 4 == 0
        self.binary = data[28 + size:]
        assert len(self.binary) == binary
        assert 0 <= binary - self.json["buffers"][0]["byteLength"] < 4

    def values(self, index):
        accessor = self.json["accessors"][index]
        view = self.json["bufferViews"][accessor["bufferView"]]
        letter, size = {5125: ("I", 4), 5126: ("f", 4)}[accessor["componentType"]]
        width = {"SCALAR": 1, "VEC3": 3}[accessor["type"]]
        start = view.get("byteOffset", 0) + accessor.get("byteOffset", 0)
        assert start % size == 0 and view["byteLength"] == accessor["count"] * width * size
        flat = struct.unpack_from(f"<{accessor['count'] * width}{letter}", self.binary, start)
        rows = [flat[i:i + width] for i in range(0, len(flat), width)] if width > 1 else list(flat)
        return accessor, rows

    def meshes(self):
        """By name: material's name, corners in the root's frame, normals and triangles."""
        result = {}
        for mesh in self.json["meshes"]:
            (primitive,) = mesh["primitives"]
            accessor, corners = self.values(primitive["attributes"]["POSITION"])
            for axis in range(3):
                line = [corner[axis] for corner in corners]
                assert (min(line), max(line)) == (accessor["min"][axis], accessor["max"][axis])
            _, normals = self.values(primitive["attributes"]["NORMAL"])
            _, indices = self.values(primitive["indices"])
            assert len(normals) == len(corners) and max(indices) < len(corners)
            material = self.json["materials"][primitive["material"]]["name"]
            triangles = [list(indices[i:i + 3]) for i in range(0, len(indices), 3)]
            result[mesh["name"]] = (material, corners, normals, triangles)
        return result


class SolidCase(cli.CliTest):
    height = 2800
    wide = ("--left", "100", "--right", "100", "--height", "2800")

    def assert_closed(self, corners, faces, volume=None, relative=1e-9):
        self.assertEqual(open_edges(faces), [])
        found = volume_of(corners, faces)
        self.assertGreater(found, 0)
        if volume is not None:
            self.assertAlmostEqual(found, volume, delta=relative * volume)

    def walls(self, name, lines, layer="AXIS", **attributes):
        space = self.draw(name, **attributes)
        self.documents[name].layers.add(layer, color=1)
        for start, end in lines:
            space.add_line(start, end, dxfattribs={"layer": layer})
        return space

    def opening(self, name, start, end, kind=None, heights=(), layer="QUOIN-OPENING"):
        document = self.documents[name]
        if "QUOIN" not in document.appids:
            document.appids.add("QUOIN")
        line = document.modelspace().add_line(start, end, dxfattribs={"layer": layer})
        if kind:
            line.set_xdata("QUOIN", [(1000, kind)] + [(1040, height) for height in heights])
        return line.dxf.handle

    def solid(self, plan, name, *options):
        return self.report("solid", plan, "--layer", "AXIS", *self.wide, "-o", self.path(name),
                           *options)


class SolidTest(SolidCase):
    def rooms(self):
        space = self.draw("axes.dxf", **{"$INSUNITS": 4})
        for start, end in (((0, 0), (4000, 0)), ((4000, 0), (4000, 3000)),
                           ((4000, 3000), (0, 3000)), ((0, 3000), (0, 0)),
                           ((4000, 0), (8000, 0))):
            space.add_line(start, end, dxfattribs={"layer": "AXIS"})
        return self.save("axes.dxf")

    def test_every_wall_is_a_closed_body_in_an_obj_file(self):
        self.solid(self.rooms(), "m.obj", "--picture", self.path("p.png"))
        corners, groups = read_obj(self.path("m.obj"))
        self.assertEqual(len(groups), 5)
        for faces in groups.values():
            self.assertEqual(len(faces), 10)
            self.assert_closed(corners, faces)

    def test_materials_stand_beside_the_obj_file_in_the_layers_colours(self):
        space = self.walls("two.dxf", [((0, 0), (4000, 0))])
        self.documents["two.dxf"].layers.add("AXIS 2", true_color=0x336699)
        space.add_line((0, 5000), (4000, 5000), dxfattribs={"layer": "AXIS 2"})
        report = self.report("solid", self.save("two.dxf"), "--layer", "AXIS*", *self.wide, "-o",
                             self.path("m.obj"))
        self.assertEqual(report["model"], {"units": "drawing", "up": "z",
                                           "materials": str(self.path("m.mtl"))})
        text = self.path("m.obj").read_text()
        self.assertEqual(re.findall("^(?:mtllib|usemtl) .*$", text, re.M),
                         ["mtllib m.mtl", "usemtl AXIS", "usemtl AXIS_2"])
        materials = self.path("m.mtl").read_text()
        self.assertIn("newmtl AXIS\nKd 1.0000 0.0000 0.0000\n", materials)
        self.assertIn("newmtl AXIS_2\nKd 0.2000 0.4000 0.6000\n", materials)

    def test_neither_file_is_there_where_one_cannot_be_written(self):
        plan = self.rooms()
        self.path("m.mtl").mkdir()
        self.fails(5, "solid", plan, "--layer", "AXIS", *self.wide, "-o", self.path("m.obj"))
        self.assertFalse(self.path("m.obj").exists())

    def test_a_dxf_model_holds_its_faces(self):
        report = self.solid(self.rooms(), "m.dxf")
        after, findings = cli.read(self.path("m.dxf"))
        self.assertEqual(findings, [])
        self.assertEqual(len(after.modelspace().query("3DFACE")), 10 * len(report["walls"]))

    def test_units_and_axes_as_asked_for(self):
        plan = self.rooms()
        self.solid(plan, "a.obj")
        self.solid(plan, "b.obj", "--model-units", "m", "--up", "y")
        for a, b in zip(read_obj(self.path("a.obj"))[0], read_obj(self.path("b.obj"))[0]):
            for x, y in zip((a[0] / 1000, a[2] / 1000, -a[1] / 1000), b):
                self.assertAlmostEqual(x, y, delta=1e-12)
        self.solid(plan, "m.dxf", "--model-units", "m")
        after, findings = cli.read(self.path("m.dxf"))
        self.assertEqual((findings, after.header["$INSUNITS"]), ([], 6))

    def test_senseless_options_are_refused(self):
        plan = self.rooms()
        base = ("solid", plan, "--layer", "AXIS", "--left", "1", "--right", "1", "-o",
                self.path("m.obj"))
        self.fails(2, *base, "--height", "0")
        self.fails(2, *base, "--height", "9", "--slab-layer", "AXIS", "--slab", "0")
        self.fails(2, *base, "--height", "9", "--slab", "3")
        self.fails(2, *base, "--height", "9", "--sill", "-1")
        self.fails(2, *base, "--height", "9", "--up", "x")
        self.fails(4, *base, "--height", "9", "--openings", "NONE")


class SolidOpeningsTest(SolidCase):
    def plan(self):
        """Two walls that meet in a corner, 5 m and 4 m long, with openings."""
        self.walls("o.dxf", [((0, 0), (5000, 0)), ((5000, 0), (5000, 4000))])
        self.handles = {
            "window": self.opening("o.dxf", (500, 0), (1500, 0), "window"),
            "door": self.opening("o.dxf", (3000, 0), (2100, 0), "door"),
            "tall": self.opening("o.dxf", (3500, 0), (4000, 0), "opening", (0, 2800)),
            "joint": self.opening("o.dxf", (5000, 30), (5000, 1000), "window", (500, 5000)),
            "plain": self.opening("o.dxf", (5000, 2000), (5000, 3000)),
            "nowhere": self.opening("o.dxf", (0, 900), (100, 900), "door"),
            "wide": self.opening("o.dxf", (5000, 0), (5000, 4000), "door"),
        }
        return self.save("o.dxf")

    def test_openings_are_cut_out_and_every_body_stays_closed(self):
        report = self.solid(self.plan(), "m.obj", "--picture", self.path("p.png"))
        corners, groups = read_obj(self.path("m.obj"))
        first, second = groups.values()
        # Mitred at 45 degrees, a wall is as long as its reference line in the middle.
        self.assert_closed(corners, first,
                           200 * (5000 * 2800 - 1000 * 1200 - 900 * 2100 - 500 * 2800))
        self.assert_closed(corners, second,
                           200 * (4000 * 2800 - 900 * (2800 - 500) - 1000 * 2100))
        self.assertEqual(report["openingCounts"],
                         {"cut": 5, "shortened": 1, "lowered": 1, "leftOut": 2})
        self.assertEqual({one["source"]: one["reason"] for one in report["openingsLeftOut"]},
                         {self.handles["nowhere"]: "lies on no wall",
                          self.handles["wide"]: "is wider than the straight part of its wall"})
        cut = {one["source"]: one for one in report["openings"]}
        door = cut[self.handles["door"]]
        self.assertEqual((door["opening"], door["wall"], door["width"], door["sill"],
                          door["head"]), ("door", 0, 900, 0, 2100))
        joint = cut[self.handles["joint"]]
        self.assertEqual((joint["start"], joint["head"], joint["shortened"], joint["lowered"]),
                         ([5000, 100, 0], 2800, True, True))
        self.assertEqual(cut[self.handles["plain"]]["opening"], "opening")

    def test_the_text_report_counts_and_names(self):
        plan = self.plan()
        text = self.run_ok("solid", plan, "--layer", "AXIS", *self.wide, "-o", self.path("m.obj"))
        self.assertIn("5 openings of QUOIN-OPENING cut out, 1 shortened at joints, 1 kept within "
                      "the wall's height, 2 left out", text)
        self.assertIn(f"left out: LINE {self.handles['nowhere']}", text)

    def test_heights_by_option(self):
        report = self.solid(self.plan(), "m.obj", "--sill", "800", "--head", "2000",
                            "--door-head", "2200")
        heights = {one["source"]: (one["sill"], one["head"]) for one in report["openings"]}
        self.assertEqual(heights[self.handles["window"]], (800, 2000))
        self.assertEqual(heights[self.handles["door"]], (0, 2200))
        self.assertEqual(heights[self.handles["plain"]], (0, 2200))
        self.assertEqual(heights[self.handles["tall"]], (0, 2800))

    def test_default_heights_are_millimetres_in_any_unit(self):
        self.walls("metres.dxf", [((0, 0), (5, 0))], **{"$INSUNITS": 6})
        self.opening("metres.dxf", (1, 0), (2, 0), "window")
        report = self.report("solid", self.save("metres.dxf"), "--layer", "AXIS", "--left", "0.1",
                             "--right", "0.1", "--height", "2.8", "-o", self.path("m.obj"))
        (one,) = report["openings"]
        self.assertAlmostEqual(one["sill"], 0.9)
        self.assertAlmostEqual(one["head"], 2.1)

    def test_layers_by_option_or_none(self):
        plan = self.plan()
        self.assertEqual(self.solid(plan, "m.obj", "--no-openings")["openings"], [])
        corners, groups = read_obj(self.path("m.obj"))
        self.assertTrue(all(len(faces) == 10 for faces in groups.values()))
        self.assertEqual(len(self.solid(plan, "n.obj", "--openings", "quoin-op*")["openings"]), 5)

    def test_openings_are_no_walls_whatever_the_layers_say(self):
        report = self.report("solid", self.plan(), "--layer", "*", *self.wide, "-o",
                             self.path("m.obj"))
        self.assertEqual(len(report["walls"]), 2)

    def test_the_same_bodies_whichever_way_the_plan_is_drawn(self):
        lines = [((0, 0), (5000, 0)), ((5000, 0), (5000, 4000)), ((5000, 0), (9000, -2000))]
        openings = [((200, 0), (1500, 0), "window"), ((2000, 0), (4990, 0), "door"),
                    ((5000, 50), (5000, 1500), "door"), ((6000, -500), (7000, -1000), "window")]

        def volumes(name, turn, reverse):
            def place(point):
                return turn(*point)
            self.walls(name, [tuple(map(place, line[::-1] if reverse else line))
                              for line in (lines[::-1] if reverse else lines)])
            for start, end, kind in openings[::-1] if reverse else openings:
                self.opening(name, place(start), place(end), kind)
            self.solid(self.save(name), "m.obj")
            corners, groups = read_obj(self.path("m.obj"))
            for faces in groups.values():
                self.assert_closed(corners, faces)
            return sorted(volume_of(corners, faces) for faces in groups.values())

        expected = volumes("a.dxf", lambda x, y: (x, y), False)
        for number, (turn, reverse) in enumerate(((lambda x, y: (x, y), True),
                                                  (lambda x, y: (-y, x), False),
                                                  (lambda x, y: (-x, y), False),
                                                  (lambda x, y: (x + 70000, y - 3000), True))):
            for a, b in zip(volumes(f"b{number}.dxf", turn, reverse), expected):
                self.assertAlmostEqual(a, b, delta=1e-6 * b)


class SolidSlabsTest(SolidCase):
    def plan(self):
        space = self.walls("s.dxf", [((0, 0), (8000, 0))])
        room = {"layer": "QUOIN-ROOM"}
        corners = [(0, 0), (6000, 0), (6000, 2000), (2000, 2000), (2000, 5000), (0, 5000)]
        space.add_lwpolyline(corners, close=True, dxfattribs=room)
        space.add_lwpolyline([(x + 9000, y) for x, y in corners[::-1]], close=True, dxfattribs=room)
        space.add_lwpolyline([(0, 9000, 0, 0, 1), (2000, 9000, 0, 0, 1)], close=True,
                             dxfattribs=room)
        space.add_lwpolyline([(0, 0), (1, 0), (1, 1)], dxfattribs=room)
        space.add_lwpolyline([(0, 0), (9, 9), (9, 0), (0, 9)], close=True, dxfattribs=room)
        space.add_text("12.5 m2", dxfattribs=room)
        return self.save("s.dxf")

    def test_slabs_lie_below_closed_polylines(self):
        report = self.solid(self.plan(), "m.obj", "--slab-layer", "QUOIN-ROOM", "--slab", "250",
                            "--picture", self.path("p.png"))
        corners, groups = read_obj(self.path("m.obj"))
        bodies = [faces for name, faces in groups.items() if name.startswith("QUOIN-ROOM_")]
        self.assertEqual(len(bodies), 3)
        area = 6000 * 2000 + 2000 * 3000
        for faces in bodies[:2]:
            self.assert_closed(corners, faces, 250 * area)
        # A circle of radius 1000 as chords that leave it by 0.14 % of the radius.
        self.assert_closed(corners, bodies[2], 250 * math.pi * 1000 ** 2, relative=0.003)
        self.assertEqual([slab["area"] for slab in report["slabs"][:2]], [area, area])
        heights = {corners[number][2] for faces in bodies for face in faces for number in face}
        self.assertEqual(heights, {0, -250})
        self.assertEqual(sorted(one["reason"] for one in report["slabsLeftOut"]),
                         ["is no simple polygon: Self-intersection", "is not closed"])

    def test_the_text_report_names_what_has_no_slab(self):
        text = self.run_ok("solid", self.plan(), "--layer", "AXIS", *self.wide, "-o",
                           self.path("m.obj"), "--slab-layer", "QUOIN-ROOM")
        self.assertIn("3 floor slabs 200 mm thick below QUOIN-ROOM", text)
        self.assertIn("no slab of other kinds there: 1 TEXT", text)
        self.assertIn("is not closed", text)


class SolidGlbTest(SolidCase):
    def plan(self, far=0.0, name="g.dxf"):
        """A wall with a door and a window, another wall, a floor."""
        space = self.walls(name, [((far, far), (far + 5000, far)),
                                  ((far + 5000, far), (far + 5000, far + 4000))])
        self.opening(name, (far + 500, far), (far + 1500, far), "window")
        self.opening(name, (far + 2000, far), (far + 3000, far), "door")
        self.documents[name].layers.add("FLOOR", true_color=0x808080)
        space.add_lwpolyline([(far, far), (far + 5000, far), (far + 5000, far + 4000)], close=True,
                             dxfattribs={"layer": "FLOOR"})
        return self.save(name)

    def glb(self, far=0.0, name="g"):
        self.solid(self.plan(far, name + ".dxf"), name + ".glb", "--slab-layer", "FLOOR")
        return Glb(self.path(name + ".glb"))

    wall_volume = 0.2 * (9 * 2.8 - 1 * 1.2 - 1 * 2.1)

    def assert_model(self, glb):
        meshes = glb.meshes()
        self.assertEqual(list(meshes), ["AXIS", "FLOOR"])
        for (name, (material, corners, normals, triangles)), volume in zip(
                meshes.items(), (self.wall_volume, 10 * 0.2)):
            self.assertEqual(material, name)
            # Corners that are one again: every body is closed, far from the origin too.
            places = {}
            welded = [[places.setdefault(corners[number], len(places)) for number in triangle]
                      for triangle in triangles]
            # Walls of a layer are one mesh, and those that meet share edges: as many one way as the
            # other.
            edges = collections.Counter(edge for face in welded
                                        for edge in zip(face, face[1:] + face[:1]))
            self.assertEqual([edge for edge in edges if edges[edge] != edges[edge[::-1]]], [])
            self.assertAlmostEqual(volume_of(list(places), welded), volume, delta=1e-5 * volume)
            for triangle in triangles:
                a, b, c = (corners[number] for number in triangle)
                u, v = ([q - p for p, q in zip(a, other)] for other in (b, c))
                cross = (u[1] * v[2] - u[2] * v[1], u[2] * v[0] - u[0] * v[2],
                         u[0] * v[1] - u[1] * v[0])
                length = math.hypot(*cross)
                for number in triangle:
                    self.assertAlmostEqual(math.hypot(*normals[number]), 1, delta=1e-6)
                    self.assertGreater(sum(n * x for n, x in zip(normals[number], cross)),
                                       0.999 * length)

    def test_the_format_is_kept_and_bodies_are_closed(self):
        glb = self.glb()
        self.assertEqual(glb.json["asset"]["version"], "2.0")
        self.assertEqual([node["name"] for node in glb.json["nodes"]], ["model", "AXIS", "FLOOR"])
        self.assertEqual(glb.json["nodes"][0]["children"], [1, 2])
        self.assertEqual(glb.json["scenes"][glb.json["scene"]]["nodes"], [0])
        red, grey = (material["pbrMetallicRoughness"]["baseColorFactor"]
                     for material in glb.json["materials"])
        self.assertEqual(red, [1, 0, 0, 1])
        self.assertEqual(grey, [0.2159, 0.2159, 0.2159, 1])
        self.assert_model(glb)

    def test_far_from_the_origin_nothing_is_lost(self):
        glb = self.glb(5.0e9, "far")  # 5e6 m
        x, y, z = glb.json["nodes"][0]["translation"]
        self.assertLess(abs(x - 5.0e6), 10)
        self.assertLess(abs(z + 5.0e6), 10)
        self.assert_model(glb)
        (_, corners, _, _), _ = glb.meshes().values()
        # Metres, y upwards; the wall's foot begins 0.1 m beside the reference line.
        self.assertAlmostEqual(min(corner[1] for corner in corners) + y, 0, delta=1e-6)
        self.assertAlmostEqual(max(corner[1] for corner in corners) + y, 2.8, delta=1e-6)
        self.assertAlmostEqual(min(corner[0] for corner in corners) + x - 5.0e6, 0, delta=1e-5)
        self.assertAlmostEqual(max(corner[2] for corner in corners) + z + 5.0e6, 0.1, delta=1e-5)

    def test_the_same_drawing_gives_the_same_bytes(self):
        plan = self.plan()
        for name in ("a.glb", "b.glb"):
            self.solid(plan, name)
        self.assertEqual(self.path("a.glb").read_bytes(), self.path("b.glb").read_bytes())

    def test_units_and_axes_as_asked_for(self):
        report = self.solid(self.plan(), "m.glb", "--model-units", "mm", "--up", "z")
        self.assertEqual(report["model"], {"units": "mm", "up": "z", "materials": None})
        glb = Glb(self.path("m.glb"))
        (_, corners, _, _), = glb.meshes().values()
        self.assertEqual(max(corner[2] for corner in corners) +
                         glb.json["nodes"][0]["translation"][2], 2800)

    def test_an_independent_reader_finds_the_same(self):
        glb = self.glb()
        told = subprocess.run(["assimp", "info", str(self.path("g.glb"))], capture_output=True,
                              check=True).stdout.decode()
        triangles = sum(len(mesh[3]) for mesh in glb.meshes().values())
        self.assertEqual(int(re.search(r"^Faces: +(\d+)$", told, re.M)[1]), triangles)
        self.assertEqual(int(re.search(r"^Materials: +(\d+)$", told, re.M)[1]), 2)
        for corner, expected in (("Minimum", (0, -0.2, -4)), ("Maximum", (5.1, 2.8, 0.1))):
            numbers = re.search(corner + r" point +\(([^)]*)\)", told)[1].split()
            for number, value in zip(map(float, numbers), expected):
                self.assertAlmostEqual(number, value, delta=1e-5)
        for name in ("AXIS", "FLOOR"):
            self.assertIn(f"'{name}'", told)

    def test_a_place_that_cannot_be_written(self):
        self.fails(5, "solid", self.plan(), "--layer", "AXIS", *self.wide, "-o",
                   self.path("no/where.glb"))


if __name__ == "__main__":
    unittest.main()
