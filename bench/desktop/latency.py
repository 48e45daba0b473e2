"""Times that a user waits: until the tap is installed after a start, and until a saved document takes effect."""

import argparse
import time
from pathlib import Path

from console import DOCUMENT, Console, mappings, in_milliseconds
from harness.private_desktop import PrivateDesktop
from harness.process import counts

STARTS = 30
SAVES = 100
# The delay before a reload, which exists because editors write in several steps.
DELAY = 0.2


def startup(desktop: PrivateDesktop, arguments: argparse.Namespace) -> None:
    """From the start of the process to the log line of the installed tap."""
    mappings(desktop.home).write_text(DOCUMENT)
    times = []
    for _ in range(STARTS):
        with Console(arguments.programs / "app/keyvora", desktop.home) as keyvora:
            times.append(keyvora.wait("tap installed, ") - keyvora.started)
    print(f"start to tap installed: {in_milliseconds(times)}")


def reload(desktop: PrivateDesktop, arguments: argparse.Namespace) -> None:
    """From a document renamed into place to the log line of the reload, without the fixed delay."""
    path = mappings(desktop.home)
    path.write_text(DOCUMENT)
    times = []
    with Console(arguments.programs / "app/keyvora", desktop.home) as keyvora:
        keyvora.wait("tap installed, ")
        process = keyvora.process.pid
        processor, main = [], []
        for _ in range(SAVES):
            before, main_before = counts(process).processor, main_thread(process)
            beside = path.with_suffix(".new")
            beside.write_text(DOCUMENT)
            start = time.monotonic()
            beside.rename(path)
            times.append(keyvora.wait("mappings reloaded, 3 sequences") - start - DELAY)
            time.sleep(0.05)  # the watch starts after the log line
            processor.append(counts(process).processor - before)
            main.append(main_thread(process) - main_before)
    print(f"change on disk to document loaded, beyond the fixed {DELAY} s: {in_milliseconds(times)}")
    print(f"processor time of a reload, user and system: {in_milliseconds(processor)}")
    print(f"of it the main thread's: {in_milliseconds(main)}")


def main_thread(process: int) -> float:
    """The processor time of the process's first thread, in seconds."""
    return int(Path(f"/proc/{process}/task/{process}/schedstat").read_text().split()[0]) / 1e9
