"""scripts/linux/chroot.sh: what systems share that are made from one, with this system's programs in place of Debian's.

Takes root that may mount; ends with 77 where it may not.
"""

import os
import pathlib
import subprocess
import sys
import tempfile
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
SKIPPED = 77
ARCHIVES = "var/cache/apt/archives"


class Chroot(unittest.TestCase):
    def setUp(self) -> None:
        self.folder = pathlib.Path(self.enterContext(tempfile.TemporaryDirectory(prefix="keyvora-chroot-")))
        base = self.folder / "cache/bookworm"
        (base / ARCHIVES).mkdir(parents=True)
        (base / ARCHIVES / "base.deb").write_text("base", encoding="utf-8")
        for name in ("etc", "proc", "sys", "dev"):
            (base / name).mkdir()
        for name in ("bin", "lib", "lib64"):
            (base / name).symlink_to(f"usr/{name}")
        (base / "usr").symlink_to("mnt/usr")
        (base / "etc/os-release").write_text("VERSION_CODENAME=bookworm\n", encoding="utf-8")

    def start(self, command: str, *arguments: object) -> subprocess.Popen[str]:
        script = f". {ROOT}/scripts/common.sh; . {ROOT}/scripts/linux/chroot.sh; {command}"
        return subprocess.Popen(["bash", "-euc", script, "bash", *map(str, arguments)], text=True, stderr=subprocess.PIPE,
                                env={**os.environ, "KEYVORA_CHROOTS": str(self.folder / "cache")})

    def run_all(self, *started: subprocess.Popen[str]) -> None:
        for process in started:
            said = process.communicate(timeout=120)[1]
            self.assertEqual((process.returncode, said), (0, ""))

    def make(self, *names: str) -> list[pathlib.Path]:
        """Systems that are made at the same time."""
        systems = [self.folder / name for name in names]
        self.run_all(*(self.start('chroot_make 12 "$1"', system) for system in systems))
        return [system / ARCHIVES for system in systems]

    def keep(self, *names: str) -> None:
        self.run_all(*(self.start('chroot_keep_packages "$1"', self.folder / name) for name in names))

    def test_systems_do_not_see_what_others_fetch(self) -> None:
        one, other = self.make("one", "other")
        # apt holds this lock as long as it fetches.
        self.run_all(self.start('chroot_run "$1" --bind usr=/usr touch "$2"', self.folder / "one", f"/{ARCHIVES}/lock"))
        self.assertEqual({path.name for path in one.iterdir()}, {"base.deb", "lock"})
        (later,) = self.make("later")
        for archives in (other, later):
            self.assertEqual({path.name for path in archives.iterdir()}, {"base.deb"})

    def test_a_failure_inside_is_one_outside(self) -> None:
        self.make("one")
        process = self.start('chroot_run "$1" --bind usr=/usr false', self.folder / "one")
        process.communicate()
        self.assertEqual(process.returncode, 1)

    def test_later_systems_have_what_earlier_ones_fetched(self) -> None:
        one, other = self.make("one", "other")
        for archives in (one, other):
            (archives / "a.deb").write_text("a", encoding="utf-8")
            (archives / "lock").touch()
        (other / "b.deb").write_text("b", encoding="utf-8")
        self.keep("one", "other")
        (later,) = self.make("later")
        self.assertEqual({path.name: path.read_text(encoding="utf-8") for path in later.iterdir()},
                         {"a.deb": "a", "b.deb": "b", "base.deb": "base"})

    def test_a_release_that_is_not_known_is_refused(self) -> None:
        process = self.start('chroot_make 11 "$1"', self.folder / "system")
        self.assertIn("Debian 11 is not known here; 12 and 13 are", process.communicate()[1])
        self.assertNotEqual(process.returncode, 0)


if __name__ == "__main__":
    may_mount = subprocess.run(["unshare", "--mount", "true"], stderr=subprocess.DEVNULL, check=False).returncode == 0
    if os.geteuid() != 0 or not may_mount:
        print("takes root that may mount")
        sys.exit(SKIPPED)
    unittest.main()
