"""When the program does not answer, the user's keyboard keeps working."""

import time
from pathlib import Path

from .desktop_test import DesktopTest

# The time for which a key may be held while the program does not answer, in seconds: one, plus an allowance for a busy
# machine. The program is kept from answering for longer.
LONGEST_HOLD = 20.0


class Stall(DesktopTest):
    starts_keyvora = False

    def scripts_wait(self, end: Path) -> Path:
        """A folder with an osascript whose every script lasts until there is a file `end`."""
        folder = self.desktop.folder / "slow"
        folder.mkdir(exist_ok=True)
        program = folder / "osascript"
        program.write_text(f"#!/bin/sh\nwhile [ ! -e '{end}' ]; do sleep 0.1; done\n")
        program.chmod(0o755)
        return folder

    def test_a_script_that_lasts_does_not_hold_the_keyboard(self) -> None:
        end = self.desktop.folder / "end of the script"
        end.unlink(missing_ok=True)
        self.start(self.scripts_wait(end))
        self.typist.tap("k", "Option", "s")
        begin = time.monotonic()
        self.typist.tap("a")
        self.expect_input("ka")
        self.assertLess(time.monotonic() - begin, LONGEST_HOLD)
        # After the first key the tap gives up the program, and holds no further keys.
        self.expect_no_key_is_held("ka", "b", "Option", "b")
        self.assertEqual(0, self.keyvora.log.count("S  Script (applescript)"), "the script ended too early")
        end.touch()
        self.keyvora.log.wait("S  Script (applescript)")
        self.dismiss()
        self.expect_everything_works()
