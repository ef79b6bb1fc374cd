"""The truth of the example plans, from the words by which they are drawn.

Where scripts/drafting draws a wall, an opening or a label, it is written down; walls that end on
another one's face are brought to its reference line, and the network gives junctions and rooms.
"""

import math
import re

from drafting import flat, house, office, received
from drafting.sheet import Sheet, inset
from plan_rounds.drawing import inside
from plan_rounds.network import Edge, Network, area, gross_polygon, net_polygon, slack

FITS = 1e-6  # parts of a wall's width, within which ends meet


class Wall:
    def __init__(self, layer, start, end, width, openings, beyond=(0.0, 0.0)):
        self.beyond = beyond  # how far its faces reach past start and end
        self.moved = 0.0      # how far its reference line is to lie to the left of the middle
        self.layer, self.start, self.end, self.width = layer, start, end, width
        self.openings = [tuple(sorted(opening)) for opening in openings]

    @property
    def direction(self):
        length = math.dist(self.start, self.end)
        return (self.end[0] - self.start[0]) / length, (self.end[1] - self.start[1]) / length

    def beside(self, moved):
        """The same, so far to the left."""
        dx, dy = self.direction
        return Wall(self.layer, *((x - dy * moved, y + dx * moved) for x, y in (self.start, self.end)),
                    self.width, self.openings, self.beyond)

    def local(self, point):
        dx, dy = self.direction
        x, y = point[0] - self.start[0], point[1] - self.start[1]
        return x * dx + y * dy, x * -dy + y * dx


class Recorder(Sheet):
    """A sheet that remembers what is drawn as what."""

    def __init__(self, *arguments, **options):
        super().__init__(*arguments, **options)
        self.walls, self.doors, self.windows, self.labels, self.boxes = [], [], [], [], []

    def wall(self, layer, start, end, thickness, openings=(), **options):
        faces = [options.get(side, (0.0, 0.0)) for side in ("left", "right")]
        self.walls.append(Wall(layer, start, end, thickness, openings,
                               tuple(max(0.0, *pair) for pair in zip(*faces))))
        return super().wall(layer, start, end, thickness, openings, **options)

    def ring(self, layer, outline, thickness, openings):
        middle = inset(outline, 0.5 * thickness)
        for edge, corner in enumerate(outline):
            a, b = middle[edge], middle[(edge + 1) % len(outline)]
            wall = Wall(layer, a, b, thickness, (), (0.5 * thickness, 0.5 * thickness))
            # Openings are measured from the outline's corner.
            before = wall.local(corner)[0]
            wall.openings = [(begin + before, end + before)
                             for k, begin, end in openings if k == edge]
            self.walls.append(wall)
        return super().ring(layer, outline, thickness, openings)

    def door(self, layer, hinge, jamb, side):
        self.doors.append((0.5 * (hinge[0] + jamb[0]), 0.5 * (hinge[1] + jamb[1])))
        super().door(layer, hinge, jamb, side)

    def window(self, layer, start, end, thickness):
        self.windows.append((0.5 * (start[0] + end[0]), 0.5 * (start[1] + end[1])))
        super().window(layer, start, end, thickness)

    def insert(self, layer, name, position, rotation=0.0, xscale=1.0, yscale=1.0):
        turn = math.radians(rotation)
        x = {"DOOR-090": 0.5 * office.DOOR * xscale, "WINDOW-120": 0.6}.get(name)
        if x is not None:
            place = position[0] + x * math.cos(turn), position[1] + x * math.sin(turn)
            (self.doors if name == "DOOR-090" else self.windows).append(place)
        if name == "COLUMN-40":
            (x, y), half = position, 0.2
            self.boxes.append((layer, (x - half, y - half), (x + half, y + half)))
        super().insert(layer, name, position, rotation, xscale, yscale)

    def box(self, layer, corner, opposite, where=None):
        if where is None:
            self.boxes.append((layer, corner, opposite))
        return super().box(layer, corner, opposite, where)

    def text(self, layer, position, height, text):
        self.labels.append((layer, position, text))
        super().text(layer, position, height, text)


