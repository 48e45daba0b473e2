"""Stand-ins for Apple's commands, for the scripts of packaging/macos.

Each takes only the arguments that it is known to take, writes them down, does to files what the real one would be seen to do,
and refuses what the real one would refuse later: a change after the signature, a ticket for what was not accepted. What they
remember is in one JSON file.
"""

import base64
import json
import os
import pathlib
import plistlib
import shlex
import shutil
import subprocess
import sys
from collections.abc import Callable

from stand_in_bundle import SYMBOLS, pack

COMMANDS = ("codesign", "ditto", "dsymutil", "dwarfdump", "hdiutil", "plutil", "security", "spctl", "strip", "xcrun")
IDENTIFIERS = "UUID: 1111-AAAA (x86_64) {0}\nUUID: 2222-BBBB (arm64) {0}"


class Refused(Exception):
    """Why the command ends with a failure."""


class Memory:
    """State shared by the stand-ins: results of earlier commands, and settings of the test."""

    def __init__(self, file: pathlib.Path) -> None:
        self.file = file
        self.values: dict = {"calls": [], "signed": [], "accepted": [], "stapled": [], "answer": "Accepted", "identities": [],
                             "sdk": "15.2", "lose_symbols": False}
        if file.exists():
            self.values.update(json.loads(file.read_text(encoding="utf-8")))

    def save(self) -> None:
        self.file.write_text(json.dumps(self.values), encoding="utf-8")


def matched(pattern: str, arguments: list[str]) -> dict[str, str] | None:
    """The words of a pattern in capitals, as the arguments have them; none when the arguments are others."""
    words = pattern.split()
    if len(words) != len(arguments):
        return None
    found = {}
    for word, argument in zip(words, arguments):
        if word.isupper():
            found[word] = argument
        elif word != argument:
            return None
    return found


def parts_inside(path: pathlib.Path) -> list[pathlib.Path]:
    """The code that must be signed before what holds it."""
    names = ("**/*.xpc", "**/Autoupdate", "**/Updater.app", "**/*.framework", "Contents/MacOS/*")
    inside = [part for name in names for part in path.glob(name) if not part.is_symlink() and "Current" not in part.parts]
    return [part for part in inside if part.resolve() != path.resolve() and part.name != "Updater"
            and part != path / "Contents/MacOS/keyvora"]


def codesign(arguments: list[str], memory: Memory) -> None:
    verify = matched("--verify --strict --deep --verbose=2 PATH", arguments)
    forms = ("--force --sign ID PATH", "--force --sign ID --entitlements FILE PATH", "--force --sign ID --timestamp PATH",
             "--force --sign ID --options runtime --timestamp PATH",
             "--force --sign ID --options runtime --timestamp --preserve-metadata=entitlements PATH",
             "--force --sign ID --options runtime --timestamp --entitlements FILE PATH")
    found = verify or next(filter(None, (matched(form, arguments) for form in forms)), None)
    if found is None:
        raise Refused("unknown arguments")
    path = pathlib.Path(found["PATH"]).resolve()
    if not path.exists():
        raise Refused("No such file or directory")
    if verify:
        if str(path) not in memory.values["signed"]:
            raise Refused("code object is not signed at all")
        return
    if found["ID"] != "-" and found["ID"] not in memory.values["identities"]:
        raise Refused(f"{found['ID']}: no identity found")
    if "FILE" in found:
        plistlib.loads(pathlib.Path(found["FILE"]).read_bytes())
    # Sparkle's parts come signed by others; a release replaces that.
    if "runtime" in arguments and path.suffix in (".app", ".framework"):
        for part in parts_inside(path):
            if str(part.resolve()) not in memory.values["signed"]:
                raise Refused(f"code object is not signed at all. In subcomponent: {part}")
    memory.values["signed"].append(str(path))
    if path.suffix == ".app" and (path / "Contents").is_dir():
        (path / "Contents/_CodeSignature").mkdir(exist_ok=True)
        (path / "Contents/_CodeSignature/CodeResources").write_text("files\n", encoding="ascii")


def ditto(arguments: list[str], memory: Memory) -> None:
    del memory
    packed = matched("-c -k --keepParent FROM TO", arguments) or matched("-c -k --sequesterRsrc --keepParent FROM TO", arguments)
    copied = None if packed else matched("FROM TO", arguments)
    found = packed or copied
    if found is None or found["FROM"].startswith("-"):
        raise Refused("unknown arguments")
    source, target = pathlib.Path(found["FROM"]), pathlib.Path(found["TO"])
    if not source.is_dir():
        raise Refused(f"{source}: No such file or directory")
    if copied:
        shutil.copytree(source, target, symlinks=True)
    else:
        pack(source, target)


