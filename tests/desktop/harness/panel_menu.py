"""The item's menu as a panel draws it. Not every panel exposes it to assistive tools, so it is checked by pictures, by
the rows that the panel received, and by the effect of choosing a row.
"""

from . import notifier, x11
from .keyvora import Keyvora
from .picture import Picture
from .typist import Typist
from .waiting import calm, until
from .x11 import Area

# Every menu is higher than this.
_LEAST_HEIGHT = 100

_PATIENCE = 60


class PanelMenu:
    """The menu of a running keyvora's item, which opens in this part of the screen."""

    def __init__(self, keyvora: Keyvora, typist: Typist, area: Area) -> None:
        self._keyvora = keyvora
        self._typist = typist
        self._area = area
        self._closed = Picture(area)

    def open(self, item: Area, button: int) -> None:
        """Clicks the item and waits until a menu is drawn."""
        self._closed = self._rests()
        x11.click(item, button)
        until(self.is_open, f"the panel's menu of button {button}", _PATIENCE)
        self._rests()

    def is_open(self) -> bool:
        """Whether it is drawn."""
        changed = Picture(self._area).difference(self._closed)
        return changed is not None and changed.height > _LEAST_HEIGHT

    def rows(self) -> list[str]:
        """The rows that the panel received, in the form of StatusMenu."""
        return notifier.rows(self._keyvora.process_id())

    def await_other_rows(self, before: Picture) -> None:
        """Waits until the open menu looks different."""
        until(lambda: Picture(self._area).difference(before), "the open menu to change", _PATIENCE)
        self._rests()

    def picture(self) -> Picture:
        """A picture of it."""
        return Picture(self._area)

    def choose_by_keys(self, number: int) -> None:
        """Chooses one of the enabled rows, the first of which is 1, by the arrow keys."""
        for _ in range(number):
            self._step_down()
        self._typist.tap("Return")

    def click(self, number: int) -> None:
        """Clicks one of the first enabled rows, between which there is no separator."""
        first = self._step_down()
        x11.click(Area(first.x, first.y + (number - 1) * first.height, first.width, first.height))

    def close(self) -> None:
        """Closes it without choosing."""
        self._typist.tap("Escape")
        self.wait_until_closed()

    def wait_until_closed(self) -> None:
        """Waits until it is invisible."""
        until(lambda: not self.is_open(), "the panel's menu to close", _PATIENCE)

    def _step_down(self) -> Area:
        """Goes to the next enabled row; returns where something changed, the first time the row."""
        before = Picture(self._area)
        self._typist.tap("Down")
        until(lambda: Picture(self._area).difference(before), "the next row to be marked", _PATIENCE)
        changed = self._rests().difference(before)
        assert changed
        return changed

    def _rests(self) -> Picture:
        return calm(lambda: Picture(self._area), "the panel's menu", 0.2, _PATIENCE)
