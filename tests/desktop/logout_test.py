#!/usr/bin/python3
"""Logging in and out under Xfce's session manager, which starts keyvora by its autostart entry.

usage: logout_test.py --keyvora PROGRAM. Exit status 77: xfce4-session is not installed.
"""

import argparse
import os
import shutil
import signal
import subprocess
import sys
import time
import unittest
from pathlib import Path

from harness.keyvora import Log
from harness.private_desktop import PrivateDesktop
from harness.process import children
from harness.waiting import until

SKIPPED = 77
PATIENCE = 60

# A program that does not take part in the session manager's protocol cannot delay it: this is for a busy machine.
LONGEST_END = 10.0

# A session of nothing but the programs that start automatically.
SESSION = """<?xml version="1.0" encoding="UTF-8"?>
<channel name="xfce4-session" version="1.0">
  <property name="general" type="empty">
    <property name="FailsafeSessionName" type="string" value="Failsafe"/>
    <property name="SaveOnExit" type="bool" value="false"/>
  </property>
  <property name="splash" type="empty"><property name="Engine" type="string" value=""/></property>
  <property name="sessions" type="empty">
    <property name="Failsafe" type="empty">
      <property name="IsFailsafe" type="bool" value="true"/>
      <property name="Count" type="int" value="1"/>
      <property name="Client0_Command" type="array"><value type="string" value="xfsettingsd"/></property>
    </property>
  </property>
</channel>
"""

DOCUMENT = '{"version": 1, "tabs": {}, "sequences": []}\n'


class LogOut(unittest.TestCase):
    program: Path

    def setUp(self) -> None:
        self.desktop = self.enterContext(PrivateDesktop(tray=False))
        library = self.desktop.home / "Library"
        self.log = Log(library / "Logs" / "keyvora.log")
        self.write(library / "Application Support" / "keyvora" / "mappings.json", DOCUMENT)
        self.errors = self.desktop.folder / "errors"
        self.number = self.desktop.folder / "process"
        start = self.desktop.folder / "start"
        self.write(start, f'#!/bin/sh\necho $$ >"{self.number}"\nexec "{self.program}" 2>"{self.errors}"\n')
        start.chmod(0o755)
        settings = self.desktop.home / ".config"
        self.write(settings / "autostart" / "org.keyvora.keyvora.desktop",
                   f"[Desktop Entry]\nType=Application\nName=keyvora\nExec={start}\n")
        self.write(settings / "xfce4" / "xfconf" / "xfce-perchannel-xml" / "xfce4-session.xml", SESSION)
        # Only this entry, and not those that are installed on the machine.
        environment = dict(os.environ, XDG_CURRENT_DESKTOP="XFCE", XDG_CONFIG_DIRS=str(self.desktop.folder))
        self.session = self.desktop.children.start(["xfce4-session"], environment=environment)
        until(lambda: self.log.has("tap installed, "), "keyvora, started at login", PATIENCE, seen=self.log.messages)
        self.keyvora = int(self.number.read_text())
        (self.tap,) = children(self.keyvora)

    def write(self, path: Path, text: str) -> None:
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(text)

    def log_out(self) -> None:
        """Asks the session manager to end the session, and waits until it has ended."""
        begin = time.monotonic()
        subprocess.run(["xfce4-session-logout", "--logout", "--fast"], check=True, timeout=PATIENCE,
                       stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        self.session.wait(PATIENCE)
        self.assertLess(time.monotonic() - begin, LONGEST_END, "the session manager's end")

    def expect_end(self, began: float) -> None:
        until(lambda: not is_running(self.keyvora), "the end of keyvora", PATIENCE)
        until(lambda: not is_running(self.tap), "the end of keyvora-tap", PATIENCE)
        self.assertLess(time.monotonic() - began, LONGEST_END, "keyvora's end")
        lines = self.log.path.read_text()
        self.assertTrue(lines.endswith("\n"), "the log's last line is whole")
        self.assertEqual([line[20:] for line in lines.splitlines()], self.console_lines(), "every line is in the log")

    def console_lines(self) -> list[str]:
        """The lines of the log as they are on standard error, where they are written at once."""
        start = "keyvora: "
        said = [line.removeprefix(start) for line in self.errors.read_text().splitlines() if line.startswith(start)]
        return [line for line in said if line != "The X display is gone, and keyvora ends with it."]

    def test_the_display_ends_after_the_session_manager(self) -> None:
        """As a display manager does it when the session's program has ended."""
        self.log_out()
        began = time.monotonic()
        server = self.desktop.children.named("Xvfb")
        server.terminate()
        server.wait()
        self.expect_end(began)
        self.assertIn("The X display is gone, and keyvora ends with it.", self.errors.read_text())

    def test_the_processes_of_the_session_are_told_to_end(self) -> None:
        """As systemd does it when a session or its scope ends."""
        self.log_out()
        began = time.monotonic()
        os.kill(self.keyvora, signal.SIGTERM)
        self.expect_end(began)


def is_running(process: int) -> bool:
    """Whether it is there, and no zombie."""
    try:
        return "\nState:\tZ" not in Path(f"/proc/{process}/status").read_text()
    except FileNotFoundError:
        return False


if __name__ == "__main__":
    parser = argparse.ArgumentParser(description="Logging in and out under Xfce's session manager.")
    parser.add_argument("--keyvora", type=Path, required=True, help="the program under test")
    arguments, rest = parser.parse_known_args()
    if not shutil.which("xfce4-session"):
        print("xfce4-session is not installed")
        sys.exit(SKIPPED)
    LogOut.program = arguments.keyvora.resolve()
    unittest.main(argv=[sys.argv[0], *rest], verbosity=2)
