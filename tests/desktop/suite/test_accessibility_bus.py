"""Kills the accessibility bus. Spreadsheets do not connect to a new one, so the desktop is useless afterwards."""

import os
import signal

import gi

gi.require_version("Gio", "2.0")
from gi.repository import Gio, GLib  # noqa: E402

from harness.waiting import until  # noqa: E402

from .test_faults import MENU, WITH_MENU, DesktopTest  # noqa: E402


class AccessibilityBus(DesktopTest):
    document = WITH_MENU

    def test_without_it_menus_fail_and_everything_else_works(self) -> None:
        self.typist.tap("Option", "e")
        self.keyvora.log.wait(f"{MENU} (menu)")
        self.dismiss()
        self.kill_bus()
        # Gnumeric does not survive a key while there is no bus at all, keyvora or not: a new one is started.
        until(self.new_bus, "a new accessibility bus")
        self.typist.tap("Option", "e")
        self.keyvora.log.wait(f"{MENU} FAILED: no menu bar")
        self.fire()
        self.keyvora.log.wait("HF  Type x (keystroke)")
        self.fire()
        self.keyvora.log.wait("HF  Type x (keystroke)", 2)
        self.assertEqual(0, self.keyvora.stop())

    def kill_bus(self) -> None:
        launcher = int(self.session("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                                    "GetConnectionUnixProcessID", GLib.Variant("(s)", ("org.a11y.Bus",))))
        for task in [launcher, *self.children_of(launcher)]:
            os.kill(task, signal.SIGKILL)

    def new_bus(self) -> bool:
        """Asks for a bus, which starts one; not before it is known that the former has ended."""
        try:
            return bool(self.session("org.a11y.Bus", "/org/a11y/bus", "org.a11y.Bus", "GetAddress"))
        except GLib.Error:
            return False

    @staticmethod
    def children_of(process: int) -> list[int]:
        with open(f"/proc/{process}/task/{process}/children", encoding="ascii") as listed:
            return [int(child) for child in listed.read().split()]

    @staticmethod
    def session(name: str, path: str, interface: str, method: str, arguments: GLib.Variant | None = None) -> int | str:
        bus = Gio.bus_get_sync(Gio.BusType.SESSION, None)
        answer = bus.call_sync(name, path, interface, method, arguments, None, Gio.DBusCallFlags.NONE, 5000, None)
        return answer.unpack()[0]
