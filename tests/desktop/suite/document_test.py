"""Carries out the sequences of a shipped document in its spreadsheet."""

import json
import os
import re
import signal
import unittest
from pathlib import Path
from typing import Any, Callable, ClassVar

from harness import x11
from harness.keyvora import Keyvora
from harness.spreadsheet import Spreadsheet
from harness.typist import Typist
from harness.waiting import Timeout, equal, until

from .desktop_test import DesktopTest
from .document_case import Case, Cells, Closed, Outcome, Recalculated, Saved, Selected, Window

RESOURCES = Path(__file__).resolve().parents[3] / "resources"

# The time in which a spreadsheet begins to save, in seconds. When nothing has changed, it does not save.
SAVE_LIMIT = 2.0
# After so long without its effect a key was lost, and is typed again; in seconds.
LOST_KEY = 10.0


def read_document(name: str) -> dict[str, Any]:
    """A shipped document."""
    document: dict[str, Any] = json.loads((RESOURCES / name).read_text(encoding="utf-8"))
    return document


class DocumentTest(unittest.TestCase):
    """Sequences in a spreadsheet, which each starts anew with the same small workbook. A class for one spreadsheet says
    how to make and read that; `add_tests` gives it a test for each sequence, `test_HFC` and so on."""

    # The spreadsheet; its document, and the expected effect of each of its sequences.
    kind: ClassVar[type[Spreadsheet]]
    document: ClassVar[dict[str, Any]]
    cases: ClassVar[dict[str, Case]]
    # The type of the file for the workbook, and the cell to change so that there is something to save.
    suffix: ClassVar[str]

    @classmethod
    def workbook(cls, variant: str) -> bytes:
        """The workbook's file; `variant` is empty for the usual one."""
        raise NotImplementedError

    def content(self, file: Path) -> str:
        """The content of a saved file; raises EOFError while it is incomplete."""
        raise NotImplementedError

    def shown(self, cell: str) -> str | None:
        """What a cell shows, selected or not; None where that cannot be read."""
        raise NotImplementedError

    def area(self, cell: str) -> x11.Area:
        """Where a cell is on the screen."""
        raise NotImplementedError

    def random_number(self, content: str) -> str:
        """The number that D3 has in a saved file."""
        raise NotImplementedError

    def setUp(self) -> None:
        environment = DesktopTest.environment
        self.desktop = environment.desktop
        if environment.sheet:
            self.end_all()
            environment.sheet = None
        self.typist = Typist(self.desktop.children, environment.typist)
        self.addCleanup(self.typist.end)
        self.typist.pace(self.kind.pace)
        self.keyvora = self.new_keyvora(environment.keyvora)
        self.addCleanup(self.keyvora.stop)
        self.keyvora.start()

    def new_keyvora(self, program: Path) -> Keyvora:
        """keyvora with the document, not started yet."""
        keyvora = Keyvora(self.desktop, program)
        keyvora.write(self.document)
        return keyvora

    def sequence(self, keys: str) -> dict[str, Any]:
        """The document's sequence with these keys."""
        found: dict[str, Any] = next(each for each in self.document["sequences"] if each["keys"] == keys)
        return found

    def is_missing(self, keys: str) -> bool:
        """Whether the program that runs has no such menu item."""
        action = self.sequence(keys)["action"]
        return action["kind"] == "menu" and not self.sheet.has_menu_item(action["path"])

    def is_noted(self, keys: str) -> bool:
        """Whether the document says that only one version has the item."""
        return str(self.sequence(keys).get("note", "")).startswith("Only in ")

    def carry_out(self, keys: str, case: Case) -> None:
        self.open(keys, case.variant)
        if self.is_noted(keys) and self.is_missing(keys):
            self.skipTest("only another version has it, as the document says")
        before = ""
        if isinstance(case.outcome, (Saved, Recalculated)):
            self.change_something()
            before = self.save()
            self.change_something()
        for other in case.fire_first:
            self.select(case)
            self.fire(other)
            if isinstance(case.outcome, Saved) and not case.outcome.present:
                before = self.until_saved(case.outcome.pattern, True)
                if not case.stay:
                    self.change_something()
        if not case.stay:
            self.select(case)
        self.typist.tap(*case.first)
        self.fire(keys)
        if case.dialog:
            self.answer(case.dialog, case.then)
        else:
            self.typist.tap(*case.then)
        if case.click:
            x11.click(self.area(case.click))
        self.expect(case.outcome, before)

    def carry_out_twice(self, keys: str, case: Case) -> None:
        """A sequence that enables something disables it when typed again."""
        assert isinstance(case.outcome, Saved)
        self.carry_out(keys, case)
        self.change_something()
        self.select(case)
        self.fire(keys)
        self.until_saved(case.outcome.pattern, not case.outcome.present)

    def open(self, name: str, variant: str = "") -> None:
        """Starts the spreadsheet with the workbook, in a file of this name."""
        self.file = self.desktop.folder / f"{name}{self.suffix}"
        self.file.write_bytes(self.workbook(variant))
        self.addCleanup(self.end_all)
        self.sheet = self.kind(self.desktop, str(self.file))

    def select(self, case: Case) -> None:
        """Selects the cells of a case."""
        self.go(case.cell)
        if case.last:
            self.extend(case.cell, case.last)

    def go(self, cell: str) -> None:
        """Goes to a cell."""
        self.insist(lambda: self.sheet.select(self.typist, cell, LOST_KEY))

    def extend(self, cell: str, last: str) -> None:
        """Selects from a cell, which is selected, down and right to the last."""
        def select() -> None:
            self.typist.tap(*["Shift+Down"] * (int(last[1:]) - int(cell[1:])),
                            *["Shift+Right"] * (ord(last[0]) - ord(cell[0])))
            try:
                equal(self.sheet.selected, self.range_name(cell, last), "the selected range", LOST_KEY)
            except Timeout:
                self.go(cell)
                raise
        self.insist(select)

    @staticmethod
    def range_name(cell: str, last: str) -> str:
        """What the name box shows when a range is selected."""
        return f"{cell}:{last}"

    @staticmethod
    def insist(step: Callable[[], None]) -> None:
        """Repeats a step when a key was lost, which happens in Calc while it loads or saves, even without keyvora."""
        for _ in range(3):
            try:
                return step()
            except Timeout:
                continue
        step()

    def change_something(self) -> None:
        """Changes a distant cell: without a change the file is not saved, and settings of the view do not count as one."""
        self.go("F1")
        self.typist.tap("z", "Return")

    def fire(self, keys: str) -> None:
        """Types a sequence as a user does, and waits until keyvora has carried it out."""
        sequence = self.sequence(keys)
        line = f"{keys}  {sequence['name']} ({sequence['action']['kind']})"
        fired = self.keyvora.log.count(line)
        self.typist.tap("Option", *keys.lower())
        self.keyvora.log.wait(line, fired + 1)

    def answer(self, dialog: str, keys: list[str]) -> None:
        """Waits for a dialog, types keys into it and waits until it has closed."""
        equal(self.sheet.dialog, dialog, "the dialog")
        self.typist.tap(*keys)
        until(self.sheet.has_noticed, "the spreadsheet's window in front", seen=x11.active_class)

    def expect(self, outcome: Outcome, before: str) -> None:
        match outcome:
            case Window(pattern):
                def title() -> str:
                    window = x11.active_window()
                    return x11.window_title(window) or "(untitled)" if window not in ("", self.sheet.window) else ""
                until(lambda: re.fullmatch(pattern, title()) and title(), f"the window {pattern!r}",
                      seen=title)
            case Cells(content):
                self.expect_cells(content)
            case Saved(pattern, present):
                self.assertNotEqual(bool(re.search(pattern, before)), present, "was so before")
                self.until_saved(pattern, present)
            case Recalculated():
                until(lambda: self.random_number(self.save()) != self.random_number(before), "another random number")
            case Selected(cells):
                equal(self.sheet.selected, cells, "the selected range")
            case Closed():
                until(lambda: x11.active_window() != self.sheet.window or self.kind.window_class not in x11.active_class(),
                      "the spreadsheet's window to be gone", seen=x11.active_class)

    def expect_cells(self, content: dict[str, str]) -> None:
        # A command runs some time after its key; an immediate next key would change its selection.
        for cell, value in content.items():
            if not value.startswith("=") and self.shown(cell) is not None:
                equal(lambda: self.shown(cell) or "", value, f"what {cell} shows")
        for cell, value in content.items():
            self.go(cell)
            equal(self.sheet.input, value, f"the content of {cell}")

    def save(self) -> str:
        """Saves the workbook as a user does, if anything has changed; gives what is in the file."""
        stamp = self.file.stat().st_mtime_ns
        self.typist.tap("Control+s")
        try:
            until(lambda: self.file.stat().st_mtime_ns != stamp, "a save", SAVE_LIMIT)
            return until(self.whole, "the whole file")
        except Timeout:
            return self.content(self.file)  # nothing has changed

    def whole(self) -> str:
        """What is in the file; empty while it is not whole."""
        try:
            return self.content(self.file)
        except (EOFError, OSError):
            return ""

    def until_saved(self, pattern: str, present: bool) -> str:
        """Saves until the file has the pattern, or has it no more; gives what is in it."""
        what = f"{pattern!r} {'in the file' if present else 'gone from the file'}"
        return until(lambda: text if bool(re.search(pattern, text := self.save())) == present else "", what)

    def end_all(self) -> None:
        """Ends the spreadsheet, even if it shows a dialog or has not finished starting."""
        def processes() -> set[str]:
            windows = [window for name in self.kind.window_classes for window in x11.windows_of_class(name)]
            return {x11.window_property(window, "_NET_WM_PID") for window in windows} - {""}
        for process in processes():
            try:
                os.kill(int(process), signal.SIGKILL)
            except ProcessLookupError:
                continue
        until(lambda: not processes(), "the spreadsheet to be gone")


