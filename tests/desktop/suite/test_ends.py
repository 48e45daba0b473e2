"""However the program ends, the user's keyboard keeps working."""

import os
import signal
import time

from harness.keyvora import Keyvora
from harness.waiting import PATIENCE, equal, until

from .desktop_test import DesktopTest

# From a signal to the end of script and program, in seconds: one, and what a busy machine adds. The script would go on
# for longer.
LONGEST_END = 20.0


class Ends(DesktopTest):
    starts_keyvora = False

    def test_killed_while_armed_it_leaves_a_working_keyboard(self) -> None:
        self.start()
        self.typist.tap("k", "Option", "h")
        equal(self.keyvora.status, "⌥ H", "the status")
        self.keyvora.kill()
        self.typist.tap("f", "a", "Option", "b")
        self.expect_input("kfab")
        # The next one works too.
        self.dismiss()
        self.start()
        self.expect_everything_works()

    def test_killed_while_a_key_is_held(self) -> None:
        self.start()
        self.typist.tap("k", "Option")
        self.typist.down("h")
        equal(self.keyvora.status, "⌥ H", "the status")
        self.keyvora.kill()
        self.typist.up("h")
        self.typist.tap("a", "b")
        until(lambda: self.sheet.input().endswith("ab"), "letters", seen=self.sheet.input)

    def test_a_second_instance_says_so_and_ends(self) -> None:
        self.start()
        home = self.desktop.folder / "second"
        home.mkdir(exist_ok=True)
        second = Keyvora(self.desktop, self.environment.keyvora, home)
        self.addCleanup(second.stop)
        second.write(self.document)
        self.assertEqual(3, second.launch().wait(PATIENCE))
        self.assertEqual(["another keyvora is running"], second.log.messages())
        self.expect_everything_works()
        self.dismiss()
        self.assertEqual(0, self.keyvora.stop())
        second.start()
        self.new_cell()
        self.typist.tap("k")
        self.fire()
        self.expect_input("kx")

    def test_the_end_of_the_session_ends_it_cleanly(self) -> None:
        self.start()
        self.assertEqual(0, self.keyvora.stop())
        self.typist.tap("k", "Option", "h")
        self.expect_input("kh")

    def test_a_script_that_hangs_does_not_hold_up_the_end(self) -> None:
        programs = self.desktop.folder / "hanging"
        programs.mkdir(exist_ok=True)
        begun = programs / "begun"
        begun.unlink(missing_ok=True)
        script = programs / "osascript"
        script.write_text(f"#!/bin/sh\ntouch {begun}\nsleep 60\n")
        script.chmod(0o755)
        for times, number in enumerate((signal.SIGTERM, signal.SIGINT, signal.SIGHUP), 1):
            with self.subTest(number.name):
                begun.unlink(missing_ok=True)
                self.keyvora = Keyvora(self.desktop, self.environment.keyvora)
                self.keyvora.write(self.document)
                self.start(programs)
                self.typist.tap("Option", "s")
                until(begun.exists, "the script to begin")
                told = time.monotonic()
                os.kill(self.keyvora.process_id(), number)
                until(lambda: not self.keyvora.is_running(), "the program's end")
                self.assertLess(time.monotonic() - told, LONGEST_END)
                self.assertEqual(0, self.keyvora.stop())
                self.keyvora.log.wait("S  Script FAILED: osascript was ended by signal 15", times)
