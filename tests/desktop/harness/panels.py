"""The panels of current desktops, on a private desktop, with only status items in them."""

import os
import shutil
import signal
import subprocess
from abc import ABC, abstractmethod
from pathlib import Path

from . import notifier
from .children import Children
from .process import children
from .waiting import Timeout, until
from .x11 import Area

# The time limit until a panel shows items, in seconds.
PATIENCE = 60


class Panel(ABC):
    """A panel that shows status notifier items on the running desktop."""

    name: str
    program: str
    # Whether a click requests the item's own menu. Otherwise the panel shows its menu for every button.
    asks_for_the_items_menu = True
    # Whether an open menu of the panel stays open when its rows change. Otherwise it closes.
    keeps_a_rebuilt_menu = True
    is_window_manager = False
    # Whether it follows changes of theme and scale in the X settings (XSETTINGS).
    follows_x_settings = False
    # Whether it also shows icons of the X system tray.
    is_tray = True
    # The area of the screen in which it shows items.
    area = Area(640, 0, 640, 28)
    # The area in which its menu opens.
    menu_area = Area(640, 30, 640, 400)

    def __init__(self, children: Children, home: Path) -> None:
        self._children = children
        self._home = home

    @classmethod
    def is_installed(cls) -> bool:
        """Whether it can be started on this machine."""
        return shutil.which(cls.program) is not None

    def start(self) -> None:
        """Starts the panel and waits until it accepts items."""
        self._start(self._children)
        until(notifier.has_host, f"{self.program} to take status notifier items", PATIENCE)

    def kill(self) -> None:
        """Kills it, as in a crash."""
        process = self._children.named(self.program)
        process.kill()
        process.wait()
        until(lambda: not notifier.has_host(), f"{self.program} to be gone")

    @abstractmethod
    def _start(self, children: Children) -> None:
        """Writes its configuration and starts it."""

    def _write(self, path: str, text: str) -> None:
        file = self._home / ".config" / path
        file.parent.mkdir(parents=True, exist_ok=True)
        file.write_text(text)


class XfcePanel(Panel):
    name = "xfce"
    program = "xfce4-panel"
    follows_x_settings = True

    def _start(self, children: Children) -> None:
        self._write("xfce4/xfconf/xfce-perchannel-xml/xfce4-panel.xml", """<?xml version="1.0" encoding="UTF-8"?>
<channel name="xfce4-panel" version="1.0">
  <property name="configver" type="int" value="2"/>
  <property name="panels" type="array">
    <value type="int" value="1"/>
    <property name="dark-mode" type="bool" value="false"/>
    <property name="panel-1" type="empty">
      <property name="position" type="string" value="p=6;x=0;y=0"/>
      <property name="position-locked" type="bool" value="true"/>
      <property name="length" type="uint" value="100"/>
      <property name="size" type="uint" value="28"/>
      <property name="plugin-ids" type="array">
        <value type="int" value="1"/>
        <value type="int" value="2"/>
      </property>
    </property>
  </property>
  <property name="plugins" type="empty">
    <property name="plugin-1" type="string" value="separator">
      <property name="expand" type="bool" value="true"/>
      <property name="style" type="uint" value="0"/>
    </property>
    <property name="plugin-2" type="string" value="systray"/>
  </property>
</channel>
""")
        children.start([self.program, "--disable-wm-check"])


class LxqtPanel(Panel):
    name = "lxqt"
    program = "lxqt-panel"
    keeps_a_rebuilt_menu = False
    is_tray = False

    def _start(self, children: Children) -> None:
        self._write("lxqt/panel.conf", """[General]
panels=panel1

[panel1]
plugins=spacer,statusnotifier
position=Top
desktop=0
panelSize=28
iconSize=22
lineCount=1
width=100
width-percent=true
alignment=-1

[spacer]
type=spacer
expandable=true

[statusnotifier]
type=statusnotifier
""")
        children.start([self.program], environment=dict(
            os.environ, QT_LINUX_ACCESSIBILITY_ALWAYS_ON="1", XDG_CURRENT_DESKTOP="LXQt"))


