"""The scheduled check, in the real program on a private display.

usage: scheduled_check_test.py KEYVORA [unittest arguments]
"""

import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import time
import unittest

from feed_server import FeedServer
from installation import PATIENCE, Display, Installation

PROGRAM = pathlib.Path(sys.argv.pop(1)).resolve()


@unittest.skipUnless(shutil.which("Xvfb") and shutil.which("xdotool"), "Xvfb gives the display, xdotool its user")
class ScheduledCheck(unittest.TestCase):
    def setUp(self):
        folder = self.enterContext(tempfile.TemporaryDirectory(prefix="keyvora-scheduled-"))
        self.installed = Installation(pathlib.Path(folder), PROGRAM)
        self.server = self.enterContext(FeedServer())
        self.display = self.enterContext(Display())
        self.record = self.installed.home / ".local/state/keyvora/updates"

    def start(self, feed: str) -> subprocess.Popen:
        self.installed.configure(self.server.address + feed)
        program = subprocess.Popen([self.installed.program], stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True,
                                   env=self.installed.environment(DISPLAY=self.display, NO_AT_BRIDGE="1"))
        self.addCleanup(program.communicate)
        self.addCleanup(program.kill)
        return program

    def wait_until(self, holds, what: str):
        deadline = time.monotonic() + PATIENCE
        while not holds():
            self.assertLess(time.monotonic(), deadline, what)
            time.sleep(0.02)

    def windows(self) -> list[str]:
        """The program's visible windows."""
        found = subprocess.run(["xdotool", "search", "--onlyvisible", "--name", "^keyvora update$"], capture_output=True,
                               text=True, check=False, env=self.installed.environment(DISPLAY=self.display))
        return found.stdout.split()

    def end(self, program: subprocess.Popen):
        """The program must end at once on request, whatever the updater is doing."""
        asked = time.monotonic()
        program.terminate()
        self.assertEqual(program.wait(PATIENCE), 0)
        self.assertLess(time.monotonic() - asked, 5)
        assert program.stderr
        self.assertNotIn("Sanitizer", program.stderr.read())

    def test_an_update_is_shown_and_the_check_recorded(self):
        program = self.start("/update.xml")
        self.wait_until(self.windows, "the update shows")
        self.assertEqual(self.server.asked, ["/update.xml"])
        (last,) = re.findall(r"^LastCheck=(\d+)$", self.record.read_text(encoding="utf-8"), re.MULTILINE)
        self.assertLess(abs(time.time() - int(last)), 2 * PATIENCE)
        self.end(program)

    def test_escape_closes_the_window_and_the_program_goes_on(self):
        program = self.start("/update.xml")
        self.wait_until(self.windows, "the update shows")
        (window,) = self.windows()
        focus = ["xdotool", "windowfocus", "--sync", window, "key", "Escape"]
        subprocess.run(focus, check=True, env=self.installed.environment(DISPLAY=self.display), timeout=PATIENCE)
        self.wait_until(lambda: not self.windows(), "the window goes")
        self.assertIsNone(program.poll())
        self.end(program)

    def test_nothing_is_shown_where_there_is_none(self):
        program = self.start("/none.xml")
        self.wait_until(lambda: self.server.asked, "the feed is read")
        self.wait_until(self.record.exists, "the check is recorded")
        self.assertEqual(self.windows(), [])
        self.end(program)

    def test_ending_does_not_wait_for_the_server(self):
        program = self.start("/silent")
        self.wait_until(lambda: self.server.asked, "the feed is asked for")
        self.end(program)


if __name__ == "__main__":
    unittest.main(verbosity=2)
