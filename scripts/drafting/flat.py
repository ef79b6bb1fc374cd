"""A flat: ten rooms, a hall and a corridor, in millimetres."""

from drafting import furniture
from drafting.sheet import MILLIMETRES, Sheet

OUTSIDE, INSIDE = "A-WALL-EXT", "A-WALL-INT"
DOORS, GLAZING, FURNITURE, FIXTURES = "A-DOOR", "A-GLAZ", "A-FURN", "A-FLOR-FIXT"
ROOMS, DIMENSIONS, COLUMNS = "A-AREA-IDEN", "A-ANNO-DIMS", "S-COLS"

THICK, BEARING, PARTITION, SHAFT = 300, 200, 120, 80

# Counter-clockwise from the lower left corner; the living room juts out, with a chamfer.
OUTLINE = [(0, 0), (8100, 0), (8100, -1200), (13200, -1200), (14400, 0), (14400, 9600), (0, 9600)]

# (edge of the outline, from, to)
WINDOWS = [
    (0, 1100, 2900), (0, 4900, 6700),                # the two bedrooms in the south
    (2, 1000, 4000),                                 # living room
    (3, 350, 1350),                                  # in the chamfer
    (4, 1000, 2800), (4, 4300, 5300), (4, 6700, 8500),  # living room, dining, kitchen
    (5, 6800, 7400), (5, 8900, 9500),                # bathroom, ensuite bathroom
    (5, 11400, 13200),                               # master bedroom
]
ENTRANCE = (5, 3400, 4400)


def draw(release="R2010"):
    sheet = Sheet(release, MILLIMETRES)
    for name, color, weight in (
            (OUTSIDE, 7, 50), (INSIDE, 7, 35), (DOORS, 3, 18), (GLAZING, 4, 18), (FURNITURE, 8, 13),
            (FIXTURES, 8, 13), (ROOMS, 2, 25), (DIMENSIONS, 1, 13), (COLUMNS, 6, 50)):
        sheet.layer(name, color, lineweight=weight)
    _walls(sheet)
    _openings(sheet)
    _furniture(sheet)
    _words(sheet)
    return sheet.document


def _walls(sheet):
    sheet.ring(OUTSIDE, OUTLINE, THICK, [*WINDOWS, ENTRANCE])

    def wall(start, end, thickness=PARTITION, openings=(), **corners):
        sheet.wall(INSIDE, start, end, thickness, openings, **corners)

    # South of the corridor: two bedrooms, and the bearing wall beside the living room.
    wall((300, 4260), (7700, 4260), openings=[(2400, 3300), (6000, 6900)])
    wall((3960, 300), (3960, 4200))
    wall((7800, 300), (7800, 5520), BEARING, openings=[(4120, 5120)])
    # North of it; the corner at the hall has one long and one short face on each leg.
    wall((300, 5580), (9500, 5580), openings=[(1700, 2600), (6400, 7200)], right=(0, 120))
    wall((9560, 5640), (9560, 9300), openings=[(700, 1500)], right=(120, 0))
    wall((1560, 4320), (1560, 5520), openings=[(250, 950)])
    wall((4060, 5640), (4060, 9300), openings=[(400, 1200)])
    wall((5960, 5640), (5960, 9300))
    wall((8360, 5640), (8360, 9300))
    # Around the hall and the kitchen.
    wall((11460, 3720), (11460, 9300), openings=[(2700, 3600)], right=(120, 0))
    wall((7900, 3660), (11400, 3660), openings=[(900, 2300)], right=(0, 120))
    wall((11520, 5700), (14100, 5700), openings=[(400, 2000)])
    # A shaft between the two bathrooms, and a chimney as one outline.
    wall((6020, 8560), (6700, 8560), SHAFT, right=(0, SHAFT))
    wall((6740, 8600), (6740, 9300), SHAFT, right=(SHAFT, 0))
    sheet.box(INSIDE, (7900, 1700), (8350, 2900))
    # A bearing column that stands free in the living room.
    sheet.box(COLUMNS, (11340, 700), (11640, 1000))


