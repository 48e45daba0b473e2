"""Checks the parts of the macOS bundle, and the review of its system calls, against the source tree. Needs no Mac.

The bundle: the information dictionary's template, the entitlements, and how the signing scripts sign. The audit:
docs/macos-review.md has a section for each file that calls the system; the calls it names must be in that file, and the
calls in that file must be named.
"""

import pathlib
import plistlib
import re
import subprocess
import tempfile
import unittest
import urllib.parse

ROOT = pathlib.Path(__file__).resolve().parents[2]
HOST = ROOT / "hosts" / "macos"
PACKAGING = ROOT / "packaging" / "macos"

# A call of a C function of the system, and a message to a class of the system or a property read from it.
FUNCTION = re.compile(
    r"(?<![\w:.>])(?:::)?((?:CG|AX|CF)[A-Z]\w+|NSLog|dispatch_\w+|std::(?:exit|atexit)|usleep)\("
    r"|(?<!\w)::(open|close|fcntl)\("
)
CLASS = re.compile(r"\[\[?((?:NS|SM|SPU)[A-Z]\w+) |\b((?:NS|SM|SPU)[A-Z]\w+)\.[a-z]")
# keyvora's names that look like the system's.
OURS = {"AXElement"}
# 32 bytes in base64.
KEY = "A" * 43 + "="


def read(*names: str) -> str:
    return ROOT.joinpath(*names).read_text(encoding="utf-8")


def code(text: str) -> str:
    """The text without comments and string literals."""
    return re.sub(r'//[^\n]*|"(?:\\.|[^"\\])*"', "", text)


def write_information(**settings: str) -> tuple[str, dict | None]:
    """What CMake says, and the information dictionary that it writes for a build with these settings, or none."""
    with tempfile.TemporaryDirectory() as folder:
        file = pathlib.Path(folder, "Info.plist")
        values = {"OUTPUT": str(file), "PROJECT_VERSION": "1.2.3", "KEYVORA_BUILD": "45", **settings}
        command = ["cmake", *(f"-D{name}={value}" for name, value in values.items())]
        script = ROOT / "resources" / "information_dictionary.cmake"
        run = subprocess.run([*command, "-P", str(script)], capture_output=True, text=True, check=False)
        return run.stderr, plistlib.loads(file.read_bytes()) if run.returncode == 0 else None


def information() -> dict:
    said, found = write_information(KEYVORA_UPDATE_FEED="https://example.org/appcast.xml", KEYVORA_UPDATE_KEY=KEY)
    assert found is not None, said
    return found


def sections() -> dict[str, str]:
    """Section of the audit -> its text; a section is headed by the file it is about."""
    parts = re.split(r"^### `([\w.]+)`.*$", read("docs", "macos-review.md"), flags=re.MULTILINE)
    return {name: text.split("\n## ")[0] for name, text in zip(parts[1::2], parts[2::2])}


def calls_named(section: str) -> set[str]:
    """What the section's table gives as the system's call: the second column's words in code type."""
    rows = [line.split("|") for line in section.splitlines() if line.startswith("| ")]
    return {name for row in rows[1:] if not set(row[1]) <= set(" -") for name in re.findall(r"`([^`]+)`", row[2])}


