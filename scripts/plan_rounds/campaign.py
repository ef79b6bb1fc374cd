"""Many plans, made, read by the program and judged: the figures of docs/plan-reading.md."""

import dataclasses
import json
import pathlib
import random
import resource
import subprocess
import sys

from plan_rounds import drawing, dxf, judge

# What of the scores is told, as recall and precision, and what has a goal.
COLUMNS = ("walls", "walls, cut or joined", "walls, metres", "openings", "openings by kind", "rooms",
           "rooms of reference lines")
EXACT = {"walls": 0.999, "openings": 0.999, "rooms": 0.999, "rooms of reference lines": 0.999}
GOALS = {"clean": EXACT, "outlined": EXACT, "wide": EXACT, "filled": EXACT,
         "noisy": {"walls": 0.98, "openings": 0.98, "rooms": 0.98},
         "by hand": {"walls": 0.95, "openings": 0.9, "rooms": 0.95}}
SLOWEST = 600  # seconds


def run(words):
    """(what it printed, seconds of the processor)"""
    before = resource.getrusage(resource.RUSAGE_CHILDREN)
    result = subprocess.run([str(word) for word in words], capture_output=True, timeout=SLOWEST)
    after = resource.getrusage(resource.RUSAGE_CHILDREN)
    if result.returncode:
        raise RuntimeError(f"{' '.join(map(str, words))}: exit code {result.returncode}: "
                           f"{result.stderr.decode(errors='replace').strip()}")
    return result.stdout, after.ru_utime + after.ru_stime - before.ru_utime - before.ru_stime


@dataclasses.dataclass
class Row:
    """What several plans of one kind scored together."""
    what: str
    plans: int = 0
    seconds: float = 0.0
    scores: dict = dataclasses.field(default_factory=dict)
    failed: list = dataclasses.field(default_factory=list)

    def add(self, table):
        for score in table:
            whole = self.scores.setdefault(score.what, judge.Score(score.what))
            for name in ("true", "found", "true_right", "found_right"):
                setattr(whole, name, getattr(whole, name) + getattr(score, name))

    def below(self, goals):
        return [f"{self.what}: {what} {min(score.recall, score.precision):.4f} of {goal}"
                for what, goal in goals.items()
                for score in [self.scores.get(what)]
                if score and min(score.recall, score.precision) < goal] + self.failed


def read(quoin, plan, folder, arguments=(), rooms=True):
    """(what `walls` found, what `rooms` found or None, seconds of `walls`)"""
    found_walls = folder / "walls.dxf"
    text, seconds = run([quoin, "walls", plan, *arguments, "-o", found_walls, "--report", "json"])
    walls = judge.drawing_of(json.loads(text))
    if not rooms:
        return walls, None, seconds
    units = [word for i, word in enumerate(arguments)
             if word == "--units" or (i and arguments[i - 1] == "--units")]
    return walls, rooms_of(quoin, found_walls, units), seconds


def rooms_of(quoin, references, arguments=()):
    """What `rooms` finds between reference lines with openings."""
    text, _ = run([quoin, "rooms", references, "--layer", drawing.REFERENCE, *arguments, "--dry-run",
                   "--report", "json"])
    return judge.drawing_of(json.loads(text))["rooms"]


def add_to(row, quoin, truth, plan, folder, arguments, rooms):
    """Reads the plan and adds its scores; what goes wrong counts as found nothing."""
    unit = truth["millimetersPerUnit"]
    tolerance = judge.tolerance_of(truth, unit)
    row.plans += 1
    try:
        walls, found_rooms, seconds = read(quoin, plan, folder, arguments, rooms)
        row.seconds += seconds
        table, wrong = judge.scores(truth, walls["walls"], walls["openings"], found_rooms, tolerance)
    except (RuntimeError, subprocess.TimeoutExpired, KeyError, ValueError) as error:
        row.failed.append(f"{plan}: {error}")
        table, wrong = judge.scores(truth, [], [], [] if rooms else None, tolerance)
    row.add(table)
    return wrong


def write_plan(plan, path):
    with open(path, "w", encoding="ascii", newline="") as stream:
        dxf.write(stream, plan.primitives, plan.units, drawing.DOOR_BLOCK)


def write_references(plan, path):
    with open(path, "w", encoding="ascii", newline="") as stream:
        dxf.write(stream, plan.references, plan.units)


