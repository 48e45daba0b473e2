"""Runs the end-to-end tests: `python3 -m suite --keyvora PROGRAM --typist PROGRAM [MODULE|MODULE.CLASS.TEST ...]`

Starts one private desktop with one spreadsheet for all of them. A failed test leaves a screenshot and the
logs of everything that ran in the folder of --artifacts. Exit status 77: the spreadsheet is not
installed, or the system does not allow any of these tests.
"""

import argparse
import faulthandler
import shutil
import sys
import unittest
from pathlib import Path
from typing import Any, TypeAlias

from harness.panels import PANELS
from harness.private_desktop import PrivateDesktop

SKIPPED = 77
HERE = Path(__file__).parent


def main() -> int:
    arguments = parse()
    from harness.spreadsheet import SPREADSHEETS
    kind = SPREADSHEETS[arguments.target]
    if not kind.is_installed():
        print(f"{kind.program} is not installed")
        return SKIPPED
    panel = PANELS.get(arguments.panel)
    if panel and not panel.is_installed():
        print(f"{panel.program} is not installed")
        return SKIPPED
    if arguments.wayland and not (shutil.which("mutter") and shutil.which("Xwayland")):
        print("mutter or Xwayland is not installed")
        return SKIPPED
    # A call into the accessibility library cannot be interrupted: print a traceback if it never returns.
    faulthandler.dump_traceback_later(arguments.limit, exit=True)
    with PrivateDesktop(tray=not panel and not arguments.wayland, wayland="mutter" if arguments.wayland else "",
                        window_manager=not panel or not panel.is_window_manager) as desktop:
        from .desktop_test import DesktopTest, Environment
        shown_in = panel(desktop.children, desktop.home) if panel else None
        if shown_in:
            shown_in.start()
        DesktopTest.environment = Environment(desktop, arguments.keyvora, arguments.typist, kind(desktop), shown_in,
                                              arguments.pictures)
        names = [f"suite.{name}" for name in arguments.tests or every_module()]
        suite = unittest.defaultTestLoader.loadTestsFromNames(names)
        Result.artifacts = arguments.artifacts / (arguments.panel or arguments.target)
        runner = unittest.TextTestRunner(sys.stdout, verbosity=2, resultclass=Result)
        result = runner.run(suite)
        if result.skipped and len(result.skipped) == result.testsRun:
            return SKIPPED
        return 0 if result.wasSuccessful() else 1


def parse() -> argparse.Namespace:
    parser = argparse.ArgumentParser(prog="suite", description="The end-to-end tests.")
    parser.add_argument("--target", choices=["gnumeric", "calc"], default="gnumeric")
    parser.add_argument("--panel", choices=sorted(PANELS), help="what shows the status item; a system tray without")
    parser.add_argument("--wayland", action="store_true", help="in a session of Wayland, for X programs")
    parser.add_argument("--pictures", type=Path, default=Path("pictures"), help="the folder for what a person looks at")
    parser.add_argument("--keyvora", type=Path, required=True, help="the program under test")
    parser.add_argument("--typist", type=Path, required=True, help="keyvora-typist")
    parser.add_argument("--artifacts", type=Path, default=Path("desktop-failures"))
    parser.add_argument("--limit", type=float, default=580, help="seconds after which everything is ended")
    parser.add_argument("tests", nargs="*", help="test_bursts, test_watch.Watch, ...; all without")
    return parser.parse_args()


def every_module() -> list[str]:
    return sorted(path.stem for path in HERE.glob("test_*.py"))


# unittest's description of a failure.
Fault: TypeAlias = Any


class Result(unittest.TextTestResult):
    """Saves the screen and the logs at the moment of a failure."""

    artifacts: Path

    def stopTest(self, test: unittest.TestCase) -> None:
        from .desktop_test import DesktopTest
        super().stopTest(test)
        desktop = DesktopTest.environment.desktop
        left = [program for program in desktop.children.running() if program.endswith("-typist")]
        if left:
            error = AssertionError(f"hands were left at the keyboard: {left}")
            self.addFailure(test, (type(error), error, None))

    def addFailure(self, test: unittest.TestCase, err: Fault) -> None:
        super().addFailure(test, err)
        self._keep(test, self.failures[-1][1])

    def addError(self, test: unittest.TestCase, err: Fault) -> None:
        super().addError(test, err)
        self._keep(test, self.errors[-1][1])

    def addSubTest(self, test: unittest.TestCase, subtest: unittest.TestCase,
                   err: Fault | None) -> None:
        super().addSubTest(test, subtest, err)
        if err:
            self._keep(test, (self.failures + self.errors)[-1][1])

    def printErrors(self) -> None:
        """They were printed when they happened."""

    def _keep(self, test: unittest.TestCase, why: str) -> None:
        from .desktop_test import DesktopTest
        desktop = DesktopTest.environment.desktop
        folder = self.artifacts / test.id()
        shutil.rmtree(folder, ignore_errors=True)
        desktop.screenshot(folder / "screen.png")
        for log in (*desktop.folder.glob("logs/*.log"), *desktop.home.glob("Library/Logs/*.log")):
            (folder / f"{log.parent.parent.name}-{log.name}").write_bytes(log.read_bytes())
        print(f"\n{why}\nkeyvora's log:\n{_tail(desktop.home / 'Library/Logs/keyvora.log')}"
              f"\nIts standard error:\n{_tail(desktop.children.log('keyvora'))}\nKept in {folder}")


def _tail(path: Path, lines: int = 25) -> str:
    if not path.exists():
        return "(none)"
    return "\n".join(path.read_text(errors="replace").splitlines()[-lines:])


if __name__ == "__main__":
    sys.exit(main())
