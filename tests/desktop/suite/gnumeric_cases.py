"""The expected effect of each sequence in resources/gnumeric.json."""

from .document_case import (COPY_A2_TO_E5, GO_FROM_A2_TO_E5, Case, Cells, Closed, Saved, Selected, Window)

PASTE_AT_E5 = [*GO_FROM_A2_TO_E5, "Control+v"]

FORMAT_CELLS = Case(Window("Format Cells.*"))
CONDITIONS = Case(Window("Conditional Cell Formatting"))
PASTE_SPECIAL = Case(Window("Paste Special"), "A2", first=COPY_A2_TO_E5)
# In the dialog two lines down from "All" is "As Value".
AS_VALUE = ["Down", "Down", "Return"]
PASTE_VALUE = Case(Cells({"D5": "60"}), "D2", first=["Control+c", "Down", "Down", "Down"], dialog="Paste Special",
                   then=AS_VALUE)
NAMES = Case(Window("Define Names"))
SORT = Case(Window("Sort.*"), "A1", "D4")
INSERT_ROWS = Case(Cells({"A2": "", "A3": "Pear"}))
INSERT_COLUMNS = Case(Cells({"B1": "", "C1": "Amount"}))
INSERT_SHEET = Case(Saved(r"<gnm:SheetName [^>]*>Sheet1<"))
DELETE_SHEET = Case(Saved(r"<gnm:SheetName [^>]*>Fruit<", present=False))
SHEETS = Case(Window("Manage Sheets.*"))
MERGE = Case(Saved(r"<gnm:Merge>C4:D4<"), "C4", "D4")
FILTER = Case(Saved(r'<gnm:Filter Area="A1:D4"'), "A1", "D4")
HIDDEN_ROW = r'<gnm:RowInfo No="1" [^>]*Hidden="1"'
HIDDEN_COLUMN = r'<gnm:ColInfo No="1" [^>]*Hidden="1"'
FIT_COLUMN = Case(Saved(r'<gnm:ColInfo No="1" '))
FIT_ROW = Case(Saved(r'<gnm:RowInfo No="1" Unit="40"', present=False), variant="tall")


def styled(attribute: str, value: str, present: bool = True) -> Saved:
    """Some cell has this attribute of a style or its font."""
    return Saved(rf'<gnm:(Style|Font) [^>]*\b{attribute}="{value}"', present)


