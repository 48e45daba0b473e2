"""From a key's injection to its delivery in a window: by itself, with keyvora, with other key programs."""

import argparse
import os
import subprocess
import time
from collections.abc import Callable
from contextlib import ExitStack

from console import DOCUMENT, Console, mappings
from harness.private_desktop import KEYBOARD, PrivateDesktop

SXHKD = "super + F9\n\ttrue\nsuper + F10\n\ttrue\nctrl + alt + F11\n\ttrue\n"
XBINDKEYS = '"true"\n  Mod4 + F9\n"true"\n  Mod4 + F10\n"true"\n  Control + Mod1 + F11\n'


def measure(desktop: PrivateDesktop, arguments: argparse.Namespace) -> None:
    """One row for each way; `f` is an ordinary key, Shift one that passes while a sequence is open."""
    mappings(desktop.home).write_text(DOCUMENT)

    def keyvora(stack: ExitStack) -> None:
        running = stack.enter_context(Console(arguments.programs / "app/keyvora", desktop.home))
        running.wait("tap installed, ")

    def other(command: list[str], file: str, text: str) -> Callable[[ExitStack], None]:
        def start(stack: ExitStack) -> None:
            path = desktop.folder / file
            path.write_text(text)
            process = subprocess.Popen([*command, str(path)], env=dict(os.environ, SHELL="/bin/sh"),
                                       stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
            stack.callback(process.wait)
            stack.callback(process.terminate)
            time.sleep(1)
            if process.poll() is not None:
                raise RuntimeError(f"{command[0]} ended with {process.returncode}")
        return start

    def nothing(_: ExitStack) -> None:
        pass

    ways = [("nothing running", nothing, "f", []),
            ("keyvora, target in front", keyvora, "f", []),
            ("sxhkd, 3 keys bound", other(["sxhkd", "-c"], "sxhkdrc", SXHKD), "f", []),
            ("xbindkeys, 3 keys bound", other(["xbindkeys", "-n", "-f"], "xbindkeysrc", XBINDKEYS), "f", []),
            ("nothing running, again", nothing, "f", []),
            ("nothing running, Shift", nothing, "Shift", []),
            ("keyvora armed, Shift", keyvora, "Shift", ["armed"])]
    print(f"{arguments.times} keys each, microseconds from injection to delivery")
    print(f"{'':28}{'p50':>8}{'p95':>8}{'p99':>8}", flush=True)
    for name, start, key, more in ways:
        with ExitStack() as stack:
            start(stack)
            command = [str(arguments.programs / "bench/bench_delivery"), KEYBOARD, key, str(arguments.times),
                       *more]
            answer = subprocess.run(command, check=True, stdout=subprocess.PIPE, text=True).stdout.split()
        print(f"{name:28}" + "".join(f"{value:>8}" for value in answer), flush=True)
