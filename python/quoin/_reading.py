"""Plan reading: walls from faces, rooms from walls, lines cleaned."""

from __future__ import annotations

from dataclasses import dataclass, field
from typing import Any, Dict, List, Sequence, Tuple

import numpy as np
from numpy.typing import ArrayLike, NDArray

from . import _arrays, _quoin
from ._errors import Error
from ._lines import Found
from ._walls import openings_to_rows, rows_to_openings


@dataclass(frozen=True)
class Walls:
    """Walls that were found, by their reference lines.

    `lines` has the shape (n, 4); `left` and `right` are the distances of the faces, `confidence`
    goes from 0 to 1. `openings` has the dtype quoin.OPENINGS. `face_lines` are the lines that were
    read; `faces` are the indices of those that each wall was found from, `left_over` those that are
    part of nothing, `columns` closed outlines that are none of a wall.
    """

    lines: NDArray[np.float64]
    left: NDArray[np.float64]
    right: NDArray[np.float64]
    confidence: NDArray[np.float64]
    openings: NDArray[Any]
    faces: List[NDArray[np.int64]]
    face_lines: NDArray[np.float64]
    left_over: NDArray[np.int64]
    columns: List[NDArray[np.float64]]

    def __len__(self) -> int:
        return len(self.lines)


@dataclass(frozen=True)
class Room:
    """A room between the faces of walls.

    `outer` is its outline, (k, 2), counter-clockwise and without its first corner at the end;
    `holes` the same, clockwise. Areas and lengths are in the units of the coordinates. `walls` and
    `openings` are indices of those around it; `ways` pairs of an opening that one can go through
    and the index of the room behind it, or None.
    """

    outer: NDArray[np.float64]
    holes: List[NDArray[np.float64]]
    net_area: float
    gross_area: float
    perimeter: float
    label_point: Tuple[float, float]
    walls: NDArray[np.int64]
    openings: NDArray[np.int64]
    ways: List[Tuple[int, "int | None"]] = field(default_factory=list)

    @property
    def __geo_interface__(self) -> dict[str, Any]:
        """A polygon for shapely, geopandas and all that know GeoJSON's geometries."""
        rings = [np.vstack((ring, ring[:1])).tolist() for ring in (self.outer, *self.holes)]
        return {"type": "Polygon", "coordinates": [[tuple(p) for p in ring] for ring in rings]}


def reading_lengths(lengths: Dict[str, float]) -> Dict[str, float]:
    """The options of plan reading, checked."""
    known = {"min_width", "max_width", "max_opening", "reach", "min_confidence"}
    for name in lengths.keys() - known:
        raise TypeError(f"find_walls() has no argument '{name}'")
    return {name: _arrays.length(value, name) for name, value in lengths.items()}


def walls_of(found: Dict[str, Any]) -> Walls:
    """What the extension module has found."""
    widths = found.pop("widths")
    found["openings"] = rows_to_openings(found["openings"])
    return Walls(left=widths[:, 0], right=widths[:, 1], **found)


def find_walls(lines: ArrayLike, mm_per_unit: float = 1.0, arcs: ArrayLike | None = None,
               symbols: ArrayLike | None = None, **lengths: float) -> Walls:
    """Finds the walls of a plan that draws each as two faces, and the openings in them.

    `arcs` are door swings: rows of x and y of the centre, radius, the angle at which they begin and
    how far they turn, in radians. `symbols` are lines of other layers that may be drawn in an
    opening. `min_width`, `max_width`, `max_opening`, `reach` (in the units of the coordinates) and
    `min_confidence` may be given; their defaults are those of ``quoin walls``, for a plan of which
    one unit is `mm_per_unit` millimetres.

    >>> import quoin
    >>> walls = quoin.find_walls([[0, 0, 4000, 0], [0, 200, 4000, 200],
    ...                           [0, 0, 0, 200], [4000, 0, 4000, 200]])
    >>> walls.lines.tolist(), (walls.left + walls.right).tolist()
    ([[0.0, 100.0, 4000.0, 100.0]], [200.0])
    """
    turns = np.empty((0, 5)) if arcs is None else _arrays.numbers(arcs, "arcs")
    if turns.ndim != 2 or turns.shape[1] != 5 or not np.isfinite(turns).all():
        raise Error("arcs: rows of five finite numbers are wanted: x, y, radius, begin, turn")
    drawn = np.empty((0, 4)) if symbols is None else symbols
    found = _quoin.find_walls(
        _arrays.lines(lines), turns, _arrays.lines(drawn, "symbols"),
        _arrays.length(mm_per_unit, "mm_per_unit", excluded=True),
        reading_lengths(lengths))
    return walls_of(found)


