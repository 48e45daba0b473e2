"""Holds the examples of docs/mappings.md against the programs: documents are sound, sessions read as written."""

import json
import os
import pathlib
import re
import subprocess
import sys
import tempfile
import unittest

PROGRAM = os.path.abspath(sys.argv.pop(1))
ROOT = pathlib.Path(__file__).resolve().parents[2]
TEXT = (ROOT / "docs/mappings.md").read_text(encoding="utf-8")
WAIT = """{ "version": 1, "tabs": {}, "sequences": [
  { "keys": "HH", "name": "Fill color", "action": { "kind": "keytips", "keys": "HH" } },
  { "keys": "HHN", "name": "No fill", "action": { "kind": "keytips", "keys": "HHN" } } ] }"""
FRENCH = """{ "version": 1, "tabs": {}, "sequences": [
  { "keys": "HA", "name": "Undo", "action": { "kind": "keystroke", "key": "z", "modifiers": ["command"] } } ] }"""


def blocks(language):
    return re.findall(rf"^```{language}\n(.*?)^```", TEXT, re.DOTALL | re.MULTILINE)


def run(arguments, folder, text=None):
    """What the program writes; None when this build lacks what it was asked for."""
    environment = {**os.environ, "HOME": str(folder)}
    done = subprocess.run([PROGRAM, *arguments], cwd=folder, env=environment, input=text, capture_output=True,
                          encoding="utf-8")
    return None if "this build knows no keyboard layouts" in done.stderr else done.stdout


class Docs(unittest.TestCase):
    def setUp(self):
        directory = tempfile.TemporaryDirectory()
        self.addCleanup(directory.cleanup)
        self.folder = pathlib.Path(directory.name)
        (self.folder / "wait.json").write_text(WAIT)
        (self.folder / "french.json").write_text(FRENCH)
        excel = (ROOT / "resources/mappings.json").read_text(encoding="utf-8")
        (self.folder / "excel.json").write_text(excel, encoding="utf-8")
        broken = (ROOT / "tests/tools/broken/errors_and_warnings.json").read_text(encoding="utf-8")
        (self.folder / "errors_and_warnings.json").write_text(broken, encoding="utf-8")

    def test_the_documents_and_sequences_are_sound(self):
        kinds = set()
        for block in blocks("json"):
            whole = block if '"version"' in block else f'{{"version": 1, "tabs": {{}}, "sequences": [{block}]}}'
            kinds |= {sequence["action"]["kind"] for sequence in json.loads(whole)["sequences"]}
            self.assertEqual(run(["check", "-"], self.folder, whole), "", block)
        self.assertEqual(kinds, {"applescript", "keystroke", "keytips", "menu"})

    def test_the_sessions_read_as_the_program_writes_them(self):
        sessions = blocks("console")
        self.assertGreater(len(sessions), 2)
        for session in sessions:
            command, output = session.split("\n", 1)
            program, *arguments = command.removeprefix("$ ").split()
            if program == "keyvora-mappings":
                written = run(arguments, self.folder)
                if written is not None:
                    self.assertEqual(written, output)
            else:
                self.assertTrue(program.startswith("scripts/"), command)
                self.assertEqual(subprocess.run([ROOT / program, *arguments], cwd=ROOT, capture_output=True,
                                                encoding="utf-8").stdout, output)

    def test_links_lead_somewhere(self):
        for page in ("mappings.md", "troubleshooting.md"):
            text = (ROOT / "docs" / page).read_text(encoding="utf-8")
            for target in re.findall(r"\]\(([^)]+)\)", text):
                file, _, anchor = target.partition("#")
                path = ROOT / "docs" / (file or page)
                self.assertTrue(path.exists(), target)
                if anchor:
                    headings = re.findall(r"^#+ (.*)$", path.read_text(encoding="utf-8"), re.MULTILINE)
                    slugs = {re.sub(r"[^\w\- ]", "", heading.lower()).replace(" ", "-") for heading in headings}
                    self.assertIn(anchor, slugs)


if __name__ == "__main__":
    unittest.main()
