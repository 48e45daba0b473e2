"""The spreadsheets that stand in for Excel: started, driven by the simulated user, read through AT-SPI."""

import copy
import functools
import re
import shutil
import subprocess
from abc import ABC, abstractmethod
from typing import ClassVar

from . import accessible, x11
from .private_desktop import PrivateDesktop
from .process import processor_ticks
from .typist import Typist
from .waiting import PATIENCE, calm, equal, until


class Spreadsheet(ABC):
    """One window of a running spreadsheet. Constructed when it is active and its menu bar has items."""

    # Its name on a command line, and its program.
    name: ClassVar[str]
    program: ClassVar[str]
    # The desktop file in its package.
    desktop_file: ClassVar[str]
    # The pause between two keys without which it loses keys, even without keyvora; in milliseconds.
    pace: ClassVar[int] = 0
    # The window class, and the path to the command "format cells" in its menus.
    window_class: ClassVar[str]
    # All classes of the windows that it may open.
    window_classes: ClassVar[list[str]]
    format_cells: ClassVar[list[str]]
    delete_rows: ClassVar[list[str]]
    # The keys that open a dialog during which the menus can be used.
    search_dialog: ClassVar[str]
    # Whether keys sent to one of its documents arrive there even if another is the active one.
    hears_in_the_background: ClassVar[bool] = True
    # Whether its windows keep their class. keyvora must watch windows that may change it.
    keeps_its_class: ClassVar[bool] = True

    @classmethod
    def is_installed(cls) -> bool:
        """Whether it is installed."""
        return shutil.which(cls.program) is not None

    def __init__(self, desktop: PrivateDesktop, *files: str) -> None:
        # A new window may get the number of a closed one.
        before = x11.active_window() if x11.active_class() else ""
        desktop.children.start(self._command(desktop) + list(files))
        self._take_window_in_front(before, [])

    def new_window(self, typist: Typist) -> "Spreadsheet":
        """Opens a second workbook of the same process, as a user does."""
        known = accessible.children(self._root)
        typist.tap("Control+n")
        second = copy.copy(self)
        second._take_window_in_front(self.window, known)
        return second

    def _take_window_in_front(self, before: str, known: list[accessible.Element]) -> None:
        """Takes the new active window as this one's: not `before`, and none of the `known` frames."""
        until(lambda: x11.active_window() != before and self.window_class in x11.active_class(),
              f"{self.name} in front", seen=x11.active_class)
        self.window = x11.active_window()
        self.process = int(x11.window_property(self.window, "_NET_WM_PID"))
        accessible.connect()
        self._root = until(lambda: accessible.application(self.process), f"{self.name} on the bus")
        # The process may notice its new window in front later than the screen: until then a known frame is active.
        self._frame = until(lambda: self._active_frame(known), f"the frame of {self.name}")
        until(self._has_menus, f"the menus of {self.name}")
        self._find_places()

    def _find_places(self) -> None:
        """Finds the elements from which the selection and the input are read."""
        texts = until(self._find_texts, "the name box and the input line")
        assert texts
        self._name_box, self._input_line = texts

    def _active_frame(self, known: list[accessible.Element]) -> accessible.Element | None:
        return next((frame for frame in accessible.children(self._root)
                     if frame not in known and accessible.is_active(frame)), None)

    def is_in_front(self) -> bool:
        """Whether its main window is the active one."""
        return x11.active_window() == self.window

    def has_noticed(self) -> bool:
        """Whether the spreadsheet itself knows that its main window is active."""
        return self.is_in_front() and accessible.is_active(self._frame)

    def selected(self) -> str:
        """The selected cell, as "B3"."""
        return accessible.text(self._name_box)

    def input(self) -> str:
        """What the input line shows: the selected cell's content, or what is being typed into it."""
        return accessible.text(self._input_line)

    def select(self, typist: Typist, cell: str, seconds: float = PATIENCE) -> None:
        """Goes to a cell by keys, as a user does, and waits until it is there."""
        match = re.fullmatch(r"([A-Z])(\d+)", cell)
        assert match, cell
        right = ["Right"] * (ord(match[1]) - ord("A"))
        down = ["Down"] * (int(match[2]) - 1)
        typist.tap("Control+Home", *right, *down)
        equal(self.selected, cell, "the selected cell", seconds)

    def rest(self) -> None:
        """Waits until it loses no keys any more, after another cell was selected."""

    def content(self, typist: Typist, cell: str) -> str:
        """Selects a cell and reads its content."""
        self.select(typist, cell)
        return self.input()

    def has_menu_item(self, path: list[str]) -> bool:
        """Whether its menu bar has an item with this path of titles, one that opens no further menu."""
        element = accessible.find(self._frame, "menu bar")
        for title in path:
            below = accessible.children(element) if element else []
            element = next((child for child in below if accessible.name(child) == title), None)
        return element is not None and not accessible.children(element)

    def open_menu(self) -> str:
        """The name of the menu that its menu bar has open, or the empty text."""
        bar = accessible.find(self._frame, "menu bar")
        opened = next(filter(accessible.is_selected, accessible.children(bar)), None) if bar else None
        return accessible.name(opened) if opened else ""

    def dialog(self) -> str:
        """The title of its dialog in front, or the empty text."""
        found = self._dialog()
        return accessible.name(found) if found else ""

    def dialog_text(self) -> str:
        """The text of the field that its dialog in front is at, or the empty text."""
        found = self._dialog()
        fields = [field for field in accessible.descendants(found) if accessible.is_focused(field)] if found else []
        return accessible.text(fields[0]) if fields else ""

    def _dialog(self) -> accessible.Element | None:
        return next((window for window in accessible.children(self._root)
                     if accessible.role(window) in ("dialog", "alert") and accessible.is_active(window)), None)

    @abstractmethod
    def _command(self, desktop: PrivateDesktop) -> list[str]:
        """How it is started."""

    @abstractmethod
    def _find_texts(self) -> tuple[accessible.Element, accessible.Element] | None:
        """The name box and the input line, once both are there."""

    def _has_menus(self) -> bool:
        bar = accessible.find(self._frame, "menu bar")
        return bar is not None and any(accessible.children(menu) for menu in accessible.children(bar))


