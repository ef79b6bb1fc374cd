"""Random buildings: outlines cut into rooms, with walls of unequal widths and openings in them.

Everything is in millimetres, in the building's own frame, before it is turned and placed.
"""

import math

from plan_rounds.network import Edge, Network

# Millimetres. Inches come in whole and half inches.
WIDTHS_METRIC = {"outer": (300, 365, 240, 400, 250), "bearing": (240, 200, 175),
                 "partition": (100, 120, 115, 150)}
WIDTHS_INCH = {"outer": (304.8, 254.0, 203.2), "bearing": (203.2, 152.4),
               "partition": (114.3, 127.0, 101.6)}
APART = 650.0      # of junctions along a wall, at least, between reference lines
SMALLEST = 1500.0  # of a room's sides
GRID = 50.0        # along which people place walls


class Line:
    """A straight wall line with the nodes on it."""

    def __init__(self, kind, width, origin, direction):
        self.kind = kind
        self.width = width
        self.origin = origin
        self.direction = direction
        self.nodes = []  # (distance from the origin, node), in order

    def add(self, nodes, node):
        x, y = nodes[node]
        t = (x - self.origin[0]) * self.direction[0] + (y - self.origin[1]) * self.direction[1]
        if all(other != node for _, other in self.nodes):
            self.nodes.append((t, node))
            self.nodes.sort()


