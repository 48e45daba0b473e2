"""When the program is stopped, or the tap's program is killed, the user's keyboard keeps working."""

import os
import signal
import time
from pathlib import Path

from harness.process import children
from harness.waiting import until

from .desktop_test import DesktopTest
from .test_stall import LONGEST_HOLD

FIRED = "HF  Type x (keystroke)"
LOST = "The keyboard's program was ended by signal 9; another one is started."


class Stopped(DesktopTest):
    def tap(self) -> int:
        """The process of the tap's program; 0 for none."""
        return next(iter(children(self.keyvora.process_id())), 0)

    def expect_a_working_keyboard_while_stopped(self) -> str:
        """Gives what the cell holds then."""
        process = self.keyvora.process_id()
        state = Path(f"/proc/{process}/stat")
        until(lambda: state.read_text().rsplit(")", 1)[1].split()[0] == "T", "the program to be stopped")
        begin = time.monotonic()
        self.typist.tap("Option", "h", "f", "a")
        self.expect_input("kxhfa")
        self.assertLess(time.monotonic() - begin, LONGEST_HOLD)
        return self.expect_no_key_is_held("kxhfa", "b", "Option", "h", "f")

    def expect_nothing_late(self, text: str) -> None:
        """Checks that keys typed meanwhile have no late effect, and that everything works again."""
        self.await_rest()
        self.expect_input(text)
        self.assertEqual(1, self.keyvora.log.count(FIRED))
        self.dismiss()
        self.expect_everything_works()

    def test_control_z_in_its_terminal(self) -> None:
        self.typist.tap("k")
        self.fire()
        self.expect_input("kx")
        os.killpg(self.keyvora.process_id(), signal.SIGTSTP)
        text = self.expect_a_working_keyboard_while_stopped()
        os.killpg(self.keyvora.process_id(), signal.SIGCONT)
        self.expect_nothing_late(text)

    def test_stopped_while_armed(self) -> None:
        self.typist.tap("k", "Option", "h", "f", "Option")
        self.expect_input("kx")
        os.kill(self.keyvora.process_id(), signal.SIGSTOP)
        begin = time.monotonic()
        self.typist.tap("h", "a")
        self.expect_input("kxha")
        self.assertLess(time.monotonic() - begin, LONGEST_HOLD)
        os.kill(self.keyvora.process_id(), signal.SIGCONT)
        self.await_rest()
        self.typist.tap("Escape")  # the sequence is still open: a time-out of the tap does not end it
        self.dismiss()
        self.expect_everything_works()

    def test_killed_while_stopped_with_a_key_held(self) -> None:
        self.typist.tap("k")
        os.kill(self.keyvora.process_id(), signal.SIGSTOP)
        self.typist.tap("Option", "a", "b")
        self.keyvora.kill()
        self.expect_input("kab")
        self.dismiss()
        self.start()
        self.expect_everything_works()

    def test_the_one_that_holds_keys_back_is_killed(self) -> None:
        self.typist.tap("k")
        self.fire()
        self.expect_input("kx")
        before = self.tap()
        os.kill(before, signal.SIGKILL)
        self.keyvora.log.wait(LOST)
        until(lambda: self.tap() not in (0, before), "another one")
        self.await_rest()
        self.dismiss()
        self.expect_everything_works()
        self.assertEqual(1, self.keyvora.log.count(LOST))
