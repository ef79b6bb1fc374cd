"""Compares walls, openings and rooms that were found with the true ones.

Walls are compared by the middle between their faces. They match when both ends and the width do,
one found wall to one true one; and beside that by what they cover: a wall counts as covered when
walls of its width lie on all of its length, however they are cut or joined.
"""

import dataclasses
import itertools
import json
import math


@dataclasses.dataclass
class Tolerance:
    """How far a found thing may be off; lengths in drawing units."""
    along: float
    across: float
    width: float
    area: float   # of rooms, as a part of the area
    place: float  # of the middle of a room's box

    @classmethod
    def clean(cls, unit, size):
        """For plans without faults; `size` is the largest coordinate."""
        return cls(1e-6, 1e-6, max(1e-9, 1e-9 * size), 1e-9, 300.0 / unit)

    @classmethod
    def noisy(cls, unit):
        """For plans with ends that are some millimetres off; a unit has so many millimetres."""
        return cls(15.0 / unit, 5.0 / unit, 5.0 / unit, 0.01, 300.0 / unit)


@dataclasses.dataclass
class Score:
    """How much is true, and found, and of each how much is right."""
    what: str
    true: float = 0
    found: float = 0
    true_right: float = 0
    found_right: float = 0

    @property
    def recall(self):
        return self.true_right / self.true if self.true else 1.0

    @property
    def precision(self):
        return self.found_right / self.found if self.found else 1.0


class Line:
    """The middle of a wall, or an opening: from start to end, so wide."""
    __slots__ = ("start", "end", "width", "slack", "dx", "dy", "length", "source")

    def __init__(self, start, end, width, source, slack=(0.0, 0.0)):
        self.start, self.end, self.width, self.slack, self.source = start, end, width, slack, source
        self.dx, self.dy = end[0] - start[0], end[1] - start[1]
        self.length = math.hypot(self.dx, self.dy)
        if self.length > 0.0:
            self.dx /= self.length
            self.dy /= self.length

    def local(self, point):
        """Along the line from its start, and to the left of it."""
        x, y = point[0] - self.start[0], point[1] - self.start[1]
        return x * self.dx + y * self.dy, x * -self.dy + y * self.dx


def wall_line(index, wall):
    """The middle between the wall's faces."""
    (ax, ay), (bx, by) = wall["start"][:2], wall["end"][:2]
    length = math.hypot(bx - ax, by - ay)
    width = wall.get("width")
    left, right = wall.get("left"), wall.get("right")
    if width is None:
        width = left + right
    if left is None or right is None or length == 0.0:
        left = right = 0.5 * width
    shift = 0.5 * (left - right)
    nx, ny = (-(by - ay) / length * shift, (bx - ax) / length * shift) if shift else (0.0, 0.0)
    return Line((ax + nx, ay + ny), (bx + nx, by + ny), width, index, wall.get("slack", (0.0, 0.0)))


class Places:
    """Things by places on a grid."""

    def __init__(self, cell):
        self.cell = cell
        self.things = {}

    def key(self, point):
        return math.floor(point[0] / self.cell), math.floor(point[1] / self.cell)

    def add(self, point, thing):
        self.things.setdefault(self.key(point), []).append(thing)

    def near(self, point):
        x, y = self.key(point)
        for i in (x - 1, x, x + 1):
            for j in (y - 1, y, y + 1):
                yield from self.things.get((i, j), ())

    def add_line(self, line):
        """The line in every cell that it runs through."""
        steps = max(1, math.ceil(line.length / (0.5 * self.cell)))
        keys = {self.key((line.start[0] + line.dx * line.length * k / steps,
                          line.start[1] + line.dy * line.length * k / steps))
                for k in range(steps + 1)}
        for key in keys:
            self.things.setdefault(key, []).append(line)

    def near_line(self, line):
        """The lines of the cells that the line runs through, and of those beside them."""
        steps = max(1, math.ceil(line.length / self.cell))
        keys = set()
        for k in range(steps + 1):
            x, y = self.key((line.start[0] + line.dx * line.length * k / steps,
                             line.start[1] + line.dy * line.length * k / steps))
            keys.update((i, j) for i in (x - 1, x, x + 1) for j in (y - 1, y, y + 1))
        found = {}
        for key in keys:
            for other in self.things.get(key, ()):
                found[id(other)] = other
        return found.values()