class Building:
    def __init__(self, random, inches=False):
        self.random = random
        self.widths = {kind: random.choice(some)
                       for kind, some in (WIDTHS_INCH if inches else WIDTHS_METRIC).items()}
        self.nodes = []
        self.lines = []
        self.cells = []  # each a list of (line, first node, second node), counter-clockwise

    def node(self, x, y):
        self.nodes.append((x, y))
        return len(self.nodes) - 1

    def line(self, kind, first, second, width=None):
        (ax, ay), (bx, by) = self.nodes[first], self.nodes[second]
        length = math.hypot(bx - ax, by - ay)
        line = Line(kind, width or self.widths[kind], (ax, ay),
                    ((bx - ax) / length, (by - ay) / length))
        line.add(self.nodes, first)
        line.add(self.nodes, second)
        self.lines.append(line)
        return line

    # The outline -------------------------------------------------------------------------------

    def outline(self, area, shape):
        random = self.random
        ratio = random.uniform(1.0, 1.8)
        width = GRID * round(math.sqrt(area * 1e6 * ratio) / GRID)
        depth = GRID * round(math.sqrt(area * 1e6 / ratio) / GRID)
        corners = [(0.0, 0.0), (width, 0.0), (width, depth), (0.0, depth)]
        if shape == "chamfered":
            cut = GRID * round(random.uniform(1200, 0.3 * min(width, depth) + 1200) / GRID)
            other = cut
            if random.random() >= 0.6:
                other = GRID * round(cut * random.uniform(0.7, 1.3) / GRID)
            corners[2:3] = [(width, depth - cut), (width - other, depth)]
            if random.random() < 0.3:
                corners[0:1] = [(0.0, cut), (other, 0.0)]
        elif shape == "slanted":
            lean = GRID * round(random.uniform(0.15, 0.35) * width / GRID)
            corners[2] = (width - lean, depth)
        elif shape == "hexagon":
            radius = math.sqrt(area * 1e6 / 2.598)
            corners = [(radius * math.cos(turn), radius * math.sin(turn))
                       for turn in (math.radians(60 * i) for i in range(6))]
        nodes = [self.node(*corner) for corner in corners]
        sides = []
        for a, b in zip(nodes, nodes[1:] + nodes[:1]):
            # Sides of one building are not always of one width.
            kind = "outer" if random.random() < 0.9 else "bearing"
            sides.append((self.line("outer", a, b, self.widths[kind]), a, b))
        if shape == "hexagon":
            # A junction of three walls in the middle, 120 degrees apart.
            middle = self.node(0.0, 0.0)
            begin = random.randrange(2)
            spokes = [(self.line("bearing", middle, nodes[i]), i) for i in range(begin, 6, 2)]
            for (line, i), (following, j) in zip(spokes, spokes[1:] + spokes[:1]):
                self.cells.append([(line, middle, nodes[i]), sides[i], sides[(i + 1) % 6],
                                   (following, nodes[j], middle)])
        else:
            self.cells.append(sides)
            if shape == "angled":
                self._wing(sides, width, depth)

    def _wing(self, sides, width, depth):
        """A lower wing at the east side, which makes corners that point inwards."""
        random = self.random
        line, south, north = sides[1]
        low = GRID * round(random.choice((0.0, random.uniform(0.1, 0.3))) * depth / GRID)
        high = GRID * round(random.uniform(0.6, 0.75) * depth / GRID)
        out = GRID * round(random.uniform(0.4, 0.7) * width / GRID)
        a = south if low < SMALLEST else self.node(width, low)
        low = self.nodes[a][1]
        b, c, d = self.node(width + out, low), self.node(width + out, high), self.node(width, high)
        for node in (a, d):
            line.add(self.nodes, node)
        if a == south:
            # The south side runs on.
            side = sides[0][0]
            side.add(self.nodes, b)
            first = (side, a, b)
        else:
            first = (self.line("outer", a, b), a, b)
        self.cells.append([first, (self.line("outer", b, c), b, c),
                           (self.line("outer", c, d), c, d), (line, d, a)])

    # The rooms ---------------------------------------------------------------------------------

    def _polygon(self, cell):
        return [self.nodes[first] for _, first, _ in cell]

    def _area(self, cell):
        points = self._polygon(cell)
        return 0.5e-6 * sum(ax * by - ay * bx
                            for (ax, ay), (bx, by) in zip(points, points[1:] + points[:1]))

    def _foot(self, side, x, y, dx, dy):
        """Where the ray meets the side: distance along the ray, along the side; None if never."""
        line, first, second = side
        (ax, ay), (bx, by) = self.nodes[first], self.nodes[second]
        ex, ey = bx - ax, by - ay
        length = math.hypot(ex, ey)
        ex, ey = ex / length, ey / length
        cross = dx * ey - dy * ex
        if abs(cross) < math.sin(math.radians(50)):
            return None
        t = ((ax - x) * ey - (ay - y) * ex) / cross
        u = ((ax - x) * dy - (ay - y) * dx) / cross
        return (t, u, length) if t > SMALLEST else None

    def _near(self, side, x, y):
        """The node of the side's line nearest to the place, and how far it is."""
        line = side[0]
        t = (x - line.origin[0]) * line.direction[0] + (y - line.origin[1]) * line.direction[1]
        distance, node = min((abs(t - u), node) for u, node in line.nodes)
        return distance, node

    def split(self, cell, kind, oblique=0.0, fraction=(0.3, 0.7), snap=0.25):
        """Cuts the cell by a wall; None if this try found no place for one."""
        random = self.random
        lengths = [math.dist(self.nodes[a], self.nodes[b]) for _, a, b in cell]
        i = max(range(len(cell)), key=lambda k: lengths[k] * random.uniform(0.6, 1.0))
        line, first, second = cell[i]
        if lengths[i] < 2.0 * SMALLEST:
            return None
        (ax, ay), (bx, by) = self.nodes[first], self.nodes[second]
        dx, dy = (bx - ax) / lengths[i], (by - ay) / lengths[i]
        inside = [node for t, node in line.nodes
                  if SMALLEST < math.dist(self.nodes[node], (ax, ay)) < lengths[i] - SMALLEST
                  and (self.nodes[node][0] - ax) * dx + (self.nodes[node][1] - ay) * dy > 0]
        if inside and random.random() < snap:
            start = random.choice(inside)
            x, y = self.nodes[start]
        else:
            distance = GRID * round(lengths[i] * random.uniform(*fraction) / GRID)
            if not SMALLEST <= distance <= lengths[i] - SMALLEST:
                return None
            x, y = ax + dx * distance, ay + dy * distance
            if self._near(cell[i], x, y)[0] < APART:
                return None
            start = None
        turn = 0.0
        if random.random() < oblique:
            turn = math.radians(random.choice((-1, 1)) * random.uniform(15, 35))
        cosine, sine = math.cos(turn), math.sin(turn)
        nx, ny = -dy * cosine - dx * sine, -dy * sine + dx * cosine
        hits = [(found, j) for j in range(len(cell)) if j != i
                for found in [self._foot(cell[j], x, y, nx, ny)]
                if found and 0.0 <= found[1] <= found[2]]
        if len(hits) != 1:
            return None
        (t, u, length), j = hits[0]
        if not SMALLEST <= u <= length - SMALLEST:
            return None
        ex, ey = x + nx * t, y + ny * t
        distance, node = self._near(cell[j], ex, ey)
        if distance < 1e-6:
            end = node
        elif distance < APART:
            return None
        else:
            end = self.node(ex, ey)
        if start is None:
            start = self.node(x, y)
        line.add(self.nodes, start)
        cell[j][0].add(self.nodes, end)
        wall = self.line(kind, start, end)
        k = len(cell)
        one = [(line, start, second)] + \
            [cell[m % k] for m in range(i + 1, i + 1 + (j - i - 1) % k)] + \
            [(cell[j][0], cell[j][1], end), (wall, end, start)]
        two = [(line, first, start), (wall, start, end), (cell[j][0], end, cell[j][2])] + \
            [cell[m % k] for m in range(j + 1, j + 1 + (i - j - 1) % k)]
        return one, two

    def divide(self, rooms, oblique):
        """Cuts the largest cells until there are as many rooms, or no room for more."""
        random = self.random
        if len(self.cells) == 1 and rooms > 7:
            self._corridor()
        done = []
        bearing = 2
        while self.cells and len(self.cells) + len(done) < rooms:
            self.cells.sort(key=self._area)
            cell = self.cells.pop()
            kind = "bearing" if bearing > 0 and random.random() < 0.5 else "partition"
            parts = None
            if self._area(cell) > 5.0:
                for _ in range(8):
                    parts = self.split(cell, kind, oblique)
                    if parts:
                        break
            if parts:
                bearing -= 1
                self.cells.extend(parts)
            else:
                done.append(cell)
        self.cells += done

    def _corridor(self):
        cell = self.cells[0]
        for _ in range(8):
            parts = self.split(cell, "bearing", fraction=(0.35, 0.55))
            if not parts:
                continue
            # The second wall beside the first.
            target = parts[self.random.randrange(2)]
            wall = self.lines[-1]
            offset = GRID * round(self.random.uniform(1500, 2500) / GRID)
            other = [part for part in parts if part is not target]
            second = self._beside(target, wall, offset)
            self.cells = other + (list(second) if second else [target])
            return

    def _beside(self, cell, wall, offset):
        """Cuts the cell by a wall parallel to one of its own."""
        k = len(cell)
        i = next(m for m in range(k) if cell[m][0] is wall)
        before, after = cell[i - 1], cell[(i + 1) % k]
        (ax, ay), (bx, by) = self.nodes[cell[i][1]], self.nodes[cell[i][2]]
        length = math.dist((ax, ay), (bx, by))
        dx, dy = (bx - ax) / length, (by - ay) / length
        ends = []
        for side, (x, y), (ox, oy) in ((after, (bx, by), self.nodes[after[2]]),
                                       (before, (ax, ay), self.nodes[before[1]])):
            reach = math.dist((x, y), (ox, oy))
            ex, ey = (ox - x) / reach, (oy - y) / reach
            across = -dy * ex + dx * ey
            t = offset / across if across > 0.5 else math.inf
            if t > reach - SMALLEST or self._near(side, x + ex * t, y + ey * t)[0] < APART:
                return None
            ends.append((x + ex * t, y + ey * t))
        b, a = self.node(*ends[0]), self.node(*ends[1])
        before[0].add(self.nodes, a)
        after[0].add(self.nodes, b)
        line = self.line("bearing", a, b)
        corridor = [cell[i], (after[0], after[1], b), (line, b, a), (before[0], a, before[2])]
        rest = [(line, a, b), (after[0], b, after[2])] + \
            [cell[m % k] for m in range(i + 2, i + k - 1)] + [(before[0], before[1], a)]
        return corridor, rest

    def stubs(self, count):
        """Short walls that end freely in a room."""
        random = self.random
        for _ in range(count):
            cell = random.choice(self.cells)
            line, first, second = random.choice(cell)
            (ax, ay), (bx, by) = self.nodes[first], self.nodes[second]
            length = math.dist((ax, ay), (bx, by))
            if length < 3500 or self._area(cell) < 12:
                continue
            dx, dy = (bx - ax) / length, (by - ay) / length
            distance = GRID * round(length * random.uniform(0.35, 0.65) / GRID)
            x, y = ax + dx * distance, ay + dy * distance
            reach = GRID * round(random.uniform(600, 1400) / GRID)
            ends = [found for side in cell if side[0] is not line
                    for found in [self._foot(side, x, y, -dy, dx)]
                    if found and 0 <= found[1] <= found[2]]
            if self._near((line, first, second), x, y)[0] < APART or \
                    (len(ends) != 1 or ends[0][0] < reach + 1500):
                continue
            start, end = self.node(x, y), self.node(x - dy * reach, y + dx * reach)
            line.add(self.nodes, start)
            self.line("partition", start, end)

    # The network -------------------------------------------------------------------------------

    def network(self, flush):
        """The walls between junctions. With this chance a straight wall line changes its width at
        a junction, with one face flush or about the middle."""
        random = self.random
        edges = []
        for line in self.lines:
            left = right = 0.5 * line.width
            change = random.randrange(1, len(line.nodes) - 1) \
                if len(line.nodes) > 3 and random.random() < flush else None
            for k, ((_, a), (_, b)) in enumerate(zip(line.nodes, line.nodes[1:])):
                if k == change:
                    some = [w for w in self.widths.values() if abs(w - line.width) > 30]
                    if some:
                        width = random.choice(some)
                        how = random.choice(("left", "right", "middle"))
                        left = 0.5 * width if how == "middle" else 0.5 * line.width if how == "left" \
                            else width - 0.5 * line.width
                        right = width - left
                edges.append(Edge(a, b, left, right, line.kind))
        return Network(self.nodes, edges)


