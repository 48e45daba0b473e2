"""Runs the real program's update probe against a local web server.

usage: probe_test.py KEYVORA [unittest arguments]
"""

import pathlib
import shutil
import socket
import subprocess
import sys
import tempfile
import time
import unittest

from feed_server import FeedServer, make_certificate
from installation import FETCH_TIMEOUT, PATIENCE, Display, Installation

PROGRAM = pathlib.Path(sys.argv.pop(1)).resolve()
MAX_FEED_BYTES = 1024 * 1024


def name_of(folder: pathlib.Path) -> str:
    """The name of the process with this folder in /proc; empty when it has ended."""
    try:
        return (folder / "comm").read_text().strip()
    except FileNotFoundError:
        return ""


class ProbeTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="keyvora-probe-")
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        self.installed = Installation(self.folder, PROGRAM)
        self.server = self.enterContext(FeedServer())

    def assert_answer(self, answer: subprocess.CompletedProcess, line: str, status: int):
        self.assertEqual((answer.stdout, answer.returncode), (line + "\n", status), answer.stderr)
        self.assertNotIn("Sanitizer", answer.stderr)

    def assert_error(self, path: str, explanation: str):
        """Checks that the probe gives a reason in one line and does nothing else."""
        self.assert_answer(self.installed.probe(self.server.address + path), "error " + explanation, 1)
        self.assert_nothing_else_changed()

    def assert_nothing_else_changed(self):
        self.assertEqual(self.installed.files(),
                         ["Library/Application Support/keyvora/mappings.json", "Library/Logs/keyvora.log"])


class Answers(ProbeTest):
    def test_an_update(self):
        self.assert_answer(self.installed.probe(self.server.address + "/update.xml"), "update 1.3 (57)", 0)

    def test_none(self):
        self.assert_answer(self.installed.probe(self.server.address + "/none.xml"), "current", 0)

    def test_only_older_ones(self):
        self.assert_answer(self.installed.probe(self.server.address + "/older.xml"), "current", 0)

    def test_only_for_other_systems(self):
        self.assert_answer(self.installed.probe(self.server.address + "/other-systems.xml"), "current", 0)

    def test_a_feed_that_moved(self):
        self.assert_answer(self.installed.probe(self.server.address + "/moved.xml"), "update 1.3 (57)", 0)

    def test_the_option_among_others(self):
        answer = self.installed.probe(self.server.address + "/none.xml", "--quiet", "--probe-updates", "--help")
        self.assert_answer(answer, "current", 0)

    def test_a_probe_leaves_no_record_of_a_check(self):
        self.installed.probe(self.server.address + "/none.xml")
        self.assert_nothing_else_changed()

    def test_the_launch_follows_all_the_same(self):
        self.installed.probe(self.server.address + "/none.xml")
        log = (self.installed.home / "Library/Logs/keyvora.log").read_text(encoding="utf-8")
        self.assertRegex(log, r"^\d{4}-\d\d-\d\d \d\d:\d\d:\d\d launch 1\.2 \(42\)\n")


class Failures(ProbeTest):
    def test_no_feed(self):
        self.assert_answer(self.installed.probe(None),
                           "error No update feed is configured (SUFeedURL in Info.plist).", 1)

    def test_not_found(self):
        self.assert_error("/missing.xml", "The update feed could not be fetched: the server answered with status 404.")

    def test_server_error(self):
        self.assert_error("/broken", "The update feed could not be fetched: the server answered with status 500.")

    def test_unreachable(self):
        with socket.create_server(("127.0.0.1", 0)) as unused:
            port = unused.getsockname()[1]
        answer = self.installed.probe(f"http://127.0.0.1:{port}/feed.xml")
        self.assertEqual(answer.returncode, 1)
        self.assertRegex(answer.stdout,
                         rf"\Aerror The update feed could not be fetched: Failed to connect to 127\.0\.0\.1 port {port}\b.*\.\n\Z")

    def test_a_silent_server(self):
        self.assert_error("/silent", f"The update feed could not be fetched: it took longer than {FETCH_TIMEOUT} seconds.")

    def test_a_server_that_drips(self):
        self.assert_error("/dripping", f"The update feed could not be fetched: it took longer than {FETCH_TIMEOUT} seconds.")

    def test_oversized(self):
        for path in ("/announced-oversized", "/endless", "/packed-oversized"):
            with self.subTest(path):
                self.assert_error(path, f"The update feed could not be fetched: it is larger than {MAX_FEED_BYTES} bytes.")

    def test_cut_off(self):
        answer = self.installed.probe(self.server.address + "/cut-off")
        self.assertEqual(answer.returncode, 1)
        self.assertRegex(answer.stdout, r"\Aerror The update feed could not be fetched: .*\.\n\Z")

    def test_malformed(self):
        self.assert_error("/malformed.xml", "The update feed is malformed: it is not XML: Start-end tags mismatch.")

    def test_a_page_instead_of_a_feed(self):
        self.assert_error("/page.html", "The update feed is malformed: it is not an RSS channel.")

    def test_empty(self):
        self.assert_error("/empty.xml", "The update feed is malformed: it is not XML: No document element found.")

    def test_entity_bomb(self):
        self.assert_error("/bomb.xml", "The update feed is malformed: it declares a document type.")

    def test_redirect_loop(self):
        self.assert_error("/loop.xml", "The update feed could not be fetched: the server redirects more than 5 times.")

    def test_redirect_to_a_file(self):
        answer = self.installed.probe(self.server.address + "/to-file.xml")
        self.assertEqual(answer.returncode, 1)
        self.assertRegex(answer.stdout, r'\Aerror The update feed could not be fetched: Protocol "file" .*\.\n\Z')

    def test_feeds_that_are_not_on_the_web(self):
        feed = self.folder / "feed.xml"
        feed.write_text("<rss/>")
        for address in (feed.as_uri(), "ftp://127.0.0.1/feed.xml", "no address at all"):
            with self.subTest(address):
                answer = self.installed.probe(address)
                self.assertEqual(answer.returncode, 1)
                self.assertRegex(answer.stdout, r"\Aerror The update feed could not be fetched: .*\.\n\Z")


