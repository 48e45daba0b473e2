"""Properties of the display's windows, and the mouse, through X's command-line tools."""

import re
import subprocess
from typing import NamedTuple


class Area(NamedTuple):
    """A rectangle of the screen, in pixels from its upper left."""

    x: int
    y: int
    width: int
    height: int


def root_property(name: str) -> str:
    """The text of a property of the root window after its type; empty while it is not set."""
    return window_property("-root", name)


def window_property(window: str, name: str) -> str:
    """The text of one property of a window (an id, or "-root"); empty while it is not set, or for no window."""
    if not window:
        return ""  # xprop would wait for a click
    which = [window] if window == "-root" else ["-id", window]
    answer = _output(["xprop", *which, "-notype", name])
    _, found, value = answer.partition("=") if "=" in answer else answer.partition("#")
    return value.strip() if found else ""


def windows_of_class(name: str) -> list[str]:
    """The ids of all windows, managed or not, whose class or instance is `name`."""
    tree = _output(["xwininfo", "-root", "-tree"])
    return [match[1] for match in re.finditer(r'^\s*(0x[0-9a-f]+) .*?: \((.*?)\)', tree, re.MULTILINE)
            if f'"{name}"' in match[2]]


def active_window() -> str:
    """The id of the active window, or the empty text."""
    match = re.search(r"0x[0-9a-f]+", root_property("_NET_ACTIVE_WINDOW"))
    return match[0] if match and match[0] != "0x0" else ""


def active_class() -> str:
    """Instance and class of the active window, as in `gnumeric, Gnumeric`."""
    window = active_window()
    return window_property(window, "WM_CLASS").replace('"', "") if window else ""


def window_title(window: str) -> str:
    """A window's title."""
    for name in ("_NET_WM_NAME", "WM_NAME"):
        answer = _output(["xprop", "-id", window, "-notype", "-f", name, "8u", name])
        if match := re.search(r'= "(.*)"', answer, re.DOTALL):
            return match[1]
    return ""


def window_area(window: str) -> Area | None:
    """A window's area on the screen; None when it was closed, or the id is empty."""
    if not window:
        return None  # xwininfo would wait for a click
    answer = _output(["xwininfo", "-id", window])
    numbers = [re.search(rf"{label}: +(-?\d+)", answer) for label in
               ("Absolute upper-left X", "Absolute upper-left Y", "Width", "Height")]
    found = [int(number[1]) for number in numbers if number]
    return Area(*found) if len(found) == 4 else None


def is_visible(window: str) -> bool:
    """Whether a window is on the screen."""
    return "Map State: IsViewable" in _output(["xwininfo", "-id", window])


def activate(window: str) -> None:
    """Requests that the window manager activates a window, as a task bar does."""
    subprocess.run(["xdotool", "windowactivate", window], check=True)


def close(window: str) -> None:
    """Closes the window in front with the mouse, by the button at the right end of its title."""
    area = window_area(window)
    assert area
    title = int(window_property(window, "_NET_FRAME_EXTENTS").split(",")[2])
    click(Area(area.x + area.width - title, area.y - title, title, title))


def click(area: Area, button: int = 1) -> None:
    """Clicks the middle of an area, as a user does with the mouse."""
    x, y = area.x + area.width // 2, area.y + area.height // 2
    subprocess.run(["xdotool", "mousemove", str(x), str(y), "click", str(button)], check=True)


def point(x: int, y: int) -> None:
    """Moves the mouse's pointer."""
    subprocess.run(["xdotool", "mousemove", str(x), str(y)], check=True)


def _output(command: list[str]) -> str:
    result = subprocess.run(command, capture_output=True, check=False)
    return result.stdout.decode(errors="replace") if result.returncode == 0 else ""
