"""A village house with Chinese layer names, texts and drafting manner: walls about axes, opening
numbers (M doors, C windows), axis bubbles. Code page GBK, in millimetres."""

from drafting import furniture
from drafting.sheet import MILLIMETRES, Sheet

WALL, AXIS, OPENING, DIMENSION = "墙体", "轴线", "门窗", "标注"
FURNITURE, WORDS, COLUMN, STEPS = "家具", "文字", "柱子", "台阶"

THICK, HALF, THIN = 240, 120, 120
X = (0, 3900, 8100, 11700)  # axes 1 to 4
Y = (0, 4500, 6300, 10500)  # axes A to D

# (start and end of the outer wall's axis, the openings along it with their numbers)
OUTER_WALLS = [
    ((X[0], Y[0]), (X[3], Y[0]), [(1050, 2850, "C1815"), (5100, 6900, "M1824"), (9000, 10800, "C1815")]),
    ((X[3], Y[0]), (X[3], Y[3]), [(5100, 5700, "C0609")]),
    ((X[3], Y[3]), (X[0], Y[3]), [(900, 2700, "C1815"), (4800, 6600, "C1815"), (8850, 10650, "C1815")]),
    ((X[0], Y[3]), (X[0], Y[0]), [(4800, 5400, "C0609")]),
]


def draw():
    sheet = Sheet("R2000", MILLIMETRES, encoding="gbk", font="txt.shx", bigfont="gbcbig.shx")
    for name, color, weight in ((WALL, 7, 50), (OPENING, 4, 18), (DIMENSION, 3, 13),
                                (FURNITURE, 8, 13), (WORDS, 2, 18), (COLUMN, 6, 50), (STEPS, 8, 18)):
        sheet.layer(name, color, lineweight=weight)
    sheet.layer(AXIS, 1, "DASHDOT", 13)
    _axes(sheet)
    _walls(sheet)
    _openings(sheet)
    _porch(sheet)
    _furniture(sheet)
    _words(sheet)
    return sheet.document


def _axes(sheet):
    for x, label in zip(X, "1234"):
        sheet.axis(AXIS, (x, -4300), (x, Y[3] + 800), label, 400)
    for y, label in zip(Y, "ABCD"):
        sheet.axis(AXIS, (-2600, y), (X[3] + 800, y), label, 400)
    sheet.chain(DIMENSION, [(x, -2700) for x in X], -500)
    sheet.dimension(DIMENSION, (X[0], -2700), (X[3], -2700), -1100)
    sheet.chain(DIMENSION, [(-900, y) for y in Y], 500)
    sheet.dimension(DIMENSION, (-900, Y[0]), (-900, Y[3]), 1100)


def _walls(sheet):
    # Around the house counter-clockwise: the inner face stops short of the corner's axis, the
    # outer face runs past it.
    for start, end, openings in OUTER_WALLS:
        sheet.wall(WALL, start, end, THICK, [opening[:2] for opening in openings],
                   left=(-HALF, -HALF), right=(HALF, HALF))

    def wall(start, end, openings=(), thickness=THICK):
        sheet.wall(WALL, start, end, thickness, openings)

    low, high = Y[0] + HALF, Y[3] - HALF
    wall((X[1], low), (X[1], high), [(3180, 4080), (4880, 5680), (6980, 8480)])
    wall((X[2], low), (X[2], high), [(3180, 4080), (6680, 7580)])
    wall((X[0] + HALF, Y[1]), (X[1] - HALF, Y[1]))
    wall((X[0] + HALF, Y[2]), (X[1] - HALF, Y[2]))
    wall((X[1] + HALF, Y[2]), (X[2] - HALF, Y[2]), [(780, 3180)])
    wall((X[2] + HALF, Y[1]), (X[3] - HALF, Y[1]), [(680, 1380)])
    wall((X[2] + HALF, Y[2]), (X[3] - HALF, Y[2]))
    # The bath's wet part.
    wall((1800, Y[1] + HALF), (1800, Y[2] - HALF), [(480, 1230)], THIN)


