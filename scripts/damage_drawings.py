#!/usr/bin/python3
"""Damages drawings in a thousand ways and watches what the program makes of them.

usage: damage_drawings.py --quoin PROGRAM [--count N] [--seed S] [--limit SECONDS]
                          [--keep FOLDER] FILE-OR-FOLDER...
       damage_drawings.py --self-test

Each trial takes one of the drawings (the same ones for the same seed), damages it as disks,
transfers and careless programs do, and runs `info`, `extents` and `break` with a picture on it.
A run may succeed or say what is wrong; it fails the campaign when a signal ends it, when it is an
internal error or out of memory, when it takes longer than the limit, and when it says nothing
about a failure. Inputs that fail are kept in --keep. Ends with 1 when one did.
"""

import argparse
import pathlib
import random
import subprocess
import sys
import tempfile
import time

# What the commands may end with: done, refused drawing, nothing to work on, entity failed.
EXPECTED = {0, 3, 4, 6}
# Numbers that no drawing should have, but some do.
ODD_NUMBERS = [b"nan", b"inf", b"-inf", b"1e308", b"-1e308", b"1e999", b"1e-320", b"0.0", b"-0.0",
               b"1e20", b"99999999999999999999", b"-1", b"32767", b"2147483647", b"", b"x"]


def line_end_of(data):
    return b"\r\n" if b"\r\n" in data[:4096] else b"\n"


def truncate(data, rng):
    return data[:rng.randrange(len(data))]


def flip_bits(data, rng):
    changed = bytearray(data)
    for _ in range(rng.choice([1, 4, 64])):
        changed[rng.randrange(len(changed))] ^= 1 << rng.randrange(8)
    return bytes(changed)


def zero_block(data, rng):
    at = rng.randrange(len(data))
    size = min(rng.choice([16, 512, 4096]), len(data) - at)
    return data[:at] + bytes(size) + data[at + size:]


def on_lines(change):
    """A damage of the list of lines; whoever has fewer than two is truncated."""
    def damage(data, rng):
        end = line_end_of(data)
        lines = data.split(end)
        if len(lines) < 4:
            return truncate(data, rng)
        change(lines, rng)
        return end.join(lines)
    damage.__name__ = change.__name__
    return damage


@on_lines
def delete_lines(lines, rng):
    at = rng.randrange(len(lines))
    del lines[at:at + rng.choice([1, 1, 2, 3, 40])]


@on_lines
def repeat_lines(lines, rng):
    at = rng.randrange(len(lines))
    lines[at:at] = lines[at:at + rng.choice([1, 2, 40, 400])] * rng.choice([1, 1, 3])


@on_lines
def move_lines(lines, rng):
    at = rng.randrange(len(lines))
    size = rng.choice([2, 20, 200])
    taken = lines[at:at + size]
    del lines[at:at + size]
    to = rng.randrange(len(lines) + 1)
    lines[to:to] = taken


