#!/usr/bin/python3
"""End-to-end runs of `quoin run`: commands of a client module, alone and on drawings.

usage: RunCommand_cli_test.py [UNITTEST ARGUMENT...]
The environment is that of quoin_cli_test.py; the module is that of tests/rx/modules/Commands.cpp,
beside the program.
"""

import json
import os
import pathlib
import signal
import subprocess
import time
import unittest

import quoin_cli_test as cli

MODULE = pathlib.Path(cli.QUOIN).resolve().parents[1] / "test_modules" / "Commands.so"


class RunTest(cli.CliTest):
    def plan(self, name="plan.dxf"):
        space = self.draw(name)
        space.add_line((0, 0), (1000, 0), dxfattribs={"layer": "WALL"})
        return self.save(name)

    def run_on(self, command, *words):
        return cli.quoin("run", MODULE, command, *words)

    def assert_failed(self, result, code, *words):
        self.assertEqual(result.returncode, code, result.stdout + result.stderr)
        for word in words:
            self.assertIn(word, result.stderr.decode())
        self.assertFalse(self.path("o.dxf").exists())

    def test_arguments_answer_the_prompts_and_the_drawing_is_saved(self):
        plan = self.plan()
        before = plan.read_bytes()
        report = self.report("run", MODULE, "addline", plan, "-o", self.path("o.dxf"),
                             "--report", "json", "--picture", self.path("o.svg"),
                             "--", "10,20", "500")
        lines = cli.lines_of(cli.read(self.path("o.dxf"))[0])
        self.assertEqual(len(lines), 2)
        self.assertEqual(plan.read_bytes(), before)
        self.assertEqual((report["entities"], report["added"], report["erased"]), (2, 1, 0))
        self.assertEqual([entity["kind"] for entity in report["addedEntities"]], ["LINE"])
        self.assertEqual(report["arguments"], ["10,20", "500"])
        self.assertTrue(self.path("o.svg").exists())
        self.assert_no_new_findings(plan, self.path("o.dxf"))

    def report(self, *words):
        # The options come before the words that are passed on.
        return json.loads(self.run_ok(*words))["drawings"][0]

    def test_several_drawings_in_place_in_folders_and_in_no_place(self):
        plans = [self.plan("a.dxf"), self.plan("b.dxf")]
        self.assertEqual(self.run_on("ADDLINE", *plans, "-o", self.path("out"), "--jobs", "2", "--",
                                     "0,9", "5").returncode, 0)
        for name in ("a.dxf", "b.dxf"):
            self.assertEqual(len(cli.lines_of(cli.read(self.path("out") / name)[0])), 2)
        self.assertEqual(self.run_on("ADDLINE", *plans, "--dry-run", "--", "0,9", "5").returncode, 0)
        self.assertEqual(len(cli.lines_of(cli.read(plans[0])[0])), 1)
        result = self.run_on("ADDLINE", *plans, "--in-place", "--", "0,9", "5")
        self.assertEqual(len(cli.lines_of(cli.read(plans[1])[0])), 2)
        self.assertTrue(self.path("b.dxf.bak").exists(), result.stdout)
        self.assertIn(b"2 of 2 drawings done", result.stdout)

    def test_what_the_command_prints_is_part_of_the_report(self):
        plan = self.plan()
        text = self.run_on("TELL", plan, "--dry-run", "--", "one", "two words").stdout.decode()
        self.assertTrue(text.startswith("argument one\nargument two words\nTELL: 1 entity"), text)
        report = self.report("run", MODULE, "TELL", plan, "--dry-run", "--report", "json", "--",
                             "-o", "--")
        self.assertEqual(report["printed"], ["argument -o", "argument --"])
        result = self.run_on("TELL", plan, "-o", "-", "--", "one")
        self.assertEqual(result.stdout, plan.read_bytes())
        self.assertIn(b"argument one", result.stderr)

    def test_without_a_drawing_the_command_prints_by_itself(self):
        self.assertEqual(self.run_ok("run", MODULE, "tell", "--", "a"), "argument a\n")
        self.assertEqual(self.run_ok("run", MODULE, "TELL"), "")
        self.assert_failed(self.run_on("ADDLINE", "--", "0,0", "1"), 8, "no drawing is current")
        self.assert_failed(self.run_on("THROWNUMBER"), 8, "no exception")
        self.assert_failed(self.run_on("ADDLINE"), 2, '"Start point:"')
        self.assert_failed(self.run_on("TELL", "-o", self.path("o.dxf")), 2, "name the drawing")

    def test_prompts_and_arguments_that_do_not_meet_are_named(self):
        words = (self.plan(), "-o", self.path("o.dxf"), "--")
        self.assert_failed(self.run_on("ADDLINE", *words, "0,0"), 2, 'plan.dxf: ADDLINE',
                           '"Length:"', "no argument is left")
        self.assert_failed(self.run_on("ADDLINE", *words, "0,0", "long"), 2, "'long'", '"Length:"')
        result = self.run_on("ADDLINE", *words, "0,0", "5", "6", "7")
        self.assertEqual(result.returncode, 0)
        self.assertIn(b"warning: ADDLINE has not asked for 2 arguments: 6 7", result.stdout)

    def test_a_command_that_throws_leaves_the_files_and_what_it_printed(self):
        plan = self.plan()
        before = plan.read_bytes()
        result = self.run_on("ADDANDTHROW", plan, "-o", self.path("o.dxf"), "--", "0,0", "5")
        self.assert_failed(result, 8, "plan.dxf: ADDANDTHROW has failed: the roof is missing")
        self.assertEqual(result.stdout, b"before the end\n")
        self.assert_failed(self.run_on("ADDANDTHROW", plan, "--in-place", "--", "0,0", "5"), 8)
        self.assertEqual(plan.read_bytes(), before)
        self.assertEqual([path.name for path in self.folder.iterdir()], ["plan.dxf"])

    def test_a_command_that_crashes_takes_no_other_drawing_along(self):
        plan = self.plan()
        self.assert_failed(self.run_on("CRASH", plan, "-o", self.path("o.dxf")), 8, "plan.dxf: ",
                           "the process", "was not written")
        result = self.run_on("CRASH", plan, self.plan("b.dxf"), "-o", self.path("out"))
        self.assert_failed(result, 8, "b.dxf: ", "2 of 2 drawings failed")

    def test_objects_that_stay_open_are_named(self):
        result = self.run_on("LEAVEOPEN", self.plan(), "-o", self.path("o.dxf"), "--", "0,0", "5")
        self.assertEqual(result.returncode, 0, result.stderr)
        self.assertIn(b"warning: LEAVEOPEN has left open: LINE", result.stdout)
        self.assertEqual(len(cli.lines_of(cli.read(self.path("o.dxf"))[0])), 2)

    def test_modules_and_commands_that_are_not_there(self):
        plan = self.plan()
        self.assert_failed(self.run_on("ADLINE", plan, "--dry-run"), 2,
                           "no command ADLINE, did you mean ADDLINE? It has ADDLINE, LEAVEOPEN")
        self.assert_failed(self.run_on("ROOF"), 2, "no command ROOF. It has ADDLINE")
        for module in (self.path("gone.so"), plan, self.folder):
            self.assertIn("cannot load the module",
                          self.fails(70, "run", module, "TELL", plan, "--dry-run"))

    def test_a_command_that_hangs_is_ended(self):
        plan = self.plan()
        for words in ((), (plan, "-o", self.path("o.dxf")),
                      (plan, self.plan("b.dxf"), "-o", self.path("out"))):
            process = subprocess.Popen([cli.QUOIN, "run", MODULE, "HANG", *words],
                                       stdout=subprocess.PIPE, stderr=subprocess.PIPE)
            time.sleep(0.5)
            process.send_signal(signal.SIGINT)
            errors = process.communicate(timeout=20)[1]
            self.assertEqual(process.returncode, 130, errors)
            self.assertIn(b"every file is as it was", errors)
            self.assertEqual([name for name in os.listdir(self.folder) if name.startswith(".")], [])


if __name__ == "__main__":
    unittest.main()
