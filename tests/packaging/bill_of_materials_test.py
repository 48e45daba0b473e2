"""Makes the bill of materials and holds it against what SPDX 2.3 requires, and against the tree."""

import hashlib
import json
import os
import pathlib
import re
import shutil
import subprocess
import tempfile
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
SCRIPT = "packaging/make-bill-of-materials"
TREE = (SCRIPT, "cmake/KeyvoraFetch.cmake", "packaging/linux/debian/control", "CMakeLists.txt")
# What the standard requires of each part in JSON, and the forms of it.
DOCUMENT = {"spdxVersion": r"SPDX-2\.3", "dataLicense": r"CC0-1\.0", "SPDXID": r"SPDXRef-DOCUMENT", "name": r".+",
            "documentNamespace": r"https://[^#\s]+"}
PACKAGE = {"SPDXID": r"SPDXRef-[A-Za-z0-9.-]+", "name": r".+", "downloadLocation": r"NOASSERTION|(git\+)?https://\S+"}
FILE = {"SPDXID": r"SPDXRef-[A-Za-z0-9.-]+", "fileName": r"\./.+"}
RELATIONSHIPS = {"DESCRIBES", "STATIC_LINK", "DYNAMIC_LINK", "TEST_DEPENDENCY_OF", "BUILD_DEPENDENCY_OF", "GENERATED_FROM"}
GIT = ["git", "-c", "user.name=A person", "-c", "user.email=person@example.org"]


class Bill(unittest.TestCase):
    def setUp(self) -> None:
        self.tree = pathlib.Path(self.enterContext(tempfile.TemporaryDirectory(prefix="keyvora-bill-")))
        for name in TREE:
            (self.tree / name).parent.mkdir(parents=True, exist_ok=True)
            shutil.copy(ROOT / name, self.tree / name)
        for arguments in (["init", "--quiet"], ["add", "."], ["commit", "--quiet", "--message", "All of it"]):
            subprocess.run([*GIT, *arguments], cwd=self.tree, check=True, env={**os.environ, "GIT_CONFIG_GLOBAL": os.devnull})
        self.output = self.tree / "bill.json"

    def make(self, *files: pathlib.Path) -> subprocess.CompletedProcess[str]:
        return subprocess.run([self.tree / SCRIPT, self.output, *files], capture_output=True, text=True, check=False,
                              env={"PATH": os.environ["PATH"], "SOURCE_DATE_EPOCH": "1800000000"})

    def made(self, *files: pathlib.Path) -> dict:
        done = self.make(*files)
        self.assertEqual((done.returncode, done.stderr, done.stdout), (0, "", f"{self.output}\n"))
        bill: dict = json.loads(self.output.read_text(encoding="utf-8"))
        return bill

    def assert_has(self, part: dict, required: dict[str, str]) -> None:
        for field, form in required.items():
            self.assertRegex(part[field], rf"\A({form})\Z", field)

    def test_every_required_field_is_there(self) -> None:
        archive = self.tree / "keyvora-1.2.3.zip"
        archive.write_bytes(b"packed")
        bill = self.made(archive)
        self.assert_has(bill, DOCUMENT)
        self.assertEqual(bill["creationInfo"]["created"], "2027-01-15T08:00:00Z")
        for creator in bill["creationInfo"]["creators"]:
            self.assertRegex(creator, r"\A(Tool|Person|Organization): \S")
        for package in bill["packages"]:
            self.assert_has(package, PACKAGE)
            self.assertIs(package["filesAnalyzed"], False)
        (file,) = bill["files"]
        self.assert_has(file, FILE)
        self.assertEqual({entry["algorithm"]: entry["checksumValue"] for entry in file["checksums"]},
                         {"SHA1": hashlib.sha1(b"packed").hexdigest(), "SHA256": hashlib.sha256(b"packed").hexdigest()})

    def test_identifiers_are_unique_and_relationships_are_between_them(self) -> None:
        bill = self.made(self.tree / "CMakeLists.txt")
        identifiers = [part["SPDXID"] for part in [bill, *bill["packages"], *bill["files"]]]
        self.assertEqual(len(identifiers), len(set(identifiers)))
        for relationship in bill["relationships"]:
            self.assertLessEqual({relationship["spdxElementId"], relationship["relatedSpdxElement"]}, set(identifiers))
            self.assertIn(relationship["relationshipType"], RELATIONSHIPS)
        related = {end for entry in bill["relationships"] for end in (entry["spdxElementId"], entry["relatedSpdxElement"])}
        self.assertEqual(related, set(identifiers))

    def test_it_names_what_the_tree_names(self) -> None:
        bill = self.made()
        packages = {package["name"]: package for package in bill["packages"]}
        fetch = (ROOT / "cmake/KeyvoraFetch.cmake").read_text(encoding="utf-8")
        commits = re.findall(r"\b[0-9a-f]{40}\b", fetch)
        self.assertEqual({package["downloadLocation"].rsplit("@", 1)[1] for package in packages.values()
                          if package["downloadLocation"].startswith("git+")}, set(commits))
        self.assertIn(packages["sparkle"]["checksums"][0]["checksumValue"], fetch)
        self.assertIn(packages["sparkle"]["downloadLocation"], fetch)
        version = re.search(r"project\(keyvora VERSION ([\d.]+)", (ROOT / "CMakeLists.txt").read_text(encoding="utf-8"))
        assert version
        self.assertEqual(packages["keyvora"]["versionInfo"], version[1])
        for name in ("libgtk-3-dev", "libpugixml-dev", "pkgconf", "cmake"):
            self.assertEqual(packages[name]["externalRefs"][0]["referenceLocator"], f"pkg:deb/debian/{name}")

    def test_made_twice_it_is_the_same(self) -> None:
        self.made()
        first = self.output.read_bytes()
        self.made()
        self.assertEqual(self.output.read_bytes(), first)

    def test_a_library_of_which_nobody_wrote_the_licence_down(self) -> None:
        file = self.tree / "cmake/KeyvoraFetch.cmake"
        text = file.read_text(encoding="utf-8")
        commit = f"\nset(zlib_commit {'a' * 40})  # 1.3\n"
        address = "\nFetchContent_Declare(zlib\n  GIT_REPOSITORY https://zlib.net)\n"
        for more in (commit, address, commit + address):
            file.write_text(text + more, encoding="utf-8")
            done = self.make()
            self.assertEqual(done.returncode, 1)
            self.assertRegex(done.stderr, r"\Amake-bill-of-materials: .*zlib")
            self.assertFalse(self.output.exists())


if __name__ == "__main__":
    unittest.main()
