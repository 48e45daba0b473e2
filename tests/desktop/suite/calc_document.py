"""The document for Calc: every sequence in resources/calc.json is typed and checked in the real Calc."""

import re
from pathlib import Path
from typing import ClassVar

from harness import accessible, x11
from harness.spreadsheet import Calc

from .calc_cases import CASES
from .document_case import Case
from .document_test import DocumentTest, add_tests_of_all, read_document

END = "</office:document>"
CELLS: list[list[str | int | None]] = [["Name", "Amount", "City", "Twice"], ["Pear", 30, "Rome", "=[.B2]*2"],
                                       ["Apple", 10, "Oslo", "=RAND()"], ["Fig", 20, "Bern", None]]
# A filter that shows only the pears.
FILTER = ('<table:database-ranges><table:database-range table:name="__Anonymous_Sheet_DB__0"'
          ' table:target-range-address="Fruit.A1:Fruit.D4" table:display-filter-buttons="true"><table:filter>'
          '<table:filter-condition table:field-number="0" table:value="Pear" table:operator="="/></table:filter>'
          "</table:database-range></table:database-ranges>")
# Calc ignores an annotation without a position.
COMMENT = ('<office:annotation xmlns:svg="urn:oasis:names:tc:opendocument:xmlns:svg-compatible:1.0"'
           ' xmlns:dc="http://purl.org/dc/elements/1.1/" office:display="true" svg:width="2cm" svg:height="1cm"'
           ' svg:x="5cm" svg:y="0cm"><dc:date>2020-01-01T00:00:00</dc:date><text:p>x</text:p></office:annotation>')


class OnCalc(DocumentTest):
    """Sequences of the document in Calc."""

    kind = Calc
    document: ClassVar = read_document("calc.json")
    cases: ClassVar[dict[str, Case]] = CASES
    suffix = ".fods"
    sheet: Calc

    @classmethod
    def workbook(cls, variant: str) -> bytes:
        """As Calc's flat file, with a second, empty sheet."""
        rows = [f"<table:table-row>{''.join(map(_cell, row))}</table:table-row>" for row in CELLS]
        ranges = ""
        match variant:
            case "filtered":
                rows[2:] = [row.replace("<table:table-row>", '<table:table-row table:visibility="filter">')
                            for row in rows[2:]]
                ranges = FILTER
            case "grouped" | "collapsed":
                display = ' table:display="false"' if variant == "collapsed" else ""
                inner = "".join(rows[2:])
                if display:
                    inner = inner.replace("<table:table-row>", '<table:table-row table:visibility="collapse">')
                rows[2:] = [f"<table:table-row-group{display}>{inner}</table:table-row-group>"]
            case "commented":
                rows[1] = rows[1].replace('"30"/>', f'"30">{COMMENT}</table:table-cell>')
        return ('<?xml version="1.0" encoding="UTF-8"?>\n'
                '<office:document xmlns:office="urn:oasis:names:tc:opendocument:xmlns:office:1.0"'
                ' xmlns:table="urn:oasis:names:tc:opendocument:xmlns:table:1.0"'
                ' xmlns:text="urn:oasis:names:tc:opendocument:xmlns:text:1.0"'
                ' xmlns:of="urn:oasis:names:tc:opendocument:xmlns:of:1.2" office:version="1.3"'
                ' office:mimetype="application/vnd.oasis.opendocument.spreadsheet"><office:body><office:spreadsheet>'
                f'<table:table table:name="Fruit">{"".join(rows)}</table:table>'
                '<table:table table:name="Other"><table:table-row><table:table-cell/></table:table-row></table:table>'
                f"{ranges}</office:spreadsheet></office:body>{END}\n").encode()

    def content(self, file: Path) -> str:
        """The file's content without the styles that come with every workbook."""
        text = file.read_text(encoding="utf-8")
        if not text.rstrip().endswith(END):
            raise EOFError
        return re.sub("<office:styles>.*</office:styles>", "", text, flags=re.DOTALL)

    def shown(self, cell: str) -> str | None:
        return self.sheet.shown(cell)

    def area(self, cell: str) -> x11.Area:
        found = self.sheet.cell(cell)
        assert found
        return accessible.area(found)

    def random_number(self, content: str) -> str:
        match = re.search(r'RAND\(\)" [^>]*office:value="([^"]*)"', content)
        return match[1] if match else ""


def _cell(value: object) -> str:
    if value is None:
        return "<table:table-cell/>"
    if isinstance(value, int):
        return f'<table:table-cell office:value-type="float" office:value="{value}"/>'
    if str(value).startswith("="):
        return f'<table:table-cell table:formula="of:{value}"/>'
    return f'<table:table-cell office:value-type="string"><text:p>{value}</text:p></table:table-cell>'


class CalcDocument(OnCalc):
    """One test for each sequence of the document, and what its notes say."""

    def test_values_are_pasted_with_all_their_digits(self) -> None:
        for keys in ("HVV", "ESV"):
            with self.subTest(keys):
                self.open(f"rounded {keys}")
                self.go("E2")
                self.typist.tap("=", "1", "/", "3", "Return")
                self.go("E2")
                self.fire("HP")
                self.until_saved(r'formula="of:=1/3" office:value-type="percentage"', True)
                self.go("E2")
                self.typist.tap("Control+c", "Down", "Down")
                self.fire(keys)
                self.answer("Paste Special", ["Return"])
                self.until_saved(r'<table:table-cell (table:style-name="\w+" )?office:value-type="float"'
                                 r' office:value="0\.333333333333', True)
                self.end_all()


add_tests_of_all(CalcDocument)
