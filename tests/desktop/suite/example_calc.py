"""The example for Calc: every sequence of resources/examples/calc.json, typed by a user, does its work in Calc.

Each has a fresh Calc with the same small workbook, and an outcome that anyone could see: a window that opens,
what a cell holds, or what is in the file once the user has saved it.
"""

import json
import os
import re
import signal
import unittest
from dataclasses import dataclass, field
from pathlib import Path
from typing import Callable

from harness import x11
from harness.keyvora import Keyvora
from harness.spreadsheet import Calc
from harness.typist import Typist
from harness.waiting import Timeout, equal, until

from .desktop_test import DesktopTest

EXAMPLE = Path(__file__).resolve().parents[3] / "resources/examples/calc.json"

# How long Calc may take to begin a save, in seconds; when nothing has changed, it saves nothing.
SAVE_LIMIT = 2.0
END = "</office:document>"

CELLS: list[list[str | int | None]] = [["Name", "Amount", "City", "Twice"], ["Pear", 30, "Rome", "=[.B2]*2"],
                                       ["Apple", 10, "Oslo", "=RAND()"], ["Fig", 20, "Bern", None]]


def workbook() -> str:
    """The workbook, as Calc's flat file."""
    return ('<?xml version="1.0" encoding="UTF-8"?>\n'
            '<office:document xmlns:office="urn:oasis:names:tc:opendocument:xmlns:office:1.0"'
            ' xmlns:table="urn:oasis:names:tc:opendocument:xmlns:table:1.0"'
            ' xmlns:text="urn:oasis:names:tc:opendocument:xmlns:text:1.0"'
            ' xmlns:of="urn:oasis:names:tc:opendocument:xmlns:of:1.2" office:version="1.3"'
            ' office:mimetype="application/vnd.oasis.opendocument.spreadsheet"><office:body><office:spreadsheet>'
            '<table:table table:name="Fruit">'
            + "".join(f"<table:table-row>{''.join(map(_cell, row))}</table:table-row>" for row in CELLS)
            + f"</table:table></office:spreadsheet></office:body>{END}\n")


def _cell(value: object) -> str:
    if value is None:
        return "<table:table-cell/>"
    if isinstance(value, int):
        return f'<table:table-cell office:value-type="float" office:value="{value}"/>'
    if str(value).startswith("="):
        return f'<table:table-cell table:formula="of:{value}"/>'
    return f'<table:table-cell office:value-type="string"><text:p>{value}</text:p></table:table-cell>'


@dataclass
class Window:
    """Another window is in front, with a title like this."""

    title: str


@dataclass
class Cells:
    """Cells hold this."""

    content: dict[str, str]


@dataclass
class Saved:
    """The saved file has this, which it had not before; or has it no more."""

    pattern: str
    present: bool = True


@dataclass
class Recalculated:
    """The random number of D3 in the saved file is another one."""


Outcome = Window | Cells | Saved | Recalculated


@dataclass
class Case:
    """Where the user is, what is done before and after the sequence, and what comes of it.

    The user is in `cell`, with all cells down to `last` selected; `first` and `then` are keys, `fire_first` is another
    sequence.
    """

    outcome: Outcome
    cell: str = "B2"
    last: str = ""
    first: list[str] = field(default_factory=list)
    fire_first: str = ""
    then: list[str] = field(default_factory=list)


COPY_A2_TO_E5 = ["Control+Home", "Down", "Control+c", "Right", "Right", "Right", "Right", "Down", "Down", "Down"]
PASTE_AT_E5 = ["Right", "Right", "Right", "Right", "Down", "Down", "Down", "Control+v"]


def view(setting: str, value: str, present: bool = True) -> Saved:
    """A setting of the sheet's view."""
    return Saved(rf'config:name="{setting}"[^>]*>{value}<', present)


