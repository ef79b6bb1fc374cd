#!/usr/bin/python3
"""Looks through the tree for what must not be left in it.

usage: check_words.py [--self-test] [ROOT]

Found and refused: paths of somebody's machine, marks of unresolved conflicts, notes to oneself,
and files that are larger than what belongs in a source tree.
"""

import pathlib
import re
import subprocess
import sys

LARGEST_FILE = 4_000_000  # bytes; the largest example drawing takes about a quarter of this

# Put together from halves, so that this file does not find itself.
RULES = [
    (re.compile(r"(?<![\w.$}/*-])/(?:ho" r"me|ro" r"ot|Us" r"ers)/\w"), "a path of somebody's machine"),
    (re.compile(r"(?<![\w.$}/*-])/t" r"mp/\w"), "a fixed path of a temporary folder"),
    (re.compile(r"^(?:<" r"{6,}|>" r"{6,}|=" r"{7}$)", re.MULTILINE), "the mark of a conflict"),
    (re.compile(r"\b(?:TO" r"DO|FIX" r"ME|X" r"XX|HA" r"CK)\b"), "a note to oneself"),
    (re.compile(r"\bnot (?:yet )?imple" r"mented\b", re.IGNORECASE), "something unfinished"),
]

# What a formatter of code leaves in Markdown: it takes a heading for a directive.
MARKDOWN_RULES = [
    (re.compile(r"^#+\w[^\n]* :", re.MULTILINE), "a heading that a formatter of code has torn"),
    (re.compile(r"`\w+ / \w+"), "a path that a formatter of code has torn"),
]


def complaints_about(text, rules=RULES):
    for pattern, what in rules:
        for match in pattern.finditer(text):
            yield text.count("\n", 0, match.start()) + 1, what


def files(root):
    listed = subprocess.run(
        ["git", "-C", root, "ls-files", "-z", "--cached", "--others", "--exclude-standard"],
        check=True, capture_output=True, text=True).stdout
    return [root / name for name in listed.split("\0") if name and (root / name).is_file()]


def self_test():
    wrong = ["see /ho" "me/someone/x", "in /t" "mp/out.dxf", "<<<<" "<<< HEAD", "// TO" "DO: later",
             "is not imple" "mented", "=" * 7 + "\n"]
    right = ["build/tmp/x", "$HOME/x", "\"/\"", "a < b << c", "======== done", "${XDG}/home/x"]
    for text in wrong:
        if not list(complaints_about(text)):
            sys.exit(f"check_words: misses {text!r}")
    for text in right:
        if list(complaints_about(text)):
            sys.exit(f"check_words: complains wrongly about {text!r}")
    for text in ("#product : the platform", "see `docs / formats.md`"):
        if not list(complaints_about(text, MARKDOWN_RULES)):
            sys.exit(f"check_words: misses {text!r}")
    if list(complaints_about("# product: the platform\n#include <x>", MARKDOWN_RULES)):
        sys.exit("check_words: complains wrongly about a heading")
    print("check_words: finds what it looks for, and nothing else")


def main(arguments):
    if "--self-test" in arguments:
        self_test()
        return 0
    root = pathlib.Path(arguments[0] if arguments else pathlib.Path(__file__).parent.parent).resolve()
    count = 0
    seen = files(root)
    for file in seen:
        data = file.read_bytes()
        name = file.relative_to(root)
        if len(data) > LARGEST_FILE:
            print(f"{name}: {len(data)} bytes are too much for the source tree")
            count += 1
        if b"\0" in data or file.suffix.lower() in (".dxf", ".png"):
            continue
        rules = RULES + (MARKDOWN_RULES if file.suffix == ".md" else [])
        for line, what in complaints_about(data.decode("utf-8", errors="replace"), rules):
            print(f"{name}:{line}: {what}")
            count += 1
    print(f"{len(seen)} files, {count} complaints")
    return 1 if count or not seen else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
