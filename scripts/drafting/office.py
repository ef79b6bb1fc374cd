"""An office floor around a courtyard, in metres: rows of offices along both façades of four
wings, a corridor between them, stairs, lifts and toilets in the corners, a splayed lobby."""

import itertools

from drafting import furniture
from drafting.sheet import METRES, Sheet

FACADE, CORRIDOR, PARTITION, CORE = "A-WALL-EXTR", "A-WALL-CORR", "A-WALL-PRTN", "A-WALL-CORE"
DOORS, GLAZING, FURNITURE, STAIRS = "A-DOOR", "A-GLAZ", "A-FURN", "A-FLOR-STRS"
ROOMS, GRID, COLUMNS, DIMENSIONS = "A-AREA-IDEN", "S-GRID", "S-COLS", "A-ANNO-DIMS"

WIDTH, HEIGHT, MODULE, BAY = 72.0, 54.0, 1.5, 6.0
THICK, CORRIDOR_THICK, THIN = 0.35, 0.15, 0.10

# From the outer edge inwards, the same on all four sides: façade, offices, wall, corridor,
# wall, offices, façade of the court.
OUTER_FACE = 0.35
WALL_1 = (5.75, 5.90)
WALL_2 = (8.00, 8.15)
COURT = (12.95, 13.30)

FIRE = "FIRE_RATING"  # the core walls carry their rating as extended data
DOOR = 0.90
LOBBY = (30.0, 42.0)  # along the south side


class Side:
    """One of the four wings: `x` runs along the outer edge, `y` from it inwards."""

    def __init__(self, origin, direction, length):
        self.origin, self.direction, self.length = origin, direction, length

    def at(self, x, y):
        (ox, oy), (dx, dy) = self.origin, self.direction
        return round(ox + dx * x - dy * y, 6), round(oy + dy * x + dx * y, 6)

    @property
    def rotation(self):
        return {(1, 0): 0.0, (0, 1): 90.0, (-1, 0): 180.0, (0, -1): 270.0}[self.direction]


SIDES = [Side((0, 0), (1, 0), WIDTH), Side((WIDTH, 0), (0, 1), HEIGHT),
         Side((WIDTH, HEIGHT), (-1, 0), WIDTH), Side((0, HEIGHT), (0, -1), HEIGHT)]


def draw():
    sheet = Sheet("R2000", METRES)
    for name, color, weight in (
            (FACADE, 7, 50), (CORRIDOR, 7, 35), (PARTITION, 7, 25), (CORE, 7, 50), (DOORS, 3, 18),
            (GLAZING, 4, 18), (FURNITURE, 8, 13), (STAIRS, 8, 18), (ROOMS, 2, 25),
            (COLUMNS, 6, 50), (DIMENSIONS, 1, 13)):
        sheet.layer(name, color, lineweight=weight)
    sheet.layer(GRID, 9, "DASHDOT", 13)
    sheet.document.appids.add(FIRE)
    _blocks(sheet)
    _grid(sheet)
    _facades(sheet)
    number = itertools.count(101)
    for index, side in enumerate(SIDES):
        is_long = side.length == WIDTH
        _outer_row(sheet, side, is_long, index == 0, number)
        _inner_row(sheet, side, number)
        _core(sheet, side, index)
    _lobby(sheet)
    return sheet.document


def _blocks(sheet):
    furniture.define(sheet, "0", (furniture.DESK, furniture.TABLE, furniture.TOILET,
                                  furniture.BASIN, furniture.ARMCHAIR))
    # Hinge at the origin, closed along +X, open along +Y.
    block = sheet.block("DOOR-090")
    sheet.line("0", (0, 0), (0, DOOR), block)
    sheet.arc("0", (0, 0), DOOR, 0.0, 90.0, block)
    block = sheet.block("COLUMN-40")
    sheet.box("0", (-0.2, -0.2), (0.2, 0.2), block)
    sheet.line("0", (-0.2, -0.2), (0.2, 0.2), block)
    sheet.line("0", (-0.2, 0.2), (0.2, -0.2), block)
    block = sheet.block("WINDOW-120")
    for y in (0.0, 0.14, 0.21, THICK):
        sheet.line("0", (0, y), (1.2, y), block)


def _grid(sheet):
    for index in range(int(WIDTH / BAY) + 1):
        sheet.axis(GRID, (index * BAY, -3.0), (index * BAY, HEIGHT + 1.0), str(index + 1), 0.7)
    for index in range(int(HEIGHT / BAY) + 1):
        sheet.axis(GRID, (-3.0, index * BAY), (WIDTH + 1.0, index * BAY), "ABCDEFGHJK"[index], 0.7)
    sheet.dimension(DIMENSIONS, (0, HEIGHT), (WIDTH, HEIGHT), 2.5)
    sheet.dimension(DIMENSIONS, (WIDTH, HEIGHT), (WIDTH, 0), 2.5)
    # Columns stand beside the corridor, at every second axis that is not in a core.
    for side in SIDES:
        for step in range(3, int(side.length / BAY) - 2):
            sheet.insert(COLUMNS, "COLUMN-40", side.at(step * BAY, WALL_2[1] + 0.2))


