#!/usr/bin/env python3
"""usage: lines.py FOLDER < the output of `llvm-cov export`

Prints for each file in the folder the number of executed lines, and the lines that were not executed completely. Fails
when fewer than 97 % of all lines were executed.
"""

import json
import pathlib
import sys

ENOUGH = 97.0


def not_run(segments: list[list]) -> list[int]:
    """Lines with code that was not executed, computed from the places where a count changes."""
    missing: list[int] = []
    for (line, column, count, counted, *_), following in zip(segments, segments[1:]):
        if counted and count == 0:
            last = following[0] - 1 if following[1] == 1 else following[0]
            missing += range(line, last + 1)
    return sorted(set(missing))


def main() -> int:
    folder = pathlib.Path(sys.argv[1]).resolve()
    count = ran = 0
    for entry in sorted(json.load(sys.stdin)["data"][0]["files"], key=lambda entry: entry["filename"]):
        path = pathlib.Path(entry["filename"])
        lines = entry["summary"]["lines"]
        if path.parent.resolve() != folder or not lines["count"]:
            continue
        count += lines["count"]
        ran += lines["covered"]
        missing = ", ".join(map(str, not_run(entry["segments"])))
        print(f"{path.name:24} {lines['covered']:4} of {lines['count']:4}  {'not run: ' + missing if missing else ''}".rstrip())
    print(f"{'all':24} {ran:4} of {count:4}  {100 * ran / count:.1f} %")
    return 100 * ran / count < ENOUGH


if __name__ == "__main__":
    sys.exit(main())
