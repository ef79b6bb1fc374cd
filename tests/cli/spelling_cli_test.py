#!/usr/bin/python3
"""End-to-end runs on drawings in the spellings of other writers.

usage: spelling_cli_test.py [UNITTEST ARGUMENT...]
The environment is that of quoin_cli_test.py, whose helpers it uses.
"""

import sys
import unittest

import quoin_cli_test as cli

SHARED = {"6", "8", "48", "60", "62", "67", "370", "420", "430", "440"}


def respelled(data):
    """The bytes of an ASCII drawing, with what all entities share behind the marker of the kind."""
    lines = data.replace(b"\r\n", b"\n").decode("utf-8").split("\n")
    tags = [(lines[i].strip(), lines[i + 1]) for i in range(0, len(lines) - 1, 2)]
    result, waiting, section, marker = [], [], "", ""
    for code, value in tags:
        if code == "0":
            result += waiting
            waiting, marker = [], ""
        if code == "2" and result[-1:] == [("0", "SECTION")]:
            section = value
        if code == "100":
            marker = value
        if section in ("BLOCKS", "ENTITIES") and marker == "AcDbEntity" and code in SHARED:
            waiting.append((code, value))
            continue
        result.append((code, value))
        if code == "100" and value != "AcDbEntity":
            result += waiting
            waiting = []
    return "".join(f"{code:>3}\r\n{value}\r\n" for code, value in result).encode("utf-8")


def told(path):
    """What a reader sees of the entities of model space, in order."""
    document, _ = cli.read(path)
    seen = []
    for entity in document.modelspace():
        dxf = entity.dxf
        shape = (([tuple(p) for p in entity.get_points()], entity.closed)
                 if entity.dxftype() == "LWPOLYLINE" else
                 [tuple(round(c, 9) for c in dxf.get(name))
                  for name in ("start", "end", "center", "insert") if dxf.hasattr(name)])
        seen.append((entity.dxftype(), shape, dxf.layer.upper(), dxf.get("color", 256),
                     dxf.get("true_color"), dxf.get("lineweight", -1),
                     dxf.get("linetype", "BYLAYER").upper(), dxf.get("ltscale", 1.0),
                     dxf.get("invisible", 0)))
    return seen


