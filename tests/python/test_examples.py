"""What documentation shows, run."""

import doctest
import inspect
import os
import shutil
import subprocess
import sys

import pytest

import quoin
from conftest import ROOT

SCRIPTS = sorted((ROOT / "examples" / "python").glob("*.py"))


def test_examples_of_docstrings_are_true(tmp_path, monkeypatch):
    (tmp_path / "examples").symlink_to(ROOT / "examples")
    monkeypatch.chdir(tmp_path)
    tried = 0
    for name in quoin.__all__:
        thing = getattr(quoin, name)
        for test in doctest.DocTestFinder(recurse=False).find(thing, name):
            runner = doctest.DocTestRunner()
            runner.run(test)
            assert runner.failures == 0, name
            tried += runner.tries
    assert tried > 20


def test_everything_public_is_documented():
    for name in quoin.__all__:
        thing = getattr(quoin, name)
        if callable(thing):
            assert inspect.getdoc(thing), name
    for name, thing in vars(quoin.Drawing).items():
        if not name.startswith("_"):
            assert inspect.getdoc(thing), name


@pytest.mark.parametrize("script", SCRIPTS, ids=lambda path: path.name)
def test_scripts_run(script, tmp_path):
    if "geopandas" in script.name:
        pytest.importorskip("geopandas")
    done = subprocess.run([sys.executable, script, str(tmp_path)], cwd=ROOT, capture_output=True,
                          text=True, timeout=300)
    assert done.returncode == 0, done.stderr
    assert done.stdout


def test_scaling_out_goes_on_where_it_was(tmp_path):
    plans, out, scripts = tmp_path / "plans", tmp_path / "out", ROOT / "examples" / "scale-out"
    (plans / "a").mkdir(parents=True)
    names = ["a/broken.dxf", "a/flat.dwg", "flat.dxf"]
    (plans / names[0]).write_text("no drawing\n")
    for name in names[1:]:
        shutil.copy(ROOT / "examples" / "flat" / os.path.basename(name), plans / name)

    def run(script, *words):
        return subprocess.run([sys.executable, scripts / script, *map(str, words)], cwd=ROOT,
                              capture_output=True, text=True, timeout=300)

    assert run("work.py", plans, out, *names[:2]).returncode == 1
    told = run("summary.py", plans, out)
    assert told.returncode == 1
    assert "1 drawings done, 1 failed, 1 not begun" in told.stdout
    assert "this is no drawing" in told.stdout
    first = (out / "a" / "flat.dwg.json").stat().st_mtime_ns
    # A process died at the third.
    (out / "flat.dxf.running").touch()
    run("work.py", plans, out, *names)
    assert "the process died at this drawing" in run("summary.py", plans, out).stdout
    assert (out / "a" / "flat.dwg.json").stat().st_mtime_ns == first
    run("work.py", "--retry", plans, out, *names)
    assert "2 drawings done, 1 failed, 0 not begun" in run("summary.py", plans, out).stdout
    assert (out / "a" / "flat.dwg.json").stat().st_mtime_ns == first
    table = (out / "summary.csv").read_text().splitlines()
    assert table[0].startswith("drawing,lines,pieces,rooms") and len(table) == 4