@on_lines
def odd_numbers(lines, rng):
    for _ in range(rng.choice([1, 5, 50])):
        # Values stand on every other line.
        lines[rng.randrange(len(lines) // 2) * 2 + 1] = rng.choice(ODD_NUMBERS)


@on_lines
def other_names(lines, rng):
    """References that lead elsewhere: a value takes the place of another one of its group code."""
    code = rng.choice([b"2", b"5", b"330", b"8", b"0", b"70", b"71", b"10"])
    places = [i + 1 for i in range(0, len(lines) - 1, 2) if lines[i].strip() == code]
    for _ in range(rng.choice([1, 10, 100]) if places else 0):
        lines[rng.choice(places)] = lines[rng.choice(places)]


DAMAGES = [truncate, flip_bits, zero_block, delete_lines, repeat_lines, move_lines, odd_numbers,
           other_names]


def damaged(data, rng):
    """The damaged drawing, and what was done to it."""
    names = []
    for _ in range(rng.choice([1, 1, 2, 3])):
        if not data:
            break
        damage = rng.choice(DAMAGES)
        data = damage(data, rng)
        names.append(damage.__name__)
    return data, "+".join(names)


def complaint(program, arguments, limit):
    """What is wrong with a run, empty where nothing is; and how long it took."""
    begin = time.monotonic()
    try:
        run = subprocess.run([program, *arguments], capture_output=True, timeout=limit, check=False)
    except subprocess.TimeoutExpired:
        return f"takes longer than {limit} s", time.monotonic() - begin
    seconds = time.monotonic() - begin
    if run.returncode < 0:
        return f"ended by signal {-run.returncode}", seconds
    if run.returncode not in EXPECTED:
        return f"exit code {run.returncode}: {run.stderr[-200:]!r}", seconds
    if run.returncode != 0 and not run.stderr.strip():
        return f"exit code {run.returncode} without a word", seconds
    return "", seconds


def drawings_in(paths):
    files = []
    for path in paths:
        files += sorted(path.rglob("*.dxf")) if path.is_dir() else [path]
    return [file for file in files if file.exists() and file.stat().st_size > 0]


def campaign(arguments):
    files = drawings_in(arguments.paths)
    if not files:
        print("damage: no drawings")
        return 1
    failures = 0
    runs = 0
    longest = (0.0, "")
    with tempfile.TemporaryDirectory() as folder:
        drawing = pathlib.Path(folder) / "damaged.dxf"
        for trial in range(arguments.count):
            rng = random.Random(arguments.seed * 1_000_003 + trial)
            source = rng.choice(files)
            data, what = damaged(source.read_bytes(), rng)
            drawing.write_bytes(data)
            for command in (["info", str(drawing)], ["extents", str(drawing)],
                            ["break", str(drawing), "--layer", "*", "--dry-run",
                             "--picture", f"{folder}/damaged.svg"]):
                wrong, seconds = complaint(arguments.quoin, command, arguments.limit)
                runs += 1
                longest = max(longest, (seconds, f"{command[0]}, trial {trial} of {source.name}"))
                if wrong:
                    failures += 1
                    print(f"trial {trial}, {source.name} ({what}), {command[0]}: {wrong}")
                    if arguments.keep:
                        arguments.keep.mkdir(parents=True, exist_ok=True)
                        (arguments.keep / f"trial-{trial}.dxf").write_bytes(data)
    print(f"{arguments.count} damaged drawings of {len(files)}, {runs} runs: {failures} failed; "
          f"the longest took {longest[0]:.1f} s ({longest[1]})")
    return 1 if failures else 0


def self_test():
    data = b"".join(b"%3d\n%d\n" % (code, code * 7) for code in range(300))
    for damage in DAMAGES:
        one = damage(data, random.Random(5))
        assert one == damage(data, random.Random(5)), f"{damage.__name__} is not repeatable"
    assert len({damaged(data, random.Random(seed))[0] for seed in range(50)}) > 40
    for tiny in (b"", b"\n", b"0", b"0\nEOF"):
        for seed in range(100):
            damaged(tiny, random.Random(seed))
    cases = [("exit 0", ""), ("echo bad >&2; exit 3", ""), ("exit 3", "without a word"),
             ("echo bad >&2; exit 71", "exit code 71"), ("kill -SEGV $$", "signal 11"),
             ("exec sleep 9", "longer")]
    for script, expected in cases:
        wrong, _ = complaint("/bin/sh", ["-c", script], 1)
        assert (expected in wrong) if expected else not wrong, (script, wrong)
    print("damage: self-test passed")


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n", maxsplit=1)[0])
    parser.add_argument("paths", type=pathlib.Path, nargs="*", metavar="FILE-OR-FOLDER")
    parser.add_argument("--quoin", help="the program")
    parser.add_argument("--count", type=int, default=400)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--limit", type=float, default=60.0, help="seconds a run may take")
    parser.add_argument("--keep", type=pathlib.Path, help="where inputs that fail are kept")
    parser.add_argument("--self-test", action="store_true")
    arguments = parser.parse_args()
    if arguments.self_test:
        self_test()
        return 0
    if not arguments.quoin or not arguments.paths:
        parser.error("a program and drawings are needed")
    return campaign(arguments)


if __name__ == "__main__":
    sys.exit(main())
