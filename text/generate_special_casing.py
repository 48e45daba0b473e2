#!/usr/bin/env python3
"""Writes special_casing.h: the full case mappings with more than one code point.

    generate_special_casing.py SpecialCasing.txt > special_casing.h

SpecialCasing.txt is a file of the Unicode Character Database. The script takes the unconditional lines whose mapping has
several code points; mappings to one code point come from the program's Unicode library. Lines with a condition (a
language, a final sigma) are left out, because the mappings do not depend on locale or context.
"""

import pathlib
import sys


def rows(path: pathlib.Path):
    for line in path.read_text(encoding="utf-8").splitlines():
        fields = [field.strip() for field in line.split("#")[0].split(";")]
        if len(fields) == 5:  # a sixth field would be a condition
            code, lower, _title, upper, _end = fields
            yield int(code, 16), [int(c, 16) for c in lower.split()], [int(c, 16) for c in upper.split()]


def table(name: str, what: str, entries):
    print(f"/// {what}, ordered by code point.")
    print(f"inline constexpr SpecialCasing {name}[] = {{")
    for code, mapped in sorted(entries):
        print(f"    {{0x{code:04X}, {{{', '.join(f'0x{c:04X}' for c in mapped)}}}}},")
    print("};")


def main():
    data = pathlib.Path(sys.argv[1])
    version = data.read_text(encoding="utf-8").splitlines()[0].lstrip("# ")
    found = list(rows(data))
    print(f"""// Made by generate_special_casing.py from {version} of the Unicode Character Database. Do not edit.
#pragma once

namespace keyvora::text {{

/// A code point whose case mapping has several code points; unused places are zero.
struct SpecialCasing {{
  char32_t codePoint;
  char32_t mapped[3];
}};
""")
    table("specialUpperCasing", "Upper case", [(c, upper) for c, _, upper in found if len(upper) > 1])
    print()
    table("specialLowerCasing", "Lower case", [(c, lower) for c, lower, _ in found if len(lower) > 1])
    print("\n}  // namespace keyvora::text")


main()
