"""Overlapping, repeated and held keys, several keyboards."""

import subprocess
import time
from collections.abc import Callable

from harness.process import children, switches
from harness.typist import XTEST_KEYBOARD
from harness.waiting import calm, equal, stays, until

from .desktop_test import ARMED, DesktopTest

# A time-out that a test waits for, and within which two keys typed at once arrive on a busy machine; in seconds.
SHORT_WAIT = 2


class KeyboardTest(DesktopTest):
    def test_ordinary_typing_does_not_wake_the_program(self) -> None:
        if not self.sheet.keeps_its_class:
            self.skipTest(f"{self.sheet.name} tells of itself at every key, and must be listened to")
        self.typist.tap("k")
        self.fire()
        self.typist.tap("a")
        self.expect_input("kxa")
        processes = [self.keyvora.process_id(), *children(self.keyvora.process_id())]
        self.assertEqual(2, len(processes), "the program and its tap")
        wake_ups: Callable[[], int] = lambda: sum(map(switches, processes))
        woken = calm(wake_ups, "the program", 0.3)
        text = "bdb" * 20
        self.typist.tap(*text)
        self.expect_input("kxa" + text)
        # Waking for each press and release would give more.
        self.assertLess(wake_ups() - woken, 5)
        self.dismiss()
        self.expect_everything_works()

    def test_keys_that_overlap(self) -> None:
        self.typist.tap("k", "Option")
        self.typist.down("h", "f")
        self.typist.up("h")
        self.typist.down("a")
        self.typist.up("f")
        self.typist.down("b")
        self.typist.up("a", "b")
        self.expect_input("kxab")

    def test_a_letter_held_before_the_option_tap_stays_the_cells(self) -> None:
        self.typist.tap("k")
        self.typist.down("a")
        self.typist.tap("Option")
        self.typist.up("a")
        self.keyvora.log.wait(ARMED)
        self.typist.tap("h", "f", "b")
        until(lambda: self.sheet.input().endswith("xb"), "the sequence to fire", seen=self.sheet.input)

    def test_a_held_key_repeats_in_the_cell(self) -> None:
        self.typist.tap("k")
        self.typist.down("a")
        until(lambda: self.sheet.input().startswith("kaaaaa"), "five letters", seen=self.sheet.input)
        self.typist.up("a")
        self.typist.tap("b")
        until(lambda: self.sheet.input().endswith("ab"), "the key after it", seen=self.sheet.input)

    def test_a_held_letter_of_a_sequence_does_not_repeat(self) -> None:
        subprocess.run(["xset", "r", "rate", "200", "40"], check=True)
        self.addCleanup(lambda: subprocess.run(["xset", "r", "rate"], check=True))
        for last, fired in (("f", "kx"), ("q", "k")):
            with self.subTest(last=last):
                self.typist.tap("k", "Option", "h")
                # The sequence ends while the key is held: a repetition would type a letter into the cell.
                self.typist.down(last)
                self.expect_input(fired)
                stays(self.sheet.input, fired, "the cell's text", 1.0)
                self.typist.up(last)
                self.dismiss()
                self.new_cell()
        self.typist.tap("k", "Option")
        self.typist.down("h")
        equal(self.keyvora.status, "⌥ H", "the status")
        stays(self.keyvora.status, "⌥ H", "the status", 0.5)
        self.typist.up("h")
        self.typist.tap("f")
        self.expect_input("kx")
        # When pressed again, the key repeats as before.
        self.typist.down("f")
        until(lambda: self.sheet.input().startswith("kxfff"), "repeated letters", seen=self.sheet.input)
        self.typist.up("f")
        self.dismiss()
        self.expect_everything_works()

    def test_option_with_a_letter_is_the_applications(self) -> None:
        self.typist.tap("Option+f")
        equal(self.sheet.open_menu, "File", "the open menu")
        self.typist.tap("Escape", "Escape")
        equal(self.sheet.open_menu, "", "the open menu")
        self.assertEqual(0, self.keyvora.log.count(ARMED))
        self.expect_everything_works()

    def test_option_with_shift_arms_nothing(self) -> None:
        for first, second in (("Option", "Shift"), ("Shift", "Option")):
            with self.subTest(first=first):
                self.typist.down(first, second)
                self.typist.up(second, first)
        # With Shift pressed first, Option is tapped alone while Shift is held: that arms.
        self.keyvora.log.wait(ARMED)
        self.typist.tap("Escape")
        self.expect_everything_works()
        self.assertEqual(2, self.keyvora.log.count(ARMED))

    def test_shift_and_control_letters_count_while_armed(self) -> None:
        self.typist.tap("k", "Option", "Shift+h", "Control+f", "a")
        self.expect_input("kxa")

    def test_escape_and_a_second_tap_cancel(self) -> None:
        self.typist.tap("k", "Option", "h", "Escape", "a", "Option", "Option", "b")
        self.expect_input("kab")
        self.assertEqual(2, self.keyvora.log.count(ARMED))

    def test_a_key_without_a_letter_ends_the_sequence_and_passes(self) -> None:
        self.typist.tap("k", "Option", "h", "Space", "f")
        self.expect_input("k f")

    def test_an_ambiguous_sequence_waits_and_a_longer_one_fires_at_once(self) -> None:
        self.typist.tap("k", "Option", "m", "m")
        self.expect_input("kn")
        self.keyvora.write(self.document | {"timeoutMilliseconds": SHORT_WAIT * 1000})
        self.keyvora.log.wait("mappings reloaded, 4 sequences")
        begin = time.monotonic()
        self.typist.tap("Option", "m")
        self.expect_input("knm")
        self.assertGreaterEqual(time.monotonic() - begin, SHORT_WAIT)
        self.typist.tap("Option", "m", "m")
        self.expect_input("knmn")
        stays(self.sheet.input, "knmn", "the cell's text", SHORT_WAIT + 0.5)

    def test_the_status_shows_the_letters(self) -> None:
        equal(self.keyvora.status, "⌥", "the status")
        for key, status in (("Option", "⌥ "), ("h", "⌥ H"), ("Escape", "⌥")):
            self.typist.tap(key)
            equal(self.keyvora.status, status, f"the status after {key}")

    def test_a_second_keyboard(self) -> None:
        second = self.new_typist(device=XTEST_KEYBOARD)
        second.pace(self.sheet.pace)
        second.tap("k", "Option", "h", "f", "a")
        self.expect_input("kxa")
        # A sequence begun in one and ended in the other.
        self.typist.tap("Option", "h")
        second.tap("f", "b")
        self.expect_input("kxaxb")
