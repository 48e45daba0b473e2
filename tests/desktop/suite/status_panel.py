"""The status item in a panel for status notifier items: its picture, its menus, and the end of the panel.

Run with --panel. Leaves pictures of every state in the folder of --pictures, for a person to look at.
"""

import signal
from typing import ClassVar

from harness import notifier, process, x11
from harness.panel_menu import PanelMenu
from harness.picture import Picture
from harness.private_desktop import PrivateDesktop
from harness.status_menu import SEPARATOR, StatusMenu
from harness.waiting import calm, equal, stays, until

from .desktop_test import DesktopTest
from .test_menu import AT_LAUNCH, LONGER

# What is drawn takes its time on a busy machine.
PATIENCE = 60

# The rows between the first, which changes, and the version.
COMMANDS = [SEPARATOR, "Edit mappings.json", "Reload mappings", "Open Accessibility settings", "Show log", SEPARATOR,
            "Launch at Login", "Check for Updates…"]

# Themes that GTK has in itself.
LIGHT, DARK = "Adwaita", "HighContrastInverse"

# The number of the row "Reload mappings" among those that can be chosen.
RELOAD = 2


class XSettings:
    """The theme and scale of programs that use GTK, as a settings daemon gives them."""

    def __init__(self, desktop: PrivateDesktop) -> None:
        self._file = desktop.folder / "xsettings"
        self._write(LIGHT, 1)
        self._daemon = desktop.children.start(["xsettingsd", "-c", str(self._file)])
        until(lambda: process.catches(self._daemon.pid, signal.SIGHUP), "xsettingsd", PATIENCE)

    def set(self, theme: str, scale: int) -> None:
        """Changes both."""
        self._write(theme, scale)
        self._daemon.send_signal(signal.SIGHUP)

    def _write(self, theme: str, scale: int) -> None:
        self._file.write_text(f'Net/ThemeName "{theme}"\nGdk/WindowScalingFactor {scale}\n')


