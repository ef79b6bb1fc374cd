#!/usr/bin/python3
"""End-to-end runs of `quoin` on DWG drawings: the published ones of several versions.

usage: dwg_cli_test.py [UNITTEST ARGUMENT...]
The environment is that of quoin_cli_test.py, whose helpers it uses.
"""

import pathlib
import subprocess
import sys
import unittest

import quoin_cli_test as cli

# Versions that are written too; the others are read.
WRITTEN = ("AC1014", "AC1015", "AC1018", "AC1024", "AC1027", "AC1032")
READ_ONLY = ("AC1021",)


class DwgCase(cli.CliTest):
    """What the test classes below share."""

    def sample(self, version):
        plan = cli.SHARED / f"acadsharp_sample_{version}.dwg"
        if not plan.is_file():
            self.skipTest("no shared drawings here")
        return plan

    def lines_of(self, plan):
        """The lines of a drawing by handle, as independent eyes see a DXF copy of it."""
        copy = self.path("copy.dxf")
        self.run_ok("convert", plan, "-o", copy, "--leave-behind")
        space = cli.read(copy)[0].modelspace()
        return {e.dxf.handle: (tuple(e.dxf.start), tuple(e.dxf.end))
                for e in space if e.dxftype() == "LINE"}

    def copy_of(self, plan, name="copy.dxf"):
        """A DXF copy as ezdxf reads it; it must find nothing odd."""
        copy = self.path(name)
        self.run_ok("convert", plan, "-o", copy, "--leave-behind")
        document, findings = cli.read(copy)
        self.assertEqual(findings, [])
        return document

    def records_of(self, plan):
        """Every record of a drawing by handle, and every header variable by name, as tags."""
        copy = self.path("records.dxf")
        self.run_ok("convert", plan, "-o", copy, "--leave-behind")
        with open(copy, "rb") as stream:
            codec = "cp1252" if plan.read_bytes()[:6] < b"AC1021" else "utf-8"
            lines = stream.read().decode(codec).split("\r\n")
        records, record = {}, []
        for code, value in zip(map(int, lines[:-1:2]), lines[1::2]):
            if code in (0, 9):
                record = []
            record.append((code, value))
            if code == 9:
                records[value] = record
            elif code in (5, 105) and record[0][0] == 0:
                records.setdefault(value, record)
        return records

    def difference(self, before, after):
        """Handles that are other ones, new ones and gone ones; dates and the next handle aside."""
        old, new = self.records_of(before), self.records_of(after)
        names = {name for name in old.keys() & new.keys() if old[name] != new[name]}
        return names - {"$HANDSEED"}, new.keys() - old.keys(), old.keys() - new.keys()

    def handles_on(self, document, *layers):
        """On layers of these names, which R14 has in capitals."""
        def layer_of(entity):
            if entity.dxf.is_supported("layer"):
                return entity.dxf.layer
            return entity.xtags.get_subclass("AcDbEntity").get_first_value(8)
        names = {layer.lower() for layer in layers}
        return {e.dxf.handle for e in document.modelspace() if layer_of(e).lower() in names}


