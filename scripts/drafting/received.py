"""A small house as a consultant sends it: faces with broken corners, doubled lines, ends that are
some millimetres off, doors as blocks, furniture on the walls' layer. In millimetres.

Drawn from a network of walls with faults of a fixed seed, so that what is meant is known exactly.
"""

from random import Random

from drafting import furniture
from drafting.sheet import MILLIMETRES, Sheet
from plan_rounds import drawing
from plan_rounds.network import Edge, Network, area, net_polygon

WALL, DOOR, ROOMS, FURNITURE = "WALLS", "DOORS", "TEXT", "FURNITURE"
OUTER, BEARING, PARTITION = 300, 200, 120
FAULTS = ("gaps", "overshoots", "skew", "duplicates", "pieces")
SEED = 20

NODES = [(0, 0), (6400, 0), (11400, 0), (11400, 4000), (11400, 6600), (9800, 8200), (7000, 8200),
         (5400, 8200), (3400, 8200), (0, 8200), (0, 5300), (0, 4000), (6400, 4000), (7000, 4000),
         (7000, 5300), (5400, 5300), (3400, 5300)]

# (first node, second node, width, openings along it)
WALLS = [
    (0, 1, OUTER, [(1000, 2800, "window"), (4000, 5200, "window")]),
    (1, 2, OUTER, [(1600, 3400, "window")]),
    (2, 3, OUTER, [(1400, 2600, "window")]),
    (3, 4, OUTER, [(900, 1900, "window")]),
    (4, 5, OUTER, [(700, 1560, "window")]),
    (5, 6, OUTER, [(600, 2000, "window")]),
    (6, 7, OUTER, []),
    (7, 8, OUTER, [(700, 1300, "window")]),
    (8, 9, OUTER, [(900, 2700, "window")]),
    (9, 10, OUTER, []),
    (10, 11, OUTER, [(210, 1110, "door")]),
    (11, 0, OUTER, []),
    (11, 12, BEARING, [(4600, 5500, "door")]),
    (12, 13, BEARING, []),
    (13, 3, BEARING, []),
    (1, 12, PARTITION, [(2900, 3700, "door")]),
    (13, 14, PARTITION, [(260, 1060, "door")]),
    (14, 6, PARTITION, []),
    (10, 16, PARTITION, [(1600, 2800, "opening")]),
    (16, 15, PARTITION, [(300, 1000, "door")]),
    (15, 14, PARTITION, [(500, 1200, "door")]),
    (16, 8, PARTITION, []),
    (15, 7, PARTITION, []),
]

# (place, number, name)
NAMES = [((2900, 2300), "01", "LIVING ROOM"), ((8900, 2200), "02", "BEDROOM"),
         ((8900, 6300), "03", "STUDIO"), ((3000, 4700), "04", "CORRIDOR"),
         ((1700, 6900), "05", "KITCHEN"), ((4400, 6900), "06", "BATH"), ((6200, 6900), "07", "STORE")]

COLUMN = ((3850, 1850), (4150, 2150))


def network():
    edges = [Edge(a, b, 0.5 * width, 0.5 * width, "wall") for a, b, width, _ in WALLS]
    for edge, (_, _, _, openings) in zip(edges, WALLS):
        edge.openings = openings
    return Network([(float(x), float(y)) for x, y in NODES], edges)


class Consultant(drawing.Draftsman):
    """Draws all of it on one layer but the doors."""

    def __init__(self, plan, walls):
        frame = drawing.Frame(0.0, (0.0, 0.0), 1.0)
        super().__init__(Random(SEED), plan, frame, walls, walls.corners(), walls.loops(), FAULTS,
                         "lines")
        self.layers = {drawing.WALL: WALL, drawing.GLAZING: WALL, drawing.DOOR: DOOR}
        self.faults = 2.5
        self.door_style, self.window_style, self.window_lines = "block", "inside", 3


def plan():
    """The walls as they are drawn, and the truth."""
    made = drawing.Plan("mm")
    consultant = Consultant(made, network())
    consultant.walls()
    consultant.openings()
    consultant.state()
    for loop in consultant.loops:
        net = net_polygon(loop, consultant.corners, consultant.network)
        if area(net) < 0.0:
            continue
        number, name = next((n, words) for place, n, words in NAMES if drawing.inside(net, place))
        gross = [consultant.network.nodes[consultant.network.ends(half)[0]] for half in loop]
        made.rooms.append({"name": name, "number": number, "netArea": area(net) * 1e-6,
                           "grossArea": area(gross) * 1e-6, "polygon": net})
        if drawing.inside(net, COLUMN[0]):
            made.rooms[-1]["columnAreas"] = [0.09]
    (x0, y0), (x1, y1) = COLUMN
    made.columns.append({"polygon": [(x0, y0), (x1, y0), (x1, y1), (x0, y1)]})
    return made


def draw():
    sheet = Sheet("R2010", MILLIMETRES)
    for name, color in ((WALL, 7), (DOOR, 3), (ROOMS, 2), (FURNITURE, 8)):
        sheet.layer(name, color)
    block = sheet.block("DOOR")
    sheet.line("0", (0, 0), (0, 1), block)
    sheet.arc("0", (0, 0), 1.0, 0.0, 90.0, block)
    made = plan()
    for kind, layer, *rest in made.primitives:
        rounded = [_rounded(value) for value in rest]
        if kind == "line":
            sheet.line(layer, *rounded)
        elif kind == "polyline":
            sheet.polyline(layer, *rounded)
        elif kind == "insert":
            name, place, sx, sy, turn = rounded
            sheet.insert(layer, name, place, turn, sx, sy)
    sheet.box(WALL, *COLUMN)
    for (x, y), number, name in NAMES:
        room = next(room for room in made.rooms if room["number"] == number)
        sheet.text(ROOMS, (x, y + 280), 160, number)
        sheet.room(ROOMS, (x, y), name, f"{room['netArea']:.1f} m²")
    _furniture(sheet)
    return sheet.document


def _rounded(value):
    """Coordinates in thousandths of a millimetre."""
    if isinstance(value, float):
        return round(value, 3)
    if isinstance(value, (tuple, list)):
        return type(value)(_rounded(part) for part in value)
    return value


def _furniture(sheet):
    f = furniture
    f.define(sheet, "0", (f.BED, f.SINGLE_BED, f.SOFA, f.TABLE, f.DESK, f.WARDROBE, f.TOILET, f.BASIN,
                          f.SHOWER, f.KITCHEN, f.ARMCHAIR))
    for layer, name, x, y, rotation in (
            (FURNITURE, f.SOFA, 150, 2000, -90), (FURNITURE, f.ARMCHAIR, 1900, 3500, 180),
            (FURNITURE, f.TABLE, 5350, 1500, 90), (WALL, f.WARDROBE, 9200, 3900, 180),
            (FURNITURE, f.BED, 11250, 1300, 90), (FURNITURE, f.DESK, 8400, 8050, 180),
            (WALL, f.WARDROBE, 10300, 4100, 0), (WALL, f.KITCHEN, 150, 6800, -90),
            (FURNITURE, f.SHOWER, 3900, 8050, 180), (FURNITURE, f.TOILET, 4950, 8050, 180),
            (FURNITURE, f.BASIN, 5340, 6500, 90)):
        sheet.insert(layer, name, (x, y), rotation)
    # Shelves of the store, drawn as lines on the walls' layer.
    for x in (5460, 5860, 6540, 6940):
        sheet.line(WALL, (x, 6000), (x, 8050))
    sheet.line(WALL, (5460, 6000), (5860, 6000))
    sheet.line(WALL, (6540, 6000), (6940, 6000))
