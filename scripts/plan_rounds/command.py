"""The command line of scripts/plan_rounds.py."""

import argparse
import dataclasses
import json
import pathlib
import sys

from plan_rounds import campaign, drawing, dxf, judge, marks

TRUTHS = pathlib.Path(__file__).resolve().parents[2] / "tests" / "data" / "plans"


def noise_of(word):
    """The set that `clean`, `noisy` or words with commas between stand for."""
    found = set()
    for part in word.split(","):
        if part in drawing.NOISES:
            found.update(drawing.NOISES[part])
        elif part in drawing.ALL_NOISE:
            found.add(part)
        else:
            raise argparse.ArgumentTypeError(
                f"'{part}' is none of {', '.join([*drawing.NOISES, *drawing.ALL_NOISE])}")
    return tuple(word for word in drawing.ALL_NOISE if word in found)


def make(arguments):
    plan = drawing.make_plan(arguments.seed, arguments.walls, arguments.noise,
                             arguments.units, arguments.style)
    with open(arguments.output, "w", encoding="ascii", newline="") as stream:
        dxf.write(stream, plan.primitives, plan.units, drawing.DOOR_BLOCK)
    if arguments.reference:
        with open(arguments.reference, "w", encoding="ascii", newline="") as stream:
            dxf.write(stream, plan.references, plan.units)
    if arguments.truth:
        with open(arguments.truth, "w", encoding="ascii") as stream:
            json.dump({"seed": arguments.seed, "noise": list(arguments.noise)} | plan.truth(), stream)
    print(f"{arguments.output}: {len(plan.walls)} walls, {len(plan.openings)} openings, "
          f"{len(plan.rooms)} rooms, {len(plan.primitives)} entities")
    return 0


def judge_reports(arguments):
    truth = judge.load(arguments.truth)
    walls = openings = rooms = columns = None
    if arguments.report:
        found = judge.drawing_of(judge.load(arguments.report))
        walls, openings = found["walls"], found.get("openings", [])
        rooms, columns = found.get("rooms"), found.get("columns")
    if arguments.rooms:
        rooms = judge.drawing_of(judge.load(arguments.rooms))["rooms"]
    unit = truth["millimetersPerUnit"]
    tolerance = judge.tolerance_of(truth, unit)
    for name in ("along", "across", "width", "place"):
        if getattr(arguments, name) is not None:
            tolerance = dataclasses.replace(tolerance, **{name: getattr(arguments, name) / unit})
    if arguments.area is not None:
        tolerance = dataclasses.replace(tolerance, area=arguments.area)
    table, wrong = judge.scores(truth, walls, openings, rooms, tolerance, columns)
    print(judge.as_table(table))
    if arguments.wrong:
        with open(arguments.wrong, "w", encoding="utf-8") as stream:
            json.dump([{"what": what, "thing": thing} for what, thing in wrong], stream, indent=1)
    if arguments.marks:
        marks.write(arguments.marks, wrong, unit)
    goals = {"walls": arguments.goal, "openings": arguments.opening_goal, "rooms": arguments.room_goal}
    below = [score.what for score in table if goals.get(score.what) is not None
             and min(score.recall, score.precision) < goals[score.what]]
    if below:
        print(f"below the goal: {', '.join(below)}", file=sys.stderr)
    return 1 if below else 0


def truth_text(truth):
    """The truth as JSON with a line for each thing, so that changes of it can be read."""
    def line(value):
        return json.dumps(value, ensure_ascii=False)
    parts = []
    for name, value in truth.items():
        if isinstance(value, list) and value and isinstance(value[0], dict):
            value = "[\n" + ",\n".join("  " + line(thing) for thing in value) + "\n ]"
        else:
            value = line(value)
        parts.append(f" {line(name)}: {value}")
    return "{\n" + ",\n".join(parts) + "\n}\n"


def write_truths(arguments):
    from plan_rounds import examples, readings
    folder = pathlib.Path(arguments.output)
    wrong = 0
    for name, truth in (examples.truths() | readings.truths()).items():
        file = folder / f"{name}.json"
        text = truth_text(truth)
        if arguments.check:
            same = file.exists() and file.read_text(encoding="utf-8") == text
            wrong += not same
            print(f"{file.name}: {'the same' if same else 'differs from what the readings say'}")
        else:
            folder.mkdir(parents=True, exist_ok=True)
            file.write_text(text, encoding="utf-8")
            print(f"{file}: {len(truth['walls'])} walls, {len(truth['openings'])} openings, "
                  f"{len(truth['rooms'])} rooms")
    return 1 if wrong else 0


