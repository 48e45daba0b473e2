"""Keys by name: virtual key codes and flags, as the keyboard sends them."""

CODES = {
    **{letter: code for code, letter in enumerate("asdfhgzxcv")},
    **dict(zip("bqweryt", [11, 12, 13, 14, 15, 16, 17])),
    **dict(zip("1234567890", [18, 19, 20, 21, 23, 22, 26, 28, 25, 29])),
    **dict(zip("ouiplj", [31, 32, 34, 35, 37, 38])),
    **dict(zip("knm", [40, 45, 46])),
    "return": 36,
    "tab": 48,
    "space": 49,
    "escape": 53,
    "left": 123,
}
# A modifier's key and its flag, with the bit that distinguishes left and right.
MODIFIERS = {
    "option": (58, 0x80020),
    "right-option": (61, 0x80040),
    "shift": (56, 0x20002),
    "command": (55, 0x100008),
    "control": (59, 0x40001),
}


def flags(names: list[str]) -> int:
    total = 0
    for name in names:
        total |= MODIFIERS[name][1]
    return total
