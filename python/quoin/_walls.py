"""Outlines and bodies of walls that are given by reference lines and widths."""

from __future__ import annotations

from typing import Any, Callable, NamedTuple

import numpy as np
from numpy.typing import ArrayLike, NDArray

from . import _arrays, _quoin
from ._errors import Error

#: What `Outline.role` counts.
ROLES = ("left", "right", "start", "end", "connection")
#: What kinds of openings are called, by their number in an array of openings.
KINDS = ("opening", "door", "window")
#: An array of openings: their wall's index, where along its line they begin and end, their kind as
#: an index into KINDS, and the heights of sill and head above the floor, or nan.
OPENINGS = np.dtype([("wall", "i8"), ("start", "f8"), ("end", "f8"), ("kind", "u1"),
                     ("sill", "f8"), ("head", "f8")])
_COLUMNS = ("wall", "start", "end", "kind", "sill", "head")


class Outline(NamedTuple):
    """Lines of outlines, the wall that each is of, and its role as an index into ROLES."""

    lines: NDArray[np.float64]
    source: NDArray[np.int64]
    role: NDArray[np.uint8]


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


def outline(lines: ArrayLike, left: ArrayLike, right: ArrayLike, capture: float = 10.0,
            progress: Callable[[float], None] | None = None) -> Outline:
    """The outlines of walls, mitred where they meet, as ``quoin outline`` draws them.

    `left` and `right` are the widths to both sides of the lines, seen from start to end: one
    number for all walls, or one for each. Ends nearer than `capture` meet: break the lines first.

    >>> import quoin
    >>> quoin.outline([[0, 0, 1000, 0]], 100, 100).lines.tolist()[:2]
    [[0.0, 100.0, 1000.0, 100.0], [0.0, -100.0, 1000.0, -100.0]]
    """
    array = _arrays.lines(lines)
    return Outline(*_quoin.outline(array, _arrays.widths(left, right, len(array)),
                                   _arrays.length(capture, "capture", excluded=True), progress))


def solid(lines: ArrayLike, left: ArrayLike, right: ArrayLike, height: float,
          capture: float = 10.0, openings: Any = None, sill: float = 900.0, head: float = 2100.0,
          door_head: float = 2100.0, progress: Callable[[float], None] | None = None) -> Mesh:
    """Walls as closed bodies with their openings cut out, as ``quoin solid`` builds them.

    `openings` is an array of the dtype OPENINGS. Where it says no heights, windows go from `sill`
    to `head` and doors and plain openings from the floor to `door_head`; the defaults are those of
    a plan in millimetres.

    >>> import quoin
    >>> body = quoin.solid([[0, 0, 1000, 0]], 100, 100, height=2800)
    >>> body.vertices.shape, body.faces.shape
    ((12, 3), (10, 4))
    """
    array = _arrays.lines(lines)
    return Mesh(*_quoin.solid(array, _arrays.widths(left, right, len(array)),
                              _arrays.length(height, "height", excluded=True),
                              _arrays.length(capture, "capture", excluded=True),
                              openings_to_rows(openings, len(array)),
                              _arrays.length(sill, "sill"), _arrays.length(head, "head"),
                              _arrays.length(door_head, "door_head"), progress))
