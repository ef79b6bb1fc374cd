"""Draws networks of walls as people draw plans, clean or with the faults that drawings have.

A noise is a set of these words:
  gaps        faces that end some millimetres before their corner
  overshoots  faces that run some millimetres past it
  skew        ends some millimetres beside their place, so that faces are slightly turned
  duplicates  lines drawn twice, whole or in part
  pieces      faces in collinear pieces
  furniture   things in rooms, stairs, shelves, radiators
  words       texts and dimension lines
  same-layer  in half of the buildings all of this, doors and windows on the walls' layer
"""

import math
from random import Random

from plan_rounds import dxf
from plan_rounds.buildings import random_building
from plan_rounds.network import area, gross_polygon, net_polygon, outlines, piers, slack

REFERENCE, REFERENCE_OPENING = "QUOIN-WALL", "QUOIN-OPENING"
WALL, DOOR, GLAZING = "A-WALL", "A-DOOR", "A-GLAZ"
FURNITURE, WORDS, DIMENSIONS, COLUMN = "A-FURN", "A-AREA-IDEN", "A-ANNO-DIMS", "S-COLS"
ALL_NOISE = ("gaps", "overshoots", "skew", "duplicates", "pieces", "furniture", "words", "same-layer")
NOISES = {"clean": (), "noisy": ALL_NOISE}

# How walls stand in the drawing: by their faces, as polylines of their width along the reference
# line, or as solid hatches without faces.
STYLES = ("lines", "polylines", "mixed", "wide", "filled")

ROOM_NAMES = ("KITCHEN", "BEDROOM", "BATH", "HALL", "OFFICE", "STORAGE", "WC", "LIVING ROOM",
              "MEETING", "CORRIDOR", "STUDY", "LAUNDRY")

# The unit door: hinge in the origin, other jamb at (1, 0), leaf along +y.
DOOR_BLOCK = {"DOOR": [("line", "0", (0.0, 0.0), (0.0, 1.0)),
                       ("arc", "0", (0.0, 0.0), 1.0, 0.0, 90.0)]}


class Frame:
    """A building's place on the sheet, in drawing units."""

    def __init__(self, turn, at, unit):
        self.turn = turn
        self.cosine, self.sine = math.cos(turn), math.sin(turn)
        self.at = at
        self.unit = unit  # millimetres

    def point(self, p):
        return ((self.at[0] + self.cosine * p[0] - self.sine * p[1]) / self.unit,
                (self.at[1] + self.sine * p[0] + self.cosine * p[1]) / self.unit)


class Plan:
    """What a sheet gets: primitives in drawing units, and the truth."""

    def __init__(self, units):
        self.units = units
        self.unit = dxf.UNITS[units][2]
        self.primitives = []
        self.references = []  # the walls by reference lines, with their openings, instead
        self.walls, self.openings, self.rooms, self.columns = [], [], [], []

    def truth(self):
        return {"units": self.units, "millimetersPerUnit": self.unit, "walls": self.walls,
                "openings": self.openings, "rooms": self.rooms, "columns": self.columns}


