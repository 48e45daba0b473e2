"""The Debian package in a clean system: installed, upgraded with a user's document kept, driven beside gnumeric, purged.

usage: system_test.py RELEASE [PACKAGES]

Takes root, debootstrap and the network; ends with 77 where it may not. Without PACKAGES, a folder, it builds them first.
"""

import os
import pathlib
import shutil
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parents[2]
SKIPPED = 77
# What drives the program and reads what came of it, beside what the package needs.
DESKTOP = ("gnumeric, xvfb, openbox, trayer, dbus, at-spi2-core, fonts-dejavu-core, x11-xkb-utils, x11-xserver-utils, xkb-data, "
           "x11-utils, libglib2.0-bin, python3, python3-gi, gir1.2-atspi-2.0, imagemagick, libx11-dev, libxi-dev, libxtst-dev")
DOCUMENT = "/home/person/Library/Application Support/keyvora/mappings.json"
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
        sys.exit(f"{command} ended with {done.returncode}:\n{done.stdout[-4000:]}")
    return done.stdout


def earlier(package: pathlib.Path, folder: pathlib.Path) -> pathlib.Path:
    """The package as a version before it, for an upgrade."""
    older = folder / "keyvora_earlier.deb"
    shell('dpkg-deb --raw-extract "$1" "$2/tree"; sed -i "s/^Version: .*/Version: 0.0.1-1/" "$2/tree/DEBIAN/control"; '
          'dpkg-deb --root-owner-group --build "$2/tree" "$3" >/dev/null', package, folder, older)
    return older


def main() -> int:
    release = sys.argv[1]
    if os.geteuid() != 0 or not shutil.which("debootstrap"):
        print("takes root and debootstrap")
        return SKIPPED
    with tempfile.TemporaryDirectory(prefix="keyvora-system-") as name:
        folder = pathlib.Path(name)
        packages = pathlib.Path(sys.argv[2]) if len(sys.argv) > 2 else folder / "built"
        if len(sys.argv) <= 2:
            shell('"$project/scripts/linux/package" --release "$1" --output "$2"', release, packages)
        (package,) = packages.glob(f"keyvora_*~deb{release}_*.deb")
        system, debs = folder / "system", folder / "debs"
        debs.mkdir()
        shutil.copy(package, debs / "keyvora.deb")
        earlier(package, folder).rename(debs / "earlier.deb")
        shell('chroot_make "$1" "$2"', release, system)

        def inside(script: str) -> str:
            return shell('chroot_run "$1" --bind "debs=$2" --bind "project=$3" /bin/sh -euc "$4"', system, debs, ROOT, script)

        inside("apt-get update; useradd --create-home person; apt-get satisfy --yes --no-install-recommends "
               f'"$(dpkg-deb --field /mnt/debs/keyvora.deb Depends), {DESKTOP}"; '
               "c++ -std=c++20 -I/mnt/project /mnt/project/tests/desktop/typist/*.cpp -lX11 -lXi -lXtst -o /opt/typist")
        before = inside(LISTING)

        inside("dpkg --install /mnt/debs/earlier.deb")
        inside(f"su person -c 'mkdir -p \"$(dirname \"{DOCUMENT}\")\"; "
               f"sed s/Format/Shape/ /usr/share/keyvora/keyvora_keyvora.bundle/gnumeric.json >\"{DOCUMENT}\"'")
        document = inside(f'sha256sum "{DOCUMENT}"')
        inside("dpkg --install /mnt/debs/keyvora.deb; dpkg --audit; dpkg --verify keyvora")
        if inside(f'sha256sum "{DOCUMENT}"') != document:
            sys.exit("the upgrade changed the user's document")
        inside(f"su person -c 'keyvora-mappings check \"{DOCUMENT}\"'")
        print(inside("cd /mnt/project/tests/desktop; su person -c '/usr/bin/python3 -B -u -m suite --target gnumeric "
                     "--keyvora /usr/bin/keyvora --typist /opt/typist --artifacts /tmp/failures test_first_day'"))

        inside("dpkg --remove keyvora; dpkg --purge keyvora")
        left = sorted(set(inside(LISTING).splitlines()) - set(before.splitlines()))
        if left:
            sys.exit("left after the purge:\n" + "\n".join(left))
        if inside(f'sha256sum "{DOCUMENT}"') != document:
            sys.exit("the purge took the user's document")
    print(f"Debian {release}: installed, upgraded, driven, purged")
    return 0


if __name__ == "__main__":
    sys.exit(main())
