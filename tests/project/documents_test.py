"""Checks the numbers of sequences in README.md against the shipped documents."""

import json
import pathlib
import re
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
CLAIMS = {
    "mappings": [r"comes with it has (\d+) of the sequences", r"`(\d+) sequences, ready`"],
    "calc": [r"(\d+) sequences for LibreOffice Calc"],
    "gnumeric": [r"or (\d+) for Gnumeric", r"added to Gnumeric's (\d+)"],
}


class Documents(unittest.TestCase):
    def test_the_first_page_counts_the_sequences(self) -> None:
        text = " ".join((ROOT / "README.md").read_text(encoding="utf-8").split())
        for document, claims in CLAIMS.items():
            held = json.loads((ROOT / f"resources/{document}.json").read_text(encoding="utf-8"))["sequences"]
            for claim in claims:
                self.assertEqual(set(re.findall(claim, text)), {str(len(held))}, claim)


if __name__ == "__main__":
    unittest.main()
