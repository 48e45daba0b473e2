"""Installs the program by its build, runs it there, and reads what a package and a software centre say of it.

usage: package_test.py CMAKE BUILD_DIRECTORY [unittest arguments]

system_test.py does the same with the Debian packages, in systems of their own.
"""

import json
import os
import pathlib
import plistlib
import re
import shutil
import subprocess
import sys
import tempfile
import time
import unittest
from xml.etree import ElementTree

ROOT = pathlib.Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT / "tests/app/updates"))
from installation import Display  # noqa: E402
from installed import INSTALLED, SHEETS  # noqa: E402

CMAKE = pathlib.Path(sys.argv.pop(1))
BUILD = pathlib.Path(sys.argv.pop(1)).resolve()
PATIENCE = 60  # seconds until a test gives up

METADATA = ROOT / "packaging/linux/org.keyvora.keyvora.metainfo.xml"
DEBIAN = ROOT / "packaging/linux/debian"


def run(*command, **options) -> str:
    done = subprocess.run(command, capture_output=True, text=True, timeout=PATIENCE * 4, check=False, **options)
    if done.returncode != 0:
        raise AssertionError(f"{command} ended with {done.returncode}:\n{done.stdout}{done.stderr}")
    return done.stdout


def files_in(folder: pathlib.Path) -> set[str]:
    return {path.relative_to(folder).as_posix() for path in folder.rglob("*") if not path.is_dir() or path.is_symlink()}


class Package(unittest.TestCase):
    scratch: tempfile.TemporaryDirectory[str]
    prefix: pathlib.Path

    @classmethod
    def setUpClass(cls):
        cls.scratch = tempfile.TemporaryDirectory(prefix="keyvora-package-")
        cls.addClassCleanup(cls.scratch.cleanup)
        cls.prefix = pathlib.Path(cls.scratch.name) / "a prefix"
        run(CMAKE, "--install", BUILD, "--prefix", cls.prefix)

    def setUp(self):
        self.home = pathlib.Path(self.enterContext(tempfile.TemporaryDirectory(prefix="keyvora-home-")))

    def assert_runs(self, prefix: pathlib.Path):
        """It starts, finds its resources, and ends on request."""
        with (prefix / "share/keyvora/Info.plist").open("rb") as file:
            information = plistlib.load(file)
        version, build = information["CFBundleShortVersionString"], information["CFBundleVersion"]
        log = self.home / "Library/Logs/keyvora.log"
        inherited = {name: os.environ[name] for name in ("PATH", "ASAN_OPTIONS", "LSAN_OPTIONS") if name in os.environ}
        # Without an installed spreadsheet the document is Calc's.
        inherited["XDG_DATA_DIRS"] = str(self.home)
        with Display() as display:
            # A proxy that does not exist keeps the update check on this machine.
            program = subprocess.Popen(
                [prefix / "bin/keyvora"], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, cwd="/",
                env={**inherited, "HOME": str(self.home), "DISPLAY": display, "NO_AT_BRIDGE": "1", "LANG": "C.UTF-8",
                     "https_proxy": "http://127.0.0.1:9", "http_proxy": "http://127.0.0.1:9"})
            try:
                deadline = time.monotonic() + PATIENCE
                while not (log.exists() and " tap installed, " in log.read_text(encoding="utf-8")):
                    self.assertIsNone(program.poll(), "it ended early")
                    self.assertLess(time.monotonic(), deadline, log.exists() and log.read_text(encoding="utf-8"))
                    time.sleep(0.02)
                program.terminate()
                self.assertEqual(program.wait(PATIENCE), 0)
            finally:
                program.kill()
                program.wait()
        self.assertIn(f" launch {version} ({build})\n", log.read_text(encoding="utf-8"))
        document = self.home / "Library/Application Support/keyvora/mappings.json"
        self.assertEqual(document.read_bytes(), (ROOT / "resources/calc.json").read_bytes())

    def test_cmake_installs_to_any_prefix(self):
        self.assertEqual(files_in(self.prefix), INSTALLED)
        self.assert_runs(self.prefix)

    def test_ready_made_cheat_sheets_show_every_sequence(self):
        for sheet, document in SHEETS.items():
            with self.subTest(sheet):
                html = (self.prefix / sheet).read_text(encoding="utf-8")
                self.assertIn("<kbd>H</kbd><kbd>O</kbd><kbd>E</kbd>", html)
                sequences = json.loads((ROOT / "resources" / document).read_text(encoding="utf-8"))["sequences"]
                self.assertEqual(html.count("<li "), len(sequences))

    def test_debian_builds_with_what_the_project_builds_with(self):
        listed = re.sub("#.*", "", (ROOT / "scripts/linux/packages.txt").read_text(encoding="utf-8"))
        fields = re.search(r"^Build-Depends:\n((?: .*\n)+)", (DEBIAN / "control").read_text(encoding="utf-8"), re.MULTILINE)
        assert fields
        needed = {name.split()[0] for name in re.split(r"[,|]\s", fields[1]) if name.strip()}
        self.assertEqual(needed - set(listed.split()), {"debhelper-compat", "pkgconf"})

    def test_debian_packages_this_version(self):
        with (BUILD / "app/Info.plist").open("rb") as file:
            version = plistlib.load(file)["CFBundleShortVersionString"]
        self.assertRegex((DEBIAN / "changelog").read_text(encoding="utf-8"), rf"\Akeyvora \({re.escape(version)}-\d+\) ")

    @unittest.skipUnless(shutil.which("man"), "man reads the page")
    def test_the_man_page_is_well_formed(self):
        for page in ("keyvora.1",):
            done = subprocess.run(["man", "--warnings", "-l", BUILD / "packaging" / page], capture_output=True, text=True,
                                  check=False, env={**os.environ, "LANG": "C.UTF-8", "MANPAGER": "cat"})
            self.assertEqual((done.returncode, done.stderr), (0, ""))
            self.assertIn("--probe-updates", done.stdout)

    @unittest.skipUnless(shutil.which("desktop-file-validate"), "desktop-file-utils checks the entry")
    def test_the_desktop_entry_is_valid(self):
        run("desktop-file-validate", ROOT / "packaging/linux/org.keyvora.keyvora.desktop")

    @unittest.skipUnless(shutil.which("appstreamcli"), "appstream checks the metadata")
    def test_what_software_centres_show_is_valid(self):
        run("appstreamcli", "validate", "--pedantic", "--no-net", METADATA)

    def test_software_centres_know_this_version_and_its_desktop_entry(self):
        component = ElementTree.parse(METADATA).getroot()
        with (BUILD / "app/Info.plist").open("rb") as file:
            version = plistlib.load(file)["CFBundleShortVersionString"]
        self.assertEqual(component.find("releases/release").get("version"), version)
        entry = component.findtext("launchable[@type='desktop-id']")
        self.assertTrue((ROOT / "packaging/linux" / entry).is_file())
        for image in component.iterfind("screenshots/screenshot/image"):
            self.assertTrue((ROOT / "docs/images" / image.text.rsplit("/", 1)[1]).is_file(), image.text)


if __name__ == "__main__":
    unittest.main(verbosity=2)
