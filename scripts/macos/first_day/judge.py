#!/usr/bin/env python3
"""Judges what a step of first-day wrote down.

usage: judge.py stand-in RECORD LOG    what reached the stand-in, and what keyvora's log said meanwhile
       judge.py menus TREE DOCUMENT    the document's menu paths that are not in the tree
       judge.py paths DOCUMENT         the document's menu paths, titles set apart by tabulators

Prints a line for each finding and ends with 1 when one of them is a failure.
"""

import json
import pathlib
import re
import sys
import typing

OWN_MARKER = 0x5E7A91C3
SHIFT, OPTION, COMMAND = 0x20000, 0x80000, 0x100000
MODIFIERS = SHIFT | OPTION | COMMAND | 0x40000
# Milliseconds; events are stamped when they arrive, so that one may seem a little early after one that was late.
AFTER_LEAD_IN, AFTER_LETTER, ALLOWANCE = 150, 80, 15
KEY = re.compile(r"(down|up|flags) (\d+) flags 0x([0-9a-f]+) user 0x([0-9a-f]+) repeat (\d)$")
# Key codes of what is typed to fire each sequence of the stand-in's document, and of one that fires none.
TYPED = {40: "K", 17: "T", 46: "M", 1: "S", 7: "X"}
DIALOG_LETTER = 2
KEY_V, KEY_TIPS = 9, [4, 31, 34]
LEAD_IN = [(56, SHIFT), (58, SHIFT | OPTION), (58, SHIFT), (56, 0)]


class Key(typing.NamedTuple):
    time: float
    kind: str
    code: int
    flags: int
    ours: bool


def keys_of(lines: list[tuple[float, str]]) -> list[Key]:
    matches = ((time, KEY.match(text)) for time, text in lines)
    return [
        Key(time, match[1], int(match[2]), int(match[3], 16) & MODIFIERS, int(match[4], 16) == OWN_MARKER)
        for time, match in matches
        if match
    ]


def read_record(text: str) -> list[tuple[float, str]]:
    parts = (line.split("\t", 1) for line in text.splitlines() if "\t" in line)
    return [(float(time), what) for time, what in parts]


class Findings:
    def __init__(self) -> None:
        self.failures = 0

    def expect(self, holds: bool, what: str) -> None:
        print(("ok: " if holds else "FAILED: ") + what)
        self.failures += not holds

    @staticmethod
    def note(what: str) -> None:
        print("note: " + what)


def judge_key_tips(found: Findings, ours: list[Key]) -> None:
    """The lead-in and what follows it, with the least pauses between."""
    flags = [key for key in ours if key.kind == "flags"]
    found.expect([(key.code, key.flags) for key in flags] == LEAD_IN, "the lead-in is Shift, Option, and both let go")
    letters = [key for key in ours if key.kind == "down" and key.code in KEY_TIPS and key.flags == 0]
    found.expect([key.code for key in letters] == KEY_TIPS, "the key tips arrive in order, without flags")
    if len(flags) == len(LEAD_IN) and len(letters) == len(KEY_TIPS):
        times = [flags[-1].time] + [key.time for key in letters]
        pauses = [after - before for before, after in zip(times, times[1:])]
        least = [AFTER_LEAD_IN] + [AFTER_LETTER] * (len(KEY_TIPS) - 1)
        enough = all(pause >= wanted - ALLOWANCE for pause, wanted in zip(pauses, least))
        found.expect(enough, "pauses of " + ", ".join(f"{pause:.0f}" for pause in pauses) + " ms")


def judge_stand_in(record: str, log: str) -> int:
    found = Findings()
    lines = read_record(record)
    texts = [text for _, text in lines]
    keys = keys_of(lines)
    ours = [key for key in keys if key.ours]
    for line in ("K  Keystroke (keystroke)", "T  Key tips (keytips hoi)", "M  Menu (menu)", "S  Script (applescript)",
                 "D  Dialog (menu)", "no sequence X"):
        found.expect(line in log, f"the log says: {line}")
    armed = log.count("armed: Option tapped in Excel")
    found.expect(armed == 6, f"{armed} of 6 taps of Option armed")
    for code, letter in TYPED.items():
        leaked = [key for key in keys if key.kind == "down" and key.code == code and not key.ours]
        found.expect(not leaked, f"the letter {letter} was swallowed")
    pressed = [key for key in ours if key.code == KEY_V]
    found.expect([key.kind for key in pressed] == ["down", "up"], "the keystroke's key went down and up, marked as ours")
    found.expect(all(key.flags == SHIFT | COMMAND for key in pressed), "with Shift and Command in its flags, and no others")
    judge_key_tips(found, ours)
    found.expect(texts.count("menu Paste Values") == 1, "the keystroke chose Edit > Paste Values")
    found.expect(texts.count("menu Hide") == 1, "Format > Column > Hide was pressed")
    found.expect(texts.count("script from keyvora") == 1, "the script reached its application")
    found.expect("dialog opens" in texts, "File > Open Dialog... was pressed")
    leaked = [key for key in keys if key.kind == "down" and key.code == DIALOG_LETTER and not key.ours]
    Findings.note(f"the letter that opened the dialog reached it {len(leaked)} times")
    return 1 if found.failures else 0


def menu_paths(document: str) -> list[list[str]]:
    actions = [sequence["action"] for sequence in json.loads(document)["sequences"]]
    unique = {tuple(action["path"]): None for action in actions if action["kind"] == "menu"}
    return [list(path) for path in unique]


def judge_menus(tree: str, document: str) -> int:
    found = Findings()
    there = {tuple(line.split("\t")) for line in tree.splitlines()}
    for path in menu_paths(document):
        found.expect(tuple(path) in there, " > ".join(path))
    return 1 if found.failures else 0


def main(arguments: list[str]) -> int:
    def read(name: str) -> str:
        return pathlib.Path(name).read_text(encoding="utf-8", errors="replace")

    command, files = (arguments[0], arguments[1:]) if arguments else ("", [])
    try:
        if command == "stand-in" and len(files) == 2:
            return judge_stand_in(read(files[0]), read(files[1]))
        if command == "menus" and len(files) == 2:
            return judge_menus(read(files[0]), read(files[1]))
        if command == "paths" and len(files) == 1:
            print("\n".join("\t".join(path) for path in menu_paths(read(files[0]))))
            return 0
    except OSError as error:
        print(f"judge.py: {error}", file=sys.stderr)
        return 2
    print(__doc__, file=sys.stderr)
    return 2


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
