"""Makes the update feed with keys of its own, breaks each of Sparkle's rules in it, and has keyvora read it back.

usage: appcast_test.py [KEYVORA [unittest arguments]]
"""

import base64
import functools
import http.server
import os
import pathlib
import re
import secrets
import shutil
import subprocess
import sys
import tempfile
import threading
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
MACOS = ROOT / "packaging/macos"
sys.path[:0] = [str(MACOS), str(ROOT / "tests/app/updates")]
sys.dont_write_bytecode = True

import feed  # noqa: E402
from installation import Installation  # noqa: E402
from stand_in_bundle import BUILD, VERSION, make_bundle, pack  # noqa: E402
from update_keys import new_key_pair, require_openssl  # noqa: E402

PROGRAM = pathlib.Path(sys.argv.pop(1)).resolve() if len(sys.argv) > 1 and pathlib.Path(sys.argv[1]).is_file() else None
ADDRESS = "https://example.org/releases/v7.8.9"
# The second test vector of RFC 8032: a private key, its public key, and its signature of one byte.
SEED = bytes.fromhex("4ccd089b28ff96da9db6c346ec114e0f5b8a319f35aba624da8cf6ed4fb8a6fb")
PUBLIC = bytes.fromhex("3d4017c3e843895a92b70aa74d1b7ebc9c982ccf2ec4968cc0cd55f12af4660c")
SIGNATURE = bytes.fromhex("92a009a9f0d4cab8720e820b5f642540a2b27b5416503f8fb3762223ebdb69da"
                          "085ac1e43e15996e458f3613d0f11d8c387b2eaeb4302aeeb00d291612bb0c00")

setUpModule = require_openssl


class FeedCase(unittest.TestCase):
    """An archive of a release with a key pair made for the test."""

    def setUp(self) -> None:
        self.folder = pathlib.Path(self.enterContext(tempfile.TemporaryDirectory(prefix="keyvora-appcast-")))
        self.seed, self.key = new_key_pair()
        self.archive = pack(make_bundle(self.folder, self.key), self.folder / f"keyvora-{VERSION}.zip")
        self.feed = self.folder / "appcast.xml"

    def run_script(self, name: str, *arguments: object, given: str = "") -> subprocess.CompletedProcess[str]:
        environment = {"PATH": os.environ["PATH"], "SOURCE_DATE_EPOCH": "1800000000", "PYTHONDONTWRITEBYTECODE": "1"}
        return subprocess.run([MACOS / name, *map(str, arguments)], input=given, capture_output=True, text=True, check=False,
                              env=environment)

    def make(self, *arguments: object, seed: bytes | None = None) -> subprocess.CompletedProcess[str]:
        return self.run_script("make-appcast", self.archive, ADDRESS, "--key-file", "-", *arguments,
                               given=base64.b64encode(seed or self.seed).decode() + "\n")

    def made(self, *arguments: object) -> bytes:
        done = self.make(*arguments)
        self.assertEqual((done.returncode, done.stderr, done.stdout), (0, "", f"{self.feed}\n"))
        return self.feed.read_bytes()

    def check(self) -> list[str]:
        """The faults that check-appcast finds, without the file's name."""
        done = self.run_script("check-appcast", self.feed)
        self.assertEqual(done.returncode, 1 if done.stderr else 0)
        self.assertNotIn("Traceback", done.stderr)
        return [line.split(": ", 1)[1] for line in done.stderr.splitlines()]

    def sign_again(self, content: bytes) -> None:
        """Puts other content into the feed, with a signature that fits."""
        with tempfile.NamedTemporaryFile() as file:
            file.write(content)
            file.flush()
            self.feed.write_bytes(content + feed.signature_block(content, feed.sign(pathlib.Path(file.name), self.seed)))


class Scheme(unittest.TestCase):
    def test_keys_and_signatures_are_those_of_the_standard(self) -> None:
        self.assertEqual(feed.public_key(SEED), PUBLIC)
        with tempfile.NamedTemporaryFile() as one:
            one.write(b"\x72")
            one.flush()
            file = pathlib.Path(one.name)
            self.assertEqual(feed.sign(file, SEED), SIGNATURE)
            self.assertTrue(feed.is_signed(file, SIGNATURE, PUBLIC))
            self.assertFalse(feed.is_signed(file, SIGNATURE[:-1] + b"\1", PUBLIC))
            one.write(b"x")
            one.flush()
            self.assertFalse(feed.is_signed(file, SIGNATURE, PUBLIC))


