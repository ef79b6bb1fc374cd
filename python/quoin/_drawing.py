"""Drawings as documents."""

from __future__ import annotations

import math
import os
from typing import Any, Callable, Dict, Iterable, Iterator, List, Mapping, NamedTuple, Tuple, Union

import numpy as np
from numpy.typing import ArrayLike, NDArray

from . import _arrays, _quoin
from ._arrays import HANDLES
from ._errors import Error
from ._reading import Cleaned, Rooms, checked_duplicates, cleaned_of, reading_lengths, rooms_of
from ._walls import Outline, Walls, outline, walls_of

#: A handle as a number, or in hexadecimal as drawing files spell it.
Handle = Union[int, str]
Progress = Union[Callable[[float], None], None]
#: Widths of walls by layer: the whole width, or left and right.
Widths = Mapping[str, Union[float, Tuple[float, float]]]


class Entity(NamedTuple):
    """An entity of model space."""

    handle: int
    kind: str  # as drawing files call it: "LINE"
    layer: str


class Layer(NamedTuple):
    """A layer, with the number of entities of each kind on it in model space."""

    name: str
    is_off: bool
    is_frozen: bool
    is_locked: bool
    counts: Dict[str, int]


class Saved(NamedTuple):
    """What saving did: where the version before is kept ("" for nowhere), and whether the file had
    these bytes already, so that nothing was written."""

    path: str
    backup: str
    is_unchanged: bool


class Moved(NamedTuple):
    """How many entities followed, and those that stayed with the reason."""

    moved: int
    left: List[Tuple[str, str]]


def _number_of(handle: Any) -> int:
    try:
        return int(handle, 16) if isinstance(handle, str) else int(handle)
    except (TypeError, ValueError):
        raise Error(f"{handle!r} is no handle") from None


def _numbers_of(handles: Any) -> NDArray[np.uint64]:
    if isinstance(handles, np.ndarray) and handles.dtype == HANDLES:
        handles = handles["handle"]
    if isinstance(handles, (str, int)):
        handles = [handles]
    try:
        unique = dict.fromkeys(_number_of(handle) for handle in handles)
        return np.fromiter(unique, dtype=np.uint64, count=len(unique))
    except (OverflowError, TypeError):
        raise Error("handles: handles are numbers from 0 on, or texts like '2F'") from None


def _patterns(layers: Union[str, Iterable[str], None]) -> List[str]:
    if layers is None:
        return []
    patterns = [layers] if isinstance(layers, str) else [str(name) for name in layers]
    if not patterns:
        raise Error("layers: name one at least, or '*' for all")
    return patterns


def _openings(layers: Union[str, Iterable[str], None]) -> Tuple[List[str], bool]:
    """Patterns, and whether there are to be none."""
    patterns = [layers] if isinstance(layers, str) else [str(name) for name in layers or ()]
    return patterns, layers is not None and not patterns


def _length(value: Union[float, None], name: str, least: float = 0.0) -> Union[float, None]:
    return None if value is None else _arrays.length(value, name, least)


def _width(value: Union[float, None], name: str) -> Union[float, None]:
    """One side of a wall, which may reach over its line."""
    return _length(value, name, -math.inf)


def _widths(widths: Union[Widths, None]) -> List[str]:
    """As the program takes them, every digit kept."""
    texts = []
    for layer, width in (widths or {}).items():
        pair = np.atleast_1d(_arrays.numbers(width, f"widths[{layer!r}]"))
        if pair.shape not in ((1,), (2,)) or not np.isfinite(pair).all():
            raise Error(f"widths[{layer!r}]: a width, or two of them, left and right, are wanted")
        texts.append(f"{layer}={','.join(map(repr, pair.tolist()))}")
    return texts


