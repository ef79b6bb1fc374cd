#!/usr/bin/python3
"""Compares what quoin reads of DWG drawings with the DXF files that another program wrote of them.

usage: compare_dwg_twins.py [--check DOCUMENT] FOLDER QUOIN
The folder has pairs: NAME.dwg beside NAME.dxf, NAME_ascii.dxf or NAME_binary.dxf. `quoin convert`
makes a DXF file of each DWG drawing; both are compared record by record, by handle, and tag by tag.
Every difference must have its reason in REASONS, else the exit code is 1. Prints a table of them;
--check compares it with the one between the marks of a document.
"""

import argparse
import collections
import json
import math
import pathlib
import subprocess
import sys
import tempfile
import textwrap

import ezdxf.lldxf.tagger

BEGIN, END = "<!-- twins: begin -->\n", "<!-- twins: end -->\n"

# What a difference is called, and why it is one. The first rule that holds counts.
REASONS = {
    "digits": "ASCII files of the other program have 16 digits, none of them behind the 16th decimal "
              "place, and the last one is off by up to 2. Numbers of its binary files must be ours "
              "bit for bit.",
    "left behind": "Records of kinds that are not read, and what names them.",
    "made by saving": "Records, and names of them, that the other program makes anew each time it "
                      "saves: round-trip data of newer versions, blocks of tables and references "
                      "in them, save times, identifiers, the next handle.",
    "round trip": "In the DWG file as extended data for newer versions, in the DXF file as what it "
                  "stands for, or not at all; a changed dynamic block with its own name and not an "
                  "anonymous one.",
    "palette": "The index of the palette's colour that is nearest to a true colour.",
    "table": "ACAD_TABLE shows its place and the block that draws it; cells stay in the record.",
    "preview": "A picture of a proxy, made anew.",
    "leader": "LEADER has neither the end of its hook line nor, from R2010 on, its text's size.",
    "spline": "From R2013 on a spline that fits points is kept as these; the DXF file has the "
              "control points that were computed, the normal, and a bit for lying in a plane.",
    "shape": "SHAPE has a number; its name is in the shape file.",
    "table heads": "Counts of a table's records are those of the file; the other program adds "
                   "which version it saved.",
    "names": "Letters in capitals: BYLAYER, and Standard as its dictionary spells it.",
    "line ends": "A line end in a text is ^J in ours, the byte itself in its binary files.",
}

DOUBLES = [range(10, 60), range(110, 150), range(210, 240), range(460, 470), range(1010, 1060)]
INTEGERS = [range(60, 100), range(160, 180), range(270, 300), range(370, 390), range(400, 410),
            range(420, 430), range(440, 460), range(1060, 1072)]
HANDLES = [range(320, 370), range(390, 400), range(480, 482), range(1005, 1006)]


def is_in(code, ranges):
    return any(code in codes for codes in ranges)


def tags_of(path):
    """All tags of a DXF file, numbers as numbers."""
    data = path.read_bytes()
    if data.startswith(b"AutoCAD Binary DXF"):
        pairs = [(tag.code, tag.value) for tag in ezdxf.lldxf.tagger.binary_tags_loader(data)]
    else:
        encoding = "cp1252" if data[:600].split(b"$ACADVER")[1].split()[1] < b"AC1021" else "utf8"
        lines = [line.rstrip("\r") for line in data.decode(encoding, "replace").split("\n")]
        pairs = zip(map(int, lines[:-1:2]), lines[1::2])
    for code, value in pairs:
        if is_in(code, DOUBLES):
            yield code, float(value)
        elif is_in(code, INTEGERS):
            yield code, int(value)
        elif isinstance(value, bytes):
            yield code, value.hex().upper()
        else:
            yield code, value


def records_of(path):
    """Every record by handle, every header variable by name."""
    records, record, section, former = {}, [], "", None
    for code, value in tags_of(path):
        if code == 0 or code == 9:
            record = []
        if former == (0, "SECTION"):
            section = value
        record.append((code, value))
        if code == 9 and section == "HEADER":
            records[value] = record
        elif code in (5, 105) and record[0][0] == 0 and section not in ("HEADER", "CLASSES") and \
                not any(earlier[0] in (5, 105) for earlier in record[:-1]):
            records.setdefault(value, record)
        former = (code, value)
    return records


