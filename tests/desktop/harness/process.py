"""What the system knows of a process: wake-ups, processor time, memory, open files, signals."""

import os
from dataclasses import dataclass
from pathlib import Path


@dataclass
class Counts:
    """Since the process began; memory in KiB, time in seconds."""

    switches: int
    processor: float
    # Resident memory; the part of it not mapped by other programs now; the part of that written by the process.
    resident: int
    private: int
    written: int
    files: int


def counts(process: int) -> Counts:
    """The counts of all threads together, as they are now."""
    folder = Path(f"/proc/{process}")
    switches, nanoseconds = 0, 0
    for task in (folder / "task").iterdir():
        try:
            status, times = (task / "status").read_text(), (task / "schedstat").read_text()
        except (FileNotFoundError, ProcessLookupError):
            continue  # a thread that has just ended
        switches += sum(int(line.split()[1]) for line in status.splitlines() if "ctxt_switches" in line)
        nanoseconds += int(times.split()[0])
    # The first line names a range of addresses.
    lines = (folder / "smaps_rollup").read_text().splitlines()[1:]
    memory = {name: int(size.split()[0]) for name, size in (line.split(":") for line in lines)}
    written = memory["Private_Dirty"]
    return Counts(switches, nanoseconds / 1e9, memory["Rss"], memory["Private_Clean"] + written, written,
                  len(os.listdir(folder / "fd")))


def processor_ticks(process: int) -> int:
    """The processor time that it has used, with its threads, in hundredths of a second."""
    fields = Path(f"/proc/{process}/stat").read_text().rsplit(")", 1)[1].split()
    return int(fields[11]) + int(fields[12])


def children(process: int) -> list[int]:
    """Its running child processes."""
    return [int(child) for task in Path(f"/proc/{process}/task").iterdir()
            for child in (task / "children").read_text().split()]


def catches(process: int, number: int) -> bool:
    """Whether it has a handler for this signal, which may end it until then."""
    lines = Path(f"/proc/{process}/status").read_text().splitlines()
    return any(line.startswith("SigCgt:") and bool(int(line.split()[1], 16) >> (number - 1) & 1) for line in lines)