class DwgTest(DwgCase):
    def test_chinese_names_and_numbers_of_any_size(self):
        for version in WRITTEN:
            with self.subTest(version):
                out, again = self.path(f"{version}.dwg"), self.path(f"{version}-2.dwg")
                self.run_ok("draw", self.sample(version), "--from", "1e9,0.1", "--to",
                            "1000000000.125,-1e-300", "--layer", "\u5899\u4f53", "-o", out)
                self.run_ok("draw", out, "--from", "0,-2000", "--to", "9,-2000", "--layer",
                            "\u5899\u4f53", "--same-layer", "-o", again)
                layers = [row["name"] for row in self.report("info", again)["layers"]]
                self.assertIn("\u5899\u4f53", layers)
                line = self.copy_of(again).modelspace().query("LINE[layer=='\u5899\u4f53']").first
                self.assertEqual((tuple(line.dxf.start), tuple(line.dxf.end)),
                                 ((1e9, 0.1, 0), (1000000000.125, -1e-300, 0)))

    def test_info_tells_version_and_what_is_closed(self):
        for version in WRITTEN + READ_ONLY:
            with self.subTest(version):
                report = self.report("info", self.sample(version))
                self.assertEqual((report["format"], report["acadVersion"]), ("DWG", version))
                self.assertIn("3DSOLID", report["closed"])
                self.assertEqual(bool(report["readOnly"]), version in READ_ONLY)

    def test_one_drawing_measures_alike_in_every_version(self):
        reports = [self.report("extents", self.sample(version)) for version in WRITTEN]
        for report in reports[1:]:
            self.assertEqual(report["entities"], reports[0]["entities"])
            for here, there in zip(report["extents"], reports[0]["extents"]):
                for one, other in zip(here, there):
                    self.assertAlmostEqual(one, other, places=6)

    def test_a_drawing_and_its_twin_measure_alike(self):
        for version in ("AC1015", "AC1018", "AC1027", "AC1032"):
            twin = cli.SHARED / f"acadsharp_sample_{version}_ascii.dxf"
            with self.subTest(version):
                self.assertEqual(self.report("info", self.sample(version))["entities"],
                                 self.report("info", twin)["entities"])

    def test_lines_are_drawn_cut_and_merged_and_nothing_else_changes(self):
        for version in WRITTEN:
            with self.subTest(version):
                plan = self.sample(version)
                names = [self.path(f"{version}-{step}.dwg") for step in range(4)]
                # A layer that the drawing does not have with a line, one that goes on from it,
                # both as one, and a line that cuts it.
                self.run_ok("draw", plan, "--from", "0,-1000", "--to", "600,-1000",
                            "--layer", "WALL", "-o", names[0])
                self.run_ok("draw", names[0], "--from", "600,-1000", "--to", "1000,-1000",
                            "--layer", "WALL", "-o", names[1])
                self.run_ok("merge", names[1], "--layer", "WALL", "-o", names[2])
                self.run_ok("draw", names[2], "--from", "500,-1000", "--to", "500,-500",
                            "--layer", "WALL", "-o", names[3])
                before = self.lines_of(plan)
                for name, count in zip(names, (1, 2, 1, 3)):
                    self.assertEqual(name.read_bytes()[:6], version.encode())
                    after = self.lines_of(name)
                    self.assertEqual({h: after[h] for h in before}, before)
                    self.assertEqual(len(after) - len(before), count)
                drawn = [sorted(line) for handle, line in self.lines_of(names[3]).items()
                         if handle not in before]
                self.assertEqual(sorted(drawn), [[(0, -1000, 0), (500, -1000, 0)],
                                                 [(500, -1000, 0), (500, -500, 0)],
                                                 [(500, -1000, 0), (1000, -1000, 0)]])

    def test_neighbours_are_erased_together(self):
        for version in WRITTEN:
            with self.subTest(version):
                before, plan = self.lines_of(self.sample(version)), self.sample(version)
                for step, (start, end, layer) in enumerate((
                        ("0,-1000", "300,-1000", "WALL"), ("300,-1000", "600,-1000", "WALL"),
                        ("600,-1000", "1000,-1000", "WALL"), ("0,-2000", "9,-2000", "OTHER"))):
                    drawn = self.path(f"{version}-{step}.dwg")
                    self.run_ok("draw", plan, "--from", start, "--to", end, "--layer", layer,
                                "-o", drawn)
                    plan = drawn
                merged = self.path(f"{version}-merged.dwg")
                self.run_ok("merge", plan, "--layer", "WALL", "-o", merged)
                after = self.lines_of(merged)
                self.assertEqual({h: after[h] for h in before}, before)
                drawn = sorted(sorted(line) for h, line in after.items() if h not in before)
                self.assertEqual(drawn, [[(0, -2000, 0), (9, -2000, 0)],
                                         [(0, -1000, 0), (1000, -1000, 0)]])

    def test_a_drawing_that_nothing_changes_stays_byte_for_byte(self):
        for version in WRITTEN + READ_ONLY:
            plan = self.path(f"{version}.dwg")
            plan.write_bytes(self.sample(version).read_bytes())
            before = plan.read_bytes()
            self.run_ok("to-origin", plan, "--at", "center", "--dry-run", "--leave-behind")
            self.run_ok("break", plan, "--layer", "Layer2", "--in-place")
            self.assertEqual(plan.read_bytes(), before)

    def test_a_result_takes_the_format_of_its_drawing(self):
        plan = self.sample("AC1032")
        message = self.fails(2, "break", plan, "--layer", "*", "-o", self.path("o.dxf"))
        self.assertIn("quoin convert", message)

    def test_a_version_that_is_only_read_is_not_written(self):
        for version in READ_ONLY:
            plan = self.sample(version)
            message = self.fails(5, "draw", plan, "--from", "0,0", "--to", "9,9", "--layer", "0",
                                 "-o", self.path("o.dwg"))
            self.assertIn("read, and not written", message)
            self.assertFalse(self.path("o.dwg").exists())