def _facades(sheet):
    def windows(length, first, last, shift):
        count = round((last - first) / MODULE)
        return [(first + k * MODULE + 0.15 - shift, first + (k + 1) * MODULE - 0.15 - shift)
                for k in range(count)]

    outline = [side.at(0, 0) for side in SIDES]
    openings = [(edge, *window) for edge, side in enumerate(SIDES)
                for window in windows(side.length, MODULE, side.length - MODULE, 0.0)]
    sheet.ring(FACADE, outline, THICK, openings)
    for edge, begin, _ in openings:
        side = SIDES[edge]
        sheet.insert(GLAZING, "WINDOW-120", side.at(begin, 0), side.rotation)

    court = [side.at(COURT[0], COURT[0]) for side in SIDES]
    openings = [(edge, *window) for edge, side in enumerate(SIDES)
                for window in windows(side.length, 13.5, side.length - 13.5, COURT[0])]
    sheet.ring(FACADE, court, THICK, openings)
    for edge, begin, _ in openings:
        side = SIDES[edge]
        sheet.insert(GLAZING, "WINDOW-120", side.at(COURT[0] + begin, COURT[0]), side.rotation)


def _positions(first, last, widths):
    """Where partitions stand: on the modules from `first`, by a repeated list of widths."""
    stops = [first]
    for width in itertools.cycle(widths):
        if stops[-1] + width > last - 3.0:
            return stops
        stops.append(stops[-1] + width)
    return stops


def _door(sheet, side, x, y, inwards, mirrored):
    """A door of a block whose opening begins at `x` along the side, in the wall face at `y`."""
    hinge = side.at(x + DOOR if mirrored else x, y)
    sheet.insert(DOORS, "DOOR-090", hinge, side.rotation,
                 -1.0 if mirrored else 1.0, 1.0 if inwards else -1.0)


def _outer_row(sheet, side, is_long, has_lobby, number):
    """Offices along the outer façade, and the corridor wall that closes them."""
    # On the long sides the wall runs from façade to façade; on the short ones between them.
    begin = OUTER_FACE if is_long else WALL_1[1]
    end = side.length - begin
    first = 7.5 if is_long else WALL_1[1]
    stops = _positions(first, side.length - (7.5 if is_long else WALL_1[1]),
                       (3.0, 3.0, 4.5, 3.0, 6.0, 3.0, 4.5))
    if has_lobby:
        stops = [x for x in stops if not LOBBY[0] - 1.0 < x < LOBBY[1] + 3.0] + list(LOBBY)
        stops.sort()
    partitions = stops if is_long else stops[1:]
    if is_long:
        partitions = [x for x in partitions if x < side.length - 7.5] + [side.length - 7.5]
    for x in partitions:
        if has_lobby and x in LOBBY:
            continue
        sheet.wall(PARTITION, side.at(x, OUTER_FACE), side.at(x, WALL_1[0]), THIN)

    edges = [max(begin, WALL_1[1])] + [x for x in partitions if x > begin] + [side.length - WALL_1[1]]
    openings = []
    for index, (left, right) in enumerate(zip(edges, edges[1:])):
        if right - left < 1.5:
            continue
        if has_lobby and left == LOBBY[0]:
            openings.append((left + 3.0, right - 3.0))
            continue
        mirrored = index % 2 == 1
        x = right - 0.3 - DOOR if mirrored else left + 0.3
        openings.append((x, x + DOOR))
        _door(sheet, side, x, WALL_1[0], False, mirrored)
        # The corner offices reach to both façades.
        is_corner = is_long and (index == 0 or right == edges[-1])
        middle = (left + right) / 2
        if is_corner:
            middle = 3.6 if index == 0 else side.length - 3.6
        if is_corner or right - left > 5.0:
            sheet.insert(FURNITURE, furniture.TABLE, side.at(middle, 2.8), side.rotation)
        else:
            sheet.insert(FURNITURE, furniture.DESK, side.at(middle, 1.0), side.rotation)
        sheet.text(ROOMS, side.at(middle, 4.4), 0.4, str(next(number)))
    middle = (WALL_1[0] + WALL_1[1]) / 2
    sheet.wall(CORRIDOR, side.at(begin, middle), side.at(end, middle), CORRIDOR_THICK,
               [(a - begin, b - begin) for a, b in openings])


