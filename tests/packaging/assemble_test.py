"""Releases a copy of the tree, and assembles what is published of it from stand-ins of what was built."""

import base64
import hashlib
import os
import pathlib
import re
import secrets
import shutil
import subprocess
import tarfile
import tempfile
import unittest

from stand_in_bundle import ROOT, VERSION, make_bundle, pack
from update_keys import new_key_pair, require_openssl

TREE = ("scripts/release", "CMakeLists.txt", "CHANGELOG.md", "cmake/KeyvoraFetch.cmake",
        "packaging/linux/org.keyvora.keyvora.metainfo.xml", "packaging/assemble-release", "packaging/make-bill-of-materials")
FOLDERS = ("packaging/macos", "packaging/linux/debian")
ADDRESS = "https://github.com/keyvora/keyvora"
DEBIAN = ("keyvora_7.8.9-1~deb12_amd64.deb", "keyvora_7.8.9-1~deb12.dsc", "keyvora_7.8.9-1~deb12.debian.tar.xz",
          "keyvora_7.8.9.orig.tar.xz")

setUpModule = require_openssl


class Assemble(unittest.TestCase):
    def setUp(self) -> None:
        self.folder = pathlib.Path(self.enterContext(tempfile.TemporaryDirectory(prefix="keyvora-assemble-")))
        self.tree, self.built = self.folder / "tree", self.folder / "built"
        self.built.mkdir()
        for name in TREE:
            (self.tree / name).parent.mkdir(parents=True, exist_ok=True)
            shutil.copy(ROOT / name, self.tree / name)
        for name in FOLDERS:
            shutil.copytree(ROOT / name, self.tree / name, ignore=shutil.ignore_patterns("__pycache__"))
        changelog = self.tree / "CHANGELOG.md"
        changelog.write_text(changelog.read_text(encoding="utf-8").replace(
            "## [Unreleased]\n", "## [Unreleased]\n\n### Added\n\n- Something new & good.\n", 1), encoding="utf-8")
        person = {f"GIT_{role}_{what}": value for role in ("AUTHOR", "COMMITTER")
                  for what, value in (("NAME", "A person"), ("EMAIL", "person@example.org"))}
        self.environment = {"PATH": os.environ["PATH"], "GIT_CONFIG_GLOBAL": os.devnull, "PYTHONDONTWRITEBYTECODE": "1", **person}
        for command in (["git", "init", "--quiet"], ["git", "add", "."], ["git", "commit", "--quiet", "--message", "All of it"],
                        ["scripts/release", VERSION, "--tested"]):
            subprocess.run(command, cwd=self.tree, env=self.environment, check=True, capture_output=True)
        self.seed, public = new_key_pair()
        self.app = make_bundle(self.folder, public)

    def assemble(self, *arguments: object, **environment: str) -> subprocess.CompletedProcess[str]:
        return subprocess.run([self.tree / "packaging/assemble-release", self.built, ADDRESS, *map(str, arguments)],
                              capture_output=True, text=True, check=False, env={**self.environment, **environment})

    def add_debian(self) -> None:
        for name in DEBIAN:
            (self.built / name).write_text(name, encoding="ascii")

    def listed(self) -> set[str]:
        """The files to publish, after their sums were looked at."""
        names = set()
        for line in (self.built / "SHA256SUMS").read_text(encoding="ascii").splitlines():
            value, name = line.split("  ")
            self.assertEqual(hashlib.sha256((self.built / name).read_bytes()).hexdigest(), value, name)
            names.add(name)
        return names

    def test_with_secrets_everything_is_made(self) -> None:
        pack(self.app, self.built / f"keyvora-{VERSION}.zip")
        (self.built / f"keyvora-{VERSION}.dmg").write_text("an image", encoding="ascii")
        self.add_debian()
        done = self.assemble(KEYVORA_UPDATE_PRIVATE_KEY=base64.b64encode(self.seed).decode("ascii"))
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        self.assertEqual(self.listed(), {
            f"keyvora-{VERSION}.zip", f"keyvora-{VERSION}.dmg", "appcast.xml", "keyvora.rb", f"keyvora-{VERSION}.spdx.json",
            "keyvora_7.8.9-1.deb12_amd64.deb", f"keyvora-{VERSION}-debian-source.tar"})
        text = (self.built / "appcast.xml").read_text(encoding="utf-8")
        self.assertIn(f'url="{ADDRESS}/releases/download/v{VERSION}/keyvora-{VERSION}.zip"', text)
        self.assertIn(f"<link>{ADDRESS}/releases/tag/v{VERSION}</link>", text)
        self.assertIn("- Something new &amp; good.", text)
        notes = (self.built / "notes.md").read_text(encoding="utf-8")
        self.assertTrue(notes.startswith("### Added\n\n- Something new & good.\n"), notes)
        bill = (self.built / f"keyvora-{VERSION}.spdx.json").read_text(encoding="utf-8")
        self.assertEqual(set(re.findall(r'"fileName": "\./(.*)"', bill)), self.listed() - {f"keyvora-{VERSION}.spdx.json"})

    def test_no_name_has_what_a_page_of_releases_would_change(self) -> None:
        self.add_debian()
        self.assertEqual(self.assemble().returncode, 0)
        for name in self.listed():
            self.assertRegex(name, r"\A[A-Za-z0-9][A-Za-z0-9._-]*[A-Za-z0-9]\Z")
        with tarfile.open(self.built / f"keyvora-{VERSION}-debian-source.tar") as source:
            self.assertEqual(source.getnames(), sorted(DEBIAN[1:]))

    def test_made_twice_it_is_the_same(self) -> None:
        self.add_debian()
        self.assemble()
        first = (self.built / "SHA256SUMS").read_bytes()
        shutil.rmtree(self.built)
        self.built.mkdir()
        self.add_debian()
        self.assemble()
        self.assertEqual((self.built / "SHA256SUMS").read_bytes(), first)

    def test_without_the_feeds_key_there_is_no_feed_to_publish(self) -> None:
        pack(self.app, self.built / f"keyvora-{VERSION}.zip")
        done = self.assemble()
        self.assertEqual(done.returncode, 0, done.stderr)
        self.assertIn("NOT COMPLETE: There is no update feed: KEYVORA_UPDATE_PRIVATE_KEY is not set", done.stderr)
        self.assertTrue((self.built / "unsigned-appcast.xml").exists())
        self.assertEqual(self.listed(), {f"keyvora-{VERSION}.zip", "keyvora.rb", f"keyvora-{VERSION}.spdx.json"})

    def test_without_a_certificate_the_notes_say_so(self) -> None:
        pack(self.app, self.built / f"keyvora-{VERSION}-unsigned.zip")
        done = self.assemble(KEYVORA_UPDATE_PRIVATE_KEY=base64.b64encode(self.seed).decode("ascii"))
        self.assertEqual(done.returncode, 0, done.stderr)
        notes = (self.built / "notes.md").read_text(encoding="utf-8")
        self.assertTrue(notes.startswith("> **keyvora.app is not signed and not notarized"), notes)
        self.assertEqual(self.listed(), {f"keyvora-{VERSION}-unsigned.zip", f"keyvora-{VERSION}.spdx.json"})

    def test_a_feed_that_breaks_a_rule_is_not_published(self) -> None:
        pack(self.app, self.built / f"keyvora-{VERSION}.zip")
        changelog = self.tree / "CHANGELOG.md"
        changelog.write_text(changelog.read_text(encoding="utf-8").replace("Something new", "Something new " * 2000, 1),
                             encoding="utf-8")
        done = self.assemble(KEYVORA_UPDATE_PRIVATE_KEY=base64.b64encode(self.seed).decode("ascii"))
        self.assertNotEqual(done.returncode, 0)
        self.assertIn("description is longer", done.stderr)
        self.assertFalse((self.built / "SHA256SUMS").exists())

    def test_the_key_is_in_no_environment(self) -> None:
        commands = self.folder / "commands"
        commands.mkdir()
        seen = self.folder / "seen"
        real = shutil.which("git")
        (commands / "git").write_text(f'#!/bin/sh\necho "of git ${{KEYVORA_UPDATE_PRIVATE_KEY:-nothing}}" >>"{seen}"\n'
                                      f'exec {real} "$@"\n', encoding="utf-8")
        (commands / "git").chmod(0o755)
        path = f"{commands}:{self.environment['PATH']}"
        self.assertEqual(self.assemble(KEYVORA_UPDATE_PRIVATE_KEY="a secret", PATH=path).returncode, 0)
        self.assertEqual(set(seen.read_text(encoding="utf-8").splitlines()), {"of git nothing"})

    def test_a_key_that_is_not_the_bundles_publishes_nothing(self) -> None:
        pack(self.app, self.built / f"keyvora-{VERSION}.zip")
        done = self.assemble(KEYVORA_UPDATE_PRIVATE_KEY=base64.b64encode(secrets.token_bytes(32)).decode("ascii"))
        self.assertNotEqual(done.returncode, 0)
        self.assertIn("is not that of SUPublicEDKey", done.stderr)
        self.assertFalse((self.built / "SHA256SUMS").exists())


if __name__ == "__main__":
    unittest.main()