def add_reference_rooms(row, quoin, truth, file):
    """Adds what `rooms` finds between reference lines with openings."""
    unit = truth["millimetersPerUnit"]
    try:
        found = rooms_of(quoin, file)
    except (RuntimeError, subprocess.TimeoutExpired, KeyError, ValueError) as error:
        row.failed.append(f"{file}: {error}")
        found = []
    exact = judge.tolerance_of(truth | {"noise": []}, unit)
    table, _ = judge.scores(truth, rooms=found, tolerance=exact)
    row.add(dataclasses.replace(score, what=f"{score.what} of reference lines") for score in table)


def random_rows(quoin, sizes, seeds, noises, folder, rooms=True, units=tuple(dxf.UNITS), each=False):
    """A row for every noise and size, or for each plan of them; the seeds take turns in units."""
    for name, noise in noises:
        for size in sizes:
            row = Row(f"{name}, {size:,} walls")
            for seed in seeds:
                if each:
                    row = Row(f"{name}, {size:,} walls, seed {seed} in {units[seed % len(units)]}")
                plan = drawing.make_plan(seed, size, noise, units[seed % len(units)],
                                         name if name in ("wide", "filled") else None)
                file, references = folder / "plan.dxf", folder / "references.dxf"
                if name in ("clean", "outlined"):
                    write_references(plan, references)
                arguments = ()
                if name == "outlined":
                    # What the program itself draws from the reference lines.
                    run([quoin, "outline", references, "--layer", drawing.REFERENCE, "-o", file,
                         "--out-layer", drawing.WALL])
                    arguments = ("--layer", drawing.WALL)
                else:
                    write_plan(plan, file)
                truth = {"seed": seed, "noise": list(noise)} | plan.truth()
                (folder / "truth.json").write_text(json.dumps(truth), encoding="ascii")
                add_to(row, quoin, truth, file, folder, arguments, rooms)
                if name == "clean" and rooms:
                    add_reference_rooms(row, quoin, truth, references)
                if each:
                    yield name, row
            if not each:
                yield name, row


def truth_rows(quoin, truths, drawings, folder, rooms=True):
    """A row for every plan whose truth is set down, where the drawing is."""
    for file in sorted(truths.glob("*.json")):
        truth = judge.load(file)
        plan = next((root / truth["drawing"] for root in drawings
                     if (root / truth["drawing"]).exists()), None)
        if not plan:
            print(f"{truth['drawing']} is not there", file=sys.stderr)
            continue
        row = Row(file.stem)
        add_to(row, quoin, truth, plan, folder, truth.get("arguments", ()), rooms)
        yield "by hand", row


def as_markdown(rows):
    """Recall and precision of everything that is told."""
    columns = [column for column in COLUMNS if any(column in row.scores for row in rows)]
    lines = ["| plans | walls | seconds | " + " | ".join(columns) + " |",
             "|" + " --- |" * (3 + len(columns))]
    for row in rows:
        cells = [f"{row.scores[c].recall:.4f} / {row.scores[c].precision:.4f}"
                 if c in row.scores else "" for c in columns]
        lines.append(f"| {row.plans} × {row.what} | {row.scores['walls'].true:,} | {row.seconds:.2f} | "
                     + " | ".join(cells) + " |")
    return "\n".join(lines)


BEGIN, END = "<!-- plan rounds: begin -->", "<!-- plan rounds: end -->"


def write_docs(file, table):
    """Puts the table between the two marks of the document."""
    before, rest = file.read_text(encoding="utf-8").split(BEGIN)
    file.write_text(f"{before}{BEGIN}\n{table}\n{END}{rest.split(END)[1]}", encoding="utf-8")


# Results do not hang on how a plan stands on its sheet -----------------------------------------

def turned(primitive):
    """A primitive turned by 90 degrees."""
    return changed(primitive, lambda p: (-p[1], p[0]), 90.0, False)


def mirrored(primitive):
    """A primitive with its x coordinates negated."""
    return changed(primitive, lambda p: (-p[0], p[1]), 0.0, True)


def changed(primitive, point, degrees, mirror):
    kind, layer, *rest = primitive
    if kind == "line":
        return (kind, layer, point(rest[0]), point(rest[1]))
    if kind in ("polyline", "wide"):
        return (kind, layer, [point(p) for p in rest[0]], rest[1])
    if kind == "hatch":
        return (kind, layer, [[point(p) for p in ring] for ring in rest[0]])
    if kind == "circle":
        return (kind, layer, point(rest[0]), rest[1])
    if kind == "arc":
        start, end = rest[2] + degrees, rest[3] + degrees
        if mirror:
            start, end = 180.0 - end, 180.0 - start
        return (kind, layer, point(rest[0]), rest[1], start, end)
    if kind == "insert":
        block, place, sx, sy, angle = rest
        return (kind, layer, block, point(place), sx, -sy if mirror else sy,
                180.0 - angle if mirror else angle + degrees)
    if kind == "text":
        return (kind, layer, point(rest[0]), rest[1], rest[2], rest[3] + degrees)
    raise ValueError(kind)


