"""Arguments as the extension module takes them: contiguous, of the right shape, finite."""

from __future__ import annotations

import math
from typing import Any, Sequence

import numpy as np
from numpy.typing import NDArray

from ._errors import Error

#: Where in a drawing a line is: the handle of its entity, and its segment where that is a polyline;
#: -1 for a LINE.
HANDLES = np.dtype([("handle", "u8"), ("segment", "i4")])

_LINE_NAMES = {4: ("x1", "y1", "x2", "y2"), 6: ("x1", "y1", "z1", "x2", "y2", "z2")}
_POINT_NAMES = {2: ("x", "y"), 3: ("x", "y", "z")}
# Farther out nothing is told apart: squares of distances stay finite.
_FARTHEST = 1e150


def numbers(values: Any, name: str) -> NDArray[np.float64]:
    """Any array of real numbers as one of float64."""
    try:
        array = np.asarray(values)
        if array.dtype.kind not in "biufO":
            raise TypeError(f"{array.dtype} numbers")
        return np.ascontiguousarray(array, dtype=np.float64).reshape(array.shape)
    except (TypeError, ValueError) as error:
        raise Error(f"{name}: this is no array of real numbers ({error})") from None


def _check_finite(array: NDArray[np.float64], name: str, columns: Sequence[str]) -> None:
    with np.errstate(invalid="ignore"):
        wrong = ~(np.abs(array) <= _FARTHEST)
    if wrong.any():
        row, column = (int(i) for i in np.argwhere(wrong)[0])
        value = float(array[row, column])
        words = f"{value}, too far out" if math.isfinite(value) else str(value)
        raise Error(f"{name}[{row}]: {columns[column]} is {words}")


def _rows(values: Any, name: str, names: dict[int, tuple[str, ...]],
          what: str) -> NDArray[np.float64]:
    array = numbers(values, name)
    if array.size == 0 and (array.ndim < 2 or array.shape[1] not in names):
        array = array.reshape((0, min(names)))
    if array.ndim != 2 or array.shape[1] not in names:
        widths = " or ".join(f"(n, {width})" for width in names)
        raise Error(f"{name}: an array of shape {widths} is wanted, {what}; "
                    f"this one has {array.shape}")
    _check_finite(array, name, names[array.shape[1]])
    return array


def lines(values: Any, name: str = "lines") -> NDArray[np.float64]:
    """Lines as rows x1, y1, x2, y2 or x1, y1, z1, x2, y2, z2."""
    return _rows(values, name, _LINE_NAMES, "a line a row")


def points(values: Any, name: str) -> NDArray[np.float64]:
    """Points as rows x, y or x, y, z; one point alone is a row too; none for None."""
    if values is None:
        return np.empty((0, 2))
    array = numbers(values, name)
    if array.ndim == 1 and array.size in _POINT_NAMES:
        array = array.reshape((1, -1))
    return _rows(array, name, _POINT_NAMES, "a point a row")


def length(value: Any, name: str, least: float = 0.0, excluded: bool = False) -> float:
    """A finite number, at or above `least`."""
    try:
        number = float(value)
    except (TypeError, ValueError):
        raise Error(f"{name}: {value!r} is no number") from None
    if not math.isfinite(number) or number < least or (excluded and number == least):
        raise Error(f"{name}: {number} is no number {'above' if excluded else 'from'} {least:g}"
                    f"{'' if excluded else ' on'}")
    return number


def per_line(values: Any, count: int, name: str) -> NDArray[np.float64]:
    """One number for all lines, or one for each."""
    array = numbers(values, name)
    if array.ndim == 0:
        array = np.full(count, float(array))
    if array.shape != (count,):
        raise Error(f"{name}: one number, or {count}, one for each line, are wanted; "
                    f"this has the shape {array.shape}")
    _check_finite(array.reshape((-1, 1)), name, ("it",))
    return array


def widths(left: Any, right: Any, count: int) -> NDArray[np.float64]:
    """The widths of walls to the left and to the right of their lines."""
    both = np.column_stack((per_line(left, count, "left"), per_line(right, count, "right")))
    thin = np.flatnonzero(~(both.sum(axis=1) > 0.0))
    if thin.size:
        row = int(thin[0])
        raise Error(f"lines[{row}]: a wall {both[row, 0]:g} wide to the left and {both[row, 1]:g} "
                    "to the right has no thickness")
    return np.ascontiguousarray(both)


def keys(values: Any, count: int, name: str) -> NDArray[np.int64]:
    """Whatever can be compared, one for each line, as numbers from 0 in its order."""
    if values is None:
        return np.empty(0, dtype=np.int64)
    array = np.asarray(values)
    if array.shape != (count,):
        raise Error(f"{name}: {count} values are wanted, one for each line; "
                    f"this has the shape {array.shape}")
    try:
        ranks: NDArray[np.int64] = np.unique(array, return_inverse=True)[1].astype(np.int64)
    except TypeError:
        raise Error(f"{name}: values that can be sorted are wanted") from None
    return ranks


def rows(values: Any, name: str, columns: Sequence[str]) -> NDArray[np.float64]:
    """Rows of finite numbers with these columns; none for None."""
    if values is None:
        return np.empty((0, len(columns)))
    return _rows(values, name, {len(columns): tuple(columns)}, ", ".join(columns))


def places(handles_and_segments: Any) -> NDArray[Any]:
    """Where lines are, of the two arrays that the extension module gives."""
    handles, segments = handles_and_segments
    array = np.empty(len(handles), dtype=HANDLES)
    array["handle"] = handles
    array["segment"] = segments
    return array