class Bundle(unittest.TestCase):
    def test_information_dictionary(self):
        expected = {
            "CFBundleExecutable": "keyvora",
            "CFBundleIconFile": "keyvora",
            "CFBundleIdentifier": "org.keyvora.keyvora",
            "CFBundleName": "keyvora",
            "CFBundlePackageType": "APPL",
            "CFBundleShortVersionString": "1.2.3",
            "CFBundleVersion": "45",
            "LSMinimumSystemVersion": "13.0",
            "LSUIElement": True,
            "NSPrincipalClass": "NSApplication",
            "SUEnableAutomaticChecks": True,
            "SUFeedURL": "https://example.org/appcast.xml",
            "SUPublicEDKey": KEY,
            "SUScheduledCheckInterval": 86400,
        }
        found = information()
        self.assertEqual({key: found.get(key) for key in expected}, expected)
        self.assertIn("Microsoft Excel", found["NSAppleEventsUsageDescription"])

    def test_a_build_without_a_feed_of_its_own_asks_nobody(self):
        _, found = write_information()
        self.assertTrue(urllib.parse.urlsplit(found["SUFeedURL"]).hostname.endswith(".invalid"))
        self.assertIs(found["SUEnableAutomaticChecks"], False)
        self.assertNotIn("SUPublicEDKey", found)

    def test_a_malformed_update_key_is_refused(self):
        for key in ("key", KEY + "A", KEY[:-1] + "!"):
            said, found = write_information(KEYVORA_UPDATE_KEY=key)
            self.assertIsNone(found)
            self.assertIn("KEYVORA_UPDATE_KEY must be 32 bytes in base64", said)

    def test_the_oldest_system_is_the_compilers_too(self):
        target = re.search(r"CMAKE_OSX_DEPLOYMENT_TARGET ([\d.]+)", read("CMakeLists.txt")).group(1)
        self.assertEqual(target, information()["LSMinimumSystemVersion"])
        before_project = read("CMakeLists.txt").split("\nproject(")[0]
        self.assertIn("CMAKE_OSX_DEPLOYMENT_TARGET", before_project)
        cross = re.search(r"CMAKE_OSX_DEPLOYMENT_TARGET ([\d.]+)", read("cmake", "toolchains", "macos-cross.cmake"))
        self.assertEqual(cross.group(1), target)

    def test_one_entitlement(self):
        entitlements = plistlib.loads((PACKAGING / "keyvora.entitlements").read_bytes())
        self.assertEqual(entitlements, {"com.apple.security.automation.apple-events": True})

    def test_a_release_is_signed_inside_out_with_the_hardened_runtime(self):
        script = (PACKAGING / "sign-release").read_text(encoding="utf-8")
        self.assertRegex(script, r"sign\(\) \{ codesign .*--options runtime --timestamp")
        signed = [line for line in script.splitlines() if re.match(r"\s*(\[\[.*\|\| )?sign ", line)]
        self.assertNotIn("--deep", "".join(signed))
        order = ["Installer.xpc", "Downloader.xpc", "Autoupdate", "Updater.app", '"$framework"', '"$tool"', '"$app"']
        positions = [next(i for i, line in enumerate(signed) if part in line) for part in order]
        self.assertEqual(positions, list(range(len(signed))))
        self.assertEqual([line for line in signed if "--entitlements" in line], [signed[-1]])

    def test_a_development_build_is_signed_without_it(self):
        script = (PACKAGING / "sign-development").read_text(encoding="utf-8")
        commands = [line for line in script.splitlines() if "codesign --" in line]
        self.assertTrue(commands)
        self.assertNotIn("runtime", "".join(commands))
        self.assertTrue(commands[-1].endswith('"$1"'), "the bundle comes last")

    def test_the_icon_holds_every_entry_it_counts(self):
        icon = (PACKAGING / "keyvora.icns").read_bytes()
        self.assertEqual(icon[:4], b"icns")
        self.assertEqual(int.from_bytes(icon[4:8], "big"), len(icon))
        offset, kinds = 8, []
        while offset < len(icon):
            kinds.append(icon[offset : offset + 4])
            self.assertEqual(icon[offset + 8 : offset + 16], b"\x89PNG\r\n\x1a\n")
            offset += int.from_bytes(icon[offset + 4 : offset + 8], "big")
        self.assertEqual(offset, len(icon))
        self.assertLessEqual({b"ic07", b"ic08", b"ic09", b"ic10"}, set(kinds))


class Audit(unittest.TestCase):
    def setUp(self):
        self.sections = sections()
        self.sources = {path.name: path.read_text(encoding="utf-8") for path in HOST.iterdir()
                        if path.suffix in {".h", ".mm"}}

    def test_every_section_is_about_a_file_and_names_calls(self):
        self.assertTrue(self.sections)
        for name, text in self.sections.items():
            self.assertIn(name, self.sources)
            self.assertTrue(calls_named(text), f"{name}: no calls named")

    def test_what_it_names_is_there(self):
        faults = []
        for name, text in self.sections.items():
            source = code(self.sources[name])
            for call in calls_named(text):
                # -[Class first:second:], a property, or a function: every word of the name, with its colon.
                words = re.findall(r"\w+:?", call.split(" ", 1)[-1] if call[0] in "-+" else call.split("::")[-1])
                missing = [word for word in words if not re.search(rf"\b{re.escape(word)}", source)]
                if missing:
                    faults.append(f"{name}: {call}: {', '.join(missing)} is not in the file")
        self.assertEqual(faults, [])

    def test_what_is_there_is_named(self):
        faults = []
        for name, source in self.sources.items():
            plain = code(source)
            used = {a or b for a, b in FUNCTION.findall(plain) + CLASS.findall(plain)}
            named = self.sections.get(name, "")
            faults += [f"{name}: {call}" for call in sorted(used - OURS) if not re.search(rf"\b{call}\b", named)]
        self.assertEqual(faults, [], "call of the system that docs/macos-review.md does not list")

    def test_the_audited_delegate_methods_are_implemented(self):
        names = re.findall(r"^\| `-\[KV\w+ ([\w:]+)\]`", read("docs", "macos-review.md"), flags=re.MULTILINE)
        self.assertGreater(len(names), 7)
        sources = "".join(self.sources.values())
        for name in names:
            parts = name.rstrip(":").split(":")
            pattern = r"- \(\w+\)" + r"\s*:\([^)]*\)\w+\s+".join(parts) + (r":" if ":" in name else r"\b")
            self.assertRegex(sources, pattern, name)


if __name__ == "__main__":
    unittest.main()