class Drawing:
    """A DXF or DWG drawing that is read, changed and saved.

    What nobody changes is written as it stood, byte for byte. Reading, saving and whatever else may
    take long call `progress`, where it is given, with the share that is done.

    >>> import quoin
    >>> with quoin.Drawing("examples/flat/flat.dxf") as drawing:
    ...     lines, handles = drawing.lines()
    ...     pieces, source = quoin.break_lines(lines, drawing.capture)
    ...     new_handles = drawing.replace(pieces, handles[source])
    ...     saved = drawing.save("broken.dxf")
    >>> len(lines), len(pieces)
    (134, 180)
    """

    def __init__(self, path: Union[str, "os.PathLike[str]"], code_page: str = "",
                 progress: Progress = None, units: str = ""):
        """Reads a drawing. `code_page` is that of its text, and `units` ("mm", "m", "in", ...) are
        what a drawing unit is, where the file names none or wrong ones."""
        self._path = os.fspath(path)
        self._file = _quoin.DrawingFile(self._path, code_page, units, progress)

    def __enter__(self) -> "Drawing":
        return self

    def __exit__(self, *_: Any) -> None:
        self.close()

    def __repr__(self) -> str:
        state = " (closed)" if self._file.is_closed else ""
        return f"<quoin.Drawing {self._path!r}{state}>"

    def close(self) -> None:
        """Lets the drawing go, with all that was not saved. Closing twice does nothing."""
        self._file.close()

    # --- what it is ---------------------------------------------------------------------------

    @property
    def path(self) -> str:
        """The file that it was read from."""
        return self._path

    @property
    def info(self) -> Dict[str, Any]:
        """format ("DXF", "DWG"), release ("R2010"), code_page, is_binary, units ("mm", "m", ...;
        "units" for none), mm_per_unit, warnings about what was odd in the file, is_modified."""
        return self._file.info()

    @property
    def units(self) -> str:
        """ "mm", "m", "in", ...; "units" where the drawing names none."""
        return str(self.info["units"])

    @property
    def mm_per_unit(self) -> float:
        """Millimetres of a unit; a drawing without units counts as one in millimetres."""
        return float(self.info["mm_per_unit"])

    @property
    def capture(self) -> float:
        """The capture distance that the program takes: 10 mm in the drawing's units."""
        return 10.0 / self.mm_per_unit

    @property
    def is_modified(self) -> bool:
        """Whether anything differs from the file that was read or saved last."""
        return bool(self.info["is_modified"])

    @property
    def layers(self) -> List[Layer]:
        """All layers in the order of their table."""
        return [Layer(*layer) for layer in self._file.layers()]

    # --- entities -----------------------------------------------------------------------------

    def entities(self, kind: str = "*", layer: str = "*") -> List[Entity]:
        """The entities of model space in the order of the file; `kind` and `layer` may hold * and
        ?."""
        return list(self._entities(self._file.entities(kind, layer)))

    def __getitem__(self, handle: Handle) -> Entity:
        """The entity with a handle: ``drawing["2F"]``. Fails: Error where there is none."""
        return next(self._entities(self._file.entity(_number_of(handle))))

    @staticmethod
    def _entities(rows: Any) -> Iterator[Entity]:
        handles, kinds, kind_names, layers, layer_names = rows
        for handle, kind, layer in zip(handles.tolist(), kinds.tolist(), layers.tolist()):
            yield Entity(handle, kind_names[kind], layer_names[layer])

    def lines(self, layers: Union[str, Iterable[str], None] = None,
              progress: Progress = None) -> Tuple[NDArray[np.float64], NDArray[Any]]:
        """The lines and straight polyline segments of model space on some layers.

        `layers` are names in which * and ? may stand; without it those whose name has a word for
        wall, as the program chooses them. Returns rows x1, y1, z1, x2, y2, z2, and for each where it
        is (the dtype quoin.HANDLES): the handle of its entity, and the segment of a polyline or -1.
        Fails: Error where no layer is meant.
        """
        rows, places = self._file.lines(_patterns(layers), progress)
        return rows, _arrays.places(places)

    def replace(self, lines: ArrayLike, handles: NDArray[Any],
                progress: Progress = None) -> NDArray[np.uint64]:
        """Puts lines in the place of those that they come from.

        `handles` says of each of `lines` which line it takes the place of: with the arrays of
        lines() and break_lines(), ``drawing.replace(pieces, handles[source])``. A line with one row
        gets these ends; with several it becomes the first, and the others are added with all its
        properties; segments of polylines become lines. What is the same as before is not touched,
        and what `handles` does not name stays. Rows of four numbers keep the line's height.

        Returns the handles of what the rows became; 0 for those on locked layers, which are left as
        they are. Fails: Error; the drawing may be changed in part then.
        """
        array = _arrays.lines(lines)
        places = np.asarray(handles)
        if places.dtype != HANDLES:
            raise Error("handles: an array with the dtype quoin.HANDLES is wanted, as lines() "
                        "returns it")
        if places.shape != (len(array),):
            raise Error(f"handles: {len(array)} are wanted, one for each line; "
                        f"this has the shape {places.shape}")
        return self._file.replace(array, np.ascontiguousarray(places["handle"]),
                                  np.ascontiguousarray(places["segment"]), progress)

    def erase(self, handles: Union[Handle, Iterable[Handle], NDArray[Any]]) -> None:
        """Erases entities. Fails: Error for a handle that no entity has; nothing is erased then."""
        self._file.erase(_numbers_of(handles))

    def append(self, lines: ArrayLike, layer: str) -> NDArray[np.uint64]:
        """Adds LINEs to model space, on a layer that is made where it is missing; returns their
        handles."""
        return self._file.append(_arrays.lines(lines), str(layer))

    # --- plan reading -------------------------------------------------------------------------

    def find_walls(self, layers: Union[str, Iterable[str], None] = None,
                   progress: Progress = None, **lengths: float) -> Walls:
        """The walls of a plan that draws each as two faces, as ``quoin walls`` finds them: with the
        lines of blocks, multilines and hatches, and what other layers and the names of blocks say
        of openings. Options are those of quoin.find_walls(); `layers` as for lines()."""
        return walls_of(self._file.find_walls(_patterns(layers), reading_lengths(lengths),
                                              progress))

    def read_walls(self, layers: Union[str, Iterable[str]] = "QUOIN-WALL",
                   left: Union[float, None] = None, right: Union[float, None] = None,
                   widths: Union[Widths, None] = None,
                   openings: Union[str, Iterable[str], None] = None, in_blocks: bool = False,
                   progress: Progress = None) -> Walls:
        """The walls that reference lines on some layers stand for, as ``quoin outline`` and ``quoin
        solid`` read them: such as ``quoin walls`` writes.

        Their widths are the first of those that a line carries, that `widths` names for its layer
        (* and ? allowed; a number for the whole width, or a pair), and `left` and `right`.
        `openings` are the layers of lines from jamb to jamb, by default QUOIN-OPENING where it has
        lines; [] for none. `in_blocks` takes the lines of blocks and multilines, too. Fails: Error
        where there is no line, or one without a width.
        """
        chosen, none = _openings(openings)
        return walls_of(self._file.read_walls(_patterns(layers), _width(left, "left"),
                                              _width(right, "right"), _widths(widths), chosen, none,
                                              bool(in_blocks), progress))

    def outline(self, layers: Union[str, Iterable[str]] = "QUOIN-WALL",
                left: Union[float, None] = None, right: Union[float, None] = None,
                widths: Union[Widths, None] = None,
                openings: Union[str, Iterable[str], None] = None, in_blocks: bool = False,
                progress: Progress = None) -> Outline:
        """The outlines of the walls that read_walls() returns, with their openings left open, as
        ``quoin outline`` draws them; `source` counts those walls. The drawing stays as it is:
        ``drawing.append(drawing.outline().lines, "WALL-OUTLINE")`` is what the command does."""
        walls = self.read_walls(layers, left, right, widths, openings, in_blocks, progress)
        return outline(walls, capture=self.capture, progress=progress)

    def find_rooms(self, layers: Union[str, Iterable[str], None] = None, faces: bool = False,
                   left: Union[float, None] = None, right: Union[float, None] = None,
                   widths: Union[Widths, None] = None,
                   openings: Union[str, Iterable[str], None] = None, in_blocks: bool = False,
                   min_area: Union[float, None] = None, min_width: Union[float, None] = None,
                   room_layer: str = "QUOIN-ROOM", progress: Progress = None) -> Rooms:
        """The rooms of a plan with their names, as ``quoin rooms`` finds them.

        Without `layers` those are taken that the command takes: QUOIN-WALL, else those whose names
        have a word for wall. They hold reference lines, with widths and `openings` as for
        read_walls(), or faces: where `faces` says so, and where nothing says how wide walls are.
        What has a smaller area than `min_area`, or is narrower than `min_width`, is no room (0.25
        square metres and 150 mm by default). Texts on `room_layer` are no names.
        """
        chosen, none = _openings(openings)
        return rooms_of(self._file.find_rooms(
            _patterns(layers), bool(faces), _width(left, "left"), _width(right, "right"),
            _widths(widths), chosen, none, bool(in_blocks), _length(min_area, "min_area"),
            _length(min_width, "min_width"), str(room_layer), progress))

    def clean(self, layers: Union[str, Iterable[str], None] = None,
              snap: Union[float, None] = None, reach: Union[float, None] = None,
              spur: Union[float, None] = None, duplicates: str = "same", join: bool = True,
              mark_layer: str = "QUOIN-MARK", progress: Progress = None) -> Cleaned:
        """Cleans the lines of some layers in place, as ``quoin clean`` does: see quoin.clean() for
        the steps.

        `snap`, `reach` and `spur` are lengths in drawing units, 0 to leave a step out; by default 5,
        20 and 20 mm. Lines count as having the same properties with the same layer, colour,
        linetype, weight, thickness and extended data. Circles on `mark_layer` show what could not be
        decided. Fails: Error where there is no line; where it is stopped, the drawing may be changed
        in part.
        """
        checked_duplicates(duplicates)
        return cleaned_of(self._file.clean(
            _patterns(layers), _length(snap, "snap"), _length(reach, "reach"),
            _length(spur, "spur"), duplicates != "off", duplicates == "any", bool(join),
            str(mark_layer), progress))

    # --- the whole ----------------------------------------------------------------------------

    def extents(self, all: bool = False) -> Union[NDArray[np.float64], None]:
        """The least and the greatest point of what shows, as two rows; None where nothing does.
        With `all` invisible entities count too."""
        return self._file.extents(bool(all))

    def transform(self, move: ArrayLike = (0.0, 0.0, 0.0), factor: float = 1.0,
                  leave_behind: bool = False, progress: Progress = None) -> Moved:
        """Moves every point p of model space to factor * p + move, and what looks at it along.

        Fails: Error where an entity cannot follow, unless it is to be left behind; the drawing is
        changed in part then and not to be saved.
        """
        by = _arrays.points(move, "move")
        if len(by) != 1:
            raise Error(f"move: one point is wanted; this has the shape {by.shape}")
        x, y, z = [*by[0].tolist(), 0.0][:3]
        return Moved(*self._file.transform(_arrays.length(factor, "factor", excluded=True), x, y, z,
                                           bool(leave_behind), progress))

    def picture(self, path: Union[str, "os.PathLike[str]", None] = None,
                highlight: ArrayLike | None = None, title: str = "plan",
                subtitle: str = "", theme: str = "faint", images: bool = False) -> bytes:
        """Draws model space, with lines to highlight in blue and orange by turns.

        The ending of `path` says the format: .png, .svg or .pdf; without a path it is PNG. `theme`
        is "faint" (one grey, for lines above it), "paper" (the drawing's own colours on white,
        without layers that are not plotted) or "screen" (on dark). `images` opens the files of
        images that the drawing names, where they are named or beside the drawing; otherwise they
        are frames. What cannot be shown is named under the picture. Returns the picture's bytes.
        Fails: Error for other themes and endings, and files that cannot be written.
        """
        lines = np.empty((0, 4)) if highlight is None else _arrays.lines(highlight, "highlight")
        place = "" if path is None else os.fspath(path)
        return self._file.picture(place, title, subtitle, lines, theme, bool(images))[0]

    def _repr_png_(self) -> bytes:
        return self.picture(theme="paper")

    def save(self, path: Union[str, "os.PathLike[str]", None] = None,
             backup: Union[bool, None] = None, progress: Progress = None) -> Saved:
        """Saves the drawing in its own version and form, under its own name or another one.

        The file is the old one or the new one, whole, at every moment. The version before is kept
        where the drawing is saved in its own place, and elsewhere where `backup` says so. Fails:
        Error with the host's words; the file is as it was.
        """
        place = self._path if path is None else os.fspath(path)
        keeps = (path is None) if backup is None else bool(backup)
        return Saved(place, *self._file.save(place, keeps, progress))
