"""The document for gnumeric: every sequence in resources/gnumeric.json is typed and checked in gnumeric."""

import gzip
import zlib
from pathlib import Path
from typing import ClassVar
from xml.sax.saxutils import escape

from harness import x11
from harness.spreadsheet import Gnumeric

from .document_case import Case
from .document_test import DocumentTest, add_tests_of_all, read_document
from .gnumeric_cases import AS_VALUE, CASES

END = "</gnm:Workbook>"
CELLS: list[list[str | int | None]] = [["Name", "Amount", "City", "Twice"], ["Pear", 30, "Rome", "=B2*2"],
                                       ["Apple", 10, "Oslo", "=RAND()"], ["Fig", 20, "Bern", None]]
TEXT, NUMBER = 60, 40  # types of values


class OnGnumeric(DocumentTest):
    """Sequences of the document in gnumeric."""

    kind = Gnumeric
    document: ClassVar = read_document("gnumeric.json")
    cases: ClassVar[dict[str, Case]] = CASES
    suffix = ".gnumeric"
    sheet: Gnumeric

    @classmethod
    def workbook(cls, variant: str) -> bytes:
        """With a second, empty sheet."""
        rows = ""
        objects = ""
        match variant:
            case "grouped":
                rows = '<gnm:RowInfo No="2" Unit="13.5" OutlineLevel="1" Count="2"/>'
            case "tall":
                rows = '<gnm:RowInfo No="1" Unit="40" HardSize="1"/>'
            case "commented":
                objects = '<gnm:Objects><gnm:CellComment ObjectBound="B2" Text="x"/></gnm:Objects>'
        cells = "".join(_cell(row, column, value) for row, values in enumerate(CELLS)
                        for column, value in enumerate(values) if value is not None)
        return ('<?xml version="1.0" encoding="UTF-8"?>\n'
                '<gnm:Workbook xmlns:gnm="http://www.gnumeric.org/v10.dtd"><gnm:SheetNameIndex>'
                '<gnm:SheetName>Fruit</gnm:SheetName><gnm:SheetName>Other</gnm:SheetName></gnm:SheetNameIndex>'
                f'<gnm:Sheets><gnm:Sheet><gnm:Name>Fruit</gnm:Name><gnm:Rows DefaultSizePts="13.5">{rows}</gnm:Rows>'
                f'<gnm:Cells>{cells}</gnm:Cells>{objects}</gnm:Sheet>'
                f'<gnm:Sheet><gnm:Name>Other</gnm:Name></gnm:Sheet></gnm:Sheets>{END}\n').encode()

    def content(self, file: Path) -> str:
        data = file.read_bytes()
        try:
            text = (gzip.decompress(data) if data[:2] == b"\x1f\x8b" else data).decode("utf-8")
        except (EOFError, zlib.error) as error:
            raise EOFError from error
        if not text.rstrip().endswith(END):
            raise EOFError
        return text

    def shown(self, cell: str) -> str | None:
        return None  # gnumeric draws its cells itself and does not expose them

    def area(self, cell: str) -> x11.Area:
        raise NotImplementedError

    @staticmethod
    def range_name(cell: str, last: str) -> str:
        return cell  # gnumeric shows no more; but a menu action comes after the keys that select

    def random_number(self, content: str) -> str:
        return ""


def _cell(row: int, column: int, value: object) -> str:
    place = f'Row="{row}" Col="{column}"'
    if isinstance(value, int):
        return f'<gnm:Cell {place} ValueType="{NUMBER}">{value}</gnm:Cell>'
    if str(value).startswith("="):
        return f"<gnm:Cell {place}>{escape(str(value))}</gnm:Cell>"
    return f'<gnm:Cell {place} ValueType="{TEXT}">{escape(str(value))}</gnm:Cell>'


class GnumericDocument(OnGnumeric):
    """One test for each sequence of the document, and what its notes say."""

    def test_values_are_pasted_with_all_their_digits(self) -> None:
        self.open("rounded")
        self.go("E2")
        self.typist.tap("=", "1", "/", "3", "Return")
        self.go("E2")
        self.fire("HP")
        self.typist.tap("Control+c", "Down", "Down")
        self.fire("HVV")
        self.answer("Paste Special", AS_VALUE)
        self.until_saved(r'<gnm:Cell Row="3" Col="4" [^>]*>0?\.333333333333', True)


add_tests_of_all(GnumericDocument)
