"""The program under test in its private home: its document, its log, its status item."""

import json
import os
import shutil
import signal
import subprocess
from pathlib import Path
from typing import Any

from . import notifier, x11
from .children import stop
from .private_desktop import PrivateDesktop
from .waiting import PATIENCE, until

Document = dict[str, Any]


class Keyvora:
    """keyvora on a private desktop; it runs between `start` and `stop`. A second instance has its own home.

    `desktop_file` is the only desktop file that it finds, instead of the installed ones.
    """

    def __init__(self, desktop: PrivateDesktop, program: Path, home: Path | None = None,
                 desktop_file: str | None = None) -> None:
        self._desktop = desktop
        self._program = program
        self._process: subprocess.Popen[bytes] | None = None
        self._home = home or desktop.home
        self._desktop_file = desktop_file
        library = self._home / "Library"
        self.mappings = library / "Application Support" / "keyvora" / "mappings.json"
        self.log = Log(library / "Logs" / "keyvora.log")
        self.console = desktop.children.log("keyvora")

    def write(self, document: Document) -> None:
        """Saves the document in place, as simple editors do."""
        self.mappings.parent.mkdir(parents=True, exist_ok=True)
        self.mappings.write_text(json.dumps(document, indent=2, ensure_ascii=False) + "\n")

    def launch(self, extra_path: Path | None = None) -> subprocess.Popen[bytes]:
        """Starts the program without waiting; `extra_path` comes first on its PATH."""
        # GLib's own allocator would hide leaks of its values from the address sanitizer.
        environment = dict(os.environ, HOME=str(self._home), G_SLICE="always-malloc")
        if self._desktop_file is not None:
            data = self._desktop.folder / "data"
            shutil.rmtree(data, ignore_errors=True)
            (data / "applications").mkdir(parents=True)
            (data / "applications" / self._desktop_file).touch()
            environment["XDG_DATA_DIRS"] = str(data)
        if extra_path:
            environment["PATH"] = f"{extra_path}:{environment['PATH']}"
        self._process = self._desktop.children.start([str(self._program)], name="keyvora",
                                                     environment=environment, own_group=True)
        return self._process

    def start(self, extra_path: Path | None = None) -> None:
        """Starts the program and waits until its tap is installed and its status item is shown."""
        before = len(self.log.messages())
        process = self.launch(extra_path)
        until(lambda: any("tap installed, " in line for line in self.log.messages()[before:])
              or process.poll() is not None, "the tap to be installed", seen=self.log.messages)
        if process.poll() is not None:
            raise AssertionError(f"keyvora ended with {process.returncode}:\n{self.console.read_text()}")
        until(lambda: self.status() == "⌥", "the status item in the tray or panel", seen=self.status)

    def stop(self) -> int:
        """Ends the program as a logout does. Returns its exit status."""
        if not self._process:
            return 0
        status = stop(self._process, 30)  # a busy machine needs time, and a sanitizer more
        self._process = None
        return status

    def kill(self) -> None:
        """Kills the program, as in a crash."""
        assert self._process
        self._process.send_signal(signal.SIGKILL)
        self._process.wait()
        self._process = None

    def is_running(self) -> bool:
        """Whether the process is alive."""
        return self._process is not None and self._process.poll() is None

    def process_id(self) -> int:
        """The process's number."""
        assert self._process
        return self._process.pid

    def status(self) -> str:
        """The text of its status item in a panel or the tray; empty without one."""
        return self._status_item()[1] or self._notifier_title()

    def _notifier_title(self) -> str:
        return notifier.title(self._process.pid) if self._process else ""

    def status_window(self) -> str:
        """The id of its status item's window; empty when there is none."""
        return self._status_item()[0]

    def _status_item(self) -> tuple[str, str]:
        for window in x11.windows_of_class("keyvora"):
            if (title := x11.window_title(window)).startswith("⌥"):
                return window, title
        return "", ""


class Log:
    """The program's log file, read at every call."""

    def __init__(self, path: Path) -> None:
        self.path = path

    def messages(self) -> list[str]:
        """Every record's message, without its time stamp."""
        if not self.path.exists():
            return []
        return [line[20:] for line in self.path.read_text(errors="replace").splitlines()]

    def has(self, message: str) -> bool:
        """Whether a message begins like this."""
        return any(line.startswith(message) for line in self.messages())

    def count(self, message: str) -> int:
        """How many messages are exactly this."""
        return self.messages().count(message)

    def wait(self, message: str, times: int = 1, seconds: float = PATIENCE) -> None:
        """Waits until this many messages are exactly this."""
        until(lambda: self.count(message) >= times, f"{times} × {message!r} in the log", seconds,
              seen=lambda: self.messages()[-8:])
