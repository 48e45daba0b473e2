"""What the system counts of a process: wake-ups, processor time, memory, open files."""

import os
from dataclasses import dataclass
from pathlib import Path


@dataclass
class Counts:
    """Since the process began; memory in KiB, time in seconds."""

    switches: int
    processor: float
    resident: int
    files: int


def counts(process: int) -> Counts:
    """The counts of all threads together, as they are now."""
    folder = Path(f"/proc/{process}")
    switches, nanoseconds = 0, 0
    for task in (folder / "task").iterdir():
        switches += sum(int(line.split()[1]) for line in (task / "status").read_text().splitlines()
                        if "ctxt_switches" in line)
        nanoseconds += int((task / "schedstat").read_text().split()[0])
    status = dict(line.split(":", 1) for line in (folder / "status").read_text().splitlines())
    return Counts(switches, nanoseconds / 1e9, int(status["VmRSS"].split()[0]),
                  len(os.listdir(folder / "fd")))
