"""Walls by reference lines and widths; their outlines and bodies."""

from __future__ import annotations

from dataclasses import dataclass, field
from typing import Any, Callable, Dict, List, NamedTuple, Tuple

import numpy as np
from numpy.typing import ArrayLike, NDArray

from . import _arrays, _quoin
from ._errors import Error

#: What `Outline.role` counts.
ROLES = ("left", "right", "start", "end", "connection", "jamb")
#: What kinds of openings are called, by their number in an array of openings.
KINDS = ("opening", "door", "window")
#: An array of openings: their wall's index, where along its line they begin and end, their kind as
#: an index into KINDS, and the heights of sill and head above the floor, or nan.
OPENINGS = np.dtype([("wall", "i8"), ("start", "f8"), ("end", "f8"), ("kind", "u1"),
                     ("sill", "f8"), ("head", "f8")])
_COLUMNS = ("wall", "start", "end", "kind", "sill", "head")


class Curve(NamedTuple):
    """A wall between two concentric arcs: the arc midway between them, counter-clockwise from
    `start` through `sweep` in radians, and the indices of the chords that stand for it among the
    walls."""

    center: Tuple[float, float]
    radius: float
    start: float
    sweep: float
    width: float
    walls: NDArray[np.int64]


@dataclass(frozen=True)
class Walls:
    """Walls by their reference lines, with openings.

    `lines` has the shape (n, 4), or (n, 6) where they were read from a drawing; `left` and `right`
    are the distances of the faces, `confidence` goes from 0 to 1. `openings` has the dtype
    quoin.OPENINGS; `opening_lines` are their ends on the reference lines. `columns` are closed
    outlines that are none of a wall.

    Of walls that were found from faces: `face_lines` are the lines that were read; `faces` are the
    indices of those that each wall was found from, `left_over` those that are part of nothing;
    `curved` are walls between arcs, `found_widths` rows of a width and the length of the walls that
    have it, greatest first.

    Of a drawing: `handles` say where the reference lines are, `face_handles` where the lines of
    `face_lines` are (the dtype quoin.HANDLES, of the blocks' entities for lines in blocks), and
    `opening_handles` where the openings are; None elsewhere. `skipped` are lines among the openings
    that are none: handle and reason.
    """

    lines: NDArray[np.float64]
    left: NDArray[np.float64]
    right: NDArray[np.float64]
    confidence: NDArray[np.float64]
    openings: NDArray[Any]
    opening_lines: NDArray[np.float64]
    columns: List[NDArray[np.float64]]
    faces: List[NDArray[np.int64]] = field(default_factory=list)
    face_lines: NDArray[np.float64] = field(default_factory=lambda: np.empty((0, 4)))
    left_over: NDArray[np.int64] = field(default_factory=lambda: np.empty(0, dtype=np.int64))
    curved: List[Curve] = field(default_factory=list)
    found_widths: NDArray[np.float64] = field(default_factory=lambda: np.empty((0, 2)))
    handles: "NDArray[Any] | None" = None
    face_handles: "NDArray[Any] | None" = None
    opening_handles: "NDArray[np.uint64] | None" = None
    skipped: List[Tuple[int, str]] = field(default_factory=list)

    def __len__(self) -> int:
        return len(self.lines)


class Outline(NamedTuple):
    """Lines of outlines, the wall that each is of, and its role as an index into ROLES; `cut` says
    which openings are left open."""

    lines: NDArray[np.float64]
    source: NDArray[np.int64]
    role: NDArray[np.uint8]
    cut: NDArray[np.int64]


class Mesh(NamedTuple):
    """Closed bodies, one a wall, one after another.

    `vertices` has the shape (v, 3); `faces` (f, 4) with indices into it, counter-clockwise seen
    from outside, the last two the same for a triangle; `source` says the wall of each face, and
    `cut` which openings are cut out.
    """

    vertices: NDArray[np.float64]
    faces: NDArray[np.int64]
    source: NDArray[np.int64]
    cut: NDArray[np.int64]


def openings_to_rows(openings: Any, walls: int) -> NDArray[np.float64]:
    """Openings as the extension module takes them."""
    if openings is None:
        return np.empty((0, 6))
    array = np.asarray(openings)
    if array.dtype != OPENINGS or array.ndim != 1:
        raise Error("openings: an array with the dtype quoin.OPENINGS is wanted")
    for i in np.flatnonzero(~((array["wall"] >= 0) & (array["wall"] < walls)))[:1]:
        raise Error(f"openings[{i}]: there is no wall {array['wall'][i]}")
    for i in np.flatnonzero(array["kind"] >= len(KINDS))[:1]:
        raise Error(f"openings[{i}]: there is no kind {array['kind'][i]}")
    for i in np.flatnonzero(~(np.isfinite(array["start"]) & np.isfinite(array["end"]) &
                              (array["start"] < array["end"])))[:1]:
        raise Error(f"openings[{i}]: from {array['start'][i]} to {array['end'][i]} is no width")
    for name in ("sill", "head"):
        for i in np.flatnonzero(np.isinf(array[name]))[:1]:
            raise Error(f"openings[{i}]: {name} is {array[name][i]}")
    return np.column_stack([array[name].astype(np.float64) for name in _COLUMNS])