class Made(FeedCase):
    def test_it_keeps_every_rule(self) -> None:
        notes = self.folder / "notes"
        notes.write_text("### Added\n\n- This & <that>.\n", encoding="utf-8")
        text = self.made("--page", "https://example.org/v7.8.9", "--notes", notes).decode("utf-8")
        self.assertEqual(self.check(), [])
        for part in (f'url="{ADDRESS}/keyvora-7.8.9.zip"', f'length="{self.archive.stat().st_size}"',
                     "<pubDate>Fri, 15 Jan 2027 08:00:00 +0000</pubDate>", "<sparkle:version>57</sparkle:version>",
                     "<sparkle:shortVersionString>7.8.9</sparkle:shortVersionString>",
                     "<sparkle:minimumSystemVersion>13.0</sparkle:minimumSystemVersion>",
                     "<link>https://example.org/v7.8.9</link>", "- This &amp; &lt;that&gt;."):
            self.assertIn(part, text)

    def test_it_is_signed_as_sparkle_signs_feeds(self) -> None:
        content, mark, block = self.made().partition(b"<!-- sparkle-signatures:\n")
        self.assertTrue(mark)
        signature, length = re.fullmatch(rb"edSignature: (\S+)\nlength: (\d+)\n-->\n", block).groups()  # type: ignore[union-attr]
        self.assertEqual(int(length), len(content))
        self.assertTrue(feed.are_signed(content, base64.b64decode(signature), self.key))

    def test_another_implementation_takes_the_signatures(self) -> None:
        try:
            from cryptography.hazmat.primitives.asymmetric.ed25519 import Ed25519PublicKey
        except ImportError:
            self.skipTest("python3-cryptography checks them")
        text = self.made()
        (signature,) = re.findall(rb'edSignature="([^"]+)"', text)
        Ed25519PublicKey.from_public_bytes(self.key).verify(base64.b64decode(signature), self.archive.read_bytes())

    def test_sparkles_own_program_may_sign(self) -> None:
        program = self.folder / "sign_update"
        program.write_text(f"#!{sys.executable}\nimport base64, pathlib, sys\nsys.dont_write_bytecode = True\n"
                           f"sys.path.insert(0, {str(MACOS)!r})\nimport feed\nassert sys.argv[1] == '-p' and len(sys.argv) == 3\n"
                           "assert not sys.argv[2].endswith('.xml')\n"
                           f"print(base64.b64encode(feed.sign(pathlib.Path(sys.argv[2]), {self.seed!r})).decode())\n",
                           encoding="utf-8")
        program.chmod(0o755)
        done = self.run_script("make-appcast", self.archive, ADDRESS, "--sign-update", program)
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        self.assertEqual(self.check(), [])

    def test_earlier_releases_stay_in_it(self) -> None:
        self.made()
        earlier = self.feed.rename(self.folder / "earlier.xml")
        shutil.rmtree(self.folder / "keyvora.app")
        app = make_bundle(self.folder, self.key, PROJECT_VERSION="8.0.0", KEYVORA_BUILD="58")
        self.archive = pack(app, self.folder / "keyvora-8.0.0.zip")
        self.made("--previous", earlier)
        self.assertEqual(self.check(), [])
        self.assertEqual(re.findall(rb"<sparkle:version>(\d+)<", self.feed.read_bytes()), [b"58", b"57"])
        # Made again for the same version, that version stands there once.
        self.made("--previous", self.feed)
        self.assertEqual(re.findall(rb"<sparkle:version>(\d+)<", self.feed.read_bytes()), [b"58", b"57"])
        earlier.write_bytes(earlier.read_bytes().replace(b"57", b"56"))
        self.assertIn("is not signed with the bundle's key", self.make("--previous", earlier).stderr)

    def test_unsigned_it_says_so_and_has_another_name(self) -> None:
        done = self.run_script("make-appcast", self.archive, ADDRESS, "--unsigned")
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        text = (self.folder / "unsigned-appcast.xml").read_text(encoding="utf-8")
        self.assertIn("Not signed", text)
        self.assertNotIn("edSignature", text)
        self.assertFalse(self.feed.exists())