CASES: dict[str, Case] = {
    "HVP": Case(Cells({"E5": "Pear"}), "A2", first=COPY_A2_TO_E5),
    **dict.fromkeys(["HVF", "HVT", "HVR", "HVN", "HVS"], PASTE_SPECIAL),
    "HVV": PASTE_VALUE,
    "HX": Case(Cells({"E5": "Pear", "A2": ""}), "A2", then=PASTE_AT_E5),
    "HCC": Case(Cells({"E5": "Pear", "A2": "Pear"}), "A2", then=PASTE_AT_E5),
    "H1": Case(styled("Bold", "1")),
    "H2": Case(styled("Italic", "1")),
    "H3U": Case(styled("Underline", "1")),
    "H3D": Case(styled("Underline", "2")),
    "H4": Case(styled("StrikeThrough", "1")),
    **dict.fromkeys(["HFF", "HFS", "HFG", "HFK", "HFN", "HFC", "HH", "HHN"], FORMAT_CELLS),
    **dict.fromkeys(["HBA", "HBO", "HBP", "HBN", "HBT", "HBB", "HBM"], FORMAT_CELLS),
    "HBS": Case(Saved(r'<gnm:Top Style="1"')),
    **dict.fromkeys(["HAL", "HAC", "HAR", "HAT", "HAM", "HAB", "HW", "HFA", "HK", "H0", "H9", "HOE", "OE"], FORMAT_CELLS),
    "H5": Case(styled("Indent", "1", present=False), fire_first=["H6"]),
    "H6": Case(styled("Indent", "1")),
    "HMC": MERGE,
    "HMM": MERGE,
    "HMU": Case(Saved(r"<gnm:Merge>C4:D4<", present=False), "C4", "D4", fire_first=["HMM"], stay=True),
    "HN": Case(styled("Format", "0%|0.00%", present=False), fire_first=["HP"]),
    "HAN": Case(styled("Format", "[^\"]*\\$[^\"]*")),
    "HP": Case(styled("Format", "0[^\"]*%")),
    **dict.fromkeys(["HLN", "HLR", "HLHG", "HLHD", "HLCS", "OD"], CONDITIONS),
    "HT": Case(Window("AutoFormat.*|Autoformat.*"), "A1", "D4"),
    "HII": Case(Window("Insert cells")),
    "HIR": INSERT_ROWS,
    "HIC": INSERT_COLUMNS,
    "HIS": INSERT_SHEET,
    "HDD": Case(Window("Delete cells")),
    "HDR": Case(Cells({"A2": "Apple"})),
    "HDC": Case(Cells({"B1": "City"})),
    "HDS": DELETE_SHEET,
    "HOH": Case(Window("Row Height")),
    "HOA": FIT_ROW,
    "HOW": Case(Window("Column Width")),
    "HOI": FIT_COLUMN,
    "HOUR": Case(Saved(HIDDEN_ROW)),
    "HOUC": Case(Saved(HIDDEN_COLUMN)),
    "HOUO": Case(Saved(HIDDEN_ROW, present=False), fire_first=["HOUR"], stay=True),
    "HOUL": Case(Saved(HIDDEN_COLUMN, present=False), fire_first=["HOUC"], stay=True),
    "HOR": Case(Window("Rename Sheet")),
    "HOM": SHEETS,
    "HOT": SHEETS,
    "HFID": Case(Cells({"A3": "Pear", "A4": "Pear"}), "A2", "A4"),
    "HFIR": Case(Cells({"B2": "Pear", "C2": "Pear"}), "A2", "C2"),
    "HFIS": Case(Window("Fill Series"), "B2", "B4"),
    "HEA": Case(Cells({"A2": ""}), "A2"),
    "HEF": Case(styled("Bold", "1", present=False), fire_first=["H1"]),
    "HEC": Case(Cells({"A2": ""}), "A2"),
    "HEM": Case(Saved("<gnm:CellComment", present=False), variant="commented"),
    "HSF": FILTER,
    "HSU": SORT,
    "HFDF": Case(Window("Search")),
    "HFDR": Case(Window("Search & Replace|Search and Replace")),
    "HFDG": Case(Window("Go To Cell.*|Goto Cell.*|Go To.*")),
    "NC": Case(Window(".*Graph.*|.*Chart.*"), "A1", "B4"),
    "NP": Case(Window("Select an Image|.*[Ii]mage.*")),
    "NI": Case(Window(".*[Hh]yper[Ll]ink.*")),
    "PSP": Case(Window("Page Setup|Print Setup")),
    "PRS": Case(Saved(r"<gnm:name>Print_Area</gnm:name>\s*<gnm:value>[^#]*B\$?2"), last="B4"),
    "PRC": Case(Saved(r"<gnm:name>Print_Area</gnm:name>\s*<gnm:value>[^#]*B\$?2", present=False), last="B4",
                fire_first=["PRS"]),
    "MF": Case(Window(".*[Ff]unction.*")),
    "MN": NAMES,
    "MMD": NAMES,
    "MP": Case(Selected("B2"), "D2"),
    "MD": Case(Selected("D2")),
    "MH": Case(Saved(r'DisplayFormulas="1"')),
    "AT": FILTER,
    "AQ": Case(Window("Advanced Filter")),
    "ASA": SORT,
    "ASD": SORT,
    "ASS": SORT,
    "AE": Case(Window("Text Import.*"), "A2", "A4"),
    "AM": Case(Window("Advanced Filter")),
    "AVV": Case(Window("Format Cells.*")),
    "AN": Case(Window(".*Consolidation.*")),
    "AWG": Case(Window("GoalSeek")),
    "AWT": Case(Window(".*Data Table.*"), "B2", "C4"),
    "AGG": Case(Window("Group.*"), last="B4"),
    "AUU": Case(Window("Ungroup.*"), "B3", "B4", variant="grouped"),
    "RC": Case(Window("New Cell Comment.*")),
    "RD": Case(Saved("<gnm:CellComment", present=False), variant="commented"),
    "WVG": Case(Saved(r'HideGrid="1"')),
    "WVH": Case(Saved(r'HideColHeader="1"')),
    "WQ": Case(Window("Zoom.*")),
    "WFF": Case(Saved("<gnm:FreezePanes")),
    "WN": Case(Window(".*[Vv]iew.*")),
    "FN": Case(Window("Book.*")),
    "FO": Case(Window("Load file|Open.*")),
    "FS": Case(Saved(">unsaved<"), "G1", first=["u", "n", "s", "a", "v", "e", "d", "Return"]),
    "FA": Case(Window("Save.*")),
    "FP": Case(Window("Print")),
    "FC": Case(Closed()),
    "FI": Case(Window(".*Properties.*")),
    "ESV": PASTE_VALUE,
    **dict.fromkeys(["EST", "ESF", "ESE"], PASTE_SPECIAL),
    "ED": Case(Window("Delete cells")),
    "EL": DELETE_SHEET,
    "IR": INSERT_ROWS,
    "IC": INSERT_COLUMNS,
    "IW": INSERT_SHEET,
    "IND": NAMES,
    "OCA": FIT_COLUMN,
    "OCW": Case(Window("Column Width")),
    "ORA": FIT_ROW,
    "ORE": Case(Window("Row Height")),
    "OHR": Case(Window("Rename Sheet")),
    "TG": Case(Window("GoalSeek")),
    "TO": Case(Window(".*Preferences.*")),
    "DFF": FILTER,
    "DS": SORT,
    "DL": Case(Window("Format Cells.*")),
    "DE": Case(Window("Text Import.*"), "A2", "A4"),
    "DT": Case(Window(".*Data Table.*"), "B2", "C4"),
}
