"""Plan reading: walls from faces, rooms from walls, lines cleaned."""

from __future__ import annotations

from dataclasses import dataclass, field
from typing import Any, Dict, List, NamedTuple, Sequence, Tuple, overload

import numpy as np
from numpy.typing import ArrayLike, NDArray

from . import _arrays, _quoin
from ._errors import Error
from ._lines import Found
from ._walls import KINDS, Walls, parts_of, walls_of


@dataclass(frozen=True)
class Room:
    """A room between the faces of walls.

    `outer` is its outline, (k, 2), counter-clockwise and without its first corner at the end;
    `holes` the same, clockwise. Areas and lengths are in the units of the coordinates. `walls` and
    `openings` are indices of those around it; `ways` pairs of an opening that one can go through
    and the index of the room behind it, or None. `is_gross_by_strips`: the reference lines do not
    enclose the room for itself, and the gross area goes along its edges. Texts of a drawing give
    `name`, `number` and `stated_area` (in square metres).
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
    is_gross_by_strips: bool = False
    name: str = ""
    number: str = ""
    stated_area: "float | None" = None

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


class Rooms(Sequence[Room]):
    """The rooms of a drawing, as a sequence; `walls` are those that their indices mean.

    `too_small` are outlines of what is enclosed and no room, `walls_left_out` counts walls no
    longer than the capture distance.
    """

    def __init__(self, rooms: List[Room], walls: Walls, too_small: List[NDArray[np.float64]],
                 walls_left_out: int):
        self._rooms = rooms
        self.walls = walls
        self.too_small = too_small
        self.walls_left_out = walls_left_out

    def __len__(self) -> int:
        return len(self._rooms)

    @overload
    def __getitem__(self, index: int) -> Room: ...
    @overload
    def __getitem__(self, index: slice) -> List[Room]: ...

    def __getitem__(self, index: Any) -> Any:
        return self._rooms[index]

    def __repr__(self) -> str:
        return f"<quoin.Rooms: {len(self)} of {len(self.walls)} walls>"


class CleanAction(NamedTuple):
    """What cleaning did to one line: `step` is "duplicate", "overlap", "snap", "extend", "trim",
    "spur" or "join". `start` and `end` are where an end was and is, or the ends of a line that is
    gone; None for a whole polyline. `survivor` is the handle of what stays in its place."""

    step: str
    handle: int
    segment: int
    start: "Tuple[float, float, float] | None"
    end: "Tuple[float, float, float] | None"
    survivor: "int | None"


class Undecided(NamedTuple):
    """A place that cleaning left as it is: `why` is "severalEnds", "severalPlaces" or
    "otherProperties"; `mark` is the handle of the circle about it."""

    why: str
    at: Tuple[float, float, float]
    handle: int
    segment: int
    other: "int | None"
    mark: int


@dataclass(frozen=True)
class Cleaned:
    """What Drawing.clean() did: `counts` of each step, the `actions`; the `lines` that changed and
    are left, with their `handles`; the handles of those `removed`; what is `undecided`, with how
    many marks were added and erased."""

    counts: Dict[str, int]
    actions: List[CleanAction]
    lines: NDArray[np.float64]
    handles: NDArray[Any]
    removed: NDArray[Any]
    undecided: List[Undecided]
    kept_overlaps: int
    is_settled: bool
    marks_added: int
    marks_erased: int


def cleaned_of(found: Dict[str, Any]) -> Cleaned:
    """What the extension module has done."""
    for name in ("handles", "removed"):
        found[name] = _arrays.places(found[name])
    found["actions"] = [CleanAction(*action) for action in found["actions"]]
    found["undecided"] = [Undecided(why, at, handle, segment, other, mark)
                          for (why, at, handle, segment, other), mark in
                          zip(found["undecided"], found.pop("marks"))]
    return Cleaned(**found)


def rooms_of(found: Dict[str, Any]) -> Rooms:
    """What the extension module has found."""
    return Rooms([Room(**room) for room in found["rooms"]], walls_of(found["walls"]),
                 found["too_small"], found["walls_left_out"])


def find_walls(lines: ArrayLike, mm_per_unit: float = 1.0, arcs: ArrayLike | None = None,
               symbols: ArrayLike | None = None, face_arcs: ArrayLike | None = None,
               boxes: ArrayLike | None = None, **lengths: float) -> Walls:
    """Finds the walls of a plan that draws each as two faces, and the openings in them.

    `arcs` are door swings: rows of x and y of the centre, radius, the angle at which they begin and
    how far they turn, in radians; `face_arcs` the same for arcs that may be faces of curved walls.
    `symbols` are lines of other layers that may be drawn in an opening, `boxes` those of blocks: two
    corners, and what the block's name says it is as an index into quoin.KINDS. Whatever else a
    drawing tells (columns, hatches, multilines) Drawing.find_walls() reads. `min_width`, `max_width`, `max_opening`, `reach` (in the units of the coordinates) and
    `min_confidence` may be given; their defaults are those of ``quoin walls``, for a plan of which
    one unit is `mm_per_unit` millimetres.

    >>> import quoin
    >>> walls = quoin.find_walls([[0, 0, 4000, 0], [0, 200, 4000, 200],
    ...                           [0, 0, 0, 200], [4000, 0, 4000, 200]])
    >>> walls.lines.tolist(), (walls.left + walls.right).tolist()
    ([[0.0, 100.0, 4000.0, 100.0]], [200.0])
    """
    turn = ("x", "y", "radius", "begin", "turn")
    drawn = np.empty((0, 4)) if symbols is None else symbols
    known = _arrays.rows(boxes, "boxes", ("x1", "y1", "x2", "y2", "kind"))
    for i in np.flatnonzero(~np.isin(known[:, 4], range(len(KINDS))))[:1]:
        raise Error(f"boxes[{i}]: there is no kind {known[i, 4]:g}")
    found = _quoin.find_walls(
        _arrays.lines(lines), _arrays.rows(arcs, "arcs", turn),
        _arrays.rows(face_arcs, "face_arcs", turn), _arrays.lines(drawn, "symbols"), known,
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
        if len(columns):
            raise Error("columns: found walls have their own")
        columns = lines.columns
    array, widths, rows = parts_of(lines, left, right, openings)
    outlines = []
    for i, column in enumerate(columns):
        corners = _arrays.points(column, f"columns[{i}]")[:, :2]
        if len(corners) < 3:
            raise Error(f"columns[{i}]: {len(corners)} corners are no outline")
        outlines.append(np.ascontiguousarray(corners))
    found = _quoin.find_rooms(array, widths, rows, outlines,
                              _arrays.length(capture, "capture", excluded=True),
                              _arrays.length(min_area, "min_area"),
                              _arrays.length(min_width, "min_width"))
    return [Room(**room) for room in found]


def checked_duplicates(duplicates: str) -> None:
    """Fails: Error for what names no way to treat them."""
    if duplicates not in ("same", "any", "off"):
        raise Error(f"duplicates: {duplicates!r} is none of 'same', 'any' and 'off'")


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
    checked_duplicates(duplicates)
    array = _arrays.lines(lines)
    snap = _arrays.length(snap, "snap")
    # The merge takes ends for touching at the distance at which ends snap.
    return _quoin.clean(array, _arrays.keys(properties, len(array), "properties"), snap or 5.0,
                        snap, _arrays.length(reach, "reach"), _arrays.length(spur, "spur"),
                        duplicates != "off", bool(join), duplicates == "any")
