"""What was missed and what was made up, as a drawing to lay over the plan."""

from plan_rounds import dxf


def write(path, wrong, unit):
    """One layer for each kind of mistake; a unit has so many millimetres."""
    units = next((name for name, (_, _, size) in dxf.UNITS.items() if abs(size - unit) < 1e-9), "mm")
    primitives = []
    for what, thing in wrong:
        layer = what.upper().replace(" ", "-")
        if thing.get("polygon"):
            primitives.append(("polyline", layer, [tuple(p[:2]) for p in thing["polygon"]], True))
        elif "start" in thing:
            primitives.append(("line", layer, tuple(map(float, thing["start"][:2])),
                               tuple(map(float, thing["end"][:2]))))
    with open(path, "w", encoding="ascii", newline="") as stream:
        dxf.write(stream, primitives, units)
