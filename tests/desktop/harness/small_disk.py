"""A disk so small that a test can fill it."""

import ctypes
import errno
import os
import subprocess
from pathlib import Path

_CLONE_NEWNS = 0x00020000
_libc = ctypes.CDLL(None, use_errno=True)


class SmallDisk:
    """A file system in memory at `folder`, which is created.

    Only this process and its later children see it, because this process gets its own mount namespace. Raises
    PermissionError if the system does not allow that.
    """

    def __init__(self, folder: Path, kibibytes: int = 256) -> None:
        self.folder = folder
        self._filler = folder / "filler"
        if _libc.unshare(_CLONE_NEWNS) != 0:
            raise PermissionError(ctypes.get_errno(), os.strerror(ctypes.get_errno()))
        _mount("--make-rprivate", "/")
        folder.mkdir()
        _mount("-t", "tmpfs", "-o", f"size={kibibytes}k", "tmpfs", str(folder))

    def unmount(self) -> None:
        """Removes it with its content; no file on it may be open."""
        subprocess.run(["umount", str(self.folder)], check=True)
        self.folder.rmdir()

    def fill(self, free: int = 0) -> None:
        """Uses all room except this many bytes, in whole pages."""
        with self._filler.open("wb", buffering=0) as filler:
            try:
                while filler.write(bytes(4096)):
                    pass
            except OSError as error:
                if error.errno != errno.ENOSPC:
                    raise
            filler.truncate(filler.tell() - free)

    def make_room(self) -> None:
        """Frees the room that `fill` used."""
        self._filler.unlink()


def _mount(*arguments: str) -> None:
    command = ["mount", *arguments]
    result = subprocess.run(command, check=False, capture_output=True, text=True)
    if result.returncode != 0:
        raise PermissionError(errno.EPERM, result.stderr.strip() or "mount failed")
