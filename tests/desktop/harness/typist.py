"""The simulated user's keyboard input."""

from pathlib import Path

from .children import Children, stop
from .private_desktop import KEYBOARD

# The keyboard of programs that type, by the XTEST extension.
XTEST_KEYBOARD = "Virtual core XTEST keyboard"


class Typist:
    """Types on one keyboard of the display; every call returns when the display has processed the keys.

    Keys are named by their labels on an American keyboard, whatever the layout. `device` selects another keyboard:
    XTEST_KEYBOARD is the one on which programs type.
    """

    def __init__(self, children: Children, program: Path, device: str = KEYBOARD) -> None:
        self._process = children.start([str(program), device], name="typist", interactive=True)
        self._expect_ok("start")

    def end(self) -> None:
        """Ends the program; keys that it holds stay down."""
        stop(self._process)

    def pace(self, milliseconds: int) -> None:
        """Sets the pause after every key."""
        self.send(f"pace {milliseconds}")

    def tap(self, *keys: str) -> None:
        """Presses and releases each key in turn; "Option+Shift+f" is a chord."""
        self.send("tap " + " ".join(keys))

    def burst(self, times: int, *keys: str) -> None:
        """Taps the keys this many times, all sent at once."""
        self.send(f"burst {times} " + " ".join(keys))

    def down(self, *keys: str) -> None:
        """Presses keys and holds them."""
        self.send("down " + " ".join(keys))

    def up(self, *keys: str) -> None:
        """Releases keys."""
        self.send("up " + " ".join(keys))

    def send(self, command: str) -> None:
        """Plays one command of keyvora-typist and waits for it."""
        self.begin(command)
        self._expect_ok(command)

    def begin(self, command: str) -> None:
        """Starts one command; `finish` waits for it."""
        stdin = self._process.stdin
        assert stdin
        stdin.write(command.encode() + b"\n")
        stdin.flush()

    def finish(self) -> None:
        """Waits for the command that `begin` started."""
        self._expect_ok("the command begun")

    def _expect_ok(self, command: str) -> None:
        stdout = self._process.stdout
        assert stdout
        answer = stdout.readline().decode().strip()
        if answer != "ok":
            raise RuntimeError(f"the typist could not do {command!r}: {answer or 'it ended'}")
