"""The types that the package declares, as a type checker sees them."""

import os
import pathlib
import subprocess
import sys

import pytest

import quoin

pytest.importorskip("mypy")

PACKAGE = pathlib.Path(quoin.__file__).parent.parent


def run(tmp_path, module, *words):
    done = subprocess.run([sys.executable, "-m", module, *map(str, words)], cwd=tmp_path,
                          env={**os.environ, "MYPYPATH": str(PACKAGE)}, capture_output=True,
                          text=True, timeout=300)
    return done.stdout + done.stderr


def test_the_package_keeps_its_own_types(tmp_path):
    assert "Success: no issues" in run(tmp_path, "mypy", "--strict", "-p", "quoin")


def test_the_stub_has_what_the_extension_module_has(tmp_path):
    (tmp_path / "known").write_text("quoin._quoin.DrawingFile  # its metaclass is pybind11's\n")
    assert "Success: no issues" in run(tmp_path, "mypy.stubtest", "--allowlist", "known",
                                       "quoin._quoin")


def test_users_hear_of_wrong_types(tmp_path):
    (tmp_path / "user.py").write_text("""\
import numpy as np
import quoin
pieces, source = quoin.break_lines(np.array([[0.0, 0, 1, 0]]), capture=10.0)
walls = quoin.find_walls(pieces, mm_per_unit=1, min_width=40)
areas = [room.net_area + 1.0 for room in quoin.find_rooms(walls, capture=5)]
with quoin.Drawing("plan.dxf") as drawing:
    lines, handles = drawing.lines("WALL*")
    drawing.replace(lines[source], handles[source])
    name: str = drawing["2F"].layer
    drawing.transform(move=(1, 2, 3))
    drawing.find_rooms(min_area="large")
    drawing.pictures()
    drawing.save().path + 1
""")
    found = run(tmp_path, "mypy", "--strict", "user.py")
    lines = {int(line.split(":")[1]) for line in found.splitlines() if ": error:" in line}
    assert lines == {11, 12, 13}, found
