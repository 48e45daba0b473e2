"""Runs the scripts of packaging/macos against stand-ins of Apple's commands, and looks into what they make."""

import pathlib
import plistlib
import re
import shutil
import stat
import subprocess
import tempfile
import unittest
import zipfile

from apple_commands import AppleCommands, certificate
from stand_in_bundle import SYMBOLS, VERSION, VERSIONS, make_bundle, pack

MACOS = pathlib.Path(__file__).resolve().parents[2] / "packaging/macos"
IDENTITY = "Developer ID Application: A person (TEAM123456)"
KEY = bytes(range(32))


class ScriptCase(unittest.TestCase):
    def setUp(self) -> None:
        self.folder = pathlib.Path(self.enterContext(tempfile.TemporaryDirectory(prefix="keyvora-macos-release-")))
        self.app = make_bundle(self.folder, KEY)
        self.published = self.folder / "what is published"
        self.apple = AppleCommands(self.folder, identities=[IDENTITY])

    def run_script(self, name: str, *arguments: object, **environment: str) -> subprocess.CompletedProcess[str]:
        return self.apple.run(MACOS / name, *arguments, **environment)

    def assert_runs(self, name: str, *arguments: object, **environment: str) -> str:
        done = self.run_script(name, *arguments, **environment)
        self.assertEqual(done.returncode, 0, done.stdout + done.stderr)
        return done.stdout

    def assert_refused(self, why: str, name: str, *arguments: object, **environment: str) -> None:
        done = self.run_script(name, *arguments, **environment)
        self.assertNotEqual(done.returncode, 0)
        self.assertIn(why, done.stderr)

    def files(self) -> list[str]:
        return sorted(file.name for file in self.published.iterdir()) if self.published.exists() else []


class Release(ScriptCase):
    """The one command from a built application to what is published."""

    def test_signed_notarized_and_packed(self) -> None:
        self.assert_runs("release", self.app, self.published, KEYVORA_SIGNING_IDENTITY=IDENTITY, KEYVORA_NOTARY_PROFILE="notary")
        self.assertEqual(self.files(), [f"keyvora-{VERSION}-dSYM.zip", f"keyvora-{VERSION}.dmg", f"keyvora-{VERSION}.zip"])
        signed = self.apple.remembered("signed")
        app = str(self.app.resolve())
        parts = ("XPCServices/Installer.xpc", "XPCServices/Downloader.xpc", "Autoupdate", "Updater.app")
        inner = [f"{app}/{VERSIONS}/B/{part}" for part in parts]
        self.assertEqual(signed, [*inner, f"{app}/Contents/Frameworks/Sparkle.framework", f"{app}/Contents/MacOS/keyvora-mappings",
                                  app, str((self.published / f"keyvora-{VERSION}.dmg").resolve())])
        self.assertEqual(self.apple.remembered("stapled"), [str(self.app), str(self.published / f"keyvora-{VERSION}.dmg")])
        names = [call[0] for call in self.apple.calls()]
        self.assertLess(names.index("strip"), names.index("codesign"))
        image = (self.published / f"keyvora-{VERSION}.dmg").read_text(encoding="utf-8")
        self.assertEqual(image, "Applications -> /Applications\nkeyvora.app\n")

    def test_the_archive_has_the_bundle_as_it_was(self) -> None:
        self.assert_runs("release", self.app, self.published, KEYVORA_SIGNING_IDENTITY=IDENTITY, KEYVORA_NOTARY_PROFILE="notary")
        with zipfile.ZipFile(self.published / f"keyvora-{VERSION}.zip") as archive:
            modes = {entry.filename: entry.external_attr >> 16 for entry in archive.infolist()}
            self.assertEqual(stat.filemode(modes["keyvora.app/Contents/MacOS/keyvora"]), "-rwxr-xr-x")
            self.assertTrue(stat.S_ISLNK(modes[f"keyvora.app/{VERSIONS}/Current"]))
            self.assertFalse(archive.read("keyvora.app/Contents/MacOS/keyvora").endswith(SYMBOLS))
            information = plistlib.loads(archive.read("keyvora.app/Contents/Info.plist"))
        self.assertEqual(information["CFBundleShortVersionString"], VERSION)

    def test_without_secrets_it_does_all_but_sign_and_says_so(self) -> None:
        said = self.assert_runs("release", self.app, self.published)
        self.assertIn("NOT SIGNED, NOT NOTARIZED", said)
        self.assertEqual(self.files(), [f"keyvora-{VERSION}-dSYM.zip", f"keyvora-{VERSION}-unsigned.dmg",
                                        f"keyvora-{VERSION}-unsigned.zip"])
        self.assertTrue(all(call[3] == "-" for call in self.apple.calls("codesign")), "ad hoc only")
        self.assertFalse([call for call in self.apple.calls("xcrun") if call[1] == "notarytool"])

    def test_a_checkout_that_a_group_may_write_to_makes_the_same_modes(self) -> None:
        (self.app / "Contents/Info.plist").chmod(0o664)
        (self.app / "Contents/MacOS").chmod(0o775)
        (self.app / "Contents/Resources/keyvora.icns").chmod(0o600)
        self.assert_runs("release", self.app, self.published)
        with zipfile.ZipFile(self.published / f"keyvora-{VERSION}-unsigned.zip") as archive:
            modes = {entry.filename.rstrip("/"): stat.filemode(entry.external_attr >> 16) for entry in archive.infolist()}
        self.assertEqual(modes["keyvora.app/Contents/Info.plist"], "-rw-r--r--")
        self.assertEqual(modes["keyvora.app/Contents/Resources/keyvora.icns"], "-rw-r--r--")
        self.assertEqual(modes["keyvora.app/Contents/MacOS/keyvora"], "-rwxr-xr-x")

    def test_half_of_the_secrets_is_a_mistake(self) -> None:
        self.assert_refused("set both or neither", "release", self.app, self.published, KEYVORA_SIGNING_IDENTITY=IDENTITY)
        self.assert_refused("set both or neither", "release", self.app, self.published, KEYVORA_NOTARY_PROFILE="notary")
        self.assertEqual(self.apple.calls(), [])

    def test_the_sdk_is_looked_at_first(self) -> None:
        self.apple.tell(sdk="13.3")
        self.assert_refused("the SDK is that of macOS 13.3; keyvora takes 14 or later", "release", self.app, self.published)
        self.assertEqual([call[0] for call in self.apple.calls()], ["xcrun"])

    def test_what_the_notary_refuses_is_not_packed(self) -> None:
        self.apple.tell(answer="Invalid")
        self.assert_refused("did not accept", "release", self.app, self.published, KEYVORA_SIGNING_IDENTITY=IDENTITY,
                            KEYVORA_NOTARY_PROFILE="notary")
        self.assertEqual(self.files(), [f"keyvora-{VERSION}-dSYM.zip"])


