#!/usr/bin/python3
"""End-to-end runs of `quoin info`.

usage: InfoCommand_cli_test.py [UNITTEST ARGUMENT...]
The environment is that of quoin_cli_test.py, whose helpers it uses.
"""

import unittest

import quoin_cli_test as cli


class InfoTest(cli.CliTest):
    def test_it_tells_version_units_layers_and_extents(self):
        space = self.draw("i.dxf", "R2004", **{"$INSUNITS": 6})
        space.add_line((0, 0), (10, 5), dxfattribs={"layer": "A-WALL"})
        space.add_circle((20, 0), 2, dxfattribs={"layer": "S-COLS"})
        text = self.run_ok("info", self.save("i.dxf"))
        for words in ("R2004", "AC1018", "ASCII", "A-WALL", "[walls]", "1 LINE", "1 CIRCLE",
                      "0,-2,0 to 22,5,0"):
            self.assertIn(words, text)

    def test_it_names_what_cannot_be_measured_or_moved(self):
        space = self.draw("kept.dxf", "R2010")
        space.add_line((0, 0), (10, 5))
        space.new_entity("ACAD_PROXY_ENTITY", {})
        plan = self.save("kept.dxf")
        text = self.run_ok("info", plan)
        self.assertIn("left out, they have none: 1 ACAD_PROXY_ENTITY", text)
        self.assertIn("not to be moved or scaled: 1 ACAD_PROXY_ENTITY", text)

    def test_chinese_names_of_a_gbk_drawing_come_out(self):
        plan = cli.SOURCE / "examples" / "house-gbk" / "house.dxf"
        text = self.run_ok("info", plan)
        self.assertIn("墙", text)
        self.assertIn("ANSI_936", text)


if __name__ == "__main__":
    unittest.main()
