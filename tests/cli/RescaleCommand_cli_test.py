#!/usr/bin/python3
"""End-to-end runs of `quoin rescale`.

usage: RescaleCommand_cli_test.py [UNITTEST ARGUMENT...]
The environment is that of quoin_cli_test.py, whose helpers it uses.
"""

import os
import signal
import subprocess
import unittest

from ezdxf.math import Vec2, Vec3

import quoin_cli_test as cli
import files_cli_test as files


class RescaleTest(files.FilesTest):
    def test_files_side_by_side_with_backups(self):
        plans = [self.plan(f"{i}.dxf") for i in range(5)]
        before = plans[0].read_bytes()
        text = self.run_ok("rescale", *plans, "--factor", "0.5", "--jobs", "3")
        self.assertIn("scaling by 40 (80 times 0.5)", text)
        self.assertIn("5 of 5 drawings done", text)
        for plan in plans:
            self.assertEqual(self.first_line(plan), ((4000, 2000, 0), (44000, 2000, 0)))
            backup = plan.with_name(plan.name + ".bak")
            self.assertTrue(backup.exists())
        self.assertEqual(plans[0].with_name("0.dxf.bak").read_bytes(), before)

    def test_a_drawing_factor_is_met_to_the_last_digit(self):
        for factor in ("0.001", "25.4", "3", "0.1", "1e-6", "12.345"):
            plan = self.plan()
            report = self.report("rescale", plan, "--drawing-factor", factor)
            self.assertEqual(report["drawingFactor"], float(factor))
            self.assertEqual(self.first_line(plan)[1][0], 1100 * float(factor))

    def test_a_file_that_fails_does_not_keep_the_others_back(self):
        dwg = self.path("old.dwg")
        dwg.write_bytes(b"AC1015\0\0\0\0" + bytes(200))
        dwg_bytes = dwg.read_bytes()
        plans = [self.plan("a.dxf"), self.with_proxy("b.dxf"), self.plan("c.dxf")]
        files = [plans[0], dwg, plans[1], self.path("nowhere.dxf"), self.folder, plans[2]]
        result = cli.quoin("rescale", *files, "--factor", "1", "--report", "json")
        self.assertEqual(result.returncode, 3)
        rows = cli.json.loads(result.stdout)["drawings"]
        self.assertEqual([row["exitCode"] for row in rows], [0, 3, 6, 3, 3, 0])
        self.assertIn("old.dwg", rows[1]["error"])
        self.assertIn("ACAD_PROXY_ENTITY", rows[2]["error"])
        self.assertEqual(dwg.read_bytes(), dwg_bytes)
        self.assertFalse(self.path("nowhere.dxf").exists())
        self.assertIn(b"4 of 6 drawings failed", result.stderr)

    def test_a_file_named_twice_is_not_scaled_twice(self):
        plan = self.plan()
        before = plan.read_bytes()
        os.symlink(plan, self.path("link.dxf"))
        for other in (plan, self.folder / "." / "plan.dxf", self.path("link.dxf")):
            self.assertIn("one file", self.fails(2, "rescale", plan, other, "--factor", "1"))
        self.assertEqual(plan.read_bytes(), before)

    def test_a_link_stays_a_link(self):
        plan = self.plan()
        link = self.path("link.dxf")
        os.symlink("plan.dxf", link)
        self.run_ok("rescale", link, "--drawing-factor", "2")
        self.assertTrue(link.is_symlink())
        self.assertEqual(self.first_line(plan)[0], (200, 100, 0))

    def test_another_file_leaves_the_drawing_alone(self):
        plan = self.plan()
        before = plan.read_bytes()
        self.run_ok("rescale", plan, "--drawing-factor", "2", "-o", self.path("out.dxf"))
        self.assertEqual(plan.read_bytes(), before)
        self.assertFalse(self.path("plan.dxf.bak").exists())
        self.assertEqual(self.first_line(self.path("out.dxf"))[0], (200, 100, 0))

    def test_factors_that_no_drawing_is_scaled_by(self):
        plan = self.plan()
        before = plan.read_bytes()
        for factor in ("0", "nan", "inf", "1e308", "1e200", "1e-320", "-1"):
            self.fails(2, "rescale", plan, f"--factor={factor}")
            self.fails(2, "rescale", plan, f"--drawing-factor={factor}")
        self.fails(2, "rescale", plan)
        self.fails(2, "rescale", plan, "--factor", "1", "--drawing-factor", "2")
        self.fails(2, "rescale", plan, "--factor", "1", "--to-units", "m")
        self.fails(2, "rescale", plan, "--factor", "1", "--from-units", "m")
        self.fails(2, "rescale", plan, "--to-units", "cubits")
        self.assertEqual(plan.read_bytes(), before)

    def with_line(self, name, coordinate):
        """A plan whose second line begins at a coordinate that is spelled like this."""
        space = self.draw(name)
        space.add_line((1, 2), (3, 4))
        space.add_line((777.5, 2), (3, 4))
        path = self.save(name)
        text = path.read_bytes()
        self.assertEqual(text.count(b"\n777.5\n"), 1)
        path.write_bytes(text.replace(b"\n777.5\n", b"\n" + coordinate + b"\n"))
        return path

    def test_a_drawing_is_scaled_wholly_or_not_at_all(self):
        for number, coordinate in enumerate((b"1e307", b"-1.7e308", b"north", b"1e999")):
            plan = self.with_line(f"{number}.dxf", coordinate)
            before = plan.read_bytes()
            message = self.fails(6, "rescale", plan, "--drawing-factor", "100")
            self.assertIn("cannot scale 1 of 2 entities (1 LINE; the first is LINE", message)
            self.assertRegex(message, r"at line \d+ of .*cannot be read or would become too large")
            self.assertEqual(plan.read_bytes(), before)
            self.assertFalse(plan.with_name(plan.name + ".bak").exists())
            report = self.report("rescale", plan, "--drawing-factor", "100", "--leave-behind")
            self.assertEqual(report["changed"], 1)
            self.assertEqual([row["kind"] for row in report["leftBehind"]], ["LINE"])
            self.assertRegex(report["leftBehind"][0]["source"], "^[0-9A-F]+$")
            self.assertGreater(report["leftBehind"][0]["line"], 0)
            self.assertIn(b"\n" + coordinate + b"\n", plan.read_bytes())
            self.assertIn(b"\n100.0\n", plan.read_bytes())

    def test_what_is_left_behind_is_named(self):
        plan = self.with_proxy("proxy.dxf")
        message = self.fails(6, "rescale", plan, "--factor", "1")
        self.assertIn("1 ACAD_PROXY_ENTITY", message)
        text = self.run_ok("rescale", plan, "--factor", "1", "--leave-behind")
        self.assertRegex(text, r"ACAD_PROXY_ENTITY [0-9A-F]+ at line \d+ of")
        self.assertIn("1 entity scaled", text)

    def test_units_are_changed_with_the_drawing(self):
        plan = self.plan(units=4)
        text = self.run_ok("rescale", plan, "--to-units", "m")
        self.assertIn("scaling by 0.001, from millimeters to meters", text)
        self.assertIn("units are meters now", text)
        document = cli.read(plan)[0]
        self.assertEqual(document.units, 6)
        self.assertEqual(document.header["$MEASUREMENT"], 1)
        self.assertEqual(self.first_line(plan), ((0.1, 0.05, 0), (1.1, 0.05, 0)))
        self.run_ok("rescale", plan, "--to-units", "in")
        document = cli.read(plan)[0]
        self.assertEqual((document.units, document.header["$MEASUREMENT"]), (1, 0))
        self.assertAlmostEqual(self.first_line(plan)[1][0], 1100 / 25.4, places=12)

    def test_a_drawing_without_units_must_be_told_them(self):
        plan = self.plan(units=0)
        before = plan.read_bytes()
        self.assertIn("--from-units", self.fails(2, "rescale", plan, "--to-units", "m"))
        self.assertEqual(plan.read_bytes(), before)
        self.run_ok("rescale", plan, "--to-units", "m", "--from-units", "cm")
        self.assertEqual(cli.read(plan)[0].units, 6)
        self.assertEqual(self.first_line(plan)[1][0], 11)

    def test_each_drawing_is_scaled_from_its_own_units(self):
        plans = [self.plan("mm.dxf", units=4), self.plan("cm.dxf", units=5)]
        self.run_ok("rescale", *plans, "--to-units", "m", "-o", self.path("out"))
        self.assertEqual(self.first_line(self.path("out") / "mm.dxf")[1][0], 1.1)
        self.assertEqual(self.first_line(self.path("out") / "cm.dxf")[1][0], 11)

    def test_plain_scaling_says_that_the_units_stay(self):
        plan = self.plan(units=4)
        text = self.run_ok("rescale", plan, "--drawing-factor", "0.5")
        self.assertIn("units stay millimeters", text)
        self.assertIn("stay as they are: linetype scale 1, dimension scale 1", text)
        self.assertEqual(cli.read(plan)[0].units, 4)

    def test_an_old_drawing_names_no_units(self):
        plan = self.plan(version="R12", units=0)
        text = self.run_ok("rescale", plan, "--to-units", "m", "--from-units", "mm")
        self.assertIn("R12 drawings name no units", text)
        self.assertNotIn(b"$INSUNITS", plan.read_bytes())

    def test_a_dry_run_tells_and_writes_nothing(self):
        plan = self.plan()
        before = plan.read_bytes()
        report = self.report("rescale", plan, "--drawing-factor", "2", "--dry-run")
        self.assertEqual(report["changed"], 4)
        self.assertEqual(report["extentsBefore"], [[100, 50, 0], [1100, 450, 0]])
        self.assertEqual(report["extentsAfter"], [[200, 100, 0], [2200, 900, 0]])
        self.assertIsNone(report["output"])
        self.assertEqual(plan.read_bytes(), before)
        self.assertEqual([p.name for p in self.folder.iterdir()], ["plan.dxf"])
        proxy = self.with_proxy("proxy.dxf")
        self.assertIn("ACAD_PROXY_ENTITY", self.fails(6, "rescale", proxy, "--factor", "1", "--dry-run"))

    def test_sheets_and_views_show_what_they_showed(self):
        for command, factor, move in ((("rescale", "--drawing-factor", "0.001"), 0.001, (0, 0)),
                                      (("to-origin", "--at", "left-bottom"), 1, (-100, 0))):
            plan = self.with_views(command[0] + ".dxf")
            out = self.path(command[0] + "-out.dxf")
            self.run_ok(command[0], plan, *command[1:], "-o", out)
            document = cli.read(out)[0]
            old = cli.read(plan)[0]
            sheet = document.layouts.get("Layout1")
            (viewport,) = [v for v in sheet.query("VIEWPORT") if v.dxf.id != 1]
            (before,) = [v for v in old.layouts.get("Layout1").query("VIEWPORT") if v.dxf.id != 1]
            # The same corner of the plan stands at the same place of the sheet.
            for point in ((100, 50, 0), (1100, 450, 0)):
                moved = tuple(p * factor + m for p, m in zip(point, (*move, 0)))
                there = before.get_transformation_matrix().transform(point)
                here = viewport.get_transformation_matrix().transform(moved)
                self.assertTrue(there.isclose(here, abs_tol=1e-6), (command, there, here))
            active = document.viewports.get("*Active")[0]
            self.assertTrue(active.dxf.center.isclose((600 * factor + move[0],
                                                       250 * factor + move[1])))
            self.assertAlmostEqual(active.dxf.height, 900 * factor)
            self.assertTrue(Vec3(document.header["$EXTMIN"]).isclose(
                (100 * factor + move[0], 50 * factor + move[1], 0)))
            self.assertTrue(Vec2(document.header["$LIMMAX"]).isclose(
                (2000 * factor + move[0], 1000 * factor + move[1])))
            self.assert_no_new_findings(plan, out)

    def with_views(self, name):
        plan = self.plan(name)
        document = self.documents[name]
        document.set_modelspace_vport(900, center=(600, 250))
        document.modelspace().reset_extents((100, 50, 0), (1100, 450, 0))
        document.modelspace().reset_limits((0, 0), (2000, 1000))
        sheet = document.layouts.get("Layout1")
        sheet.add_viewport((100, 80), (150, 100), view_center_point=(600, 250), view_height=900)
        return self.save(name)

    def test_dimensions_read_right_after_both_commands(self):
        """A wall of 5000 mm reads 5000 whatever it is scaled by, if the style says so too."""
        for factor in ("1", "0.001", "2"):
            plan = self.plan()
            self.run_ok("rescale", plan, "--drawing-factor", factor)
            styled = self.path("styled.dxf")
            self.run_ok("style", "dim", plan, "--name", "ARCH", "--scale", factor, "-o", styled)
            style = cli.read(styled)[0].dimstyles.get("ARCH")
            (start, end) = self.first_line(styled)
            self.assertAlmostEqual((end[0] - start[0]) * style.dxf.dimlfac, 1000)
            # Texts are as high beside the wall as before.
            self.assertAlmostEqual(style.dxf.dimtxt * style.dxf.dimscale, 200 * float(factor))

    def test_a_worker_that_is_killed_is_said_to_be_and_its_file_is_whole(self):
        space = self.draw("large.dxf", "R2000")
        for i in range(60000):
            space.add_line((i, 0), (i, 10))
        large = self.save("large.dxf")
        small = self.plan("small.dxf")
        before = large.read_bytes()
        run = subprocess.Popen([cli.QUOIN, "rescale", large, small, "--drawing-factor", "2",
                                "--report", "json"], stdout=subprocess.PIPE,
                               stderr=subprocess.PIPE)
        children = f"/proc/{run.pid}/task/{run.pid}/children"
        while run.poll() is None:
            with open(children, encoding="ascii") as file:
                workers = file.read().split()
            if workers:
                os.kill(int(workers[0]), signal.SIGKILL)
                break
        output, errors = run.communicate(timeout=60)
        self.assertEqual(run.returncode, 5, errors)
        rows = cli.json.loads(output)["drawings"]
        self.assertEqual([row["exitCode"] for row in rows], [5, 0])
        self.assertIn("Killed", rows[0]["error"])
        self.assertIn("memory", rows[0]["error"])
        self.assertIn("large.dxf is as it was", rows[0]["error"])
        self.assertEqual(large.read_bytes(), before)
        self.assertEqual(self.first_line(small)[0], (200, 100, 0))
        self.assertNotIn(b"internal error", errors)

    def test_shared_drawings_keep_their_audit(self):
        for drawing in self.shared():
            copy = self.path(drawing.name)
            copy.write_bytes(drawing.read_bytes())
            text = self.run_ok("rescale", copy, "--drawing-factor", "2.5", "--leave-behind")
            self.assertRegex(text, "entit(y|ies) scaled")
            self.assert_no_new_findings(drawing, copy)


if __name__ == "__main__":
    unittest.main()