class Symbols(ScriptCase):
    def test_they_are_kept_and_taken_out(self) -> None:
        said = self.assert_runs("keep-symbols", self.app, self.published)
        archive = self.published / f"keyvora-{VERSION}-dSYM.zip"
        self.assertEqual(said, f"{archive}\n")
        data = f"keyvora-{VERSION}-dSYM/{{0}}.dSYM/Contents/Resources/DWARF/{{0}}"
        with zipfile.ZipFile(archive) as kept:
            for name in ("keyvora", "keyvora-mappings"):
                self.assertEqual(kept.read(data.format(name)), SYMBOLS)
                self.assertFalse((self.app / "Contents/MacOS" / name).read_bytes().endswith(SYMBOLS))

    def test_a_build_without_them_is_refused_and_so_is_a_second_time(self) -> None:
        self.assert_runs("keep-symbols", self.app, self.published)
        self.assert_refused("has no debugging symbols", "keep-symbols", self.app, self.published)

    def test_symbols_of_another_build_are_refused(self) -> None:
        self.apple.tell(lose_symbols=True)
        self.assert_refused("the symbols made are not those of", "keep-symbols", self.app, self.published)
        self.assertEqual(self.apple.calls("strip"), [])


class Notarize(ScriptCase):
    def test_an_application_is_sent_as_an_archive_then_stapled_and_assessed(self) -> None:
        self.assert_runs("notarize", self.app, "a-profile")
        calls = self.apple.calls()
        sent = calls[0][-1]
        self.assertEqual(calls, [
            ["ditto", "-c", "-k", "--keepParent", str(self.app), sent],
            ["xcrun", "notarytool", "submit", sent, "--keychain-profile", "a-profile", "--wait"],
            ["xcrun", "stapler", "staple", str(self.app)],
            ["spctl", "--assess", "--type", "execute", "--verbose", str(self.app)],
        ])
        self.assertFalse(pathlib.Path(sent).exists())

    def test_an_image_is_sent_as_it_is(self) -> None:
        image = self.folder / "an image.dmg"
        image.touch()
        self.assert_runs("notarize", image, "a-profile", KEYVORA_NOTARY_KEYCHAIN="a.keychain")
        self.assertEqual(self.apple.remembered("accepted"), [str(image)])
        self.assertEqual(self.apple.remembered("notary_keychain"), "a.keychain")
        self.assertEqual(self.apple.calls("spctl")[0][2:4], ["--type", "open"])

    def test_what_is_refused_is_not_stapled_and_the_reasons_are_fetched(self) -> None:
        self.apple.tell(answer="Invalid")
        self.assert_refused("did not accept", "notarize", self.app, "a-profile")
        self.assertEqual(self.apple.calls()[2:], [["xcrun", "notarytool", "log", "1234-abcd", "--keychain-profile", "a-profile"]])


