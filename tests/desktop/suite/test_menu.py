"""The status item and its menu, used with the mouse, keys and assistive technology."""

import plistlib
import shutil
import sys
from pathlib import Path
from typing import Callable

from harness import accessible, x11
from harness.keyvora import Document, Keyvora
from harness.status_menu import SEPARATOR, StatusMenu
from harness.waiting import equal, stays, until

from .desktop_test import DOCUMENT, DesktopTest

sys.path.append(str(Path(__file__).resolve().parents[2] / "app" / "updates"))
from feed_server import FeedServer  # noqa: E402

LONGER: Document = DOCUMENT | {"sequences": [
    *DOCUMENT["sequences"], {"keys": "QRS", "name": "Long", "action": {"kind": "keytips", "keys": "A"}}]}

# The version in the bundle's information dictionary, and in FeedServer's /none.xml.
VERSION, BUILD = "1.2", "42"

# The menu is built before the tap is installed, and is not rebuilt by that.
AT_LAUNCH = "Accessibility granted, installing the tap"
READY = "4 sequences, ready"


def rows(status: str, error: str = "", login: bool = False) -> list[str]:
    """The whole menu."""
    return [
        f"{status} (disabled)", *([f"mappings.json: {error} (disabled)"] if error else []), SEPARATOR,
        "Edit mappings.json", "Reload mappings", "Open Accessibility settings", "Show log", SEPARATOR,
        "Launch at Login" + (" (checked)" if login else ""), "Check for Updates…",
        f"keyvora {VERSION} (disabled)", SEPARATOR,
        "Quit keyvora",
    ]


class MenuTest(DesktopTest):
    """keyvora with its own bundle, and stand-ins for the programs that its commands open."""

    feed = ""

    def setUp(self) -> None:
        super().setUp()
        self.menu = StatusMenu(self.keyvora)

    def start(self, extra_path: Path | None = None) -> None:
        folder = self.desktop.folder / "menu"
        shutil.rmtree(folder, ignore_errors=True)
        shutil.rmtree(self.desktop.home / ".config" / "autostart", ignore_errors=True)
        self.opened = folder / "opened.txt"
        self.settings = folder / "settings.txt"
        self._record("open", self.opened)
        self._record("gnome-control-center", self.settings)
        self._handle_files_with(folder / "bin" / "open")
        self.keyvora = Keyvora(self.desktop, self._install(folder / "app"))
        super().start(folder / "bin")

    def _record(self, name: str, record: Path) -> None:
        """Creates a program that records its arguments."""
        program = record.parent / "bin" / name
        program.parent.mkdir(parents=True, exist_ok=True)
        program.write_text(f"#!/bin/sh\necho \"$@\" >>'{record}'\n")
        program.chmod(0o755)

    def _handle_files_with(self, program: Path) -> None:
        """Makes it the desktop's program for documents and logs."""
        applications = self.desktop.home / ".local" / "share" / "applications"
        applications.mkdir(parents=True, exist_ok=True)
        (applications / "recorder.desktop").write_text(
            f"[Desktop Entry]\nType=Application\nName=Recorder\nExec={program} %f\n")
        types = ("application/json", "text/x-log", "text/plain")
        (self.desktop.home / ".config").mkdir(exist_ok=True)
        (self.desktop.home / ".config" / "mimeapps.list").write_text(
            "[Default Applications]\n" + "".join(f"{kind}=recorder.desktop\n" for kind in types))

    def _install(self, folder: Path) -> Path:
        """Installs the program under test with an information dictionary that names only this test's server."""
        folder.mkdir(parents=True)
        information = {"CFBundleIdentifier": "org.keyvora.keyvora", "CFBundleShortVersionString": VERSION,
                       "CFBundleVersion": BUILD, "SUEnableAutomaticChecks": False, "SUFeedURL": self.feed}
        (folder / "Info.plist").write_bytes(plistlib.dumps(information))
        for part in ("keyvora-tap", "keyvora-fetch"):
            shutil.copy2(self.environment.keyvora.with_name(part), folder)
        return Path(shutil.copy2(self.environment.keyvora, folder))

    def expect_rows(self, expected: list[str]) -> None:
        """Opens the menu, reads it, and closes it without choosing."""
        self.assertEqual(expected, self.menu.open())
        self.typist.tap("Escape")
        self.menu.wait_until_closed()

    def choose(self, title: str, key: str = "") -> None:
        """Opens the menu and chooses: by a key while it is open if there is one, else with the mouse."""
        self.menu.open()
        if key:
            self.typist.tap(key)
        else:
            self.menu.click(title)

    def each_way(self, title: str, letter: str, outcome: Callable[[int], None]) -> None:
        """Chooses with the mouse, then by the letter with Control, then by itself; `outcome` gets 1, 2, 3."""
        for number, key in enumerate(("", f"Control+{letter}", letter), start=1):
            with self.subTest(title, key=key or "mouse"):
                self.choose(title, key)
                outcome(number)
                self.menu.wait_until_closed()
        self.assertEqual("", self.sheet.input(), "no key of the menu reaches the spreadsheet")


