"""A drawing sheet with the things that a drafter puts on a plan.

Walls are double lines, as drafters draw them: a wall that ends at another one ends on its face,
and the face runs through unbroken. That is what the examples are for. Lengths are in the unit
of the drawing; a side is +1 for left of a direction and -1 for right.
"""

import math

import ezdxf
from ezdxf.enums import TextEntityAlignment

MILLIMETRES, METRES = 4, 6  # $INSUNITS


def along(start, end, distance, side=0.0):
    """The point `distance` from `start` towards `end`, and `side` to the left of that way."""
    length = math.dist(start, end)
    dx, dy = (end[0] - start[0]) / length, (end[1] - start[1]) / length
    return (round(start[0] + dx * distance - dy * side, 6),
            round(start[1] + dy * distance + dx * side, 6))


def inset(outline, thickness):
    """The corners of a counter-clockwise outline, moved inwards by `thickness`."""
    corners = []
    for index, corner in enumerate(outline):
        before, after = outline[index - 1], outline[(index + 1) % len(outline)]
        u = along((0, 0), (corner[0] - before[0], corner[1] - before[1]), 1.0)
        v = along((0, 0), (after[0] - corner[0], after[1] - corner[1]), 1.0)
        # Where the two edges, each moved to its left, meet.
        scale = thickness / (1.0 + u[0] * v[0] + u[1] * v[1])
        corners.append((round(corner[0] - (u[1] + v[1]) * scale, 6),
                        round(corner[1] + (u[0] + v[0]) * scale, 6)))
    return corners


