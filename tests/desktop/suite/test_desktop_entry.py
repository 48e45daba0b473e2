"""keyvora started by a desktop's own tools: from its desktop file, and at login by the entry that it wrote itself."""

import os
import shlex
import shutil
import signal
import subprocess
import unittest
from pathlib import Path

from harness.waiting import until

from .desktop_test import DesktopTest
from .test_menu import MenuTest

ROOT = Path(__file__).resolve().parents[3]
NAME = "org.keyvora.keyvora.desktop"
GENERATOR = Path("/usr/lib/systemd/user-generators/systemd-xdg-autostart-generator")


def processes_of(program: Path) -> list[int]:
    """The processes that run this file."""
    found = []
    for link in Path("/proc").glob("[0-9]*/exe"):
        try:
            if link.readlink() == program.resolve():
                found.append(int(link.parent.name))
        except (FileNotFoundError, PermissionError, ProcessLookupError):
            continue
    return found


class StartedByTheDesktop(DesktopTest):
    """Common to all starts: the process is not a child of this one, and must be ended at the end."""

    starts_keyvora = False
    program: Path

    def start_with(self, *command: str, **environment: str) -> None:
        """Runs a desktop's tool, and waits until keyvora runs as a result and acts."""
        name = command[0]
        self.desktop.children.start(command, name=name, environment={**os.environ, **environment})
        self.addCleanup(self.end_what_was_started)
        until(lambda: self.keyvora.log.has("tap installed, "), f"keyvora, started by {name}",
              seen=self.desktop.children.log(name).read_text)
        # While the toolkit opens for it, keys wait, but not longer than a second.
        until(lambda: self.keyvora.status() == "⌥", "the status item", seen=self.keyvora.status)
        self.assertEqual(1, len(processes_of(self.program)))
        self.fire()
        self.expect_input("x")

    def end_what_was_started(self) -> None:
        for process in processes_of(self.program):
            os.kill(process, signal.SIGTERM)
        until(lambda: not processes_of(self.program), "keyvora to end")


class FromTheApplications(StartedByTheDesktop):
    """The installed desktop file; that of the sources, where the program under test is not installed."""

    def setUp(self) -> None:
        super().setUp()
        self.program = self.environment.keyvora
        self.entry = self.program.parents[1] / "share" / "applications" / NAME
        self.search: dict[str, str] = {}
        if not self.entry.exists():
            data = self.desktop.folder / "installed"
            (data / "applications").mkdir(parents=True, exist_ok=True)
            self.entry = Path(shutil.copy(ROOT / "packaging" / "linux" / NAME, data / "applications"))
            self.search = {"XDG_DATA_DIRS": f"{data}:/usr/share", "PATH": f"{self.program.parent}:{os.environ['PATH']}"}

    def test_gio_launches_it(self) -> None:
        self.start_with("gio", "launch", str(self.entry), **self.search)

    @unittest.skipUnless(shutil.which("gtk-launch"), "libgtk-3-bin is not installed")
    def test_gtk_launches_it_by_its_name(self) -> None:
        self.start_with("gtk-launch", NAME, **self.search)

    @unittest.skipUnless(shutil.which("dex"), "dex is not installed")
    def test_dex_launches_it(self) -> None:
        self.start_with("dex", str(self.entry), **self.search)


class AtLogin(StartedByTheDesktop, MenuTest):
    """The entry that "Launch at Login" writes."""

    starts_keyvora = True

    def setUp(self) -> None:
        super().setUp()
        self.program = self.desktop.folder / "menu" / "app" / "keyvora"
        self.entry = self.desktop.home / ".config" / "autostart" / NAME
        self.choose("Launch at Login")
        until(self.entry.exists, "the autostart entry")
        self.menu.wait_until_closed()
        self.assertEqual(0, self.keyvora.stop(), "keyvora's exit status")
        self.keyvora.log.path.unlink()

    @unittest.skipUnless(shutil.which("desktop-file-validate"), "desktop-file-utils is not installed")
    def test_the_entry_is_valid(self) -> None:
        done = subprocess.run(["desktop-file-validate", str(self.entry)], capture_output=True, text=True, check=False)
        self.assertEqual((0, "", ""), (done.returncode, done.stdout, done.stderr))

    @unittest.skipUnless(shutil.which("dex"), "dex is not installed")
    def test_dex_starts_it_as_a_plain_window_manager_has_it_do(self) -> None:
        self.start_with("dex", "--autostart", "--environment", "openbox", "--search-paths", str(self.entry.parent))

    @unittest.skipUnless(GENERATOR.exists(), "systemd is not installed")
    def test_systemd_makes_a_unit_of_it(self) -> None:
        units = self.desktop.folder / "units"
        folders = [units / name for name in ("normal", "early", "late")]
        for folder in folders:
            folder.mkdir(parents=True)
        subprocess.run([str(GENERATOR), *map(str, folders)], check=True, env=os.environ | {"XDG_CONFIG_DIRS": str(units)})
        service = "app-org.keyvora.keyvora@autostart.service"
        wanted = [path.name for path in units.glob("late/xdg-desktop-autostart.target.wants/*")]
        self.assertEqual([service], wanted)
        (command,) = (line.removeprefix("ExecStart=:") for line in (units / "late" / service).read_text().splitlines()
                      if line.startswith("ExecStart="))
        self.assertEqual([str(self.program)], shlex.split(command))