class OldSpellingTest(cli.CliTest):
    """Every command sees the same in both spellings, and other readers in its results."""

    def plans(self, version="R2004"):
        space = self.draw("plan.dxf", version)
        layers = self.documents["plan.dxf"].layers
        self.documents["plan.dxf"].linetypes.add("DASHED", [2.0, 1.0, -1.0])
        layers.add("A-WALL", color=2)
        layers.add("B-WALL", color=3).lock()
        layers.add("GRID", color=4)
        look = {"layer": "A-WALL", "color": 30, "true_color": 0xFF0000, "lineweight": 50,
                "linetype": "DASHED", "ltscale": 2.5}
        if version == "R2000":
            del look["true_color"]
        space.add_line((0, 0), (1000, 0), dxfattribs=look)
        space.add_line((400, 5), (400, 800), dxfattribs={"layer": "A-WALL"})
        space.add_line((0, 2000), (1000, 2000), dxfattribs={"layer": "B-WALL"})
        space.add_line((500, 2005), (500, 2800), dxfattribs={"layer": "B-WALL"})
        space.add_lwpolyline([(2000, 0), (3000, 0), (3000, 1000)], dxfattribs=look)
        space.add_line((2500, 0), (2500, -800), dxfattribs={"layer": "A-WALL"})
        space.add_lwpolyline([(4000, 0, 20, 60), (5000, 0, 60, 60), (5000, 900, 60, 60)],
                             dxfattribs=look)
        space.add_line((4500, 0), (4500, -800), dxfattribs={"layer": "A-WALL"})
        space.add_circle((100, 100), 50, dxfattribs={"layer": "GRID", "color": 6})
        space.add_text("x", dxfattribs={"layer": "GRID", "insert": (9, 9)})
        usual = self.save("plan.dxf")
        old = self.path("old.dxf")
        old.write_bytes(respelled(usual.read_bytes()))
        self.assertEqual(told(old), told(usual))
        return usual, old

    def assert_same(self, *arguments, version="R2004"):
        usual, old = self.plans(version)
        results = []
        for plan in (usual, old):
            out = self.path("out-" + plan.name)
            self.run_ok(arguments[0], plan, *arguments[1:], "-o", out)
            results.append(told(out))
        self.assertEqual(*results)
        return results[1]

    def test_info_counts_entities_on_their_layers(self):
        usual, old = self.plans()
        layers = [{layer["name"]: layer["kinds"] for layer in self.report("info", plan)["layers"]}
                  for plan in (usual, old)]
        self.assertEqual(layers[1]["GRID"], {"CIRCLE": 1, "TEXT": 1})
        self.assertEqual(layers[1]["0"], {})
        self.assertEqual(*layers)

    def test_break_cuts_what_is_not_locked_and_keeps_the_look(self):
        for version in ("R2000", "R2004", "R2010"):
            with self.subTest(version):
                seen = self.assert_same("break", version=version)
                locked = [entity for entity in seen if entity[2] == "B-WALL"]
                self.assertEqual(len(locked), 2)
                self.assertEqual(len([e for e in seen if e[5] == 50 and e[6] == "DASHED"]), 8)

    def test_paint_changes_the_one_colour_that_readers_see(self):
        for version in ("R2000", "R2010"):
            with self.subTest(version):
                seen = self.assert_same("paint", "--layer", "A-WALL", "--rgb", "200,60,20",
                                        version=version)
                colors = {entity[3:5] for entity in seen if entity[2] == "A-WALL"}
                self.assertEqual(len(colors), 1, colors)
                self.assertNotIn(colors.pop(), [(30, 0xFF0000), (256, None)])

    def test_match_properties_changes_what_readers_see(self):
        usual, old = self.plans()
        handle = next(line.dxf.handle for line in cli.read(usual)[0].modelspace()
                      if line.dxf.lineweight == 50)
        results = []
        for plan in (usual, old):
            out = self.path("out-" + plan.name)
            self.run_ok("match-properties", plan, "--from", handle, "--layer", "GRID", "-o", out)
            results.append(told(out))
        self.assertEqual(*results)
        self.assertEqual([e[2] for e in results[1] if e[0] in ("CIRCLE", "TEXT")], ["A-WALL"] * 2)

    def test_merge_and_scaling_change_nothing_else(self):
        self.assert_same("merge", "--layer", "A-WALL")
        usual, old = self.plans()
        for plan in (usual, old):
            self.run_ok("rescale", plan, "--factor", "2")
        self.assertEqual(told(usual), told(old))


class MarkersTest(cli.CliTest):
    """Entities under the marker of another kind."""

    def test_rays_and_construction_lines_under_the_marker_of_lines_move(self):
        space = self.draw("x.dxf")
        space.add_xline((100, 50), (1, 0))
        space.add_ray((100, 50), (0, 1))
        space.add_circle((600, 350), 100)
        plan = self.save("x.dxf")
        data = plan.read_bytes()
        plan.write_bytes(data.replace(b"AcDbXline", b"AcDbLine").replace(b"AcDbRay", b"AcDbLine"))
        out = self.path("o.dxf")
        self.run_ok("to-origin", plan, "--at", "left-bottom", "-o", out)
        after = cli.read(out)[0].modelspace()
        circle = after.query("CIRCLE")[0].dxf.center
        for kind in ("XLINE", "RAY"):
            start = after.query(kind)[0].dxf.start
            self.assertEqual(tuple(round(c, 6) for c in start - circle), (-500, -300, 0))


