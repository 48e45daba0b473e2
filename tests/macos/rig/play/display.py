"""A private display: GNUstep's AppKit draws on an X server."""

import contextlib
import os
import subprocess


@contextlib.contextmanager
def display():
    """Starts a display, which ends with the context; gives its name."""
    read, write = os.pipe()
    server = subprocess.Popen(
        ["Xvfb", "-displayfd", str(write), "-screen", "0", "640x480x24", "-nolisten", "tcp"],
        pass_fds=[write],
        stdin=subprocess.DEVNULL,
        stdout=subprocess.DEVNULL,
        stderr=subprocess.DEVNULL,
    )
    os.close(write)
    try:
        with os.fdopen(read) as announced:
            number = announced.readline().strip()
        if not number:
            raise RuntimeError("Xvfb did not start")
        yield ":" + number
    finally:
        server.kill()
        server.wait()


def environment(home: str, screen: str, **more: str) -> dict[str, str]:
    """The environment of a program in the rig. Of the caller's it contains only the settings of sanitizers and profiles."""
    kept = {name: value for name, value in os.environ.items() if name in ("UBSAN_OPTIONS", "LLVM_PROFILE_FILE")}
    return {
        **kept,
        "PATH": os.environ.get("PATH", "/usr/bin:/bin"),
        "HOME": home,
        "TMPDIR": home,
        "LANG": "C.UTF-8",
        "DISPLAY": screen,
        # GNUstep never frees some of its objects, nor do the recorders.
        "ASAN_OPTIONS": "detect_leaks=0",
        **more,
    }
