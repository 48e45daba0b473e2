"""Checks that the vector runner fails when it should, since other checks depend on it."""

import os
import pathlib
import subprocess
import sys
import tempfile
import unittest

RUNNER = sys.argv.pop(1)
AGREES = '{"a": "K", "b": "\\u212a", "equal": true}\n'
DISAGREES = '{"a": "K", "b": "k", "equal": true}\n'


class Runner(unittest.TestCase):
    def run_on(self, files):
        with tempfile.TemporaryDirectory() as folder:
            for name, content in files.items():
                (pathlib.Path(folder) / name).write_text(content, encoding="utf-8")
            return self.run_in(folder)

    def run_in(self, folder):
        environment = {**os.environ, "KEYVORA_VECTORS": str(folder)}
        done = subprocess.run([RUNNER], env=environment, capture_output=True, text=True, timeout=60, check=False)
        return done.returncode, done.stdout

    def test_lines_that_agree_pass(self):
        status, output = self.run_on({"equal.jsonl": AGREES * 2 + "\n", "README.md": "not vectors"})
        self.assertEqual(status, 0, output)
        self.assertRegex(output, r"equal\.jsonl +2 cases, 0 failures")

    def test_a_line_that_disagrees_fails_with_what_was_expected(self):
        status, output = self.run_on({"equal.jsonl": AGREES + DISAGREES})
        self.assertEqual(status, 1, output)
        self.assertRegex(output, r"equal\.jsonl:2:\n")
        self.assertIn("expected: equal\n", output)
        self.assertIn("actual:   not equal\n", output)
        self.assertRegex(output, r"equal\.jsonl +2 cases, 1 failures")

    def test_only_the_first_failures_are_shown(self):
        status, output = self.run_on({"equal.jsonl": DISAGREES * 20})
        self.assertEqual(status, 1)
        self.assertEqual(output.count("expected:"), 5)
        self.assertIn("20 failures", output)

    def test_lines_that_are_no_vectors_fail(self):
        for line in ("{", "[]", "{}", '{"a": 1, "b": "", "equal": true}'):
            status, output = self.run_on({"equal.jsonl": line + "\n"})
            self.assertEqual(status, 1, output)
            self.assertIn("1 cases, 1 failures", output)

    def test_every_way_to_disagree_about_a_document_fails(self):
        document = "eyJ2ZXJzaW9uIjoxLCJ0YWJzIjp7fSwic2VxdWVuY2VzIjpbXX0="  # {"version":1,"tabs":{},"sequences":[]}
        whole = '{\\"sequences\\":[],\\"tabs\\":{},\\"version\\":1}'
        other = '{\\"sequences\\":[],\\"tabs\\":{},\\"version\\":2}'
        for fields, status in (
            (f'"bytes": "{document}", "expect": "ok", "document": "{whole}"', 0),
            (f'"bytes": "{document}", "expect": "ok", "document": "{other}"', 1),
            (f'"bytes": "{document}", "expect": "reject"', 1),
            ('"bytes": "", "expect": "ok", "document": "{}"', 1),
            ('"bytes": "", "expect": "dataCorrupted"', 0),
            ('"bytes": "", "expect": "reject"', 0),
            ('"bytes": "", "expect": "typeMismatch"', 1),
            ('"bytes": "e30=", "expect": "keyNotFound", "path": ["version"]', 0),
            ('"bytes": "e30=", "expect": "keyNotFound", "path": ["tabs"]', 1),
            ('"bytes": "e30=", "expect": "keyNotFound", "path": []', 1),
            ('"bytes": "e30=", "expect": "keyNotFound", "text": "other"', 1),
        ):
            with self.subTest(fields):
                self.assertEqual(self.run_on({"decode.jsonl": "{" + fields + "}\n"})[0], status)

    def test_a_file_of_no_known_kind_fails(self):
        status, output = self.run_on({"equal.jsonl": AGREES, "unheard-of.jsonl": "{}\n"})
        self.assertEqual(status, 1)
        self.assertIn("unheard-of.jsonl: no vectors of this name are known", output)

    def test_a_folder_without_cases_fails(self):
        for files in ({}, {"README.md": ""}, {"equal.jsonl": ""}):
            status, output = self.run_on(files)
            self.assertEqual(status, 1)
            self.assertIn("no cases here", output)

    def test_a_folder_that_is_not_there_fails(self):
        status, output = self.run_in("/nonexistent/vectors")
        self.assertEqual(status, 1)
        self.assertIn("/nonexistent/vectors: cannot be read", output)


if __name__ == "__main__":
    unittest.main()