def is_near(one, other):
    """Whether two numbers differ in the 16th digit, or behind the 16th decimal place, alone."""
    if not isinstance(one, float) or not isinstance(other, float):
        return False
    size = max(abs(one), abs(other))
    unit = 10.0 ** (math.floor(math.log10(size)) - 15) if size > 0 else 0.0
    return abs(one - other) <= max(2.5 * unit, 1.01e-16)


class Twins:
    def __init__(self, ours, theirs, closed, is_exact):
        self.ours, self.theirs, self.closed, self.is_exact = ours, theirs, closed, is_exact
        common = [int(handle, 16) for handle in ours.keys() & theirs.keys() if handle[0] != "$"]
        self.last = max(common)
        self.counts = collections.Counter()
        self.unexplained = []
        self.alike = 0

    def compare(self):
        for handle in sorted(self.ours.keys() | self.theirs.keys()):
            one, other = self.ours.get(handle), self.theirs.get(handle)
            if one is None or other is None:
                self.count(self.reason_alone(handle, one or other), handle, one or other)
            elif one == other:
                self.alike += 1
            else:
                self.compare_tags(handle, one, other)

    def compare_tags(self, handle, one, other):
        kind = handle if handle[0] == "$" else one[0][1]
        old, new = collections.Counter(one), collections.Counter(other)
        left, right = list((old - new).elements()), list((new - old).elements())
        for tag in list(left):
            near = None if self.is_exact else next(
                (t for t in right if t[0] == tag[0] and is_near(t[1], tag[1])), None)
            if near:
                left.remove(tag)
                right.remove(near)
                self.counts["digits"] += 1
        # A value that differs is one difference: theirs, if they say anything.
        for code in sorted({tag[0] for tag in left + right}):
            ours = [value for c, value in left if c == code]
            theirs = [value for c, value in right if c == code]
            reason = self.reason(kind, code, ours, theirs)
            self.count(reason, handle, (kind, code, ours[:3], theirs[:3]),
                       max(len(ours), len(theirs)))

    def count(self, reason, handle, what, times=1):
        if reason:
            self.counts[reason] += times
        else:
            self.unexplained.append((handle, what))

    def is_made(self, handle):
        try:
            return int(handle, 16) > self.last
        except ValueError:
            return False

    def is_closed(self, handle):
        return handle in self.theirs and self.theirs[handle][0][1] in self.closed

    def reason_alone(self, handle, record):
        if record[0][1] in self.closed:
            return "left behind"
        if self.is_made(handle):
            return "made by saving"
        # What belongs to a record that was left behind.
        owner = next((value for code, value in record if code == 330), "")
        if handle in self.theirs and (self.is_closed(owner) or owner not in self.ours):
            return "left behind"
        return None

    def reason(self, kind, code, ours, theirs):
        if kind[0] == "$":
            if kind == "$CECOLOR":
                return "palette"
            if kind == "$CMLSTYLE" and [v.upper() for v in ours] == [v.upper() for v in theirs]:
                return "names"
            if code in (345, 346, 347) and ours == ["0"]:
                return "left behind"
            saved = ("$HANDSEED", "$VERSIONGUID", "$TDUPDATE", "$TDUUPDATE", "$TDINDWG",
                     "$TDUSRTIMER", "$ACADMAINTVER", "$LASTSAVEDBY", "$TDCREATE", "$TDUCREATE",
                     "$FINGERPRINTGUID")
            return "made by saving" if kind in saved else None
        handles = ours + theirs
        if is_in(code, HANDLES):
            if all(self.is_made(handle) or handle == "0" for handle in handles):
                return "made by saving"
            if all(handle == "0" for handle in ours) and theirs and \
                    all(self.is_closed(handle) or handle not in self.ours for handle in theirs):
                return "left behind"
        if kind in ("DICTIONARY", "ACDBDICTIONARYWDFLT"):
            return "made by saving" if ours else "left behind"
        table = {"ACAD_TABLE": "table", "LEADER": "leader", "SPLINE": "spline", "SHAPE": "shape",
                 "TABLE": "table heads"}
        if kind in table:
            return table[kind]
        if code == 310:
            return "preview"
        if kind in ("MTEXT", "TOLERANCE") and code in (1, 3) and \
                [v.replace("^J", "\n") for v in ours] == theirs:
            return "line ends"
        if kind == "BLOCK_RECORD" and code == 331:
            return "made by saving"
        if kind == "MLINESTYLE" and code == 6 and [v.upper() for v in ours] == theirs:
            return "names"
        if code in (62, 63, 70, 91, 176, 177, 178) and \
                kind in ("LAYER", "MTEXT", "DBCOLOR", "DIMSTYLE", "MULTILEADER", "BLOCK", "ENDBLK"):
            return "palette"
        if kind == "XRECORD":
            return "made by saving"
        if code >= 1000 or (kind, code) in (("BLOCK", 2), ("BLOCK", 3), ("BLOCK_RECORD", 2)):
            return "round trip"
        if code == 102 and (not theirs or not ours):
            return "made by saving"
        return None


