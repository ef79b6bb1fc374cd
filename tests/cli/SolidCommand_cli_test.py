#!/usr/bin/python3
"""End-to-end runs of `quoin solid`.

usage: SolidCommand_cli_test.py [UNITTEST ARGUMENT...]
The environment is that of quoin_cli_test.py, whose helpers it uses.
"""

import unittest

import quoin_cli_test as cli


class SolidTest(cli.CliTest):
    def rooms(self):
        space = self.draw("axes.dxf", **{"$INSUNITS": 4})
        for start, end in (((0, 0), (4000, 0)), ((4000, 0), (4000, 3000)),
                           ((4000, 3000), (0, 3000)), ((0, 3000), (0, 0)),
                           ((4000, 0), (8000, 0))):
            space.add_line(start, end, dxfattribs={"layer": "AXIS"})
        return self.save("axes.dxf")

    def solid(self, name):
        return self.report("solid", self.rooms(), "--layer", "AXIS", "--left", "100", "--right",
                           "100", "--height", "2800", "-o", self.path(name),
                           "--picture", self.path("p.png"))

    def test_every_wall_is_a_closed_body_in_an_obj_file(self):
        self.solid("m.obj")
        vertices, groups = [], {}
        for line in self.path("m.obj").read_text().splitlines():
            words = line.split()
            if words[0] == "v":
                vertices.append(tuple(map(float, words[1:])))
            elif words[0] == "g":
                faces = groups.setdefault(words[1], [])
            elif words[0] == "f":
                faces.append([int(word) for word in words[1:]])
        self.assertEqual(len(groups), 5)
        for faces in groups.values():
            edges = {}
            volume = 0.0
            for face in faces:
                for a, b in zip(face, face[1:] + face[:1]):
                    edges[(a, b)] = edges.get((a, b), 0) + 1
                a = vertices[face[0] - 1]
                for second, third in zip(face[1:], face[2:]):
                    b, c = vertices[second - 1], vertices[third - 1]
                    volume += (a[0] * (b[1] * c[2] - b[2] * c[1]) -
                               a[1] * (b[0] * c[2] - b[2] * c[0]) +
                               a[2] * (b[0] * c[1] - b[1] * c[0])) / 6
            # Every edge is walked once in each direction: the body is closed and oriented.
            for (a, b), count in edges.items():
                self.assertEqual((count, edges.get((b, a))), (1, 1))
            self.assertGreater(volume, 0)

    def test_a_dxf_model_holds_its_faces(self):
        report = self.solid("m.dxf")
        after, findings = cli.read(self.path("m.dxf"))
        self.assertEqual(findings, [])
        self.assertEqual(len(after.modelspace().query("3DFACE")), 10 * len(report["walls"]))

    def test_a_height_of_nothing_is_refused(self):
        self.fails(2, "solid", self.rooms(), "--layer", "AXIS", "--left", "1", "--right", "1",
                   "--height", "0", "-o", self.path("m.obj"))


if __name__ == "__main__":
    unittest.main()
