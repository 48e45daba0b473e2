"""Which key is Option: the one that makes Alt, wherever it is, and only when it was tapped alone."""

import subprocess

from .desktop_test import ARMED, DesktopTest


class OptionKey(DesktopTest):
    def choose(self, option: str, layout: str = "us") -> None:
        """Chooses an option of the keyboard settings, and goes to an empty cell."""
        self.desktop.set_layout(layout, option=option)
        self.new_cell()

    def test_compose_is_not_option(self) -> None:
        self.choose("compose:ralt")
        self.typist.tap("k", "RightOption", "s", "s")
        self.expect_input("kß")
        self.assertEqual(0, self.keyvora.log.count(ARMED))
        self.fire()
        self.expect_input("kßx")

    def test_a_key_that_changes_the_layout_is_not_option(self) -> None:
        self.choose("grp:toggle", "us,de")
        self.typist.tap("k", "RightOption", "y")
        self.expect_input("kz")
        self.assertEqual(0, self.keyvora.log.count(ARMED))
        self.fire()
        self.expect_input("kzx")

    def test_a_chord_that_changes_the_layout_arms_nothing(self) -> None:
        self.choose("grp:alt_shift_toggle", "us,de")
        self.typist.tap("k")
        for first, second in (("Option", "Shift"), ("Shift", "Option")):
            self.typist.down(first, second)
            self.typist.up(second, first)
            self.typist.tap("y")
        self.expect_input("kzy")
        self.assertEqual(0, self.keyvora.log.count(ARMED))
        self.fire()
        self.expect_input("kzyx")

    def test_option_is_where_the_settings_put_it(self) -> None:
        for option, key in (("altwin:swap_alt_win", "Super"), ("ctrl:swap_lalt_lctl", "Control")):
            with self.subTest(option=option):
                self.desktop.set_layout("us", option=option)
                before = self.keyvora.log.count(ARMED)
                self.typist.tap("k", "Option", "h")
                self.expect_input("kh")
                self.assertEqual(before, self.keyvora.log.count(ARMED))
                self.typist.tap(key, "h", "f")
                self.expect_input("khx")
                self.desktop.set_layout("us")
                self.new_cell()

    def test_option_with_a_mouse_button_was_not_alone(self) -> None:
        self.typist.tap("k")
        self.typist.down("Option")
        self.await_rest()  # no hand clicks before the tap has read the key, not even on a busy machine
        # On the window's title, with a button that has no effect there.
        subprocess.run(["xdotool", "mousemove", "400", "36", "click", "8"], check=True)
        self.typist.up("Option")
        self.typist.tap("h")
        self.expect_input("kh")
        self.assertEqual(0, self.keyvora.log.count(ARMED))
