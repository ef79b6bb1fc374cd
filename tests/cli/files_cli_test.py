#!/usr/bin/python3
"""End-to-end runs of the commands that measure, move and scale whole drawings.

usage: files_cli_test.py [UNITTEST ARGUMENT...]
The environment is that of quoin_cli_test.py, whose helpers it uses.
"""

import os
import signal
import subprocess
import sys
import time
import unittest

import quoin_cli_test as cli


class FilesTest(cli.CliTest):
    """What the test classes below share."""

    def plan(self, name="plan.dxf", version="R2010", **attributes):
        space = self.draw(name, version, **attributes)
        self.documents[name].layers.add("A-OFF").off()
        space.add_line((100, 50), (1100, 50))
        space.add_circle((600, 350), 100)
        space.add_line((-5000, -5000), (0, 0), dxfattribs={"layer": "A-OFF"})
        space.add_line((9000, 0), (9000, 10), dxfattribs={"layer": "A-GONE"})
        path = self.save(name)
        # ezdxf writes no visibility: the line on this layer becomes invisible by hand.
        text = path.read_bytes()
        self.assertEqual(text.count(b"A-GONE\n"), 1)
        path.write_bytes(text.replace(b"A-GONE\n", b"A-GONE\n 60\n1\n"))
        return path

    def with_proxy(self, name):
        space = self.draw(name, "R2010")
        space.add_line((0, 0), (10, 5))
        space.new_entity("ACAD_PROXY_ENTITY", {})
        return self.save(name)

    def first_line(self, path):
        line = next(e for e in cli.read(path)[0].modelspace() if e.dxftype() == "LINE")
        return tuple(line.dxf.start), tuple(line.dxf.end)


    def shared(self):
        drawings = sorted(cli.SHARED.glob("*.dxf")) if cli.SHARED.is_dir() else []
        if not drawings:
            self.skipTest("no shared drawings here")
        return drawings


class ExtentsTest(FilesTest):
    def test_what_shows_counts(self):
        report = self.report("extents", self.plan())
        self.assertEqual(report["extents"], [[100, 50, 0], [1100, 450, 0]])
        self.assertEqual((report["entities"], report["onHiddenLayers"], report["invisible"]),
                         (4, 1, 1))

    def test_all_counts_the_invisible_but_not_hidden_layers(self):
        report = self.report("extents", self.plan(), "--all")
        self.assertEqual(report["extents"], [[100, 0, 0], [9000, 450, 0]])

    def test_the_table_and_the_picture(self):
        text = self.run_ok("extents", self.plan(), "--picture", self.path("frame.png"))
        self.assertRegex(text, r"size +1000 +400 +0")
        self.assertIn("1 left out: invisible", text)
        self.assertTrue(self.path("frame.png").read_bytes().startswith(b"\x89PNG"))

    def test_nothing_to_see(self):
        self.draw("empty.dxf")
        self.assertIn("no extents", self.run_ok("extents", self.save("empty.dxf")))


class ToOriginTest(FilesTest):
    def test_every_position(self):
        plan = self.plan()
        for at, x, y in (("left-top", 100, 450), ("left-bottom", 100, 50), ("center", 600, 250),
                         ("right-top", 1100, 450), ("right-bottom", 1100, 50)):
            out = self.path(at + ".dxf")
            self.run_ok("to-origin", plan, "--at", at, "-o", out)
            self.assertEqual(self.first_line(out), ((100 - x, 50 - y, 0), (1100 - x, 50 - y, 0)))
            self.assert_no_new_findings(plan, out)

    def test_what_cannot_be_moved_is_named_and_nothing_written(self):
        plan = self.with_proxy("proxy.dxf")
        out = self.path("out.dxf")
        message = self.fails(6, "to-origin", plan, "--at", "center", "-o", out)
        self.assertIn("1 ACAD_PROXY_ENTITY", message)
        self.assertRegex(message, r"at line \d+ of")
        self.assertFalse(out.exists())
        text = self.run_ok("to-origin", plan, "--at", "center", "-o", out, "--leave-behind")
        self.assertIn("left where they are", text)
        self.assertEqual(self.first_line(out)[0], (-5, -2.5, 0))

    def test_shared_drawings_come_to_the_origin(self):
        for drawing in self.shared():
            out = self.path(drawing.name)
            report = self.report("to-origin", drawing, "--at", "right-top", "-o", out,
                                 "--leave-behind")
            self.assertGreater(report["moved"], 0)
            # What cannot be moved cannot be measured either.
            high = self.report("extents", out)["extents"][1]
            size = max(1.0, *(abs(v) for v in report["basePoint"]))
            self.assertLess(abs(high[0]) + abs(high[1]), 1e-9 * size, drawing.name)
            self.assert_no_new_findings(drawing, out)

    def test_a_drawing_without_extents(self):
        self.draw("empty.dxf")
        self.fails(4, "to-origin", self.save("empty.dxf"), "--at", "center", "--dry-run")

    def test_an_unknown_position(self):
        self.fails(2, "to-origin", self.plan(), "--at", "top", "--dry-run")


