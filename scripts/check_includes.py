#!/usr/bin/python3
"""Checks that every #include of the tree runs along the arrows of the architecture.

usage: check_includes.py [--self-test] [ROOT]

Fails with one line per include that runs against them, or that resolves to nothing. What each
folder may include stands in ALLOWED below; ARCHITECTURE.md says why.
"""

import os
import pathlib
import re
import sys
import tempfile

MODULE_FOLDERS = ("module", "host", "geometry", "Algorithm", "tools")
HOST_FOLDERS = ("ge", "rx", "dxf", "ed", "product", "os", "text")
DATABASE_ROOMS = ("records", "core", "geometry", "tables", "entities", "regions")
DWG_ROOMS = ("container", "records", "drawing")
# Folders whose headers are included by bare name, because they are include directories.
INCLUDE_DIRECTORIES = ("embedded/include",) + MODULE_FOLDERS + ("tests",)
SUFFIXES = (".h", ".hpp", ".cpp")

# The standard library as far as C++20 has it, with the C headers.
STANDARD = set("""
algorithm any array atomic barrier bit bitset charconv chrono codecvt compare complex concepts
condition_variable coroutine deque exception execution filesystem format forward_list fstream
functional future initializer_list iomanip ios iosfwd iostream istream iterator latch limits list
locale map memory memory_resource mutex new numbers numeric optional ostream queue random ranges
ratio regex scoped_allocator semaphore set shared_mutex source_location span sstream stack
stdexcept stop_token streambuf string string_view strstream syncstream system_error thread tuple
type_traits typeindex typeinfo unordered_map unordered_set utility valarray variant vector version
cassert cctype cerrno cfenv cfloat cinttypes climits clocale cmath csetjmp csignal cstdarg cstddef
cstdint cstdio cstdlib cstring ctime cuchar cwchar cwctype
assert.h ctype.h errno.h fenv.h float.h inttypes.h limits.h locale.h math.h setjmp.h signal.h
stdarg.h stddef.h stdint.h stdio.h stdlib.h string.h time.h uchar.h wchar.h wctype.h
""".split())

# Libraries by the beginning of their headers' names, and the zones that may use them.
LIBRARIES = {
    "CLI/": {"commands", "app", "tests"},
    "fmt/": {"commands", "app", "python", "tests"},
    "nlohmann/": {"commands", "tests"},
    "cairo": {"commands", "tests"},
    "pango/": {"commands"},
    "gdk-pixbuf/": {"commands"},
    "fontconfig/": {"commands"},
    "tiny_gltf.h": {"commands"},
    "geos_c.h": {"embedded/db/regions", "plan", "bench", "tests"},
    "ft2build.h": {"embedded/text"},
    "freetype/": {"embedded/text"},
    "gtest/": {"tests"},
    "gmock/": {"tests"},
    "pybind11/": {"python"},
    "benchmark/": {"bench"},
    "boost/": {"bench"},
    "dime/": {"bench"},
}

# Headers of the compiler itself, for what the standard library has no name for, and the files that
# may use them; each has a form in plain C++ beside it.
COMPILER = {
    "emmintrin.h": {"geometry/DoublePair.h", "bench/Measure.h"},
}

# Zones that may include some headers of another zone and no others.
HEADERS_ALLOWED = {
    ("embedded/dwg/container", "embedded/dxf"): {"embedded/dxf/FileError.h",
                                                 "embedded/dxf/Format.h"},
    # Drawings, lines, walls and plans as the commands see them; not their frame, not their reports.
    ("python", "commands"): {"commands/" + name + ".h" for name in (
        "AxisOverhang", "Cleaning", "CommandError", "Drawing", "LayerChoice", "OutlineGaps",
        "OutlineLines", "OutputFile", "PlanReading", "PlannedWalls", "Polylines", "Progress",
        "ProgressListener", "ReferenceWalls", "RoomWalls", "SingleLines", "SpaceChange", "Units",
        "WallBodies", "WallChanges", "WallCuts", "WallLines", "WallPrism", "WallWords",
        "picture/DrawList", "picture/PictureParts", "picture/PlanShapes", "picture/Render",
        "picture/ShownImages", "picture/ThemeNames")},
}

