"""The first day: a home without a document, one spreadsheet installed, and the sequences that everybody tries."""

import unittest
from pathlib import Path

from harness.keyvora import Keyvora

from .calc_document import OnCalc
from .desktop_test import DesktopTest
from .document_test import DocumentTest, add_tests
from .gnumeric_document import OnGnumeric

SEQUENCES = ["H1", "HOE", "HAC", "HIR", "HDR", "WFF", "HEA", "AT", "ASA", "HVV"]


class FirstDay(DocumentTest):
    """keyvora finds no document, and takes the one for the spreadsheet whose desktop file there is."""

    def new_keyvora(self, program: Path) -> Keyvora:
        keyvora = Keyvora(self.desktop, program, self.desktop.folder / "new home", self.kind.desktop_file)
        keyvora.mappings.unlink(missing_ok=True)
        return keyvora


class FirstDayOnCalc(FirstDay, OnCalc):
    """With Calc installed."""


class FirstDayOnGnumeric(FirstDay, OnGnumeric):
    """With gnumeric installed."""


def load_tests(loader: unittest.TestLoader, tests: unittest.TestSuite, pattern: str | None) -> unittest.TestSuite:
    """The tests for the spreadsheet that runs."""
    kind = type(DesktopTest.environment.sheet)
    test = FirstDayOnCalc if kind is FirstDayOnCalc.kind else FirstDayOnGnumeric
    add_tests(test, SEQUENCES)
    return loader.loadTestsFromTestCase(test)
