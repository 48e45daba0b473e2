"""Compares a document with the running spreadsheet: a path that is not in its menus is reported, and nothing is carried
out."""

import json
import re
import subprocess

from harness.x11 import active_window

from .desktop_test import DesktopTest
from .document_test import RESOURCES


class Rehearse(DesktopTest):
    starts_keyvora = False

    def end(self) -> None:
        """Does nothing: these tests start no keyvora."""

    def rehearse(self, *arguments: str) -> subprocess.CompletedProcess[str]:
        program = self.environment.keyvora.with_name("keyvora-mappings")
        return subprocess.run([program, "rehearse", *arguments], capture_output=True, encoding="utf-8", timeout=200,
                              check=False)

    def test_a_wrong_path_that_is_put_in_is_found(self) -> None:
        name = type(self.sheet).__name__.lower()
        document = json.loads((RESOURCES / f"{name}.json").read_text(encoding="utf-8"))
        sound = self.desktop.folder / "sound.json"
        sound.write_text(json.dumps(document), encoding="utf-8")
        done = self.rehearse(str(sound))
        self.assertEqual((done.returncode, done.stderr), (0, ""), done.stdout)
        self.assertRegex(done.stdout, r"menus: File, Edit, View,.*\n[0-9]+ menu paths: [1-9][0-9]* found, 0 missing\n")
        keys = re.search(r"keys: ([0-9]+) shown in the menus", done.stdout)
        self.assertGreater(int(keys[1]) if keys else 0, 5, done.stdout)

        wrong = next(each for each in document["sequences"] if each["action"]["kind"] == "menu")
        wrong["action"]["path"][-1] += "x"
        sound.write_text(json.dumps(document), encoding="utf-8")
        before = active_window()
        done = self.rehearse(str(sound))
        self.assertEqual(done.returncode, 1, done.stdout + done.stderr)
        self.assertRegex(done.stdout, f'error: .*: {wrong["keys"]}: no menu item .*did you mean')
        self.assertEqual(done.stdout.count("error:"), 1, done.stdout)
        self.assertEqual(active_window(), before)
