#!/usr/bin/env python3
"""Compiles the sources of a cross-build again in other ways, and exits with 1 when one of them gives a diagnostic.

usage: check_sources.py BUILD [--clang VERSION] [--libcxx FOLDER] [--analyze] [--under FOLDER] [--jobs N]

  --clang VERSION   with clang++-VERSION in place of the build's; syntax only
  --libcxx FOLDER   with libc++'s headers in FOLDER in place of the SDK's; syntax only
  --analyze         with the static analyzer

Each may be given by itself or together with others, as a pass of its own. Tests of the core are left out; with --under,
everything outside that folder of the project.
"""

import argparse
import concurrent.futures
import pathlib
import subprocess
import sys

from commands import ROOT, Command, read_commands

TESTS = ROOT / "tests"
HOST_TESTS = TESTS / "macos"


def with_libcxx(arguments: list[str], folder: str) -> list[str]:
    changed = list(arguments)
    changed[changed.index("-cxx-isystem") + 1] = folder
    return changed


def passes(options: argparse.Namespace) -> dict[str, list[str]]:
    """Title of each pass -> the arguments that it adds to a command; the analyzer reports as text."""
    found: dict[str, list[str]] = {}
    if options.clang:
        found[f"clang {options.clang}"] = ["-fsyntax-only", "-Werror"]
    if options.libcxx:
        found[f"libc++ in {options.libcxx}"] = ["-fsyntax-only", "-Werror"]
    if options.analyze:
        found["static analyzer"] = ["--analyze", "-Xanalyzer", "-analyzer-output=text", "-Xclang", "-analyzer-werror"]
    return found


def arguments_for(title: str, added: list[str], command: Command, options: argparse.Namespace) -> list[str]:
    arguments = [*command.arguments, *added]
    if title.startswith("clang"):
        arguments[0] = f"clang++-{options.clang}"
    if title.startswith("libc++"):
        arguments = with_libcxx(arguments, options.libcxx)
    return arguments


def compile_once(arguments: list[str], command: Command) -> str:
    result = subprocess.run(arguments, cwd=command.folder, text=True, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                            check=False)
    if result.returncode != 0 and not result.stdout:
        return f"{command.source}: ended with {result.returncode}"
    return result.stdout


def main() -> int:
    parser = argparse.ArgumentParser(usage=(__doc__ or "").split("\n\n")[1].removeprefix("usage: "))
    parser.add_argument("build", type=pathlib.Path)
    parser.add_argument("--clang")
    parser.add_argument("--libcxx")
    parser.add_argument("--analyze", action="store_true")
    parser.add_argument("--under", type=pathlib.Path, default=pathlib.Path())
    parser.add_argument("--jobs", type=int, default=2)
    options = parser.parse_args()
    chosen = [
        command
        for command in read_commands(options.build)
        if command.source.is_relative_to(ROOT / options.under)
        and (not command.source.is_relative_to(TESTS) or command.source.is_relative_to(HOST_TESTS))
    ]
    if not chosen:
        print("check_sources.py: the build compiles no source of the project", file=sys.stderr)
        return 1
    faults = 0
    for title, added in passes(options).items():
        jobs = [(arguments_for(title, added, command, options), command) for command in chosen]
        with concurrent.futures.ThreadPoolExecutor(options.jobs) as pool:
            said = [text for text in pool.map(lambda job: compile_once(*job), jobs) if text]
        print("".join(said), end="")
        print(f"{title}: {len(jobs)} sources, {len(said)} with something to say")
        faults += len(said)
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
