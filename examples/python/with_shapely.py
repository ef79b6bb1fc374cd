"""Rooms as shapely polygons: areas, neighbours, what a point is in."""

import shapely.geometry
import shapely.ops

import quoin

with quoin.Drawing("examples/flat/flat.dxf") as drawing:
    lines, _ = drawing.lines()
rooms = quoin.find_rooms(quoin.find_walls(lines))

# A room has __geo_interface__, so shapely and geopandas take it as it is:
# geopandas.GeoDataFrame(geometry=[shapely.geometry.shape(room) for room in rooms])
polygons = [shapely.geometry.shape(room) for room in rooms]
for room, polygon in zip(rooms, polygons):
    assert abs(polygon.area - room.net_area) <= 1e-6 * room.net_area
print(f"{len(polygons)} rooms, {sum(p.area for p in polygons) / 1e6:.1f} m2")

# What lies within 250 mm of one another shares a wall.
pairs = [(i, j) for i, a in enumerate(polygons) for j, b in enumerate(polygons)
         if i < j and a.distance(b) < 250.0]
print(f"{len(pairs)} pairs of rooms share a wall")

# Lines of shapely become an array, and the other way round.
stem = shapely.geometry.LineString([(400, 500), (400, 0)])
top = shapely.geometry.LineString([(0, 0), (1000, 0)])
pieces, source = quoin.break_lines([[*a, *b] for a, b in (top.coords, stem.coords)])
print([shapely.geometry.LineString(piece.reshape(2, 2)).length for piece in pieces])
