"""keyvora.app as the build leaves it, with no more of its programs than is looked at; and its archive."""

import base64
import os
import pathlib
import struct
import subprocess
import zipfile

ROOT = pathlib.Path(__file__).resolve().parents[2]
VERSION, BUILD = "7.8.9", "57"
FEED = "https://example.org/appcast.xml"
VERSIONS = "Contents/Frameworks/Sparkle.framework/Versions"
# The head of a program for arm64 and x86_64, as far as it is looked at; what a debugging build has at its end.
UNIVERSAL = struct.pack(">II5I5I", 0xCAFEBABE, 2, 0x01000007, 3, 0, 0, 14, 0x0100000C, 0, 0, 0, 14)
SYMBOLS = b"with symbols"
PROGRAMS = ("Contents/MacOS/keyvora", "Contents/MacOS/keyvora-mappings", f"{VERSIONS}/B/Autoupdate", f"{VERSIONS}/B/Sparkle",
            f"{VERSIONS}/B/Updater.app/Contents/MacOS/Updater")
FOLDERS = (f"{VERSIONS}/B/XPCServices/Installer.xpc", f"{VERSIONS}/B/XPCServices/Downloader.xpc")


def write_information(file: pathlib.Path, **settings: str) -> None:
    """The information dictionary that CMake writes for a build with these settings."""
    values = {"OUTPUT": str(file), "PROJECT_VERSION": VERSION, "KEYVORA_BUILD": BUILD, **settings}
    subprocess.run(["cmake", *(f"-D{name}={value}" for name, value in values.items()), "-P",
                    ROOT / "resources/information_dictionary.cmake"], check=True, capture_output=True)
    file.chmod(0o644)  # CMake gives it the mode that its template has in this checkout


def make_bundle(folder: pathlib.Path, key: bytes | None, **settings: str) -> pathlib.Path:
    """keyvora.app in the folder, for a feed whose public key is this."""
    app = folder / "keyvora.app"
    for name in PROGRAMS:
        (app / name).parent.mkdir(parents=True, exist_ok=True)
        (app / name).write_bytes(UNIVERSAL + name.encode() + SYMBOLS)
        (app / name).chmod(0o755)
    for name in FOLDERS:
        (app / name).mkdir(parents=True)
    os.symlink("B", app / VERSIONS / "Current")
    os.symlink("Versions/Current/Sparkle", app / VERSIONS / "../Sparkle")
    resources = app / "Contents/Resources/keyvora_keyvora.bundle"
    resources.mkdir(parents=True)
    (app / "Contents/Resources/keyvora.icns").write_bytes((ROOT / "packaging/macos/keyvora.icns").read_bytes())
    (resources / "mappings.json").write_bytes((ROOT / "resources/mappings.json").read_bytes())
    if key is not None:
        settings = {"KEYVORA_UPDATE_FEED": FEED, "KEYVORA_UPDATE_KEY": base64.b64encode(key).decode("ascii"), **settings}
    write_information(app / "Contents/Info.plist", **settings)
    return app


def pack(app: pathlib.Path, archive: pathlib.Path) -> pathlib.Path:
    """The bundle as `ditto -c -k --keepParent` packs it: modes kept, links as links."""
    with zipfile.ZipFile(archive, "w", zipfile.ZIP_DEFLATED) as packed:
        for path in sorted(app.rglob("*")):
            name = str(path.relative_to(app.parent))
            if path.is_symlink():
                entry = zipfile.ZipInfo(name)
                entry.create_system = 3
                entry.external_attr = 0o120755 << 16
                packed.writestr(entry, os.readlink(path))
            else:
                packed.write(path, name)
    return archive