def _inner_row(sheet, side, number):
    """Offices along the court, and the inner wall of the corridor with its corners."""
    first, last = COURT[0] + CORRIDOR_THICK, side.length - COURT[0] - CORRIDOR_THICK
    stops = _positions(13.5, last, (4.5, 3.0, 3.0, 6.0, 3.0))[1:]
    for x in stops:
        sheet.wall(PARTITION, side.at(x, WALL_2[1]), side.at(x, COURT[0]), THIN)
    # The walls between offices and cores carry.
    for x in (first - CORRIDOR_THICK / 2, last + CORRIDOR_THICK / 2):
        sheet.wall(CORE, side.at(x, WALL_2[1]), side.at(x, COURT[0]), CORRIDOR_THICK)

    begin, end = WALL_2[1], side.length - WALL_2[1]
    openings = [(10.0, 10.0 + DOOR)]  # the core's own door
    edges = [first, *stops, last]
    _door(sheet, side, 10.0, WALL_2[1], True, False)
    for index, (left, right) in enumerate(zip(edges, edges[1:])):
        mirrored = index % 2 == 0
        x = right - 0.3 - DOOR if mirrored else left + 0.3
        openings.append((x, x + DOOR))
        _door(sheet, side, x, WALL_2[1], True, mirrored)
        middle = (left + right) / 2
        name = furniture.TABLE if right - left > 5.0 else furniture.DESK
        depth = 10.7 if name == furniture.TABLE else 12.3
        sheet.insert(FURNITURE, name, side.at(middle, depth), side.rotation + 180.0)
        sheet.text(ROOMS, side.at(middle, 9.4), 0.4, str(next(number)))
    middle = (WALL_2[0] + WALL_2[1]) / 2
    corner = CORRIDOR_THICK
    sheet.wall(CORRIDOR, side.at(begin, middle), side.at(end, middle), CORRIDOR_THICK,
               [(a - begin, b - begin) for a, b in openings], right=(corner, corner))


def _core(sheet, side, index):
    """What stands in the corner where a side begins: stairs and lifts, or toilets."""
    near, far = WALL_2[1], COURT[0]

    def wall(*arguments, **options):
        for line in sheet.wall(CORE, *arguments, **options):
            line.set_xdata(FIRE, [(1000, "REI 90")])

    # Core and court walls leave a square; local x and y run from its outer corner inwards.
    if index % 2 == 0:
        # Two flights around a wall, then two lifts behind a wall of their own.
        wall(side.at(near, 10.40), side.at(9.60, 10.40), 0.20, caps=(False, True))
        for step in range(8):
            sheet.line(STAIRS, side.at(near + step * 0.18, near + 1.05),
                       side.at(near + step * 0.18, 10.30))
            sheet.line(STAIRS, side.at(near + step * 0.18, 10.50),
                       side.at(near + step * 0.18, 11.65))
        wall(side.at(near, 11.75), side.at(far, 11.75), 0.20, [(2.60, 3.60)])
        wall(side.at(10.55, 11.85), side.at(10.55, far), 0.20)
        sheet.box(STAIRS, side.at(8.35, 11.95), side.at(10.25, 12.85))
        sheet.box(STAIRS, side.at(10.85, 11.95), side.at(12.75, 12.85))
        sheet.text(ROOMS, side.at(11.4, 9.6), 0.4, "STAIRS")
    else:
        # Cubicles along the far wall, basins along the near one.
        sheet.wall(PARTITION, side.at(near, 11.45), side.at(far, 11.45), THIN,
                   [(0.35 + 1.2 * k, 1.05 + 1.2 * k) for k in range(4)])
        for k in range(1, 4):
            sheet.wall(PARTITION, side.at(near + 1.2 * k, 11.50), side.at(near + 1.2 * k, far), 0.05)
        for k in range(4):
            sheet.insert(FURNITURE, furniture.TOILET, side.at(near + 0.6 + 1.2 * k, far),
                         side.rotation + 180.0)
        for k in range(3):
            sheet.insert(FURNITURE, furniture.BASIN, side.at(far, 9.0 + 0.8 * k),
                         side.rotation + 90.0)
        sheet.text(ROOMS, side.at(10.4, 10.3), 0.4, "WC")


def _lobby(sheet):
    """Two splayed walls lead from the entrance to the corridor."""
    south = SIDES[0]
    for start, end in ((LOBBY[0], LOBBY[0] + 2.0), (LOBBY[1], LOBBY[1] - 2.0)):
        # Both faces reach the horizontal faces at whose ends they stop.
        skew = (end - start) / (WALL_1[0] - OUTER_FACE) * THIN / 2
        sheet.wall(PARTITION, south.at(start, OUTER_FACE), south.at(end, WALL_1[0]), THIN,
                   left=(skew, -skew), right=(-skew, skew))
    sheet.text(ROOMS, south.at(36.0, 3.0), 0.5, "LOBBY")
    for x in (33.4, 38.6):
        sheet.insert(FURNITURE, furniture.ARMCHAIR, south.at(x, 1.0), 0.0)
