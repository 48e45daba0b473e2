"""A private desktop: display, session bus, accessibility bus, window manager and tray.

It does not use or change the user's session: home, runtime folder, display and buses are private.
"""

import os
import re
import shutil
import subprocess
import tempfile
from contextlib import AbstractContextManager
from pathlib import Path
from types import TracebackType

from . import x11
from .children import Children, exit_on_signals
from .waiting import until

# The variables kept of the caller's environment: search paths, terminal, time zone, options of sanitizers.
_KEPT = ("PATH", "TERM", "TZ", "ASAN_OPTIONS", "LSAN_OPTIONS", "TSAN_OPTIONS", "UBSAN_OPTIONS", "LD_LIBRARY_PATH")

# The source of hardware keys on this display server.
KEYBOARD = "Xvfb keyboard"

_OPENBOX = """<?xml version="1.0" encoding="UTF-8"?>
<openbox_config xmlns="http://openbox.org/3.4/rc">
  <focus><focusNew>yes</focusNew><focusLast>yes</focusLast></focus>
  <theme><name>Clearlooks</name></theme>
  <keyboard>
    <keybind key="A-Tab"><action name="NextWindow"><finalactions>
      <action name="Focus"/><action name="Raise"/></finalactions></action></keybind>
    <keybind key="A-F4"><action name="Close"/></keybind>
  </keyboard>
  <applications>
    <application class="Gnumeric" type="normal"><maximized>yes</maximized></application>
  </applications>
</openbox_config>
"""


