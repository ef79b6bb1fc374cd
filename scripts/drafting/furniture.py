"""Furniture as blocks, each with its origin in the middle of the side that stands at a wall.

Sizes are given in metres and scaled to the drawing's unit.
"""

BED, SINGLE_BED, SOFA, TABLE, DESK, WARDROBE = "BED", "BED-1", "SOFA", "TABLE-6", "DESK", "WARDROBE"
TOILET, BASIN, BATH, SHOWER, KITCHEN, ARMCHAIR = "WC", "BASIN", "BATH", "SHOWER", "KITCHEN", "CHAIR"


def define(sheet, layer, names):
    """Adds the named blocks to the drawing; their parts are on `layer`."""
    metre = sheet.unit

    for name in names:
        block = sheet.block(name)

        def box(x0, y0, x1, y1):
            sheet.box(layer, (x0 * metre, y0 * metre), (x1 * metre, y1 * metre), block)

        def line(x0, y0, x1, y1):
            sheet.line(layer, (x0 * metre, y0 * metre), (x1 * metre, y1 * metre), block)

        def circle(x, y, radius):
            sheet.circle(layer, (x * metre, y * metre), radius * metre, block)

        def arc(x, y, radius, start, end):
            sheet.arc(layer, (x * metre, y * metre), radius * metre, start, end, block)

        if name in (BED, SINGLE_BED):
            half = 0.9 if name == BED else 0.5
            box(-half, 0.0, half, 2.0)
            line(-half, 1.35, half, 1.35)
            for x in ((-0.45, 0.45) if name == BED else (0.0,)):
                box(x - 0.35, 0.1, x + 0.35, 0.5)
        elif name == SOFA:
            box(-1.1, 0.0, 1.1, 0.9)
            box(-0.9, 0.25, 0.0, 0.9)
            box(0.0, 0.25, 0.9, 0.9)
        elif name == ARMCHAIR:
            box(-0.4, 0.0, 0.4, 0.8)
            box(-0.25, 0.2, 0.25, 0.8)
        elif name == TABLE:
            box(-0.8, -0.45, 0.8, 0.45)
            for x in (-0.5, 0.0, 0.5):
                box(x - 0.2, 0.5, x + 0.2, 0.9)
                box(x - 0.2, -0.9, x + 0.2, -0.5)
        elif name == DESK:
            box(-0.8, 0.0, 0.8, 0.8)
            box(-0.25, 0.85, 0.25, 1.3)
            arc(0.0, 1.3, 0.25, 0.0, 180.0)
        elif name == WARDROBE:
            box(-0.9, 0.0, 0.9, 0.6)
            line(-0.9, 0.3, 0.9, 0.3)
            for step in range(1, 9):
                line(-0.9 + 0.2 * step, 0.08, -0.88 + 0.2 * step, 0.52)
        elif name == TOILET:
            box(-0.2, 0.0, 0.2, 0.18)
            arc(0.0, 0.42, 0.18, 0.0, 180.0)
            line(-0.18, 0.18, -0.18, 0.42)
            line(0.18, 0.18, 0.18, 0.42)
        elif name == BASIN:
            box(-0.3, 0.0, 0.3, 0.45)
            circle(0.0, 0.24, 0.16)
        elif name == BATH:
            box(-0.85, 0.0, 0.85, 0.75)
            box(-0.75, 0.1, 0.75, 0.65)
            circle(0.6, 0.375, 0.03)
        elif name == SHOWER:
            box(-0.45, 0.0, 0.45, 0.9)
            line(-0.45, 0.0, 0.45, 0.9)
            line(-0.45, 0.9, 0.45, 0.0)
        elif name == KITCHEN:
            box(-1.2, 0.0, 1.2, 0.6)
            box(-0.9, 0.1, -0.4, 0.5)
            for x in (0.35, 0.75):
                for y in (0.17, 0.43):
                    circle(x, y, 0.1)
