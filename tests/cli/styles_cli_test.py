#!/usr/bin/python3
"""End-to-end runs of the commands for styles and entity properties.

usage: styles_cli_test.py [UNITTEST ARGUMENT...]
The environment is that of quoin_cli_test.py, whose helpers it uses.
"""

import sys
import unittest

import quoin_cli_test as cli

VERSIONS = ["R12", "R2000", "R2004", "R2007", "R2010", "R2013", "R2018"]
DIM_SETTINGS = {"dimexe": 2.5, "dimexo": 8.0, "dimasz": 2.0, "dimtxt": 2.5, "dimtad": 1,
                "dimtix": 1, "dimtofl": 1, "dimrnd": 0.0, "dimgap": 1.5, "dimtih": 0, "dimtoh": 0,
                "dimlfac": 0.01, "dimscale": 8000.0}
DIM_SETTINGS_SINCE_R13 = {"dimjust": 0, "dimdec": 0}
DIM_SETTINGS_SINCE_R2000 = {"dimtmove": 2, "dimlunit": 2}


class StylesTest(cli.CliTest):
    """What the test classes below share."""

    def shared(self):
        drawings = sorted(cli.SHARED.glob("*.dxf")) if cli.SHARED.is_dir() else []
        if not drawings:
            self.skipTest("no shared drawings here")
        return drawings

    def plan(self, version="R2010"):
        space = self.draw("plan.dxf", version)
        document = self.documents["plan.dxf"]
        document.layers.add("A-WALL", color=3)
        document.layers.add("A-NEW")
        document.layers.add("A-LOCKED").lock()
        document.linetypes.add("DASHED", [0.6, 0.5, -0.1])
        space.add_line((0, 0), (1000, 0), dxfattribs={"layer": "A-WALL", "color": 2,
                                                      "linetype": "DASHED"})
        space.add_line((0, 50), (1000, 50), dxfattribs={"layer": "A-NEW"})
        space.add_polyline2d([(0, 100), (900, 100), (900, 200)], dxfattribs={"layer": "A-NEW"})
        space.add_line((0, 300), (1000, 300), dxfattribs={"layer": "A-LOCKED"})
        return self.save("plan.dxf")

    def handle_of(self, path, layer):
        document, _ = cli.read(path)
        return next(entity.dxf.handle for entity in document.modelspace()
                    if entity.dxf.layer == layer)


if __name__ == "__main__":
    unittest.main(argv=[sys.argv[0], *sys.argv[1:]], verbosity=1)
