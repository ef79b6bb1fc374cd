#!/usr/bin/python3
"""End-to-end runs of `quoin break`.

usage: BreakCommand_cli_test.py [UNITTEST ARGUMENT...]
The environment is that of quoin_cli_test.py, whose helpers it uses.
"""

import os
import pathlib
import subprocess
import unittest

import quoin_cli_test as cli


class BreakTest(cli.CliTest):
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
        before, _ = cli.read(plan)
        after, _ = cli.read(self.path("o.dxf"))
        source = cli.lines_of(before)[0][2]
        self.assertEqual(report["changes"][0]["source"], source)
        self.assertEqual(report["changes"][0]["results"][0]["handle"], source)
        self.assertEqual([(line[0][:2], line[1][:2]) for line in cli.lines_of(after)],
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
                after, _ = cli.read(self.path("o.dxf"))
                self.assertEqual(after.dxfversion, cli.read(plan)[0].dxfversion)
                self.assertEqual(len(cli.lines_of(after)), 3)
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
        after, _ = cli.read(self.path("o.dxf"))
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
        after, _ = cli.read(self.path("o.dxf"))
        rest = after.modelspace().query("LWPOLYLINE")
        self.assertEqual([[tuple(p) for p in poly.get_points("xyb")] for poly in rest],
                         [[(1000, 0, 0.5), (1000, 500, 0), (0, 500, 0)]])
        self.assertEqual(rest[0].dxf.handle, handle)
        self.assertEqual(len(cli.lines_of(after)), 3)

    def test_a_cut_in_the_middle_leaves_a_polyline_on_each_side(self):
        space = self.draw("poly.dxf")
        space.add_lwpolyline([(0, 300), (0, 0), (1000, 0), (1000, 300)],
                             dxfattribs={"layer": "WALL"})
        space.add_line((400, 0), (400, -800), dxfattribs={"layer": "WALL"})
        self.run_ok("break", self.save("poly.dxf"), "-o", self.path("o.dxf"))
        after, findings = cli.read(self.path("o.dxf"))
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
                after, findings = cli.read(self.path("o.dxf"))
                self.assertEqual(findings, [])
                rest = after.modelspace().query(kind)
                self.assertEqual(len(rest), 1)
                points = ([tuple(p[:2]) for p in rest[0].get_points()] if kind == "LWPOLYLINE"
                          else [tuple(v.dxf.location)[:2] for v in rest[0].vertices])
                self.assertEqual(points, [(1000, 500), (0, 500), (0, 0), (1000, 0)])
                self.assertFalse(rest[0].is_closed if kind == "POLYLINE" else rest[0].closed)
                self.assertEqual(len(cli.lines_of(after)), 3)

    def test_where_nothing_is_left_of_a_polyline_the_first_line_takes_its_handle(self):
        for version in ("R2010", "R12"):
            with self.subTest(version):
                space = self.draw("one.dxf", version)
                add = space.add_polyline2d if version == "R12" else space.add_lwpolyline
                handle = add([(0, 0), (1000, 0)], dxfattribs={"layer": "WALL"}).dxf.handle
                space.add_line((400, 0), (400, -800), dxfattribs={"layer": "WALL"})
                self.run_ok("break", self.save("one.dxf"), "-o", self.path("o.dxf"))
                after, findings = cli.read(self.path("o.dxf"))
                self.assertEqual(findings, [])
                self.assertEqual(len(after.modelspace()), 3)
                first = [line for line in cli.lines_of(after) if line[2] == handle]
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
                    [cli.QUOIN, "break", self.save("comb.dxf"), "-o", self.path("o.dxf")],
                    capture_output=True, timeout=60)
                self.assertEqual(result.returncode, 0, result.stderr)
                after, findings = cli.read(self.path("o.dxf"))
                self.assertEqual(findings, [])
                parts = after.modelspace().query(kind)
                self.assertEqual(sorted(len(part) for part in parts), [7] + [8] * 499)
                self.assertEqual(len(cli.lines_of(after)), 1500)

    def test_a_polyline_of_very_many_vertices_is_cut_into_two_in_no_time(self):
        corners = [(1000 * i, 3000 * (i // 2 % 2)) for i in range(200000)]
        space = self.draw("long.dxf")
        space.add_lwpolyline(corners, dxfattribs={"layer": "WALL"})
        x, y = corners[100000]
        space.add_line((x + 400, y), (x + 400, y - 500), dxfattribs={"layer": "WALL"})
        plan = self.save("long.dxf")
        result = cli.quoin("break", plan, "-o", self.path("o.dxf"), timeout=60)
        self.assertEqual(result.returncode, 0, result.stderr)
        parts = cli.read(self.path("o.dxf"))[0].modelspace().query("LWPOLYLINE")
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
        self.assertEqual(len(cli.lines_of(cli.read(plan)[0])), 3)

    def test_a_broken_plan_has_nothing_left_to_break(self):
        for plan in cli.EXAMPLES:
            with self.subTest(plan.name):
                first = self.report("break", plan, "-o", self.path("1.dxf"))
                again = self.report("break", self.path("1.dxf"), "-o", self.path("2.dxf"))
                self.assertGreater(first["changed"], 5)
                self.assertEqual(again["changed"], 0)
                self.assertEqual(self.path("1.dxf").read_bytes(), self.path("2.dxf").read_bytes())

    def test_the_examples_keep_their_length_and_pass_the_audit(self):
        for plan in cli.EXAMPLES:
            with self.subTest(plan.name):
                report = self.report("break", plan, "-o", self.path("o.dxf"))
                self.assert_no_new_findings(plan, self.path("o.dxf"))
                layers = set(report["layers"])
                after, _ = cli.read(self.path("o.dxf"))
                self.assertAlmostEqual(cli.length_of(cli.read(plan)[0], layers),
                                       cli.length_of(after, layers), places=3)

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


if __name__ == "__main__":
    unittest.main()
