"""Several documents: a sequence acts on the one that it was typed into."""

import os
import signal
from contextlib import suppress

from harness import x11
from harness.keyvora import Document
from harness.spreadsheet import Gnumeric, Spreadsheet
from harness.waiting import Timeout, equal, stays, until

from .desktop_test import DesktopTest

# The wait on an ambiguous sequence: long enough to change the window, even on a busy machine.
WAIT_MILLISECONDS = 3000
# After so long without its effect a key was lost, and is typed again; in seconds.
LOST_KEY = 10.0


def document_for(kind: type[Spreadsheet]) -> Document:
    """A document whose menu actions are those of this spreadsheet."""
    delete_rows = {"kind": "menu", "path": kind.delete_rows}
    actions = {
        "HDR": delete_rows,
        "HF": {"kind": "keystroke", "key": "x"},
        "M": {"kind": "keystroke", "key": "m"}, "MM": {"kind": "keystroke", "key": "n"},
        "R": delete_rows, "RR": {"kind": "keystroke", "key": "n"},
        "T": {"kind": "keytips", "keys": "BDGPQUVX"},
    }
    return {"version": 1, "timeoutMilliseconds": WAIT_MILLISECONDS, "tabs": {},
            "sequences": [{"keys": keys, "name": "Do", "action": action} for keys, action in actions.items()]}


class DocumentsTest(DesktopTest):
    """Can open further documents and change between them."""

    def setUp(self) -> None:
        assert self.environment.sheet
        type(self).document = document_for(type(self.environment.sheet))
        self.bring_to_front(self.environment.sheet)
        super().setUp()

    def new_window(self) -> Spreadsheet:
        """A second workbook of the same process, in front."""
        second = self.sheet.new_window(self.typist)
        self.go(second, "A1")
        self.addCleanup(self.bring_to_front, self.sheet)
        return second

    def new_process(self, kind: type[Spreadsheet]) -> Spreadsheet:
        """A workbook of another process, in front."""
        second = kind(self.desktop)
        self.addCleanup(self.end_process, second)
        self.typist.pace(max(self.sheet.pace, second.pace))
        return second

    def end_process(self, sheet: Spreadsheet) -> None:
        with suppress(ProcessLookupError):
            os.kill(sheet.process, signal.SIGKILL)
        until(lambda: not x11.window_area(sheet.window), "the spreadsheet to be gone")
        self.bring_to_front(self.sheet)

    def bring_to_front(self, sheet: Spreadsheet) -> None:
        """Activates a workbook and waits until the screen and the process show that."""
        x11.activate(sheet.window)
        until(sheet.has_noticed, "the workbook in front", seen=x11.active_window)

    def go(self, sheet: Spreadsheet, cell: str) -> None:
        """Selects a cell of the workbook in front. Calc loses keys while it opens or changes windows, keyvora or not."""
        for _ in range(3):
            with suppress(Timeout):
                return sheet.select(self.typist, cell, LOST_KEY)
        sheet.select(self.typist, cell)

    def fill(self, sheet: Spreadsheet) -> None:
        """Writes k and z into the first two cells of the workbook in front, and goes back to the first."""
        self.go(sheet, "A1")
        self.typist.tap("k", "Return")
        equal(sheet.selected, "A2", "the selected cell")
        self.typist.tap("z", "Return")
        equal(sheet.selected, "A3", "the selected cell")
        self.go(sheet, "A1")
        equal(sheet.input, "k", "the first cell")

    def leave(self, sheet: Spreadsheet) -> None:
        """Leaves the cell of the active workbook: a key that waits for its verdict goes to the window that is active
        then."""
        self.typist.tap("Escape")
        equal(sheet.input, "", "the text of the cell that was left")

    def expect_first_cell(self, sheet: Spreadsheet, content: str) -> None:
        """Selects the first cell and checks it: otherwise the input line would show an old value."""
        self.bring_to_front(sheet)
        self.typist.tap("Escape")
        self.go(sheet, "B1")
        self.go(sheet, "A1")
        equal(sheet.input, content, "the first cell")

    def expect_background_input(self, text: str, in_front: Spreadsheet, own: str = "") -> None:
        """Checks that the input is in the first document, and that the active one still has its `own` text."""
        if self.sheet.hears_in_the_background:
            self.expect_input(text)
        equal(in_front.input, own, "the text of the one in front")
        stays(in_front.input, own, "the text of the one in front", 0.3)


