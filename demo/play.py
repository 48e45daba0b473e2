#!/usr/bin/python3
"""Plays scenario.txt on a private desktop and prints step by step what happened.

Exits with 0 only if everything that the scenario expects happened. See `./run --demo`.
"""

import argparse
import os
import re
import sys
import time
from pathlib import Path

HERE = Path(__file__).resolve().parent
sys.path.insert(0, str(HERE.parent / "tests" / "desktop"))

from harness.keyvora import Keyvora  # noqa: E402
from harness.panels import XfcePanel  # noqa: E402
from harness.picture import Picture  # noqa: E402
from harness.private_desktop import PrivateDesktop  # noqa: E402
from harness.spreadsheet import Gnumeric  # noqa: E402
from harness.status_menu import SEPARATOR, StatusMenu  # noqa: E402
from harness.typist import Typist  # noqa: E402
from harness.waiting import Timeout, calm, equal, stays, until  # noqa: E402
from harness.x11 import Area  # noqa: E402

# The desktop's size, and the part of its panel in which the status item shows.
WIDTH, HEIGHT = 1024, 640
PANEL = Area(WIDTH // 2, 0, WIDTH // 2, XfcePanel.area.height)

# The margin around the menu in its picture, in pixels.
AROUND_MENU = 24

# The document that a new user of this spreadsheet gets.
DOCUMENT = HERE.parent / "resources" / "gnumeric.json"

# How long it waits for the next letter, in milliseconds: longer than a screenshot takes on a busy machine.
TIMEOUT = 4000

# The cells shown before the scenario.
CELLS = [[f"{column}{row}" for column in "ABCDEF"] for row in range(1, 5)]


class Player:
    """Carries out the scenario line by line."""

    def __init__(self, desktop: PrivateDesktop, sheet: Gnumeric, typist: Typist, keyvora: Keyvora,
                 pictures: Path) -> None:
        self._desktop = desktop
        self._sheet = sheet
        self._typist = typist
        self._keyvora = keyvora
        self._pictures = pictures
        self._panel = Picture(PANEL)  # without the status item
        self._shown = 0  # records of the log already printed
        self._seen = 0  # records of the log already matched by the scenario
        self._steps = 0

    def play(self, line: str) -> None:
        """Plays one line. Raises AssertionError if an expected effect does not happen."""
        verb, _, rest = line.partition(" ")
        {"step": self._step, "cell": self._cell, "keys": self._keys, "add": self._add, "see": self._see,
         "menu": self._menu, "picture": self._picture}[verb](rest)
        self.show_log()

    def show_log(self) -> None:
        """Prints the records that were written since the last time."""
        messages = self._keyvora.log.messages()
        for message in messages[self._shown:]:
            print(f"      log     {message}")
        self._shown = len(messages)

    def show_cells(self, title: str) -> None:
        """Prints what the cells hold."""
        print(f"\n{title}")
        for row in CELLS:
            print("      " + "".join(f"{self._sheet.content(self._typist, cell):<12}" for cell in row).rstrip())

    def _step(self, title: str) -> None:
        self._steps += 1
        print(f"\n{self._steps}. {title}")

    def _cell(self, cell: str) -> None:
        self._sheet.select(self._typist, cell)
        print(f"      cell    {cell} holds {self._sheet.input()!r}")

    def _keys(self, keys: str) -> None:
        print(f"      keys    {keys}")
        for key in keys.split():
            name, _, times = key.partition("*")
            self._typist.tap(*[name] * int(times or 1))

    def _add(self, sequence: str) -> None:
        print(f"      add     {sequence}")
        document = self._keyvora.mappings.read_text()
        end = document.rindex("]")
        beside = self._keyvora.mappings.with_suffix(".saving")
        beside.write_text(f"{document[:end].rstrip()},\n    {sequence}\n  {document[end:]}")
        beside.rename(self._keyvora.mappings)

    def _see(self, what: str) -> None:
        kind, _, text = what.partition(" ")
        match kind:
            case "status":
                equal(lambda: self._keyvora.status().strip(), text, "the status")
                print(f"      status  {text}")
            case "log":
                until(lambda: self._passes(text), f"{text!r} in the log", 10, seen=self._keyvora.log.messages)
            case "cell":
                equal(self._sheet.input, text, "the cell")
                print(f"      cell    {self._sheet.selected()} now holds {text!r}")
            case "still":
                equal(self._sheet.input, text, "the cell")  # a busy spreadsheet reads the keys later
                stays(self._sheet.input, text, "the cell", 0.3)
                print(f"      cell    {self._sheet.selected()} still holds {text!r}")
            case "dialog":
                equal(self._sheet.dialog, text, "the dialog")
                until(lambda: bool(text) or self._sheet.is_in_front(), "the spreadsheet in front again")
                print(f"      dialog  {text or '(closed)'}")
            case "item":
                until(lambda: self._sheet.has_menu_item(text.split(" > ")), f"the menu item {text}")
                print(f"      item    {text}")
            case _:
                raise ValueError(f"cannot see {kind}")

    def _passes(self, text: str) -> bool:
        """Whether one of the records after the last matched one is this; if so, continues after it."""
        messages = self._keyvora.log.messages()
        for number in range(self._seen, len(messages)):
            if messages[number] == text or text.endswith("...") and messages[number].startswith(text[:-3]):
                self._seen = number + 1
                return True
        return False

    def _menu(self, name: str) -> None:
        menu = StatusMenu(self._keyvora)
        for row in menu.open(self._item()):
            print(f"      menu    {'' if row == SEPARATOR else row}")
        x, y, width, height = menu.area()
        seen = Area(max(0, x - AROUND_MENU), 0, width + 2 * AROUND_MENU, y + height + AROUND_MENU)
        print(f"      picture {self._desktop.screenshot(self._pictures / f'{name}.png', seen)}")
        self._typist.tap("Escape")
        menu.wait_until_closed()

    def _item(self) -> Area:
        """Where the panel shows the status item, once it has drawn it."""
        item = until(lambda: calm(lambda: Picture(PANEL), "the panel", 0.5).difference(self._panel),
                     "the status item in the panel")
        assert item
        return item

    def _picture(self, name: str) -> None:
        self._item()
        print(f"      picture {self._desktop.screenshot(self._pictures / f'{name}.png')}")


def main() -> int:
    parser = argparse.ArgumentParser(description="Plays the demonstration.")
    parser.add_argument("--keyvora", type=Path, required=True)
    parser.add_argument("--typist", type=Path, required=True)
    parser.add_argument("--pictures", type=Path, required=True, help="the folder for screenshots")
    arguments = parser.parse_args()
    begin = time.monotonic()
    print("A private desktop: nothing of your session is used. The spreadsheet is gnumeric, in Excel's place, with\n"
          "the document that keyvora brings for it, changed only in that it waits 4 seconds for a letter;\n"
          "osascript is a stand-in that keeps the scripts it is given and runs none.")
    with PrivateDesktop(size=f"{WIDTH}x{HEIGHT}", tray=False) as desktop:
        XfcePanel(desktop.children, desktop.home).start()
        scripts = desktop.folder / "scripts.txt"
        os.environ["KEYVORA_DEMO_SCRIPTS"] = str(scripts)
        sheet = Gnumeric(desktop, str(HERE / "sales.csv"))
        typist = Typist(desktop.children, arguments.typist)
        keyvora = Keyvora(desktop, arguments.keyvora)
        keyvora.mappings.parent.mkdir(parents=True)
        keyvora.mappings.write_text(re.sub(r'("timeoutMilliseconds": )\d+', rf"\g<1>{TIMEOUT}", DOCUMENT.read_text(), count=1))
        player = Player(desktop, sheet, typist, keyvora, arguments.pictures)
        player.show_cells("The cells before:")
        print("\nkeyvora starts")
        try:
            keyvora.start(extra_path=HERE)
            player.show_log()
            for line in (HERE / "scenario.txt").read_text().splitlines():
                if line and not line.startswith("#"):
                    player.play(line)
        except (Timeout, AssertionError) as failure:
            player.show_log()
            picture = desktop.screenshot(arguments.pictures / "failure.png")
            print(f"\nThis did not happen: {failure}\nThe screen then: {picture}\n"
                  f"keyvora's standard error:\n{keyvora.console.read_text(errors='replace')}")
            return 1
        print("\nWhat the stand-in for osascript was given:")
        print("".join(f"      {line}\n" for line in scripts.read_text().splitlines()))
        status = keyvora.stop()
        print(f"keyvora ended with status {status}. Everything happened, in {time.monotonic() - begin:.0f} s; "
              f"screenshots are in {arguments.pictures}")
        return status


if __name__ == "__main__":
    sys.exit(main())