def main():
    parser = argparse.ArgumentParser(prog="plan_rounds.py")
    commands = parser.add_subparsers(dest="command", required=True)
    one = commands.add_parser("make", help="write a random plan and its truth")
    one.add_argument("--walls", type=int, default=100, help="about how many (default 100)")
    one.add_argument("--seed", type=int, default=1)
    one.add_argument("--noise", type=noise_of, default=(), metavar="WORDS",
                     help=f"clean, noisy, or some of {','.join(drawing.ALL_NOISE)}")
    one.add_argument("--units", choices=sorted(dxf.UNITS), default="mm")
    one.add_argument("--style", choices=drawing.STYLES,
                     help="how faces are drawn (default: each building its own way)")
    one.add_argument("-o", "--output", required=True)
    one.add_argument("--truth", help="the file for what is true")
    one.add_argument("--reference", help="a drawing of the same walls by reference lines")
    one.set_defaults(run=make)

    one = commands.add_parser("judge", help="compare reports with the truth",
                              description="Compares what `quoin walls` and `quoin rooms` report "
                              "(--report json) with the truth. Lengths of options are millimetres.")
    one.add_argument("--truth", required=True)
    one.add_argument("--report", help="of `quoin walls`; rooms in it count too")
    one.add_argument("--rooms", help="the report of `quoin rooms`")
    one.add_argument("--along", type=float, metavar="MM", help="how far ends may be off along a wall")
    one.add_argument("--across", type=float, metavar="MM", help="and across it")
    one.add_argument("--width", type=float, metavar="MM")
    one.add_argument("--place", type=float, metavar="MM", help="how far a room's middle may be off")
    one.add_argument("--area", type=float, metavar="PART", help="how much of a room's area")
    one.add_argument("--wrong", metavar="FILE", help="write what was missed and made up, as JSON")
    one.add_argument("--marks", metavar="FILE", help="and as a drawing")
    one.add_argument("--goal", type=float, help="end with 1 where walls are below")
    one.add_argument("--opening-goal", type=float)
    one.add_argument("--room-goal", type=float)
    one.set_defaults(run=judge_reports)

    one = commands.add_parser("truths", help="write what the examples and other plans truly show")
    one.add_argument("-o", "--output", default=str(TRUTHS), metavar="FOLDER")
    one.add_argument("--check", action="store_true", help="compare the files instead")
    one.set_defaults(run=write_truths)

    one = commands.add_parser("rounds", help="make, read and judge many plans",
                              description="Prints a table of recall / precision; ends with 1 where "
                              "one is below its goal, or a plan cannot be read.")
    one.add_argument("--quoin", required=True)
    one.add_argument("--walls", default="10,100,1000", metavar="N,N", help="sizes (default %(default)s)")
    one.add_argument("--seeds", type=int, default=5, help="plans of each size (default 5)")
    one.add_argument("--first-seed", type=int, default=1)
    one.add_argument("--noise", default="clean,noisy", metavar="WORDS",
                     help="clean, noisy, outlined (by `quoin outline`), wide (polylines), filled "
                     "(hatches), with commas between")
    one.add_argument("--truths", metavar="FOLDER", help="also plans whose truth stands in this folder")
    one.add_argument("--drawings", action="append", default=[str(TRUTHS.parents[2])], metavar="FOLDER",
                     help="where those plans are (default: this tree); may be repeated")
    one.add_argument("--variants", default="", metavar="N,N",
                     help="also plans of these sizes shuffled, reversed, turned, mirrored, shifted")
    one.add_argument("--each", action="store_true", help="a row for each plan, to find the bad ones")
    one.add_argument("--write-docs", metavar="FILE.md", help="put the table between its marks there")
    one.add_argument("--no-rooms", action="store_true", help="judge walls and openings alone")
    one.add_argument("--folder", default="build/plan-rounds", help="for what is made on the way")
    one.set_defaults(run=campaign.campaign)
    arguments = parser.parse_args()
    return arguments.run(arguments)
