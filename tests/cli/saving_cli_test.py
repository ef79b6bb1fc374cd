#!/usr/bin/python3
"""Backups, two runs at a time, the standard streams, and requests to stop.

usage: saving_cli_test.py [UNITTEST ARGUMENT...]
The environment is that of quoin_cli_test.py, whose helpers it uses.
"""

import os
import resource
import signal
import subprocess
import sys
import time
import unittest

import quoin_cli_test as cli

FLAT = cli.SOURCE / "examples" / "flat" / "flat.dxf"


class SavingTest(cli.CliTest):
    def plan(self, name="plan.dxf"):
        path = self.path(name)
        path.write_bytes(FLAT.read_bytes())
        return path

    def names(self):
        return sorted(path.name for path in self.folder.iterdir())

    def paint(self, plan, red, *arguments):
        return self.run_ok("paint", plan, "--layer", "A-WALL*", "--rgb", f"{red},0,0",
                           "--in-place", *arguments)


class BackupTest(SavingTest):
    def test_two_runs_in_place_keep_the_original(self):
        plan = self.plan()
        original = plan.read_bytes()
        self.assertIn(f"before: {plan}.bak\n", self.paint(plan, 10))
        first = plan.read_bytes()
        self.assertIn(f"before: {plan}.2.bak\n", self.paint(plan, 20))
        self.assertEqual(self.path("plan.dxf.bak").read_bytes(), original)
        self.assertEqual(self.path("plan.dxf.2.bak").read_bytes(), first)

    def test_a_run_that_changes_nothing_writes_nothing(self):
        plan = self.plan()
        self.paint(plan, 10)
        before = plan.stat()
        text = self.paint(plan, 10)
        self.assertIn(f"nothing to change: {plan} is left as it is\n", text)
        self.assertEqual(self.names(), ["plan.dxf", "plan.dxf.bak"])
        after = plan.stat()
        self.assertEqual((after.st_ino, after.st_mtime_ns), (before.st_ino, before.st_mtime_ns))
        # Elsewhere an unchanged copy is what was asked for.
        self.run_ok("break", plan, "--layer", "A-WALL-EXT", "-o", self.path("once.dxf"))
        self.run_ok("break", self.path("once.dxf"), "--layer", "A-WALL-EXT", "-o",
                    self.path("twice.dxf"))
        self.assertEqual(self.path("twice.dxf").read_bytes(), self.path("once.dxf").read_bytes())

    def test_backups_go_where_they_are_told(self):
        plan = self.plan()
        self.path("old").mkdir()
        self.paint(plan, 10, "--backup-dir", self.path("old"))
        self.paint(plan, 20, "--backup-dir", self.path("old"))
        self.assertEqual(self.names(), ["old", "plan.dxf"])
        self.assertEqual(self.path("old/plan.dxf.bak").read_bytes(), FLAT.read_bytes())
        self.run_ok("restore", plan, "--backup-dir", self.path("old"), "--from",
                    self.path("old/plan.dxf.bak"))
        self.assertEqual(plan.read_bytes(), FLAT.read_bytes())
        message = self.fails(5, "paint", plan, "--layer", "A-WALL*", "--rgb", "9,9,9",
                             "--in-place", "--backup-dir", self.path("none"))
        self.assertIn("there is no folder", message)
        self.assertEqual(plan.read_bytes(), FLAT.read_bytes())


class PlacesTest(SavingTest):
    """What can be known before a drawing is read is looked at before."""

    def test_where_the_picture_cannot_go_no_drawing_is_written(self):
        plan = self.plan()
        os.mkfifo(self.path("pipe.png"))
        for picture in ("none/x.png", "pipe.png"):
            self.fails(5, "break", plan, "-o", self.path("o.dxf"), "--picture",
                       self.path(picture))
            self.fails(5, "break", plan, "--in-place", "--picture", self.path(picture))
        self.assertEqual(self.names(), ["pipe.png", "plan.dxf"])
        self.assertEqual(plan.read_bytes(), FLAT.read_bytes())

    def test_a_missing_folder_of_results_is_told_before_reading(self):
        message = self.fails(5, "break", self.path("pipe"), "-o", self.path("none/o.dxf"))
        self.assertIn("there is no folder", message)
        self.fails(2, "break", self.plan(), "-o", self.path("o.dxf"), "--backup-dir", self.folder)


