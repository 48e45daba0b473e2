"""The cost of an idle keyvora, compared with sxhkd at the same time."""

import argparse
import os
import subprocess
import time

from console import DOCUMENT, Console, mappings
from delivery import SXHKD
from harness.private_desktop import PrivateDesktop
from harness.process import Counts, children, counts

# Without --minutes.
MINUTES = 1.0
# The start is over when no process has been woken for this long, which is longer than the 16 s after which GTK's
# accessibility bridge releases what it registered. After the limit, the measurement begins anyway.
QUIET = 20.0
LIMIT = 120.0


def measure(desktop: PrivateDesktop, arguments: argparse.Namespace) -> None:
    """Counts context switches as wake-ups: a waiting thread is switched to only when it is woken."""
    mappings(desktop.home).write_text(DOCUMENT)
    configuration = desktop.folder / "sxhkdrc"
    configuration.write_text(SXHKD)
    with Console(arguments.programs / "app/keyvora", desktop.home) as keyvora:
        keyvora.wait("tap installed, ")
        ready = time.monotonic()
        sxhkd = subprocess.Popen(["sxhkd", "-c", str(configuration)], env=dict(os.environ, SHELL="/bin/sh"))
        try:
            (tap,) = children(keyvora.process.pid)
            processes = {"keyvora": keyvora.process.pid, "keyvora-tap": tap, "sxhkd": sxhkd.pid}
            last = wait_for_quiet(processes)
            before = all_counts(processes)
            time.sleep((arguments.minutes or MINUTES) * 60)
            after = all_counts(processes)
        finally:
            sxhkd.terminate()
            sxhkd.wait()
    print(f"last wake-up of the start {last - ready:.0f} s after the tap was installed; "
          f"from {QUIET:.0f} s later, for {arguments.minutes or MINUTES:g} min:")
    print(f"{'':12}{'wake-ups':>10}{'processor ms':>14}{'resident KiB':>14}{'private':>10}{'written':>10}"
          f"{'files':>8}")
    for name, now in after.items():
        then = before[name]
        milliseconds = (now.processor - then.processor) * 1000
        print(f"{name:12}{now.switches - then.switches:>10}{milliseconds:>14.2f}{now.resident:>14}"
              f"{now.private:>10}{now.written:>10}{now.files:>8}")


def all_counts(processes: dict[str, int]) -> dict[str, Counts]:
    """The counts of each."""
    return {name: counts(process) for name, process in processes.items()}


def wait_for_quiet(processes: dict[str, int]) -> float:
    """Waits until no process has been woken for a while; returns the time of the last wake-up."""
    begin = last = time.monotonic()
    before = all_counts(processes)
    while (now := time.monotonic()) - last < QUIET and now - begin < LIMIT:
        time.sleep(0.5)
        after = all_counts(processes)
        if any(after[name].switches != before[name].switches for name in processes):
            last = time.monotonic()
        before = after
    return last
