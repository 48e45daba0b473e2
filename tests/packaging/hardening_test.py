"""Holds the installed programs to how they must be hardened.

usage: hardening_test.py CMAKE BUILD_DIRECTORY [unittest arguments]
"""

import pathlib
import re
import subprocess
import sys
import tempfile
import unittest

CMAKE = sys.argv.pop(1)
BUILD = pathlib.Path(sys.argv.pop(1)).resolve()
PROGRAMS = ("bin/keyvora", "bin/keyvora-mappings", "libexec/keyvora/keyvora-tap", "libexec/keyvora/keyvora-fetch")


def output(*command: str) -> str:
    return subprocess.run(command, capture_output=True, text=True, check=True).stdout


def cached(name: str) -> str:
    match = re.search(rf"^{name}:\w+=(.*)$", (BUILD / "CMakeCache.txt").read_text(), re.MULTILINE)
    return match[1] if match else ""


class Hardening(unittest.TestCase):
    scratch: tempfile.TemporaryDirectory[str]
    programs: list[str]

    @classmethod
    def setUpClass(cls):
        cls.scratch = tempfile.TemporaryDirectory(prefix="keyvora-hardening-")
        output(CMAKE, "--install", str(BUILD), "--prefix", cls.scratch.name)
        cls.programs = [f"{cls.scratch.name}/{name}" for name in PROGRAMS]

    @classmethod
    def tearDownClass(cls):
        cls.scratch.cleanup()

    def each(self, *arguments: str):
        for program in self.programs:
            with self.subTest(program=pathlib.Path(program).name):
                yield output(*arguments, program)

    def test_the_code_can_be_loaded_anywhere(self):
        for header in self.each("readelf", "--wide", "--file-header"):
            self.assertRegex(header, r"Type:\s+DYN")

    def test_tables_are_read_only_once_the_program_runs(self):
        for segments in self.each("readelf", "--wide", "--segments"):
            self.assertIn("GNU_RELRO", segments)
        for dynamic in self.each("readelf", "--wide", "--dynamic"):
            self.assertRegex(dynamic, r"FLAGS_1\).*NOW.*PIE")
            self.assertNotIn("TEXTREL", dynamic)
            self.assertNotRegex(dynamic, r"\((RPATH|RUNPATH)\)", "libraries come from the system's places only")

    def test_nothing_is_both_writable_and_executable(self):
        for segments in self.each("readelf", "--wide", "--segments"):
            self.assertRegex(segments, r"GNU_STACK(\s+0x[0-9a-f]+){5}\s+RW ")
            self.assertNotRegex(segments, r"LOAD.* RWE ")

    def test_stacks_are_guarded(self):
        for symbols in self.each("readelf", "--wide", "--dyn-syms"):
            self.assertIn("__stack_chk_fail", symbols)

    def test_calls_of_the_c_library_are_checked(self):
        if cached("CMAKE_BUILD_TYPE") in ("", "Debug") or cached("KEYVORA_SANITIZE"):
            self.skipTest("only in optimised builds without sanitizers")
        for program in self.programs:
            # In the two small ones, the compiler knows all calls' sizes to be right, or cannot know them.
            if not program.endswith(("-tap", "-fetch")):
                self.assertRegex(output("readelf", "--wide", "--dyn-syms", program), r"__\w+_chk\b(?<!__stack_chk)")

    def test_what_holds_the_keyboard_has_no_toolkit_in_it(self):
        (tap,) = (program for program in self.programs if program.endswith("-tap"))
        needed = re.findall(r"\(NEEDED\).*\[lib([\w+-]+)\.so", output("readelf", "--wide", "--dynamic", tap))
        own = {"X11", "Xi", "Xtst", "stdc++", "m", "gcc_s", "c", "asan", "ubsan"}
        self.assertLessEqual(set(needed), own)
        self.assertIn("X11", needed)

    def test_indirect_jumps_land_where_they_may(self):
        if "X86-64" not in output("readelf", "--file-header", self.programs[0]):
            self.skipTest("only where the processor checks it")
        for code in self.each("objdump", "--disassemble", "--no-show-raw-insn", "--section=.text"):
            # Without the option only the code that starts a program has any: two.
            self.assertGreater(code.count("endbr64"), 20)


if __name__ == "__main__":
    unittest.main()
