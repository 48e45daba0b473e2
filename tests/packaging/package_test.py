"""Installs the program, by its build and by its Debian package, runs it there, and takes it away again.

usage: package_test.py CMAKE BUILD_DIRECTORY [unittest arguments]
"""

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

CMAKE = pathlib.Path(sys.argv.pop(1))
BUILD = pathlib.Path(sys.argv.pop(1)).resolve()
PATIENCE = 60  # seconds until a test gives up

METADATA = ROOT / "packaging/linux/org.keyvora.keyvora.metainfo.xml"

# Below the prefix, besides what comes with keyvora-mappings.
INSTALLED = {
    "bin/keyvora",
    "libexec/keyvora/keyvora-tap",
    "share/applications/org.keyvora.keyvora.desktop",
    "share/icons/hicolor/scalable/apps/keyvora.svg",
    "share/keyvora/Info.plist",
    "share/keyvora/keyvora_keyvora.bundle/calc.json",
    "share/keyvora/keyvora_keyvora.bundle/gnumeric.json",
    "share/keyvora/keyvora_keyvora.bundle/mappings.json",
    "share/man/man1/keyvora.1",
    "share/metainfo/org.keyvora.keyvora.metainfo.xml",
}


# Where an installation by hand and where Debian has the completions of zsh.
ZSH = "share/zsh/site-functions/_keyvora-mappings"
DEBIAN_ZSH = "share/zsh/vendor-completions/_keyvora-mappings"


def run(*command, **options) -> str:
    done = subprocess.run(command, capture_output=True, text=True, timeout=PATIENCE * 4, check=False, **options)
    if done.returncode != 0:
        raise AssertionError(f"{command} ended with {done.returncode}:\n{done.stdout}{done.stderr}")
    return done.stdout


def files_in(folder: pathlib.Path) -> set[str]:
    return {path.relative_to(folder).as_posix() for path in folder.rglob("*") if not path.is_dir() or path.is_symlink()}


class Package(unittest.TestCase):
    scratch: tempfile.TemporaryDirectory[str]
    folder: pathlib.Path
    package: pathlib.Path

    @classmethod
    def setUpClass(cls):
        cls.scratch = tempfile.TemporaryDirectory(prefix="keyvora-package-")
        cls.addClassCleanup(cls.scratch.cleanup)
        cls.folder = pathlib.Path(cls.scratch.name)
        run(CMAKE.with_name("cpack"), "--config", BUILD / "CPackConfig.cmake", "-B", cls.folder / "packages")
        (cls.package,) = (cls.folder / "packages").glob("*.deb")

    def setUp(self):
        self.home = pathlib.Path(self.enterContext(tempfile.TemporaryDirectory(prefix="keyvora-home-")))

    def field(self, name: str) -> str:
        return run("dpkg-deb", "--field", self.package, name).strip()

    def assert_runs(self, prefix: pathlib.Path):
        """It starts, finds its resources, and ends on request."""
        with (prefix / "share/keyvora/Info.plist").open("rb") as file:
            information = plistlib.load(file)
        version, build = information["CFBundleShortVersionString"], information["CFBundleVersion"]
        log = self.home / "Library/Logs/keyvora.log"
        inherited = {name: os.environ[name] for name in ("PATH", "ASAN_OPTIONS", "LSAN_OPTIONS") if name in os.environ}
        # No spreadsheet is to be found: the document is Calc's then.
        inherited["XDG_DATA_DIRS"] = str(self.home)
        with Display() as display:
            # A proxy that is not there keeps the update check on this machine.
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
        prefix = self.folder / "a prefix"
        run(CMAKE, "--install", BUILD, "--prefix", prefix)
        self.assertLessEqual({*INSTALLED, ZSH}, files_in(prefix))
        self.assert_runs(prefix)

    def test_the_package_says_what_it_is_and_needs(self):
        with (BUILD / "app/Info.plist").open("rb") as file:
            information = plistlib.load(file)
        self.assertEqual(self.field("Package"), "keyvora")
        self.assertEqual(self.field("Version"),
                         f'{information["CFBundleShortVersionString"]}-{information["CFBundleVersion"]}')
        self.assertEqual(self.field("Section"), "utils")
        depends = re.findall(r"[a-z0-9.+-]+(?= |,|$)", re.sub(r"\(.*?\)", "", self.field("Depends")))
        # Debian's names carry a library's version, and since Debian 13 the width of its times.
        for library in ("libatspi2.0-0", "libcurl4", "libgtk-3-0", "libpugixml1v5", r"libutf8proc\d", "libxi6", "libxtst6"):
            self.assertTrue(any(re.fullmatch(f"{library}(t64)?", name) for name in depends), f"{library} in {depends}")

    def test_installed_from_the_package_it_runs_and_leaves_without_a_trace(self):
        system = self.folder / "system"
        database = system / "var/lib/dpkg"
        for folder in ("info", "updates", "triggers", "parts"):
            (database / folder).mkdir(parents=True)
        for file in ("status", "available"):
            (database / file).touch()
        # Nothing else is installed there, and no one but us.
        dpkg = ["dpkg", f"--root={system}", "--force-depends", "--force-not-root", "--force-bad-path",
                "--log=" + str(self.folder / "dpkg.log")]
        run(*dpkg, "--install", self.package)
        prefix = system / "usr"
        self.assertLessEqual({*INSTALLED, DEBIAN_ZSH}, files_in(prefix))
        self.assertNotIn(ZSH, files_in(prefix))
        self.assert_runs(prefix)

        run(*dpkg, "--purge", "keyvora")
        self.assertEqual(files_in(prefix) if prefix.exists() else set(), set())
        left = {file for file in files_in(system) if not file.startswith("var/lib/dpkg/")}
        self.assertEqual(left, set())
        self.assertNotIn("keyvora", (database / "status").read_text(encoding="utf-8"))

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
        run("appstreamcli", "validate", "--no-net", METADATA)

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
