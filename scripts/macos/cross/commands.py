"""How a cross-build compiles each source of the project, from its compile_commands.json."""

import json
import pathlib
import shlex
import typing

ROOT = pathlib.Path(__file__).resolve().parents[3]
# Options followed by a value, among them those for the output and the architectures.
WITH_VALUE = {"-o", "-MF", "-MT", "-arch"}
ALONE = {"-c", "-MD"}


class Command(typing.NamedTuple):
    """`arguments` compile `source` for one architecture and name no output."""

    source: pathlib.Path
    folder: pathlib.Path
    arguments: list[str]


def read_commands(build: pathlib.Path, architecture: str = "arm64") -> list[Command]:
    """The project's own sources; the libraries that it is built with are not among them."""
    found = []
    for entry in json.loads((build / "compile_commands.json").read_text(encoding="utf-8")):
        source = pathlib.Path(entry["file"])
        if not source.is_relative_to(ROOT) or source.is_relative_to(build.resolve()):
            continue
        arguments = without_output(shlex.split(entry["command"]))
        found.append(Command(source, pathlib.Path(entry["directory"]), [*arguments, "-arch", architecture]))
    return sorted(found)


def without_output(arguments: list[str]) -> list[str]:
    kept: list[str] = []
    rest = iter(arguments)
    for argument in rest:
        if argument in WITH_VALUE:
            next(rest)
        elif argument not in ALONE:
            kept.append(argument)
    return kept
