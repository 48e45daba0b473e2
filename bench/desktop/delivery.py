"""From a key's injection to its delivery in a window: without other programs, with keyvora, with other key programs."""

import argparse
import os
import subprocess
import time
from collections.abc import Callable
from contextlib import ExitStack

from awake import Awake
from console import DOCUMENT, Console, mappings, percentiles
from harness.private_desktop import KEYBOARD, PrivateDesktop
from harness.process import children, switches
from harness.waiting import calm

SXHKD = "super + F9\n\ttrue\nsuper + F10\n\ttrue\nctrl + alt + F11\n\ttrue\n"
XBINDKEYS = '"true"\n  Mod4 + F9\n"true"\n  Mod4 + F10\n"true"\n  Control + Mod1 + F11\n'

# Each configuration runs once in each round, so that changes of the machine's load affect all of them.
ROUNDS = 5

# Starts something and returns its processes.
Start = Callable[[ExitStack], list[int]]

BARE = "grab and replay, Shift"
ARMED = "keyvora armed, Shift"


def measure(desktop: PrivateDesktop, arguments: argparse.Namespace) -> None:
    """One row for each configuration; `f` is an ordinary key, Shift one that passes while a sequence is open."""
    mappings(desktop.home).write_text(DOCUMENT)

    def keyvora(stack: ExitStack) -> list[int]:
        program = stack.enter_context(Console(arguments.programs / "app/keyvora", desktop.home))
        program.wait("tap installed, ")
        processes = [program.process.pid, *children(program.process.pid)]
        # The status item is shown after the tap is there: what that takes is the start's and not the keys'.
        calm(lambda: woken_so_far(processes), "the start", 1, 60)
        return processes

    def running(command: list[str]) -> Start:
        def start(stack: ExitStack) -> list[int]:
            process = subprocess.Popen(command, env=dict(os.environ, SHELL="/bin/sh"),
                                       stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
            stack.callback(process.wait)
            stack.callback(process.terminate)
            time.sleep(1)
            if process.poll() is not None:
                raise RuntimeError(f"{command[0]} ended with {process.returncode}")
            return [process.pid]
        return start

    def other(command: list[str], file: str, text: str) -> Start:
        path = desktop.folder / file
        path.write_text(text)
        return running([*command, str(path)])

    def nothing(_: ExitStack) -> list[int]:
        return []

    bare = running([str(arguments.programs / "bench/bench_bare")])

    ways: list[tuple[str, Start, str, list[str]]] = [
        ("nothing running", nothing, "f", []),
        ("keyvora, target in front", keyvora, "f", []),
        ("sxhkd, 3 keys bound", other(["sxhkd", "-c"], "sxhkdrc", SXHKD), "f", []),
        ("xbindkeys, 3 keys bound", other(["xbindkeys", "-n", "-f"], "xbindkeysrc", XBINDKEYS), "f", []),
        ("nothing running, Shift", nothing, "Shift", []),
        (BARE, bare, "Shift", []),
        (ARMED, keyvora, "Shift", ["armed"])]
    # The processors that the server and the window run on change a measurement by 30 microseconds, so both are fixed.
    together = {min(os.sched_getaffinity(0))}
    server = desktop.children.named("Xvfb").pid
    os.sched_setaffinity(server, together)
    print(f"at {'real-time' if go_first(server) else 'ordinary'} priority")
    taken: dict[str, list[float]] = {name: [] for name, *_ in ways}
    woken: dict[str, int] = dict.fromkeys(taken, 0)
    with Awake():
        for _ in range(ROUNDS):
            for name, start, key, more in ways:
                with ExitStack() as stack:
                    processes = start(stack)
                    command = [str(arguments.programs / "bench/bench_delivery"), KEYBOARD, key,
                               str(arguments.times // ROUNDS), *more]
                    before = woken_so_far(processes)
                    answer = subprocess.run(command, check=True, stdout=subprocess.PIPE, text=True,
                                            preexec_fn=lambda: os.sched_setaffinity(0, together)).stdout
                    woken[name] += woken_so_far(processes) - before
                taken[name] += map(float, answer.split())
    print(f"{arguments.times} keys each in {ROUNDS} rounds, microseconds from injection to delivery")
    print(f"{'':28}{'p50':>8}{'p95':>8}{'p99':>8}{'times woken':>14}")
    for name, times in taken.items():
        print(f"{name:28}" + "".join(f"{value:8.1f}" for value in percentiles(times)) + f"{woken[name]:>14}")
    armed, least = (percentiles(taken[name])[0] for name in (ARMED, BARE))
    print(f"a key while a sequence is open: {armed / least:.2f} times what grabbing and replaying costs, at the median")


def go_first(server: int) -> bool:
    """Puts the server, this process and what it starts from now on ahead of all others; whether the system allows it.
    At ordinary priority the slowest keys wait for a processor that somebody else has: up to a whole turn, milliseconds.
    """
    try:
        for process in (server, 0):
            os.sched_setscheduler(process, os.SCHED_FIFO, os.sched_param(1))
    except PermissionError:
        return False
    return True


def woken_so_far(processes: list[int]) -> int:
    """How often all of them were."""
    return sum(map(switches, processes))
