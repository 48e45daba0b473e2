"""keyvora.app running in the rig: its keys, its menu, its files, its log."""

import os
import pathlib
import re
import socket
import subprocess
import time
from collections.abc import Callable
from typing import TypeVar

from display import environment
import record

# The time limit for a condition in seconds, on a busy machine.
PATIENCE = float(os.environ.get("KEYVORA_RIG_PATIENCE", "60"))


T = TypeVar("T")


class Failed(Exception):
    """Something did not happen as the script expects."""


def wait_for(what: str, condition: Callable[[], T]) -> T:
    """Waits until the condition is true and returns its value."""
    end = time.monotonic() + PATIENCE
    while True:
        value = condition()
        if value:
            return value
        if time.monotonic() > end:
            raise Failed(f"did not happen: {what}")
        time.sleep(0.01)


class Program:
    """One launch; `number` distinguishes its files from those of other launches in the same home."""

    def __init__(self, home: pathlib.Path, number: int):
        self.home = home
        self.record_path = home / f"record-{number}"
        self.log_path = home / "Library" / "Logs" / "keyvora.log"
        self.stderr_path = home / f"stderr-{number}"
        self.stdout_path = home / f"stdout-{number}"
        self.mappings = home / "Library" / "Application Support" / "keyvora" / "mappings.json"
        # Log records of an earlier launch.
        self.log_start = len(self.log())

    def launch(self, command: list[str], screen: str, setup: list[list[str]]) -> None:
        """Starts it, with commands for the driver to run before `main`."""
        ours, theirs = socket.socketpair()
        self.process = subprocess.Popen(
            command,
            env=environment(
                str(self.home),
                screen,
                KEYVORA_RIG_RECORD=str(self.record_path),
                KEYVORA_RIG_SOCKET=str(theirs.fileno()),
            ),
            pass_fds=[theirs.fileno()],
            stdin=subprocess.DEVNULL,
            stdout=self.stdout_path.open("wb"),
            stderr=self.stderr_path.open("wb"),
        )
        theirs.close()
        self.socket = ours
        self.socket.settimeout(PATIENCE)
        self.answers = ours.makefile("r", encoding="utf-8")
        for words in setup:
            self.command(*words)
        self.command("go")

    def command(self, *words: str) -> str:
        """Sends a command to the program's driver; returns its answer, or "" when the program ended meanwhile."""
        try:
            self.socket.sendall(("\t".join(words) + "\n").encode())
            return self.answers.readline().rstrip("\n")
        except (BrokenPipeError, ConnectionResetError):
            return ""
        except TimeoutError as silence:
            raise Failed(f"no answer to {' '.join(words)}") from silence

    def lines(self) -> list[record.Line]:
        return record.read(self.record_path)

    def log(self) -> list[str]:
        """The log's records without their times."""
        if not self.log_path.exists():
            return []
        text = self.log_path.read_text(encoding="utf-8")
        return [re.sub(r"^\d{4}-\d\d-\d\d \d\d:\d\d:\d\d ", "", line) for line in text[: text.rfind("\n") + 1].splitlines()]

    def wait(self) -> int:
        """The exit status."""
        try:
            return self.process.wait(timeout=PATIENCE)
        except subprocess.TimeoutExpired as running:
            raise Failed("still running") from running

    def stderr(self) -> str:
        return self.stderr_path.read_text(encoding="utf-8", errors="replace")

    def stdout(self) -> str:
        return self.stdout_path.read_text(encoding="utf-8", errors="replace")

    def end(self) -> None:
        if self.process.poll() is None:
            self.process.kill()
            self.process.wait()
        self.socket.close()
