"""The document is followed, however an editor saves it."""

import json
import os
import threading
import time
from pathlib import Path

from harness.keyvora import Document
from harness.waiting import stays, until

from .desktop_test import DOCUMENT, DesktopTest

# The number of writes per second, and of sequences typed meanwhile.
STREAM = 2000
TIMES = 30


def document_of(count: int) -> Document:
    """A document with this many sequences, by which its reload is recognised."""
    sequences = [{"keys": f"Q{number}", "name": "none", "action": {"kind": "keytips", "keys": "A"}}
                 for number in range(count - len(DOCUMENT["sequences"]))]
    return DOCUMENT | {"sequences": [*DOCUMENT["sequences"], *sequences]}


class Writer(threading.Thread):
    """Writes the same text over a file again and again, `STREAM` times a second on average."""

    def __init__(self, path: Path, text: str) -> None:
        super().__init__()
        self.path = path
        self.text = text.encode()
        self.writes = 0
        self.seconds = 0.0
        self.ending = threading.Event()

    def run(self) -> None:
        start = time.monotonic()
        with self.path.open("wb", buffering=0) as file:
            while not self.ending.wait(1 / STREAM):
                self.seconds = time.monotonic() - start
                while self.writes < STREAM * self.seconds:
                    os.pwrite(file.fileno(), self.text, 0)
                    self.writes += 1

    def __enter__(self) -> "Writer":
        self.start()
        return self

    def __exit__(self, *_: object) -> None:
        self.ending.set()
        self.join()


class Watch(DesktopTest):
    def expect_reload(self, count: int) -> None:
        self.keyvora.log.wait(f"mappings reloaded, {count} sequences")

    def rename_into_place(self, document: Document) -> None:
        beside = self.keyvora.mappings.with_suffix(".new")
        beside.write_text(json.dumps(document))
        beside.rename(self.keyvora.mappings)

    def test_saved_in_place_again_and_again(self) -> None:
        for count in (5, 6, 7):
            self.keyvora.write(document_of(count))
            self.expect_reload(count)

    def test_saved_by_rename_again_and_again(self) -> None:
        for count in (5, 6, 7):
            self.rename_into_place(document_of(count))
            self.expect_reload(count)

    def test_saved_by_rename_while_the_old_file_is_held_open(self) -> None:
        for count in (5, 6):
            with self.keyvora.mappings.open():
                self.rename_into_place(document_of(count))
                self.expect_reload(count)

    def test_a_hundred_saves_in_a_row_the_last_one_holds(self) -> None:
        for count in range(5, 105):
            self.keyvora.write(document_of(count))
        self.expect_reload(104)
        # Each noticed save causes a reload; the last save's comes last.
        self.wait_for_quiet()
        self.typist.tap("Option", "q", "9", "9")
        self.keyvora.log.wait("Q99  none (keytips A)")
        self.assertEqual("mappings reloaded, 104 sequences",
                         [line for line in self.keyvora.log.messages() if "reloaded" in line][-1])

    def test_a_stream_of_writes_loses_no_sequence(self) -> None:
        """The file is written 2,000 times a second while sequences are typed."""
        self.typist.tap("k")
        with Writer(self.keyvora.mappings, json.dumps(DOCUMENT)) as writer:
            until(lambda: writer.writes > STREAM, "the stream")
            for _ in range(TIMES):
                self.typist.tap("Option", "h", "f", "a")
            self.expect_input("k" + "xa" * TIMES)
        self.assertGreaterEqual(writer.writes, STREAM * writer.seconds * 0.9)
        self.keyvora.log.wait("HF  Type x (keystroke)", TIMES)

    def test_a_broken_edit_keeps_the_last_good_document(self) -> None:
        self.keyvora.mappings.write_text('{"version": 1,')
        self.wait_for_refusal()
        self.expect_everything_works()
        self.keyvora.write(document_of(5))
        self.expect_reload(5)

    def test_deleted_it_keeps_the_last_good_document(self) -> None:
        self.keyvora.mappings.unlink()
        self.wait_for_refusal()
        self.expect_everything_works()

    def test_deleted_and_made_anew_at_once(self) -> None:
        self.keyvora.mappings.unlink()
        self.keyvora.write(document_of(5))
        self.expect_reload(5)
        self.keyvora.write(document_of(6))
        self.expect_reload(6)

    def wait_for_quiet(self) -> None:
        """Waits until half a second passes without a record in the log."""
        def quiet() -> bool:
            count = len(self.keyvora.log.messages())
            try:
                stays(lambda: len(self.keyvora.log.messages()), count, "the log's length", 0.5)
            except AssertionError:
                return False
            return True

        until(quiet, "the reloads to end")

    def wait_for_refusal(self) -> None:
        until(lambda: self.keyvora.log.has("mappings.json not loaded, keeping the last good one: "),
              "the refusal in the log", seen=self.keyvora.log.messages)


class WatchThroughALink(DesktopTest):
    starts_keyvora = False

    def test_a_symbolic_link_to_the_document(self) -> None:
        real = self.desktop.home / "dotfiles.json"
        self.keyvora.mappings.rename(real)
        os.symlink(real, self.keyvora.mappings)
        self.start()
        for count in (5, 6):
            real.write_text(json.dumps(document_of(count)))
            self.keyvora.log.wait(f"mappings reloaded, {count} sequences")
        self.assertTrue(self.keyvora.mappings.is_symlink())
