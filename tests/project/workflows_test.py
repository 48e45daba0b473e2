"""What every workflow of continuous integration keeps to: least rights, and actions pinned by commit."""

import pathlib
import re
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
WORKFLOWS = {path.name: path.read_text(encoding="utf-8") for path in (ROOT / ".github" / "workflows").glob("*.yml")}


class Workflows(unittest.TestCase):
    def test_there_are_workflows(self) -> None:
        self.assertLessEqual({"linux.yml", "macos.yml", "nightly.yml"}, set(WORKFLOWS))

    def test_every_workflow_may_only_read(self) -> None:
        for name, text in WORKFLOWS.items():
            with self.subTest(name):
                self.assertEqual(re.findall(r"^permissions:\n((?: +.*\n)+)", text, flags=re.MULTILINE), ["  contents: read\n"])
                self.assertEqual(text.count("permissions:"), 1)

    def test_every_action_is_pinned_by_commit_and_says_its_version(self) -> None:
        for name, text in WORKFLOWS.items():
            for line in re.findall(r"^.*\buses:.*$", text, flags=re.MULTILINE):
                with self.subTest(f"{name}: {line.strip()}"):
                    self.assertRegex(line, r"uses: [\w./-]+@[0-9a-f]{40} +# v\d+\.\d+\.\d+$")

    def test_no_checkout_leaves_its_token_behind(self) -> None:
        for name, text in WORKFLOWS.items():
            with self.subTest(name):
                self.assertEqual(text.count("actions/checkout@"), text.count("persist-credentials: false"))

    def test_the_commands_that_run_are_there(self) -> None:
        for name, text in WORKFLOWS.items():
            for command in re.findall(r"(?:run: |^ {10})(\./\w+|(?:scripts|packaging)/[\w/-]+)", text, flags=re.MULTILINE):
                with self.subTest(f"{name}: {command}"):
                    self.assertTrue((ROOT / command).is_file())


if __name__ == "__main__":
    unittest.main()