def dsymutil(arguments: list[str], memory: Memory) -> None:
    found = matched("PROGRAM -o TO", arguments)
    if found is None:
        raise Refused("unknown arguments")
    if not pathlib.Path(found["PROGRAM"]).read_bytes().endswith(SYMBOLS):
        print("warning: no debug symbols in executable (-arch arm64)", file=sys.stderr)
    data = pathlib.Path(found["TO"], "Contents/Resources/DWARF")
    data.mkdir(parents=True)
    (data / pathlib.Path(found["PROGRAM"]).name).write_bytes(b"" if memory.values["lose_symbols"] else SYMBOLS)


def dwarfdump(arguments: list[str], memory: Memory) -> None:
    found = matched("--uuid PATH", arguments)
    if found is None:
        raise Refused("unknown arguments")
    path = pathlib.Path(found["PATH"])
    if not path.exists():
        raise Refused(f"{path}: No such file or directory")
    if not (path.is_dir() and memory.values["lose_symbols"]):
        print(IDENTIFIERS.format(path))


def strip(arguments: list[str], memory: Memory) -> None:
    found = matched("-S -x PATH", arguments)
    if found is None:
        raise Refused("unknown arguments")
    program = pathlib.Path(found["PATH"])
    if str(program.resolve()) in memory.values["signed"]:
        raise Refused(f"changes being made to the file will invalidate the code signature in: {program}")
    program.write_bytes(program.read_bytes().removesuffix(SYMBOLS))


def hdiutil(arguments: list[str], memory: Memory) -> None:
    del memory
    found = matched("create -volname VOLUME -srcfolder FROM -fs APFS -format ULFO -quiet TO", arguments)
    if found is None:
        raise Refused("unknown arguments")
    if pathlib.Path(found["TO"]).exists():
        raise Refused("create failed - File exists")
    lines = [f"{path.relative_to(found['FROM'])} -> {os.readlink(path)}" if path.is_symlink() else path.name
             for path in sorted(pathlib.Path(found["FROM"]).iterdir())]
    pathlib.Path(found["TO"]).write_text("\n".join(lines) + "\n", encoding="utf-8")


def plutil(arguments: list[str], memory: Memory) -> None:
    del memory
    found = matched("-extract KEY raw -o - FILE", arguments)
    if found is None:
        raise Refused("unknown arguments")
    values = plistlib.loads(pathlib.Path(found["FILE"]).read_bytes())
    if found["KEY"] not in values:
        raise Refused(f"Could not extract value, error: No value at that key path or invalid key path: {found['KEY']}")
    print(values[found["KEY"]])


def security(arguments: list[str], memory: Memory) -> None:
    if arguments == ["find-identity", "-v", "-p", "codesigning"]:
        for number, identity in enumerate(memory.values["identities"], start=1):
            print(f'  {number}) {"0" * 40} "{identity}"')
        return
    for form in ("create-keychain -p PASSWORD KEYCHAIN", "set-keychain-settings -lut 21600 KEYCHAIN",
                 "unlock-keychain -p PASSWORD KEYCHAIN", "set-key-partition-list -S apple-tool:,apple: -s -k PASSWORD KEYCHAIN",
                 "list-keychains -d user -s KEYCHAIN login.keychain-db"):
        if matched(form, arguments):
            memory.values.setdefault("keychain", []).append(arguments[0])
            return
    imported = matched("import FILE -k KEYCHAIN -P PASSWORD -T /usr/bin/codesign", arguments)
    if imported is None:
        raise Refused("unknown arguments")
    if memory.values.get("keychain", [])[-1:] != ["unlock-keychain"]:
        raise Refused("The keychain is not open.")
    memory.values["identities"].append(pathlib.Path(imported["FILE"]).read_text(encoding="utf-8"))
    memory.values["imported_with"] = imported["PASSWORD"]


def spctl(arguments: list[str], memory: Memory) -> None:
    found = (matched("--assess --type execute --verbose PATH", arguments)
             or matched("--assess --type open --context context:primary-signature --verbose PATH", arguments))
    if found is None:
        raise Refused("unknown arguments")
    if found["PATH"] not in memory.values["stapled"]:
        raise Refused("rejected")
    if pathlib.Path(found["PATH"]).is_dir() != ("execute" in arguments):
        raise Refused("internal error in Code Signing subsystem")


