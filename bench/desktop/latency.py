"""Times that a user waits: until the tap is installed after a start, and until a saved document takes effect."""

import argparse
import subprocess
import time
from contextlib import AbstractContextManager, nullcontext
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
    itself, without what waking a sleeping processor adds to each of its steps. Each time beside a program that asks the
    system for what a reload needs and does nothing else.
    """
    path = mappings(desktop.home)
    path.write_text(DOCUMENT)
    first = go_first(desktop.children.named("Xvfb").pid)
    print(f"at {'real-time' if first else 'ordinary'} priority")
    conditions: dict[str, AbstractContextManager[object]] = {"that may sleep": nullcontext(), "kept awake": Awake()}
    for name, condition in conditions.items():
        print(f"processors {name}:")
        with condition:
            with Reloading(arguments.programs / "bench/bench_bare_reload", desktop.home) as bare:
                bare.await_start("ready")
                _, _, floor = reloads(bare)
                print(f"  a bare program, its main thread's processor time: {in_milliseconds(floor)}")
            with Reloading(arguments.programs / "app/keyvora", desktop.home) as keyvora:
                keyvora.await_start("tap installed, ")
                print_reloads(keyvora, arguments.programs)
    with Reloading(arguments.programs / "app/keyvora", desktop.home) as keyvora:
        keyvora.await_start("tap installed, ")
        print(f"polls of a reload: {polls_during(keyvora, desktop.folder / 'polls'):g}")


class Reloading(Console):
    """A program that reloads the document of its home."""

    def __init__(self, program: Path, home: Path) -> None:
        super().__init__(program, home)
        self.document = mappings(home)

    def __enter__(self) -> "Reloading":
        return self

    def await_start(self, line: str) -> None:
        """Waits for the line that ends the start, and until the program rests."""
        self.wait(line)
        calm(lambda: switches(self.process.pid), "the start", 1)

    def save(self) -> float:
        """How long it took until the document was loaded; the watch starts after the log line."""
        beside = self.document.with_suffix(".new")
        beside.write_text(DOCUMENT)
        start = time.monotonic()
        beside.rename(self.document)
        taken = self.wait("mappings reloaded, 3 sequences") - start - DELAY
        time.sleep(0.05)
        return taken


def reloads(program: Reloading) -> tuple[list[float], list[float], list[float]]:
    """Saves. How long each took, its processor time, and the main thread's part of that, in seconds."""
    process = program.process.pid
    times, processor, main = [], [], []
    for _ in range(SAVES):
        before, main_before = counts(process).processor, main_thread(process)
        times.append(program.save())
        processor.append(counts(process).processor - before)
        main.append(main_thread(process) - main_before)
    return times, processor, main


def print_reloads(keyvora: Reloading, programs: Path) -> None:
    """Saves, and prints the times and the processor time of the reloads."""
    times, processor, main = reloads(keyvora)
    decode = [str(programs / "bench/bench_decode_now_and_then"), str(keyvora.document), str(SAVES)]
    decoding = [float(line) for line in
                subprocess.run(decode, check=True, stdout=subprocess.PIPE, text=True).stdout.split()]
    print(f"  change on disk to document loaded, beyond the fixed {DELAY} s: {in_milliseconds(times)}")
    print(f"  processor time of a reload, user and system: {in_milliseconds(processor)}")
    print(f"  of it the main thread's: {in_milliseconds(main)}")
    print(f"  decoding the same document, in a program that does nothing else: {in_milliseconds(decoding)}")
    beside = percentiles(main)[0] - percentiles(decoding)[0]
    print(f"  main thread's processor time beside decoding, at the median: {beside * 1000:.2f} ms")


def polls_during(keyvora: Reloading, file: Path) -> float:
    """How often the main thread polls for one save, on average; counted by strace."""
    tracer = subprocess.Popen(["strace", "-e", "trace=poll", "-o", str(file), "-p", str(keyvora.process.pid)],
                              stderr=subprocess.PIPE)
    stderr = tracer.stderr
    assert stderr
    stderr.readline()  # "attached"
    saves = 10
    for _ in range(saves):
        keyvora.save()
    tracer.terminate()
    tracer.wait()
    # The one in which it waits already when the tracer comes is told as another call.
    return sum("poll(" in line for line in file.read_text().splitlines()) / saves


def main_thread(process: int) -> float:
    """The processor time of the process's first thread, in seconds."""
    return int(Path(f"/proc/{process}/task/{process}/schedstat").read_text().split()[0]) / 1e9
