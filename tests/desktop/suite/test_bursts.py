"""Keys at the highest speed: none is lost, passes wrongly or changes its place."""

from harness.typist import XTEST_KEYBOARD
from harness.waiting import equal

from .desktop_test import ARMED, DesktopTest

TIMES = 100


class Bursts(DesktopTest):
    starts_keyvora = False

    def text_without_keyvora(self, *keys: str, times: int = TIMES) -> str:
        """The spreadsheet's text for the keys when keyvora does not run."""
        self.typist.tap("k")
        self.typist.burst(times, *keys)
        # A last key: when it has arrived, so have all others.
        self.typist.tap(";")
        equal(lambda: self.sheet.input()[-1:], ";", "the end of the cell's text", 30)
        text = self.sheet.input()[:-1]
        self.new_cell()
        return text

    def test_sequences_that_fire_type_between_the_users_keys(self) -> None:
        expected = self.text_without_keyvora("x", "a", "b")
        self.start()
        self.typist.tap("k")
        self.typist.burst(TIMES, "Option", "h", "f", "a", "b")
        self.expect_input(expected, 60)
        self.keyvora.log.wait("HF  Type x (keystroke)", TIMES)
        self.assertEqual(TIMES, self.keyvora.log.count(ARMED))

    def test_sequences_right_behind_each_other_all_fire(self) -> None:
        expected = self.text_without_keyvora("x", "x", "a", times=TIMES // 2)
        self.start()
        self.typist.tap("k")
        # The next Option comes while the key of the last sequence is still being posted.
        self.typist.burst(TIMES // 2, "Option", "h", "f", "Option", "h", "Escape", "Option", "h", "f", "a")
        self.expect_input(expected, 60)
        self.keyvora.log.wait("HF  Type x (keystroke)", TIMES)
        self.assertEqual(TIMES // 2 * 3, self.keyvora.log.count(ARMED))

    def test_dead_ends_swallow_their_letters_and_nothing_else(self) -> None:
        expected = self.text_without_keyvora("a", "b")
        self.start()
        self.typist.tap("k")
        self.typist.burst(TIMES, "Option", "h", "q", "a", "b")
        self.expect_input(expected, 60)
        self.keyvora.log.wait("no sequence HQ", TIMES)
        self.assertEqual(TIMES, self.keyvora.log.count(ARMED))

    def test_plain_typing_passes(self) -> None:
        keys = [*"the1quick2brown3fox"]
        expected = self.text_without_keyvora(*keys, times=20)
        self.start()
        self.typist.tap("k")
        self.typist.burst(20, *keys)
        self.expect_input(expected, 60)
        self.assertEqual(0, self.keyvora.log.count(ARMED))

    def test_a_key_between_options_press_and_release_is_option_with_that_key(self) -> None:
        """So it is with every program, and such a key writes nothing: typists that are to lose nothing let each
        other finish."""
        other = self.new_typist(device=XTEST_KEYBOARD)
        for runs in (False, True):
            with self.subTest(keyvora=runs):
                if runs:
                    self.start()
                self.typist.tap("k")
                self.typist.down("Option")
                other.tap("-")
                self.typist.up("Option")
                self.typist.tap("b")
                self.expect_input("kb")
                self.new_cell()
        self.assertEqual(0, self.keyvora.log.count(ARMED))

    def test_a_second_program_typing_at_the_same_time_loses_nothing(self) -> None:
        self.start()
        other = self.new_typist(device=XTEST_KEYBOARD)
        other.pace(max(self.sheet.pace, 2))
        self.typist.tap("k")
        keys = ("Option", "h", "q", "a", "b")
        other.begin(f"burst {TIMES} -")
        for _ in range(TIMES):
            self.typist.tap(*keys)
        other.finish()
        # Its key ends a sequence and passes; the user's letters after it then go into the cell.
        equal(lambda: self.sheet.input().count("-"), TIMES, "the second program's keys", 60)
        self.typist.tap(";")
        equal(lambda: self.sheet.input()[-1:], ";", "the end of the cell's text")
        self.assertEqual(TIMES, self.sheet.input().count("b"))
        self.dismiss()
        self.expect_everything_works()
