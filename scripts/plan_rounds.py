#!/usr/bin/python3
"""Makes random plans with their truth, and judges how well they were read.

usage: plan_rounds.py make --walls 1000 --seed 7 --noise noisy --units mm -o plan.dxf --truth truth.json
"""

import pathlib
import sys

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent))

from plan_rounds.command import main  # noqa: E402 - the line above finds it

if __name__ == "__main__":
    sys.exit(main())
