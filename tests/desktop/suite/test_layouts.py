"""Keyboard layouts: the letters of a sequence are places on the keyboard, while the cell gets the layout's characters."""

import json
import re
import subprocess

from harness.waiting import equal

from .desktop_test import ARMED, DOCUMENT, DesktopTest

# Layout, variant, and the letters of the keys labelled w, x and z on an American keyboard.
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
                # The keystroke presses the key labelled x on an American keyboard.
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
        # The character ended nothing: the sequence continues.
        equal(self.keyvora.status, "⌥ H", "the status")
        self.typist.tap("f", "a")
        self.expect_input("k@€@xa")


# What check is asked about: keys that some layouts have elsewhere, one of them with Shift, and key tips. No apostrophe
# among them: Calc corrects it while one types.
KEYS = [("x", []), ("b", []), ("a", []), ("w", []), ("z", []), ("y", []), ("m", []), ("4", ["shift"])]
TIPS = "AZX"
PRESSED = [key.upper() for key, _ in KEYS]


class LayoutsAsChecked(DesktopTest):
    """Checks that keystrokes and key tips type what `keyvora-mappings check --layout` reports."""

    document = {
        "version": 1,
        "timeoutMilliseconds": DOCUMENT["timeoutMilliseconds"],
        "tabs": {},
        "sequences": [
            {"keys": f"P{letter}", "name": "Press", "action": {"kind": "keystroke", "key": key, "modifiers": held}}
            for letter, (key, held) in zip(PRESSED, KEYS)]
        + [{"keys": "T", "name": "Tips", "action": {"kind": "keytips", "keys": TIPS}}],
    }

    def said(self, layout: str) -> list[str]:
        """What each action types according to check; without a report, what a US keyboard types."""
        typed = [{"4": "$"}.get(key, key) for key, _ in KEYS] + [TIPS.lower()]
        document = self.desktop.folder / "checked.json"
        document.write_text(json.dumps(self.document), encoding="utf-8")
        program = self.environment.keyvora.with_name("keyvora-mappings")
        done = subprocess.run([program, "check", "--json", "--layout", layout, document], capture_output=True,
                              encoding="utf-8", timeout=60, check=False)
        self.assertEqual(done.returncode, 0, done.stderr)
        for finding in json.loads(done.stdout)["findings"]:
            place = re.fullmatch(r"sequences\[([0-9]+)\]\.action\.keys?", finding["path"])
            if not place or finding["rule"] != "layout":
                continue
            types = re.search(r' types? (?:with Shift )?"([^"]+)", not ', finding["text"])
            self.assertTrue(types, finding["text"])
            typed[int(place[1])] = types[1].replace(" ", "").lower() if types else ""
        return typed

    def test_what_is_pressed_is_what_check_says(self) -> None:
        told = 0
        for layout, variant in (("us", ""), ("fr", ""), ("de", ""), ("ch", "fr"), ("us", "dvorak"), ("ru", "")):
            with self.subTest(layout=layout, variant=variant):
                said = self.said(f"{layout}({variant})" if variant else layout)
                told += said != self.said("us")
                self.desktop.set_layout(layout, variant)
                self.new_cell()
                for letter, (_, held) in zip(PRESSED, KEYS):
                    fired = self.keyvora.log.count(f"P{letter}  Press (keystroke)")
                    self.typist.tap("Option", "p", letter.lower())
                    self.keyvora.log.wait(f"P{letter}  Press (keystroke)", fired + 1)
                self.expect_input("".join(said[:-1]))
                self.typist.tap("Option", "t")
                self.expect_input("".join(said))
        self.assertEqual(told, 5, "how many layouts differ from US by what check says")
