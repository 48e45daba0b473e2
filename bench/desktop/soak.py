"""The real program with a spreadsheet and a simulated typist, for a given time; every result is checked."""

import argparse
import json
import random
import time

from console import DOCUMENT
from harness.keyvora import Keyvora
from harness.private_desktop import PrivateDesktop
from harness.process import counts
from harness.spreadsheet import Gnumeric
from harness.typist import Typist
from harness.waiting import Timeout, equal

SAMPLE = 60.0
# Without --minutes.
MINUTES = 10.0
# Milliseconds after each key: twice as fast as the fastest typists.
PACE = 30

# Keys to tap, and what they add to the cell.
Step = tuple[list[str], str]


def run(desktop: PrivateDesktop, arguments: argparse.Namespace) -> None:
    """Fills cells with plain letters and sequences; each cell must contain the result of every key."""
    document = json.loads(DOCUMENT)
    keyvora = Keyvora(desktop, arguments.programs / "app/keyvora")
    keyvora.write(document)
    sheet = Gnumeric(desktop)
    typist = Typist(desktop.children, arguments.programs / "tests/desktop/typist/keyvora-typist")
    typist.pace(PACE)
    keyvora.start()
    choose = random.Random(1)
    begin = time.monotonic()
    rounds, keys, fired, reloads = 0, 0, 0, 0

    def sample() -> float:
        now = time.monotonic()
        used = counts(keyvora.process_id())
        print(f"{(now - begin) / 60:8.1f}{rounds:8}{keys:8}{fired:8}{reloads:8}{used.resident:8}{used.written:8}"
              f"{used.files:6}{used.processor:8.2f}", flush=True)
        return now

    print(f"{'minutes':>8}{'rounds':>8}{'keys':>8}{'fired':>8}{'reloads':>8}{'KiB':>8}{'written':>8}{'files':>6}"
          f"{'CPU s':>8}")
    sampled = sample()
    while time.monotonic() - begin < (arguments.minutes or MINUTES) * 60:
        if time.monotonic() - sampled >= SAMPLE:
            sampled = sample()
        sheet.select(typist, "A1")
        expected = ""
        for typed, text in one_round(choose):
            typist.tap(*typed)
            expected += text
            keys += len(typed)
        expect(sheet, keyvora, expected)
        typist.tap("Escape")
        rounds += 1
        fired += sum(map(expected.count, "xn"))
        if rounds % 10 == 0:
            reloads += 1
            document["timeoutMilliseconds"] = 800 + reloads % 2
            keyvora.write(document)
    sample()
    counted = keyvora.log.count("HF  Type x (keystroke)") + keyvora.log.count("MM  Type n (keystroke)")
    if counted != fired:
        raise AssertionError(f"{fired} sequences fired into the cells, {counted} by the log")
    print(f"{keys} keys, {fired} sequences fired, no key lost; keyvora ended with status {keyvora.stop()}")


def expect(sheet: Gnumeric, keyvora: Keyvora, text: str) -> None:
    """Waits until the cell contains this; on failure reports keyvora's last log lines."""
    try:
        equal(sheet.input, text, "the cell's text", 30)
    except Timeout as timeout:
        said = "\n".join(keyvora.log.messages()[-8:])
        raise AssertionError(f"{timeout}\nkeyvora's log:\n{said}") from None


def one_round(choose: random.Random) -> list[Step]:
    """The steps for one cell."""
    steps: list[Step] = [(["k"], "k")]
    for _ in range(choose.randrange(3, 12)):
        letter = choose.choice("abcdefgh")
        steps.append(choose.choice([
            ([letter], letter),
            (["Option", "h", "f"], "x"),
            (["Option", "m", "m"], "n"),
            (["Option", "h", "Escape", letter], letter),  # cancelled
            (["Option", "q", letter], letter),  # no such sequence
            (["Option", "Option", letter], letter),
        ]))
    return steps