class Refused(FeedCase):
    def assert_refused(self, why: str, done: subprocess.CompletedProcess[str]) -> None:
        self.assertNotEqual(done.returncode, 0)
        self.assertIn(why, done.stderr)
        self.assertNotIn("Traceback", done.stderr)
        self.assertFalse(self.feed.exists())

    def test_a_key_that_is_not_the_bundles(self) -> None:
        self.assert_refused("is not that of SUPublicEDKey", self.make(seed=secrets.token_bytes(32)))

    def test_what_is_no_key(self) -> None:
        self.assert_refused("is no private key", self.make(seed=b"too short"))

    def test_a_bundle_without_a_key(self) -> None:
        shutil.rmtree(self.folder / "keyvora.app")
        self.archive = pack(make_bundle(self.folder, None), self.folder / "without.zip")
        self.assert_refused("no SUPublicEDKey", self.make())

    def test_what_is_no_archive_of_the_application(self) -> None:
        self.archive.write_bytes(b"nothing packed")
        self.assert_refused("is no archive with keyvora.app/Contents/Info.plist", self.make())

    def test_addresses_that_are_not_secure(self) -> None:
        done = self.run_script("make-appcast", self.archive, "http://example.org", "--key-file", "-", given="")
        self.assert_refused("no https address", done)
        self.assert_refused("no https address", self.make("--page", "http://example.org"))