def add_openings(network, corners, loops, random, plenty):
    """Doors, windows and plain openings where both faces of a wall leave room for them."""
    from plan_rounds.network import area, gross_polygon
    outside = set()
    for loop in loops:
        if area(gross_polygon(loop, network)) < 0:
            outside.update(half >> 1 for half in loop)
    entrance = False
    for index, edge in enumerate(network.edges):
        low, high = network.clear(index, corners)
        stub = len(network.around[edge.first]) == 1 or len(network.around[edge.second]) == 1
        if stub or random.random() > plenty:
            continue
        margin = random.choice((100.0, 120.0, 150.0, 250.0, 60.0))
        low, high = low + margin, high - margin
        openings = []
        if index in outside:
            if not entrance and high - low > 1000 and random.random() < 0.3:
                entrance = True
                wanted = [(random.choice((1010.0, 900.0, 1260.0)), "door")]
            else:
                widths = (600.0, 885.0, 1000.0, 1200.0, 1510.0, 1800.0, 2400.0)
                wanted = [(random.choice(widths), "window")
                          for _ in range(random.choice((1, 1, 2, 3)))]
        else:
            wanted = [(random.choice((760.0, 885.0, 885.0, 1010.0, 700.0)), "door")
                      if random.random() < 0.85 else
                      (random.choice((900.0, 1200.0, 1500.0, 2000.0)), "opening")]
            if random.random() < 0.08:
                wanted *= 2
        between = random.choice((300.0, 450.0, 900.0))
        while wanted and sum(w for w, _ in wanted) + between * (len(wanted) - 1) > high - low:
            wanted.pop()
        if not wanted:
            continue
        room = high - low - sum(w for w, _ in wanted) - between * (len(wanted) - 1)
        # Doors stand near corners, windows in the middle.
        at = low + (random.choice((0.0, 1.0, random.random())) * room if wanted[0][1] == "door"
                    else 0.5 * room)
        if random.random() < 0.5 and room > 20:
            at = min(max(10.0 * round(at / 10.0), low), low + room)
        for width, kind in wanted:
            openings.append((at, at + width, kind))
            at += width + between
        edge.openings = openings


def random_building(random, walls, inches=False, turned=True):
    """A network with openings of about this many walls, in its own frame."""
    rooms = max(2, round((walls - 4) / 2.6)) if walls > 8 else 2
    oblique = random.choice((0.0, 0.0, 0.0, 0.1, 0.3))
    shape = random.choice(("plain",) * 4 + ("chamfered",) * 2 + ("slanted", "angled", "angled", "hexagon")) \
        if rooms > 3 else "plain"
    building = Building(random, inches)
    building.outline(rooms * random.uniform(10, 22), shape)
    building.divide(rooms, oblique)
    building.stubs(random.choice((0, 0, 1, 2)) if rooms > 3 else 0)
    network = building.network(flush=0.12)
    corners = network.corners()
    loops = network.loops()
    add_openings(network, corners, loops, random, random.choice((0.75, 0.9)))
    return network, corners, loops
