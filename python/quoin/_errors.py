"""What goes wrong."""

from typing import Any, Tuple


class Error(Exception):
    """An argument or a drawing that Quoin cannot work with.

    The words say what and where: ``lines[17]: x2 is nan``. ``code`` is the exit code that the
    program has for it (2 for an argument, 3 for a drawing that cannot be read, 4 for nothing to
    do, 5 for a file that cannot be written, 6 for an entity that cannot be changed).
    """

    def __init__(self, message: str, code: int = 2):
        super().__init__(message)
        self.code = code

    def __reduce__(self) -> Tuple[Any, ...]:
        return type(self), (str(self), self.code)