# Which zones a zone may include, beside itself and the standard library and the host API. "api" is
# the host API, "platform" the part of the operating system that is not the standard library,
# "embedded" all of the embedded host.
ALLOWED = {
    "api": set(),
    "module": set(),
    "embedded/os": {"platform"},
    "embedded/ge": set(),
    "embedded/text": {"embedded/os"},
    "embedded/dxf": {"embedded/os"},
    "embedded/dwg/container": {"embedded/os", "embedded/dxf"},
    "embedded/dwg/records": {"embedded/os", "embedded/dxf"},
    "embedded/dwg/drawing": {"embedded/os", "embedded/dxf", "embedded/dwg/container",
                             "embedded/dwg/records"},
    "embedded/rx": {"embedded/os"},
    "embedded/ed": {"embedded/os", "embedded/rx"},
    "embedded/db/records": {"embedded/os", "embedded/dxf"},
    "embedded/db/core": {"embedded/os", "embedded/dxf", "embedded/db/records"},
    "embedded/db/geometry": {"embedded/dxf", "embedded/text", "embedded/db/records",
                             "embedded/db/core"},
    "embedded/db/tables": {"embedded/os", "embedded/dxf", "embedded/db/records",
                           "embedded/db/core"},
    "embedded/db/entities": {"embedded/os", "embedded/dxf", "embedded/text",
                             "embedded/db/records", "embedded/db/core", "embedded/db/geometry"},
    "embedded/db/regions": {"embedded/db/records", "embedded/db/core", "embedded/db/geometry"},
    "embedded/product": {"embedded/os", "embedded/rx", "embedded/ed", "host"},
    "app": {"embedded"},
    "plan": {"module"},
    "commands": {"embedded", "module", "plan"},
    "python": {"embedded", "module", "plan", "commands"},
    "bench": {"embedded", "module", "plan", "tests", "platform"},
    "tests": {"embedded", "module", "plan", "commands", "app", "platform"},
    "examples": {"module"},
}

INCLUDE = re.compile(r'^[ \t]*#[ \t]*include[ \t]*(?:"([^"]+)"|<([^>]+)>)', re.MULTILINE)
COMMENT = re.compile(r'"(?:\\.|[^"\\\n])*"|//[^\n]*|/\*.*?\*/', re.DOTALL)


def zone_of(path):
    """The zone of a file, by its path from the root; None for a file outside every zone."""
    parts = path.split("/")
    if parts[0] in MODULE_FOLDERS:
        return "module"
    if parts[0] == "embedded":
        if len(parts) > 2 and parts[1] == "include":
            return "api"
        if len(parts) > 3 and parts[1] == "db" and parts[2] in DATABASE_ROOMS:
            return "embedded/db/" + parts[2]
        if len(parts) > 3 and parts[1] == "dwg" and parts[2] in DWG_ROOMS:
            return "embedded/dwg/" + parts[2]
        # The frame is linked into every module, so it sees what a module sees.
        if parts[1:3] == ["rx", "frame"]:
            return "module"
        return "embedded/" + parts[1] if len(parts) > 2 and parts[1] in HOST_FOLDERS else None
    return parts[0] if parts[0] in ALLOWED else None


def included_zone(root, path, name):
    """The zone that `name` leads to from the file `path`, and the file if it is ours."""
    for folder in (os.path.dirname(path), "") + INCLUDE_DIRECTORIES:
        candidate = os.path.normpath(os.path.join(folder, name))
        if not candidate.startswith("..") and (root / candidate).is_file():
            return zone_of(candidate), candidate
    if name in STANDARD:
        return "standard", None
    for beginning in LIBRARIES:
        if name.startswith(beginning):
            return "library " + beginning, None
    if name == "windows.h" or name == "io.h" or name == "process.h" or (
            any((pathlib.Path(folder) / name).is_file()
                for folder in ("/usr/include", "/usr/include/x86_64-linux-gnu"))):
        return "platform", None
    return None, None


def without_comments(text):
    """The text with comments blanked out, line numbers kept; quoted names stay."""
    def blank(match):
        token = match.group()
        return token if token.startswith('"') else re.sub(r"[^\n]", " ", token)
    return COMMENT.sub(blank, text)


