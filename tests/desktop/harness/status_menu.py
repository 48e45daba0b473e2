"""The menu of keyvora's status item: opened with the mouse, read by assistive technology, chosen from."""

from . import accessible, x11
from .keyvora import Keyvora
from .waiting import until

SEPARATOR = "-"


class StatusMenu:
    """The menu of a running keyvora."""

    def __init__(self, keyvora: Keyvora) -> None:
        self._keyvora = keyvora
        accessible.connect()

    def open(self, item: x11.Area | None = None) -> list[str]:
        """Clicks the status item, in the tray or at this place, and waits for the menu. Returns its rows."""
        x11.click(item or self.item_area())
        until(self.is_open, "the menu to open")
        return self.rows()

    def is_open(self) -> bool:
        """Whether the menu can be seen."""
        return self._menu() is not None

    def wait_until_closed(self) -> None:
        """Waits until it is invisible."""
        until(lambda: not self.is_open(), "the menu to close")

    def rows(self) -> list[str]:
        """The open menu's rows from above: a title with "(disabled)" or "(checked)" after it, or SEPARATOR."""
        return [self._describe(row) for row in self._elements()]

    def area(self) -> x11.Area:
        """Where the open menu is."""
        menu = self._menu()
        assert menu, "the menu is not open"
        return accessible.area(menu)

    def click(self, title: str) -> None:
        """Clicks the row of this title in the open menu."""
        row = next(row for row in self._elements() if accessible.name(row) == title)
        x11.click(accessible.area(row))

    def item_area(self) -> x11.Area:
        """Where the status item is, once the tray has found its place for it."""
        seen: list[x11.Area | None] = [None] * 3

        def rests() -> x11.Area | None:
            seen[:] = [*seen[1:], x11.window_area(self._keyvora.status_window())]
            return seen[-1] if len(set(seen)) == 1 else None

        area = until(rests, "the status item at rest in the tray", seen=lambda: seen)
        assert area
        return area

    def _menu(self) -> accessible.Element | None:
        root = accessible.application(self._keyvora.process_id())
        menu = root and accessible.find(root, "menu")
        return menu if menu and accessible.is_showing(menu) else None

    def _elements(self) -> list[accessible.Element]:
        menu = self._menu()
        return accessible.children(menu) if menu else []

    @staticmethod
    def _describe(row: accessible.Element) -> str:
        if accessible.role(row) == "separator":
            return SEPARATOR
        marks = (" (disabled)" if not accessible.is_enabled(row) else "") + (
            " (checked)" if accessible.is_checked(row) else "")
        return accessible.name(row) + marks