class Rules(FeedCase):
    """Each of Sparkle's rules, broken alone, is found; the feed is signed anew, so that only the rule is broken."""

    def test_each_rule(self) -> None:
        notes = self.folder / "notes"
        notes.write_text("New.\n", encoding="utf-8")
        well = feed.take_apart(self.made("--page", "https://example.org/v7.8.9", "--notes", notes)).content
        item = re.search(rb"<item>.*</item>", well, re.DOTALL)
        (signature,) = re.findall(rb'edSignature="([^"]+)"', well)
        enclosure = re.search(rb"<enclosure [^>]*/>", well)
        assert item and enclosure
        other = base64.b64encode(feed.sign(notes, self.seed))
        for what, old, new, fault in (
            ("address", b'url="https:', b'url="http:', "url of the enclosure is no https address"),
            ("address with a space", b"/v7.8.9/", b"/v 7.8.9/", "url of the enclosure is no https address"),
            ("length", b'length="', b'length="1', "but the archive has"),
            ("no length", b'length="', b'other="', "no number of bytes"),
            ("type", b"octet-stream", b"zip", "type of the enclosure"),
            ("signature of another file", signature, other, "is not that of the archive"),
            ("no signature", b"sparkle:edSignature", b"sparkle:dsaSignature", "not 64 bytes"),
            ("short signature", signature, signature[:40], "not 64 bytes"),
            ("system", b"<enclosure ", b'<enclosure sparkle:os="linux" ', "sparkle:os"),
            ("version", b"version>57<", b"version>58<", "but the bundle says 57"),
            ("version's form", b"version>57<", b"version>57b<", "not numbers with dots"),
            ("display version", b"String>7.8.9<", b"String>7.8<", "but the bundle says 7.8.9"),
            ("oldest system", b">13.0<", b">12.0<", "but the bundle says 13.0"),
            ("oldest system's form", b">13.0<", b">Ventura<", "minimumSystemVersion is not numbers"),
            ("date's form", b"Fri, 15 Jan 2027 08:00:00 +0000", b"2027-01-15T08:00:00Z", "pubDate is not like"),
            ("month", b"15 Jan", b"15 Foo", "pubDate is no date"),
            ("day of the week", b"Fri, 15", b"Thu, 15", "pubDate is no date"),
            ("date", b"pubDate>", b"date>", "pubDate is not like"),
            ("page", b"<link>https", b"<link>file", "link is no https address"),
            ("format of the notes", b"plain-text", b"html", "description is not plain-text"),
            ("length of the notes", b"New.", b"New." * 5000, "description is longer"),
            ("channel", b"<link>", b"<sparkle:channel>beta</sparkle:channel><link>", "sparkle:channel"),
            ("two enclosures", enclosure[0], enclosure[0] * 2, "2 enclosures"),
            ("no enclosure", enclosure[0], b"", "item 1: its archive is not beside the feed"),
            ("equal versions", item[0], item[0] * 2, "the same sparkle:version"),
            ("namespace", b"andymatuschak.org/xml-namespaces/sparkle", b"andymatuschak.org/sparkle", "sparkle:version is not"),
            ("place", b"channel>", b"feed>", "no item in /rss/channel"),
            ("document type", b"<rss", b"<!DOCTYPE rss><rss", "document type"),
        ):
            with self.subTest(what):
                self.assertIn(old, well)
                self.sign_again(well.replace(old, new))
                self.assertIn(fault, "\n".join(self.check()))

    def test_what_is_not_well_formed(self) -> None:
        self.sign_again(b"<rss><channel>")
        self.assertIn("no element found", "\n".join(self.check()))

    def test_the_feeds_own_signature(self) -> None:
        text = self.made()
        content = feed.take_apart(text).content
        length = str(len(content)).encode()
        for what, wrong, fault in (
            ("changed bytes", text.replace(b"keyvora</title>", b"Keyvora</title>"), "is not that of its bytes"),
            ("none", content, "is not signed"),
            ("length", text.replace(b"\nlength: " + length, b"\nlength: 1"), "which says 1"),
            ("something behind", text + b"<!-- more -->\n", "malformed"),
            ("short", re.sub(rb"\nedSignature: .{20}", b"\nedSignature: ", text), "not 64 bytes"),
        ):
            with self.subTest(what):
                self.assertNotEqual(wrong, text)
                self.feed.write_bytes(wrong)
                self.assertIn(fault, "\n".join(self.check()))

    def test_an_archive_that_changed_after_it_was_signed(self) -> None:
        self.made()
        with self.archive.open("r+b") as file:
            file.seek(40)
            file.write(b"\xff")
        self.assertIn("is not that of the archive", "\n".join(self.check()))

    def test_a_bundle_that_cannot_update(self) -> None:
        self.made()
        for settings, fault in (({"KEYVORA_UPDATE_FEED": "http://example.org/appcast.xml"}, "SUFeedURL of the bundle is no https"),
                                ({"KEYVORA_UPDATE_KEY": ""}, "SUPublicEDKey of the bundle is not 32 bytes")):
            shutil.rmtree(self.folder / "keyvora.app")
            pack(make_bundle(self.folder, self.key, **settings), self.archive)
            self.assertIn(fault, "\n".join(self.check()))


@unittest.skipUnless(PROGRAM, "the program's path is not given")
class ReadBack(FeedCase):
    """The program itself fetches the feed from a web server on this machine."""

    def probe(self) -> subprocess.CompletedProcess[str]:
        handler = functools.partial(Quiet, directory=str(self.folder))
        server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), handler)
        self.addCleanup(server.server_close)
        self.addCleanup(server.shutdown)
        threading.Thread(target=server.serve_forever, kwargs={"poll_interval": 0.05}, daemon=True).start()
        place = self.folder / f"installed-{server.server_address[1]}"
        place.mkdir()
        assert PROGRAM
        return Installation(place, PROGRAM).probe(f"http://127.0.0.1:{server.server_address[1]}/appcast.xml")

    def test_the_update_is_offered(self) -> None:
        notes = self.folder / "notes"
        notes.write_text("New & good.\n", encoding="utf-8")
        self.made("--page", "https://example.org/v7.8.9", "--notes", notes)
        answer = self.probe()
        self.assertEqual((answer.stdout, answer.returncode), (f"update {VERSION} ({BUILD})\n", 0), answer.stderr)

    def test_an_item_for_macos_only_is_passed_over(self) -> None:
        self.feed.write_bytes(self.made().replace(b"<enclosure ", b'<enclosure sparkle:os="macos" '))
        self.assertEqual(self.probe().stdout, "current\n")


class Quiet(http.server.SimpleHTTPRequestHandler):
    def log_message(self, *_: object) -> None:
        pass


if __name__ == "__main__":
    unittest.main(verbosity=2)