class TwoWindows(DocumentsTest):
    def test_a_menu_action_is_done_to_the_document_in_front(self) -> None:
        self.fill(self.sheet)
        second = self.new_window()
        self.fill(second)
        self.typist.tap("Option", "h", "d", "r")
        self.keyvora.log.wait("HDR  Do (menu)")
        self.expect_first_cell(second, "z")
        self.expect_first_cell(self.sheet, "k")
        self.typist.tap("Option", "h", "d", "r")
        self.keyvora.log.wait("HDR  Do (menu)", 2)
        self.expect_first_cell(self.sheet, "z")
        self.expect_first_cell(second, "z")

    def test_keys_go_to_the_document_in_front(self) -> None:
        second = self.new_window()
        for sheet, other in ((second, self.sheet), (self.sheet, second)):
            self.bring_to_front(sheet)
            self.go(sheet, "F1")
            self.fire()
            equal(sheet.input, "x", "the text of the one in front")
            equal(other.input, "", "the text of the other one")
            self.leave(sheet)

    def test_keys_stay_with_the_document_that_they_were_meant_for(self) -> None:
        second = self.new_window()
        self.bring_to_front(self.sheet)
        self.typist.tap("Option", "m")
        equal(self.keyvora.status, "⌥ M", "the status")
        self.bring_to_front(second)
        self.keyvora.log.wait("M  Do (keystroke)")
        self.expect_background_input("m", second)
        self.bring_to_front(self.sheet)

    def test_a_menu_action_stays_with_the_document_that_it_was_meant_for(self) -> None:
        self.fill(self.sheet)
        second = self.new_window()
        self.fill(second)
        self.typist.tap("Option", "r")
        equal(self.keyvora.status, "⌥ R", "the status")
        self.bring_to_front(self.sheet)
        self.keyvora.log.wait("R  Do (menu)")
        self.expect_first_cell(second, "z")
        self.expect_first_cell(self.sheet, "k")

    def test_typing_that_is_under_way_keeps_its_document(self) -> None:
        second = self.new_window()
        self.bring_to_front(self.sheet)
        self.typist.tap("Option", "t")
        until(lambda: self.sheet.input().startswith("b"), "the typing to begin", seen=self.sheet.input)
        self.bring_to_front(second)
        second.rest()  # Calc loses keys while it changes windows, keyvora or not
        self.fire()
        self.keyvora.log.wait("T  Do (keytips BDGPQUVX)")
        self.expect_background_input("bdgpquvx", second, "x")
        self.leave(second)
        self.bring_to_front(self.sheet)

    def test_a_document_that_was_closed_meanwhile_gets_nothing_and_no_other_does(self) -> None:
        second = self.new_window()
        self.typist.tap("Option", "m")
        equal(self.keyvora.status, "⌥ M", "the status")
        x11.close(second.window)
        until(self.sheet.is_in_front, "the first document in front", seen=x11.active_window)
        self.keyvora.log.wait("M  Do (keystroke)")
        stays(self.sheet.input, "", "the text of the first document", 0.3)

    def test_the_menus_of_a_document_that_was_closed_meanwhile_are_not_found(self) -> None:
        self.fill(self.sheet)
        second = self.new_window()
        self.typist.tap("Option", "r")
        equal(self.keyvora.status, "⌥ R", "the status")
        x11.close(second.window)
        until(self.sheet.is_in_front, "the first document in front", seen=x11.active_window)
        self.keyvora.log.wait("R  Do FAILED: no menu bar")
        self.expect_first_cell(self.sheet, "k")

    def test_a_dialog_has_its_own_keys_and_the_menus_of_its_document(self) -> None:
        self.fill(self.sheet)
        second = self.new_window()
        self.fill(second)
        self.typist.tap(second.search_dialog)
        until(second.dialog, "the dialog for searching")
        until(lambda: not second.is_in_front(), "the dialog in front")
        self.await_rest()  # on a busy machine the tap is late to notice a new window, and these keys are fast
        self.fire()
        equal(second.dialog_text, "x", "what the dialog looks for")
        self.typist.tap("Option", "h", "d", "r")
        self.keyvora.log.wait("HDR  Do (menu)")
        self.typist.tap("Escape")
        equal(second.dialog, "", "the dialog")
        self.expect_first_cell(second, "z")
        self.expect_first_cell(self.sheet, "k")


