"""Walls as a planar network: nodes, edges with widths, and the outlines of their bodies.

An edge is a wall between two junctions by its reference line, with the distances of its faces to
the left and the right, seen from its first node to its second. Half-edge 2e goes from the first to
the second, 2e + 1 back. The space between two neighbouring half-edges of a node is a wedge; there
the left face of the first meets the right face of the second, counter-clockwise.
"""

import math

PARALLEL = 1e-9  # sine of the angle between lines that count as one


class Edge:
    __slots__ = ("first", "second", "left", "right", "kind", "openings", "layer")

    def __init__(self, first, second, left, right, kind):
        self.first = first
        self.second = second
        self.left = left
        self.right = right
        self.kind = kind      # "outer", "bearing", "partition"
        self.openings = []    # (from, to, kind), along the reference line, in order
        self.layer = None


class Network:
    def __init__(self, nodes, edges):
        self.nodes = nodes
        self.edges = edges
        self.around = [[] for _ in nodes]  # half-edges by angle
        for index, edge in enumerate(edges):
            self.around[edge.first].append(2 * index)
            self.around[edge.second].append(2 * index + 1)
        for half_edges in self.around:
            half_edges.sort(key=lambda half: math.atan2(*reversed(self.direction(half))))
        self.place = {}
        for half_edges in self.around:
            for i, half in enumerate(half_edges):
                self.place[half] = i

    def ends(self, half):
        edge = self.edges[half >> 1]
        return (edge.first, edge.second) if half & 1 == 0 else (edge.second, edge.first)

    def direction(self, half):
        a, b = self.ends(half)
        (ax, ay), (bx, by) = self.nodes[a], self.nodes[b]
        length = math.hypot(bx - ax, by - ay)
        return (bx - ax) / length, (by - ay) / length

    def length(self, index):
        edge = self.edges[index]
        return math.dist(self.nodes[edge.first], self.nodes[edge.second])

    def left(self, half):
        edge = self.edges[half >> 1]
        return edge.left if half & 1 == 0 else edge.right

    def right(self, half):
        return self.left(half ^ 1)

    def wedge(self, half):
        """The corner in the wedge that begins at this half-edge: the point at the right face of
        the next half-edge, that at the left face of this one, and whether one face runs on."""
        node = self.ends(half)[0]
        x, y = self.nodes[node]
        half_edges = self.around[node]
        other = half_edges[(self.place[half] + 1) % len(half_edges)]
        dx, dy = self.direction(half)
        ex, ey = self.direction(other)
        left, right = self.left(half), self.right(other)
        # A face's line is a point of it and the direction.
        px, py = x - dy * left, y + dx * left
        qx, qy = x + ey * right, y - ex * right
        cross = dx * ey - dy * ex
        if other == half or abs(cross) < PARALLEL:
            runs_on = other != half and abs(left - right) < 1e-9 * (left + right)
            return ((px, py) if runs_on else (qx, qy)), (px, py), runs_on
        t = ((qx - px) * ey - (qy - py) * ex) / cross
        corner = px + t * dx, py + t * dy
        return corner, corner, False

    def corners(self):
        """The wedge of every half-edge."""
        return [self.wedge(half) for half in range(2 * len(self.edges))]

    def next_half(self, half):
        """The half-edge that follows around the face to the left."""
        back = half ^ 1
        half_edges = self.around[self.ends(back)[0]]
        return half_edges[self.place[back] - 1]

    def loops(self):
        """Half-edges around every face, the face to their left."""
        seen = bytearray(2 * len(self.edges))
        found = []
        for start in range(2 * len(self.edges)):
            if seen[start]:
                continue
            loop = []
            half = start
            while not seen[half]:
                seen[half] = 1
                loop.append(half)
                half = self.next_half(half)
            found.append(loop)
        return found

    def along(self, index, point):
        """How far along the edge's reference line the point's foot is."""
        edge = self.edges[index]
        dx, dy = self.direction(2 * index)
        x, y = self.nodes[edge.first]
        return (point[0] - x) * dx + (point[1] - y) * dy

    def clear(self, index, corners):
        """From where to where both faces of the edge are free of other walls."""
        half = 2 * index
        back = half + 1
        before = self.around[self.ends(half)[0]][self.place[half] - 1]
        after = self.around[self.ends(back)[0]][self.place[back] - 1]
        low = max(0.0, self.along(index, corners[half][1]), self.along(index, corners[before][0]))
        high = min(self.length(index), self.along(index, corners[back][1]),
                   self.along(index, corners[after][0]))
        return low, high

    def point(self, index, distance, offset):
        """The point at this distance along the edge, this far to the left of it."""
        x, y = self.nodes[self.edges[index].first]
        dx, dy = self.direction(2 * index)
        return x + dx * distance - dy * offset, y + dy * distance + dx * offset