def meet(wall, other):
    """Where the reference lines of two walls cross; None for parallel ones."""
    (dx, dy), (ex, ey) = wall.direction, other.direction
    cross = dx * ey - dy * ex
    if abs(cross) < 1e-9:
        return None
    x, y = other.start[0] - wall.start[0], other.start[1] - wall.start[1]
    t = (x * ey - y * ex) / cross
    return (wall.start[0] + t * dx, wall.start[1] + t * dy), abs(cross)


def brought_together(walls):
    """For every wall its ends, on the reference line of the wall on whose face it ends, and how far
    its reference line is moved to the left for that: where it ends on a face beside the corner
    there, it goes to the corner."""
    beside = [(wall.beside(wall.moved), wall.moved) for wall in walls]
    for wall_number, wall in enumerate(walls):
        for point in (wall.start, wall.end):
            found = what_it_meets(wall, point, beside)
            if not found:
                continue
            _, _, _, other, past = found
            # Not where the two make a corner.
            if abs(past) > FITS * wall.width and not wall.moved and \
                    not any(ends_at(wall, other, end) for end in (other.start, other.end)
                            if math.dist(end, point) < 0.6 * (wall.width + other.width)):
                corner = other.start if past < 0 else other.end
                moved = wall.local(corner)[1]
                beside[wall_number] = (wall.beside(moved), moved)
    placed = []
    for wall, moved in beside:
        # The wall is moved already.
        found = [what_it_meets(wall, point, beside) for point in (wall.start, wall.end)]
        placed.append(([meeting[2] if meeting else point
                        for meeting, point in zip(found, (wall.start, wall.end))], moved))
    return placed


def what_it_meets(wall, point, beside):
    """The reference line that the wall's end meets at its own line or face, as (whether it ends
    before, distance, place, wall, how far beyond its end); None for a free end."""
    best = None
    for other, moved in beside:
        found = meet(wall, other) if other is not wall else None
        if found is None:
            continue
        place, sine = found
        along, _ = other.local(place)
        length = math.dist(other.start, other.end)
        skew = 0.5 * wall.width * math.sqrt(max(0.0, 1.0 - sine * sine)) / sine
        distance = math.dist(place, point)
        spare = 0.5 * wall.width / sine + 0.5 * other.width
        if distance <= (0.5 * other.width + abs(moved)) / sine + skew + FITS * wall.width and \
                -spare <= along <= length + spare:
            # A face that reaches as far goes before one that does not.
            touches = -other.beyond[0] - FITS * wall.width <= along <= \
                length + other.beyond[1] + FITS * wall.width
            found = (not touches, distance, place, other, along - min(max(along, 0.0), length))
            if best is None or found[:2] < best[:2]:
                best = found
    return best


def ends_at(wall, other, end):
    """Whether the two walls make a corner: this end of the other one lies on the wall's body."""
    t, s = wall.local(end)
    length = math.dist(wall.start, wall.end)
    return abs(s) <= (0.5 + FITS) * wall.width and -other.width <= t <= length + other.width and \
        abs(wall.direction[0] * other.direction[0] + wall.direction[1] * other.direction[1]) < 0.99


def network_of(walls, unit):
    """The walls between junctions."""
    placed = brought_together(walls)
    ends = [pair for pair, _ in placed]
    nodes, index_of = [], {}

    def node(point):
        key = round(point[0] / unit * 1e3), round(point[1] / unit * 1e3)
        for i in (-1, 0, 1):
            for j in (-1, 0, 1):
                if (key[0] + i, key[1] + j) in index_of:
                    return index_of[key[0] + i, key[1] + j]
        index_of[key] = len(nodes)
        nodes.append(point)
        return index_of[key]

    edges = []
    lines = [Wall(wall.layer, *pair, wall.width, ()) for wall, pair in zip(walls, ends)]
    for wall, straight, (_, moved) in zip(walls, lines, placed):
        length = math.dist(straight.start, straight.end)
        on = {node(straight.start): 0.0, node(straight.end): length}
        for other in lines:
            if other is straight:
                continue
            for point in (other.start, other.end):
                t, s = straight.local(point)
                if abs(s) < 1e-3 * unit and 0.0 < t < length:
                    on.setdefault(node(point), t)
            found = meet(straight, other)
            if found:
                t, u = straight.local(found[0])[0], other.local(found[0])[0]
                if 0.0 < t < length and 0.0 < u < math.dist(other.start, other.end):
                    on.setdefault(node(found[0]), t)
        stops = sorted((t, n) for n, t in on.items())
        shift = straight.local(wall.start)[0]
        for (low, a), (high, b) in zip(stops, stops[1:]):
            if a == b:
                continue
            edge = Edge(a, b, 0.5 * wall.width - moved, 0.5 * wall.width + moved, wall.layer)
            edge.openings = [(x + shift - low, y + shift - low) for x, y in sorted(wall.openings)
                             if low <= 0.5 * (x + y) + shift <= high]
            edges.append(edge)
    return Network(nodes, edges)


