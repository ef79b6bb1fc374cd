"""What documentation shows, run."""

import doctest
import inspect
import os
import pathlib
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
    done = subprocess.run([sys.executable, script, str(tmp_path)], cwd=ROOT, capture_output=True,
                          text=True, timeout=300)
    assert done.returncode == 0, done.stderr
    assert done.stdout
