"""The Debian package in a clean system: installed, upgraded with a user's document kept, driven beside gnumeric, purged.

usage: system_test.py RELEASE [PACKAGES]

Takes root that may mount, debootstrap and the network; ends with 77 where it may not. Without PACKAGES, a folder, it builds
them first, twice, and both builds must be the same.
"""

import os
import pathlib
import shutil
import subprocess
import sys
import tempfile

from installed import INSTALLED

ROOT = pathlib.Path(__file__).resolve().parents[2]
SKIPPED = 77
# What drives the program and reads what came of it, beside what the package needs.
DESKTOP = ("gnumeric, xvfb, openbox, trayer, dbus, at-spi2-core, fonts-dejavu-core, x11-xkb-utils, x11-xserver-utils, xkb-data, "
           "x11-utils, libglib2.0-bin, libgtk-3-bin, dex, python3, python3-gi, gir1.2-atspi-2.0, imagemagick, libx11-dev, "
           "libxi-dev, libxtst-dev")
DOCUMENT = "/home/person/Library/Application Support/keyvora/mappings.json"
# Files that Debian installs elsewhere, or compressed, or in addition.
PLACES = {
    "share/zsh/site-functions/_keyvora-mappings": "share/zsh/vendor-completions/_keyvora-mappings",
    "share/man/man1/keyvora.1": "share/man/man1/keyvora.1.gz",
    "share/man/man1/keyvora-mappings.1": "share/man/man1/keyvora-mappings.1.gz",
}
DEBIAN = {"share/doc/keyvora/copyright", "share/doc/keyvora/changelog.gz", "share/doc/keyvora/changelog.Debian.gz"}
# Every file of the system but users' own, what the package manager notes, and what is seen from outside.
LISTING = ("find / -xdev \\( -path /home -o -path /mnt -o -path /proc -o -path /sys -o -path /dev -o -path /tmp -o -path /run "
           "-o -path /root -o -path /var/cache -o -path /var/log -o -path /var/lib/dpkg -o -path /var/lib/apt \\) -prune "
           "-o -print | LC_ALL=C sort")


def shell(command: str, *arguments: object) -> str:
    """What the command printed, run with the functions of scripts/linux/chroot.sh; ends the test when it fails."""
    prelude = f". {ROOT}/scripts/common.sh; . {ROOT}/scripts/linux/chroot.sh; "
    done = subprocess.run(["bash", "-euc", prelude + command, "bash", *map(str, arguments)], stdout=subprocess.PIPE,
                          stderr=subprocess.STDOUT, text=True, check=False)
    if done.returncode != 0:
        sys.exit(f"{command} ended with {done.returncode}:\n{done.stdout[-20000:]}")
    return done.stdout


def earlier(package: pathlib.Path, folder: pathlib.Path) -> pathlib.Path:
    """The package as a version before it, for an upgrade."""
    older = folder / "keyvora_earlier.deb"
    shell('dpkg-deb --raw-extract "$1" "$2/tree"; sed -i "s/^Version: .*/Version: 0.0.1-1/" "$2/tree/DEBIAN/control"; '
          'dpkg-deb --root-owner-group --build "$2/tree" "$3" >/dev/null', package, folder, older)
    return older


def main() -> int:
    release = sys.argv[1]
    may_mount = subprocess.run(["unshare", "--mount", "true"], stderr=subprocess.DEVNULL, check=False).returncode == 0
    if os.geteuid() != 0 or not may_mount or not shutil.which("debootstrap"):
        print("takes root that may mount, and debootstrap")
        return SKIPPED
    with tempfile.TemporaryDirectory(prefix="keyvora-system-") as name:
        folder = pathlib.Path(name)
        packages = pathlib.Path(sys.argv[2]) if len(sys.argv) > 2 else folder / "built"
        if len(sys.argv) <= 2:
            print(shell('"$project/scripts/linux/package" --release "$1" --output "$2" --twice', release, packages))
        (package,) = packages.glob(f"keyvora_*~deb{release}_*.deb")
        system, debs = folder / "system", folder / "debs"
        debs.mkdir()
        shutil.copy(package, debs / "keyvora.deb")
        earlier(package, folder).rename(debs / "earlier.deb")
        shell('chroot_make "$1" "$2"', release, system)

        def inside(script: str) -> str:
            return shell('chroot_run "$1" --bind "debs=$2" --bind "project=$3" /bin/sh -euc "$4"', system, debs, ROOT, script)

        inside("apt-get update; useradd --create-home person; apt-get satisfy --yes --no-install-recommends "
               '"$(dpkg-deb --field /mnt/debs/keyvora.deb Depends)"')
        missing = inside("dpkg-deb --extract /mnt/debs/keyvora.deb /tmp/files; cd /tmp/files/usr; "
                         "for program in bin/* libexec/keyvora/*; do ldd $program; done; rm -r /tmp/files")
        if "not found" in missing:
            sys.exit(f"the package depends on too little:\n{missing}")
        inside(f'apt-get satisfy --yes --no-install-recommends "{DESKTOP}"; '
               "c++ -std=c++20 -I/mnt/project /mnt/project/tests/desktop/typist/*.cpp -lX11 -lXi -lXtst -o /opt/typist")
        before = inside(LISTING)

        inside("apt-get install --yes --no-install-recommends /mnt/debs/earlier.deb")
        files = set(inside("dpkg --listfiles keyvora").splitlines())
        absent = sorted({f"/usr/{PLACES.get(name, name)}" for name in INSTALLED | DEBIAN} - files)
        if absent:
            sys.exit("not in the package:\n" + "\n".join(absent))
        inside(f"su person -c 'mkdir -p \"$(dirname \"{DOCUMENT}\")\"; "
               f"sed s/Format/Shape/ /usr/share/keyvora/keyvora_keyvora.bundle/gnumeric.json >\"{DOCUMENT}\"'")
        document = inside(f'sha256sum "{DOCUMENT}"')
        inside("apt-get install --yes --no-install-recommends /mnt/debs/keyvora.deb")
        wrong = inside("dpkg --audit; dpkg --verify keyvora")
        if wrong:
            sys.exit(f"wrong after the upgrade:\n{wrong}")
        if inside(f'sha256sum "{DOCUMENT}"') != document:
            sys.exit("the upgrade changed the user's document")
        inside(f"su person -c 'keyvora-mappings check \"{DOCUMENT}\"'")
        # Each on a desktop of its own: the first starts gnumeric anew for every test.
        for tests in ("test_first_day", "test_desktop_entry.FromTheApplications"):
            print(inside("cd /mnt/project/tests/desktop; su person -c '/usr/bin/python3 -B -u -m suite --target gnumeric "
                         f"--keyvora /usr/bin/keyvora --typist /opt/typist --artifacts /tmp/failures {tests}'"))

        inside("apt-get remove --yes keyvora; dpkg --purge keyvora; ! ls -d /var/lib/dpkg/info/keyvora* 2>/dev/null")
        left = sorted(set(inside(LISTING).splitlines()) - set(before.splitlines()))
        if left:
            sys.exit("left after the purge:\n" + "\n".join(left))
        if inside(f'sha256sum "{DOCUMENT}"') != document:
            sys.exit("the purge took the user's document")
    print(f"Debian {release}: installed, upgraded, driven, purged")
    return 0


if __name__ == "__main__":
    sys.exit(main())
