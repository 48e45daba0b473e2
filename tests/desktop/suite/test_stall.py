"""When the program does not answer, the user's keyboard goes on."""

import time
from pathlib import Path

from .desktop_test import DesktopTest

# How long a key may be held while the program does not answer, in seconds: one, and what a busy machine adds.
LONGEST_HOLD = 2.0


class Stall(DesktopTest):
    starts_keyvora = False

    def scripts_take(self, seconds: float) -> Path:
        """A folder with an osascript whose every script takes so long."""
        folder = self.desktop.folder / "slow"
        folder.mkdir(exist_ok=True)
        program = folder / "osascript"
        program.write_text(f"#!/bin/sh\nexec sleep {seconds:g}\n")
        program.chmod(0o755)
        return folder

    def test_a_script_of_five_seconds_does_not_hold_the_keyboard(self) -> None:
        self.start(self.scripts_take(5))
        self.typist.tap("k", "Option", "s")
        begin = time.monotonic()
        self.typist.tap("a")
        self.expect_input("ka")
        self.assertLess(time.monotonic() - begin, LONGEST_HOLD)
        # After the first key the program is let go of: the next ones are not held at all.
        again = time.monotonic()
        self.typist.tap("b", "Option", "b")
        self.expect_input("kabb")
        self.assertLess(time.monotonic() - again, 1.0)
        self.assertEqual(0, self.keyvora.log.count("S  Script (applescript)"), "the script ended too early")
        self.keyvora.log.wait("S  Script (applescript)")
        self.dismiss()
        self.expect_everything_works()