class DwgCommandsTest(DwgCase):
    """Every command changes what it was asked to change, and no other record."""

    def test_paint(self):
        for version in WRITTEN:
            with self.subTest(version):
                plan, out = self.sample(version), self.path("o.dwg")
                self.run_ok("paint", plan, "--layer", "Layer2", "--rgb", "200,60,20", "-o", out)
                document = self.copy_of(out)
                painted = self.handles_on(document, "Layer2")
                self.assertEqual(self.difference(plan, out), (painted, set(), set()))
                for handle in painted:
                    entity = document.entitydb[handle]
                    self.assertEqual(entity.rgb, None if version <= "AC1015" else (200, 60, 20))

    def test_what_is_closed_is_not_painted(self):
        for version in WRITTEN:
            message = self.fails(6, "paint", self.sample(version), "--layer", "*", "--rgb",
                                 "1,2,3", "-o", self.path("o.dwg"))
            self.assertRegex(message, "MESH 343 of .*it is closed")
            self.assertFalse(self.path("o.dwg").exists())

    def test_match_properties(self):
        for version in WRITTEN:
            with self.subTest(version):
                plan, out = self.sample(version), self.path("o.dwg")
                before = self.copy_of(plan)
                source = before.modelspace().query("LINE[layer=='Layer_Lt_dash']i").first
                matched = self.handles_on(before, "Layer2")
                self.run_ok("match-properties", plan, "--from", source.dxf.handle, "--layer",
                            "Layer2", "-o", out)
                self.assertEqual(self.difference(plan, out), (matched, set(), set()))
                after = self.copy_of(out)
                self.assertEqual({after.entitydb[handle].dxf.layer for handle in matched},
                                 {source.dxf.layer})

    def test_styles(self):
        for version in WRITTEN:
            with self.subTest(version):
                plan, first, out = self.sample(version), self.path("1.dwg"), self.path("2.dwg")
                self.run_ok("style", "mline", plan, "--name", "WALL-1", "--start-cap", "-o", first)
                self.run_ok("style", "dim", first, "--name", "ARCH-1", "--scale", "50", "-o", out)
                before, after = self.copy_of(plan), self.copy_of(out)
                style = after.mline_styles.get("WALL-1")
                self.assertEqual(style.dxf.flags, 16)
                self.assertEqual([element.offset for element in style.elements], [0.5, -0.5])
                self.assertEqual(after.dimstyles.get("ARCH-1").dxf.dimtxt, 2.5)
                # What lists the styles: their dictionary and their table.
                changed, added, erased = self.difference(plan, out)
                self.assertLessEqual(changed, {before.rootdict["ACAD_MLINESTYLE"].dxf.handle,
                                               before.dimstyles.head.dxf.handle})
                self.assertEqual((len(added), erased), (2, set()))

    def test_outline_and_solid(self):
        for version in WRITTEN:
            with self.subTest(version):
                plan, out = self.sample(version), self.path("o.dwg")
                words = ("--layer", "Layer*", "--left", "1", "--right", "2")
                lines = self.report("outline", plan, *words, "-o", out)["added"]
                document = self.copy_of(out)
                drawn = self.handles_on(document, "WALL-OUTLINE")
                self.assertEqual(len(drawn), lines)
                layer = document.layers.get("WALL-OUTLINE").dxf.handle
                changed, added, erased = self.difference(plan, out)
                self.assertLessEqual(changed, {document.layers.head.dxf.handle})
                self.assertEqual((added, erased), (drawn | {layer}, set()))
                self.path("twin").mkdir(exist_ok=True)
                twin = self.copy(plan)
                for model in ("o.obj", "o.glb"):
                    self.run_ok("solid", plan, *words, "--height", "9", "-o", self.path(model))
                    self.run_ok("solid", twin, *words, "--height", "9", "-o",
                                self.path("twin") / model)
                for model in ("o.obj", "o.mtl", "o.glb"):
                    self.assertEqual(self.path(model).read_bytes(),
                                     (self.path("twin") / model).read_bytes())

    def copy(self, plan):
        copy = self.path("copy.dxf")
        self.run_ok("convert", plan, "-o", copy, "--leave-behind")
        return copy

    def test_trim_axes(self):
        for version in WRITTEN:
            with self.subTest(version):
                plan = self.sample(version)
                for step, (start, end) in enumerate((("0,-900", "900,-900"), ("0,-990", "0,-800"),
                                                     ("700,-990", "700,-800"))):
                    drawn = self.path(f"{version}-{step}.dwg")
                    self.run_ok("draw", plan, "--from", start, "--to", end, "--layer",
                                f"GRID-{step}", "--same-layer", "-o", drawn)
                    plan = drawn
                out = self.path("o.dwg")
                self.run_ok("trim-axes", plan, "--layer", "GRID-*", "-o", out)
                changed, added, erased = self.difference(plan, out)
                self.assertEqual((added, erased), (set(), set()))
                grid = self.handles_on(self.copy_of(out), "GRID-0", "GRID-1", "GRID-2")
                self.assertEqual(len(grid), 3)
                self.assertLessEqual(changed, grid)
                lines = self.lines_of(out)
                self.assertIn(((0, -900, 0), (700, -900, 0)), [lines[handle] for handle in grid])

    def test_to_origin(self):
        for version in WRITTEN:
            with self.subTest(version):
                plan, out = self.sample(version), self.path(f"{version}.dwg")
                message = self.fails(6, "to-origin", plan, "--at", "left-bottom", "-o", out)
                self.assertIn("3DSOLID", message)
                self.assertFalse(out.exists())
                report = self.report("to-origin", plan, "--at", "left-bottom", "-o", out,
                                     "--leave-behind")
                before, after = self.lines_of(plan), self.lines_of(out)
                x, y = report["basePoint"][:2]
                for handle, line in before.items():
                    for old, new in zip(line, after[handle]):
                        self.assertAlmostEqual(old[0] - x, new[0], places=9)
                        self.assertAlmostEqual(old[1] - y, new[1], places=9)
                changed, added, erased = self.difference(plan, out)
                self.assertEqual((added, erased), (set(), set()))
                left = {row["source"] for row in report["leftBehind"]}
                self.assertEqual(changed & left, set())
                self.assertIn("it is closed", {row["reason"].split(",")[0]
                                               for row in report["leftBehind"]})
                self.assertFalse(any("byte" in row for row in report["leftBehind"]))

    def test_rescale_by_a_factor_and_to_other_units(self):
        for version in WRITTEN:
            with self.subTest(version):
                plan = self.path(f"{version}.dwg")
                plan.write_bytes(self.sample(version).read_bytes())
                before = plan.read_bytes()
                self.run_ok("rescale", plan, "--drawing-factor", "2", "--leave-behind")
                self.assertEqual(self.path(f"{version}.dwg.bak").read_bytes(), before)
                old, new = self.lines_of(self.sample(version)), self.lines_of(plan)
                for handle, line in old.items():
                    self.assertEqual(tuple(tuple(2 * c for c in end) for end in line), new[handle])
                out = self.path("metres.dwg")
                told = self.run_ok("rescale", plan, "--from-units", "mm", "--to-units", "m", "-o",
                                   out, "--leave-behind")
                if version == "AC1014":
                    self.assertIn("R14 drawings name no units", told)
                    continue
                document = self.copy_of(out)
                self.assertEqual((document.header["$INSUNITS"], document.header["$MEASUREMENT"]),
                                 (6, 1))
                metres = self.lines_of(out)
                for handle, line in new.items():
                    for one, other in zip(line, metres[handle]):
                        for here, there in zip(one, other):
                            self.assertAlmostEqual(here / 1000, there, places=12)
                # The header stays the same but for what was asked for.
                changed, added, erased = self.difference(plan, out)
                self.assertEqual((added, erased), (set(), set()))
                self.assertLessEqual({name for name in changed if name.startswith("$")},
                                     {"$INSUNITS", "$MEASUREMENT", "$EXTMIN", "$EXTMAX", "$LIMMIN",
                                      "$LIMMAX", "$INSBASE"})

    def test_restore(self):
        plan = self.path("plan.dwg")
        plan.write_bytes(self.sample("AC1018").read_bytes())
        before = plan.read_bytes()
        self.run_ok("draw", plan, "--from", "0,-1000", "--to", "9,-1000", "--layer", "WALL",
                    "--in-place")
        drawn = plan.read_bytes()
        self.assertNotEqual(drawn, before)
        self.run_ok("restore", plan)
        self.assertEqual(plan.read_bytes(), before)
        self.run_ok("restore", plan)
        self.assertEqual(plan.read_bytes(), drawn)

    def test_run(self):
        module = pathlib.Path(cli.QUOIN).resolve().parents[1] / "test_modules" / "Commands.so"
        for version in WRITTEN:
            with self.subTest(version):
                plan, out = self.sample(version), self.path("o.dwg")
                self.run_ok("run", module, "ADDLINE", plan, "-o", out, "--", "10,20", "500")
                changed, added, erased = self.difference(plan, out)
                self.assertEqual((changed, len(added), erased), (set(), 1, set()))
                self.assertEqual(self.lines_of(out)[added.pop()], ((10, 20, 0), (510, 20, 0)))

    def test_pictures_are_those_of_the_copy(self):
        # Of one name, since titles tell it.
        folders = [self.path("dwg"), self.path("dxf")]
        for folder in folders:
            folder.mkdir()
        for version in WRITTEN + READ_ONLY:
            (folders[0] / "plan").write_bytes(self.sample(version).read_bytes())
            (folders[1] / "plan").write_bytes(self.copy(self.sample(version)).read_bytes())
            for command in (("extents",), ("break", "--layer", "*", "--dry-run"),
                            ("solid", "--layer", "Layer*", "--left", "1", "--right", "1",
                             "--height", "5", "-o", self.path("o.obj"))):
                with self.subTest(version + " " + command[0]):
                    pictures = []
                    for folder in folders:
                        picture = folder / "picture.svg"
                        self.run_ok(command[0], folder / "plan", *command[1:], "--picture", picture)
                        # A copy leaves out what cannot be read, and so what cannot be drawn.
                        pictures.append([row for row in picture.read_bytes().split(b"\n")
                                         if b">not drawn: " not in row])
                    self.assertEqual(*pictures)

    def test_several_versions_in_one_run(self):
        plans = []
        for version in WRITTEN:
            plans.append(self.path(f"{version}.dwg"))
            plans[-1].write_bytes(self.sample(version).read_bytes())
        self.run_ok("rescale", *plans, "--drawing-factor", "0.5", "--leave-behind", "--jobs", "2")
        for plan in plans:
            self.assertEqual(plan.read_bytes()[:6].decode(), plan.stem)
            self.assertTrue(self.path(plan.name + ".bak").exists())


