"""Holds the tree against the table of who may include what.

The core never includes a host, and outside the hosts and the build files nothing asks which system it is on.
"""

import pathlib
import re
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
SOURCES = {".cpp", ".h", ".mm"}
MAX_LINES = 400

# Folder -> folders of the project that it may include besides itself. The longest folder that holds a file counts.
CORE = {"text", "log", "mapping", "runner", "tap", "system"}
ALLOWED = {
    "platform": set(),
    "platform/posix": {"platform"},
    "platform/simulated": {"platform"},
    "platform/appcast": {"platform"},
    "platform/x11": {"platform", "platform/posix", "platform/appcast"},
    "platform/macos": {"platform", "platform/posix"},
    "text": set(),
    "log": {"platform"},
    "mapping": {"text", "log", "platform"},
    "runner": {"log", "text", "platform"},
    "tap": {"mapping", "runner", "log", "platform"},
    "system": {"log", "platform"},
    "app": CORE | {"platform"},
    "tools": CORE | {"platform", "platform/simulated", "platform/posix"},
}
FOLDERS = sorted([*ALLOWED, "tests", "bench", "fuzz"], key=len, reverse=True)
INCLUDE = re.compile(r'^\s*#\s*(?:include|import)\s*"([^"]+)"')
SYSTEM_TEST = re.compile(
    r"^\s*#\s*(?:if|ifdef|ifndef|elif)\b.*\b(?:__APPLE__|__linux__|__unix__|_WIN32|TARGET_OS_\w+|__MACH__)\b"
)


def folder_of(path: str) -> str | None:
    return next((f for f in FOLDERS if path.startswith(f + "/")), None)


def source_files():
    for folder in [*{f.split("/")[0] for f in FOLDERS}]:
        for path in sorted((ROOT / folder).rglob("*")):
            if path.suffix in SOURCES:
                yield path.relative_to(ROOT).as_posix(), path.read_text(encoding="utf-8").splitlines()


class ProjectLayout(unittest.TestCase):
    def test_there_are_sources(self):
        self.assertGreater(len(list(source_files())), 20)

    def test_includes_follow_the_table(self):
        faults = []
        for path, lines in source_files():
            folder = folder_of(path)
            if folder not in ALLOWED:
                continue
            for number, line in enumerate(lines, 1):
                match = INCLUDE.match(line)
                if not match:
                    continue
                target = folder_of(match.group(1))
                if target is None:
                    faults.append(f"{path}:{number}: include by path from the root, not {match.group(1)}")
                elif target != folder and target not in ALLOWED[folder]:
                    faults.append(f"{path}:{number}: {folder}/ may not include {target}/")
        self.assertEqual(faults, [])

    def test_only_hosts_ask_which_system_it_is(self):
        faults = [
            f"{path}:{number}: {line.strip()}"
            for path, lines in source_files()
            if not path.startswith(("platform/posix/", "platform/x11/", "platform/macos/"))
            for number, line in enumerate(lines, 1)
            if SYSTEM_TEST.match(line)
        ]
        self.assertEqual(faults, [])

    def test_files_are_short(self):
        faults = [f"{path}: {len(lines)} lines" for path, lines in source_files() if len(lines) > MAX_LINES]
        self.assertEqual(faults, [])


if __name__ == "__main__":
    unittest.main()
