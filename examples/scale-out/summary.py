#!/usr/bin/python3
"""One table of all rows below a folder of results.

usage: summary.py FOLDER OUT

Writes OUT/summary.csv, says how many drawings are done, failed and not begun, and ends with 1 where
any is not done.
"""

import csv
import json
import pathlib
import subprocess
import sys


def main():
    folder, out = sys.argv[1], pathlib.Path(sys.argv[2])
    listed = subprocess.run([pathlib.Path(__file__).with_name("list.sh"), folder], check=True,
                            capture_output=True, text=True).stdout.splitlines()
    rows, missing = [], 0
    for name in listed:
        path = out / (name + ".json")
        if path.exists():
            rows.append(json.loads(path.read_text("utf-8")))
        else:
            missing += 1
    columns = ("drawing", "lines", "pieces", "rooms", "net_m2", "seconds", "error")
    with open(out / "summary.csv", "w", newline="", encoding="utf-8") as file:
        table = csv.DictWriter(file, columns, restval="")
        table.writeheader()
        table.writerows(rows)
    failed = [row for row in rows if row["error"]]
    lines = sum(row.get("lines", 0) for row in rows)
    print(f"{len(rows) - len(failed)} drawings done, {len(failed)} failed, {missing} not begun; "
          f"{lines} wall lines, {sum(row.get('rooms', 0) for row in rows)} rooms")
    for row in failed[:10]:
        print(f"  {row['drawing']}: {row['error'][:120]}")
    sys.exit(1 if failed or missing else 0)


if __name__ == "__main__":
    main()