class DwgTwinsTest(DwgCase):
    """Drawings that another program saved as DWG and as DXF."""

    def twins(self):
        for plan in sorted(cli.SHARED.glob("*.dwg")):
            for ending in (".dxf", "_ascii.dxf", "_binary.dxf"):
                twin = plan.with_name(plan.stem + ending)
                if twin.is_file():
                    yield plan, twin

    def test_every_difference_has_its_reason(self):
        self.sample("AC1032")
        script = cli.SOURCE / "scripts" / "compare_dwg_twins.py"
        result = subprocess.run([sys.executable, script, "--check",
                                 cli.SOURCE / "docs" / "dwg-check.md", cli.SHARED, cli.QUOIN],
                                capture_output=True, text=True)
        self.assertEqual(result.returncode, 0, result.stderr)

    def test_reports_differ_where_the_document_says(self):
        self.sample("AC1032")
        # What is not read has no extents, and tables are not moved.
        unread = {"extents", "kindsWithoutExtents", "kindsWithoutTransform"}
        of_the_file = {"bytes", "closed", "format", "input", "readInPart", "readOnly", "records",
                       "savedBy"}
        for command, differ in ((("info",), unread | of_the_file),
                                (("extents",), unread | {"input"}),
                                (("break", "--layer", "*", "--dry-run"), {"input"})):
            for plan, twin in self.twins():
                if command[0] == "break" and "dynamic" in plan.name:
                    continue  # their lines stand in blocks
                with self.subTest(twin.name + " " + command[0]):
                    one = self.report(command[0], plan, *command[1:])
                    other = self.report(command[0], twin, *command[1:])
                    names = {name for name in one.keys() | other.keys()
                             if one.get(name) != other.get(name)}
                    self.assertLessEqual(names, differ)


    def test_pictures_of_bodies_are_the_very_ones(self):
        self.sample("AC1032")
        # Of one name, since titles tell it.
        plan, picture = self.path("plan"), self.path("picture.svg")
        for version in ("AC1015", "AC1018", "AC1021", "AC1027", "AC1032"):
            with self.subTest(version):
                pictures = []
                for name in (f"acadsharp_sample_{version}.dwg",
                             f"acadsharp_sample_{version}_ascii.dxf"):
                    plan.write_bytes((cli.SHARED / name).read_bytes())
                    self.run_ok("solid", plan, "--layer", "Layer*", "--left", "1", "--right", "1",
                                "--height", "5", "-o", self.path("o.obj"), "--picture", picture)
                    # Which of two bodies apart is painted first hangs on the last digits.
                    pictures.append(sorted(picture.read_bytes().split(b"\n")))
                self.assertEqual(*pictures)