def xcrun(arguments: list[str], memory: Memory) -> None:
    if arguments == ["--sdk", "macosx", "--show-sdk-version"]:
        print(memory.values["sdk"])
        return
    if "--keychain" in arguments and arguments[:2] != ["notarytool", "store-credentials"]:
        place = arguments.index("--keychain")
        memory.values["notary_keychain"] = arguments[place + 1]
        arguments = arguments[:place] + arguments[place + 2:]
    submit = matched("notarytool submit FILE --keychain-profile PROFILE --wait", arguments)
    staple = matched("stapler staple PATH", arguments)
    validate = matched("stapler validate PATH", arguments)
    stored = matched("notarytool store-credentials PROFILE --apple-id ID --team-id TEAM --password PASSWORD --keychain KEYCHAIN",
                     arguments)
    if submit:
        if pathlib.Path(submit["FILE"]).suffix not in (".zip", ".dmg") or not pathlib.Path(submit["FILE"]).is_file():
            raise Refused("the file must be a zip archive, disk image or package")
        print(f"  id: 1234-abcd\n  status: {memory.values['answer']}")
        if memory.values["answer"] == "Accepted":
            memory.values["accepted"].append(submit["FILE"])
    elif staple:
        if not memory.values["accepted"]:
            raise Refused("CloudKit query failed: Record not found")
        memory.values["stapled"].append(staple["PATH"])
        if pathlib.Path(staple["PATH"]).is_dir():
            pathlib.Path(staple["PATH"], "Contents/CodeResources").write_text("ticket\n", encoding="ascii")
    elif validate:
        if validate["PATH"] not in memory.values["stapled"]:
            raise Refused(f"{validate['PATH']} does not have a ticket stapled to it.")
    elif stored:
        memory.values["profile"] = stored
    elif matched("notarytool log ID --keychain-profile PROFILE", arguments) is None:
        raise Refused("unknown arguments")


HANDLERS: dict[str, Callable[[list[str], Memory], None]] = {
    function.__name__: function
    for function in (codesign, ditto, dsymutil, dwarfdump, hdiutil, plutil, security, spctl, strip, xcrun)}


def main() -> int:
    """Runs as one of the commands; which one is the first argument."""
    name, arguments = sys.argv[1], sys.argv[2:]
    memory = Memory(pathlib.Path(os.environ["APPLE_COMMANDS"]))
    memory.values["calls"].append([name, *arguments])
    try:
        HANDLERS[name](arguments, memory)
    except Refused as refused:
        print(f"{name}: {refused}: {shlex.join(arguments)}", file=sys.stderr)
        return 1
    finally:
        memory.save()
    return 0


class AppleCommands:
    """The stand-ins in a folder, in front of the path of what a test runs."""

    def __init__(self, folder: pathlib.Path, **told: object) -> None:
        self.folder = folder / "commands"
        self.folder.mkdir()
        self.state = folder / "memory.json"
        self.tell(**told)
        for name in COMMANDS:
            command = self.folder / name
            command.write_text(f'#!/bin/sh\nexec {shlex.quote(sys.executable)} -B {shlex.quote(__file__)} {name} "$@"\n',
                               encoding="utf-8")
            command.chmod(0o755)

    def tell(self, **told: object) -> None:
        """Changes what the stand-ins answer."""
        memory = Memory(self.state)
        memory.values.update(told)
        memory.save()

    def run(self, script: pathlib.Path, *arguments: object, **environment: str) -> subprocess.CompletedProcess[str]:
        path = f"{self.folder}:{os.environ['PATH']}"
        return subprocess.run([script, *map(str, arguments)], capture_output=True, text=True, check=False,
                              env={"PATH": path, "APPLE_COMMANDS": str(self.state), "PYTHONDONTWRITEBYTECODE": "1", **environment})

    def remembered(self, name: str) -> list:
        """What the stand-ins remember under a name."""
        value: list = Memory(self.state).values[name]
        return value

    def calls(self, name: str = "") -> list[list[str]]:
        """What was called, in order."""
        return [call for call in self.remembered("calls") if name in ("", call[0])]


def certificate(identity: str) -> str:
    """What the stand-in of `security import` takes for a certificate of that name, as a secret would hold it."""
    return base64.b64encode(identity.encode()).decode("ascii")


if __name__ == "__main__":
    sys.exit(main())