class TypedAhead(DocumentsTest):
    """Keys typed while the spreadsheet is busy: it reads them later."""

    def test_a_menu_action_is_done_to_the_cell_that_the_keys_before_it_selected(self) -> None:
        if self.sheet.pace:
            self.skipTest(f"{self.sheet.name} loses keys that it reads at once")
        self.fill(self.sheet)
        self.addCleanup(os.kill, self.sheet.process, signal.SIGCONT)
        # On a busy machine the spreadsheet may take longer to read many keys than an action waits: then nothing is done.
        if not any(self.is_done_to_the_cell_below(200 // 2 ** time) for time in range(8)):
            self.fail("the action was given up after one key, too")
        self.go(self.sheet, "A2")
        equal(self.sheet.input, "", "the second cell")
        self.expect_first_cell(self.sheet, "k")

    def is_done_to_the_cell_below(self, many: int) -> bool:
        """Types ahead from the first cell, with this many keys; whether the action was carried out, and not given up."""
        self.go(self.sheet, "A1")
        before = len(self.keyvora.log.messages())
        os.kill(self.sheet.process, signal.SIGSTOP)
        # Many keys, without an effect of their own, so that a call that does not wait for them comes before the last.
        self.typist.tap(*["Shift"] * many, "Down", "Option", "h", "d", "r")
        os.kill(self.sheet.process, signal.SIGCONT)
        said = until(lambda: [line for line in self.keyvora.log.messages()[before:] if line.startswith("HDR  ")],
                     "the action's record", seen=self.keyvora.log.messages)
        self.assertIn(said, (["HDR  Do (menu)"], ["HDR  Do FAILED: no menu bar"]))
        return said == ["HDR  Do (menu)"]


class TwoProcesses(DocumentsTest):
    """Of gnumeric; or Calc, which has one process for all its windows, and gnumeric."""

    def test_keys_go_to_the_one_in_front(self) -> None:
        second = self.new_process(Gnumeric)
        for sheet, other in ((second, self.sheet), (self.sheet, second)):
            self.bring_to_front(sheet)
            self.go(sheet, "F1")
            self.fire()
            equal(sheet.input, "x", "the text of the one in front")
            equal(other.input, "", "the text of the other one")
            self.leave(sheet)

    def test_menus_are_those_of_the_one_in_front(self) -> None:
        self.fill(self.sheet)
        second = self.new_process(Gnumeric)
        self.fill(second)
        self.bring_to_front(self.sheet)
        self.typist.tap("Option", "h", "d", "r")
        self.keyvora.log.wait("HDR  Do (menu)")
        self.expect_first_cell(self.sheet, "z")
        self.expect_first_cell(second, "k")
        self.keyvora.write(document_for(Gnumeric))
        self.keyvora.log.wait(f"mappings reloaded, {len(document_for(Gnumeric)['sequences'])} sequences")
        self.typist.tap("Option", "h", "d", "r")
        self.keyvora.log.wait("HDR  Do (menu)", 2)
        self.expect_first_cell(second, "z")
        self.expect_first_cell(self.sheet, "z")

    def test_a_process_that_died_meanwhile_gets_nothing_and_no_other_does(self) -> None:
        second = self.new_process(Gnumeric)
        self.typist.tap("Option", "m")
        equal(self.keyvora.status, "⌥ M", "the status")
        os.kill(second.process, signal.SIGKILL)
        self.keyvora.log.wait("M  Do (keystroke)")
        stays(self.sheet.input, "", "the text of the other one", 0.3)