class Draftsman:
    """Draws one building, by its own habits."""

    def __init__(self, random, plan, frame, network, corners, loops, noise, style):
        self.random = random
        self.plan = plan
        self.frame = frame
        self.network = network
        self.corners = corners
        self.loops = loops
        self.noise = noise
        same = "same-layer" in noise and random.random() < 0.5
        self.layers = {name: WALL if same else name
                       for name in (DOOR, GLAZING, FURNITURE, WORDS, DIMENSIONS, COLUMN)}
        self.style = style or random.choice(("lines", "lines", "polylines", "mixed"))
        self.door_style = random.choice(("arc", "arc", "block", "leaf"))
        self.window_style = random.choice(("inside", "inside", "faces"))
        self.window_lines = random.choice((2, 3, 4))
        self.faults = 1.0  # how much more often than usual

    # Entities, given in millimetres in the building's frame --------------------------------------

    def add(self, kind, layer, *rest):
        self.plan.primitives.append((kind, self.layers.get(layer, layer)) + rest)

    def line(self, layer, a, b):
        self.add("line", layer, self.frame.point(a), self.frame.point(b))

    def polyline(self, layer, points, closed=True):
        self.add("polyline", layer, [self.frame.point(p) for p in points], closed)

    def box(self, layer, x, y, width, depth, ux, uy):
        """A rectangle with its first side from (x, y) along (ux, uy)."""
        corners = [(x, y), (x + ux * width, y + uy * width),
                   (x + ux * width - uy * depth, y + uy * width + ux * depth),
                   (x - uy * depth, y + ux * depth)]
        if self.random.random() < 0.5:
            self.polyline(layer, corners)
        else:
            for a, b in zip(corners, corners[1:] + corners[:1]):
                self.line(layer, a, b)

    def text(self, layer, at, height, words):
        self.add("text", layer, self.frame.point(at), height / self.frame.unit, words,
                 math.degrees(self.frame.turn))

    # Walls -------------------------------------------------------------------------------------

    def walls(self):
        if self.style == "wide":
            self.wide_walls()
            return
        segments = outlines(self.network, self.corners, self.loops)
        if self.style == "filled":
            self.filled_walls(piers(segments))
            return
        if self.style == "lines":
            for segment in segments:
                self.face(segment)
            return
        for ring in piers(segments):
            if self.style == "mixed" and self.random.random() < 0.5:
                for segment in ring:
                    self.face(segment)
            else:
                self.polyline(WALL, self.ring_points(ring))

    def wide_walls(self):
        """Each wall as polylines with its width, between its openings."""
        for index, edge in enumerate(self.network.edges):
            middle = 0.5 * (edge.left - edge.right)
            stops = [0.0, *(d for low, high, _ in edge.openings for d in (low, high)),
                     self.network.length(index)]
            for low, high in zip(stops[::2], stops[1::2]):
                points = [self.frame.point(self.network.point(index, d, middle)) for d in (low, high)]
                self.add("wide", WALL, points, (edge.left + edge.right) / self.frame.unit)

    def filled_walls(self, rings):
        """Every connected piece of wall as a hatch; rooms inside of it are its islands."""
        polygons = [[segment.start for segment in ring] for ring in rings]
        outer = [polygon for polygon in polygons if area(polygon) < 0.0]
        islands = {id(polygon): [] for polygon in outer}
        for polygon in polygons:
            if area(polygon) > 0.0:
                around = [other for other in outer if inside(other, polygon[0])]
                islands[id(max(around, key=area))].append(polygon)  # the least
        for polygon in outer:
            self.add("hatch", WALL, [[self.frame.point(p) for p in ring]
                                     for ring in [polygon, *islands[id(polygon)]]])

    def ring_points(self, ring):
        """The ring's corners, with what noise does to a polyline: corners off, points on sides."""
        points = []
        for segment in ring:
            x, y = segment.start
            if "skew" in self.noise and self.random.random() < 0.2:
                x += self.random.uniform(-3, 3)
                y += self.random.uniform(-3, 3)
            points.append((x, y))
            if "pieces" in self.noise and self.random.random() < 0.1:
                t = self.random.uniform(0.2, 0.8)
                points.append((x + t * (segment.end[0] - x), y + t * (segment.end[1] - y)))
        return points

    def face(self, segment):
        """A face or jamb as lines, with the faults of hand work."""
        random, noise = self.random, self.noise
        a, b = segment.start, segment.end
        length = math.dist(a, b)
        if not noise or length < 1e-9:
            self.line(WALL, a, b)
            return
        dx, dy = (b[0] - a[0]) / length, (b[1] - a[1]) / length
        low, high = 0.0, length
        if length > 60.0:
            low, high = self.end_noise(), length - self.end_noise()
        side = [0.0, 0.0]
        if "skew" in noise and random.random() < 0.3 * self.faults:
            side = [random.uniform(-3, 3), random.uniform(-3, 3)]

        def at(t):
            s = side[0] + (side[1] - side[0]) * t / length
            return a[0] + dx * t - dy * s, a[1] + dy * t + dx * s

        cuts = [low, high]
        if "pieces" in noise and high - low > 400 and random.random() < 0.2 * self.faults:
            cuts[1:1] = sorted(random.uniform(low + 100, high - 100)
                               for _ in range(random.choice((1, 1, 2, 3))))
        for s, t in zip(cuts, cuts[1:]):
            # Pieces touch, or overlap, or leave some millimetres between them.
            t = t if t == high or random.random() < 0.5 else t + random.uniform(-8, 8)
            if t - s > 1.0:
                self.line(WALL, at(s), at(t))
        if "duplicates" in noise and random.random() < 0.08 * self.faults:
            how = random.random()
            if how < 0.4:
                self.line(WALL, at(low), at(high))
            elif how < 0.6:
                self.line(WALL, at(high), at(low))
            elif high - low > 200:
                s = random.uniform(low, high - 100)
                self.line(WALL, at(s), at(random.uniform(s + 50, high)))

    def end_noise(self):
        """How far before its corner a face ends; less than zero is past it."""
        random = self.random
        if "gaps" in self.noise and random.random() < 0.12 * self.faults:
            return random.uniform(1, 10)
        if "overshoots" in self.noise and random.random() < 0.1 * self.faults:
            return -random.uniform(1, 15)
        return 0.0

    # Openings ----------------------------------------------------------------------------------

    def openings(self):
        for index, edge in enumerate(self.network.edges):
            for low, high, kind in edge.openings:
                if kind == "window":
                    self.window(index, edge, low, high)
                elif kind == "door":
                    self.door(index, edge, low, high)

    def window(self, index, edge, low, high):
        left, right = edge.left, -edge.right
        count = self.window_lines
        if self.window_style == "faces":
            offsets = [right + (left - right) * i / (count - 1) for i in range(count)]
        else:
            middle, apart = 0.5 * (left + right), min(60.0, 0.2 * (left - right))
            offsets = [middle + apart * (i - 0.5 * (count - 1)) * 2.0 / count for i in range(count)]
        for offset in offsets:
            self.line(GLAZING, self.network.point(index, low, offset),
                      self.network.point(index, high, offset))

    def door(self, index, edge, low, high):
        random = self.random
        width = high - low
        at_low, left_side = random.random() < 0.5, random.random() < 0.5
        offset = edge.left if left_side else -edge.right
        hinge = self.network.point(index, low if at_low else high, offset)
        jamb = self.network.point(index, high if at_low else low, offset)
        ax, ay = (jamb[0] - hinge[0]) / width, (jamb[1] - hinge[1]) / width
        turned_left = at_low == left_side  # the leaf is to the left of the way to the other jamb
        nx, ny = (-ay, ax) if turned_left else (ay, -ax)
        if self.door_style == "block":
            angle = math.degrees(math.atan2(ay, ax) + self.frame.turn)
            scale = width / self.frame.unit
            self.add("insert", DOOR, "DOOR", self.frame.point(hinge), scale,
                     scale if turned_left else -scale, angle)
            return
        tip = hinge[0] + nx * width, hinge[1] + ny * width
        if self.door_style == "leaf":
            points = [hinge, tip, (tip[0] + ax * 40, tip[1] + ay * 40),
                      (hinge[0] + ax * 40, hinge[1] + ay * 40)]
            self.polyline(DOOR, points)
        else:
            self.line(DOOR, hinge, tip)
        start, end = math.atan2(ay, ax), math.atan2(ny, nx)
        if not turned_left:
            start, end = end, start
        self.add("arc", DOOR, self.frame.point(hinge), width / self.frame.unit,
                 math.degrees(start + self.frame.turn), math.degrees(end + self.frame.turn))

    # Rooms and what stands in them ---------------------------------------------------------------

    def rooms(self, number):
        for loop in self.loops:
            gross = gross_polygon(loop, self.network)
            if area(gross) <= 0.0:
                continue
            net = net_polygon(loop, self.corners, self.network)
            number += 1
            name = self.random.choice(ROOM_NAMES)
            place = inner_point(net)
            self.text(WORDS, (place[0] - 400, place[1]), 150, name)
            self.text(WORDS, (place[0] - 400, place[1] - 250), 120, str(number))
            self.plan.references += [("text", WORDS) + text[2:] for text in self.plan.primitives[-2:]]
            beside = sum(abs(self.network.left(half) - self.network.right(half))
                         * self.network.length(half >> 1) for half in loop)
            column = self.column(net, place) if self.random.random() < 0.04 else 0.0
            self.plan.rooms.append({
                "name": name, "number": str(number), "netArea": area(net) * 1e-6,
                "grossArea": area(gross) * 1e-6, "columnAreas": [column * 1e-6] if column else [],
                "polygon": [self.frame.point(p) for p in net]})
            if beside > 0.0:
                self.plan.rooms[-1]["grossSlack"] = beside * 1e-6
            if "furniture" in self.noise:
                self.furniture(net, loop)
        return number

    def column(self, net, place):
        """A free column beside the room's middle; its area, zero where there is no room for it."""
        if area(net) < 20e6:
            return 0.0
        size = self.random.choice((200.0, 300.0, 400.0))
        x, y = place[0] - 1200, place[1] + 600
        points = [(x, y), (x + size, y), (x + size, y + size), (x, y + size)]
        if not all(inside(net, p) for p in points) or \
                min(distance_to(net, p) for p in points) < 500:
            return 0.0
        self.polyline(COLUMN, points)
        self.plan.columns.append({"polygon": [self.frame.point(p) for p in points]})
        return size * size

    def furniture(self, net, loop):
        random = self.random
        for (ax, ay), (bx, by) in zip(net, net[1:] + net[:1]):
            length = math.dist((ax, ay), (bx, by))
            if length < 1500 or random.random() < 0.4:
                continue
            ux, uy = (bx - ax) / length, (by - ay) / length
            what = random.choice(("wardrobe", "shelf", "bed", "radiator", "desk", "kitchen", "stairs"))
            width, depth = {"wardrobe": (1800, 600), "shelf": (1200, 300), "bed": (1600, 2000),
                            "radiator": (1000, 100), "desk": (1600, 800), "kitchen": (2400, 600),
                            "stairs": (1000, 2520)}[what]
            gap = random.choice((0.0, 0.0, 20.0, 50.0))
            if width > length - 200:
                continue
            s = random.uniform(100, length - width - 100)
            x, y = ax + ux * s - uy * gap, ay + uy * s + ux * gap
            far = [(x + ux * t - uy * depth, y + uy * t + ux * depth) for t in (0, width)]
            if not all(inside(net, p) for p in far):
                continue
            self.box(FURNITURE, x, y, width, depth, ux, uy)

            def local(u, v):
                return x + ux * u - uy * v, y + uy * u + ux * v

            if what == "wardrobe":
                self.line(FURNITURE, local(0, 300), local(width, 300))
            elif what == "bed":
                self.line(FURNITURE, local(0, 450), local(width, 450))
            elif what == "stairs":
                for k in range(1, 9):
                    self.line(FURNITURE, local(0, 280 * k), local(width, 280 * k))
            elif what == "kitchen":
                self.add("circle", FURNITURE, self.frame.point(local(400, 300)),
                         150 / self.frame.unit)
                self.box(FURNITURE, *local(900, 100), 500, 400, ux, uy)
            elif what == "desk" and inside(net, local(500, 1350)) and inside(net, local(950, 1350)):
                self.box(FURNITURE, *local(500, 900), 450, 450, ux, uy)

    def dimensions(self):
        """A chain of dimension lines along the south and the east."""
        xs = [x for x, _ in self.network.nodes]
        ys = [y for _, y in self.network.nodes]
        low, high, y = min(xs), max(xs), min(ys) - 900
        self.line(DIMENSIONS, (low, y), (high, y))
        for x in (low, high):
            self.line(DIMENSIONS, (x, y - 150), (x, y + 500))
            self.line(DIMENSIONS, (x - 80, y - 80), (x + 80, y + 80))
        self.text(DIMENSIONS, (0.5 * (low + high), y + 60), 150, str(round(high - low)))
        x = max(xs) + 900
        self.line(DIMENSIONS, (x, min(ys)), (x, max(ys)))
        self.line(DIMENSIONS, (x - 300, min(ys)), (x + 100, min(ys)))
        self.line(DIMENSIONS, (x - 300, max(ys)), (x + 100, max(ys)))

    # The truth -----------------------------------------------------------------------------------

    def state(self):
        """Adds walls and openings to the truth: centre lines, half a width to both sides."""
        network, unit = self.network, self.frame.unit
        base = len(self.plan.walls)
        for index, edge in enumerate(network.edges):
            shift = 0.5 * (edge.left - edge.right)
            length = network.length(index)
            width = edge.left + edge.right
            wall = {"start": self.frame.point(network.point(index, 0.0, shift)),
                    "end": self.frame.point(network.point(index, length, shift)),
                    "left": 0.5 * width / unit, "right": 0.5 * width / unit, "width": width / unit}
            ends_off = [slack(network, node) / unit for node in (edge.first, edge.second)]
            if any(ends_off):
                wall["slack"] = ends_off
            self.plan.walls.append(wall)
            self.plan.references.append((
                "wall", REFERENCE, self.frame.point(network.nodes[edge.first]),
                self.frame.point(network.nodes[edge.second]), edge.left / unit, edge.right / unit))
            for low, high, kind in edge.openings:
                self.plan.references.append((
                    "opening", REFERENCE_OPENING, self.frame.point(network.point(index, low, 0.0)),
                    self.frame.point(network.point(index, high, 0.0)), kind))
                self.plan.openings.append({
                    "start": self.frame.point(network.point(index, low, shift)),
                    "end": self.frame.point(network.point(index, high, shift)),
                    "width": (high - low) / unit, "kind": kind, "wall": base + index})


