"""Rooms as a table of geopandas, with names and areas, written as GeoPackage."""

import pathlib
import sys

import geopandas
import shapely.affinity
import shapely.geometry

import quoin

out = pathlib.Path(sys.argv[1] if len(sys.argv) > 1 else "out")
out.mkdir(parents=True, exist_ok=True)

with quoin.Drawing("examples/flat/flat.dxf") as drawing:
    rooms = drawing.find_rooms()
    metre = drawing.mm_per_unit / 1000.0

# A room has __geo_interface__, so shapely makes a polygon of it; here it is one in metres.
polygons = [shapely.affinity.scale(shapely.geometry.shape(room), metre, metre, origin=(0, 0))
            for room in rooms]
# A plan has no place on the earth: its coordinates are of their own kind, an engineering system.
plan = """ENGCRS["plan", EDATUM["plan"], CS[Cartesian, 2], AXIS["x", east], AXIS["y", north],
          LENGTHUNIT["metre", 1]]"""
table = geopandas.GeoDataFrame({"name": [room.name for room in rooms],
                                "net_m2": [room.net_area * metre ** 2 for room in rooms],
                                "doors": [len(room.ways) for room in rooms]},
                               geometry=polygons, crs=plan)
table.to_file(out / "rooms.gpkg", layer="rooms", driver="GPKG")

read = geopandas.read_file(out / "rooms.gpkg")
assert len(read) == len(rooms)
assert abs(read.area - read["net_m2"]).max() < 1e-9 * read["net_m2"].max()
print(f"{len(read)} rooms, {read['net_m2'].sum():.1f} m2")
for _, room in read.sort_values("net_m2", ascending=False).head(3).iterrows():
    print(f"  {room['name']}: {room['net_m2']:.1f} m2, {room['doors']} doors")