class Sign(ScriptCase):
    def test_a_bundle_that_could_not_update_is_refused(self) -> None:
        for settings, why in (({"KEYVORA_UPDATE_KEY": ""}, "no key to check updates with"),
                              ({"KEYVORA_UPDATE_FEED": ""}, "no update feed")):
            shutil.rmtree(self.app)
            make_bundle(self.folder, KEY, **settings)
            self.assert_refused(why, "sign-release", self.app, IDENTITY)
        self.assertEqual(self.apple.calls("codesign"), [])

    def test_a_certificate_that_is_not_there(self) -> None:
        self.assert_refused("no identity found", "sign-release", self.app, "Developer ID Application: Nobody")

    def test_a_development_build_is_signed_with_its_own_certificate(self) -> None:
        self.apple.tell(identities=["keyvora development"])
        self.assert_runs("sign-development", self.app)
        self.assertTrue(all(call[3] == "keyvora development" for call in self.apple.calls("codesign")))
        self.assertEqual(self.apple.remembered("signed")[-1], str(self.app.resolve()))


class Package(ScriptCase):
    def test_what_is_not_notarized_is_refused(self) -> None:
        self.assert_refused("is not notarized", "package", self.app, self.published, IDENTITY)
        self.assertEqual(self.files(), [])

    def test_an_earlier_try_is_replaced(self) -> None:
        self.assert_runs("package", self.app, self.published, "--unsigned")
        self.assert_runs("package", self.app, self.published, "--unsigned")
        self.assertEqual(self.files(), [f"keyvora-{VERSION}-unsigned.dmg", f"keyvora-{VERSION}-unsigned.zip"])


class Keychain(ScriptCase):
    SECRETS = {"KEYVORA_CERTIFICATE": certificate(IDENTITY), "KEYVORA_CERTIFICATE_PASSWORD": "of the certificate",
               "KEYVORA_NOTARY_APPLE_ID": "person@example.org", "KEYVORA_NOTARY_TEAM_ID": "TEAM123456",
               "KEYVORA_NOTARY_PASSWORD": "of the application"}

    def test_the_certificate_and_the_credentials_are_in_it(self) -> None:
        self.apple.tell(identities=[])
        self.assert_runs("make-release-keychain", "release.keychain", "notary", **self.SECRETS)
        self.assertEqual(self.apple.remembered("identities"), [IDENTITY])
        self.assertEqual(self.apple.remembered("imported_with"), "of the certificate")
        self.assertEqual(self.apple.remembered("profile"), {
            "PROFILE": "notary", "ID": "person@example.org", "TEAM": "TEAM123456", "PASSWORD": "of the application",
            "KEYCHAIN": "release.keychain"})
        self.assertEqual(self.apple.remembered("keychain")[-2:], ["set-key-partition-list", "list-keychains"])

    def test_each_secret_is_asked_for_by_name(self) -> None:
        for name in self.SECRETS:
            self.assert_refused(f"{name} is not set", "make-release-keychain", "release.keychain", "notary",
                                **{key: value for key, value in self.SECRETS.items() if key != name})
        self.assertEqual(self.apple.calls(), [])


