#!/usr/bin/env python3
"""Compares every method of our delegates with the protocol that it is meant for, by selector and type encoding.

usage: check_delegates.py BUILD    a cross-build's folder, which has a compile_commands.json

The frameworks ask a delegate at run time which optional methods it has. A misspelt one is never called, without a warning
from the compiler. So each class that adopts a protocol is compiled to assembly, which lists the methods of the class and
of its protocols as declared in Apple's headers. A method of the class must be in one of the protocols, with the same
encoding, or be declared in the class's own @interface.
"""

import pathlib
import re
import subprocess
import sys
import typing

from commands import ROOT, Command, read_commands

FOLDERS = (ROOT / "hosts" / "macos", ROOT / "tests" / "macos" / "stand_in")
LABEL = re.compile(r"^(\S+):")
DIRECTIVE = re.compile(r'^\s+\.(quad|long|asciz)\s+("(?:\\.|[^"\\])*"|[^\s;#]+)')
PROTOCOL_METHODS = ("__OBJC_$_PROTOCOL_INSTANCE_METHODS_", "__OBJC_$_PROTOCOL_INSTANCE_METHODS_OPT_")
# Every class adopts this; it says nothing about a class.
UNIVERSAL = "NSObject"


class Tables(typing.NamedTuple):
    """Selector -> encoding for each class and protocol, and the protocols that each adopts."""

    classes: dict[str, dict[str, str]]
    protocols: dict[str, dict[str, str]]
    adopted: dict[str, list[str]]


def read_tables(assembly: str) -> Tables:
    """Reads the classes from an object file's assembly."""
    values: dict[str, list[str]] = {}
    current: list[str] = []
    for line in assembly.splitlines():
        if start := LABEL.match(line):
            current = values.setdefault(start[1], [])
        elif directive := DIRECTIVE.match(line):
            current.append(directive[2].strip('"'))

    def methods(label: str) -> dict[str, str]:
        # Two numbers, then name, types and address of each entry.
        entries = values.get(label, [])[2:]
        return {values[name][0]: values[types][0] for name, types in zip(entries[0::3], entries[1::3])}

    def protocols(label: str) -> list[str]:
        return [name.removeprefix("__OBJC_PROTOCOL_$_") for name in values.get(label, []) if "PROTOCOL" in name]

    classes = {}
    declared: dict[str, dict[str, str]] = {}
    adopted = {}
    for label in values:
        if name := match(label, r"__OBJC_CLASS_RO_\$_(\w+)"):
            classes[name] = methods(f"__OBJC_$_INSTANCE_METHODS_{name}")
            adopted[name] = protocols(f"__OBJC_CLASS_PROTOCOLS_$_{name}")
        elif name := match(label, r"__OBJC_PROTOCOL_\$_(\w+)"):
            declared[name] = {}
            for prefix in PROTOCOL_METHODS:
                declared[name].update(methods(prefix + name))
            adopted[name] = protocols(f"__OBJC_$_PROTOCOL_REFS_{name}")
    return Tables(classes, declared, adopted)


def match(text: str, pattern: str) -> str | None:
    found = re.fullmatch(pattern, text)
    return found[1] if found else None


def methods_of_protocols(tables: Tables, name: str) -> dict[str, str]:
    """All methods of the protocols that this class adopts, directly or through another protocol."""
    found: dict[str, str] = {}
    for protocol in tables.adopted.get(name, []):
        if protocol != UNIVERSAL:
            found |= tables.protocols.get(protocol, {}) | methods_of_protocols(tables, protocol)
    return found


def own_selectors(source: str, name: str) -> set[str]:
    """The selectors that the class's own @interface declares."""
    selectors = set()
    for body in re.findall(rf"@interface {name}\b(.*?)@end", source, flags=re.DOTALL):
        for declaration in re.findall(r"^- \([^)]*\)([^;]*);", body, flags=re.MULTILINE):
            parts = re.findall(r"(\w+):\(", declaration)
            selectors.add("".join(part + ":" for part in parts) or declaration.strip())
    return selectors


def check(tables: Tables, source: str) -> tuple[list[str], list[str]]:
    """The methods that match a protocol, and those that do not."""
    agreed, faults = [], []
    for name, methods in tables.classes.items():
        wanted = methods_of_protocols(tables, name)
        if not wanted:
            continue
        own = own_selectors(source, name)
        for selector, types in methods.items():
            method = f"-[{name} {selector}]"
            if selector in wanted and types == wanted[selector]:
                agreed.append(f"{method}: {types}")
            elif selector in wanted:
                faults.append(f"{method} is {types}; its protocol says {wanted[selector]}")
            elif selector not in own and not selector.startswith((".cxx_", "init", "dealloc")):
                faults.append(f"{method} is in no protocol that {name} adopts, and not declared as its own")
    return agreed, faults


def compile_to_assembly(command: Command) -> str:
    arguments = [*command.arguments, "-S", "-o", "-", "-Wno-everything"]
    return subprocess.run(arguments, cwd=command.folder, text=True, stdout=subprocess.PIPE, check=True).stdout


def main(arguments: list[str]) -> int:
    if len(arguments) != 1:
        print(__doc__, file=sys.stderr)
        return 2
    count, faults = 0, []
    for command in read_commands(pathlib.Path(arguments[0])):
        if command.source.suffix != ".mm" or command.source.parent not in FOLDERS:
            continue
        agreed, wrong = check(read_tables(compile_to_assembly(command)), command.source.read_text(encoding="utf-8"))
        count += len(agreed)
        faults += wrong
        for line in agreed:
            print(line)
    for fault in faults:
        print(f"check_delegates.py: {fault}", file=sys.stderr)
    if count == 0:
        print("check_delegates.py: no delegate method was found", file=sys.stderr)
        return 1
    print(f"{count} delegate methods agree with their protocols; {len(faults)} do not.")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
