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

    def plan(self, name="plan.dxf", version="R2010", units=None, **attributes):
        space = self.draw(name, version, **attributes)
        if units is not None:
            self.documents[name].units = units
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
        self.assertIn(b"the old one is untouched", result.stderr)
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