def kind_of(network, index, opening, sheet):
    """What stands in the opening."""
    edge = network.edges[index]
    low, high = opening
    direction = network.direction(2 * index)
    x, y = network.nodes[edge.first]
    for kind, places in (("door", sheet.doors), ("window", sheet.windows)):
        for px, py in places:
            t = (px - x) * direction[0] + (py - y) * direction[1]
            s = (py - y) * direction[0] - (px - x) * direction[1]
            if low < t < high and abs(s) <= (edge.left + edge.right) * 0.51:
                return kind
    return "opening"


def is_label(text):
    """Whether a text names a room, and is neither an area nor the number of a door or window."""
    return any(c.isalnum() for c in text) and "m²" not in text and \
        not re.fullmatch(r"[MC]\d{4}", text)


def truth_of(sheet, room_layer, columns=(), optional=lambda room: False, doors=()):
    """The truth of a recorded sheet, lengths in its units. Optional rooms are right if found or not."""
    unit = sheet.unit  # of a metre
    network = network_of(sheet.walls, unit / 1000.0)
    sheet.doors += doors
    corners, loops = network.corners(), network.loops()
    digits = 9
    walls, openings, rooms = [], [], []
    for index, edge in enumerate(network.edges):
        width = edge.left + edge.right
        middle = 0.5 * (edge.left - edge.right)
        length = network.length(index)
        wall = {"start": rounded(network.point(index, 0.0, middle)),
                "end": rounded(network.point(index, length, middle)),
                "left": round(0.5 * width, digits), "right": round(0.5 * width, digits),
                "width": round(width, digits), "layer": edge.kind}
        ends_off = [slack(network, node) for node in (edge.first, edge.second)]
        if any(ends_off):
            wall["slack"] = [round(value, digits) for value in ends_off]
        walls.append(wall)
        for opening in edge.openings:
            openings.append({"start": rounded(network.point(index, opening[0], middle)),
                             "end": rounded(network.point(index, opening[1], middle)),
                             "width": round(opening[1] - opening[0], digits),
                             "kind": kind_of(network, index, opening, sheet), "wall": index})
    boxes = [[(x0, y0), (x1, y0), (x1, y1), (x0, y1)]
             for layer, (x0, y0), (x1, y1) in sheet.boxes if layer in columns]
    polygons, loop_of = [], {}  # (net, gross) of each face
    for loop in loops:
        polygons.append((net_polygon(loop, corners, network), gross_polygon(loop, network)))
        loop_of[id(polygons[-1][0])] = loop
    islands = [pair for pair in polygons if area(pair[1]) < 0.0]
    faces = [pair for pair in polygons if area(pair[1]) > 0.0]
    for net, gross in faces:
        # What stands in a room without touching its walls.
        holes = [island for island in islands
                 if abs(area(island[1])) < area(gross) and inside(net, island[0][0])
                 and not any(other[0] is not net and area(other[1]) < area(gross)
                             and abs(area(island[1])) < area(other[1])
                             and inside(other[0], island[0][0]) for other in faces)]
        inner = [(position, text) for layer, position, text in sheet.labels
                 if layer == room_layer and inside(net, position)
                 and not any(inside(hole, position) for hole, _ in holes)]
        names = [text for _, text in inner if is_label(text)]
        labelled = [float(text.split()[0]) for _, text in inner if "m²" in text]
        within = [part for part in (round(area_within(net, box) / unit ** 2, digits)
                                    for box in boxes) if part > 0.0]
        room = {"name": " ".join(names), "names": names,
                "netArea": round((area(net) + sum(area(hole) for hole, _ in holes)) / unit ** 2, 9),
                "grossArea": round((area(gross) + sum(area(g) for _, g in holes)) / unit ** 2, 9),
                "polygon": [rounded(p) for p in net]}
        if holes:
            room["holes"] = [[rounded(p) for p in hole] for hole, _ in holes]
        if labelled:
            room["label"] = sum(labelled)
        if within:
            room["columnAreas"] = within
        beside = sum(abs(network.left(half) - network.right(half)) * network.length(half >> 1)
                     for half in loop_of[id(net)])
        if beside > FITS * unit ** 2:
            # Where reference lines do not lie in the middle, the gross area hangs on the choice.
            room["grossSlack"] = round(beside / unit ** 2, digits)
        if optional(room):
            room["optional"] = True
        rooms.append(room)
    units = {1000.0: "mm", 1.0: "m"}.get(unit, "in")
    return {"drawing": "", "note": "", "units": units, "millimetersPerUnit": 1000.0 / unit,
            "noise": [], "tolerance": {"along": 0.01, "across": 0.01, "width": 0.01, "area": 1e-6,
                                       "place": 300.0},
            "walls": walls, "openings": openings, "rooms": rooms,
            "columns": [{"polygon": box} for box in boxes]}


