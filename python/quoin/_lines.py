"""Lines broken, merged, drawn and trimmed."""

from __future__ import annotations

from typing import Tuple

import numpy as np
from numpy.typing import ArrayLike, NDArray

from . import _arrays, _quoin
from ._errors import Error

#: Lines, and for each the index of the line that it comes from.
Found = Tuple[NDArray[np.float64], NDArray[np.int64]]


def break_lines(lines: ArrayLike, capture: float = 10.0,
                at: ArrayLike | None = None) -> Found:
    """Cuts lines where the end of another line meets them, as ``quoin break`` does.

    `lines` has the shape (n, 4), x1, y1, x2, y2 a row, or (n, 6) with heights. An end meets a line
    that is nearer than `capture`, in the units of the coordinates: 10 in a plan in millimetres,
    0.01 in metres. `at` names points, (k, 2) or (k, 3): the line nearest to each is cut at its
    foot, too.

    Returns all lines after the cuts, along each line and line by line, and for each the index of
    the line that it is of. Lines that nothing cuts, and those without length, are as they were.

    >>> import quoin
    >>> pieces, source = quoin.break_lines([[0, 0, 1000, 0], [400, 500, 400, 0]])
    >>> pieces.tolist()
    [[0.0, 0.0, 400.0, 0.0], [400.0, 0.0, 1000.0, 0.0], [400.0, 500.0, 400.0, 0.0]]
    >>> source.tolist()
    [0, 0, 1]
    """
    return _quoin.break_lines(_arrays.lines(lines),
                              _arrays.length(capture, "capture", excluded=True),
                              _arrays.points(at, "at"))


def merge_lines(lines: ArrayLike, capture: float = 10.0, properties: ArrayLike | None = None,
                keep_at: ArrayLike | None = None) -> Found:
    """Joins collinear lines that touch end to end, as ``quoin merge`` does.

    Lines join that bend by one degree at most where no third line ends, with equal `properties`
    (one for each line, of any kind that can be sorted), and with the same height at both ends.
    Nothing joins at the points `keep_at`.

    Returns the lines that are left, in their order, and for each its index before.

    >>> import quoin
    >>> merged, source = quoin.merge_lines([[0, 0, 400, 0], [400, 0, 1000, 0]])
    >>> merged.tolist()
    [[1000.0, 0.0, 0.0, 0.0]]
    """
    array = _arrays.lines(lines)
    return _quoin.merge_lines(array, _arrays.length(capture, "capture", excluded=True),
                              _arrays.keys(properties, len(array), "properties").astype(np.float64),
                              _arrays.points(keep_at, "keep_at"))


def draw_line(lines: ArrayLike, start: ArrayLike, end: ArrayLike, capture: float = 10.0,
              angle_lock: bool = False) -> Found:
    """Draws a line among others: it cuts those that it crosses and is cut by them.

    `angle_lock` turns it to the nearest multiple of 15 degrees. To draw a path, draw a line in
    what the last one returned.

    Returns all lines, and for each its index before; the pieces of the new line stand last, with
    the index -1.

    >>> import quoin
    >>> drawn, source = quoin.draw_line([[0, 0, 1000, 0]], (400, -300), (400, 300))
    >>> source.tolist()
    [0, 0, -1, -1]
    """
    ends = [_arrays.points(point, name) for point, name in ((start, "start"), (end, "end"))]
    for point, name in zip(ends, ("start", "end")):
        if len(point) != 1:
            raise Error(f"{name}: one point is wanted; this has the shape {point.shape}")
    wide = [np.pad(point, ((0, 0), (0, 3 - point.shape[1]))) for point in ends]
    return _quoin.draw_line(_arrays.lines(lines), np.ascontiguousarray(np.vstack(wide)),
                            _arrays.length(capture, "capture", excluded=True), bool(angle_lock))


def trim_axes(lines: ArrayLike, overhang: float = 0.0) -> Found:
    """Cuts grid lines to their outermost crossings with each other, as ``quoin trim-axes`` does.

    They go on beyond those by `overhang`, and never beyond their old ends. A line with fewer than
    two crossings stays as it is. Returns the lines in their order, and their indices.

    >>> import quoin
    >>> grid = [[-5, 0, 25, 0], [0, -5, 0, 5], [20, -5, 20, 5]]
    >>> quoin.trim_axes(grid)[0][0].tolist()
    [0.0, 0.0, 20.0, 0.0]
    """
    return _quoin.trim_axes(_arrays.lines(lines), _arrays.length(overhang, "overhang"))