def off(true, found, tolerance):
    """How far the ends of two lines are off, at most; None where one is too far."""
    best = None
    for start, end in ((found.start, found.end), (found.end, found.start)):
        t, s = true.local(start)
        u, v = true.local(end)
        along = max(abs(t) - true.slack[0], abs(u - true.length) - true.slack[1])
        across = max(abs(s), abs(v))
        if along <= tolerance.along and across <= tolerance.across:
            worst = max(along, across, 0.0)
            best = worst if best is None else min(best, worst)
    return best


def match(true, found, tolerance, widths=True):
    """Index of the true line -> index of the found one, each at most once, the nearest first."""
    reach = max([tolerance.along + max(line.slack) for line in true] + [tolerance.across, 1e-6])
    places = Places(4.0 * reach)
    for j, line in enumerate(found):
        places.add(line.start, j)
        places.add(line.end, j)
    pairs = []
    for i, line in enumerate(true):
        for j in set(places.near(line.start)):
            other = found[j]
            if widths and abs(line.width - other.width) > tolerance.width:
                continue
            distance = off(line, other, tolerance)
            if distance is not None:
                pairs.append((distance, i, j))
    pairs.sort()
    matched, used = {}, set()
    for _, i, j in pairs:
        if i not in matched and j not in used:
            matched[i] = j
            used.add(j)
    return matched


def covered(lines, others, tolerance, cell):
    """Of every line the length on which others of its width lie."""
    places = Places(cell)
    for other in others:
        if other.length > 0.0:
            places.add_line(other)
    lengths = []
    for line in lines:
        spans = []
        for other in places.near_line(line):
            if abs(line.width - other.width) > tolerance.width:
                continue
            shorter = min(line.length, other.length)
            cross = abs(line.dx * other.dy - line.dy * other.dx)
            if cross > min(0.1, max(1e-7, 2.0 * tolerance.across / max(shorter, 1e-9))):
                continue
            t, s = line.local(other.start)
            u, v = line.local(other.end)
            if t > u:
                t, s, u, v = u, v, t, s
            # How far beside the line the overlap's ends are.
            low, high = max(t, 0.0), min(u, line.length)
            if high <= low:
                continue
            slope = (v - s) / (u - t)
            if max(abs(s + slope * (low - t)), abs(s + slope * (high - t))) <= tolerance.across:
                spans.append((low, high))
        spans.sort()
        length, reached = 0.0, 0.0
        for low, high in spans:
            if high > reached:
                length += high - max(low, reached)
                reached = high
        lengths.append(length)
    return lengths


def box(points):
    xs, ys = [p[0] for p in points], [p[1] for p in points]
    return min(xs), min(ys), max(xs), max(ys)


def match_rooms(true, found, tolerance, key):
    places = Places(max(4.0 * tolerance.place, 1e-6))

    def middle(room):
        if not room.get("polygon"):
            return None
        low_x, low_y, high_x, high_y = box(room["polygon"])
        return 0.5 * (low_x + high_x), 0.5 * (low_y + high_y)

    nowhere = []
    for j, room in enumerate(found):
        place = middle(room)
        if place:
            places.add(place, (j, place))
        else:
            nowhere.append(j)
    pairs = []
    for i, room in enumerate(true):
        # A true room without polygon is known by its area and name alone.
        place = middle(room)
        near = places.near(place) if place else [(j, None) for j in range(len(found))]
        candidates = {j: there for j, there in near}
        candidates.update({j: None for j in nowhere})
        for j, there in candidates.items():
            distance = math.dist(place, there) if place and there else 0.0
            if distance > tolerance.place or key not in found[j] or key not in room:
                continue
            allowed = max(tolerance.area, room.get("tolerance", 0.0)) * room[key]
            if key == "grossArea":
                allowed += room.get("grossSlack", 0.0)
            # Columns may count as part of the room or not.
            columns = room.get("columnAreas", ())[:8]
            difference = min(abs(found[j][key] - room[key] + sum(some))
                             for n in range(len(columns) + 1)
                             for some in itertools.combinations(columns, n))
            if difference <= allowed:
                named = 0 if named_alike(room, found[j]) else 1
                pairs.append((named, distance, difference, i, j))
    pairs.sort()
    matched, used = {}, set()
    for _, _, _, i, j in pairs:
        if i not in matched and j not in used:
            matched[i] = j
            used.add(j)
    return matched


