#!/usr/bin/python3
"""End-to-end runs of `quoin extents`.

usage: ExtentsCommand_cli_test.py [UNITTEST ARGUMENT...]
The environment is that of quoin_cli_test.py, whose helpers it uses.
"""

import unittest

import files_cli_test as files


class ExtentsTest(files.FilesTest):
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


if __name__ == "__main__":
    unittest.main()
