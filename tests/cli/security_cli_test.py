#!/usr/bin/python3
"""What somebody may put beside a drawing or under a name that Quoin writes to, and what of it.

usage: security_cli_test.py [UNITTEST ARGUMENT...]
The environment is that of quoin_cli_test.py, whose helpers it uses.
"""

import os
import shutil
import subprocess
import sys
import unittest

import quoin_cli_test as cli

FLAT = cli.SOURCE / "examples" / "flat" / "flat.dxf"


class PlantedTest(cli.CliTest):
    """Folders that others may write to."""

    def test_a_library_in_the_current_folder_is_not_loaded(self):
        compiler = shutil.which("c++") or shutil.which("g++")
        if not compiler:
            self.skipTest("no compiler here")
        source = self.path("planted.cpp")
        source.write_text("#include <unistd.h>\n"
                          "__attribute__((constructor)) static void run() { _exit(99); }\n")
        for name in ("libgeos_c.so.1", "libquoinhost.so", "libquoin.so", "libfmt.so.9"):
            subprocess.run([compiler, "-shared", "-fPIC", "-o", self.path(name), source],
                           check=True)
        arguments = [cli.QUOIN, "info", str(FLAT)]
        environment = {name: value for name, value in os.environ.items()
                       if name not in ("LD_LIBRARY_PATH", "QUOIN_MODULES")}
        result = subprocess.run(arguments, cwd=self.folder, env=environment, check=False,
                                capture_output=True)
        self.assertEqual(result.returncode, 0, result.stderr)
        # The trap works: whoever is asked to look there is caught, at the latest by its names.
        environment["LD_LIBRARY_PATH"] = str(self.folder)
        result = subprocess.run(arguments, cwd=self.folder, env=environment, check=False,
                                capture_output=True)
        self.assertIn(result.returncode, (99, 127), result.stderr)

    def picture(self, name="x.png"):
        self.run_ok("break", FLAT, "--dry-run", "--picture", self.path(name))
        return self.path(name)

    def test_a_link_under_the_name_of_a_temporary_file_harms_nobody(self):
        victim = self.path("victim")
        victim.write_bytes(b"precious")
        for name in ("x.png.part", "x.obj.part", "x.dxf.part"):
            os.symlink(victim, self.path(name))
        self.picture()
        self.run_ok("solid", cli.SOURCE / "examples/studio/studio.dxf", "--layer", "W-*",
                    "--left", "100", "--right", "100", "--height", "2800",
                    "-o", self.path("x.obj"))
        self.run_ok("break", FLAT, "-o", self.path("x.dxf"))
        self.assertEqual(victim.read_bytes(), b"precious")

    def test_a_users_own_part_file_survives(self):
        own = self.path("x.png.part")
        own.write_bytes(b"mine")
        self.picture()
        self.assertEqual(own.read_bytes(), b"mine")

    def test_a_picture_keeps_the_permissions_and_links_of_what_it_replaces(self):
        picture = self.picture()
        picture.chmod(0o640)
        os.symlink("x.png", self.path("link.png"))
        picture.write_bytes(b"old")
        self.picture("link.png")
        self.assertTrue(self.path("link.png").is_symlink())
        self.assertTrue(picture.read_bytes().startswith(b"\x89PNG"))
        self.assertEqual(picture.stat().st_mode & 0o777, 0o640)

    def test_a_pipe_under_the_name_of_a_picture_is_refused_at_once(self):
        os.mkfifo(self.path("x.png"))
        message = self.fails(5, "break", FLAT, "--dry-run", "--picture", self.path("x.png"))
        self.assertIn("no ordinary file", message)
        self.assertEqual([path.name for path in self.folder.iterdir()], ["x.png"])


if __name__ == "__main__":
    unittest.main(argv=[sys.argv[0], *sys.argv[1:]], verbosity=1)
