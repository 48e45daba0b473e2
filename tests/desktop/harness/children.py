"""Child processes that never outlive this one, however it ends."""

import ctypes
import os
import signal
import subprocess
import sys
from pathlib import Path
from typing import Mapping, Sequence

_PR_SET_PDEATHSIG = 1
_PR_SET_CHILD_SUBREAPER = 36
_libc = ctypes.CDLL(None, use_errno=True)


class Children:
    """Starts programs, and stops them in reverse order. Their output goes to files in one folder."""

    def __init__(self, logs: Path) -> None:
        self._logs = logs
        self._running: list[tuple[str, subprocess.Popen[bytes]]] = []
        self._named: dict[str, subprocess.Popen[bytes]] = {}
        # Orphans of children become children of this process, and are stopped with the others.
        _libc.prctl(_PR_SET_CHILD_SUBREAPER, 1, 0, 0, 0)

    def start(self, command: Sequence[str], *, name: str | None = None,
              environment: Mapping[str, str] | None = None, keep_open: Sequence[int] = (),
              interactive: bool = False, own_group: bool = False) -> subprocess.Popen[bytes]:
        """Starts `command`; its standard error, and its output unless `interactive`, go to `name`.log.

        With `own_group` it leads a process group, as a command started by a shell does.
        """
        name = name or Path(command[0]).name
        log = self.log(name)
        with log.open("ab") as output:
            child = subprocess.Popen(
                list(command), env=environment, pass_fds=tuple(keep_open), preexec_fn=_die_with_parent,
                stdin=subprocess.PIPE if interactive else subprocess.DEVNULL,
                stdout=subprocess.PIPE if interactive else output, stderr=output, process_group=0 if own_group else None)
        self._running.append((command[0], child))
        self._named[name] = child
        return child

    def named(self, name: str) -> subprocess.Popen[bytes]:
        """The program that was last started under this name."""
        return self._named[name]

    def running(self) -> list[str]:
        """The programs that were started and have not ended."""
        return [program for program, child in self._running if child.poll() is None]

    def log(self, name: str) -> Path:
        """The file with the output of the program started under `name`."""
        return self._logs / f"{name}.log"

    def stop_all(self) -> None:
        """Ends every child, the last first, and kills those that do not end, including orphans of children."""
        for _, child in reversed(self._running):
            stop(child)
        self._running.clear()
        _kill_strays()


def stop(child: subprocess.Popen[bytes], seconds: float = 3.0) -> int:
    """Ends one child by SIGTERM, then by SIGKILL. Returns its exit status."""
    for stream in (child.stdin, child.stdout):
        if stream:
            stream.close()
    if child.poll() is None:
        child.terminate()
        try:
            child.wait(seconds)
        except subprocess.TimeoutExpired:
            child.kill()
    return child.wait()


def exit_on_signals() -> None:
    """Makes SIGTERM, SIGINT and SIGHUP raise an exception, so that everything is cleaned up."""
    def leave(number: int, _frame: object) -> None:
        sys.exit(128 + number)

    for number in (signal.SIGTERM, signal.SIGINT, signal.SIGHUP):
        signal.signal(number, leave)


def _die_with_parent() -> None:
    _libc.prctl(_PR_SET_PDEATHSIG, signal.SIGKILL, 0, 0, 0)


def _kill_strays() -> None:
    """Ends and reaps the remaining children of this process, which are orphans of its children."""
    while strays := _children_of_this_process():
        for stray in strays:
            try:
                os.kill(stray, signal.SIGKILL)
            except ProcessLookupError:
                continue
        for stray in strays:
            try:
                os.waitpid(stray, 0)
            except ChildProcessError:
                continue


def _children_of_this_process() -> list[int]:
    task = Path(f"/proc/self/task/{os.getpid()}/children")
    return [int(process) for process in task.read_text().split()]
