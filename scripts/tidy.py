#!/usr/bin/python3
"""Runs clang-tidy over the project's own sources, several at a time.

usage: tidy.py --build FOLDER [--jobs N] [--cache FOLDER] [--without PATTERN] [PATTERN...]

FOLDER holds compile_commands.json. A file that was clean is not looked at again until it, a
header that it includes, its compile command, a .clang-tidy or clang-tidy itself changes. With
patterns only files whose path below the project holds one of them are checked, and none whose path
holds what --without names.
"""

import argparse
import concurrent.futures
import hashlib
import json
import os
import pathlib
import re
import shlex
import subprocess
import sys
import time

ROOT = pathlib.Path(__file__).resolve().parent.parent


def output_of(*command, **options):
    return subprocess.run(command, check=True, capture_output=True, text=True, **options).stdout


def configuration():
    """What decides the findings of every file alike."""
    digest = hashlib.sha256(output_of("clang-tidy", "--version").encode())
    for file in sorted(ROOT.rglob(".clang-tidy")):
        digest.update(str(file.relative_to(ROOT)).encode() + b"\0" + file.read_bytes())
    return digest.digest()


def own_headers(entry):
    """The files of this tree that a compile command reads, the source among them."""
    arguments = shlex.split(entry["command"])
    if pathlib.Path(arguments[0]).name == "ccache":
        arguments = arguments[1:]
    output = arguments.index("-o")
    del arguments[output:output + 2]
    rule = output_of(*[a for a in arguments if a != "-c"], "-MM", cwd=entry["directory"])
    names = rule.split(":", 1)[1].replace("\\\n", " ").split()
    paths = {pathlib.Path(entry["directory"], name).resolve() for name in names}
    return sorted(path for path in paths if path.is_relative_to(ROOT))


def key_of(entry, base):
    digest = hashlib.sha256(base)
    digest.update(entry["command"].replace(str(ROOT), "").encode())
    for path in own_headers(entry):
        digest.update(str(path.relative_to(ROOT)).encode() + b"\0" + path.read_bytes())
    return digest.hexdigest()


def check(entry, arguments, base):
    """(file, its findings or "" when clean, whether the cache knew it)"""
    file = str(pathlib.Path(entry["file"]).relative_to(ROOT))
    try:
        mark = arguments.cache / key_of(entry, base)
    except subprocess.CalledProcessError as error:
        return file, error.stderr, False
    if mark.exists():
        mark.touch()
        return file, "", True
    run = subprocess.run(["clang-tidy", "--quiet", "-p", str(arguments.build), entry["file"]],
                         capture_output=True, text=True)
    if run.returncode == 0 and not re.search(r"(warning|error):", run.stdout):
        mark.touch()
        return file, "", False
    return file, run.stdout + run.stderr, False


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--build", type=pathlib.Path, required=True)
    parser.add_argument("--jobs", type=int, default=os.cpu_count())
    caches = pathlib.Path(os.environ.get("XDG_CACHE_HOME") or pathlib.Path.home() / ".cache")
    parser.add_argument("--cache", type=pathlib.Path, default=caches / "quoin" / "tidy")
    parser.add_argument("--without", metavar="PATTERN")
    parser.add_argument("patterns", nargs="*")
    arguments = parser.parse_args()

    arguments.cache.mkdir(parents=True, exist_ok=True)
    month_ago = time.time() - 30 * 24 * 3600
    for mark in arguments.cache.iterdir():
        if mark.stat().st_mtime < month_ago:
            mark.unlink()

    entries = {}
    for entry in json.loads((arguments.build / "compile_commands.json").read_text()):
        path = pathlib.Path(entry["file"])
        if not path.is_relative_to(ROOT) or path.is_relative_to(ROOT / "build"):
            continue
        name = str(path.relative_to(ROOT))
        if arguments.without and arguments.without in name:
            continue
        if not arguments.patterns or any(p in name for p in arguments.patterns):
            entries[entry["file"]] = entry
    base = configuration()
    known = bad = 0
    with concurrent.futures.ThreadPoolExecutor(arguments.jobs) as pool:
        # The large files first, so that none of them is the last to end.
        order = sorted(entries.values(), key=lambda e: -pathlib.Path(e["file"]).stat().st_size)
        for file, findings, cached in pool.map(lambda e: check(e, arguments, base), order):
            known += cached
            if findings:
                bad += 1
                print(f"--- {file}\n{findings}", flush=True)
    print(f"clang-tidy: {len(entries)} files, {bad} with findings, {known} known from before")
    return 1 if bad or not entries else 0


if __name__ == "__main__":
    sys.exit(main())