CASES: dict[str, Case] = {
    "HX": Case(Cells({"E5": "Pear", "A2": ""}), "A2", then=PASTE_AT_E5),
    "HCC": Case(Cells({"E5": "Pear", "A2": "Pear"}), "A2", then=PASTE_AT_E5),
    "HVP": Case(Cells({"E5": "Pear"}), "A2", first=COPY_A2_TO_E5),
    "HVS": Case(Window("Paste Special"), "A2", first=COPY_A2_TO_E5),
    "H1": Case(Saved(r'fo:font-weight="bold"')),
    "H2": Case(Saved(r'fo:font-style="italic"')),
    "H3U": Case(Saved(r'style:text-underline-style="solid"')),
    "H3D": Case(Saved(r'style:text-underline-type="double"')),
    "H4": Case(Saved(r'style:text-line-through-style="solid"')),
    "HFN": Case(Window("Format Cells")),
    "HAL": Case(Saved(r'fo:text-align="start"')),
    "HAC": Case(Saved(r'fo:text-align="center"')),
    "HAR": Case(Saved(r'fo:text-align="end"')),
    "HAT": Case(Saved(r'style:vertical-align="top"')),
    "HAM": Case(Saved(r'style:vertical-align="middle"')),
    "HAB": Case(Saved(r'style:vertical-align="bottom"')),
    "HW": Case(Saved(r'fo:wrap-option="wrap"')),
    "HN": Case(Saved(r'table:style-name="ce\d+" office:value-type="percentage"', present=False), fire_first="HP"),
    "HAN": Case(Saved(r'office:value-type="currency"')),
    "HP": Case(Saved(r'office:value-type="percentage"')),
    "HK": Case(Saved(r'number:grouping="true"')),
    "HLN": Case(Window("Conditional Formatting.*")),
    "HLR": Case(Window("Manage Conditional Formatting")),
    "HII": Case(Window("Insert Cells")),
    "HIR": Case(Cells({"A2": "", "A3": "Pear"})),
    "HIC": Case(Cells({"B1": "", "C1": "Amount"})),
    "HIS": Case(Window("Insert Sheet")),
    "HDD": Case(Window("Delete Cells")),
    "HDR": Case(Cells({"A2": "Apple"})),
    "HDC": Case(Cells({"B1": "City"})),
    "HOH": Case(Window("Row Height")),
    "HOA": Case(Window("Optimal Row Height")),
    "HOW": Case(Window("Column Width")),
    "HOI": Case(Window("Optimal Column Width")),
    "HOUR": Case(Saved(r'<table:table-row [^>]*table:visibility="collapse"')),
    "HOUC": Case(Saved(r'<table:table-column [^>]*table:visibility="collapse"')),
    "HOR": Case(Window("Rename Sheet")),
    "HOM": Case(Window("Move/Copy Sheet")),
    "HOT": Case(Window("Tab Color")),
    "HOP": Case(Window("Protect Sheet")),
    "HOE": Case(Window("Format Cells")),
    "HUS": Case(Cells({"B5": "=SUM(B2:B4)"}), "B5", then=["Return"]),
    "HFID": Case(Cells({"A3": "Pear", "A4": "Pear"}), "A2", last="A4"),
    "HEA": Case(Window("Delete Contents")),
    "HEF": Case(Saved(r'fo:font-weight="bold"', present=False), fire_first="H1"),
    "HSU": Case(Window("Sort")),
    "HFDR": Case(Window("Find and Replace")),
    "NVT": Case(Window("Select Source")),
    "NC": Case(Window("Chart Type")),
    "NSL": Case(Window("Sparkline Properties")),
    "NU": Case(Window("Special Characters")),
    "NH": Case(Window("Header.*Footer.*")),
    "PSP": Case(Window("Page Style.*")),
    "PRS": Case(Saved(r'table:print-ranges="Fruit.B2:Fruit.B4"'), last="B4"),
    "PRE": Case(Window("Edit Print Ranges")),
    "MF": Case(Window("Function Wizard")),
    "MN": Case(Window("Manage Names")),
    "MMD": Case(Window("Define Name")),
    "MP": Case(Saved(r'table:name="trace-precedents"'), "D2"),
    "MD": Case(Saved(r'table:name="trace-dependents"')),
    "MAA": Case(Saved(r'table:name="trace-dependents"', present=False), fire_first="MD"),
    "MB": Case(Recalculated()),
    "AT": Case(Saved(r'table:display-filter-buttons="true"')),
    "AQ": Case(Window("Advanced Filter")),
    "ASA": Case(Cells({"A2": "Apple", "A4": "Pear"})),
    "ASD": Case(Cells({"A2": "Pear", "A4": "Apple"})),
    "ASS": Case(Window("Sort")),
    "AVV": Case(Window("Validity")),
    "AN": Case(Window("Consolidate")),
    "AB": Case(Window("Subtotals")),
    "AWG": Case(Window("Goal Seek")),
    "AGG": Case(Window("Group"), last="B4"),
    "RS": Case(Window(".*")),
    "RC": Case(Saved(r"<office:annotation"), then=["x", "Escape"]),
    "WL": Case(view("ShowPageBreakPreview", "true", present=False), fire_first="WI"),
    "WI": Case(view("ShowPageBreakPreview", "true")),
    "WVG": Case(view("ShowGrid", "false")),
    "WVH": Case(view("HasColumnRowHeaders", "false")),
    "WQ": Case(Window("Zoom.*")),
    "WFF": Case(view("HorizontalSplitMode", "2")),
    "WFR": Case(view("VerticalSplitMode", "2")),
    "WFC": Case(view("HorizontalSplitMode", "2")),
    "WS": Case(view("HorizontalSplitMode", "1")),
    "FN": Case(Window("Untitled.*")),
    "FA": Case(Window("Save As|Save")),
    "FI": Case(Window('Properties of.*')),
}
SEQUENCES = {sequence["keys"]: sequence for sequence in json.loads(EXAMPLE.read_text(encoding="utf-8"))["sequences"]}


