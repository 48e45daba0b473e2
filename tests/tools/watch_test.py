"""Runs `keyvora-mappings check --watch` and saves the file in the ways that editors do."""

import os
import pathlib
import queue
import subprocess
import sys
import tempfile
import threading
import unittest

PROGRAM = sys.argv.pop(1)
LIMIT = 30  # seconds: far more than a busy machine needs
SOUND = '{"version": 1, "tabs": {}, "sequences": []}'
SURPRISING = '{"version": 1, "timeoutMilliseconds": 0, "tabs": {}, "sequences": []}'


class Watch(unittest.TestCase):
    def setUp(self):
        directory = tempfile.TemporaryDirectory()
        self.addCleanup(directory.cleanup)
        self.file = pathlib.Path(directory.name) / "mappings.json"

    def start(self, *options):
        self.process = subprocess.Popen([PROGRAM, "check", "--watch", *options, str(self.file)],
                                        stdout=subprocess.PIPE, text=True)
        self.addCleanup(self.process.stdout.close)
        self.addCleanup(self.process.wait)
        self.addCleanup(self.process.terminate)
        self.lines = queue.Queue()
        threading.Thread(target=lambda: [self.lines.put(line) for line in self.process.stdout], daemon=True).start()

    def expect(self, text):
        self.assertRegex(self.lines.get(timeout=LIMIT), r"^--- [0-2][0-9]:[0-5][0-9]:[0-6][0-9]\n$")
        self.assertEqual(self.lines.get(timeout=LIMIT), f"{self.file}:{text}\n")

    def save_by_rename(self, text):
        other = self.file.with_suffix(".new")
        other.write_text(text)
        os.replace(other, self.file)

    def test_every_kind_of_save_is_checked(self):
        self.file.write_text(SURPRISING)
        self.start()
        warning = ("1:39: warning: timeoutMilliseconds: leaves no time between letters: sequences of more than one "
                   "letter cannot be typed; write 1500, or leave the field out")
        self.expect(warning)
        self.file.write_text(SOUND)
        self.expect(" 0 sequences, nothing to report")
        self.save_by_rename("{")
        self.expect("1:2: error: not valid JSON: expected a key in double quotes, found the end of the document")
        self.save_by_rename(SURPRISING)
        self.expect(warning)
        self.file.unlink()
        self.file.write_text(SOUND)
        self.expect(" 0 sequences, nothing to report")

    def test_a_file_that_vanishes_is_waited_for(self):
        self.file.write_text(SOUND)
        self.start()
        self.expect(" 0 sequences, nothing to report")
        self.file.unlink()
        self.expect(" is gone; waiting for it to come back")
        self.file.write_text(SOUND)
        self.expect(" 0 sequences, nothing to report")

    def test_several_files_are_watched(self):
        other = self.file.with_name("other.json")
        other.write_text(SOUND)
        self.file.write_text(SOUND)
        self.start(str(other))
        lines = {self.lines.get(timeout=LIMIT) for _ in range(4)}
        self.assertLessEqual({f"{each}: 0 sequences, nothing to report\n" for each in (self.file, other)}, lines)

    def test_programs_get_an_object_for_each_check(self):
        self.file.write_text(SOUND)
        self.start("--json")
        self.assertEqual(self.lines.get(timeout=LIMIT), f'{{"file":"{self.file}","findings":[]}}\n')

    def test_a_file_that_is_not_there_is_not_waited_for(self):
        result = subprocess.run([PROGRAM, "check", "--watch", str(self.file)], capture_output=True, text=True,
                                timeout=LIMIT)
        self.assertEqual(result.returncode, 2)
        self.assertEqual(result.stderr, f"keyvora-mappings: {self.file}: No such file or directory\n")

    def test_it_ends_when_nobody_reads_on(self):
        self.file.write_text(SOUND)
        self.process = subprocess.Popen([PROGRAM, "check", "--watch", str(self.file)], stdout=subprocess.PIPE)
        self.process.stdout.readline()
        self.process.stdout.close()
        self.save_by_rename(SURPRISING)
        self.process.wait(timeout=LIMIT)


if __name__ == "__main__":
    unittest.main()