def complaint(root, path, name):
    """What is wrong with including `name` in the file `path`, or None."""
    zone = zone_of(path)
    if name in COMPILER:
        return None if path in COMPILER[name] else f"{name} belongs to the compiler"
    target, file = included_zone(root, path, name)
    if target is None:
        return f"{name} is no header that this tree knows"
    if target.startswith("library "):
        library = target.removeprefix("library ")
        return None if zone in LIBRARIES[library] else f"{zone} must not use the library {library}"
    allowed = ALLOWED[zone] | {zone, "standard", "api"}
    headers = HEADERS_ALLOWED.get((zone, target))
    if headers is not None and file not in headers:
        return f"{zone} must not include {file}, only {', '.join(sorted(headers))}"
    if target in allowed:
        # The inside of the module is its own; clients see the exported headers.
        if zone == "commands" and target == "module" and name.endswith("Internal.h"):
            return f"{file} is the module's inside"
        return None
    if zone == "api" and name == "windows.h":
        return None  # on Windows the host API's string and handle types are the system's own
    if target.startswith("embedded/") and "embedded" in allowed:
        return None
    if file and file.startswith("host/") and "host" in allowed:
        return None
    return f"{zone} must not include {target} ({file or name})"


def check(root):
    """All complaints of the tree under `root`, as lines, and how many includes were seen."""
    complaints, seen = [], 0
    for folder in MODULE_FOLDERS + ("embedded", "app", "plan", "commands", "python", "bench", "tests",
                                    "examples"):
        for file in sorted((root / folder).rglob("*")):
            if file.suffix not in SUFFIXES or not file.is_file():
                continue
            path = file.relative_to(root).as_posix()
            # The install test's client is compiled against the installed headers alone.
            if path.startswith("tests/consumer/"):
                continue
            if zone_of(path) is None:
                complaints.append(f"{path}:1: stands in no folder of the architecture")
                continue
            text = without_comments(file.read_text(encoding="utf-8"))
            for match in INCLUDE.finditer(text):
                seen += 1
                problem = complaint(root, path, match.group(1) or match.group(2))
                if problem:
                    line = text.count("\n", 0, match.start()) + 1
                    complaints.append(f"{path}:{line}: {problem}")
    return complaints, seen