class CalcExample(unittest.TestCase):
    """One test for each sequence: `test_HFC` and so on."""

    def setUp(self) -> None:
        environment = DesktopTest.environment
        self.desktop = environment.desktop
        assert isinstance(environment.sheet, Calc)
        self.end(environment.sheet)
        self.typist = Typist(self.desktop.children, environment.typist)
        self.typist.pace(Calc.pace)
        self.keyvora = Keyvora(self.desktop, environment.keyvora)
        self.addCleanup(self.keyvora.stop)
        self.keyvora.write(json.loads(EXAMPLE.read_text(encoding="utf-8")))
        self.keyvora.start()

    def test_there_is_a_case_for_every_sequence(self) -> None:
        self.assertGreaterEqual(len(SEQUENCES), 60)
        self.assertEqual(set(SEQUENCES), set(CASES))

    def carry_out(self, keys: str, case: Case) -> None:
        self.file = self.desktop.folder / f"{keys}.fods"
        self.file.write_text(workbook(), encoding="utf-8")
        self.sheet = Calc(self.desktop, str(self.file))
        self.addCleanup(self.end, self.sheet)
        self.change_something()
        before = self.save()
        self.change_something()
        self.go(case.cell)
        self.typist.tap(*case.first)
        if case.fire_first:
            self.fire(case.fire_first)
            assert isinstance(case.outcome, Saved)
            before = self.until_saved(case.outcome.pattern, not case.outcome.present)
            self.change_something()
            self.go(case.cell)
        if case.last:
            self.extend(case.cell, case.last)
        self.fire(keys)
        self.typist.tap(*case.then)
        self.expect(case.outcome, before)

    def go(self, cell: str) -> None:
        """Goes to a cell."""
        self.insist(lambda: self.sheet.select(self.typist, cell))

    def extend(self, cell: str, last: str) -> None:
        """Selects from a cell, which is selected, down to the last."""
        def select() -> None:
            self.typist.tap(*["Shift+Down"] * (int(last[1:]) - int(cell[1:])))
            try:
                equal(self.sheet.selected, f"{cell}:{last}", "the selected range")
            except Timeout:
                self.go(cell)
                raise
        self.insist(select)

    @staticmethod
    def insist(step: Callable[[], None]) -> None:
        """Takes a step again when Calc has lost a key: it does while it loads or saves, keyvora or not."""
        for _ in range(3):
            try:
                return step()
            except Timeout:
                continue
        step()

    def change_something(self) -> None:
        """Changes a cell far off: what is not changed is not saved, and settings of the view do not count."""
        self.go("A9")
        self.typist.tap("z", "Return")

    def fire(self, keys: str) -> None:
        """Types a sequence as a user does, and waits until keyvora has carried it out."""
        sequence = SEQUENCES[keys]
        line = f"{keys}  {sequence['name']} ({sequence['action']['kind']})"
        fired = self.keyvora.log.count(line)
        self.typist.tap("Option", *keys.lower())
        self.keyvora.log.wait(line, fired + 1)

    def expect(self, outcome: Outcome, before: str) -> None:
        if isinstance(outcome, Window):
            def title() -> str:
                window = x11.active_window()
                return x11.window_title(window) if window not in ("", self.sheet.window) else ""
            expected = outcome.title
            until(lambda: re.fullmatch(expected, title()) and title(), f"the window {expected!r}", seen=title)
        elif isinstance(outcome, Cells):
            # Calc carries a command out some time after its key: who goes on at once takes the selection from it.
            for cell, content in outcome.content.items():
                if not content.startswith("="):
                    equal(lambda: self.sheet.shown(cell), content, f"what {cell} shows")
            for cell, content in outcome.content.items():
                self.go(cell)
                equal(self.sheet.input, content, f"the content of {cell}")
        elif isinstance(outcome, Saved):
            self.assertNotEqual(bool(re.search(outcome.pattern, before)), outcome.present, "was so before")
            self.until_saved(outcome.pattern, outcome.present)
        else:
            until(lambda: random_number(self.save()) != random_number(before), "another random number")

    def save(self) -> str:
        """Saves the workbook as a user does, if anything has changed; gives the file's content, without the styles
        that come with every workbook."""
        stamp = self.file.stat().st_mtime_ns
        self.typist.tap("Control+s")
        try:
            until(lambda: self.file.stat().st_mtime_ns != stamp, "a save", SAVE_LIMIT)
            until(lambda: self.file.read_text(encoding="utf-8").rstrip().endswith(END), "the whole file")
        except Timeout:
            pass  # nothing had changed
        return re.sub("<office:styles>.*</office:styles>", "", self.file.read_text(encoding="utf-8"), flags=re.DOTALL)

    def until_saved(self, pattern: str, present: bool) -> str:
        """Saves until the file has the pattern, or has it no more; gives the file's content."""
        what = f"{pattern!r} {'in the file' if present else 'gone from the file'}"
        return until(lambda: text if bool(re.search(pattern, text := self.save())) == present else "", what)

    @staticmethod
    def end(sheet: Calc) -> None:
        """Ends Calc, whatever it is asking."""
        try:
            os.kill(sheet.process, signal.SIGKILL)
        except ProcessLookupError:
            return
        until(lambda: not x11.windows_of_class("libreoffice-calc") and not x11.windows_of_class("soffice"),
              "Calc to be gone")


def random_number(document: str) -> str:
    """The number that RAND() stands for in a saved document; empty when it has none."""
    match = re.search(r'RAND\(\)" [^>]*office:value="([^"]*)"', document)
    return match[1] if match else ""


def add_test(keys: str, case: Case) -> None:
    """Gives a sequence a test of its own."""
    setattr(CalcExample, f"test_{keys}", lambda self: self.carry_out(keys, case))


for each, what in CASES.items():
    add_test(each, what)
