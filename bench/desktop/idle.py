"""What it costs to do nothing for a minute, beside sxhkd in the same minute."""

import argparse
import os
import subprocess
import time

from console import DOCUMENT, Console, mappings
from delivery import SXHKD
from harness.private_desktop import PrivateDesktop
from harness.process import counts

SECONDS = 60
# What is left of starting shall not be counted.
SETTLE = 5


def measure(desktop: PrivateDesktop, arguments: argparse.Namespace) -> None:
    """Context switches are wake-ups: a thread that waits is switched to only when it is woken."""
    mappings(desktop.home).write_text(DOCUMENT)
    configuration = desktop.folder / "sxhkdrc"
    configuration.write_text(SXHKD)
    with Console(arguments.programs / "app/keyvora", desktop.home) as keyvora:
        keyvora.wait("tap installed, ")
        sxhkd = subprocess.Popen(["sxhkd", "-c", str(configuration)], env=dict(os.environ, SHELL="/bin/sh"))
        try:
            time.sleep(SETTLE)
            processes = {"keyvora": keyvora.process.pid, "sxhkd": sxhkd.pid}
            before = {name: counts(process) for name, process in processes.items()}
            time.sleep(SECONDS)
            after = {name: counts(process) for name, process in processes.items()}
        finally:
            sxhkd.terminate()
            sxhkd.wait()
    print(f"idle for {SECONDS} s")
    print(f"{'':10}{'wake-ups':>10}{'processor ms':>14}{'resident KiB':>14}{'files':>8}")
    for name in processes:
        then, now = before[name], after[name]
        milliseconds = (now.processor - then.processor) * 1000
        print(f"{name:10}{now.switches - then.switches:>10}{milliseconds:>14.2f}{now.resident:>14}{now.files:>8}")
