#!/usr/bin/env python3
"""usage: play.py EXECUTABLE SCRIPT

Plays a run of keyvora.app: launches it in the rig, carries out the script and checks the effects. On failure prints the
record, the log and standard error.
"""

import pathlib
import sys
import tempfile

from display import display
from program import Failed
from script import parse
from session import Session


def main() -> int:
    executable, script = (pathlib.Path(argument) for argument in sys.argv[1:])
    commands = parse(script)
    with tempfile.TemporaryDirectory(prefix="keyvora-") as home, display() as screen:
        session = Session(executable, pathlib.Path(home), screen)
        try:
            for command in commands:
                session.play(command)
            if session.program is not None:
                raise Failed("the session ends while the program runs: it lacks its last command, exit")
        except Failed as failure:
            print(f"FAILED {failure}")
            if session.program is not None:
                print("--- record", *map(str, session.program.lines()), sep="\n")
                print("--- log", *session.program.log(), sep="\n")
                print("--- standard error", session.program.stderr()[-4000:], sep="\n")
            return 1
        finally:
            if session.program is not None:
                session.program.end()
    print(f"{script.stem}: {len(commands)} commands, {session.launches} launches")
    return 0


if __name__ == "__main__":
    sys.exit(main())