SELF_TEST = [
    # (file, its text, whether it is against the rules)
    ("embedded/include/gepnt3d.h", "#include <cmath>\n", False),
    ("embedded/os/File.h", "#include <string>\n", False),
    ("embedded/os/File.cpp", "#include <unistd.h>\n", False),
    ("embedded/ge/Ge.h", '#include "gepnt3d.h"\n', False),
    ("embedded/db/regions/Region.cpp", "#include <geos_c.h>\n", False),
    ("embedded/db/entities/Line.cpp", "#include <geos_c.h>\n", True),
    ("embedded/db/records/Tags.h", '#include "embedded/dxf/Reader.h"\n', False),
    ("embedded/dxf/Reader.h", "#include <string>\n", False),
    ("embedded/db/core/Object.h", '#include "embedded/db/records/Tags.h"\n', False),
    ("embedded/db/geometry/Box.h", '#include "embedded/db/core/Object.h"\n', False),
    ("embedded/db/entities/Circle.cpp", '#include "embedded/db/geometry/Box.h"\n', False),
    ("embedded/dxf/Writer.cpp", '#include "embedded/db/records/Tags.h"\n', True),
    ("embedded/db/core/Object.cpp", '#include "embedded/db/geometry/Box.h"\n', True),
    ("embedded/db/tables/Layers.cpp", '#include "embedded/db/geometry/Box.h"\n', True),
    ("embedded/dxf/Format.h", "#include <string>\n", False),
    ("embedded/dwg/container/Pages.h", '#include "embedded/dxf/Format.h"\n', False),
    ("embedded/dwg/container/Map.h", '#include "embedded/dxf/Reader.h"\n', True),
    ("embedded/dwg/container/Head.h", '#include "embedded/db/records/Tags.h"\n', True),
    ("embedded/dwg/Stray.cpp", "#include <string>\n", True),
    ("embedded/db/Stray.cpp", "#include <string>\n", True),
    ("embedded/ed/Editor.cpp", '#include "embedded/db/core/Object.h"\n', True),
    ("geometry/Polygon.cpp", "#include <geos_c.h>\n", True),
    ("embedded/dxf/Reader.cpp", '#include "embedded/os/File.h"\n', False),
    ("host/Log.h", '#include "gepnt3d.h"\n', False),
    ("embedded/product/Log.cpp", '#include "Log.h"\n', False),
    ("geometry/Wall.h", '#include "Log.h"\n', False),
    ("geometry/WallInternal.h", '#include "Wall.h"\n', False),
    ("Algorithm/Break.cpp", '#include "Wall.h"\n// #include "embedded/os/File.h"\n', False),
    ("commands/Break.cpp", '#include "Wall.h"\n#include <fmt/format.h>\n', False),
    ("commands/Model.cpp", "#include <tiny_gltf.h>\n", False),
    ("plan/Model.cpp", "#include <tiny_gltf.h>\n", True),
    ("commands/WallLines.h", "#include <string>\n", False),
    ("python/src/Lines.cpp", '#include "commands/WallLines.h"\n#include <pybind11/numpy.h>\n', False),
    ("commands/Report.h", "#include <string>\n", False),
    ("python/src/Tell.cpp", '#include "commands/Report.h"\n', True),
    ("commands/Bind.cpp", "#include <pybind11/numpy.h>\n", True),
    ("app/main.cpp", '#include "embedded/os/File.h"\n', False),
    ("tests/ge/Ge_test.cpp", '#include <gtest/gtest.h>\n#include "Wall.h"\n', False),
    ("Algorithm/A.cpp", '#include "embedded/os/File.h"\n', True),
    ("Algorithm/B.cpp", '#include "../embedded/os/File.h"\n', True),
    ("Algorithm/C.cpp", "#include <unistd.h>\n", True),
    ("Algorithm/D.cpp", "#include <fmt/format.h>\n", True),
    ("tools/E.cpp", '  #  include  "../commands/F.h"\n', True),
    ("commands/F.h", '#include "WallInternal.h"\n', True),
    ("embedded/db/core/G.cpp", '#include "Log.h"\n', True),
    ("embedded/product/H.cpp", '#include "Wall.h"\n', True),
    ("embedded/dxf/I.cpp", "#include <sys/stat.h>\n", True),
    ("embedded/include/J.h", '#include "embedded/ge/Ge.h"\n', True),
    ("plan/P.h", '#include "Wall.h"\n', False),
    ("plan/Q.cpp", "#include <geos_c.h>\n", False),
    ("plan/R.cpp", '#include "embedded/os/File.h"\n', True),
    ("commands/S.cpp", '#include "plan/P.h"\n', False),
    ("geometry/T.cpp", '#include "plan/P.h"\n', True),
    ("app/K.cpp", '#include "Wall.h"\n', True),
    ("app/L.cpp", '#include "commands/F.h"\n', True),
    ("geometry/M.cpp", '#include "NoSuchHeader.h"\n', True),
    ("geometry/DoublePair.h", "#include <emmintrin.h>\n", False),
    ("geometry/O.h", "#include <emmintrin.h>\n", True),
    ("embedded/rx/frame/N.cpp", '#include "embedded/os/File.h"\n', True),
]


def self_test():
    """Every wrong arrow of a made-up tree is found, and no right one."""
    with tempfile.TemporaryDirectory() as folder:
        root = pathlib.Path(folder)
        for path, text, _ in SELF_TEST:
            (root / path).parent.mkdir(parents=True, exist_ok=True)
            (root / path).write_text(text, encoding="utf-8")
        complaints, _ = check(root)
        found = {line.split(":")[0] for line in complaints}
        wanted = {path for path, _, wrong in SELF_TEST if wrong}
        for path in sorted(found ^ wanted):
            print(f"check_includes: {'missed' if path in wanted else 'wrongly named'}: {path}")
        if found != wanted:
            sys.exit("check_includes: the check itself is broken")
    print(f"check_includes: finds {len(wanted)} wrong arrows of a made-up tree, and no others")


def main(arguments):
    if "--self-test" in arguments:
        self_test()
        return 0
    root = pathlib.Path(arguments[0]) if arguments else pathlib.Path(__file__).parent.parent
    complaints, seen = check(root.resolve())
    print("\n".join(complaints + [f"{seen} includes, {len(complaints)} against the arrows"]))
    return 1 if complaints or not seen else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
