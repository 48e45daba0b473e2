#!/usr/bin/env python3
"""usage: native.py PROGRAM [arguments of GoogleTest...]

Runs native tests of the macOS host with a private display and home. Fails when a test fails, when a rule of a framework
is broken, when an object is autoreleased without a pool, and when an object is not released at the end.
"""

import pathlib
import subprocess
import sys
import tempfile

from display import display, environment
import record

# The log's queue and the event source are created once per process.
MAY_LIVE = {"serial queue", "event source"}


def main() -> int:
    program, *arguments = sys.argv[1:]
    if "--gtest_list_tests" in arguments:
        return subprocess.run([program, *arguments], env=environment("/nonexistent", ":none"), check=False).returncode
    with tempfile.TemporaryDirectory(prefix="keyvora-") as home, display() as screen:
        path = pathlib.Path(home) / "record"
        result = subprocess.run(
            [program, *arguments],
            env=environment(home, screen, KEYVORA_RIG_RECORD=str(path)),
            stderr=subprocess.PIPE,
            check=False,
        )
        stderr = result.stderr.decode("utf-8", "replace")
        lines = record.read(path)
    sys.stderr.write(stderr)
    faults = record.faults(lines, stderr)
    faults += [f"{count} {kind} alive at the end" for kind, count in record.live(lines).items() if count and kind not in MAY_LIVE]
    for fault in faults:
        print(f"FAILED: {fault}")
    return result.returncode or bool(faults)


if __name__ == "__main__":
    sys.exit(main())
