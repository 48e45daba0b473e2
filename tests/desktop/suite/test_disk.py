"""The user's home is on a full disk: nothing breaks, and with room again everything works as before."""

import json
from pathlib import Path

from harness.keyvora import Document, Keyvora
from harness.small_disk import SmallDisk
from harness.spreadsheet import Calc
from harness.waiting import equal, stays, until

from .desktop_test import DOCUMENT, DesktopTest

DEFAULT = Path(__file__).parents[3] / "resources" / "calc.json"
# The disk's allocation unit.
PAGE = 4096
# Needs more room than saving in place frees.
LARGE: Document = DOCUMENT | {"notes": ["k" * 2 * PAGE]}


class FullDisk(DesktopTest):
    starts_keyvora = False

    def setUp(self) -> None:
        try:
            self.disk = SmallDisk(self.environment.desktop.folder / "small")
        except PermissionError as error:
            self.skipTest(f"this system lets us mount no disk to fill: {error}")
        self.addCleanup(self.disk.unmount)
        super().setUp()
        self.keyvora = Keyvora(self.desktop, self.environment.keyvora, self.disk.folder,
                               desktop_file=Calc.desktop_file)

    def expect_said(self, text: str, since: int) -> None:
        """Waits for a line of the console copy, because the log cannot be written."""
        until(lambda: text in self.console()[since:], f"{text!r} on the console", 20,
              seen=lambda: self.console()[since:])

    def console(self) -> str:
        return self.keyvora.console.read_text() if self.keyvora.console.exists() else ""

    def test_the_first_start_leaves_the_default_document_whole_or_not_at_all(self) -> None:
        for free in (0, 4 * PAGE):
            self.disk.fill(free)
            since = len(self.console())
            self.keyvora.launch()
            self.expect_said("keyvora: tap installed, 0 sequences, ", since)
            equal(self.keyvora.status, "⌥", "the status")
            self.new_cell()
            self.typist.tap("k", "Option", "h", "a")
            self.expect_input("ka")
            self.expect_said("keyvora: no sequence H\n", since)
            self.assertEqual([], list(self.keyvora.mappings.parent.iterdir()), f"{free} bytes were free")
            self.dismiss()
            self.assertEqual(0, self.keyvora.stop())
            self.disk.make_room()
        self.start()
        self.assertEqual(DEFAULT.read_bytes(), self.keyvora.mappings.read_bytes())
        self.keyvora.write(DOCUMENT)
        self.keyvora.log.wait("mappings reloaded, 4 sequences")
        self.expect_everything_works()

    def test_full_while_it_runs_it_costs_log_records_and_the_save_that_did_not_fit(self) -> None:
        self.keyvora.write(DOCUMENT)
        self.start()
        self.expect_everything_works()
        before = self.fill_with_little_room_in_the_log()
        since = len(self.console())
        self.fire_into_a_cell()
        self.expect_said("keyvora: HF  Type x (keystroke)\n", since)
        stays(lambda: self.keyvora.log.path.stat().st_size, len(before), "the length of the log", 0.5)

        self.save_what_fits(LARGE)
        self.expect_said("keyvora: mappings.json not loaded, keeping the last good one: ", since)
        self.fire_into_a_cell()

        self.disk.make_room()
        self.keyvora.write(LARGE)
        self.keyvora.log.wait("mappings reloaded, 4 sequences")
        self.expect_everything_works()
        after = self.keyvora.log.path.read_bytes()
        self.assertTrue(after.startswith(before))
        for record in after[len(before):].decode().splitlines():
            self.assertRegex(record, r"^\d{4}-\d\d-\d\d \d\d:\d\d:\d\d \S")

    def fill_with_little_room_in_the_log(self) -> bytes:
        """Fills the disk and leaves room for the beginning of one record; returns the log's content."""
        room = 10
        with self.keyvora.log.path.open("a") as log:
            log.write("." * (-(log.tell() + room + 1) % PAGE) + "\n")
        self.disk.fill()
        log_now = self.keyvora.log.path.read_bytes()
        self.assertEqual(PAGE - room, len(log_now) % PAGE)
        return log_now

    def fire_into_a_cell(self) -> None:
        self.new_cell()
        self.typist.tap("k")
        self.fire()
        self.typist.tap("a")
        self.expect_input("kxa")

    def save_what_fits(self, document: Document) -> None:
        """Saves in place like an editor that notices too late that the disk is full."""
        whole = json.dumps(document).encode()
        with self.keyvora.mappings.open("wb", buffering=0) as file:
            written = file.write(whole)
        self.assertLess(written, len(whole))
