"""The program installed for one test, and a display for it."""

import os
import pathlib
import plistlib
import shutil
import subprocess

FETCH_TIMEOUT = 2  # seconds, set in the installed Info.plist
PATIENCE = 20  # seconds until a test gives up


class Installation:
    """The program in its own prefix, with its own home."""

    def __init__(self, folder: pathlib.Path, program: pathlib.Path):
        self.prefix = folder / "prefix"
        self.home = folder / "home"
        self.home.mkdir()
        (self.prefix / "bin").mkdir(parents=True)
        self.resources = self.prefix / "share" / "keyvora"
        defaults = self.resources / "keyvora_keyvora.bundle"
        defaults.mkdir(parents=True)
        (defaults / "mappings.json").write_text('{"version": 1, "tabs": {}, "sequences": []}')
        self.program = self.prefix / "bin" / "keyvora"
        shutil.copy2(program, self.program)
        parts = self.prefix / "libexec" / "keyvora"
        parts.mkdir(parents=True)
        shutil.copy2(program.with_name("keyvora-fetch"), parts)

    def configure(self, feed: str | None, timeout: int = FETCH_TIMEOUT):
        values = {"CFBundleIdentifier": "org.keyvora.keyvora", "CFBundleShortVersionString": "1.2",
                  "CFBundleVersion": "42", "KeyvoraUpdateTimeout": timeout, "SUEnableAutomaticChecks": True}
        if feed is not None:
            values["SUFeedURL"] = feed
        with (self.resources / "Info.plist").open("wb") as file:
            plistlib.dump(values, file)

    def environment(self, **more: str) -> dict[str, str]:
        kept = ("PATH", "ASAN_OPTIONS", "LSAN_OPTIONS", "TSAN_OPTIONS", "UBSAN_OPTIONS")
        return {**{name: os.environ[name] for name in kept if name in os.environ},
                "HOME": str(self.home), "LANG": "C.UTF-8", **more}

    def probe(self, feed: str | None, *arguments: str, **environment: str) -> subprocess.CompletedProcess:
        self.configure(feed)
        return subprocess.run([self.program, *(arguments or ["--probe-updates"])], capture_output=True, text=True,
                              timeout=PATIENCE, check=False, env=self.environment(**environment))

    def files(self) -> list[str]:
        """The files that the program wrote to the home."""
        return sorted(path.relative_to(self.home).as_posix() for path in self.home.rglob("*") if path.is_file())


class Display:
    """A private X server, as a context manager."""

    def __enter__(self) -> str:
        reader, writer = os.pipe()
        self.server = subprocess.Popen(
            ["Xvfb", "-displayfd", str(writer), "-screen", "0", "800x600x24", "-nolisten", "tcp", "-noreset"],
            pass_fds=[writer], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        os.close(writer)
        with os.fdopen(reader) as pipe:
            return ":" + pipe.readline().strip()

    def __exit__(self, *_):
        self.server.terminate()
        self.server.wait()
