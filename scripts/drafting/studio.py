"""A studio with a wing turned by 45 degrees, drawn as wall reference lines only: what walls are
before they have faces. Outer and inner walls on layers of their own, with grid lines that run
past the building. In millimetres."""

from drafting.sheet import MILLIMETRES, Sheet

OUTER, INNER, GRID, WORDS = "W-EXT", "W-INT", "S-GRID", "A-TEXT"

# The outer wall's reference line, counter-clockwise; the wing stands on the last but two.
OUTLINE = [(0, 0), (12600, 0), (12600, 5200), (16200, 8800), (12000, 13000), (8400, 9400),
           (0, 9400)]

INNER_WALLS = [
    ((0, 5200), (12600, 5200)),
    ((4200, 0), (4200, 5200)),
    ((4200, 5200), (4200, 9400)),
    ((8400, 0), (8400, 5200)),
    ((8400, 5200), (8400, 9400)),
    ((12600, 5200), (8400, 9400)),
    ((10200, 11200), (14400, 7000)),
    ((6300, 1500), (6300, 3700)),  # stands free
]

ROOMS = [((900, 2500), "workshop"), ((5000, 4300), "gallery"), ((9300, 2500), "office"),
         ((900, 7200), "store"), ((5000, 7200), "library"), ((8800, 6300), "stairs"),
         ((10500, 9200), "studio"), ((12200, 10600), "roof light")]


def draw():
    sheet = Sheet("R2010", MILLIMETRES)
    for name, color, weight in ((OUTER, 7, 50), (INNER, 3, 35), (WORDS, 2, 18)):
        sheet.layer(name, color, lineweight=weight)
    sheet.layer(GRID, 1, "DASHDOT", 13)
    for start, end in zip(OUTLINE, OUTLINE[1:] + OUTLINE[:1]):
        sheet.model.add_line(start, end, dxfattribs={"layer": OUTER})
    for start, end in INNER_WALLS:
        sheet.model.add_line(start, end, dxfattribs={"layer": INNER})
    for x in (0, 4200, 8400, 12600):
        sheet.model.add_line((x, -1800), (x, 11000), dxfattribs={"layer": GRID})
    for y in (0, 5200, 9400):
        sheet.model.add_line((-1600, y), (14200, y), dxfattribs={"layer": GRID})
    for position, name in ROOMS:
        sheet.model.add_text(name, dxfattribs={"layer": WORDS, "height": 280, "style": "PLAN",
                                               "insert": position})
    return sheet.document