class PrivateDesktop(AbstractContextManager["PrivateDesktop"]):
    """A context manager. `home` is the user's home; `folder` contains all files written.

    `tray`, `window_manager` and `accessibility` can omit that part of the desktop. The folder is removed at the end,
    unless `keep` names one. With `wayland`, "mutter" or "weston", it is a session of that Wayland compositor
    without a screen, and the display is the one that the compositor provides for X programs.
    """

    def __init__(self, *, size: str = "1280x800", keep: Path | None = None, tray: bool = True,
                 window_manager: bool = True, accessibility: bool = True, wayland: str = "") -> None:
        self._size = size
        self._keep = keep
        self._tray = tray
        self._window_manager = window_manager and not wayland
        self._wayland = wayland
        self._accessibility = accessibility
        self.folder = Path()
        self.home = Path()

    def __enter__(self) -> "PrivateDesktop":
        exit_on_signals()
        if self._keep:
            shutil.rmtree(self._keep, ignore_errors=True)
            self._keep.mkdir(parents=True)
        self.folder = self._keep or Path(tempfile.mkdtemp(prefix="keyvora-desktop-"))
        self.home = self._make_folder("home", 0o755)
        self.children = Children(self._make_folder("logs", 0o755))
        try:
            self._stand_up()
        except BaseException:
            self._tear_down()
            raise
        return self

    def __exit__(self, kind: type[BaseException] | None, error: BaseException | None,
                 trace: TracebackType | None) -> None:
        self._tear_down()

    def screenshot(self, path: Path, area: x11.Area | None = None) -> Path:
        """Writes a picture of the whole screen or of a part of it; returns `path`. Not under Wayland."""
        path.parent.mkdir(parents=True, exist_ok=True)
        if self._wayland:
            return path  # the compositor's screen is not visible
        crop = ["-crop", f"{area.width}x{area.height}+{area.x}+{area.y}", "+repage"] if area else []
        subprocess.run(["import", "-silent", "-window", "root", *crop, str(path)], check=True)
        return path

    def set_layout(self, layout: str, variant: str = "", option: str = "") -> None:
        """Changes the layout and options of every keyboard, as a user's settings do."""
        subprocess.run(["setxkbmap", "-layout", layout, "-variant", variant, "-option", "", "-option", option],
                       check=True)

    def _stand_up(self) -> None:
        environment = {name: os.environ[name] for name in _KEPT if name in os.environ}
        environment |= {
            "HOME": str(self.home),
            "XDG_RUNTIME_DIR": str(self._make_folder("runtime", 0o700)),
            "LANG": "C.UTF-8",
            "GSETTINGS_BACKEND": "memory",
            "GTK_IM_MODULE": "gtk-im-context-simple",
        }
        os.environ.clear()
        os.environ.update(environment)
        if self._wayland:
            self._start_session_bus()
            {"mutter": self._start_mutter, "weston": self._start_weston}[self._wayland]()
            os.environ |= {"XDG_SESSION_TYPE": "wayland", "GDK_BACKEND": "x11"}
        else:
            self._start_display()
            self._start_session_bus()
        if self._accessibility:
            self._start_accessibility_bus()
        else:
            os.environ["NO_AT_BRIDGE"] = "1"
        if self._window_manager:
            self.start_window_manager()
        if self._tray:
            self.start_tray()

    def _tear_down(self) -> None:
        self.children.stop_all()
        if not self._keep:
            shutil.rmtree(self.folder, ignore_errors=True)

    def _make_folder(self, name: str, mode: int) -> Path:
        folder = self.folder / name
        folder.mkdir(mode=mode)
        return folder

    def _start_display(self) -> None:
        read, write = os.pipe()
        self.children.start(
            ["Xvfb", "-displayfd", str(write), "-screen", "0", f"{self._size}x24", "-nolisten", "tcp",
             "-noreset"], keep_open=[write])
        os.close(write)
        with os.fdopen(read) as answer:
            number = answer.readline().strip()
        if not number:
            raise RuntimeError(f"Xvfb did not start:\n{self.children.log('Xvfb').read_text()}")
        os.environ["DISPLAY"] = f":{number}"

    def _start_mutter(self) -> None:
        said = self.folder / "display"
        self.children.start(["mutter", "--wayland", "--headless", "--virtual-monitor", self._size, "--", "sh", "-c",
                             'echo "$DISPLAY $XAUTHORITY" >"$0.new"; mv "$0.new" "$0"; exec sleep infinity', str(said)])
        until(said.exists, "the compositor", 30)
        display, authority = said.read_text().split()
        os.environ |= {"DISPLAY": display, "XAUTHORITY": authority}

    def _start_weston(self) -> None:
        log = self.folder / "logs" / "weston.log"
        width, height = self._size.split("x")
        self.children.start(["weston", "--backend=headless-backend.so", "--xwayland", "--no-config", "--idle-time=0",
                             f"--width={width}", f"--height={height}", "--socket=wayland"])
        said = until(lambda: re.search(r"xserver listening on display (:\d+)", log.read_text()), "the compositor", 30)
        assert said
        os.environ |= {"DISPLAY": said[1], "WAYLAND_DISPLAY": "wayland"}

    def _start_session_bus(self) -> None:
        read, write = os.pipe()
        self.children.start(["dbus-daemon", "--session", "--nofork", f"--print-address={write}"],
                            keep_open=[write])
        os.close(write)
        with os.fdopen(read) as answer:
            os.environ["DBUS_SESSION_BUS_ADDRESS"] = answer.readline().strip()

    def _start_accessibility_bus(self) -> None:
        # The call starts the bus and returns when it is running.
        subprocess.run(
            ["gdbus", "call", "--session", "--dest", "org.a11y.Bus", "--object-path", "/org/a11y/bus",
             "--method", "org.a11y.Bus.GetAddress"], check=True, stdout=subprocess.DEVNULL)

    def start_window_manager(self) -> None:
        """Starts the window manager, "openbox" among the children."""
        configuration = self.folder / "openbox.xml"
        configuration.write_text(_OPENBOX)
        self.children.start(["openbox", "--config-file", str(configuration)])
        until(lambda: x11.root_property("_NET_SUPPORTING_WM_CHECK"), "a window manager")

    def start_tray(self) -> None:
        """Starts the tray, "trayer" among the children."""
        self.children.start(["trayer", "--edge", "top", "--align", "right", "--widthtype", "request",
                             "--height", "26", "--SetDockType", "true", "--SetPartialStrut", "true"])
        until(lambda: x11.windows_of_class("trayer"), "the tray")