class Archive(ScriptCase):
    """What check-archive finds in archives that are wrong in one thing."""

    def setUp(self) -> None:
        super().setUp()
        (self.app / "Contents/_CodeSignature").mkdir()
        for name in ("_CodeSignature/CodeResources", "CodeResources"):
            (self.app / "Contents" / name).touch()
        self.archive = self.folder / f"keyvora-{VERSION}.zip"

    def faults(self) -> str:
        done = self.run_script("check-archive", pack(self.app, self.archive))
        self.assertEqual(done.returncode, 1 if done.stderr else 0)
        self.assertNotIn("Traceback", done.stderr)
        return done.stderr

    def test_a_good_one(self) -> None:
        self.assertEqual(self.faults(), "")

    def test_what_is_missing(self) -> None:
        for name in ("Info.plist", "MacOS/keyvora", "MacOS/keyvora-mappings", "Resources/keyvora.icns",
                     "Resources/keyvora_keyvora.bundle/mappings.json", "Frameworks/Sparkle.framework/Versions/Current",
                     "_CodeSignature/CodeResources", "CodeResources"):
            with self.subTest(name):
                file = self.app / "Contents" / name
                kept = file.rename(self.folder / "kept")
                self.assertIn(f"Contents/{name} is missing", self.faults())
                kept.rename(file)

    def test_modes(self) -> None:
        program = self.app / "Contents/MacOS/keyvora"
        for mode, fault in ((0o644, "keyvora is not executable"), (0o775, "-rwxrwxr-x"), (0o757, "-rwxr-xrwx"),
                            (0o4755, "-rwsr-xr-x"), (0o2755, "-rwxr-sr-x")):
            with self.subTest(oct(mode)):
                program.chmod(mode)
                self.assertIn(fault, self.faults())

    def test_links(self) -> None:
        current = self.app / VERSIONS / "Current"
        for target, fault in (("/Library/B", "is a link out of keyvora.app"), ("../../../../../x", "is a link out of keyvora.app")):
            with self.subTest(target):
                current.unlink()
                current.symlink_to(target)
                self.assertIn(fault, self.faults())
        current.unlink()
        shutil.copytree(current.parent / "B", current)
        (current.parent / "B/Resources").mkdir()
        self.assertIn("Current is no link", self.faults())

    def test_what_does_not_belong_there(self) -> None:
        (self.app / "Contents/.DS_Store").touch()
        self.assertIn(".DS_Store does not belong there", self.faults())
        pack(self.app, self.archive)
        with zipfile.ZipFile(self.archive, "a") as archive:
            archive.writestr("elsewhere", "")
            archive.writestr("__MACOSX/keyvora.app/._Contents", "")
        done = self.run_script("check-archive", self.archive)
        self.assertIn("elsewhere is outside keyvora.app", done.stderr)
        self.assertNotIn("__MACOSX", done.stderr)

    def test_architectures(self) -> None:
        program = self.app / "Contents/MacOS/keyvora-mappings"
        universal = program.read_bytes()
        for code, fault in ((b"\xcf\xfa\xed\xfe" + bytes(28), "no architecture that is known"), (b"", "no architecture"),
                            (universal[:4] + b"\0\0\0\1" + universal[8:], "has code for x86_64, not for arm64 and x86_64")):
            with self.subTest(fault):
                program.write_bytes(code)
                self.assertIn(fault, self.faults())

    def test_the_property_list(self) -> None:
        file = self.app / "Contents/Info.plist"
        well = plistlib.loads(file.read_bytes())
        for key, value in (("CFBundleIdentifier", "org.example"), ("CFBundleExecutable", "other"), ("CFBundlePackageType", "BNDL"),
                           ("LSUIElement", False), ("CFBundleVersion", "1b"), ("CFBundleShortVersionString", "7.9"),
                           ("LSMinimumSystemVersion", "new"), ("SUFeedURL", "https://updates.invalid/appcast.xml"),
                           ("SUFeedURL", "http://example.org/appcast.xml"), ("SUPublicEDKey", "short")):
            with self.subTest(f"{key}: {value}"):
                file.write_bytes(plistlib.dumps({**well, key: value}))
                self.assertRegex(self.faults(), key if key != "CFBundleShortVersionString" else "the bundle is 7.9")
        file.write_bytes(b"<plist>")
        self.assertIn("check-archive: ", self.faults())

    def test_names(self) -> None:
        for name in ("keyvora.zip", f"keyvora-{VERSION}-unsigned.zip"):
            self.archive = self.folder / name
            self.assertIn("its name is not keyvora-VERSION.zip", self.faults())
        done = self.run_script("check-archive", "--unsigned", pack(self.app, self.folder / f"keyvora-{VERSION}.zip"))
        self.assertIn("its name is not keyvora-VERSION-unsigned.zip", done.stderr)

    def test_unsigned_it_needs_no_feed_key_signature_or_ticket(self) -> None:
        shutil.rmtree(self.app)
        make_bundle(self.folder, None)
        self.archive = self.folder / f"keyvora-{VERSION}-unsigned.zip"
        done = self.run_script("check-archive", "--unsigned", pack(self.app, self.archive))
        self.assertEqual((done.returncode, done.stderr), (0, ""))


class Shell(unittest.TestCase):
    def test_macos_has_a_shell_of_2007(self) -> None:
        """Bash 3.2 knows no associative arrays, mapfile, case conversion or ${array[-1]}."""
        for file in filter(pathlib.Path.is_file, MACOS.iterdir()):  # Python keeps a folder there
            text = file.read_bytes()
            if text.startswith(b"#!/usr/bin/env bash") or file.suffix == ".sh":
                self.assertIsNone(re.search(rb"declare -A|mapfile|readarray|\$\{\w+(,,|\^\^)|\[-\d+\]\}|&>>|\|&", text), file.name)


if __name__ == "__main__":
    unittest.main()