class RescaleTest(FilesTest):
    def test_files_side_by_side_with_backups(self):
        plans = [self.plan(f"{i}.dxf") for i in range(5)]
        before = plans[0].read_bytes()
        text = self.run_ok("rescale", *plans, "--factor", "0.5", "--jobs", "3")
        self.assertIn("scaling by 40 (80 times 0.5)", text)
        self.assertIn("5 of 5 drawings scaled", text)
        for plan in plans:
            self.assertEqual(self.first_line(plan), ((4000, 2000, 0), (44000, 2000, 0)))
            backup = plan.with_name(plan.name + ".bak")
            self.assertTrue(backup.exists())
        self.assertEqual(plans[0].with_name("0.dxf.bak").read_bytes(), before)

    def test_a_drawing_factor_is_met_to_the_last_digit(self):
        for factor in ("0.001", "25.4", "3", "0.1", "1e-6", "12.345"):
            plan = self.plan()
            report = self.report("rescale", plan, "--drawing-factor", factor)
            self.assertAlmostEqual(report["drawingFactor"] / float(factor), 1, delta=3e-16)
            self.assertAlmostEqual(self.first_line(plan)[1][0], 1100 * float(factor), places=9)

    def test_a_file_that_fails_does_not_keep_the_others_back(self):
        dwg = self.path("old.dwg")
        dwg.write_bytes(b"AC1015\0\0\0\0" + bytes(200))
        dwg_bytes = dwg.read_bytes()
        plans = [self.plan("a.dxf"), self.with_proxy("b.dxf"), self.plan("c.dxf")]
        files = [plans[0], dwg, plans[1], self.path("nowhere.dxf"), self.folder, plans[2]]
        result = cli.quoin("rescale", *files, "--factor", "1", "--report", "json")
        self.assertEqual(result.returncode, 3)
        rows = cli.json.loads(result.stdout)["files"]
        self.assertEqual([row["exitCode"] for row in rows], [0, 3, 6, 3, 3, 0])
        self.assertIn("R2000, AC1015", rows[1]["note"])
        self.assertIn("ACAD_PROXY_ENTITY", rows[2]["note"])
        self.assertEqual(dwg.read_bytes(), dwg_bytes)
        self.assertFalse(self.path("nowhere.dxf").exists())
        self.assertIn(b"4 of 6 drawings were not scaled", result.stderr)

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

    def test_factors_that_leave_nothing(self):
        plan = self.plan()
        for factor in ("0", "nan", "inf", "1e308"):
            self.fails(2, "rescale", plan, "--factor", factor)
        self.fails(2, "rescale", plan)
        self.fails(2, "rescale", plan, "--factor", "1", "--drawing-factor", "2")

    def test_shared_drawings_keep_their_audit(self):
        for drawing in self.shared():
            copy = self.path(drawing.name)
            copy.write_bytes(drawing.read_bytes())
            text = self.run_ok("rescale", copy, "--drawing-factor", "2.5", "--leave-behind")
            self.assertIn("1 of 1 drawings scaled", text)
            self.assert_no_new_findings(drawing, copy)


class NothingLostTest(FilesTest):
    """Whatever ends a run, the drawing is the old one or the new one, whole."""

    def large_plan(self):
        space = self.draw("large.dxf", "R2000")
        for i in range(20000):
            space.add_line((i, 0), (i, 10))
        return self.save("large.dxf")

    def test_a_killed_run_leaves_a_whole_drawing(self):
        plan = self.large_plan()
        old = plan.read_bytes()
        self.run_ok("rescale", plan, "--drawing-factor", "2")
        new = plan.read_bytes()
        self.assertNotEqual(old, new)
        # As long as a whole run takes, and a little more: kills fall everywhere in it.
        began = time.monotonic()
        plan.write_bytes(old)
        self.run_ok("rescale", plan, "--drawing-factor", "2")
        whole = time.monotonic() - began
        seen = set()
        rounds = 40
        for i in range(rounds):
            plan.write_bytes(old)
            run = subprocess.Popen([cli.QUOIN, "rescale", plan, "--drawing-factor", "2"],
                                   stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                                   start_new_session=True)
            time.sleep(1.3 * whole * i / rounds)
            os.killpg(run.pid, signal.SIGKILL)
            run.wait()
            now = plan.read_bytes()
            self.assertIn(now, (old, new), f"killed in round {i}")
            seen.add(now == new)
        self.assertIn(False, seen)

    def test_a_full_disk_leaves_the_old_drawing(self):
        plan = self.large_plan()
        old = plan.read_bytes()
        limit = len(old) // 2 // 1024
        result = subprocess.run(
            ["bash", "-c", f"ulimit -f {limit}; trap '' XFSZ; exec \"$0\" \"$@\"", cli.QUOIN,
             "rescale", plan, "--drawing-factor", "2"], capture_output=True, check=False)
        self.assertEqual(result.returncode, 5, result.stdout + result.stderr)
        self.assertIn(b"the drawing is as it was", result.stdout)
        self.assertEqual(plan.read_bytes(), old)
        self.assertEqual([p.name for p in self.folder.iterdir()], ["large.dxf"])

    @unittest.skipIf(os.geteuid() == 0, "permissions do not bind the superuser")
    def test_a_folder_without_permission_leaves_the_old_drawing(self):
        plan = self.plan()
        old = plan.read_bytes()
        self.folder.chmod(0o500)
        self.addCleanup(self.folder.chmod, 0o700)
        self.fails(5, "rescale", plan, "--factor", "1")
        self.assertEqual(plan.read_bytes(), old)

    def test_a_read_only_drawing_keeps_its_permissions(self):
        plan = self.plan()
        plan.chmod(0o444)
        result = cli.quoin("rescale", plan, "--drawing-factor", "2")
        start = self.first_line(plan)[0]
        self.assertIn((result.returncode, start), ((0, (200, 100, 0)), (5, (100, 50, 0))))
        self.assertEqual(plan.stat().st_mode & 0o777, 0o444)


if __name__ == "__main__":
    unittest.main(argv=[sys.argv[0], *sys.argv[1:]], verbosity=1)
