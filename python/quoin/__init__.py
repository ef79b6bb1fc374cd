"""Wall plans from Python: arrays in, arrays out, drawings as documents.

Lines are NumPy arrays, (n, 4) or (n, 6), in any unit; lengths such as `capture` are in the same.
Results are those of the program ``quoin`` on the same lines, bit for bit.

Work is done on a thread of Quoin's own without the interpreter's lock, one piece after another in
a process: for several at a time take processes. Ctrl-C raises KeyboardInterrupt; a calculation
that cannot be stopped goes on alone then, and the next one waits for it.
"""

import atexit as _atexit
import os as _os

from . import _quoin
from ._arrays import HANDLES
from ._drawing import Drawing, Entity, Layer, Moved, Saved
from ._errors import Error
from ._lines import break_lines, draw_line, merge_lines, trim_axes
from ._reading import (CleanAction, Cleaned, Room, Rooms, Undecided, clean, find_rooms,
                       find_walls)
from ._walls import KINDS, OPENINGS, ROLES, Curve, Mesh, Outline, Walls, outline, solid

__version__: str = _quoin.version

__all__ = [
    "CleanAction", "Cleaned", "Curve", "Drawing", "Entity", "Error", "HANDLES", "KINDS", "Layer",
    "Mesh", "Moved", "OPENINGS", "Outline", "ROLES", "Room", "Rooms", "Saved", "Undecided",
    "Walls", "break_lines", "clean", "draw_line", "find_rooms", "find_walls", "merge_lines",
    "outline", "solid", "trim_axes",
]


def _finish() -> None:
    """Work that nobody waits for ends before the process does; a second Ctrl-C ends both."""
    try:
        while not _quoin.wait_until_idle(0.05):
            pass
        _quoin.leave_undone()
    except KeyboardInterrupt:
        _os._exit(130)


_atexit.register(_finish)
if hasattr(_os, "register_at_fork"):
    _os.register_at_fork(before=_quoin.hold_before_fork,
                         after_in_parent=_quoin.go_on_in_parent,
                         after_in_child=_quoin.begin_anew_in_child)
