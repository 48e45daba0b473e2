"""Waiting for conditions, never for a fixed time."""

import time
from typing import Callable, TypeVar

Value = TypeVar("Value")

# The interval between two tests of a condition, in seconds.
INTERVAL = 0.01
# How long a condition may take, in seconds: for a machine with several busy processes a core.
PATIENCE = 60.0


class Timeout(AssertionError):
    """A condition did not become true in time. Its text names it and the last observed value."""


def until(condition: Callable[[], Value], what: str, seconds: float = PATIENCE,
          seen: Callable[[], object] | None = None) -> Value:
    """Returns the first true value of `condition`. Raises Timeout, with the last `seen()`, after `seconds`."""
    end = time.monotonic() + seconds
    while True:
        value = condition()
        if value:
            return value
        if time.monotonic() > end:
            last = f"; last seen: {seen()!r}" if seen else ""
            raise Timeout(f"waited {seconds:g} s for {what}{last}")
        time.sleep(INTERVAL)


def equal(read: Callable[[], Value], expected: Value, what: str, seconds: float = PATIENCE) -> None:
    """Waits until `read()` equals `expected`."""
    until(lambda: read() == expected, f"{what} to be {expected!r}", seconds, seen=read)


def calm(read: Callable[[], Value], what: str, unchanged: float, seconds: float = PATIENCE) -> Value:
    """Waits until `read()` has given one and the same value for `unchanged` seconds, and returns that."""
    last, since = read(), time.monotonic()

    def is_calm() -> bool:
        nonlocal last, since
        if (now := read()) != last:
            last, since = now, time.monotonic()
        return time.monotonic() - since > unchanged
    until(is_calm, f"{what} to rest", seconds, seen=lambda: last)
    return last


def stays(read: Callable[[], Value], expected: Value, what: str, seconds: float) -> None:
    """Checks that `read()` equals `expected` now and for `seconds` from now: for what must not happen."""
    end = time.monotonic() + seconds
    while time.monotonic() < end:
        value = read()
        if value != expected:
            raise AssertionError(f"{what} became {value!r}, expected it to stay {expected!r}")
        time.sleep(INTERVAL)