def add_tests(test: type[DocumentTest], sequences: list[str]) -> None:
    """Gives a test to each of these sequences."""
    for keys in sequences:
        case = test.cases[keys]
        setattr(test, f"test_{keys}", lambda self, keys=keys, case=case: self.carry_out(keys, case))


def add_tests_of_all(test: type[DocumentTest]) -> None:
    """Gives a test to each sequence of the document, a second to those that switch on and off, one that none is without
    a case, and one of all menu items."""
    def test_there_is_a_case_for_every_sequence(self: DocumentTest) -> None:
        self.assertEqual({sequence["keys"] for sequence in self.document["sequences"]}, set(self.cases))

    def test_every_menu_item_is_there_or_noted_as_one_versions(self: DocumentTest) -> None:
        self.open("menus")
        missing = [keys for keys in self.cases if self.is_missing(keys) and not self.is_noted(keys)]
        self.assertEqual([], missing, "write down which version has it")

    for check in (test_there_is_a_case_for_every_sequence, test_every_menu_item_is_there_or_noted_as_one_versions):
        setattr(test, check.__name__, check)
    add_tests(test, list(test.cases))
    for keys in both_ways(test):
        case = test.cases[keys]
        setattr(test, f"test_{keys}_twice", lambda self, keys=keys, case=case: self.carry_out_twice(keys, case))


def both_ways(test: type[DocumentTest]) -> list[str]:
    """The sequences whose names say that they switch on and off."""
    return [sequence["keys"] for sequence in test.document["sequences"]
            if re.search(r" on or off$|\bor un", sequence["name"])]