class Sheet:
    """One drawing. `unit` is the length of a metre in it (1000 or 1)."""

    def __init__(self, release, units, encoding=None, font="arial.ttf", bigfont=""):
        self.document = ezdxf.new(release)
        self.is_r12 = release == "R12"
        self.document.header["$INSUNITS"] = units
        self.document.header["$MEASUREMENT"] = 1
        self.document.header["$LUNITS"] = 2
        if encoding:
            self.document.encoding = encoding
        self.unit = {MILLIMETRES: 1000.0, METRES: 1.0}[units]
        self.document.styles.add("PLAN", font=font).dxf.bigfont = bigfont
        self.model = self.document.modelspace()
        self._add_dimension_style()

    def _add_dimension_style(self):
        metre = self.unit
        style = self.document.dimstyles.new("PLAN")
        style.dxf.dimtxsty = "PLAN"
        style.dxf.dimtxt = 0.16 * metre
        style.dxf.dimtsz = 0.08 * metre  # oblique strokes instead of arrows
        style.dxf.dimexo = 0.10 * metre
        style.dxf.dimexe = 0.10 * metre
        style.dxf.dimgap = 0.05 * metre
        style.dxf.dimtad = 1  # the text stands above the line
        style.dxf.dimdec = 0 if metre > 1.0 else 2
        style.dxf.dimscale = 1.0

    def layer(self, name, color, linetype="Continuous", lineweight=None):
        if linetype != "Continuous" and linetype not in self.document.linetypes:
            metre = self.unit
            self.document.linetypes.add(
                linetype, [1.05 * metre, 0.7 * metre, -0.15 * metre, 0.05 * metre, -0.15 * metre],
                description="Axis")
        layer = self.document.layers.add(name, color=color, linetype=linetype)
        if lineweight and not self.is_r12:
            layer.dxf.lineweight = lineweight

    # --- plain entities; `where` is the model space or a block -------------------------------

    def line(self, layer, start, end, where=None):
        where = self.model if where is None else where
        return where.add_line(start, end, dxfattribs={"layer": layer})

    def polyline(self, layer, points, closed=False, where=None):
        """LWPOLYLINE, or the old POLYLINE where the release has no other."""
        where = self.model if where is None else where
        add = where.add_polyline2d if self.is_r12 else where.add_lwpolyline
        return add(points, close=closed, dxfattribs={"layer": layer})

    def box(self, layer, corner, opposite, where=None):
        (x0, y0), (x1, y1) = corner, opposite
        return self.polyline(layer, [(x0, y0), (x1, y0), (x1, y1), (x0, y1)], True, where)

    def arc(self, layer, center, radius, start, end, where=None):
        where = self.model if where is None else where
        return where.add_arc(center, radius, start, end, dxfattribs={"layer": layer})

    def circle(self, layer, center, radius, where=None):
        where = self.model if where is None else where
        return where.add_circle(center, radius, dxfattribs={"layer": layer})

    def text(self, layer, position, height, text):
        entity = self.model.add_text(
            text, height=height, dxfattribs={"layer": layer, "style": "PLAN"})
        entity.set_placement(position, align=TextEntityAlignment.MIDDLE_CENTER)

    def room(self, layer, position, name, area):
        """The name of a room, and its area below."""
        metre = self.unit
        self.text(layer, position, 0.16 * metre, name)
        self.text(layer, (position[0], position[1] - 0.28 * metre), 0.12 * metre, area)

    def dimension(self, layer, start, end, offset):
        """The distance from `start` to `end`, its line `offset` to the left of that way."""
        angle = math.degrees(math.atan2(end[1] - start[1], end[0] - start[0]))
        base = along(start, end, 0.0, offset)
        # Readable from below and from the right, whichever way the points come.
        angle = angle if -90.0 < angle <= 90.0 else angle - math.copysign(180.0, angle)
        self.model.add_linear_dim(
            base=base, p1=start, p2=end, angle=angle, dimstyle="PLAN",
            dxfattribs={"layer": layer}).render()

    def chain(self, layer, points, offset):
        for start, end in zip(points, points[1:]):
            self.dimension(layer, start, end, offset)

    def axis(self, layer, start, end, label, radius):
        """A grid axis with its bubble behind `start`."""
        self.line(layer, start, end)
        center = along(start, end, -radius)
        self.circle(layer, center, radius)
        self.text(layer, center, radius, label)

    # --- walls --------------------------------------------------------------------------------

    def wall(self, layer, start, end, thickness, openings=(), left=(0.0, 0.0), right=(0.0, 0.0),
             caps=(False, False)):
        """A wall along its axis, as two face lines that stop at the openings.

        `openings` are (from, to) along the axis and get jambs. `left` and `right` lengthen a
        face at its start and end (a corner: one face reaches farther than the other); `caps`
        close an end that stands free. Answers the lines.
        """
        length = math.dist(start, end)
        lines = []
        for side, (before, after) in ((1, left), (-1, right)):
            stops = [-before, *(d for opening in sorted(openings) for d in opening), length + after]
            for begin, stop in zip(stops[::2], stops[1::2]):
                lines.append(self.line(layer, along(start, end, begin, side * thickness / 2),
                                       along(start, end, stop, side * thickness / 2)))
        ends = [d for opening in openings for d in opening]
        ends += [d for d, capped in zip((0.0, length), caps) if capped]
        for distance in ends:
            lines.append(self.line(layer, along(start, end, distance, -thickness / 2),
                                   along(start, end, distance, thickness / 2)))
        return lines

    def ring(self, layer, outline, thickness, openings):
        """An outer wall around a counter-clockwise outline, as closed polylines.

        `openings` are (edge, from, to), edges counted from 0 and distances along the edge. Each
        stretch of wall between two openings is one closed outline. Returns the inner corners.
        """
        inner = inset(outline, thickness)
        count = len(outline)

        def cut(edge, distance, depth):
            return along(outline[edge], outline[(edge + 1) % count], distance, depth)

        openings = sorted(openings)
        for index, (edge, _, start) in enumerate(openings):
            last, stop, _ = openings[(index + 1) % len(openings)]
            passed = [(edge + step) % count for step in range(1, (last - edge) % count + 1)]
            if not passed and index + 1 == len(openings):
                passed = [(edge + step) % count for step in range(1, count + 1)]
            outside = [cut(edge, start, 0.0), *(outline[c] for c in passed), cut(last, stop, 0.0)]
            inside = [cut(edge, start, thickness), *(inner[c] for c in passed),
                      cut(last, stop, thickness)]
            self.polyline(layer, outside + inside[::-1], closed=True)
        return inner

    # --- what stands in openings ----------------------------------------------------------------

    def door(self, layer, hinge, jamb, side):
        """A door leaf, open at a right angle to `side` of the way from hinge to jamb."""
        width = math.dist(hinge, jamb)
        leaf = along(hinge, jamb, 0.0, side * width)
        self.line(layer, hinge, leaf)
        closed = math.degrees(math.atan2(jamb[1] - hinge[1], jamb[0] - hinge[0]))
        angles = (closed, closed + 90.0) if side > 0 else (closed - 90.0, closed)
        self.arc(layer, hinge, width, angles[0] % 360.0, angles[1] % 360.0)

    def window(self, layer, start, end, thickness):
        """Four lines across an opening whose outer edge runs from `start` to `end`."""
        length = math.dist(start, end)
        for share in (0.0, 0.4, 0.6, 1.0):
            self.line(layer, along(start, end, 0.0, share * thickness),
                      along(start, end, length, share * thickness))

    def window_in(self, layer, outline, thickness, opening):
        edge, begin, stop = opening
        corners = (outline[edge], outline[(edge + 1) % len(outline)])
        self.window(layer, along(*corners, begin), along(*corners, stop), thickness)

    def block(self, name):
        return self.document.blocks.new(name)

    def insert(self, layer, name, position, rotation=0.0, xscale=1.0, yscale=1.0):
        attributes = {"layer": layer, "rotation": rotation}
        if xscale != 1.0 or yscale != 1.0:
            attributes.update(xscale=xscale, yscale=yscale)
        self.model.add_blockref(name, position, dxfattribs=attributes)
