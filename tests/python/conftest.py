"""Where things are, and how the program is run."""

import os
import pathlib
import subprocess

import pytest

ROOT = pathlib.Path(__file__).resolve().parents[2]
QUOIN = os.environ.get("QUOIN", str(ROOT / "build" / "dev" / "bin" / "quoin"))
SHARED = pathlib.Path(os.environ.get("QUOIN_SHARED_DATA", ROOT.parent / "shared" / "data"))

# DXF and DWG, ASCII and binary, several versions, metres and millimetres.
# The sheet of kinds holds no plan.
EXAMPLES = sorted(str(path.relative_to(ROOT)) for path in (ROOT / "examples").rglob("*.d[xw][fg]")
                  if path.name != "kinds.dxf")


def run(*words, codes=(0,)):
    """What the program prints."""
    done = subprocess.run([QUOIN, *map(str, words)], capture_output=True, text=True, cwd=ROOT,
                          timeout=300)
    assert done.returncode in codes, done.stdout + done.stderr
    return done.stdout


@pytest.fixture(autouse=True)
def in_root(monkeypatch):
    monkeypatch.chdir(ROOT)