def _openings(sheet):
    for start, end, openings in OUTER_WALLS:
        dx = (end[0] > start[0]) - (end[0] < start[0])
        dy = (end[1] > start[1]) - (end[1] < start[1])

        def at(distance, side):
            return (start[0] + dx * distance - dy * side, start[1] + dy * distance + dx * side)

        for begin, stop, number in openings:
            if number.startswith("C"):
                sheet.window(OPENING, at(begin, -HALF), at(stop, -HALF), THICK)
            # Clear of the wall, though the words lie horizontally beside vertical walls too.
            sheet.text(WORDS, at((begin + stop) / 2, -450 if dx else -600), 200, number)
    middle = 6000
    sheet.door(OPENING, (5100, HALF), (middle, HALF), 1)
    sheet.door(OPENING, (6900, HALF), (middle, HALF), -1)
    for hinge, jamb, side, number, word in (
            ((X[1] - HALF, 3300), (X[1] - HALF, 4200), 1, "M0921", (3300, 3300)),
            ((X[1] - HALF, 5000), (X[1] - HALF, 5800), 1, "M0821", (3000, 5950)),
            ((X[2] + HALF, 3300), (X[2] + HALF, 4200), -1, "M0921", (8750, 3050)),
            ((X[2] + HALF, 7700), (X[2] + HALF, 6800), 1, "M0921", (8800, 8000)),
            ((8900, Y[1] + HALF), (9600, Y[1] + HALF), 1, "M0721", (10150, 4850))):
        sheet.door(OPENING, hinge, jamb, side)
        sheet.text(WORDS, word, 160, number)
    # The kitchen's sliding door: two leaves beside one another.
    sheet.box(OPENING, (X[1] - 60, 7100), (X[1], 7900))
    sheet.box(OPENING, (X[1], 7800), (X[1] + 60, 8600))
    sheet.text(WORDS, (4450, 7850), 160, "M1521")


def _porch(sheet):
    for x in (X[1], X[2]):
        sheet.box(COLUMN, (x - HALF, -1500 - HALF), (x + HALF, -1500 + HALF))
    sheet.polyline(STEPS, [(3500, -120), (3500, -1900), (8500, -1900), (8500, -120)])
    sheet.polyline(STEPS, [(3200, -120), (3200, -2200), (8800, -2200), (8800, -120)])


def _furniture(sheet):
    f = furniture
    f.define(sheet, "0", (f.BED, f.SOFA, f.TABLE, f.DESK, f.WARDROBE, f.TOILET, f.BASIN, f.SHOWER,
                          f.KITCHEN, f.ARMCHAIR))
    for name, x, y, rotation in (
            (f.BED, 120, 1800, -90), (f.WARDROBE, 1200, 4380, 180),
            (f.BED, 11580, 1800, 90), (f.WARDROBE, 10500, 4380, 180),
            (f.SOFA, 4020, 1700, -90), (f.ARMCHAIR, 5400, 3000, 180), (f.TABLE, 6000, 8400, 0),
            (f.KITCHEN, 1950, 10380, 180), (f.DESK, 10600, 10380, 180), (f.WARDROBE, 11580, 7500, 90),
            (f.SHOWER, 800, 4620, 0), (f.TOILET, 2300, 4620, 0), (f.BASIN, 2300, 6180, 180),
            (f.TOILET, 10600, 6180, 180), (f.BASIN, 11580, 4950, 90), (f.SHOWER, 8670, 6180, 180)):
        sheet.insert(FURNITURE, name, (x, y), rotation)


def _words(sheet):
    for name, x, y in (("次卧", 2900, 2300), ("客厅", 6000, 3900), ("主卧", 9000, 2300),
                       ("卫生间", 2450, 5480), ("过道", 6000, 5400), ("主卫", 10050, 5300),
                       ("厨房", 1950, 8200), ("餐厅", 6000, 9900), ("书房", 9900, 8300),
                       ("门廊", 6000, -1100)):
        sheet.text(WORDS, (x, y), 300, name)
    sheet.text(WORDS, (6000, -6000), 450, "一层平面图 1:100")
