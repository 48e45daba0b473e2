"""Plays the commands of a script and compares the effects with its expectations."""

import json
import os
import pathlib
import time
from collections.abc import Callable
from functools import partial

import keys
import record
from program import Failed, Program, wait_for
from script import Command

# The objects that exist at the end of a run; all others must have been released.
LIVE_AT_THE_END = {
    "dispatch source": 1,
    "mach port": 1,
    "open file": 1,
    "run-loop source": 1,
    "serial queue": 1,
    "status item": 1,
    "updater controller": 1,
}
# Objects that may exist: the event source is created with the first event.
LIVE_AT_MOST = {"event source": 1}
# Commands that are passed to the program's driver unchanged.
FORWARDED = {
    "trust", "limit", "run", "quit", "front", "nomenus", "hang", "login", "feed", "disable", "kill",
    "wake", "active", "unlock", "track", "untrack", "sync", "answer",
}  # fmt: skip


class Session:
    def __init__(self, executable: pathlib.Path, home: pathlib.Path, screen: str):
        self.executable = executable
        self.bundle = executable.parent.parent
        self.home = home
        self.screen = screen
        self.launches = 0
        self.program: Program | None = None
        self.setup: list[list[str]] = []
        self.live: dict[str, int] = {}
        self.most: dict[str, int] = {}
        self.seen = 0
        self.posts = 0
        self.logged = 0

    # The commands of the script:

    def play(self, command: Command) -> None:
        try:
            if command.name in FORWARDED:
                self.forward(command.name, *command.text.split())
            else:
                getattr(self, "do_" + command.name)(command)
        except Failed as failure:
            raise Failed(f"{command.place}: {command.name} {command.text}: {failure}") from None

    def forward(self, *words: str) -> None:
        if self.program is None:
            self.setup.append(list(words))
            return
        answer = self.running().command(*words)
        if answer != "done" and words != ("answer",):  # which ends a probe
            raise Failed(answer or "the program has ended")

    def do_fail(self, command: Command) -> None:
        """`fail CALL TIMES`; a call's name may have blanks."""
        self.forward("fail", *command.text.rsplit(" ", 1))

    def do_menuitem(self, command: Command) -> None:
        self.forward("menuitem", *command.text.split(" > "))

    def do_launch(self, command: Command) -> None:
        self.launches += 1
        program = Program(self.home, self.launches)
        self.seen = self.posts = 0
        self.logged = program.log_start
        self.live, self.most = {}, dict(LIVE_AT_MOST)
        program.launch([str(self.executable), *command.text.split()], self.screen, self.setup)
        self.program, self.setup = program, []

    def do_document(self, command: Command) -> None:
        """Writes the mapping document in place, as an editor does; before a launch, the initial document."""
        self.mappings().parent.mkdir(parents=True, exist_ok=True)
        self.mappings().write_text(self.document(command), encoding="utf-8")

    def do_rename(self, command: Command) -> None:
        """Saves the mapping document as most editors do: by renaming a new file over it."""
        beside = self.mappings().with_suffix(".new")
        beside.write_text(self.document(command), encoding="utf-8")
        os.rename(beside, self.mappings())

    def document(self, command: Command) -> str:
        if command.text.startswith("from "):
            return (pathlib.Path(__file__).parent.parent / "sessions" / command.text[5:]).read_text(encoding="utf-8")
        return "\n".join(command.block) + "\n"

    def mappings(self) -> pathlib.Path:
        return self.home / "Library" / "Application Support" / "keyvora" / "mappings.json"

    # The keyboard:

    def do_tap(self, command: Command) -> None:
        """A modifier pressed and released by itself; both events reach the application."""
        code, flags = keys.MODIFIERS[command.text]
        self.expect_fate("down", code, flags, "passed")
        self.expect_fate("up", code, 0, "passed")

    def do_key(self, command: Command) -> None:
        """`key MODIFIERS+NAME FATE`: a key down, with that fate, and up, which always reaches the application."""
        name, fate = command.text.split(" ", 1)
        *modifiers, key = name.split("+")
        flags = keys.flags(modifiers)
        self.expect_fate("down", keys.CODES[key.lower()], flags, fate)
        self.expect_fate("up", keys.CODES[key.lower()], flags, "passed")

    def do_down(self, command: Command) -> None:
        code, flags = keys.MODIFIERS[command.text]
        self.expect_fate("down", code, flags, "passed")

    def do_up(self, command: Command) -> None:
        code, _ = keys.MODIFIERS[command.text]
        self.expect_fate("up", code, 0, "passed")

    def expect_fate(self, direction: str, code: int, flags: int, fate: str) -> None:
        answer = self.running().command(direction, str(code), hex(flags))
        if answer != fate:
            raise Failed(f"the key {direction} was {answer or 'not answered'}, not {fate}")

    # The status item:

    def do_title(self, command: Command) -> None:
        title = command.text.strip('"')
        wait_for(f"title {title!r}", lambda: self.running().command("title") == title)

    def do_rows(self, command: Command) -> None:
        expected = self.filled(command.block)
        self.attempt("rows", lambda: self.running().command("rows").split("\t"), expected, grows=False)

    def do_choose(self, command: Command) -> None:
        answer = self.running().command("choose", command.text)
        if answer not in ("done", ""):
            raise Failed(answer)

    # Effects:

    def do_log(self, command: Command) -> None:
        """All records logged since the last check."""
        expected = self.filled(command.block)
        end = self.logged + len(expected)
        self.attempt("log", lambda: self.running().log()[self.logged : end], expected)
        self.logged = end

    def do_record(self, command: Command) -> None:
        """Lines of the record in this order, with any others between."""
        for expected in self.filled(command.block):
            self.seen = wait_for(expected, partial(self.after, expected))

    def do_posts(self, command: Command) -> None:
        """All events posted since the last check, with the pauses between them."""
        self.attempt("posts", self.new_posts, command.block)
        self.posts = len(self.running().lines())

    def do_never(self, command: Command) -> None:
        """The record so far does not contain this line."""
        if any(line.text == command.text for line in self.running().lines()):
            raise Failed("it was")

    def do_times(self, command: Command) -> None:
        """`times N TEXT`: the record so far contains the line N times."""
        number, text = command.text.split(" ", 1)

        def found() -> int:
            return sum(line.text == text for line in self.running().lines())

        wait_for("so many", lambda: found() >= int(number))
        if found() != int(number):
            raise Failed(f"{found()} times")

    def do_quiet(self, command: Command) -> None:
        """`quiet SECONDS TEXT`: no such line comes within this time."""
        seconds, text = command.text.split(" ", 1)
        start = len(self.running().lines())
        time.sleep(float(seconds))
        if any(line.text == text for line in self.running().lines()[start:]):
            raise Failed("it came")

    def do_typing(self, command: Command) -> None:
        """`typing LETTERS`: the events posted since the last check type some of this many letters, but not all."""
        letters = sum(": keyUp" in line for line in self.new_posts())
        if not 0 < letters < int(command.text):
            raise Failed(f"{letters} letters were posted")
        self.posts = len(self.running().lines())

    def do_output(self, command: Command) -> None:
        wait_for("a line", lambda: self.running().stdout().endswith("\n"))
        if self.running().stdout() != command.text + "\n":
            raise Failed(f"standard output is {self.running().stdout()!r}")

    def do_most(self, command: Command) -> None:
        """`most N KIND`: at the end of this launch there are at most N such objects."""
        number, kind = command.text.split(" ", 1)
        self.most[kind] = int(number)

    def do_live(self, command: Command) -> None:
        """`live N KIND`: at the end of this launch there are N such objects, instead of the usual number."""
        number, kind = command.text.split(" ", 1)
        self.live[kind] = int(number)

    def do_exit(self, command: Command) -> None:
        """The program ends with this status, without a broken rule, further log records or unreleased objects."""
        status = self.running().wait()
        lines, stderr = self.running().lines(), self.running().stderr()
        problems = record.faults(lines, stderr)
        if status != int(command.text):
            problems.append(f"exit status {status}")
        left = record.live(lines)
        wanted = {**LIVE_AT_THE_END, **self.live}
        for kind in sorted({*left, *wanted}):
            count = left.get(kind, 0)
            if count != wanted.get(kind, 0) and not 0 <= count <= self.most.get(kind, 0):
                problems.append(f"{count} {kind} alive at the end, not {wanted.get(kind, 0)}")
        if more := self.running().log()[self.logged :]:
            problems.append(f"also logged: {more}")
        if more := self.new_posts():
            problems.append(f"also posted: {more}")
        if problems:
            raise Failed("\n  ".join(["", *problems]))
        self.running().end()
        self.program = None

    # Helpers:

    def running(self) -> Program:
        if self.program is None:
            raise Failed("nothing was launched")
        return self.program

    def after(self, expected: str) -> int:
        """The position after the next such line of the record; 0 when there is none."""
        lines = self.running().lines()
        return next((index + 1 for index in range(self.seen, len(lines)) if str(lines[index]) == expected), 0)

    def new_posts(self) -> list[str]:
        return [str(line) for line in self.running().lines()[self.posts :] if line.text.startswith(("post ", "usleep "))]

    def attempt(self, what: str, actual: Callable[[], list[str]], expected: list[str], grows: bool = True) -> None:
        """Waits until the value is as expected; for a growing value, fails as soon as it can no longer become so."""

        def settled() -> bool:
            now = actual()
            return now == expected or (grows and now != expected[: len(now)])

        try:
            wait_for(what, settled)
        except Failed:
            pass
        if actual() != expected:
            raise Failed(self.difference(actual(), expected))

    @staticmethod
    def difference(actual: list[str], expected: list[str]) -> str:
        return "\n  ".join(["expected", *expected, "but was", *actual])

    def filled(self, lines: list[str]) -> list[str]:
        default = json.loads((self.bundle / "Resources/keyvora_keyvora.bundle/mappings.json").read_text(encoding="utf-8"))
        values = {"{home}": str(self.home), "{sequences}": str(len(default["sequences"]))}
        for name, value in values.items():
            lines = [line.replace(name, value) for line in lines]
        return lines
