"""The expected visible effect of a sequence in a shipped document."""

from dataclasses import dataclass, field


@dataclass
class Window:
    """Another window is active, with a title that matches this; "(untitled)" stands for none."""

    title: str


@dataclass
class Cells:
    """Cells contain this: the text of the input line, a formula or a value."""

    content: dict[str, str]


@dataclass
class Saved:
    """The saved file contains this and did not before, or no longer contains it."""

    pattern: str
    present: bool = True


@dataclass
class Recalculated:
    """The random number of D3 in the saved file is another one."""


@dataclass
class Selected:
    """The name box shows this."""

    cells: str


@dataclass
class Closed:
    """The spreadsheet's window is not in front any more."""


Outcome = Window | Cells | Saved | Recalculated | Selected | Closed


@dataclass
class Case:
    """The initial state, the steps before and after the sequence, and the expected effect.

    The user is in `cell`, with all cells down and right to `last` selected; `first` and `then` are keys. `fire_first`
    are other sequences, after which the selection stays as it is if `stay`; `click` is a cell that is clicked on
    afterwards. `dialog` is the title of one that `then` answers. `variant` names a workbook that is not the usual one.
    """

    outcome: Outcome
    cell: str = "B2"
    last: str = ""
    first: list[str] = field(default_factory=list)
    fire_first: list[str] = field(default_factory=list)
    then: list[str] = field(default_factory=list)
    stay: bool = False
    click: str = ""
    dialog: str = ""
    variant: str = ""


# From the first cell to copy, to the cell to paste into.
COPY_A2_TO_E5 = ["Control+c", "Right", "Right", "Right", "Right", "Down", "Down", "Down"]
GO_FROM_A2_TO_E5 = COPY_A2_TO_E5[1:]
