#!/usr/bin/python3
"""Looks at built programs and libraries: where they look for others, and how they are hardened.

usage: check_binaries.py [--hardened] [--fortified] FOLDER...
       check_binaries.py --links BUILD.NINJA
       check_binaries.py --self-test

Every ELF file below the folders is read. Refused are places to look for libraries that somebody
else may write to: empty ones (the current folder), relative ones, and absolute ones outside of the
system's. With --hardened also whatever lacks full RELRO, immediate binding or a stack that is not
executable, programs that are not position independent, and the project's libraries without stack
protector; with --fortified those without a checked library function. --links looks at the places that a
configured tree is about to link into its binaries.
"""

import pathlib
import re
import subprocess
import sys

SYSTEM_PLACES = ("/usr/lib", "/lib", "/usr/local/lib")
OWN_LIBRARY = re.compile(r"libquoin\w*\.so")


def wrong_place(place):
    """What is wrong with one element of a search path; None for nothing."""
    if not place:
        return "an empty element: the current folder"
    if place == "$ORIGIN" or place.startswith("$ORIGIN/"):
        return None
    if not place.startswith("/"):
        return f"{place}: a relative element"
    parts = pathlib.PurePosixPath(place)
    if ".." in parts.parts or not any(parts.is_relative_to(system) for system in SYSTEM_PLACES):
        return f"{place}: no folder of the system's"
    return None


def path_complaints(text):
    for kind, places in re.findall(r"\((RPATH|RUNPATH)\)\s+Library \w+: \[(.*)\]", text):
        for place in places.split(":"):
            if wrong := wrong_place(place):
                yield f"{kind} has {wrong}"
    for needed in re.findall(r"\(NEEDED\)\s+Shared library: \[(.*)\]", text):
        if "/" in needed and not needed.startswith("/"):
            yield f"needs {needed}, a relative path"


def hardening_complaints(text, name, fortified):
    if "GNU_RELRO" not in text:
        yield "no RELRO"
    if not re.search(r"\(FLAGS\).*BIND_NOW|\(FLAGS_1\).*\bNOW\b|\(BIND_NOW\)", text):
        yield "symbols are bound late, so RELRO is not full"
    stack = re.search(r"GNU_STACK.* (\w{2,3}) +0x", text)
    if not stack or "E" in stack.group(1):
        yield "the stack is executable"
    if re.search(r"\bINTERP\b", text) and not re.search(r"\(FLAGS_1\).*\bPIE\b", text):
        yield "the program is not position independent"
    if OWN_LIBRARY.fullmatch(name):
        if "__stack_chk_fail" not in text:
            yield "no stack protector"
        if fortified and name not in WITHOUT_BUFFERS and not re.search(r"\b__(?!stack_)\w+_chk\b", text):
            yield "no checked library function (FORTIFY)"


# These compute with vectors alone: no call has a buffer whose size the compiler could check.
WITHOUT_BUFFERS = {"libquoinplan.so"}


def link_complaints(rules):
    """What is wrong with the search paths in the link commands of a build.ninja file."""
    count = 0
    for places in re.findall(r"-Wl,-rpath,\"?([^\s\"]*)", rules):
        count += 1
        for place in places.replace("\\$$", "$").split(":"):
            if wrong := wrong_place(place):
                yield f"a library is linked with {wrong}"
    if count == 0:
        yield "nothing is linked with a search path"


def is_elf(path):
    if path.is_symlink() or not path.is_file():
        return False
    with open(path, "rb") as stream:
        header = stream.read(18)
    # Objects that are yet to be linked have no places to look in.
    return header[:4] == b"\x7fELF" and header[16] in (2, 3)


def complaints_about(path, hardened, fortified):
    text = subprocess.run(["readelf", "-W", "-d", "-l", "--dyn-syms", path], check=True,
                          capture_output=True, text=True).stdout
    yield from path_complaints(text)
    if hardened:
        yield from hardening_complaints(text, path.name, fortified)


def self_test():
    for place in ("$ORIGIN", "$ORIGIN/../lib", "/usr/lib/x86_64-linux-gnu"):
        assert wrong_place(place) is None, place
    for place in ("", ".", "lib", "$ORIGINAL", "/tm" "p/lib", "/usr/lib/../../home", "/opt/lib"):
        assert wrong_place(place), place
    good = (" 0x1d (RUNPATH) Library runpath: [$ORIGIN/../lib:$ORIGIN]\n"
            " 0x1e (FLAGS) BIND_NOW\n 0x6ffffffb (FLAGS_1) Flags: NOW PIE\n"
            "  INTERP 0x000318\n  GNU_RELRO 0x1\n  GNU_STACK 0x0 0x0 0x0 0x0 0x0 RW  0x10\n"
            "  3: 0 0 FUNC GLOBAL DEFAULT UND __stack_chk_fail@GLIBC_2.4\n"
            "  4: 0 0 FUNC GLOBAL DEFAULT UND __memcpy_chk@GLIBC_2.3.4\n")
    assert not [*link_complaints(r"LINK_FLAGS = -Wl,-rpath,\$$ORIGIN/../lib:\$$ORIGIN -pie")]
    assert not [*link_complaints(r'LINK_FLAGS = -Wl,-rpath,"\$$ORIGIN/../lib:\$$ORIGIN" -pie')]
    assert [*link_complaints(r"-Wl,-rpath,\$$ORIGIN:::::: -pie")] and [*link_complaints("-pie")]
    name = "libquoinhost.so"
    assert not [*path_complaints(good), *hardening_complaints(good, name, True)]
    for old, new in (("$ORIGIN/../lib:$ORIGIN", "$ORIGIN:"), ("$ORIGIN/../lib", "../lib"),
                     ("BIND_NOW\n 0x6ffffffb (FLAGS_1) Flags: NOW PIE", "x (FLAGS_1) Flags: PIE"),
                     ("GNU_RELRO", "OTHER"), (" RW ", " RWE"), ("NOW PIE", "NOW"),
                     ("__stack_chk_fail", "none"), ("__memcpy_chk", "memcpy")):
        bad = good.replace(old, new)
        assert bad != good and [*path_complaints(bad), *hardening_complaints(bad, name, True)], old
    print("check_binaries: finds what it looks for, and nothing else")


def main(arguments):
    if "--self-test" in arguments:
        self_test()
        return 0
    if arguments[:1] == ["--links"]:
        found = [*link_complaints(pathlib.Path(arguments[1]).read_text())]
        print(*found, f"{len(found)} complaints", sep="\n")
        return 1 if found else 0
    hardened = "--hardened" in arguments
    fortified = "--fortified" in arguments
    seen = []
    count = 0
    for folder in (pathlib.Path(name) for name in arguments if not name.startswith("--")):
        for path in sorted(folder.rglob("*")):
            if is_elf(path):
                seen.append(path.name)
                for complaint in complaints_about(path, hardened, fortified):
                    print(f"{path}: {complaint}")
                    count += 1
    for name in ("quoin", "libquoin.so", "libquoinhost.so", "libquoinplan.so",
                 "libquoincommands.so"):
        if name not in seen:
            print(f"{name} is not there")
            count += 1
    print(f"{len(seen)} files, {count} complaints")
    return 1 if count else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