class DwgConvertTest(DwgCase):
    def test_what_is_carried_over_in_part_is_named(self):
        plan = self.sample("AC1032")
        partly = self.report("info", plan)["readInPart"]
        self.assertEqual(sorted(partly), ["ACAD_TABLE", "MULTILEADER", "SHAPE"])
        report = self.report("convert", plan, "-o", self.path("o.dxf"), "--leave-behind")
        self.assertEqual(report["carriedInPart"], partly)
        self.assertIn("a part of", self.fails(6, "convert", plan, "-o", self.path("p.dxf")))

    def test_what_is_not_read_keeps_it_from_being_written(self):
        message = self.fails(6, "convert", self.sample("AC1032"), "-o", self.path("o.dxf"))
        self.assertIn("3DSOLID", message)
        self.assertIn("--leave-behind", message)
        self.assertFalse(self.path("o.dxf").exists())

    def test_the_copy_is_read_by_others(self):
        for version in WRITTEN + READ_ONLY:
            with self.subTest(version):
                copy = self.path(f"{version}.dxf")
                self.run_ok("convert", self.sample(version), "-o", copy, "--leave-behind")
                document, findings = cli.read(copy)
                self.assertEqual(len(document.modelspace()), 163 - 6)
                self.assertEqual(findings, [])

    def test_a_name_of_another_format(self):
        self.fails(2, "convert", self.sample("AC1015"), "-o", self.path("o.png"),
                   "--leave-behind")


if __name__ == "__main__":
    unittest.main()
