"""The base of every end-to-end test."""

import shutil
import time
import unittest
from dataclasses import dataclass
from pathlib import Path
from typing import ClassVar

from harness.keyvora import Document, Keyvora
from harness.panels import Panel
from harness.private_desktop import PrivateDesktop
from harness.process import children, switches
from harness.spreadsheet import Spreadsheet
from harness.typist import Typist
from harness.waiting import PATIENCE, calm, equal, until
from harness.x11 import active_class

# The document of most tests: a sequence that types a letter, an ambiguous pair, and a script. It waits for a letter for
# longer than a busy machine takes between two keys: where a test wants the time-out, it says so.
DOCUMENT: Document = {
    "version": 1,
    "timeoutMilliseconds": 600_000,
    "tabs": {},
    "sequences": [
        {"keys": "HF", "name": "Type x", "action": {"kind": "keystroke", "key": "x"}},
        {"keys": "M", "name": "Type m", "action": {"kind": "keystroke", "key": "m"}},
        {"keys": "MM", "name": "Type n", "action": {"kind": "keystroke", "key": "n"}},
        {"keys": "S", "name": "Script", "action": {"kind": "applescript", "script": "activate"}},
    ],
}

ARMED = "armed: Option tapped in Excel"

# For how long a key is held while the program does not answer, in seconds.
SHORTEST_HOLD = 1.0


@dataclass
class Environment:
    """The runner's arguments, and the desktop and programs that it started."""

    desktop: PrivateDesktop
    keyvora: Path
    typist: Path
    sheet: Spreadsheet | None
    # The panel with the status item; a system tray if None.
    panel: Panel | None = None
    # The folder for pictures for people.
    pictures: Path = Path("pictures")


class DesktopTest(unittest.TestCase):
    """A new keyvora with `document`, and an empty cell selected in the active spreadsheet."""

    environment: ClassVar[Environment]
    document: ClassVar[Document] = DOCUMENT
    # Whether setUp starts keyvora. A test that must do something before calls `self.start()` itself.
    starts_keyvora: ClassVar[bool] = True

    _columns_used: ClassVar[int] = 0

    def setUp(self) -> None:
        self.desktop = self.environment.desktop
        self.addCleanup(self.desktop.set_layout, "us")
        shutil.rmtree(self.desktop.home / "Library", ignore_errors=True)
        self.keyvora = Keyvora(self.desktop, self.environment.keyvora)
        self.addCleanup(self.end)
        if self.environment.sheet:
            self.typist = self.new_typist()
        self.addCleanup(self.dismiss)
        self.keyvora.write(self.document)
        if self.environment.sheet:
            self.sheet = self.environment.sheet
            self.typist.pace(self.sheet.pace)
            self.new_cell()
        if self.starts_keyvora:
            self.start()

    def start(self, extra_path: Path | None = None) -> None:
        """Starts keyvora and waits until it works."""
        self.keyvora.start(extra_path)

    def end(self) -> None:
        """Ends keyvora, which must still be running and exit with 0. A sanitizer's report changes the status."""
        self.assertEqual(0, self.keyvora.stop(), "keyvora's exit status")

    def new_typist(self, **options: str) -> Typist:
        """Another typist, for this test."""
        typist = Typist(self.desktop.children, self.environment.typist, **options)
        self.addCleanup(typist.end)
        return typist

    def new_cell(self) -> None:
        """Selects an empty cell in a new column, where no completion interferes."""
        DesktopTest._columns_used += 1
        self.typist.tap("Escape")
        # A dialog of the previous test may still be closing, and would get the next keys.
        until(self.sheet.is_in_front, "the spreadsheet in front", seen=active_class)
        self.sheet.select(self.typist, f"{chr(ord('A') + self._columns_used % 26)}1")
        self.sheet.rest()

    def dismiss(self) -> None:
        """Leaves the cell, a menu or a dialog without changing anything."""
        if self.environment.sheet:
            self.typist.tap("Escape", "Escape")

    def fire(self) -> None:
        """Types the sequence that types the letter x."""
        self.typist.tap("Option", "h", "f")

    def expect_input(self, text: str, seconds: float = PATIENCE) -> None:
        """Waits until the cell's text is exactly this."""
        equal(self.sheet.input, text, "the cell's text", seconds)

    def await_rest(self) -> None:
        """Waits until the program and its tap are idle: they have noticed all that happened."""
        main = self.keyvora.process_id()
        calm(lambda: sum(map(switches, (main, *children(main)))), "the program", 0.3)

    def expect_no_key_is_held(self, text: str, *keys: str) -> str:
        """Types keys behind the cell's text: they arrive sooner than one that is held. Gives what the cell holds then."""
        for _ in range(10):  # on a busy machine some are late for other reasons
            text += "".join(key for key in keys if len(key) == 1)
            begin = time.monotonic()
            self.typist.tap(*keys)
            self.expect_input(text)
            if time.monotonic() - begin < SHORTEST_HOLD:
                return text
        self.fail(f"a key is held: {keys}")

    def expect_everything_works(self) -> None:
        """One sequence fires and plain letters arrive, so nothing is stuck."""
        self.new_cell()
        fired = self.keyvora.log.count("HF  Type x (keystroke)")
        self.typist.tap("k")
        self.fire()
        self.typist.tap("a", "b")
        self.expect_input("kxab")
        self.keyvora.log.wait("HF  Type x (keystroke)", fired + 1)
        self.assertEqual("⌥", self.keyvora.status())