def lines(path: Path) -> list[str]:
    """What was recorded so far."""
    return path.read_text().splitlines() if path.exists() else []


class Title(MenuTest):
    document = LONGER

    def expect_title(self, title: str) -> None:
        equal(self.keyvora.status, title, "the title")

    def test_it_shows_each_state(self) -> None:
        self.expect_title("⌥")
        self.typist.tap("Option")
        self.expect_title("⌥ ")
        self.typist.tap("q")
        self.expect_title("⌥ Q")
        self.typist.tap("r")
        self.expect_title("⌥ QR")
        self.typist.tap("Escape")
        self.expect_title("⌥")
        self.typist.tap("Option", "h")
        self.expect_title("⌥ H")
        self.typist.tap("f")
        self.expect_title("⌥")

    def test_it_comes_back_with_its_text_in_a_new_tray(self) -> None:
        tray = self.desktop.children.named("trayer")
        tray.kill()
        tray.wait()
        try:
            equal(self.keyvora.status, "", "the title without a tray")
            self.typist.tap("Option", "q")
        finally:
            self.desktop.start_tray()
        self.expect_title("⌥ Q")
        self.typist.tap("Escape")
        self.expect_title("⌥")
        self.expect_rows(rows(AT_LAUNCH))


class Rows(MenuTest):
    def test_the_status_line_follows_a_reload(self) -> None:
        self.expect_rows(rows(AT_LAUNCH))
        self.keyvora.write(LONGER)
        self.keyvora.log.wait("mappings reloaded, 5 sequences")
        self.expect_rows(rows("5 sequences, ready"))

    def test_an_error_shows_from_the_next_rebuild_until_a_good_reload(self) -> None:
        refusal = "mappings.json not loaded, keeping the last good one: "
        self.keyvora.mappings.write_text('{"version": 1,')
        until(lambda: self.keyvora.log.has(refusal), "the refusal", seen=self.keyvora.log.messages)
        self.expect_rows(rows(AT_LAUNCH))
        error = next(line for line in self.keyvora.log.messages() if line.startswith(refusal))[len(refusal):]
        self.choose("Launch at Login")
        self.menu.wait_until_closed()
        self.expect_rows(rows(READY, error, login=True))
        self.keyvora.write(DOCUMENT)
        self.keyvora.log.wait("mappings reloaded, 4 sequences")
        self.expect_rows(rows(READY, login=True))

    def test_a_disabled_row_cannot_be_chosen(self) -> None:
        self.menu.open()
        for title in (AT_LAUNCH, f"keyvora {VERSION}"):
            self.menu.click(title)
            stays(self.menu.is_open, True, "the open menu", 0.2)
        self.typist.tap("Escape")
        self.menu.wait_until_closed()


