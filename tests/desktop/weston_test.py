#!/usr/bin/python3
"""keyvora in a session of Weston, a Wayland compositor that does not tell which X window is in front.

usage: weston_test.py --keyvora PROGRAM --mappings PROGRAM. Exit status 77: weston, Xwayland or gnumeric is missing.
"""

import argparse
import shutil
import subprocess
import sys
import unittest
from pathlib import Path

from harness import x11
from harness.keyvora import Keyvora
from harness.private_desktop import PrivateDesktop
from harness.waiting import until

SKIPPED = 77
PATIENCE = 60

NAMED = ("no window manager: This is a Wayland session whose compositor does not tell which X window is in front: "
         "key sequences do not work.")
REMEDY = "They do in the sessions of GNOME and KDE."


class Weston(unittest.TestCase):
    keyvora: Path
    mappings: Path

    def setUp(self) -> None:
        self.desktop = self.enterContext(PrivateDesktop(tray=False, wayland="weston"))
        self.program = Keyvora(self.desktop, self.keyvora)
        self.program.write({"version": 1, "tabs": {}, "sequences": []})

    def test_the_log_and_the_doctor_say_that_sequences_do_not_work(self) -> None:
        self.desktop.children.start(["gnumeric", "--no-splash"])
        until(lambda: x11.windows_of_class("Gnumeric"), "the spreadsheet", PATIENCE)
        self.program.launch()
        until(lambda: self.program.log.has(f"{NAMED} {REMEDY}"), "the finding in the log", PATIENCE,
              seen=self.program.log.messages)
        done = subprocess.run([self.mappings, "doctor"], capture_output=True, text=True, check=False, timeout=PATIENCE)
        self.assertEqual(1, done.returncode, done.stderr)
        self.assertIn(f"{NAMED}\n  {REMEDY}\n", done.stdout)
        self.assertNotIn("key sequences work in applications", done.stdout)
        self.assertEqual(0, self.program.stop())


if __name__ == "__main__":
    parser = argparse.ArgumentParser(description="keyvora in a session of Weston.")
    parser.add_argument("--keyvora", type=Path, required=True, help="the program under test")
    parser.add_argument("--mappings", type=Path, required=True, help="keyvora-mappings")
    arguments, rest = parser.parse_known_args()
    if missing := [name for name in ("weston", "Xwayland", "gnumeric") if not shutil.which(name)]:
        print(", ".join(missing), "missing")
        sys.exit(SKIPPED)
    Weston.keyvora, Weston.mappings = arguments.keyvora.resolve(), arguments.mappings.resolve()
    unittest.main(argv=[sys.argv[0], *rest], verbosity=2)
