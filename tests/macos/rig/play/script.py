"""Session scripts: one command a line, indented lines belong to the command before them, `#` begins a comment.

README.md lists the commands.
"""

import dataclasses
import pathlib


@dataclasses.dataclass
class Command:
    place: str
    name: str
    text: str
    block: list[str]


def parse(path: pathlib.Path) -> list[Command]:
    commands: list[Command] = []
    for number, line in enumerate(path.read_text(encoding="utf-8").splitlines(), 1):
        if line.startswith("  "):
            if not commands:
                raise SyntaxError(f"{path.name}:{number}: an indented line without a command")
            commands[-1].block.append(line[2:])
        elif line.strip() and not line.startswith("#"):
            name, _, text = line.strip().partition(" ")
            commands.append(Command(f"{path.name}:{number}", name, text, []))
    return commands
