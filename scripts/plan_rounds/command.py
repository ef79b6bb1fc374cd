"""The command line of scripts/plan_rounds.py."""

import argparse
import json

from plan_rounds import drawing, dxf


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
    if arguments.truth:
        with open(arguments.truth, "w", encoding="ascii") as stream:
            json.dump(plan.truth(), stream)
    print(f"{arguments.output}: {len(plan.walls)} walls, {len(plan.openings)} openings, "
          f"{len(plan.rooms)} rooms, {len(plan.primitives)} entities")
    return 0


def main():
    parser = argparse.ArgumentParser(prog="plan_rounds.py")
    commands = parser.add_subparsers(dest="command", required=True)
    one = commands.add_parser("make", help="write a random plan and its truth")
    one.add_argument("--walls", type=int, default=100, help="about how many (default 100)")
    one.add_argument("--seed", type=int, default=1)
    one.add_argument("--noise", type=noise_of, default=(), metavar="WORDS",
                     help=f"clean, noisy, or some of {','.join(drawing.ALL_NOISE)}")
    one.add_argument("--units", choices=sorted(dxf.UNITS), default="mm")
    one.add_argument("--style", choices=("lines", "polylines", "mixed"),
                     help="how faces are drawn (default: each building its own way)")
    one.add_argument("-o", "--output", required=True)
    one.add_argument("--truth")
    one.set_defaults(run=make)
    arguments = parser.parse_args()
    return arguments.run(arguments)