class Commands(MenuTest):
    def test_files_open_in_the_desktops_own_programs(self) -> None:
        for title, letter, file in (("Edit mappings.json", "e", self.keyvora.mappings),
                                    ("Show log", "l", self.keyvora.log.path)):
            self.opened.unlink(missing_ok=True)

            def opened(number: int, file: Path = file) -> None:
                equal(lambda: lines(self.opened), [str(file)] * number, "what was opened")
            self.each_way(title, letter, opened)

    def test_reload(self) -> None:
        message = "mappings reloaded, 4 sequences"
        self.each_way("Reload mappings", "r", lambda number: self.keyvora.log.wait(message, number))
        self.assertEqual(3, self.keyvora.log.count(message))

    def test_accessibility_settings(self) -> None:
        self.choose("Open Accessibility settings")
        equal(lambda: lines(self.settings), ["universal-access"], "what the settings program was given")

    def test_launch_at_login_on_and_off(self) -> None:
        entry = self.desktop.home / ".config" / "autostart" / "org.keyvora.keyvora.desktop"
        self.choose("Launch at Login")
        until(entry.exists, "the autostart entry")
        self.menu.wait_until_closed()
        program = self.desktop.folder / "menu" / "app" / "keyvora"
        self.assertIn(f'Exec="{program}"', entry.read_text().splitlines())
        self.expect_rows(rows(READY, login=True))
        self.choose("Launch at Login")
        until(lambda: not entry.exists(), "the autostart entry to go")
        self.menu.wait_until_closed()
        self.expect_rows(rows(READY))

    def test_quit_with_the_mouse(self) -> None:
        self.expect_quit("")

    def test_quit_by_its_letter(self) -> None:
        self.expect_quit("Control+q")

    def expect_quit(self, key: str) -> None:
        self.choose("Quit keyvora", key)
        until(lambda: not self.keyvora.is_running(), "keyvora to end")
        self.assertEqual(0, self.keyvora.stop(), "keyvora's exit status")
        equal(self.keyvora.status, "", "the status item")
        self.typist.tap("k", "Option", "h")
        self.expect_input("kh")


class CheckForUpdates(MenuTest):
    def setUp(self) -> None:
        self.server = FeedServer()
        self.feed = f"{self.server.address}/none.xml"
        super().setUp()

    def test_it_says_what_it_found_or_what_went_wrong(self) -> None:
        with self.server:
            self.choose("Check for Updates…")
            self.expect_window("keyvora is up to date", f"keyvora {VERSION} is the newest version.")
            self.assertEqual(["/none.xml"], self.server.asked)
        self.choose("Check for Updates…")
        self.expect_window("keyvora could not look for updates", "The update feed could not be fetched: ")

    def test_chosen_again_it_brings_its_window_in_front_of_the_spreadsheet(self) -> None:
        # Both the shell and the updater bring it forward. That the shell does, tests/app/menu_commands_test.cpp checks.
        with self.server:
            self.choose("Check for Updates…")
            self.expect_in_front()
            self.await_rest()  # a window comes to the front by itself, too; what brings it there must not come later
            x11.activate(self.sheet.window)
            until(self.sheet.is_in_front, "the spreadsheet in front", seen=x11.active_class)
            self.choose("Check for Updates…")
            self.expect_window("keyvora is up to date", f"keyvora {VERSION} is the newest version.")
            self.assertEqual(["/none.xml"], self.server.asked, "it is the same check")

    def expect_in_front(self) -> None:
        until(lambda: x11.window_title(x11.active_window()) == "keyvora update", "the update window in front")

    def expect_window(self, heading: str, details: str) -> None:
        """Waits for the update window in front with these texts, and leaves it by its button."""
        def labels() -> list[str]:
            root = accessible.application(self.keyvora.process_id())
            return [accessible.name(element) for element in (accessible.descendants(root) if root else [])
                    if accessible.role(element) == "label"]

        until(lambda: heading in labels() and any(label.startswith(details) for label in labels()),
              f"{heading!r}, {details!r}", seen=labels)
        self.expect_in_front()
        self.typist.tap("Return")
        until(lambda: heading not in labels(), "the window to go")
        until(self.sheet.is_in_front, "the spreadsheet in front again", seen=x11.active_class)