def twins_in(folder):
    for plan in sorted(folder.glob("*.dwg")):
        for ending in (".dxf", "_ascii.dxf", "_binary.dxf"):
            twin = plan.with_name(plan.stem + ending)
            if twin.is_file():
                yield plan, twin


def compare(plan, twin, quoin, folder):
    copy = folder / "copy.dxf"
    copy.unlink(missing_ok=True)
    info = subprocess.run([quoin, "info", plan, "--report", "json"], capture_output=True, check=True)
    closed = json.loads(info.stdout)["drawings"][0].get("closed", {})
    subprocess.run([quoin, "convert", plan, "-o", copy, "--leave-behind"], capture_output=True,
                   check=True)
    is_binary = twin.read_bytes().startswith(b"AutoCAD Binary DXF")
    twins = Twins(records_of(copy), records_of(twin), closed, is_binary)
    twins.compare()
    return twins


def table_of(compared):
    """A column a twin, a row a reason; then what the reasons are."""
    def row(name, cells):
        return f"| {name} | " + " | ".join(map(str, cells)) + " |\n"

    def short(name):
        return name.removeprefix("acadsharp_").removeprefix("sample_").removeprefix("dynamic_BLOCK") \
            .removesuffix(".dxf").removesuffix("PARAMETER").replace("_", " ").lower()

    text = row("", [short(name) for name, _ in compared])
    text += "|---|" + "---:|" * len(compared) + "\n"
    text += row("records in both", [len(t.ours.keys() & t.theirs.keys()) for _, t in compared])
    text += row("of these alike", [t.alike for _, t in compared])
    for reason in REASONS:
        text += row(reason, [t.counts[reason] for _, t in compared])
    text += "\n"
    for reason, words in REASONS.items():
        text += textwrap.fill(f"- **{reason}**: {words}", 100, subsequent_indent="  ",
                              break_long_words=False, break_on_hyphens=False) + "\n"
    return text


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--check", type=pathlib.Path, metavar="DOCUMENT")
    parser.add_argument("folder", type=pathlib.Path)
    parser.add_argument("quoin")
    options = parser.parse_args()
    compared = []
    with tempfile.TemporaryDirectory(prefix="quoin-twins-") as folder:
        for plan, twin in twins_in(options.folder):
            compared.append((twin.name, compare(plan, twin, options.quoin, pathlib.Path(folder))))
    unexplained = [f"{name}: {handle}: {what}" for name, twins in compared
                   for handle, what in twins.unexplained]
    unused = [reason for reason in REASONS if compared and
              not any(twins.counts[reason] for _, twins in compared)]
    unexplained += [f"nothing differs for this reason: {reason}" for reason in unused]
    for line in unexplained:
        print(line, file=sys.stderr)
    table = table_of(compared)
    print(table, end="")
    if options.check and compared:
        document = options.check.read_text()
        if document.split(BEGIN)[1].split(END)[0] != table:
            print(f"{options.check}: the table is another one", file=sys.stderr)
            return 1
    return 1 if unexplained else 0


if __name__ == "__main__":
    sys.exit(main())
