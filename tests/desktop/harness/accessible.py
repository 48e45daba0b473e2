"""Other programs' accessible trees in their present state: properties that change are read past the library's cache.

Do not set an empty cache mask in the library instead: the next read would then wait for ever (at-spi2-core 2.46).
"""

from collections.abc import Iterator
from typing import TypeAlias

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, GLib  # noqa: E402

from .x11 import Area  # noqa: E402

Element: TypeAlias = Atspi.Accessible


def connect() -> None:
    """Joins the accessibility bus of this process's desktop."""
    Atspi.init()
    Atspi.set_timeout(2000, 5000)


def application(process: int) -> Element | None:
    """The application that runs as `process`, or None while it is not on the bus."""
    for root in children(Atspi.get_desktop(0)):
        try:
            if root.get_process_id() == process:
                return root
        except GLib.Error:
            continue
    return None


def children(element: Element) -> list[Element]:
    """The present children, without those that disappear meanwhile."""
    try:
        found = [element.get_child_at_index(index) for index in range(element.get_child_count())]
    except GLib.Error:
        return []
    return [child for child in found if child]


def descendants(element: Element, deepest: int = 20) -> Iterator[Element]:
    """All descendants of an element, depth first, without the content of tables, which have too many cells."""
    for child in children(element):
        yield child
        if deepest > 0 and role(child) != "table":
            yield from descendants(child, deepest - 1)


def role(element: Element) -> str:
    """The element's role: "menu item", "push button"."""
    try:
        return element.get_role_name()
    except GLib.Error:
        return ""


def name(element: Element) -> str:
    """The element's name, such as its title."""
    try:
        return element.get_name() or ""
    except GLib.Error:
        return ""


def is_active(element: Element) -> bool:
    """Whether a window has the keyboard focus."""
    return _has_state(element, Atspi.StateType.ACTIVE)


def is_focused(element: Element) -> bool:
    """Whether keys go to this part of the window."""
    return _has_state(element, Atspi.StateType.FOCUSED)


def is_selected(element: Element) -> bool:
    """Whether a menu of a menu bar is the one that is open."""
    return _has_state(element, Atspi.StateType.SELECTED)


def is_showing(element: Element) -> bool:
    """Whether it can be seen."""
    return _has_state(element, Atspi.StateType.SHOWING)


def is_enabled(element: Element) -> bool:
    """Whether it is enabled."""
    return _has_state(element, Atspi.StateType.SENSITIVE)


def is_checked(element: Element) -> bool:
    """Whether it has a check mark."""
    return _has_state(element, Atspi.StateType.CHECKED)


def area(element: Element) -> Area:
    """Where it is on the screen."""
    extents = element.get_component_iface().get_extents(Atspi.CoordType.SCREEN)
    return Area(extents.x, extents.y, extents.width, extents.height)


def text(element: Element) -> str:
    """The element's text."""
    try:
        # Called through the interface's class, because newer bindings have another get_text() on every element.
        return Atspi.Text.get_text(element, 0, Atspi.Text.get_character_count(element)) or ""
    except GLib.Error:
        return ""


def cell(table: Element, row: int, column: int) -> Element | None:
    """A cell of a table; None for one that it does not have."""
    try:
        return table.get_table_iface().get_accessible_at(row, column)
    except GLib.Error:
        return None


def selected_children(element: Element, most: int = 100) -> list[Element]:
    """The children that are selected; none when there are more than `most`."""
    try:
        count = Atspi.Selection.get_n_selected_children(element)
        found = [Atspi.Selection.get_selected_child(element, index) for index in range(count if count <= most else 0)]
    except GLib.Error:
        return []
    return [child for child in found if child]


def attribute(element: Element, key: str) -> str:
    """An attribute of the element; empty when it does not have it."""
    try:
        return (element.get_attributes() or {}).get(key, "")
    except GLib.Error:
        return ""


def find(element: Element, wanted: str, title: str | None = None) -> Element | None:
    """The first descendant of a role and, if given, a name."""
    for found in descendants(element):
        if role(found) == wanted and (title is None or name(found) == title):
            return found
    return None


def dump(element: Element, depth: int = 0, deepest: int = 8) -> str:
    """The tree as indented lines, for debugging."""
    line = f"{'  ' * depth}{role(element)} {name(element)!r} {text(element)!r}\n"
    if depth == deepest or role(element) == "table":
        return line
    return line + "".join(dump(child, depth + 1, deepest) for child in children(element))


def _has_state(element: Element, state: Atspi.StateType) -> bool:
    try:
        element.clear_cache()
        return bool(element.get_state_set().contains(state))
    except GLib.Error:
        return False
