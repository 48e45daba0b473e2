"""Keeps the processors from sleeping, for figures of microseconds."""

import os
import subprocess
from types import TracebackType


class Awake:
    """A loop on each processor, at the lowest priority, so that any other process interrupts it at once.

    In a virtual machine, waking a sleeping processor takes tens of microseconds, far more than the measured times. Which
    process waits for it depends on what else runs: a program that wakes up for each key would make the key's window seem
    faster.
    """

    def __enter__(self) -> "Awake":
        self.loops = [subprocess.Popen(["/bin/sh", "-c", "while :; do :; done"],
                                       preexec_fn=lambda: os.sched_setscheduler(0, os.SCHED_IDLE, os.sched_param(0)))
                      for _ in range(os.cpu_count() or 1)]
        return self

    def __exit__(self, kind: type[BaseException] | None, value: BaseException | None,
                 trace: TracebackType | None) -> None:
        for loop in self.loops:
            loop.kill()
            loop.wait()
