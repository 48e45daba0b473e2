"""The record of a program in the rig: one line per call, and the objects not released at the end."""

import dataclasses
import pathlib
import re


@dataclasses.dataclass
class Line:
    seconds: float
    on_main: bool
    text: str

    def __str__(self) -> str:
        return f"{'main' if self.on_main else 'other'} {self.text}"


def read(path: pathlib.Path) -> list[Line]:
    """The complete lines so far."""
    if not path.exists():
        return []
    text = path.read_text(encoding="utf-8", errors="replace")
    lines = []
    for line in text[: text.rfind("\n") + 1].splitlines():
        seconds, thread, rest = line.split(" ", 2)
        lines.append(Line(float(seconds), thread == "main", rest))
    return lines


def live(lines: list[Line]) -> dict[str, int]:
    """Kind of object -> number of objects at the end."""
    found = [re.fullmatch(r"end: (.*): \d+ made, (-?\d+) live", line.text) for line in lines]
    return {match.group(1): int(match.group(2)) for match in found if match}


def faults(lines: list[Line], stderr: str) -> list[str]:
    """Faults in any run: broken rules, and objects autoreleased without a pool."""
    broken = [line.text for line in lines if line.text.startswith("VIOLATION")]
    return broken + [line for line in stderr.splitlines() if "autorelease called without pool" in line]
