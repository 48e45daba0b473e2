"""What the system knows of a process: wake-ups, processor time, memory, open files, signals."""

import os
from contextlib import suppress
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
    nanoseconds = sum(int(times.split()[0]) for times in _of_threads(process, "schedstat"))
    # The first line names a range of addresses.
    lines = (folder / "smaps_rollup").read_text().splitlines()[1:]
    memory = {name: int(size.split()[0]) for name, size in (line.split(":") for line in lines)}
    written = memory["Private_Dirty"]
    return Counts(switches(process), nanoseconds / 1e9, memory["Rss"], memory["Private_Clean"] + written, written,
                  len(os.listdir(folder / "fd")))


def switches(process: int) -> int:
    """How often its threads have begun to wait, or were interrupted; 0 when it has ended."""
    return sum(int(line.split()[1]) for status in _of_threads(process, "status")
               for line in status.splitlines() if "ctxt_switches" in line)


def processor_ticks(process: int) -> int:
    """The processor time that it has used, with its threads, in hundredths of a second."""
    fields = Path(f"/proc/{process}/stat").read_text().rsplit(")", 1)[1].split()
    return int(fields[11]) + int(fields[12])


def children(process: int) -> list[int]:
    """Its running child processes."""
    return [int(child) for listed in _of_threads(process, "children") for child in listed.split()]


def catches(process: int, number: int) -> bool:
    """Whether it has a handler for this signal, which may end it until then."""
    lines = Path(f"/proc/{process}/status").read_text().splitlines()
    return any(line.startswith("SigCgt:") and bool(int(line.split()[1], 16) >> (number - 1) & 1) for line in lines)


def _of_threads(process: int, name: str) -> list[str]:
    """A file of each of its threads, without those that end meanwhile; none when the process has ended."""
    texts = []
    with suppress(FileNotFoundError, ProcessLookupError):
        for task in os.listdir(f"/proc/{process}/task"):
            with suppress(FileNotFoundError, ProcessLookupError):
                texts.append(Path(f"/proc/{process}/task/{task}/{name}").read_text())
    return texts