class StatusPanel(DesktopTest):
    document = LONGER
    # The panel's picture without an item.
    empty: ClassVar[Picture]

    def setUp(self) -> None:
        assert self.environment.panel, "these tests need --panel"
        self.panel = self.environment.panel
        x11.point(400, 400)  # over the item it brings up a tip, some time later
        if not hasattr(StatusPanel, "empty"):
            StatusPanel.empty = Picture(self.panel.area)
        # Some panels take a while to remove an item.
        until(lambda: not Picture(self.panel.area).difference(self.empty), "the panel to be empty", PATIENCE)
        super().setUp()
        self.place = self.find_item()
        self.idle = Picture(self.panel.area)

    def find_item(self) -> x11.Area:
        """The area in which the panel has drawn the item."""
        def drawn() -> x11.Area | None:
            changed = Picture(self.panel.area).difference(self.empty)
            return changed if changed and changed.width > 5 and changed.height > 5 else None

        until(drawn, "the item in the panel", PATIENCE)
        place = calm(drawn, "the item", 0.5, PATIENCE)
        assert place
        return place

    def await_new_look(self, before: Picture, name: str, area: x11.Area | None = None) -> Picture:
        """Waits until the picture of the panel, or of `area`, has changed and is stable, and saves it."""
        seen = area or self.panel.area
        until(lambda: Picture(seen).difference(before), f"{name} to be drawn", PATIENCE)
        calm(lambda: Picture(seen), f"the panel with {name}", 0.3, PATIENCE)
        self.keep_picture(name, seen)
        return Picture(seen)

    def keep_picture(self, name: str, area: x11.Area | None = None) -> None:
        self.desktop.screenshot(self.environment.pictures / f"{self.panel.name}-{name}.png", area)

    def panel_menu(self) -> PanelMenu:
        """The panel's own menu, opened."""
        menu = PanelMenu(self.keyvora, self.typist, self.panel.menu_area)
        menu.open(self.place, 3 if self.panel.asks_for_the_items_menu else 1)
        return menu

    def items_menu(self) -> StatusMenu:
        """The item's own menu, which it opens when it is clicked, if the panel allows that."""
        if not self.panel.asks_for_the_items_menu:
            self.skipTest("this panel shows no other menu than its own")
        menu = StatusMenu(self.keyvora)
        x11.click(self.place)
        until(menu.is_open, "the item's menu", PATIENCE)
        return menu

    def expect_rows(self, rows: list[str], first: str) -> None:
        self.assertEqual([f"{first} (disabled)", *COMMANDS], rows[:9])
        self.assertTrue(rows[9].startswith("keyvora ") and rows[9].endswith(" (disabled)"), rows[9])
        self.assertEqual([SEPARATOR, "Quit keyvora"], rows[10:])

    def expect_reload(self, count: int) -> None:
        self.keyvora.log.wait("mappings reloaded, 5 sequences", count, PATIENCE)

    def test_idle_armed_and_letters_are_seen(self) -> None:
        self.keep_picture("idle", self.panel.area)
        self.typist.tap("Option")
        armed = self.await_new_look(self.idle, "armed")
        self.typist.tap("q")
        one = self.await_new_look(armed, "letter")
        self.typist.tap("r")
        self.await_new_look(one, "letters")
        equal(self.keyvora.status, "⌥ QR", "the title")
        self.typist.tap("Escape")
        until(lambda: not Picture(self.panel.area).difference(self.idle), "the item as it was", PATIENCE)
        equal(self.keyvora.status, "⌥", "the title")

    def test_a_click_opens_the_items_menu_and_another_chooses(self) -> None:
        menu = self.items_menu()
        self.expect_rows(menu.rows(), AT_LAUNCH)
        self.keep_picture("menu-of-the-item")
        menu.click("Reload mappings")
        self.expect_reload(1)
        menu.wait_until_closed()

    def test_letters_choose_rows_of_the_items_menu(self) -> None:
        for count, key in enumerate(("Control+r", "r"), start=1):
            menu = self.items_menu()
            self.typist.tap(key)
            self.expect_reload(count)
            menu.wait_until_closed()
        self.assertEqual("", self.sheet.input(), "no key of the menu reaches the spreadsheet")

    def test_a_click_chooses_a_row_of_the_panels_menu(self) -> None:
        menu = self.panel_menu()
        self.expect_rows(menu.rows(), AT_LAUNCH)
        self.keep_picture("menu-of-the-panel")
        menu.click(RELOAD)
        self.expect_reload(1)
        menu.wait_until_closed()

    def test_keys_choose_a_row_of_the_panels_menu(self) -> None:
        menu = self.panel_menu()
        menu.choose_by_keys(RELOAD)
        self.expect_reload(1)
        menu.wait_until_closed()

    def test_an_open_menu_follows_a_reload(self) -> None:
        menu = self.panel_menu()
        before = menu.picture()
        self.keyvora.write(LONGER)
        self.expect_reload(1)
        if self.panel.keeps_a_rebuilt_menu:
            menu.await_other_rows(before)
        else:
            menu.wait_until_closed()
            menu = self.panel_menu()
        self.expect_rows(menu.rows(), "5 sequences, ready")
        self.keep_picture("menu-rebuilt")
        menu.choose_by_keys(RELOAD)
        self.expect_reload(2)

    def test_it_comes_back_with_the_panel(self) -> None:
        self.panel.kill()
        equal(self.keyvora.status, "", "the title without a panel")
        self.panel.start()
        equal(self.keyvora.status, "⌥", "the title in the new panel", PATIENCE)
        self.place = self.find_item()
        menu = self.panel_menu()
        self.expect_rows(menu.rows(), AT_LAUNCH)
        menu.close()
        self.fire()
        self.keyvora.log.wait("HF  Type x (keystroke)")

    def test_with_another_theme_and_scale_it_is_drawn_anew(self) -> None:
        if not self.panel.follows_x_settings:
            self.skipTest("this panel takes its theme and scale at its start")
        area = self.panel.area._replace(height=2 * self.panel.area.height)
        settings = XSettings(self.desktop)
        self.addCleanup(settings.set, LIGHT, 1)
        for theme, scale in ((DARK, 1), (DARK, 2), (LIGHT, 2)):
            with self.subTest(theme=theme, scale=scale):
                self.expect_new_look(settings, theme, scale, area)

    def expect_new_look(self, settings: XSettings, theme: str, scale: int, area: x11.Area) -> None:
        before = Picture(area)
        settings.set(theme, scale)
        idle = self.await_new_look(before, f"{theme}-{scale}-idle", area)
        self.typist.tap("Option", "q")
        self.await_new_look(idle, f"{theme}-{scale}-letter", area)
        self.typist.tap("Escape")
        until(lambda: not Picture(area).difference(idle), "the item as it was", PATIENCE)

    def test_it_is_never_in_a_tray_as_well(self) -> None:
        if self.panel.is_tray:
            stays(self.keyvora.status_window, "", "the item in the panel's tray", 1)
            return
        self.desktop.start_tray()
        self.addCleanup(lambda: self.desktop.children.named("trayer").kill())
        stays(self.keyvora.status_window, "", "the item in the tray", 1)
        self.panel.kill()
        until(self.keyvora.status_window, "the item in the tray", PATIENCE)
        self.panel.start()
        equal(self.keyvora.status_window, "", "the item in the tray", PATIENCE)
        equal(lambda: notifier.title(self.keyvora.process_id()), "⌥", "the item in the panel", PATIENCE)