class Killed(ProbeTest):
    def test_it_leaves_no_fetch_behind(self):
        self.installed.configure(self.server.address + "/silent", timeout=10 * PATIENCE)
        program = subprocess.Popen([self.installed.program, "--probe-updates"], env=self.installed.environment(),
                                   stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        try:
            fetch = self.wait_until(lambda: self.fetch_of(program.pid), "the fetch to begin")
        finally:
            program.kill()
            program.wait()
        self.wait_until(lambda: not fetch.exists() or "\nState:\tZ" in (fetch / "status").read_text(), "the fetch to end")

    @staticmethod
    def fetch_of(process: int) -> pathlib.Path | None:
        """The folder in /proc of the process's fetch, once its program runs."""
        children = pathlib.Path(f"/proc/{process}/task/{process}/children").read_text().split()
        folders = (pathlib.Path("/proc") / number for number in children)
        return next((folder for folder in folders if name_of(folder) == "keyvora-fetch"), None)

    def wait_until(self, condition, what: str):
        deadline = time.monotonic() + PATIENCE
        while not (value := condition()):
            self.assertLess(time.monotonic(), deadline, f"waited in vain for {what}")
            time.sleep(0.01)
        return value


@unittest.skipUnless(shutil.which("openssl"), "openssl makes the certificates")
class Certificates(ProbeTest):
    def serve(self, name: str, address: str):
        self.certificate = make_certificate(self.folder / f"{name}.pem", address)
        return self.enterContext(FeedServer(self.certificate, plain_address=self.server.address))

    def assert_refused(self, answer: subprocess.CompletedProcess, reason: str):
        self.assertEqual(answer.returncode, 1, answer.stdout)
        self.assertRegex(answer.stdout, rf"\Aerror The update feed could not be fetched: .*{reason}.*\.\n\Z")
        self.assert_nothing_else_changed()

    def test_a_trusted_one(self):
        secure = self.serve("good", "127.0.0.1")
        answer = self.installed.probe(secure.address + "/update.xml", SSL_CERT_FILE=str(self.certificate))
        self.assert_answer(answer, "update 1.3 (57)", 0)

    def test_of_an_unknown_authority(self):
        secure = self.serve("unknown", "127.0.0.1")
        self.assert_refused(self.installed.probe(secure.address + "/update.xml"), "self-signed certificate")

    def test_of_another_server(self):
        secure = self.serve("other", "192.0.2.1")
        answer = self.installed.probe(secure.address + "/update.xml", SSL_CERT_FILE=str(self.certificate))
        self.assert_refused(answer, "127.0.0.1")

    def test_never_left_for_plain_http(self):
        secure = self.serve("good", "127.0.0.1")
        answer = self.installed.probe(secure.address + "/to-http.xml", SSL_CERT_FILE=str(self.certificate))
        self.assert_refused(answer, 'Protocol "http"')


@unittest.skipUnless(shutil.which("Xvfb"), "Xvfb gives the display")
class WithADisplay(ProbeTest):
    def test_the_answer_is_the_same(self):
        with Display() as display:
            answer = self.installed.probe(self.server.address + "/update.xml", DISPLAY=display, NO_AT_BRIDGE="1")
        self.assert_answer(answer, "update 1.3 (57)", 0)


if __name__ == "__main__":
    unittest.main(verbosity=2)
