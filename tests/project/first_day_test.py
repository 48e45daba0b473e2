"""scripts/macos/first-day as far as it runs without a Mac: its output, the skipped steps, and the judgements.

The test writes a record in the form of the stand-in's, and then breaks each rule once.
"""

import json
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tarfile
import tempfile
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
SCRIPT = ROOT / "scripts" / "macos" / "first-day"
JUDGE = ROOT / "scripts" / "macos" / "first_day" / "judge.py"

# The Mac commands that the steps `versions` and `settings` use.
COMMANDS = {
    "uname": 'case $1 in -s) echo Darwin ;; *) echo "Darwin 25.0.0 arm64" ;; esac',
    "sw_vers": "echo 'ProductVersion: 26.0'",
    "sysctl": "echo 'A processor'",
    "clang++": "echo 'a compiler'",
    "xcrun": "echo 26.0",
    "mdls": "exit 1",
    "defaults": "exit 1",
}

MARKER = "0x5e7a91c3"
LOG = """\
armed: Option tapped in Excel
K  Keystroke (keystroke)
armed: Option tapped in Excel
T  Key tips (keytips hoi)
armed: Option tapped in Excel
M  Menu (menu)
armed: Option tapped in Excel
S  Script (applescript)
armed: Option tapped in Excel
no sequence X
armed: Option tapped in Excel
D  Dialog (menu)
"""


def record() -> list[str]:
    def key(time: float, kind: str, code: int, flags: int, user: str = MARKER) -> str:
        return f"{time}\t{kind} {code} flags {flags:#x} user {user} repeat 0"

    lines = ["0.1\tready", key(90, "up", 40, 0x100, "0x0")]
    lines += [key(100, kind, 9, 0x120000) for kind in ("down", "up")] + ["100.5\tmenu Paste Values"]
    flags = [(56, 0x20000), (58, 0xA0000), (58, 0x20000), (56, 0)]
    lines += [key(1000 + number, "flags", code, bits) for number, (code, bits) in enumerate(flags)]
    for number, code in enumerate((4, 31, 34)):
        lines += [key(1155 + 82 * number, kind, code, 0) for kind in ("down", "up")]
    return lines + ["2000\tmenu Hide", "3000\tscript from keyvora", "4000\tdialog opens", "4500\tdialog closed"]


class FirstDay(unittest.TestCase):
    def setUp(self) -> None:
        scratch = tempfile.TemporaryDirectory()
        self.addCleanup(scratch.cleanup)
        self.folder = pathlib.Path(scratch.name)
        self.home = self.folder / "home"
        self.commands = self.folder / "bin"
        for folder in (self.home, self.commands):
            folder.mkdir()
        for name, body in COMMANDS.items():
            command = self.commands / name
            command.write_text(f"#!/bin/sh\n{body}\n", encoding="utf-8")
            command.chmod(0o755)

    def run_script(self, *arguments: str, on_a_mac: bool = False,
                   script: pathlib.Path = SCRIPT) -> subprocess.CompletedProcess[str]:
        path = f"{self.commands}{os.pathsep}{os.environ['PATH']}" if on_a_mac else os.environ["PATH"]
        environment = dict(os.environ, PATH=path, HOME=str(self.home), TMPDIR=str(self.folder),
                           GIT_CEILING_DIRECTORIES=str(self.folder))
        return subprocess.run([str(script), *arguments], env=environment, cwd=self.folder, stdin=subprocess.DEVNULL,
                              text=True, capture_output=True, timeout=120, check=False)

    def steps(self) -> list[str]:
        return [line.split()[0] for line in self.run_script("--list").stdout.splitlines()]

    def test_the_list_says_what_each_step_does(self) -> None:
        listed = self.run_script("--list").stdout.splitlines()
        self.assertGreater(len(listed), 10)
        for line in listed:
            self.assertRegex(line, r"^\w+ +[A-Z].*\.\)?$")
        names = self.steps()
        self.assertEqual(names[-1], "revoke", "the grant is taken away last")

    def test_wrong_arguments_are_refused(self) -> None:
        for arguments, said in ((["--skip", "nothing"], "there is no step nothing"), (["--only"], "--only takes a value"),
                                (["now"], "unknown argument now")):
            result = self.run_script(*arguments)
            self.assertEqual(result.returncode, 1)
            self.assertIn(said, result.stderr)

    def test_it_needs_a_mac(self) -> None:
        result = self.run_script("--only", "versions")
        self.assertEqual(result.returncode, 1)
        self.assertIn("this needs a Mac", result.stderr)

    def test_a_dry_run_announces_every_step_and_does_nothing(self) -> None:
        result = self.run_script("--dry-run")
        self.assertEqual(result.returncode, 0, result.stdout + result.stderr)
        self.assertEqual(result.stderr, "")
        for name in self.steps():
            self.assertRegex(result.stdout, rf"(?m)^==> {name}: ")
            self.assertRegex(result.stdout, rf"(?m)^shown\t{name}\t$")
        self.assertEqual(list(self.home.iterdir()), [])
        self.assertEqual(sorted(entry.name for entry in self.folder.iterdir()), ["bin", "home"])

    def test_steps_can_be_left_out(self) -> None:
        result = self.run_script("--dry-run", "--skip", "lock", "--unattended")
        self.assertIn("left out\tlock\tasked for", result.stdout)
        self.assertIn("left out\trevoke\tneeds a person", result.stdout)
        self.assertIn("shown\tstand_in", result.stdout)
        only = self.run_script("--dry-run", "--only", "sleep").stdout
        self.assertEqual(re.findall(r"(?m)^==> (\w+):", only), ["sleep"])

    def test_what_was_found_lands_in_one_archive(self) -> None:
        result = self.run_script("--only", "versions", "--only", "settings", "--only", "stand_in", "--archive",
                                 str(self.folder / "evidence.tar.gz"), on_a_mac=True)
        self.assertEqual(result.returncode, 1, result.stdout + result.stderr)  # no language is set on this Mac
        with tarfile.open(self.folder / "evidence.tar.gz") as archive:
            texts = {}
            for member in archive.getmembers():
                file = archive.extractfile(member)
                if file is not None:
                    texts[pathlib.PurePath(member.name).name] = file.read().decode()
        self.assertIn("ProductVersion: 26.0", texts["versions.txt"])
        self.assertRegex(texts["results.txt"], r"passed\tversions\t\nfailed\tsettings\t.*\nleft out\tstand_in\t.*not built")

    def test_the_versions_are_found_in_a_source_archive(self) -> None:
        source = self.folder / "source"
        shutil.copytree(ROOT / "scripts", source / "scripts")
        shutil.copy(ROOT / "CMakeLists.txt", source)
        result = self.run_script("--only", "versions", on_a_mac=True, script=source / "scripts" / "macos" / "first-day")
        self.assertEqual(result.returncode, 0, result.stdout + result.stderr)
        self.assertRegex(result.stdout, r"(?m)^project\(keyvora VERSION \d")
        self.assertIn("their commit is unknown", result.stdout)
        self.assertRegex(result.stdout, r"(?m)^passed\tversions\t$")


