"""Keyboard layouts: the letters of a sequence are keys of the keyboard, the cell gets what the layout makes."""

from harness.waiting import equal

from .desktop_test import ARMED, DesktopTest

# Layout, variant, and what it makes of the keys that an American keyboard calls w, x and z.
LAYOUTS = [("us", "", "wxz"), ("fr", "", "zxw"), ("de", "", "wxy"), ("us", "dvorak", ",q;")]


class Layouts(DesktopTest):
    def test_sequences_are_typed_on_the_same_keys_everywhere(self) -> None:
        for layout, variant, keys in LAYOUTS:
            w, x, z = tuple(keys)
            with self.subTest(layout=layout, variant=variant):
                self.desktop.set_layout(layout, variant)
                self.new_cell()
                self.typist.tap("x", "w")
                self.fire()
                self.typist.tap("z")
                # The keystroke presses the key that an American keyboard calls x.
                self.expect_input(x + w + x + z)

    def test_the_layout_changes_while_armed(self) -> None:
        self.typist.tap("k", "Option", "h")
        self.desktop.set_layout("fr")
        self.typist.tap("f", "q")
        self.expect_input("kxa")

    def test_right_option_arms_where_it_is_option(self) -> None:
        self.typist.tap("k", "RightOption")
        self.keyvora.log.wait(ARMED)
        self.typist.tap("h", "f")
        self.expect_input("kx")

    def test_altgr_alone_arms_nothing(self) -> None:
        self.desktop.set_layout("de")
        self.new_cell()
        self.typist.tap("k", "RightOption", "h", "f")
        self.expect_input("khf")
        self.assertEqual(0, self.keyvora.log.count(ARMED))

    def test_altgr_characters_arrive_idle_and_armed(self) -> None:
        self.desktop.set_layout("de")
        self.new_cell()
        self.typist.tap("k", "RightOption+q", "RightOption+e")
        self.expect_input("k@€")
        self.assertEqual(0, self.keyvora.log.count(ARMED))
        self.typist.tap("Option", "h", "RightOption+q")
        self.expect_input("k@€@")
        # The character ended nothing: the sequence goes on.
        equal(self.keyvora.status, "⌥ H", "the status")
        self.typist.tap("f", "a")
        self.expect_input("k@€@xa")