def rows_to_openings(rows: NDArray[np.float64]) -> NDArray[Any]:
    """The other way round."""
    openings = np.zeros(len(rows), dtype=OPENINGS)
    for column, name in enumerate(_COLUMNS):
        openings[name] = rows[:, column]
    return openings


def walls_of(found: Dict[str, Any]) -> Walls:
    """What the extension module has found."""
    widths = found.pop("widths")
    found["openings"] = rows_to_openings(found["openings"])
    found["curved"] = [Curve(*curve) for curve in found.pop("curved", ())]
    for name in ("handles", "face_handles"):
        if name in found:
            found[name] = _arrays.places(found[name])
    return Walls(left=widths[:, 0], right=widths[:, 1], **found)


def parts_of(lines: "ArrayLike | Walls", left: Any, right: Any, openings: Any
             ) -> Tuple[NDArray[np.float64], NDArray[np.float64], NDArray[np.float64]]:
    """Lines, widths and openings as the extension module takes them."""
    if isinstance(lines, Walls):
        if left is not None or right is not None or openings is not None:
            raise Error("left, right, openings: found walls have their own")
        left, right, openings = lines.left, lines.right, lines.openings
        lines = lines.lines
    if left is None or right is None:
        raise Error("left, right: how wide are the walls?")
    array = _arrays.lines(lines)
    return array, _arrays.widths(left, right, len(array)), openings_to_rows(openings, len(array))


def outline(lines: "ArrayLike | Walls", left: ArrayLike | None = None,
            right: ArrayLike | None = None, capture: float = 10.0, openings: Any = None,
            progress: Callable[[float], None] | None = None) -> Outline:
    """The outlines of walls, mitred where they meet, as ``quoin outline`` draws them.

    `left` and `right` are the widths to both sides of the lines, seen from start to end: one
    number for all walls, or one for each. Ends nearer than `capture` meet: break the lines first.
    `openings`, an array of the dtype OPENINGS, are left open, with a line across at each jamb; those
    that overlap are one gap, and what has no room between the joints of its wall is not cut. Found
    walls (find_walls()) come with their own widths and openings.

    >>> import quoin
    >>> quoin.outline([[0, 0, 1000, 0]], 100, 100).lines.tolist()[:2]
    [[0.0, 100.0, 1000.0, 100.0], [0.0, -100.0, 1000.0, -100.0]]
    >>> import numpy as np
    >>> door = np.array([(0, 300, 1200, 1, np.nan, np.nan)], dtype=quoin.OPENINGS)
    >>> gap = quoin.outline([[0, 0, 4000, 0]], 100, 100, openings=door)
    >>> [quoin.ROLES[role] for role in gap.role]
    ['left', 'left', 'right', 'right', 'jamb', 'jamb', 'start', 'end']
    """
    array, widths, rows = parts_of(lines, left, right, openings)
    return Outline(*_quoin.outline(array, widths,
                                   _arrays.length(capture, "capture", excluded=True), rows,
                                   progress))


def solid(lines: "ArrayLike | Walls", left: ArrayLike | None = None,
          right: ArrayLike | None = None, height: float = 2800.0, capture: float = 10.0,
          openings: Any = None, sill: float = 900.0, head: float = 2100.0,
          door_head: float = 2100.0, progress: Callable[[float], None] | None = None) -> Mesh:
    """Walls as closed bodies with their openings cut out, as ``quoin solid`` builds them.

    `openings` is an array of the dtype OPENINGS. Where it says no heights, windows go from `sill`
    to `head` and doors and plain openings from the floor to `door_head`; the defaults are those of
    a plan in millimetres. Found walls come with their own widths and openings.

    >>> import quoin
    >>> body = quoin.solid([[0, 0, 1000, 0]], 100, 100, height=2800)
    >>> body.vertices.shape, body.faces.shape
    ((12, 3), (10, 4))
    """
    array, widths, rows = parts_of(lines, left, right, openings)
    return Mesh(*_quoin.solid(array, widths,
                              _arrays.length(height, "height", excluded=True),
                              _arrays.length(capture, "capture", excluded=True), rows,
                              _arrays.length(sill, "sill"), _arrays.length(head, "head"),
                              _arrays.length(door_head, "door_head"), progress))