class Gnumeric(Spreadsheet):
    """Gnumeric: the light one, for every run."""

    name = "gnumeric"
    program = "gnumeric"
    desktop_file = "gnumeric.desktop"
    window_class = "gnumeric, Gnumeric"
    window_classes = ["gnumeric"]
    format_cells = ["Format", "Cells", "Format..."]
    delete_rows = ["Edit", "Delete", "Rows"]
    search_dialog = "Control+f"

    def _command(self, desktop: PrivateDesktop) -> list[str]:
        return ["gnumeric"]

    def _find_texts(self) -> tuple[accessible.Element, accessible.Element] | None:
        for bar in accessible.descendants(self._frame):
            if accessible.role(bar) != "tool bar":
                continue
            texts = [item for item in accessible.descendants(bar) if accessible.role(item) == "text"]
            if len(texts) == 2 and "go-jump" in map(accessible.name, accessible.children(texts[0])):
                return texts[0], texts[1]
        return None


class Calc(Spreadsheet):
    """LibreOffice Calc, with its GTK 3 plug-in: it loses keys of its own when they come without a pause."""

    name = "calc"
    program = "soffice"
    desktop_file = "libreoffice-calc.desktop"
    pace = 5
    window_class = "libreoffice-calc"
    window_classes = ["libreoffice-calc", "soffice"]
    format_cells = ["Format", "Cells..."]
    delete_rows = ["Sheet", "Delete Rows"]
    search_dialog = "Control+h"
    hears_in_the_background = False
    keeps_its_class = False

    def _command(self, desktop: PrivateDesktop) -> list[str]:
        return ["soffice", "--calc", "--norestore", "--nologo", "--nofirststartwizard",
                f"-env:UserInstallation=file://{desktop.home}/office"]

    def rest(self) -> None:
        """Waits for the end of Escape's effect, which continues after the next cell is selected and may discard keys
        typed meanwhile."""
        calm(lambda: processor_ticks(self.process), "Calc", 0.3)

    def shown(self, cell: str) -> str:
        """What a cell of the sheet shows, selected or not."""
        found = self.cell(cell)
        return accessible.text(found) if found else ""

    def cell(self, cell: str) -> accessible.Element | None:
        """A cell of the sheet."""
        table = accessible.find(self._frame, "table")
        return accessible.cell(table, int(cell[1:]) - 1, ord(cell[0]) - ord("A")) if table else None

    @classmethod
    @functools.cache
    def version(cls) -> tuple[int, ...]:
        """LibreOffice's version, as (7, 4)."""
        said = subprocess.run([cls.program, "--version"], capture_output=True, text=True, check=False).stdout
        match = re.search(r"LibreOffice (\d+)\.(\d+)", said)
        assert match, said
        return int(match[1]), int(match[2])

    def selected(self) -> str:
        return super().selected() if self._tells_its_texts() else self._selected_cells()

    def input(self) -> str:
        """The content of the input line; if Calc does not expose it, the selected cell's formula or text."""
        if self._tells_its_texts():
            return super().input()
        found = self.cell(self._selected_cells().partition(":")[0] or "A1")
        if not found:
            return ""
        formula = accessible.attribute(found, "Formula")
        return f"={formula.removeprefix('=')}" if formula else accessible.text(found)

    def _selected_cells(self) -> str:
        """The selected range, read from the table: a range of its cells, or the one with the cursor, not far from A1."""
        table = accessible.find(self._frame, "table")
        if not table:
            return ""
        if cells := [accessible.name(cell) for cell in accessible.selected_children(table)]:
            return cells[0] if len(cells) == 1 else f"{cells[0]}:{cells[-1]}"
        near = (accessible.cell(table, row, column) for row in range(10) for column in range(8))
        return next((accessible.name(cell) for cell in near if cell and accessible.is_focused(cell)), "")

    def _tells_its_texts(self) -> bool:
        # Later versions do not expose the name box and the input line on the bus.
        return self.version() < (24, 8)

    def _find_places(self) -> None:
        if self._tells_its_texts():
            super()._find_places()
        else:
            until(lambda: accessible.find(self._frame, "table"), "the sheet's table")

    def _find_texts(self) -> tuple[accessible.Element, accessible.Element] | None:
        bar = accessible.find(self._frame, "tool bar", "Formula Tool Bar")
        name_box = bar and accessible.find(bar, "text")
        line = bar and accessible.find(bar, "panel", "Input line")
        paragraph = line and accessible.find(line, "paragraph")
        return (name_box, paragraph) if name_box and paragraph else None


SPREADSHEETS: dict[str, type[Spreadsheet]] = {"gnumeric": Gnumeric, "calc": Calc}