def slack(network, node):
    """How far a wall's end may be off along it, because middle lines do not meet at the node in one
    point: as far as the faces of the walls there are from it. Zero where they do meet."""
    around = [network.edges[half >> 1] for half in network.around[node]]
    widest = max(edge.left + edge.right for edge in around)
    beside = max(abs(edge.left - edge.right) for edge in around)
    return beside + 0.5 * widest if beside > 1e-6 * widest else 0.0


def area(polygon):
    """Signed area, positive counter-clockwise; exact sums for far away places."""
    ox, oy = polygon[0]
    terms = []
    for (ax, ay), (bx, by) in zip(polygon, polygon[1:] + polygon[:1]):
        terms.append((ax - ox) * (by - oy) - (ay - oy) * (bx - ox))
    return 0.5 * math.fsum(terms)


def net_polygon(loop, corners, network):
    """The outline of the face between the walls' faces."""
    polygon = []
    for half in loop:
        arrival, departure, runs_on = corners[half]
        # The wedge of a half-edge lies before it in its loop.
        if runs_on:
            continue
        if arrival != departure:
            polygon.append(arrival)
        polygon.append(departure)
    return polygon


def gross_polygon(loop, network):
    return [network.nodes[network.ends(half)[0]] for half in loop]


class Segment:
    """A straight piece of a face, a step between two faces, or a jamb. The keys name its ends;
    two segments share each. The wall lies to its right."""
    __slots__ = ("start", "end", "start_key", "end_key", "what", "edge")

    def __init__(self, start, end, start_key, end_key, what, edge):
        self.start = start
        self.end = end
        self.start_key = start_key
        self.end_key = end_key
        self.what = what
        self.edge = edge


def outlines(network, corners, loops):
    """Every straight piece of the outlines of the wall bodies, cut at the openings."""
    segments = []
    for loop in loops:
        first = next(i for i, half in enumerate(loop) if not corners[half][2])
        loop = loop[first:] + loop[:first]
        point, key = None, None
        for i, half in enumerate(loop):
            arrival, departure, runs_on = corners[half]
            index = half >> 1
            if not runs_on:
                if arrival != departure:
                    segments.append(Segment(arrival, departure, (half, "in"), (half, "out"),
                                            "step", index))
                    point, key = departure, (half, "out")
                else:
                    point, key = departure, (half, "in")
            edge = network.edges[index]
            forward = half & 1 == 0
            offset = edge.left if forward else -edge.right
            cuts = edge.openings if forward else reversed(edge.openings)
            for low, high, _ in cuts:
                near, far = (low, high) if forward else (high, low)
                end = network.point(index, near, offset)
                end_key = (index, near, forward)
                segments.append(Segment(point, end, key, end_key, "face", index))
                # The jamb leads from here to the other face, which begins there.
                other = network.point(index, near, -edge.right if forward else edge.left)
                segments.append(Segment(end, other, end_key, (index, near, not forward),
                                        "jamb", index))
                point, key = network.point(index, far, offset), (index, far, forward)
            following = loop[(i + 1) % len(loop)]
            if not corners[following][2]:
                segments.append(Segment(point, corners[following][0], key, (following, "in"),
                                        "face", index))
    return segments


def piers(segments):
    """The segments in closed rings, one a connected piece of wall outline."""
    by_start = {segment.start_key: segment for segment in segments}
    rings = []
    while by_start:
        _, segment = by_start.popitem()
        ring = [segment]
        while segment.end_key in by_start:
            segment = by_start.pop(segment.end_key)
            ring.append(segment)
        rings.append(ring)
    return rings
