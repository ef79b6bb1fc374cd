#!/usr/bin/python3
"""Ctrl-C during every command: it ends at once, with its message, and no half file stays.

usage: stop_cli_test.py [UNITTEST ARGUMENT...]
The environment is that of quoin_cli_test.py; QUOIN_STOP_LINES is the size of the plan (10,000).
"""

import os
import pathlib
import pty
import shutil
import signal
import subprocess
import sys
import time
import unittest

import quoin_cli_test as cli
import RunCommand_cli_test

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "scripts"))
import make_large_plan  # noqa: E402 - the line above finds it

LINES = int(os.environ.get("QUOIN_STOP_LINES", "10000"))
TICKS = os.sysconf("SC_CLK_TCK")
UNTOUCHED = "quoin: interrupted; every file is as it was"
WRITTEN = "quoin: interrupted; the files that were written before stay"


def processor_time(pid):
    """Seconds that a process has used; what counts where the machine has other work too."""
    with open(f"/proc/{pid}/stat", encoding="ascii") as stream:
        fields = stream.read().rsplit(")", 1)[1].split()
    return (int(fields[11]) + int(fields[12])) / TICKS


class StopTest(cli.CliTest):
    def large_plan(self, kind, count):
        path = self.path(f"{kind}.dxf")
        with open(path, "w", encoding="ascii", newline="") as stream:
            make_large_plan.write(stream, kind, count)
        return path

    def stop(self, moment, request, *words):
        """Runs a command and asks it to stop when it has used so much of the processor. Gives
        its exit code, its errors and how much it used afterwards."""
        process = subprocess.Popen([cli.QUOIN, *map(str, words)], stdout=subprocess.DEVNULL,
                                   stderr=subprocess.PIPE)
        used = 0.0
        begin = time.monotonic()
        # Where other processes do the work the clock tells when.
        while process.poll() is None and used < moment and \
                time.monotonic() - begin < 20.0 * moment:
            time.sleep(0.002)
            used = processor_time(process.pid)
        if process.poll() is not None:
            errors = process.stderr.read().decode()
            process.stderr.close()
            return process.returncode, errors, 0.0
        process.send_signal(request)
        _, status, usage = os.wait4(process.pid, 0)
        process.returncode = os.waitstatus_to_exitcode(status)
        errors = process.stderr.read().decode()
        process.stderr.close()
        return process.returncode, errors, usage.ru_utime + usage.ru_stime - used

    def test_a_call_into_the_module_that_takes_minutes(self):
        axes = self.large_plan("slanted", 20000)
        for request in (signal.SIGINT, signal.SIGTERM):
            code, errors, used = self.stop(1.0, request, "trim-axes", axes, "--layer", "S-GRID",
                                           "-o", self.path("out.dxf"))
            self.assertEqual((code, errors.strip()), (130, UNTOUCHED))
            self.assertLess(used, 0.5)
            self.assertFalse(self.path("out.dxf").exists())

    def test_a_terminal_shows_how_long_such_a_call_takes(self):
        axes = self.large_plan("slanted", 20000)
        mine, theirs = pty.openpty()
        process = subprocess.Popen([cli.QUOIN, "trim-axes", axes, "--layer", "S-GRID", "--dry-run"],
                                   stdout=subprocess.DEVNULL, stderr=theirs)
        os.close(theirs)
        shown = b""
        while b"Cutting axes" not in shown:
            shown += os.read(mine, 1024)
        process.send_signal(signal.SIGINT)
        self.assertEqual(process.wait(), 130)
        try:
            while True:
                shown += os.read(mine, 1024)
        except OSError:  # the end of a terminal
            os.close(mine)
        self.assertRegex(shown, rb"Cutting axes \d+ s")
        self.assertIn(b"\r\033[K" + UNTOUCHED.encode(), shown)

    def test_every_command_at_every_moment(self):
        plan = self.large_plan("rooms", LINES)
        second = shutil.copy(plan, self.path("second.dxf"))
        out = self.path("out")
        walls = ["--layer", "A-WALL"]
        widths = [*walls, "--left", "60", "--right", "60"]
        drawing = ["-o", out / "out.dxf", "--picture", out / "out.png"]
        whole = LINES / 20000  # a run takes some 0.3 of this
        for words in (["info", plan], ["extents", plan, "--picture", out / "out.png"],
                      ["picture", plan, "-o", out / "out.pdf"],
                      ["break", plan, *walls, *drawing],
                      ["break", plan, *walls, "--picture", out / "out.svg", "--dry-run"],
                      ["merge", plan, *walls, *drawing, "--report", "json"],
                      ["draw", plan, *walls, "--path", "0,900 99999,900", *drawing],
                      ["trim-axes", plan, *walls, *drawing],
                      ["outline", plan, *widths, *drawing],
                      ["solid", plan, *widths, "--height", "9", "-o", out / "out.obj"],
                      ["solid", plan, *widths, "--height", "9", "-o", out / "out.dxf"],
                      ["style", "dim", plan, "--name", "D", "--scale", "9", *drawing],
                      ["style", "mline", plan, "--name", "M", *drawing],
                      ["run", RunCommand_cli_test.MODULE, "ADDLINE", plan, *drawing, "--", "0,0", "9"],
                      ["break", plan, second, *walls, "-o", out, "--jobs", "2"],
                      ["paint", plan, *walls, "--rgb", "1,2,3", *drawing],
                      ["match-properties", plan, "--from", "101", *walls, *drawing],
                      ["to-origin", plan, "--at", "center", *drawing],
                      ["rescale", out / "copy.dxf", "--drawing-factor", "2"]):
            for moment in (0.06 * whole, 0.25 * whole):
                shutil.rmtree(out, ignore_errors=True)
                out.mkdir()
                if "rescale" in words:
                    shutil.copy(plan, out / "copy.dxf")
                with self.subTest(command=words[0], moment=moment):
                    code, errors, used = self.stop(moment, signal.SIGINT, *words)
                    if words[0] not in ("rescale", "run") and second not in words:
                        # These have workers, whose time is that of the command too.
                        self.assertLess(used, 0.5)
                    left = sorted(path.name for path in out.iterdir())
                    self.assertEqual([name for name in left if name.startswith(".")], [])
                    if code != 0:
                        self.assertEqual(code, 130)
                        last = errors.strip().rsplit("\n", 1)[-1]
                        self.assertIn(last, (UNTOUCHED, WRITTEN))
                        if last == UNTOUCHED:
                            self.assertEqual([name for name in left if name != "copy.dxf"], [])


if __name__ == "__main__":
    unittest.main()