def find_rooms(lines: "ArrayLike | Walls", left: ArrayLike | None = None,
               right: ArrayLike | None = None, openings: Any = None,
               columns: Sequence[ArrayLike] = (), capture: float = 10.0,
               min_area: float = 0.25e6, min_width: float = 150.0) -> List[Room]:
    """The rooms that walls enclose, as ``quoin rooms`` finds them.

    Takes what find_walls() returned, or reference lines with their widths, `openings` of the dtype
    quoin.OPENINGS and `columns` as outlines, (k, 2). What has a smaller area than `min_area`, or is
    narrower than `min_width`, is no room; the defaults are those of a plan in millimetres.

    >>> import quoin
    >>> square = [[0, 0, 5000, 0], [5000, 0, 5000, 4000], [5000, 4000, 0, 4000], [0, 4000, 0, 0]]
    >>> [room.net_area for room in quoin.find_rooms(square, 100, 100)]
    [18240000.0]
    """
    if isinstance(lines, Walls):
        if left is not None or right is not None or openings is not None or len(columns):
            raise Error("left, right, openings, columns: found walls have their own")
        left, right, openings, columns = lines.left, lines.right, lines.openings, lines.columns
        lines = lines.lines
    if left is None or right is None:
        raise Error("left, right: how wide are the walls?")
    array = _arrays.lines(lines)
    rows = openings_to_rows(openings, len(array))
    outlines = []
    for i, column in enumerate(columns):
        corners = _arrays.points(column, f"columns[{i}]")[:, :2]
        if len(corners) < 3:
            raise Error(f"columns[{i}]: {len(corners)} corners are no outline")
        outlines.append(np.ascontiguousarray(corners))
    found = _quoin.find_rooms(array, _arrays.widths(left, right, len(array)), rows, outlines,
                              _arrays.length(capture, "capture", excluded=True),
                              _arrays.length(min_area, "min_area"),
                              _arrays.length(min_width, "min_width"))
    return [Room(**room) for room in found]


def clean(lines: ArrayLike, snap: float = 5.0, reach: float = 20.0, spur: float = 20.0,
          properties: ArrayLike | None = None, duplicates: str = "same",
          join: bool = True) -> Found:
    """Snaps ends, removes duplicates, closes corners and junctions, removes spurs and joins pieces.

    As ``quoin clean``: ends nearer than `snap` move together, dangling ends are extended or trimmed
    by `reach` at most, lines shorter than `spur` that stick out of others go; 0 leaves a step out.
    `duplicates` is "same" for those with equal `properties`, "any", or "off". The defaults are
    those of a plan in millimetres.

    Returns the lines that are left, in their order, and for each its index before. Cleaning twice
    changes nothing.

    >>> import quoin
    >>> quoin.clean([[0, 0, 1000, 0], [1003, 0, 1003, 800]])[0].tolist()
    [[0.0, 0.0, 1003.0, 0.0], [1003.0, 0.0, 1003.0, 800.0]]
    """
    if duplicates not in ("same", "any", "off"):
        raise Error(f"duplicates: {duplicates!r} is none of 'same', 'any' and 'off'")
    array = _arrays.lines(lines)
    snap = _arrays.length(snap, "snap")
    # The merge takes ends for touching at the distance at which ends snap.
    return _quoin.clean(array, _arrays.keys(properties, len(array), "properties"), snap or 5.0,
                        snap, _arrays.length(reach, "reach"), _arrays.length(spur, "spur"),
                        duplicates != "off", bool(join), duplicates == "any")