def area_within(polygon, box):
    """The area of a polygon inside a box along the axes."""
    for axis, limit, sign in ((0, box[0][0], 1.0), (0, box[2][0], -1.0),
                              (1, box[0][1], 1.0), (1, box[2][1], -1.0)):
        kept = []
        for p, q in zip(polygon, polygon[1:] + polygon[:1]):
            a, b = sign * (p[axis] - limit), sign * (q[axis] - limit)
            if a >= 0.0:
                kept.append(p)
            if a * b < 0.0:
                kept.append(tuple(u + (v - u) * (a / (a - b)) for u, v in zip(p, q)))
        polygon = kept
    return abs(area(polygon)) if polygon else 0.0


def rounded(value):
    """The same with coordinates of nine digits behind the point."""
    if isinstance(value, float):
        return round(value, 9) + 0.0
    if isinstance(value, (tuple, list)):
        return [rounded(part) for part in value]
    if isinstance(value, dict):
        return {name: rounded(part) for name, part in value.items()}
    return value


def recorded(module):
    """The sheet that the module draws."""
    original = module.Sheet
    sheets = []

    class Remembered(Recorder):
        def __init__(self, *arguments, **options):
            super().__init__(*arguments, **options)
            sheets.append(self)

    module.Sheet = Remembered
    try:
        module.draw()
    finally:
        module.Sheet = original
    return sheets[0]


def truths():
    """Name -> truth of the examples."""
    found = {}
    sheet = recorded(flat)
    found["flat"] = truth_of(sheet, flat.ROOMS, (flat.COLUMNS, flat.INSIDE))
    sheet = recorded(office)
    found["office"] = truth_of(sheet, office.ROOMS, (office.COLUMNS,),
                                optional=lambda room: room["netArea"] > 1000.0)  # the court
    sheet = recorded(house)
    sliding = [(0.5 * (a[0] + b[0]), 0.5 * (a[1] + b[1]))
               for layer, a, b in sheet.boxes if layer == house.OPENING]
    found["house-gbk"] = truth_of(sheet, house.WORDS, (house.COLUMN,), doors=sliding)
    found["received"] = {"drawing": "", "note": "", "noise": list(received.FAULTS)} | \
        rounded(received.plan().truth())
    for name, truth in found.items():
        truth["drawing"] = f"examples/{name}/{name.split('-')[0]}.dxf"
        truth["note"] = "Exact: taken from the words by which the plan is drawn."
    return found