class GnomeShell(Panel):
    """GNOME's shell with the extension that shows items; it is the desktop's window manager too."""

    name = "gnome"
    program = "gnome-shell"
    asks_for_the_items_menu = False
    is_window_manager = True
    area = Area(900, 0, 380, 28)  # without the clock
    extension = "ubuntu-appindicators@ubuntu.com"

    @classmethod
    def is_installed(cls) -> bool:
        return super().is_installed() and Path(f"/usr/share/gnome-shell/extensions/{cls.extension}").exists()

    def _start(self, children: Children) -> None:
        self._write("glib-2.0/settings/keyfile", f"""[org/gnome/shell]
enabled-extensions=['{self.extension}']
welcome-dialog-last-shown-version='999'

[org/gnome/desktop/interface]
toolkit-accessibility=true
enable-animations=false
""")
        self._start_system_bus(children)
        children.start([self.program, "--x11", "--sm-disable"], environment=dict(
            os.environ, GSETTINGS_BACKEND="keyfile", XDG_CURRENT_DESKTOP="GNOME", GNOME_SHELL_SESSION_MODE="user",
            LIBGL_ALWAYS_SOFTWARE="1"))

    def start(self) -> None:
        """Starts the shell, and closes the overview that it shows first."""
        super().start()
        try:
            until(self._is_in_overview, "the shell's overview", 15)
        except Timeout:
            return  # does not start beside existing windows
        self._ask("Set", "OverviewActive", "<false>")
        until(lambda: not self._is_in_overview(), "the shell to leave its overview", PATIENCE)

    def kill(self) -> None:
        """Ends the shell by force, and what draws its windows' frames: systemd would end the whole unit."""
        super().kill()
        for process in children(os.getpid()):
            if "mutter-x11-frames".startswith(Path(f"/proc/{process}/comm").read_text().strip()):
                os.kill(process, signal.SIGKILL)

    def _is_in_overview(self) -> bool:
        return "true" in self._ask("Get", "OverviewActive")

    @staticmethod
    def _ask(verb: str, *arguments: str) -> str:
        """Reads or sets a property of the shell."""
        return subprocess.run(
            ["gdbus", "call", "--session", "--dest", "org.gnome.Shell", "--object-path", "/org/gnome/Shell",
             "--method", f"org.freedesktop.DBus.Properties.{verb}", "org.gnome.Shell", *arguments],
            capture_output=True, text=True, check=False).stdout

    @staticmethod
    def _start_system_bus(children: Children) -> None:
        """Provides a stand-in for the login manager on a private bus, without which the shell does not start."""
        if "DBUS_SYSTEM_BUS_ADDRESS" in os.environ:
            return
        read, write = os.pipe()
        children.start(["dbus-daemon", "--session", "--nofork", f"--print-address={write}"], name="system-bus",
                       keep_open=[write])
        os.close(write)
        with os.fdopen(read) as answer:
            os.environ["DBUS_SYSTEM_BUS_ADDRESS"] = answer.readline().strip()
        children.start(["/usr/bin/python3", "-m", "dbusmock", "--system", "--template", "logind"], name="logind")
        until(lambda: subprocess.run(
            ["gdbus", "call", "--address", os.environ["DBUS_SYSTEM_BUS_ADDRESS"], "--dest", "org.freedesktop.login1",
             "--object-path", "/org/freedesktop/login1", "--method", "org.freedesktop.DBus.Peer.Ping"],
            capture_output=True, check=False).returncode == 0, "the stand-in for the login manager", PATIENCE)


PANELS: dict[str, type[Panel]] = {
    XfcePanel.name: XfcePanel, LxqtPanel.name: LxqtPanel, GnomeShell.name: GnomeShell}