def named_alike(true, found):
    """Whether the found room has the true one's number and name, or one of its names."""
    words = f"{found.get('name') or ''} {found.get('number') or ''}".split()
    names = true.get("names") or [true.get("name") or ""]
    return all(word in words for word in (true.get("number") or "").split()) and \
        any(all(word in words for word in name.split()) for name in names)


def of_matches(what, true, found, matched):
    """The score of things that match one to one. Optional ones are right whether found or not:
    they do not count as missed, and what matches one does not count at all."""
    optional = {i for i, thing in enumerate(true) if thing.get("optional")}
    spared = sum(i in optional for i in matched)
    right = len(matched) - spared
    return Score(what, len(true) - len(optional), len(found) - spared, right, right)


def scores(truth, walls=None, openings=None, rooms=None, tolerance=None, columns=None):
    """[Score] of what was found, and what was missed or made up, as (what, thing) pairs."""
    unit = truth["millimetersPerUnit"]
    table, wrong = [], []
    if walls is not None:
        true = [wall_line(i, wall) for i, wall in enumerate(truth["walls"])]
        found = [wall_line(i, wall) for i, wall in enumerate(walls)]
        matched = match(true, found, tolerance)
        cell = 2000.0 / unit
        on_true = covered(true, found, tolerance, cell)
        on_found = covered(found, true, tolerance, cell)
        # Where middle lines do not meet in one point, a stub of a wall may lead from one to another.
        right = set(matched.values())
        stubs = {j for j, (line, length) in enumerate(zip(found, on_found))
                 if j not in right and line.length <= 0.5 * line.width
                 and length >= line.length - 2.0 * tolerance.along}
        score = of_matches("walls", truth["walls"], walls, matched)
        table.append(dataclasses.replace(score, found=score.found - len(stubs)))
        must = [not wall.get("optional") for wall in truth["walls"]]
        wrong += [("wall missed", truth["walls"][i]) for i in range(len(true))
                  if i not in matched and must[i]]
        spared = right | stubs
        wrong += [("wall made up", walls[j]) for j in range(len(found)) if j not in spared]

        spare = [2.0 * tolerance.along + sum(line.slack) for line in true]
        # Of a found wall the ends may stick out by half of the wall that it meets.
        widest = max((line.width for line in true), default=0.0)
        whole = [c >= line.length - s - 1e-9 * line.length for c, line, s in zip(on_true, true, spare)]
        real = [c >= line.length - 2.0 * tolerance.along - 0.5 * widest - 1e-9 * line.length
                and c >= 0.5 * line.length for c, line in zip(on_found, found)]
        table.append(Score("walls, cut or joined", sum(must), len(found),
                           sum(map(min, whole, must)), sum(real)))
        to_metres = unit / 1000.0
        table.append(Score("walls, metres",
                           to_metres * sum(line.length for line, m in zip(true, must) if m),
                           to_metres * sum(line.length for line in found),
                           to_metres * sum(length for length, m in zip(on_true, must) if m),
                           to_metres * sum(on_found)))
        wrong += [("wall not covered", truth["walls"][i]) for i, yes in enumerate(whole)
                  if not yes and must[i]]
        wrong += [("wall on none", walls[j]) for j, yes in enumerate(real) if not yes]
    if openings is not None:
        true = [Line(o["start"][:2], o["end"][:2], o["width"], o) for o in truth["openings"]]
        found = [Line(o["start"][:2], o["end"][:2], o["width"], o) for o in openings]
        wide = dataclasses.replace(tolerance, width=2.0 * tolerance.along)
        matched = match(true, found, wide)
        table.append(of_matches("openings", truth["openings"], openings, matched))
        kinds = sum(true[i].source["kind"] == found[j].source.get("kind") for i, j in matched.items())
        table.append(Score("openings by kind", len(matched), len(matched), kinds, kinds))
        if walls is not None:
            lines = [wall_line(i, wall) for i, wall in enumerate(walls)]
            placed = sum(lies_in(found[j], lines, tolerance) for j in matched.values())
            table.append(Score("openings in their wall", len(matched), len(matched), placed, placed))
        wrong += [("opening missed", line.source) for i, line in enumerate(true)
                  if i not in matched and not line.source.get("optional")]
        right = set(matched.values())
        wrong += [("opening made up", line.source) for j, line in enumerate(found) if j not in right]
    if rooms is not None:
        true = truth["rooms"]
        matched = match_rooms(true, rooms, tolerance, "netArea")
        table.append(of_matches("rooms", true, rooms, matched))
        if all("grossArea" in room for room in true):
            table.append(of_matches("rooms by gross area", true, rooms,
                                    match_rooms(true, rooms, tolerance, "grossArea")))
        named = sum(named_alike(true[i], rooms[j]) for i, j in matched.items())
        table.append(Score("rooms by name", len(matched), len(matched), named, named))
        wrong += [("room missed", room) for i, room in enumerate(true)
                  if i not in matched and not room.get("optional")]
        right = set(matched.values())
        wrong += [("room made up", room) for j, room in enumerate(rooms) if j not in right]
    if columns is not None and "columns" in truth:
        matched = match_columns(truth["columns"], columns, max(tolerance.place / 3.0, 1e-6))
        table.append(Score("columns", len(truth["columns"]), len(columns), matched, matched))
    return table, wrong