class TwoRunsTest(SavingTest):
    def test_of_two_runs_on_one_drawing_one_is_refused_or_waits_for_the_other(self):
        # Each run scales by 2: whatever the order, runs that succeed must all be in the drawing.
        space = self.draw("large.dxf", "R2000")
        for i in range(8000):
            space.add_line((i, 0), (i, 16))
        plan = self.save("large.dxf")
        factor = 1
        for _ in range(6):
            runs = [subprocess.Popen([cli.QUOIN, "rescale", plan, "--drawing-factor", "2"],
                                     stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
                    for _ in range(3)]
            outputs = [(run.communicate()[0], run.returncode) for run in runs]
            for text, code in outputs:
                self.assertIn(code, (0, 5), text)
                factor *= 2 if code == 0 else 1
                if code == 5:
                    self.assertIn(b"since it was read", text)
        lines = list(cli.read(plan)[0].modelspace())
        self.assertEqual(len(lines), 8000)
        self.assertEqual({round(line.dxf.end.y / factor, 9) for line in lines}, {16.0})
        self.assertFalse([name for name in self.names() if name.endswith(".tmp")])


class StreamsTest(SavingTest):
    COMMANDS = (["info", FLAT], ["--help"], ["break", "--help"], ["--version"],
                ["extents", FLAT], ["break", FLAT, "--dry-run"],
                ["break", FLAT, "--dry-run", "--report", "json"])

    def test_a_full_standard_output_is_an_error(self):
        for arguments in self.COMMANDS:
            with open("/dev/full", "wb") as full:
                result = subprocess.run([cli.QUOIN, *arguments], stdout=full, check=False,
                                        stderr=subprocess.PIPE)
            self.assertEqual(result.returncode, 5, arguments)
            self.assertIn(b"quoin: the standard output cannot be written", result.stderr, arguments)

    def test_a_closed_standard_output_is_an_error(self):
        for arguments in self.COMMANDS:
            result = subprocess.run(["bash", "-c", 'exec "$0" "$@" >&-', cli.QUOIN, *arguments],
                                    check=False, stderr=subprocess.PIPE)
            self.assertEqual(result.returncode, 5, arguments)
            self.assertIn(b"the standard output cannot be written", result.stderr)

    def test_a_picture_that_finds_no_room_does_not_hide_that_the_drawing_is_there(self):
        plan = self.plan()
        target, picture = self.path("o.dxf"), self.path("o.png")
        most = len(FLAT.read_bytes()) + 15000  # the drawing has room, the picture has not

        def limit():
            signal.signal(signal.SIGXFSZ, signal.SIG_IGN)
            resource.setrlimit(resource.RLIMIT_FSIZE, (most, most))

        result = subprocess.run([cli.QUOIN, "break", plan, "-o", target, "--picture", picture],
                                check=False, capture_output=True, preexec_fn=limit,
                                restore_signals=False)
        self.assertEqual(result.returncode, 5, result.stderr)
        self.assertIn(f"the drawing is written: {target}".encode(), result.stderr)
        self.assertTrue(target.exists())
        self.assertEqual(self.names(), ["o.dxf", "plan.dxf"])

    def test_closed_streams_never_become_files(self):
        plan = self.plan()
        result = subprocess.run(
            ["bash", "-c", 'exec "$0" "$@" <&- >&- 2>&-', cli.QUOIN, "rescale", plan,
             "--drawing-factor", "2"], check=False)
        self.assertEqual(result.returncode, 5)
        for path in (plan, self.path("plan.dxf.bak")):
            self.assertNotIn(b"scal", path.read_bytes())
            self.assertEqual(cli.read(path)[1], cli.read(FLAT)[1])

    def test_a_reader_that_goes_away_ends_the_run_quietly(self):
        result = subprocess.run(["bash", "-c", '"$0" info "$1" | true; echo "${PIPESTATUS[0]}"',
                                 cli.QUOIN, FLAT], check=False, capture_output=True)
        self.assertEqual(result.stderr, b"")
        self.assertIn(int(result.stdout), (0, 128 + signal.SIGPIPE))


class WaitingTest(SavingTest):
    """Pipes and devices in place of drawings."""

    def run_and_stop(self, sent, *arguments):
        run = subprocess.Popen([cli.QUOIN, *map(str, arguments)], stdout=subprocess.PIPE,
                               stderr=subprocess.PIPE)
        time.sleep(0.7)
        self.assertIsNone(run.poll(), "it did not wait")
        run.send_signal(sent)
        began = time.monotonic()
        message = run.communicate(timeout=20)[1]
        self.assertLess(time.monotonic() - began, 5)
        self.assertEqual(run.returncode, 130, message)
        self.assertIn(b"interrupted", message)

    def test_a_pipe_that_nobody_writes_to_is_given_up_on_request(self):
        pipe = self.path("pipe")
        os.mkfifo(pipe)
        self.run_and_stop(signal.SIGTERM, "info", pipe)
        self.run_and_stop(signal.SIGINT, "break", pipe, "-o", self.path("o.dxf"))
        self.assertEqual(self.names(), ["pipe"])

    def test_a_writer_that_stops_writing_is_given_up_on_request(self):
        pipe = self.path("pipe")
        os.mkfifo(pipe)
        writer = os.open(pipe, os.O_RDWR)
        self.addCleanup(os.close, writer)
        os.write(writer, FLAT.read_bytes()[:20000])
        self.run_and_stop(signal.SIGINT, "info", pipe)

    def test_a_drawing_comes_through_a_pipe(self):
        pipe = self.path("pipe")
        os.mkfifo(pipe)
        # The writer comes late: the first look finds nobody.
        with subprocess.Popen(["bash", "-c", 'sleep 0.5; cat "$0" > "$1"', FLAT, pipe]):
            text = self.run_ok("info", pipe)
        self.assertIn("A-WALL-EXT", text)

    def test_a_device_without_end_is_no_drawing(self):
        began = time.monotonic()
        self.assertIn("this is no drawing", self.fails(3, "info", "/dev/zero"))
        self.assertLess(time.monotonic() - began, 5)
        self.assertIn("the file is empty", self.fails(3, "info", "/dev/null"))

    def test_a_pipe_without_end_stops_at_the_memory(self):
        with open(cli.QUOIN, "rb") as program:
            if b"__asan_init" in program.read():
                self.skipTest("the address sanitizer takes any amount of address space")

        def with_little_memory():
            resource.setrlimit(resource.RLIMIT_AS, (1 << 30, 1 << 30))

        result = subprocess.run(
            ["bash", "-c", '(printf "  0\\nSECTION\\n"; yes "  0") | "$0" info /dev/stdin; '
                           'echo "${PIPESTATUS[1]}"', cli.QUOIN],
            check=False, capture_output=True, timeout=120, preexec_fn=with_little_memory)
        self.assertEqual(result.stdout, b"3\n", result.stderr)
        self.assertIn(b"too large for the memory", result.stderr)


if __name__ == "__main__":
    unittest.main(argv=[sys.argv[0], *sys.argv[1:]], verbosity=1)
