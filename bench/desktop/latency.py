"""Times that a user waits: until the tap is installed after a start, and until a saved document takes effect."""

import argparse
import subprocess
import time
from collections.abc import Callable
from pathlib import Path

from awake import Awake
from console import DOCUMENT, Console, in_milliseconds, mappings, percentiles
from delivery import go_first
from harness.private_desktop import PrivateDesktop
from harness.process import counts, switches
from harness.waiting import calm

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
    """From a document renamed into place to the log line of the reload, without the fixed delay.

    First on a machine whose processors sleep between saves, then with processors kept awake: what a reload costs by
    itself, without what waking a sleeping processor adds to each of its steps.
    """
    path = mappings(desktop.home)
    path.write_text(DOCUMENT)
    first = go_first(desktop.children.named("Xvfb").pid)
    print(f"at {'real-time' if first else 'ordinary'} priority")
    decode = [str(arguments.programs / "bench/bench_decode_now_and_then"), str(path), str(SAVES)]
    with Console(arguments.programs / "app/keyvora", desktop.home) as keyvora:
        keyvora.wait("tap installed, ")
        process = keyvora.process.pid

        def save() -> float:
            """How long it took until the document was loaded; the watch starts after the log line."""
            beside = path.with_suffix(".new")
            beside.write_text(DOCUMENT)
            start = time.monotonic()
            beside.rename(path)
            taken = keyvora.wait("mappings reloaded, 3 sequences") - start - DELAY
            time.sleep(0.05)
            return taken

        calm(lambda: switches(process), "the start", 1)
        print("processors that may sleep:")
        print_reloads(process, save, decode)
        with Awake():
            print("processors kept awake:")
            print_reloads(process, save, decode)
        print(f"polls of a reload: {polls_during(process, desktop.folder / 'polls', save):g}")


def print_reloads(process: int, save: Callable[[], float], decode: list[str]) -> None:
    """Saves, and prints the times and the processor time of the reloads."""
    times, processor, main = [], [], []
    for _ in range(SAVES):
        before, main_before = counts(process).processor, main_thread(process)
        times.append(save())
        processor.append(counts(process).processor - before)
        main.append(main_thread(process) - main_before)
    decoding = [float(line) for line in
                subprocess.run(decode, check=True, stdout=subprocess.PIPE, text=True).stdout.split()]
    print(f"  change on disk to document loaded, beyond the fixed {DELAY} s: {in_milliseconds(times)}")
    print(f"  processor time of a reload, user and system: {in_milliseconds(processor)}")
    print(f"  of it the main thread's: {in_milliseconds(main)}")
    print(f"  decoding the same document, in a program that does nothing else: {in_milliseconds(decoding)}")
    beside = percentiles(main)[0] - percentiles(decoding)[0]
    print(f"  main thread's processor time beside decoding, at the median: {beside * 1000:.2f} ms")


def polls_during(process: int, file: Path, save: Callable[[], float]) -> float:
    """How often the main thread polls for one save, on average; counted by strace."""
    tracer = subprocess.Popen(["strace", "-e", "trace=poll", "-o", str(file), "-p", str(process)],
                              stderr=subprocess.PIPE)
    stderr = tracer.stderr
    assert stderr
    stderr.readline()  # "attached"
    saves = 10
    for _ in range(saves):
        save()
    tracer.terminate()
    tracer.wait()
    # The one in which it waits already when the tracer comes is told as another call.
    return sum("poll(" in line for line in file.read_text().splitlines()) / saves


def main_thread(process: int) -> float:
    """The processor time of the process's first thread, in seconds."""
    return int(Path(f"/proc/{process}/task/{process}/schedstat").read_text().split()[0]) / 1e9