class WidePolylinesTest(cli.CliTest):
    """Pieces of polylines keep their width and their colour."""

    def cut(self, add, version="R2010"):
        space = self.draw("w.dxf", version)
        handle = add(space).dxf.handle
        space.add_line((400, 0), (400, -800), dxfattribs={"layer": "WALL"})
        self.run_ok("break", self.save("w.dxf"), "-o", self.path("o.dxf"))
        after, findings = cli.read(self.path("o.dxf"))
        self.assertEqual(findings, [])
        return handle, after.modelspace()

    def test_a_taper_is_shared_among_the_pieces(self):
        handle, after = self.cut(lambda space: space.add_lwpolyline(
            [(0, 0, 10, 50), (1000, 0, 7, 7), (1000, 500, 7, 7)], dxfattribs={"layer": "WALL"}))
        seen = {tuple(tuple(p[:4]) for p in poly.get_points("xyse")): poly.dxf.handle
                for poly in after.query("LWPOLYLINE")}
        shapes = [[point[:2] for point in points] + list(points[0][2:]) for points in seen]
        self.assertCountEqual(shapes, [[(1000, 0), (1000, 500), 7, 7], [(0, 0), (400, 0), 10, 26],
                                       [(400, 0), (1000, 0), 26, 50]])
        rest = next(key for key in seen if key[0][:2] == (1000, 0))
        self.assertEqual(seen[rest], handle)

    def test_a_constant_width_stays_and_the_first_piece_keeps_the_handle(self):
        handle, after = self.cut(lambda space: space.add_lwpolyline(
            [(0, 0), (1000, 0)], dxfattribs={"layer": "WALL", "const_width": 30}))
        pieces = {poly.dxf.handle: [tuple(p[:2]) for p in poly.get_points()]
                  for poly in after.query("LWPOLYLINE")}
        self.assertEqual(len(pieces), 2)
        self.assertEqual(pieces[handle], [(0, 0), (400, 0)])
        for poly in after.query("LWPOLYLINE"):
            self.assertEqual(poly.dxf.const_width, 30)
        self.assertEqual(len(after.query("LINE")), 1)

    def test_old_polylines_keep_theirs_where_the_vertices_leave_it_to_the_polyline(self):
        for version in ("R12", "R2000"):
            for own in (True, False):
                with self.subTest((version, own)):
                    def add(space):
                        points = [(0, 0), (1000, 0), (1000, 500)]
                        poly = space.add_polyline2d(points, dxfattribs={
                            "layer": "WALL", "default_start_width": 30, "default_end_width": 30})
                        for vertex in poly.vertices:
                            if own:
                                vertex.dxf.start_width = vertex.dxf.end_width = 30
                            else:
                                vertex.dxf.discard("start_width")
                                vertex.dxf.discard("end_width")
                        return poly
                    handle, after = self.cut(add, version)
                    polys = after.query("POLYLINE")
                    self.assertEqual(len(polys), 3)
                    for poly in polys:
                        widths = {vertex.dxf.get("start_width",
                                                 poly.dxf.get("default_start_width", 0))
                                  for vertex in poly.vertices[:-1]}
                        self.assertEqual(widths, {30})
                    self.assertIn(handle, [poly.dxf.handle for poly in polys])

    def test_pieces_have_the_very_colours_of_their_polyline(self):
        for width in (0, 30):
            _, after = self.cut(lambda space: space.add_lwpolyline(
                [(0, 0), (1000, 0)], dxfattribs={"layer": "WALL", "color": 30, "const_width": width,
                                                 "true_color": 0x0000FF}))
            pieces = [e for e in after if e.dxf.get("true_color") is not None]
            self.assertEqual(len(pieces), 2)
            for piece in pieces:
                self.assertEqual((piece.dxf.color, piece.dxf.true_color), (30, 0x0000FF))

    def test_spatial_polylines_whose_vertices_have_no_flag_are_cut(self):
        space = self.draw("w.dxf", "R12")
        space.add_polyline3d([(0, 0, 0), (1000, 0, 0), (1000, 500, 0)],
                             dxfattribs={"layer": "WALL"})
        space.add_line((400, 0), (400, -800), dxfattribs={"layer": "WALL"})
        plan = self.save("w.dxf")
        plan.write_bytes(plan.read_bytes().replace(b" 70\r\n32\r\n", b"").replace(b" 70\n32\n", b""))
        self.assertIn("3 wall lines, 1 of them cut",
                      self.run_ok("break", plan, "-o", self.path("o.dxf")))


class MissingEndTest(cli.CliTest):
    """Files without EOF."""

    def test_a_whole_drawing_is_read_with_a_warning_and_ends_when_it_changes(self):
        space = self.draw("e.dxf")
        space.add_line((0, 0), (1000, 0), dxfattribs={"layer": "WALL"})
        space.add_line((400, 5), (400, 800), dxfattribs={"layer": "WALL"})
        plan = self.save("e.dxf")
        data = plan.read_bytes()
        plan.write_bytes(data[:data.rindex(b"  0")])
        self.assertIn("the file ends without EOF", self.run_ok("info", plan))
        self.run_ok("break", plan, "-o", self.path("o.dxf"))
        self.assertEqual(len(cli.read(self.path("o.dxf"))[0].modelspace()), 3)
        self.assertTrue(self.path("o.dxf").read_bytes().split()[-1] == b"EOF")


if __name__ == "__main__":
    unittest.main(argv=[sys.argv[0], *sys.argv[1:]], verbosity=1)
