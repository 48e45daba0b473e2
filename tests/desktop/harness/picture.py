"""The pixels of a part of the screen."""

import subprocess

from .x11 import Area


class Picture:
    """A part of the screen at the time of construction."""

    def __init__(self, area: Area) -> None:
        self.area = area
        taken = subprocess.run(
            ["import", "-silent", "-window", "root", "-crop",
             f"{area.width}x{area.height}+{area.x}+{area.y}", "+repage", "-depth", "8", "gray:-"],
            check=True, capture_output=True)
        self._pixels = taken.stdout

    def __eq__(self, other: object) -> bool:
        return isinstance(other, Picture) and self._pixels == other._pixels

    def difference(self, other: "Picture") -> Area | None:
        """The part of the screen in which two pictures of the same area differ; None when nowhere."""
        changed = [(index % self.area.width, index // self.area.width)
                   for index, (ours, theirs) in enumerate(zip(self._pixels, other._pixels, strict=True))
                   if abs(ours - theirs) > 12]
        if not changed:
            return None
        left, top = min(x for x, _ in changed), min(y for _, y in changed)
        right, bottom = max(x for x, _ in changed), max(y for _, y in changed)
        return Area(self.area.x + left, self.area.y + top, right - left + 1, bottom - top + 1)

    def brightness(self) -> float:
        """From 0, black, to 255."""
        return sum(self._pixels) / len(self._pixels)
