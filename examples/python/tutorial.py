"""From a drawing to rooms, with arrays. Run from the folder of a checkout:

    python3 examples/python/tutorial.py out

docs/python.md walks through it; its pictures go into the folder that is named.
"""

import pathlib
import sys

import numpy as np

import quoin

out = pathlib.Path(sys.argv[1] if len(sys.argv) > 1 else "out")
out.mkdir(parents=True, exist_ok=True)

# %% A drawing is a document: its wall lines are an array, and where they come from another one.
drawing = quoin.Drawing("examples/flat/flat.dxf")
lines, handles = drawing.lines()
print(f"{drawing.info['release']} in {drawing.units}: {len(lines)} wall lines")

# %% Lines are broken where others meet them.
pieces, source = quoin.break_lines(lines, drawing.capture)
cut = np.flatnonzero(np.bincount(source) > 1)
print(f"{len(cut)} lines are cut into {np.isin(source, cut).sum()} pieces")
drawing.picture(out / "broken.png", highlight=pieces[np.isin(source, cut)], title="cut lines")

# %% The drawing takes the pieces, and is saved: nothing else in it changes.
drawing.replace(pieces, handles[source])
print("saved:", pathlib.Path(drawing.save(out / "broken.dxf").path).name)

# %% Walls are found between the faces, and rooms between the walls. (drawing.find_walls() and
# drawing.find_rooms() take all else that the drawing shows along: swings of doors, names.)
walls = quoin.find_walls(lines)
rooms = quoin.find_rooms(walls)
print(f"{len(walls)} walls, {len(walls.openings)} openings, {len(rooms)} rooms")
for room in sorted(rooms, key=lambda room: -room.net_area):
    x, y = room.label_point
    print(f"  {room.net_area / 1e6:6.2f} m2 around ({x:.0f}, {y:.0f}), {len(room.ways)} doors")

# %% The walls, outlined again with their openings left open, and as bodies.
outline = quoin.outline(walls)
body = quoin.solid(walls, height=2800)
print(f"{len(outline.lines)} lines of outlines, {len(outline.cut)} openings left open; "
      f"{len(body.faces)} faces, {len(body.cut)} openings cut out")
drawing.append(outline.lines, "WALL-OUTLINE")
drawing.picture(out / "outlined.png", highlight=outline.lines, title="outlines")
drawing.close()