def inside(polygon, point):
    x, y = point
    found = False
    for (ax, ay), (bx, by) in zip(polygon, polygon[1:] + polygon[:1]):
        if (ay > y) != (by > y) and x < ax + (y - ay) * (bx - ax) / (by - ay):
            found = not found
    return found


def distance_to(polygon, point):
    x, y = point
    best = math.inf
    for (ax, ay), (bx, by) in zip(polygon, polygon[1:] + polygon[:1]):
        ex, ey = bx - ax, by - ay
        square = ex * ex + ey * ey
        t = max(0.0, min(1.0, ((x - ax) * ex + (y - ay) * ey) / square)) if square else 0.0
        best = min(best, math.hypot(x - ax - t * ex, y - ay - t * ey))
    return best


def inner_point(polygon):
    """A place inside, far from the sides; the middle of the polygon where that is inside."""
    xs, ys = [p[0] for p in polygon], [p[1] for p in polygon]
    best = None
    for i in (5, 3, 7, 2, 8, 4, 6):
        for j in (5, 3, 7, 2, 8, 4, 6):
            p = (min(xs) + 0.1 * i * (max(xs) - min(xs)), min(ys) + 0.1 * j * (max(ys) - min(ys)))
            if inside(polygon, p):
                far = distance_to(polygon, p)
                if far > 700:
                    return p
                if best is None or far > best[0]:
                    best = (far, p)
    return best[1] if best else polygon[0]


