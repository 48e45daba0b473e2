"""Starts keyvora and reads its log lines without delay: from the console copy, through a pipe."""

import os
import subprocess
import time
from pathlib import Path

DOCUMENT = """{"version": 1, "timeoutMilliseconds": 800, "tabs": {}, "sequences": [
    {"keys": "HF", "name": "Type x", "action": {"kind": "keystroke", "key": "x"}},
    {"keys": "M", "name": "Type m", "action": {"kind": "keystroke", "key": "m"}},
    {"keys": "MM", "name": "Type n", "action": {"kind": "keystroke", "key": "n"}}]}
"""


def mappings(home: Path) -> Path:
    """The path of this home's document; creates its folder."""
    path = home / "Library" / "Application Support" / "keyvora" / "mappings.json"
    path.parent.mkdir(parents=True, exist_ok=True)
    return path


class Console:
    """A running keyvora; `with` ends it."""

    def __init__(self, program: Path, home: Path) -> None:
        self.started = time.monotonic()
        self.process = subprocess.Popen([str(program)], stderr=subprocess.PIPE, stdin=subprocess.DEVNULL,
                                        env=dict(os.environ, HOME=str(home)))

    def __enter__(self) -> "Console":
        return self

    def __exit__(self, *_: object) -> None:
        self.process.terminate()
        self.process.communicate()

    def wait(self, text: str) -> float:
        """Reads until a line contains `text`; returns the time at which it came."""
        stderr = self.process.stderr
        assert stderr
        for line in stderr:
            if text in line.decode(errors="replace"):
                return time.monotonic()
        raise RuntimeError(f"keyvora ended before it said {text!r}")


def percentiles(values: list[float]) -> tuple[float, float, float]:
    """Median, 95th and 99th percentile."""
    ordered = sorted(values)
    p50, p95, p99 = (ordered[len(ordered) * hundredths // 100] for hundredths in (50, 95, 99))
    return p50, p95, p99


def in_milliseconds(seconds: list[float]) -> str:
    """The percentiles of times in seconds, formatted in milliseconds."""
    p50, p95, p99 = (value * 1000 for value in percentiles(seconds))
    return f"p50 {p50:.2f} ms, p95 {p95:.2f} ms, p99 {p99:.2f} ms, {len(seconds)} times"
