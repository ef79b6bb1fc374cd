#!/usr/bin/python3
"""End-to-end runs of `quoin picture`.

usage: PictureCommand_cli_test.py [UNITTEST ARGUMENT...]
The environment is that of quoin_cli_test.py, whose helpers it uses.
"""

import os
import re
import struct
import subprocess
import unittest
import zlib

import quoin_cli_test as cli

POINT = 25.4 / 72.0


def pixels(path):
    """Width, height and rows of (red, green, blue) of a PNG without an alpha channel."""
    data = path.read_bytes()
    assert data.startswith(b"\x89PNG")
    at, packed = 8, b""
    while at < len(data):
        (length,), kind = struct.unpack(">I", data[at:at + 4]), data[at + 4:at + 8]
        body = data[at + 8:at + 8 + length]
        if kind == b"IHDR":
            width, height, depth, color = struct.unpack(">IIBB", body[:10])
            assert (depth, color) == (8, 2), "8 bits of red, green and blue"
        elif kind == b"IDAT":
            packed += body
        at += 12 + length
    raw, stride, rows = zlib.decompress(packed), 3 * width, []
    before = bytearray(stride)
    for y in range(height):
        method = raw[y * (stride + 1)]
        line = bytearray(raw[y * (stride + 1) + 1:(y + 1) * (stride + 1)])
        for i in range(stride):
            left = line[i - 3] if i >= 3 else 0
            up, corner = before[i], before[i - 3] if i >= 3 else 0
            if method == 1:
                line[i] = (line[i] + left) & 255
            elif method == 2:
                line[i] = (line[i] + up) & 255
            elif method == 3:
                line[i] = (line[i] + (left + up) // 2) & 255
            elif method == 4:
                guess = left + up - corner
                nearest = min((abs(guess - left), 0, left), (abs(guess - up), 1, up),
                              (abs(guess - corner), 2, corner))[2]
                line[i] = (line[i] + nearest) & 255
        rows.append(line)
        before = line
    return width, height, rows


def colors(path):
    _, _, rows = pixels(path)
    return {tuple(row[i:i + 3]) for row in rows for i in range(0, len(row), 3)}


def shows(path, color):
    """Whether a picture has pixels of this hue, as strong as a thin line between two dots is."""
    return any(all(abs(a - b) <= 140 for a, b in zip(pixel, color)) and
               max(pixel) - min(pixel) >= 100 and
               pixel.index(max(pixel)) == color.index(max(color)) for pixel in colors(path))


def media_boxes(path):
    """Width and height of every page of a PDF, in millimetres."""
    return [(float(width) * POINT, float(height) * POINT) for width, height in
            re.findall(rb"/MediaBox \[ 0 0 ([\d.]+) ([\d.]+) \]", path.read_bytes())]


class PictureTest(cli.CliTest):
    def plan(self, units=4):
        space = self.draw("plan.dxf")
        self.documents["plan.dxf"].units = units
        self.documents["plan.dxf"].layers.add("A-WALL", color=1)
        self.documents["plan.dxf"].layers.add("A-DOOR", color=5)
        self.documents["plan.dxf"].layers.add("A-OFF", color=3).off()
        for y in (0, 3000):
            space.add_line((0, y), (5000, y), dxfattribs={"layer": "A-WALL"})
        space.add_line((0, 0), (0, 3000), dxfattribs={"layer": "A-DOOR"})
        space.add_line((5000, 0), (5000, 3000))
        space.add_line((0, 0), (5000, 3000), dxfattribs={"layer": "A-OFF"})
        space.add_text("KITCHEN <1>", dxfattribs={"insert": (1000, 1000), "height": 300})
        return self.save("plan.dxf")

    def test_colours_are_the_drawings_own(self):
        self.run_ok("picture", self.plan(), "-o", self.path("p.png"))
        for color in ((255, 0, 0), (0, 0, 255)):
            self.assertTrue(shows(self.path("p.png"), color), color)
        self.assertFalse(shows(self.path("p.png"), (0, 255, 0)))
        found = colors(self.path("p.png"))
        self.assertTrue((255, 255, 255) in found and (0, 0, 0) in found)

    def test_themes(self):
        plan = self.plan()
        self.run_ok("picture", plan, "-o", self.path("s.png"), "--theme", "screen")
        self.assertTrue((255, 255, 255) in colors(self.path("s.png")), "index 7")
        self.assertTrue(shows(self.path("s.png"), (255, 0, 0)))
        self.run_ok("picture", plan, "-o", self.path("f.png"), "--theme", "faint")
        self.assertFalse(shows(self.path("f.png"), (255, 0, 0)))
        message = self.fails(2, "picture", plan, "-o", self.path("x.png"), "--theme", "papre")
        self.assertIn("paper", message)

    def test_layers_alone(self):
        plan = self.plan()
        report = self.report("picture", plan, "-o", self.path("l.png"), "--layer", "a-wall")
        self.assertEqual(report["layers"], ["A-WALL"])
        self.assertTrue(shows(self.path("l.png"), (255, 0, 0)))
        self.assertFalse(shows(self.path("l.png"), (0, 0, 255)))
        self.assertIn("A-DOOR", self.fails(4, "picture", plan, "-o", self.path("x.png"),
                                           "--layer", "NONE"))

    def test_a_window_shows_a_part(self):
        plan = self.plan()
        report = self.report("picture", plan, "-o", self.path("w.png"),
                             "--window", "-100,-100,100,3100")
        (left, low), (right, high) = report["pages"][0]["view"]
        self.assertTrue(left <= -100 and right >= 100 and low <= -100 and high >= 3100)
        self.assertTrue(shows(self.path("w.png"), (0, 0, 255)))
        for bad in ("1,2,3", "1,2,1,5", "a,b,c,d", "1,2,3,4,5", "1,2,3,nan"):
            self.fails(2, "picture", plan, "-o", self.path("x.png"), "--window", bad)

    def test_svg_has_real_text_and_a_group_a_layer(self):
        plan = self.plan()
        self.run_ok("picture", plan, "-o", self.path("p.svg"))
        text = self.path("p.svg").read_text()
        self.assertIn(">KITCHEN &lt;1&gt;</text>", text)
        self.assertTrue('data-layer="A-WALL"' in text)
        self.run_ok("picture", plan, "-o", self.path("o.svg"), "--text", "outlines")
        self.assertFalse("<text" in self.path("o.svg").read_text())

    def test_the_drawing_is_only_read(self):
        plan = self.plan()
        before = plan.read_bytes()
        report = self.report("picture", plan, "-o", self.path("p.pdf"))
        self.assertIsNone(report["output"])
        self.assertEqual(report["pages"][0]["entities"], 5)
        self.assertEqual(plan.read_bytes(), before)

    def test_words_that_make_no_sense(self):
        plan = self.plan()
        self.assertIn(".png, .svg or .pdf",
                      self.fails(2, "picture", plan, "-o", self.path("p.gif")))
        self.fails(2, "picture", plan)
        self.fails(3, "picture", self.path("none.dxf"), "-o", self.path("p.png"))
        self.fails(5, "picture", plan, "-o", self.path("no/folder/p.png"))
        self.fails(2, "picture", plan, "-o", plan)

    def test_layouts(self):
        plan = self.plan()
        document = self.documents["plan.dxf"]
        for name in ("Ground floor", "Upper floor"):
            document.layouts.new(name).add_line((0, 0), (200, 100))
        document.saveas(plan)
        report = self.report("picture", plan, "-o", self.path("g.png"), "--layout", "ground FLOOR")
        self.assertEqual(report["pages"][0]["space"], "Ground floor")
        self.assertIn("Upper floor", self.fails(4, "picture", plan, "-o", self.path("x.png"),
                                                "--layout", "Attic"))
        report = self.report("picture", plan, "-o", self.path("all.pdf"), "--all-layouts")
        self.assertEqual({page["space"] for page in report["pages"]},
                         {"Ground floor", "Upper floor"})
        self.assertEqual(len(media_boxes(self.path("all.pdf"))), 2)
        report = self.report("picture", plan, "-o", self.path("all.png"), "--all-layouts")
        self.assertEqual([page["file"] for page in report["pages"]],
                         [str(self.path("all-1.png")), str(self.path("all-2.png"))])
        self.assertTrue(self.path("all-2.png").exists())

    def test_several_drawings(self):
        plan = self.plan()
        other = self.path("other.dxf")
        other.write_bytes(plan.read_bytes())
        self.run_ok("picture", plan, other, "-o", self.path("{name}.svg"))
        self.assertTrue(self.path("plan.svg").exists() and self.path("other.svg").exists())

    def test_empty_drawings_have_a_picture(self):
        self.draw("empty.dxf")
        self.run_ok("picture", self.save("empty.dxf"), "-o", self.path("e.png"))
        self.assertTrue(self.path("e.png").exists())

    def test_huge_coordinates(self):
        space = self.draw("far.dxf")
        space.add_line((1e300, 0), (-1e300, 0))
        space.add_line((0, 0), (0, 1e15))
        space.add_circle((0, 0), 1e12)
        plan = self.save("far.dxf")
        for name in ("p.png", "p.svg", "p.pdf"):
            self.run_ok("picture", plan, "-o", self.path(name))
            self.run_ok("picture", plan, "-o", self.path(name), "--window", "-5,-5,5,5")


def png(width, height, color):
    """The bytes of a PNG of one colour whose upper left quarter is blue."""
    def chunk(kind, body):
        return (struct.pack(">I", len(body)) + kind + body +
                struct.pack(">I", zlib.crc32(kind + body)))
    rows = b"".join(b"\0" + b"".join(
        bytes((0, 0, 255) if x < width / 2 and y < height / 2 else color) for x in range(width))
        for y in range(height))
    return (b"\x89PNG\r\n\x1a\n" +
            chunk(b"IHDR", struct.pack(">IIBBBBB", width, height, 8, 2, 0, 0, 0)) +
            chunk(b"IDAT", zlib.compress(rows)) + chunk(b"IEND", b""))


class PictureImagesTest(cli.CliTest):
    """--images: the only files that drawings name and Quoin opens."""

    def plan(self, name="house.png", **attributes):
        space = self.draw("plan.dxf")
        definition = self.documents["plan.dxf"].add_image_def(name, (20, 10))
        image = space.add_image(definition, insert=(0, 0), size_in_units=(200, 100))
        for key, value in attributes.items():
            image.dxf.set(key, value)
        return self.save("plan.dxf"), image

    def test_without_it_no_file_is_opened(self):
        plan, _ = self.plan()
        self.path("house.png").write_bytes(png(20, 10, (255, 0, 0)))
        report = self.report("picture", plan, "-o", self.path("p.png"))
        self.assertEqual(report["pages"][0]["images"], [])
        self.assertFalse(shows(self.path("p.png"), (255, 0, 0)))

    def test_images_show_in_every_format(self):
        plan, _ = self.plan("C:\\plans\\house.png")
        self.path("house.png").write_bytes(png(20, 10, (255, 0, 0)))
        report = self.report("picture", plan, "-o", self.path("p.png"), "--images")
        self.assertEqual(report["pages"][0]["images"], [
            {"path": "C:\\plans\\house.png", "count": 1, "file": str(self.path("house.png")),
             "problem": None}])
        self.assertEqual(report["warnings"], [])
        found = colors(self.path("p.png"))
        self.assertTrue((255, 0, 0) in found and (0, 0, 255) in found)
        # Blue above and left of red.
        _, _, rows = pixels(self.path("p.png"))
        blue, red = ([(x, y) for y, row in enumerate(rows) for x in range(0, len(row) // 3, 5)
                      if tuple(row[3 * x:3 * x + 3]) == color]
                     for color in ((0, 0, 255), (255, 0, 0)))
        self.assertLess(max(x for x, _ in blue), 5 + min(x for x, y in red if y <= blue[0][1]))
        self.assertLess(max(y for _, y in blue), 5 + min(y for x, y in red if x <= blue[0][0]))
        self.run_ok("picture", plan, "-o", self.path("p.svg"), "--images")
        text = self.path("p.svg").read_text()
        self.assertEqual(text.count("data:image/png;base64,"), 1)
        self.run_ok("picture", plan, "-o", self.path("p.pdf"), "--images")
        self.assertIn(b"/Subtype /Image", self.path("p.pdf").read_bytes())

    def test_turned_and_clipped(self):
        plan, image = self.plan(u_pixel=(0, 10, 0), v_pixel=(-10, 0, 0))
        image.set_boundary_path([(10, 0), (20, 0), (20, 10), (10, 10)])
        self.documents["plan.dxf"].saveas(plan)
        self.path("house.png").write_bytes(png(20, 10, (255, 0, 0)))
        self.run_ok("picture", plan, "-o", self.path("p.png"), "--images")
        # What is clipped away is all of its blue.
        self.assertTrue(shows(self.path("p.png"), (255, 0, 0)))
        self.assertNotIn((0, 0, 255), colors(self.path("p.png")))
        self.run_ok("picture", plan, "-o", self.path("p.svg"), "--images")
        self.assertIn('transform="matrix(', self.path("p.svg").read_text())

    def test_what_cannot_be_shown_is_named(self):
        for make, words in ((lambda path: None, "there is no such file"),
                            (lambda path: path.mkdir(), "it is a folder"),
                            (os.mkfifo, "it is no ordinary file"),
                            (lambda path: path.write_bytes(b"\x89PNG\r\n\x1a\nno"), "it is damaged")):
            path = self.path("house.png")
            path.unlink(missing_ok=True) if not path.is_dir() else path.rmdir()
            make(path)
            plan, _ = self.plan()
            for name in ("p.png", "p.pdf", "p.svg"):
                report = self.report("picture", plan, "-o", self.path(name), "--images")
                self.assertEqual(report["pages"][0]["images"][0]["problem"], words)
                self.assertIn(f"image not shown: 'house.png': {words}", report["warnings"][0])
        self.assertIn(words, self.path("p.svg").read_text())

    def test_the_same_bytes(self):
        plan, _ = self.plan()
        self.path("house.png").write_bytes(png(300, 200, (250, 120, 0)))
        for ending in ("png", "svg", "pdf"):
            found = set()
            for _ in range(2):
                self.run_ok("picture", plan, "-o", self.path("p." + ending), "--images")
                found.add(self.path("p." + ending).read_bytes())
            self.assertEqual(len(found), 1, ending)

    def test_windows_far_inside_an_image(self):
        plan, _ = self.plan()
        self.path("house.png").write_bytes(png(20, 10, (255, 0, 0)))
        for name in ("p.png", "p.svg", "p.pdf"):
            self.run_ok("picture", plan, "-o", self.path(name), "--images",
                        "--window", "150,20,150.001,20.001")
        self.run_ok("picture", plan, "-o", self.path("p.png"), "--images",
                    "--window", "150,20,150.001,20.001")
        self.assertIn((255, 0, 0), colors(self.path("p.png")))


class PicturePlotTest(cli.CliTest):
    """Layers that are not plotted show on screens alone."""

    def test_paper_leaves_them_out_and_counts_them(self):
        space = self.draw("plan.dxf")
        document = self.documents["plan.dxf"]
        document.layers.add("NOTES", color=1).dxf.plot = 0
        if "Defpoints" not in document.layers:
            document.layers.add("Defpoints", color=5)
        space.add_line((0, 0), (100, 0))
        space.add_line((0, 20), (100, 20), dxfattribs={"layer": "NOTES"})
        space.add_line((0, 40), (100, 40), dxfattribs={"layer": "Defpoints", "color": 5})
        plan = self.save("plan.dxf")
        page = self.report("picture", plan, "-o", self.path("p.png"))["pages"][0]
        self.assertEqual(page["notPlotted"], {"Defpoints": 1, "NOTES": 1})
        self.assertEqual(page["entities"], 1)
        for color in ((255, 0, 0), (0, 0, 255)):
            self.assertFalse(shows(self.path("p.png"), color))
        self.assertIn("2 entities on layers that are not plotted: Defpoints 1, NOTES 1",
                      self.run_ok("picture", plan, "-o", self.path("p.png")))
        page = self.report("picture", plan, "-o", self.path("s.png"), "--theme",
                           "screen")["pages"][0]
        self.assertEqual((page["notPlotted"], page["entities"]), ({}, 3))
        self.assertTrue(shows(self.path("s.png"), (255, 0, 0)))


class PicturePaperTest(cli.CliTest):
    def plan(self, units=4, size=(20000, 10000), lengths=2):
        space = self.draw("plan.dxf")
        self.documents["plan.dxf"].units = units
        self.documents["plan.dxf"].header["$LUNITS"] = lengths
        space.add_lwpolyline([(0, 0), (size[0], 0), size, (0, size[1])], close=True)
        return self.save("plan.dxf")

    def test_a_pdf_page_has_the_papers_size(self):
        plan = self.plan()
        report = self.report("picture", plan, "-o", self.path("p.pdf"), "--paper", "A3",
                             "--scale", "1:100")
        (width, height), = media_boxes(self.path("p.pdf"))
        self.assertAlmostEqual(width, 420, places=2)
        self.assertAlmostEqual(height, 297, places=2)
        self.assertEqual(report["pages"][0]["scale"], 100)

    def test_lengths_are_true(self):
        # 20 m at 1:100 are 200 mm, at 1/4" = 1' of a plan in inches 5 inches for 20 feet. What is
        # said to be in millimetres and writes feet and inches is in inches.
        for units, size, scale, width, lengths in ((4, (20000, 10000), "1:100", 200.0, 2),
                                                   (1, (240, 120), "1/4in=1ft", 127.0, 2),
                                                   (4, (240, 120), "1/4in=1ft", 127.0, 4)):
            plan = self.plan(units, size, lengths)
            self.run_ok("picture", plan, "-o", self.path("p.svg"), "--paper", "A3",
                        "--scale", scale)
            text = self.path("p.svg").read_text()
            self.assertIn('width="420mm" height="297mm"', text)
            view = re.search(r'viewBox="0 0 ([\d.]+) ', text)
            self.assertAlmostEqual(float(view[1]) * POINT, 420, places=2)
            path = re.search(r'<path stroke="#000000"[^>]* d="([^"]*)"', text)[1]
            numbers = [float(number) for number in re.findall(r"-?[\d.]+", path)]
            xs = numbers[0::2]
            self.assertAlmostEqual((max(xs) - min(xs)) * POINT, width, places=2)
            self.assertEqual("a unit counts as an inch, though the drawing names mm" in text,
                             lengths == 4)

    def test_a_plan_that_does_not_fit_is_told(self):
        plan = self.plan()
        message = self.fails(2, "picture", plan, "-o", self.path("p.pdf"), "--paper", "A4",
                             "--scale", "1:20")
        self.assertIn("does not fit A4 at 1:20", message)
        self.assertIn("1000 x 500 mm", message)
        self.assertFalse(self.path("p.pdf").exists())
        self.run_ok("picture", plan, "-o", self.path("p.pdf"), "--paper", "A4", "--scale", "1:20",
                    "--window", "0,0,2000,2000")

    def test_the_scale_is_a_usual_one_where_nobody_names_it(self):
        report = self.report("picture", self.plan(), "-o", self.path("p.pdf"), "--paper", "A4")
        self.assertEqual(report["pages"][0]["scale"], 100)

    def test_a_png_has_the_dots_of_its_paper(self):
        plan = self.plan()
        self.run_ok("picture", plan, "-o", self.path("p.png"), "--paper", "A4-landscape",
                    "--dpi", "50")
        width, height, _ = pixels(self.path("p.png"))
        self.assertEqual((width, height), (585, 414))
        self.fails(2, "picture", plan, "-o", self.path("p.png"), "--dpi", "50")

    def test_a_page_may_be_as_large_as_the_plan(self):
        report = self.report("picture", self.plan(), "-o", self.path("p.pdf"), "--scale", "1:50")
        width, height = report["pages"][0]["pageSize"]
        self.assertAlmostEqual(width, 420, places=6)
        self.assertGreater(height, 210)
        self.fails(2, "picture", self.plan(), "-o", self.path("p.pdf"), "--scale", "100:1")


class PictureBytesTest(cli.CliTest):
    """The same drawing gives the same bytes."""

    def test_whenever_and_wherever(self):
        space = self.draw("plan.dxf")
        space.add_line((0, 0), (5000, 100))
        space.add_circle((2000, 500), 333.3)
        space.add_text("Garten \u00e4 \u5ba2\u5385 \u0645\u0631\u062d\u0628\u0627",
                       dxfattribs={"insert": (100, 700), "height": 150})
        plan = self.save("plan.dxf")
        for ending in ("png", "svg", "pdf"):
            found = set()
            for variables in ({}, {"LC_ALL": "C.UTF-8", "TZ": "Asia/Tokyo"},
                              {"LC_ALL": "de_DE.UTF-8", "LANGUAGE": "ja", "TZ": "UTC-9"},
                              {"HOME": str(self.folder), "FONTCONFIG_FILE": "/dev/null",
                               "SOURCE_DATE_EPOCH": "1"}):
                out = self.path("p." + ending)
                out.unlink(missing_ok=True)
                subprocess.run([cli.QUOIN, "picture", plan, "-o", out], check=True,
                               env={**os.environ, **variables}, capture_output=True)
                found.add(out.read_bytes())
            self.assertEqual(len(found), 1, ending)
            self.assertNotIn(b"CreationDate", found.pop())


if __name__ == "__main__":
    unittest.main()
