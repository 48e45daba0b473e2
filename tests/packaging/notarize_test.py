"""Runs packaging/macos/notarize against stand-ins of Apple's commands, which write down what they were told."""

import os
import pathlib
import subprocess
import tempfile
import unittest

SCRIPT = pathlib.Path(__file__).resolve().parents[2] / "packaging/macos/notarize"
STAND_IN = '#!/bin/sh\necho "$(basename "$0") $*" >>"$CALLS"\ncase "$*" in notarytool\\ submit*) cat "$ANSWER" ;; esac\n'
ACCEPTED = "  id: 1234-abcd\n  status: Accepted\n"
REFUSED = "  id: 1234-abcd\n  status: Invalid\n"


class Notarize(unittest.TestCase):
    def setUp(self) -> None:
        self.folder = pathlib.Path(self.enterContext(tempfile.TemporaryDirectory(prefix="keyvora-notarize-")))
        self.app = self.folder / "an app" / "keyvora.app"
        self.app.mkdir(parents=True)
        for name in ("xcrun", "ditto", "spctl"):
            (self.folder / name).write_text(STAND_IN, encoding="utf-8")
            (self.folder / name).chmod(0o755)

    def notarize(self, answer: str) -> tuple[subprocess.CompletedProcess[str], list[str]]:
        (self.folder / "answer").write_text(answer, encoding="utf-8")
        calls = self.folder / "calls"
        done = subprocess.run([SCRIPT, self.app, "a-profile"], capture_output=True, text=True, check=False, env={
            "PATH": f"{self.folder}:{os.environ['PATH']}", "CALLS": str(calls), "ANSWER": str(self.folder / "answer")})
        return done, calls.read_text(encoding="utf-8").splitlines()

    def test_what_is_accepted_is_stapled_and_assessed(self) -> None:
        done, calls = self.notarize(ACCEPTED)
        self.assertEqual(done.returncode, 0, done.stderr)
        archive = calls[0].rsplit(" ", 1)[1]
        self.assertEqual(calls, [
            f"ditto -c -k --keepParent {self.app} {archive}",
            f"xcrun notarytool submit {archive} --keychain-profile a-profile --wait",
            f"xcrun stapler staple {self.app}",
            f"spctl --assess --type execute --verbose {self.app}",
        ])
        self.assertFalse(pathlib.Path(archive).exists())

    def test_what_is_refused_is_not_stapled_and_the_reasons_are_fetched(self) -> None:
        done, calls = self.notarize(REFUSED)
        self.assertNotEqual(done.returncode, 0)
        self.assertIn("did not accept", done.stderr)
        self.assertEqual(calls[2:], ["xcrun notarytool log 1234-abcd --keychain-profile a-profile"])


if __name__ == "__main__":
    unittest.main()