def reversed_line(primitive):
    kind, layer, *rest = primitive
    if kind == "line":
        return (kind, layer, rest[1], rest[0])
    if kind in ("polyline", "wide"):
        return (kind, layer, rest[0][::-1], rest[1])
    return primitive


def shifted(by):
    return lambda primitive: changed(primitive, lambda p: (p[0] + by[0], p[1] + by[1]), 0.0, False)


def variants(seed, unit):
    """(name, primitives -> primitives, the way back of a point)"""
    by = (4096.0 * 1000.0 / unit, -2048.0 * 1000.0 / unit)

    def shuffled(primitives):
        some = list(primitives)
        random.Random(seed).shuffle(some)
        return some

    return [
        ("shuffled", shuffled, lambda p: p),
        ("reversed", lambda some: [reversed_line(p) for p in some], lambda p: p),
        ("turned", lambda some: [turned(p) for p in some], lambda p: (p[1], -p[0])),
        ("mirrored", lambda some: [mirrored(p) for p in some], lambda p: (-p[0], p[1])),
        ("shifted", lambda some: list(map(shifted(by), some)), lambda p: (p[0] - by[0], p[1] - by[1])),
    ]


def compare_variants(quoin, size, seed, noise, folder):
    """[(name, walls that differ, openings that differ)] between a plan and its variants."""
    plan = drawing.make_plan(seed, size, noise)
    file = folder / "plan.dxf"
    write_plan(plan, file)
    first, _, _ = read(quoin, file, folder, (), False)
    # Far from the origin coordinates have fewer digits.
    tolerance = judge.Tolerance(1e-5, 1e-5, 1e-5, 0.0, 0.0)
    found = []
    for name, change, back in variants(seed, plan.unit):
        other = drawing.Plan(plan.units)
        other.primitives = change(plan.primitives)
        write_plan(other, file)
        second, _, _ = read(quoin, file, folder, (), False)
        differ = []
        for what in ("walls", "openings"):
            one = [judge.wall_line(i, thing) for i, thing in enumerate(first[what])]
            two = []
            for thing in second[what]:
                left, right = thing.get("left"), thing.get("right")
                if name == "mirrored":
                    left, right = right, left
                two.append(judge.wall_line(0, {"start": back(thing["start"]), "end": back(thing["end"]),
                                               "width": thing["width"], "left": left, "right": right}))
            matched = judge.match(one, two, tolerance) if one and two else {}
            differ.append(max(len(one), len(two)) - len(matched))
        found.append((name, *differ))
    return found


def campaign(arguments):
    rows, below = [], []
    folder = pathlib.Path(arguments.folder)
    folder.mkdir(parents=True, exist_ok=True)
    noises = [(word, drawing.NOISES.get(word, ())) for word in arguments.noise.split(",") if word]
    seeds = range(arguments.first_seed, arguments.first_seed + arguments.seeds)
    sizes = [int(size) for size in arguments.walls.split(",") if size]
    parts = [random_rows(arguments.quoin, sizes, seeds, noises, folder, not arguments.no_rooms,
                         each=arguments.each)]
    if arguments.truths:
        parts.append(truth_rows(arguments.quoin, pathlib.Path(arguments.truths),
                                [pathlib.Path(root) for root in arguments.drawings], folder,
                                not arguments.no_rooms))
    for part in parts:
        for goals, row in part:
            rows.append(row)
            below += row.below(GOALS[goals])
            print(f"{row.what}: {', '.join(row.below(GOALS[goals])) or 'reached'}", file=sys.stderr)
    if rows:
        print(as_markdown(rows))
    if arguments.write_docs:
        write_docs(pathlib.Path(arguments.write_docs), as_markdown(rows))
    for size in [int(size) for size in arguments.variants.split(",") if size]:
        for name, noise in noises:
            for variant, walls, openings in compare_variants(
                    arguments.quoin, size, arguments.first_seed, noise, folder):
                if walls or openings:
                    below.append(f"{name}, {size:,} walls, {variant}: {walls} walls and {openings} "
                                 "openings differ")
    for line in below:
        print(f"below the goal: {line}", file=sys.stderr)
    return 1 if below else 0

