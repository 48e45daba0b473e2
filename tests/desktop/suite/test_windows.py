"""Other windows: the window manager's keys, menus and dialogs of the spreadsheet, another program in front."""

import subprocess

from harness import x11
from harness.children import stop
from harness.waiting import equal, stays, until

from .desktop_test import ARMED, DOCUMENT, DesktopTest


class Windows(DesktopTest):
    def setUp(self) -> None:
        cells = {"keys": "C", "name": "Cells", "action": {
            "kind": "menu", "path": self.environment.sheet.format_cells if self.environment.sheet else []}}
        type(self).document = DOCUMENT | {"sequences": [*DOCUMENT["sequences"], cells]}
        super().setUp()

    def open_other_program(self) -> subprocess.Popen[bytes]:
        """Opens an active program that is not the target and logs every key it gets."""
        self.desktop.children.log("xev").unlink(missing_ok=True)
        other = self.desktop.children.start(["xev", "-name", "other", "-event", "keyboard"])
        self.addCleanup(self._close, other)
        until(self._other_in_front, "the other program in front", seen=x11.active_class)
        return other

    def _close(self, other: subprocess.Popen[bytes]) -> None:
        stop(other)
        until(self.sheet.is_in_front, "the spreadsheet in front again")

    def _other_in_front(self) -> bool:
        window = x11.active_window()
        return bool(window) and x11.window_title(window) == "other"

    def switch_window(self) -> None:
        """Changes the window with Option and Tab, by the window manager. Without its list of windows on the screen, it
        may not notice that Option is released."""
        self.typist.down("Option", "Tab")
        self.typist.up("Tab")
        until(lambda: any(map(x11.is_visible, x11.windows_of_class("OPENBOX_FOCUS_CYCLE_POPUP"))), "the list of windows")
        self.typist.up("Option")

    def presses(self) -> int:
        """How many presses of the letter h the other program got."""
        log = self.desktop.children.log("xev").read_text(errors="replace")
        return sum("keysym 0x68, h" in line and "KeyPress" in event
                   for event, line in zip(log.splitlines(), log.splitlines()[2:]))

    def test_another_program_in_front_gets_every_key(self) -> None:
        self.open_other_program()
        self.typist.burst(20, "Option", "h")
        equal(self.presses, 20, "presses of h")
        self.assertEqual(0, self.keyvora.log.count(ARMED))

    def test_the_window_managers_alt_tab(self) -> None:
        self.open_other_program()
        self.switch_window()
        until(self.sheet.is_in_front, "the spreadsheet in front", seen=x11.active_class)
        self.expect_everything_works()
        self.typist.tap("Escape")
        self.switch_window()
        until(self._other_in_front, "the other program in front", seen=x11.active_class)
        self.assertEqual(1, self.keyvora.log.count(ARMED))

    def test_leaving_the_target_while_armed_disarms(self) -> None:
        self.open_other_program()
        self.switch_window()
        until(self.sheet.is_in_front, "the spreadsheet in front", seen=x11.active_class)
        self.typist.tap("Option", "h")
        equal(self.keyvora.status, "⌥ H", "the status")
        self.switch_window()
        until(self._other_in_front, "the other program in front", seen=x11.active_class)
        self.typist.tap("h")
        equal(self.presses, 1, "presses of h")
        equal(self.keyvora.status, "⌥", "the status")

    def test_a_menu_of_the_spreadsheet_keeps_its_keys(self) -> None:
        self.typist.tap("Option+f")
        equal(self.sheet.open_menu, "File", "the open menu")
        self.typist.tap("Left")
        equal(self.sheet.open_menu, "Help", "the open menu")
        self.typist.tap("Escape", "Escape")
        equal(self.sheet.open_menu, "", "the open menu")
        self.assertEqual(0, self.keyvora.log.count(ARMED))
        self.expect_everything_works()

    def test_a_dialog_of_the_spreadsheet_is_the_spreadsheet(self) -> None:
        self.typist.tap("Option", "c")
        self.keyvora.log.wait("C  Cells (menu)")
        until(self.sheet.dialog, "the dialog")
        title = self.sheet.dialog()
        self.typist.tap("Option", "h", "q")
        self.keyvora.log.wait("no sequence HQ")
        self.typist.tap("Option", "h", "Escape")
        equal(self.keyvora.status, "⌥", "the status")
        # The first Escape was swallowed; the next goes to the dialog.
        stays(self.sheet.dialog, title, "the dialog", 0.3)
        self.typist.tap("Escape")
        equal(self.sheet.dialog, "", "the dialog")
        until(self.sheet.is_in_front, "the spreadsheet in front", seen=x11.active_class)
        self.expect_everything_works()

    def test_a_new_window_of_the_spreadsheet_is_noticed(self) -> None:
        self.typist.tap("Control+n")
        until(lambda: not self.sheet.is_in_front() and x11.active_window(), "a second workbook")
        second = x11.active_window()
        self.typist.tap("Option", "h", "q")
        self.keyvora.log.wait("no sequence HQ")
        self.typist.tap("Option+F4")
        until(lambda: x11.active_window() != second, "the second workbook to close")
        until(self.sheet.is_in_front, "the first workbook in front", seen=x11.active_class)
        self.expect_everything_works()