def lies_in(opening, walls, tolerance):
    """Whether the wall that the opening names is there and holds it."""
    index = opening.source.get("wall")
    if index is None or not 0 <= index < len(walls):
        return False
    wall = walls[index]
    # Where a wall meets another one at its window, the window runs past the junction.
    spare = tolerance.along + 0.5 * wall.width
    return all(abs(s) <= 2.0 * tolerance.across and -spare <= t <= wall.length + spare
               for t, s in (wall.local(opening.start), wall.local(opening.end)))


def match_columns(true, found, reach):
    def middle(column):
        if column.get("polygon"):
            low_x, low_y, high_x, high_y = box(column["polygon"])
            return 0.5 * (low_x + high_x), 0.5 * (low_y + high_y)
        return column["center"][:2] if "center" in column else (math.inf, math.inf)

    places = Places(4.0 * reach)
    for j, column in enumerate(found):
        place = middle(column)
        if math.isfinite(place[0]):
            places.add(place, (j, place))
    used = set()
    for column in true:
        place = middle(column)
        near = [(math.dist(place, there), j) for j, there in places.near(place) if j not in used]
        if near and min(near)[0] <= reach:
            used.add(min(near)[1])
    return len(used)


# Files ---------------------------------------------------------------------------------------

def load(path):
    with open(path, encoding="utf-8") as stream:
        return json.load(stream)


def drawing_of(report):
    """What a report says of its one drawing, whether it stands at the top or inside."""
    drawings = report.get("drawings")
    if drawings:
        if len(drawings) > 1:
            raise ValueError(f"the report is of {len(drawings)} drawings, not of one")
        return drawings[0]
    return report


def tolerance_of(truth, unit):
    """The truth's own tolerance, or what its noise asks for."""
    if "tolerance" in truth:
        own = truth["tolerance"]  # in millimetres
        return Tolerance(own["along"] / unit, own["across"] / unit, own["width"] / unit,
                         own.get("area", 0.01), own.get("place", 300.0) / unit)
    if set(truth.get("noise", ())) & {"gaps", "overshoots", "skew", "pieces", "duplicates"}:
        return Tolerance.noisy(unit)
    size = max((abs(c) for wall in truth["walls"] for end in ("start", "end") for c in wall[end]),
               default=1.0)
    return Tolerance.clean(unit, size)


def as_table(table):
    """The scores as lines of text."""
    rows = [("", "true", "found", "right", "recall", "precision")]
    for score in table:
        def number(value):
            return f"{value:.1f}" if isinstance(value, float) else str(value)
        rows.append((score.what, number(score.true), number(score.found), number(score.true_right),
                     f"{score.recall:.4f}", f"{score.precision:.4f}"))
    widths = [max(len(row[k]) for row in rows) for k in range(6)]
    return "\n".join("  ".join(cell.ljust(width) if k == 0 else cell.rjust(width)
                               for k, (cell, width) in enumerate(zip(row, widths))).rstrip()
                     for row in rows)
