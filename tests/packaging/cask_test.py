"""Makes the Homebrew cask of a release, and has Ruby read it with a language of casks that only writes down."""

import hashlib
import json
import pathlib
import shutil
import subprocess
import tempfile
import unittest

from stand_in_bundle import FEED, ROOT, VERSION, make_bundle, pack

SCRIPT = ROOT / "packaging/macos/make-cask"
ADDRESS = f"https://example.org/releases/v{VERSION}"
KEY = bytes(range(32))
# Every stanza writes down what it was given; version and appdir can be read back, as in Homebrew.
LANGUAGE = r"""
require "json"
class Stanzas < BasicObject
  def initialize; @given = {}; end
  def given; @given; end
  def appdir; "/Applications"; end
  def method_missing(name, *values, **named, &block)
    return @given[name].first if values.empty? && named.empty? && block.nil? && @given.key?(name)
    inner = nil
    if block && name == :livecheck
      inner = ::Stanzas.new
      inner.instance_eval(&block)
      inner = inner.given
    end
    @given[name] = values + (named.empty? ? [] : [named]) + (inner ? [inner] : [])
    nil
  end
end
def cask(token, &block)
  stanzas = Stanzas.new
  stanzas.instance_eval(&block)
  puts JSON.generate({ token: token }.merge(stanzas.given))
end
load ARGV[0]
"""


class Cask(unittest.TestCase):
    def setUp(self) -> None:
        self.folder = pathlib.Path(self.enterContext(tempfile.TemporaryDirectory(prefix="keyvora-cask-")))
        self.archive = pack(make_bundle(self.folder, KEY), self.folder / f"keyvora-{VERSION}.zip")
        self.cask = self.folder / "keyvora.rb"

    def make(self, address: str = ADDRESS) -> subprocess.CompletedProcess[str]:
        return subprocess.run([SCRIPT, self.archive, address], capture_output=True, text=True, check=False)

    def made(self) -> str:
        done = self.make()
        self.assertEqual((done.returncode, done.stderr, done.stdout), (0, "", f"{self.cask}\n"))
        return self.cask.read_text(encoding="utf-8")

    def assert_refused(self, why: str, done: subprocess.CompletedProcess[str]) -> None:
        self.assertNotEqual(done.returncode, 0)
        self.assertIn(why, done.stderr)
        self.assertNotIn("Traceback", done.stderr)
        self.assertFalse(self.cask.exists())

    def test_it_has_the_releases_own_version_and_sum(self) -> None:
        text = self.made()
        self.assertIn(f'version "{VERSION}"', text)
        self.assertIn(hashlib.sha256(self.archive.read_bytes()).hexdigest(), text)

    @unittest.skipUnless(shutil.which("ruby"), "ruby reads it")
    def test_ruby_reads_what_homebrew_would(self) -> None:
        self.made()
        subprocess.run(["ruby", "-wc", self.cask], check=True, capture_output=True)
        done = subprocess.run(["ruby", "-e", LANGUAGE, self.cask], capture_output=True, text=True, check=False)
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        found = json.loads(done.stdout)
        self.assertEqual(found["url"], [f"{ADDRESS}/keyvora-{VERSION}.zip"])
        self.assertEqual((found["token"], found["app"], found["auto_updates"]), ("keyvora", ["keyvora.app"], [True]))
        self.assertEqual(found["depends_on"], [{"macos": ">= :ventura"}])
        self.assertEqual(found["livecheck"], [{"url": [FEED], "strategy": ["sparkle"]}])
        self.assertEqual(found["binary"], ["/Applications/keyvora.app/Contents/MacOS/keyvora-mappings"])
        self.assertIn("Privacy & Security > Accessibility", found["caveats"][0])
        left = found["zap"][0]["trash"]
        self.assertEqual(left, sorted(left))
        security = (ROOT / "docs/security.md").read_text(encoding="utf-8")
        for file in ("~/Library/Application Support/keyvora", "~/Library/Logs/keyvora.log"):
            self.assertIn(file, left)
            self.assertIn(f"`{file}", security)

    def test_only_a_signed_release_gets_one(self) -> None:
        self.archive = self.archive.rename(self.folder / f"keyvora-{VERSION}-unsigned.zip")
        self.assert_refused("a signed release", self.make())

    def test_addresses_are_secure(self) -> None:
        self.assert_refused("the address is no https address", self.make("http://example.org"))
        self.assert_refused("the address is no https address", self.make('https://example.org/"+`id`'))
        shutil.rmtree(self.folder / "keyvora.app")
        pack(make_bundle(self.folder, None), self.archive)
        self.assert_refused("SUFeedURL of the bundle is no https address", self.make())


if __name__ == "__main__":
    unittest.main()
