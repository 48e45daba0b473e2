"""The status notifier items of the desktop, as a panel reads them from the session bus."""

from typing import Any

from gi.repository import Gio, GLib

_WATCHER = "org.kde.StatusNotifierWatcher"


def items() -> list[str]:
    """The items registered with the watcher; empty without a watcher."""
    return _property(_WATCHER, "/StatusNotifierWatcher", _WATCHER, "RegisteredStatusNotifierItems") or []


def has_host() -> bool:
    """Whether there is a panel that shows them."""
    return bool(_property(_WATCHER, "/StatusNotifierWatcher", _WATCHER, "IsStatusNotifierHostRegistered"))


def title(process: int) -> str:
    """The text of a process's item, from its tool tip; empty while no watcher lists it."""
    name = f"org.kde.StatusNotifierItem-{process}-1"
    owner = _call("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "GetNameOwner",
                  GLib.Variant("(s)", (name,)))
    # Some watchers list an item by its name, others by its connection.
    if not owner or not any(item.startswith((name, owner[0])) for item in items()):
        return ""
    tip = _property(name, "/StatusNotifierItem", "org.kde.StatusNotifierItem", "ToolTip")
    return tip[2] if tip else ""


def rows(process: int) -> list[str]:
    """The rows of its menu as a panel receives them: a title with its special states, or a dash."""
    answer = _call(f"org.kde.StatusNotifierItem-{process}-1", "/MenuBar", "com.canonical.dbusmenu", "GetLayout",
                   GLib.Variant("(iias)", (0, -1, [])))
    return [_describe(properties) for _, properties, _ in answer[1][2]] if answer else []


def _describe(row: dict[str, Any]) -> str:
    if row.get("type") == "separator":
        return "-"
    marks = ("" if row["enabled"] else " (disabled)") + (" (checked)" if row.get("toggle-state") == 1 else "")
    return row["label"].replace("__", "_") + marks


def _property(name: str, path: str, interface: str, wanted: str) -> Any:
    answer = _call(name, path, "org.freedesktop.DBus.Properties", "Get", GLib.Variant("(ss)", (interface, wanted)))
    return answer[0] if answer else None


def _call(name: str, path: str, interface: str, method: str, arguments: GLib.Variant) -> Any:
    bus = Gio.bus_get_sync(Gio.BusType.SESSION)
    try:
        return bus.call_sync(name, path, interface, method, arguments, None, Gio.DBusCallFlags.NO_AUTO_START, 2000)
    except GLib.Error:
        return None