def make_plan(seed, walls, noise=(), units="mm", style=None):
    """A sheet of buildings with about this many walls; the same ones whatever the noise."""
    random = Random(seed)
    drawing_random = Random(f"{seed} drawn")
    plan = Plan(units)
    turned = random.random() < 0.3
    sheet_turn = math.radians(random.uniform(3, 87)) if turned else 0.0
    x = y = 0.0
    row = 0.0
    side = 6000.0 * math.sqrt(walls)
    number = 100
    while len(plan.walls) < walls:
        left = walls - len(plan.walls)
        wanted = min(left, random.choice((20, 30, 45, 60, 90, 150)))
        network, corners, loops = random_building(random, wanted, units == "in")
        turn = sheet_turn if random.random() < 0.8 else math.radians(random.uniform(0, 90))
        frame = Frame(turn, (0.0, 0.0), 1.0)
        points = [frame.point(network.nodes[n]) for e in network.edges for n in (e.first, e.second)]
        low = [min(p[k] for p in points) for k in (0, 1)]
        high = [max(p[k] for p in points) for k in (0, 1)]
        if x > 0.0 and x + high[0] - low[0] > side:
            x, y, row = 0.0, y + row + 6000.0, 0.0
        frame = Frame(turn, (x - low[0], y - low[1]), plan.unit)
        draftsman = Draftsman(drawing_random, plan, frame, network, corners, loops, noise, style)
        draftsman.walls()
        draftsman.openings()
        number = draftsman.rooms(number)
        draftsman.state()
        if "words" in noise:
            draftsman.dimensions()
        x += high[0] - low[0] + 6000.0
        row = max(row, high[1] - low[1])
    return plan
