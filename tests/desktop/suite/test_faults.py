"""Programs that keyvora depends on are killed and started again, alone and in pairs."""

import json
import signal
import subprocess

from harness import x11
from harness.keyvora import Document, Keyvora
from harness.waiting import PATIENCE, equal, until

from .desktop_test import DOCUMENT, DesktopTest

MENU = "E  Cells"
WITH_MENU: Document = DOCUMENT | {"sequences": [
    *DOCUMENT["sequences"],
    {"keys": "E", "name": "Cells", "action": {"kind": "menu", "path": ["Format", "Cells", "Format..."]}}]}


class Faults(DesktopTest):
    document = WITH_MENU

    def kill(self, name: str) -> None:
        """Kills a part of the desktop."""
        child = self.desktop.children.named(name)
        child.kill()
        child.wait()

    def restart_tray(self) -> None:
        self.desktop.start_tray()
        equal(self.keyvora.status, "⌥", "the status in the new tray")

    def restart_window_manager(self) -> None:
        self.desktop.start_window_manager()
        self.bring_to_front()

    def bring_to_front(self) -> None:
        """Gives the spreadsheet the keyboard focus, as a click on it does."""
        def ask() -> bool:
            subprocess.run(["xdotool", "windowactivate", self.sheet.window], check=False, capture_output=True)
            focus = subprocess.run(["xdotool", "getwindowfocus", "getwindowpid"], check=False, capture_output=True)
            return focus.stdout.strip() == str(self.sheet.process).encode() and self.sheet.is_in_front()
        # A new window manager sets no active window until it has taken over.
        until(lambda: x11.active_class() == "" or ask(), "the window manager to take over")
        until(ask, "the spreadsheet in front", seen=x11.active_class)

    def restart_target(self) -> None:
        environment = type(self).environment
        environment.sheet = self.sheet = type(self.sheet)(self.desktop)

    def sequence_fires(self) -> None:
        """A sequence fires as its log line says; nothing is read from the spreadsheet."""
        line = "HF  Type x (keystroke)"
        before = self.keyvora.log.count(line)
        self.fire()
        self.keyvora.log.wait(line, before + 1)

    def test_the_tray(self) -> None:
        self.kill("trayer")
        self.sequence_fires()
        self.restart_tray()
        self.dismiss()
        self.expect_everything_works()

    def test_the_window_manager(self) -> None:
        self.kill("openbox")
        self.assertTrue(self.keyvora.is_running())
        self.restart_window_manager()
        self.expect_everything_works()

    def test_the_tray_and_the_window_manager(self) -> None:
        self.kill("trayer")
        self.kill("openbox")
        self.restart_window_manager()
        self.restart_tray()
        self.bring_to_front()
        self.expect_everything_works()

    def test_the_target(self) -> None:
        self.kill_target()
        self.restart_target()
        self.expect_everything_works()

    def test_the_target_while_armed(self) -> None:
        self.typist.tap("Option", "h")
        equal(self.keyvora.status, "⌥ H", "the status")
        self.kill_target()
        self.restart_target()
        self.dismiss()
        self.expect_everything_works()

    def test_the_target_and_the_tray(self) -> None:
        self.kill("trayer")
        self.kill_target()
        self.restart_target()
        self.restart_tray()
        self.expect_everything_works()

    def test_the_target_and_the_window_manager(self) -> None:
        self.kill("openbox")
        self.kill_target()
        self.desktop.start_window_manager()
        self.restart_target()
        self.expect_everything_works()

    def kill_target(self) -> None:
        self.kill(self.sheet.program)
        self.assertTrue(self.keyvora.is_running())

    def test_a_target_that_hangs(self) -> None:
        child = self.desktop.children.named(self.sheet.program)
        self.addCleanup(child.send_signal, signal.SIGCONT)
        child.send_signal(signal.SIGSTOP)
        self.typist.tap("Option", "e")
        until(lambda: self.keyvora.log.has(f"{MENU} FAILED"), "the menu to be given up", 30,
              seen=self.keyvora.log.messages)
        # The next sequence works at once: only the menu's press was lost.
        self.sequence_fires()
        child.send_signal(signal.SIGCONT)
        self.dismiss()
        self.expect_everything_works()
        self.new_cell()  # menus are unavailable while a cell is edited
        self.typist.tap("Option", "e")
        self.keyvora.log.wait(f"{MENU} (menu)")
        until(lambda: self.sheet.dialog() != "", "the dialog")
        self.dismiss()

    def test_a_thousand_replacements_while_typing(self) -> None:
        replacements, letters = 1000, "kgkgkgkgkg"
        typed = ""
        for number in range(replacements):
            self.rename_into_place(number % 2)
            if number % 20 == 0:
                letter = letters[number // 20 % len(letters)]
                self.typist.tap(letter)
                typed += letter
        self.expect_input(typed)
        # The last save counts, and the earlier ones leave no effect.
        self.keyvora.write(WITH_MENU | {"sequences": []})
        self.keyvora.log.wait("mappings reloaded, 0 sequences")
        self.keyvora.write(WITH_MENU)
        before = len(self.keyvora.log.messages())
        until(lambda: "mappings reloaded, 5 sequences" in self.keyvora.log.messages()[before:], "the last reload")
        self.dismiss()
        self.expect_everything_works()

    def rename_into_place(self, more: int) -> None:
        document = WITH_MENU | {"sequences": WITH_MENU["sequences"][:4 + more]}
        beside = self.keyvora.mappings.with_suffix(".new")
        beside.write_text(json.dumps(document))
        beside.rename(self.keyvora.mappings)


class TwoAtOnce(DesktopTest):
    starts_keyvora = False

    def test_the_second_ends_and_can_be_started_when_the_first_was_killed(self) -> None:
        home = self.desktop.folder / "other"
        home.mkdir(exist_ok=True)
        other = Keyvora(self.desktop, self.environment.keyvora, home)
        self.addCleanup(other.stop)
        other.write(self.document)
        self.start()
        self.assertEqual(3, other.launch().wait(PATIENCE))
        other.log.wait("another keyvora is running")
        self.typist.tap("k")
        self.fire()
        self.expect_input("kx")
        self.keyvora.kill()
        other.start()
        self.fire()
        self.expect_input("kxx")