def _openings(sheet):
    for opening in WINDOWS:
        sheet.window_in(GLAZING, OUTLINE, THICK, opening)
    sheet.door(DOORS, (10000, 9300), (11000, 9300), -1)  # entrance
    sheet.door(DOORS, (3600, 4200), (2700, 4200), 1)  # bedroom
    sheet.door(DOORS, (6300, 4200), (7200, 4200), -1)  # bedroom
    sheet.door(DOORS, (7700, 4420), (7700, 5420), 1)  # corridor
    sheet.door(DOORS, (2900, 5640), (2000, 5640), -1)  # master bedroom
    sheet.door(DOORS, (6700, 5640), (7500, 5640), 1)  # bathroom
    sheet.door(DOORS, (9500, 6340), (9500, 7140), 1)  # toilet
    sheet.door(DOORS, (1620, 4570), (1620, 5270), -1)  # storage
    sheet.door(DOORS, (4120, 6840), (4120, 6040), 1)  # ensuite bathroom
    sheet.door(DOORS, (11520, 6420), (11520, 7320), -1)  # kitchen
    for hinge, side in (((8800, 3600), -1), ((10200, 3600), 1)):  # living room, two leaves
        sheet.door(DOORS, hinge, (9500, 3600), side)


def _furniture(sheet):
    f = furniture
    f.define(sheet, "0", (f.BED, f.SINGLE_BED, f.SOFA, f.TABLE, f.DESK, f.WARDROBE, f.TOILET,
                          f.BASIN, f.BATH, f.SHOWER, f.KITCHEN, f.ARMCHAIR))
    for name, x, y, rotation in (
            (f.BED, 300, 7700, -90), (f.WARDROBE, 4000, 8200, 90),
            (f.SINGLE_BED, 300, 2700, -90), (f.DESK, 2000, 300, 0), (f.WARDROBE, 1200, 4200, 180),
            (f.SINGLE_BED, 7700, 2300, 90), (f.DESK, 5000, 300, 0), (f.WARDROBE, 4900, 4200, 180),
            (f.SOFA, 12200, 3200, 180), (f.SOFA, 14100, 1200, 90), (f.ARMCHAIR, 10100, 2000, -90),
            (f.TABLE, 12800, 4650, 0), (f.KITCHEN, 14100, 7600, 90)):
        sheet.insert(FURNITURE, name, (x, y), rotation)
    for name, x, y, rotation in (
            (f.BATH, 8300, 8300, 90), (f.BASIN, 6020, 7700, -90), (f.TOILET, 8300, 6500, 90),
            (f.SHOWER, 4570, 9300, 180), (f.BASIN, 5900, 7800, 90), (f.TOILET, 5900, 6900, 90),
            (f.TOILET, 8960, 9300, 180), (f.BASIN, 8420, 7300, -90)):
        sheet.insert(FIXTURES, name, (x, y), rotation)


def _words(sheet):
    for name, x, y, area in (
            ("LIVING ROOM", 9900, 700, "31.4 m²"), ("DINING", 12800, 3500, ""),
            ("KITCHEN", 12500, 8600, "9.1 m²"), ("HALL", 10500, 7500, "13.0 m²"),
            ("CORRIDOR", 4700, 4950, "7.3 m²"), ("STORAGE", 900, 4950, "1.4 m²"),
            ("MASTER BEDROOM", 1900, 9030, "13.5 m²"), ("ENSUITE", 4950, 7300, "6.5 m²"),
            ("BATHROOM", 7100, 6900, "7.8 m²"), ("WC", 8960, 8400, "4.0 m²"),
            ("BEDROOM 2", 3050, 2300, "14.0 m²"), ("BEDROOM 3", 4850, 2700, "14.3 m²")):
        if area:
            sheet.room(ROOMS, (x, y), name, area)
        else:
            sheet.text(ROOMS, (x, y), 160, name)
    if not sheet.is_r12:
        sheet.chain(DIMENSIONS, [(x, 9600) for x in (0, 4060, 5960, 8360, 9560, 11460, 14400)], 700)
        sheet.chain(DIMENSIONS, [(0, y) for y in (0, 4260, 5580, 9600)], 700)
    sheet.dimension(DIMENSIONS, (0, 9600), (14400, 9600), 1400)
    sheet.dimension(DIMENSIONS, (0, 0), (0, 9600), 1400)
    sheet.dimension(DIMENSIONS, (14400, 9600), (14400, -1200), 1000)
