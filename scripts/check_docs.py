#!/usr/bin/python3
"""Checks the documents: that their links lead somewhere, and that the commands which they show
do what they say.

usage: check_docs.py --quoin PROGRAM
       check_docs.py --self-test

In a fenced block marked `console` a line that begins with "$ " is a command, and the lines up to
the next one are what it prints, word for word; a line "..." stands for any lines. The blocks of
a document run one after another in an empty folder that holds a copy of examples/.
"""

import argparse
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parent.parent
LINK = re.compile(r"!?\[[^\]]*\]\(([^)\s]+)\)")
FENCE = re.compile(r"^```(\w*)\n(.*?)^```$", re.MULTILINE | re.DOTALL)
INLINE = re.compile(r"`([^`\n]+)`")


def documents():
    listed = subprocess.run(
        ["git", "-C", ROOT, "ls-files", "--cached", "--others", "--exclude-standard", "*.md"],
        check=True, capture_output=True, text=True).stdout.split("\n")
    return [ROOT / name for name in listed if name and (ROOT / name).is_file()]


def anchors(text):
    """The names that a page's headings can be linked by."""
    found = set()
    for heading in re.findall(r"^#+ +(.+)$", FENCE.sub("", text), re.MULTILINE):
        plain = re.sub(r"[^\w\- ]", "", heading.lower())
        found.add(plain.replace(" ", "-"))
    return found


def broken_links(document, text):
    for target in LINK.findall(FENCE.sub("", text)):
        if re.match(r"[a-z]+:", target):
            continue
        path, _, anchor = target.partition("#")
        file = document if not path else document.parent / path
        if not file.exists():
            yield f"{target} leads nowhere"
        elif anchor and file.suffix == ".md" and anchor not in anchors(file.read_text("utf-8")):
            yield f"{target}: no such heading"


def missing_paths(text):
    """Paths of this tree that a document names in `code` and that are not there."""
    for code in INLINE.findall(FENCE.sub("", text)):
        match = re.fullmatch(r"((?:[\w.-]+/)+[\w.-]*)", code)
        if match and code.split("/")[0] in {p.name for p in ROOT.iterdir()} - {"build"}:
            if not (ROOT / code).exists():
                yield f"`{code}` is not in the tree"


def sessions(text):
    """(command, expected lines) of every console block."""
    for language, body in FENCE.findall(text):
        if language != "console":
            continue
        command = None
        expected = []
        for line in body.splitlines():
            if line.startswith("$ "):
                if command:
                    yield command, expected
                command, expected = line[2:], []
            elif command and command.endswith("\\") and not expected:
                command = command[:-1] + line.strip()
            else:
                expected.append(line)
        if command:
            yield command, expected


def fits(expected, printed):
    """Whether lines are as expected; "..." stands for any number of them."""
    pattern = "".join(
        r"(?:.*\n)*?" if line == "..." else re.escape(line) + r"\n" for line in expected)
    return re.fullmatch(pattern, "".join(line + "\n" for line in printed)) is not None


def wrong_sessions(text, environment):
    with tempfile.TemporaryDirectory() as folder:
        shutil.copytree(ROOT / "examples", pathlib.Path(folder) / "examples")
        for command, expected in sessions(text):
            run = subprocess.run(["bash", "-c", command], cwd=folder, env=environment, text=True,
                                 stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
            printed = run.stdout.splitlines()
            if not fits(expected, printed):
                yield "\n    ".join([f"$ {command}", "prints", *printed])


def self_test():
    page = "# One two\n```console\n$ echo a\na\n$ echo b; \\\n  echo c\n...\nc\n```\n"
    assert anchors(page) == {"one-two"}
    assert list(sessions(page)) == [("echo a", ["a"]), ("echo b; echo c", ["...", "c"])]
    assert not list(wrong_sessions(page, os.environ))
    assert list(wrong_sessions("```console\n$ echo a\nb\n```\n", os.environ))
    assert list(broken_links(ROOT / "README.md", "[x](no-such-file)"))
    assert not list(broken_links(ROOT / "README.md", "[x](dev) [y](https://example.org/z)"))
    assert list(missing_paths("see `scripts/no_such.py`"))
    print("check_docs: sees broken links and commands that print something else")


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--quoin", type=pathlib.Path)
    parser.add_argument("--self-test", action="store_true")
    arguments = parser.parse_args()
    if arguments.self_test:
        self_test()
        return 0
    environment = dict(os.environ, LC_ALL="C.UTF-8")
    folder = arguments.quoin.resolve().parent
    # Debian's interpreter is the one that sees Debian's libraries.
    environment["PATH"] = f"{folder}:/usr/bin:{environment['PATH']}"
    environment["PYTHONPATH"] = str(folder.parent / "python")
    environment["PYTHONDONTWRITEBYTECODE"] = "1"
    wrong = ran = 0
    pages = documents()
    for document in pages:
        text = document.read_text("utf-8")
        ran += len(list(sessions(text)))
        for complaint in [*broken_links(document, text), *missing_paths(text),
                          *wrong_sessions(text, environment)]:
            print(f"{document.relative_to(ROOT)}: {complaint}")
            wrong += 1
    print(f"{len(pages)} documents, {ran} commands run, {wrong} complaints")
    return 1 if wrong or not ran else 0


if __name__ == "__main__":
    sys.exit(main())