class Judge(unittest.TestCase):
    def judge(self, *arguments: str, **files: str) -> tuple[int, str]:
        with tempfile.TemporaryDirectory() as folder:
            for name, text in files.items():
                pathlib.Path(folder, name).write_text(text, encoding="utf-8")
            paths = [str(pathlib.Path(folder, name)) if name in files else name for name in arguments]
            result = subprocess.run([sys.executable, str(JUDGE), *paths], text=True, capture_output=True, timeout=60, check=False)
            return result.returncode, result.stdout + result.stderr

    def of_session(self, lines: list[str], log: str = LOG) -> tuple[int, str]:
        return self.judge("stand-in", "record", "log", record="\n".join(lines) + "\n", log=log)

    def test_a_faultless_session_passes(self) -> None:
        status, said = self.of_session(record())
        self.assertEqual(status, 0, said)
        self.assertNotIn("FAILED", said)

    def test_each_broken_rule_is_named(self) -> None:
        good = record()
        leaked = "95\tdown 40 flags 0x100 user 0x0 repeat 0"
        cases = [
            ([*good, leaked], "the letter K was swallowed"),
            ([line.replace("0x120000", "0x100000") for line in good], "Shift and Command"),
            ([line for line in good if "\tup 9 " not in line], "went down and up"),
            ([line.replace(MARKER, "0x0") for line in good], "marked as ours"),
            ([line for line in good if "flags 56" not in line], "the lead-in"),
            ([line.replace("1155\t", "1040\t") for line in good], "FAILED: pauses of"),
            ([line.replace("down 31", "down 32") for line in good], "in order"),
            ([line for line in good if "Paste Values" not in line], "Paste Values"),
            ([line for line in good if "menu Hide" not in line], "Hide was pressed"),
            ([line for line in good if "script" not in line], "the script reached"),
            ([line for line in good if "dialog opens" not in line], "Open Dialog"),
        ]
        for lines, fault in cases:
            with self.subTest(fault):
                status, said = self.of_session(lines)
                self.assertEqual(status, 1)
                failures = [line for line in said.splitlines() if line.startswith("FAILED: ")]
                self.assertTrue([line for line in failures if fault.removeprefix("FAILED: ") in line], said)

    def test_the_log_must_say_everything(self) -> None:
        for line in set(LOG.splitlines()):
            status, said = self.of_session(record(), LOG.replace(line + "\n", "", 1))
            self.assertEqual(status, 1, line)
            self.assertIn("FAILED", said)

    def test_letters_that_reach_the_dialog_are_told_and_no_failure(self) -> None:
        status, said = self.of_session([*record(), "4100\tdown 2 flags 0x100 user 0x0 repeat 0"])
        self.assertEqual(status, 0, said)
        self.assertIn("note: the letter that opened the dialog reached it 1 times", said)

    def test_menu_paths_are_held_against_the_tree(self) -> None:
        actions = [{"kind": "menu", "path": ["File", "Save"]}, {"kind": "keytips", "keys": "H"}]
        text = json.dumps({"sequences": [{"action": action} for action in actions]})
        self.assertEqual(self.judge("paths", "document", document=text), (0, "File\tSave\n"))
        self.assertEqual(self.judge("menus", "tree", "document", tree="File\nFile\tSave\n", document=text)[0], 0)
        status, said = self.judge("menus", "tree", "document", tree="File\n", document=text)
        self.assertEqual((status, said), (1, "FAILED: File > Save\n"))

    def test_the_default_document_and_the_stand_ins_are_read(self) -> None:
        for document in ("resources/mappings.json", "tests/macos/stand_in/mappings.json"):
            status, said = self.judge("paths", str(ROOT / document))
            self.assertEqual(status, 0)
            self.assertIn("\t", said)

    def test_a_missing_file_and_a_wrong_call_end_with_2(self) -> None:
        self.assertEqual(self.judge("paths", "/nowhere")[0], 2)
        self.assertEqual(self.judge("sing")[0], 2)


if __name__ == "__main__":
    unittest.main()
