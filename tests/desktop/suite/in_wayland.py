"""keyvora in a Wayland session, with the spreadsheet as an X program. Run with --wayland."""

from harness.typist import XTEST_KEYBOARD, Typist
from harness.waiting import until

from .desktop_test import ARMED, DesktopTest


class Wayland(DesktopTest):
    starts_keyvora = False

    def new_typist(self, **options: str) -> Typist:
        """The compositor uses the hardware keyboard, so this typist uses XTEST's."""
        return super().new_typist(device=XTEST_KEYBOARD, **options)

    def setUp(self) -> None:
        super().setUp()
        self.keyvora.launch()
        until(lambda: self.keyvora.log.has("tap installed, "), "the tap", 20, seen=self.keyvora.log.messages)

    def test_it_says_what_works_and_a_sequence_acts(self) -> None:
        self.assertIn("key sequences work in applications that run through XWayland", self.keyvora.console.read_text())
        self.typist.tap("k")
        self.fire()
        self.keyvora.log.wait(ARMED)
        self.typist.tap("a")
        self.expect_input("kxa")

    def test_a_dead_end_is_told(self) -> None:
        self.typist.tap("Option", "h", "q")
        until(lambda: self.keyvora.log.has("no sequence HQ"), "the dead end", seen=self.keyvora.log.messages)
        self.assertEqual("", self.sheet.input())
