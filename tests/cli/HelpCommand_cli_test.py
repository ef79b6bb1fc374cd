#!/usr/bin/python3
"""End-to-end runs of help, completion and the manual page.

usage: HelpCommand_cli_test.py [UNITTEST ARGUMENT...]
The environment is that of quoin_cli_test.py, whose helpers it uses.
"""

import shutil
import subprocess
import unittest

import quoin_cli_test as cli


class HelpTest(cli.CliTest):
    def test_help_version_and_hints(self):
        self.assertEqual(self.run_ok("help", "break"), self.run_ok("break", "--help"))
        self.assertEqual(self.run_ok("-V"), self.run_ok("--version"))
        self.assertIn("did you mean break?", self.fails(2, "help", "brek"))

    def test_what_is_mistyped_is_suggested(self):
        for words, hint in ((("break", "p.dxf", "--laier", "X"), "did you mean --layer?"),
                            (("info", "p.dxf", "--report", "jsn"), "did you mean json?"),
                            (("info",), "DRAWING is missing"),
                            (("solid", "p.dxf", "-o", "m.obj", "--layer", "x", "--height", "abc"),
                             "'abc' is not a number"),
                            (("break", "p.dxf", "--quiet", "--verbose", "--dry-run"),
                             "exclude each other")):
            message = self.fails(2, *words)
            self.assertTrue(message.startswith("quoin: "), message)
            self.assertIn(hint, message)
            self.assertIn(f"quoin {words[0]} --help", message)

    @unittest.skipUnless(shutil.which("groff"), "no groff here")
    def test_the_manual_page_has_no_mistakes(self):
        page = self.run_ok("help", "--man").encode()
        run = subprocess.run(["groff", "-man", "-Kutf8", "-Tutf8", "-ww", "-z"], input=page,
                             capture_output=True, check=False)
        self.assertEqual(run.stderr, b"")

    def test_bash_completes_commands_options_and_values(self):
        script = self.path("quoin.bash")
        script.write_text(self.run_ok("completion", "bash"))
        for line, expected in ((["quoin", "br"], ["break"]),
                               (["quoin", "break", "--lay"], ["--layer"]),
                               (["quoin", "info", "--report", "j"], ["json"]),
                               (["quoin", "style", "m"], ["mline"])):
            program = (f"source {script}; COMP_WORDS=({' '.join(line)}); "
                       f"COMP_CWORD={len(line) - 1}; _quoin; printf '%s\\n' \"${{COMPREPLY[@]}}\"")
            shown = subprocess.run(["bash", "-c", program], capture_output=True, text=True,
                                   check=False)
            self.assertEqual((shown.stdout.split(), shown.stderr), (expected, ""))


if __name__ == "__main__":
    unittest.main()
