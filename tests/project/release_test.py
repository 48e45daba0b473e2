"""Makes a release in a copy of the tree, which is thrown away with its tag."""

import hashlib
import os
import pathlib
import re
import shutil
import subprocess
import tempfile
import unittest
from xml.etree import ElementTree

ROOT = pathlib.Path(__file__).resolve().parents[2]
FILES = ("scripts/release", "CMakeLists.txt", "CHANGELOG.md", "packaging/linux/debian/changelog",
         "packaging/linux/org.keyvora.keyvora.metainfo.xml")
PERSON = {f"GIT_{role}_{what}": value for role in ("AUTHOR", "COMMITTER")
          for what, value in (("NAME", "A person"), ("EMAIL", "person@example.org"))}
ENVIRONMENT = {"PATH": os.environ["PATH"], "SOURCE_DATE_EPOCH": "1800000000", "GIT_CONFIG_GLOBAL": os.devnull, **PERSON}


class Release(unittest.TestCase):
    def setUp(self) -> None:
        self.tree = pathlib.Path(self.enterContext(tempfile.TemporaryDirectory(prefix="keyvora-release-")))
        for name in FILES:
            (self.tree / name).parent.mkdir(parents=True, exist_ok=True)
            shutil.copy(ROOT / name, self.tree / name)
        changelog = self.tree / "CHANGELOG.md"
        changelog.write_text(changelog.read_text(encoding="utf-8").replace(
            "## [Unreleased]\n", "## [Unreleased]\n\n### Added\n\n- Something `new` & good.\n", 1), encoding="utf-8")
        self.git("init", "--quiet")
        self.git("add", ".")
        self.git("commit", "--quiet", "--message", "All of it")

    def git(self, *arguments: str) -> str:
        return subprocess.run(["git", *arguments], cwd=self.tree, env=ENVIRONMENT, capture_output=True, text=True,
                              check=True).stdout.strip()

    def release(self, *arguments: str) -> subprocess.CompletedProcess[str]:
        return subprocess.run([self.tree / "scripts/release", *arguments], env=ENVIRONMENT, capture_output=True, text=True,
                              check=False)

    def read(self, name: str) -> str:
        return (self.tree / name).read_text(encoding="utf-8")

    def assert_refused(self, why: str, *arguments: str) -> None:
        before = self.git("rev-parse", "HEAD")
        done = self.release(*arguments)
        self.assertNotEqual(done.returncode, 0)
        self.assertIn(why, done.stderr)
        self.assertEqual((self.git("rev-parse", "HEAD"), self.git("tag")), (before, ""))

    def add_test(self, status: int) -> None:
        """Puts a ./test into the tree that ends with this status."""
        (self.tree / "test").write_text(f"#!/bin/sh\necho tested\nexit {status}\n", encoding="ascii")
        (self.tree / "test").chmod(0o755)
        self.git("add", "test")
        self.git("commit", "--quiet", "--message", "Test")

    def test_a_dry_run_says_what_it_would_publish_and_changes_nothing(self) -> None:
        self.add_test(0)
        before = self.git("rev-parse", "HEAD")
        (self.tree / ".git/info/exclude").write_text("/build/\n", encoding="ascii")
        for name, content in (("releases/keyvora-7.8.9.zip", b"packed"), ("debian/keyvora_7.8.9-1~deb12_amd64.deb", b"for 12")):
            (self.tree / "build" / name).parent.mkdir(parents=True)
            (self.tree / "build" / name).write_bytes(content)
        done = self.release("7.8.9", "--dry-run")
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        self.assertIn("keyvora 7.8.9, build ", done.stdout)
        self.assertIn("Something `new` & good.", done.stdout)
        self.assertIn("\ntested\n", done.stdout)
        listed = {name: value for value, name in re.findall(r"^(\S+|not built here) +(\S+)$", done.stdout, flags=re.MULTILINE)}
        self.assertEqual(listed["keyvora-7.8.9.zip"], hashlib.sha256(b"packed").hexdigest())
        self.assertEqual(listed["keyvora_7.8.9-1.deb12_amd64.deb"], hashlib.sha256(b"for 12").hexdigest())
        for name in ("keyvora_7.8.9-1.deb13_amd64.deb", "appcast.xml", "keyvora.rb", "keyvora-7.8.9.spdx.json", "SHA256SUMS"):
            self.assertEqual(listed[name], "not built here")
        self.assertEqual((self.git("rev-parse", "HEAD"), self.git("tag"), self.git("status", "--porcelain")), (before, "", ""))

    def test_a_release_has_its_version_everywhere_and_a_tag(self) -> None:
        (build,) = re.findall(r"KEYVORA_BUILD (\d+) CACHE", self.read("CMakeLists.txt"))
        done = self.release("7.8.9", "--tested")
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        self.assertIn("project(keyvora VERSION 7.8.9 ", self.read("CMakeLists.txt"))
        self.assertIn(f"set(KEYVORA_BUILD {int(build) + 1} CACHE", self.read("CMakeLists.txt"))
        self.assertIn("## [Unreleased]\n\n## [7.8.9] - 2027-01-15\n\n### Added\n\n- Something", self.read("CHANGELOG.md"))
        self.assertIn("## [0.1.0]", self.read("CHANGELOG.md"))
        self.assertTrue(self.read(FILES[3]).startswith("keyvora (7.8.9-1) unstable"))
        newest = ElementTree.fromstring(self.read(FILES[4])).find("releases/release")
        assert newest is not None
        self.assertEqual((newest.get("version"), newest.get("date")), ("7.8.9", "2027-01-15"))
        self.assertIn("Something new & good.", [entry.text for entry in newest.iter("li")])
        self.assertEqual((self.git("tag", "--points-at", "HEAD"), self.git("status", "--porcelain")), ("v7.8.9", ""))
        self.assertIn("### Added", self.git("tag", "--list", "--format=%(contents)", "v7.8.9"))

    def test_a_version_in_the_changelog_that_waits_is_dated_and_stands_there_once(self) -> None:
        if "## [0.1.0] - not released" not in self.read("CHANGELOG.md"):
            self.skipTest("the first version has been released")
        done = self.release("0.1.0", "--tested")
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        self.assertEqual(self.read("CHANGELOG.md").count("## [0.1.0]"), 1)
        self.assertNotIn("not released", self.read("CHANGELOG.md"))
        self.assertEqual(self.read(FILES[3]).count("keyvora (0.1.0-1)"), 1)
        self.assertEqual(self.read(FILES[4]).count('version="0.1.0"'), 1)

    def test_what_cannot_be_released_is_refused(self) -> None:
        self.assert_refused("is no version", "1.2", "--tested")
        self.assert_refused("is not above", "0.0.9", "--tested")
        (self.tree / "left").touch()
        self.assert_refused("not committed", "7.8.9", "--tested")
        (self.tree / "left").unlink()
        (self.tree / "CHANGELOG.md").write_text("# Changelog\n\n## [Unreleased]\n", encoding="utf-8")
        self.git("commit", "--quiet", "--all", "--message", "Say nothing")
        self.assert_refused("says nothing", "7.8.9", "--tested")

    def test_what_does_not_pass_its_tests_is_refused(self) -> None:
        self.add_test(1)
        self.assert_refused("./test failed", "7.8.9")
        self.assert_refused("./test failed", "7.8.9", "--dry-run")

    def test_the_notes_of_a_release_are_told_to_whatever_publishes_it(self) -> None:
        self.assert_refused("the tree is not that of 7.8.9", "7.8.9", "--notes")
        self.assertEqual(self.release("7.8.9", "--tested").returncode, 0)
        done = self.release("7.8.9", "--notes")
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        self.assertTrue(done.stdout.startswith("### Added\n\n- Something `new` & good.\n"), done.stdout)
        self.assertNotIn("## [", done.stdout)
        changelog = self.tree / "CHANGELOG.md"
        changelog.write_text(changelog.read_text(encoding="utf-8").replace("[7.8.9] - 2027-01-15", "[7.8.9] - not released"),
                             encoding="utf-8")
        done = self.release("7.8.9", "--notes")
        self.assertIn("has no dated notes", done.stderr)
        self.assertNotEqual(done.returncode, 0)

    def test_a_version_is_released_once(self) -> None:
        self.git("tag", "v7.8.9")
        done = self.release("7.8.9", "--tested")
        self.assertIn("has been released", done.stderr)
        self.assertNotEqual(done.returncode, 0)


if __name__ == "__main__":
    unittest.main()
