"""Fails when an include breaks the table in docs/architecture.md, which lists the folders and libraries that each folder
may include. The core never includes a host, and outside the hosts and the build files no code tests for the operating
system. A rule that no include uses fails too, so that the table matches the tree.
"""

import pathlib
import re
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
SOURCES = {".cpp", ".h", ".mm"}
MAX_LINES = 400

# Folder -> the folders of the project that it may include besides itself. hosts/ counts by host, and the tap is a
# folder of its own.
FOLDERS = {
    "platform": set(),
    "text": set(),
    "json": {"text"},
    "log": {"platform"},
    "mapping": {"json", "text", "log", "platform"},
    "runner": {"log", "text", "platform"},
    "tap": {"mapping", "runner", "text", "log", "platform"},
    "system": {"log", "platform"},
    "app": {"log", "mapping", "tap", "system", "platform"},
    "appcast": {"text", "platform"},
    "hosts/posix": {"platform"},
    "hosts/simulated": {"platform"},
    "hosts/x11": {"platform", "text", "appcast", "hosts/posix", "hosts/x11/tap"},
    "hosts/x11/tap": {"platform", "hosts/posix", "hosts/x11"},
    "hosts/macos": {"platform"},
    "tools": {"json", "mapping", "runner", "tap", "text", "platform", "hosts/simulated"},
}
# Folders that may include everything; for them only the libraries are not checked.
FREE = {"tests", "bench", "fuzz"}

# Library -> the prefixes of its headers. Every folder may include the standard library and the C library's own headers.
LIBRARIES = {
    "fast_float": ("fast_float/",),
    "utf8proc": ("utf8proc.h",),
    "pugixml": ("pugixml.hpp",),
    "curl": ("curl/",),
    "glib": ("glib", "gio/"),
    "gtk": ("gtk/", "gdk/"),
    "pango": ("pango/", "cairo"),
    "atspi": ("atspi/",),
    "xlib": ("X11/",),
    "xkbcommon": ("xkbcommon/",),
    "posix": ("unistd.h", "fcntl.h", "poll.h", "pwd.h", "pthread.h", "spawn.h", "sys/", "netinet/", "xlocale.h"),
    "apple": ("AppKit/", "ApplicationServices/", "Carbon/", "CoreFoundation/", "CoreGraphics/", "Foundation/",
              "Security/", "ServiceManagement/", "Sparkle/", "dispatch/", "objc/"),
}
# Folder -> the libraries that it may include.
USES = {
    "text": {"utf8proc"},
    "json": {"fast_float"},
    "appcast": {"glib", "pugixml"},
    "hosts/posix": {"posix"},
    "hosts/x11": {"posix", "xlib", "xkbcommon", "glib", "gtk", "pango", "atspi", "curl", "pugixml"},
    "hosts/x11/tap": {"posix", "xlib"},
    "hosts/macos": {"posix", "apple"},
    "tools": {"posix"},
}

INCLUDE = re.compile(r'^\s*#\s*(?:include|import)\s*(?:"([^"]+)"|<([^>]+)>)')
SYSTEM_TEST = re.compile(
    r"^\s*#\s*(?:if|ifdef|ifndef|elif)\b.*\b(?:__APPLE__|__linux__|__unix__|_WIN32|TARGET_OS_\w+|__MACH__)\b"
)


def folder_of(path: str) -> str | None:
    folders = path.split("/")[:-1]
    names = ["/".join(folders[:depth]) for depth in range(len(folders), 0, -1)]
    return next((name for name in names if name in FOLDERS or name in FREE), None)


def library_of(header: str) -> str | None:
    """The library that a header in angle brackets is of; None for the standard library's and the C library's."""
    names = [name for name, starts in LIBRARIES.items() if header.startswith(starts)]
    return names[0] if names else None


def is_standard(header: str) -> bool:
    return re.fullmatch(r"[a-z_]+", header) is not None


def source_files():
    for top in sorted({name.split("/")[0] for name in [*FOLDERS, *FREE]}):
        for path in sorted((ROOT / top).rglob("*")):
            if path.suffix in SOURCES:
                yield path.relative_to(ROOT).as_posix(), path.read_text(encoding="utf-8").splitlines()


def includes():
    """(where, folder, header of the project or None, header in angle brackets or None) of every include."""
    for path, lines in source_files():
        for number, line in enumerate(lines, 1):
            if match := INCLUDE.match(line):
                yield f"{path}:{number}", folder_of(path), match.group(1), match.group(2)


class ProjectLayout(unittest.TestCase):
    def test_there_are_sources(self):
        self.assertGreater(len(list(source_files())), 20)

    def test_every_source_is_in_a_folder_of_the_table(self):
        self.assertEqual([path for path, _ in source_files() if folder_of(path) is None], [])

    def test_includes_follow_the_table(self):
        faults, used = [], set()
        for where, folder, ours, _ in includes():
            if ours is None or folder in FREE:
                continue
            target = folder_of(ours)
            if target is None:
                faults.append(f"{where}: include by path from the root, not {ours}")
            elif target != folder and target not in FOLDERS[folder]:
                faults.append(f"{where}: {folder}/ may not include {target}/")
            used.add((folder, target))
        self.assertEqual(faults, [])
        rules = {(folder, target) for folder, targets in FOLDERS.items() for target in targets}
        self.assertEqual(sorted(rules - used), [], "rules that no include uses")

    def test_libraries_follow_the_table(self):
        faults, used = [], set()
        for where, folder, _, header in includes():
            if header is None or folder in FREE or is_standard(header):
                continue
            library = library_of(header)
            if library is None:
                faults.append(f"{where}: <{header}> is of no library in the table")
            elif library not in USES.get(folder, set()):
                faults.append(f"{where}: {folder}/ may not include {library} (<{header}>)")
            used.add((folder, library))
        self.assertEqual(faults, [])
        rules = {(folder, library) for folder, libraries in USES.items() for library in libraries}
        self.assertEqual(sorted(rules - used), [], "rules that no include uses")

    def test_the_page_has_the_same_table(self):
        page = (ROOT / "docs" / "architecture.md").read_text(encoding="utf-8")
        rows = re.findall(r"^\| `([\w/]+)/` \|[^|]*\| ([^|]*) \| ([^|]*) \|$", page, flags=re.MULTILINE)
        found = {name: (words(folders), words(libraries)) for name, folders, libraries in rows}
        table = {name: (FOLDERS[name], USES.get(name, set())) for name in FOLDERS}
        self.assertEqual({name: found.get(name) for name in table}, table)

    def test_only_hosts_ask_which_system_it_is(self):
        faults = [
            f"{path}:{number}: {line.strip()}"
            for path, lines in source_files()
            if not path.startswith("hosts/")
            for number, line in enumerate(lines, 1)
            if SYSTEM_TEST.match(line)
        ]
        self.assertEqual(faults, [])

    def test_files_are_short(self):
        faults = [f"{path}: {len(lines)} lines" for path, lines in source_files() if len(lines) > MAX_LINES]
        self.assertEqual(faults, [])


def words(cell: str) -> set[str]:
    """The names in a cell of the page's table; a dash is none."""
    return {word.strip(" `") for word in cell.split(",")} - {"—"}


if __name__ == "__main__":
    unittest.main()
