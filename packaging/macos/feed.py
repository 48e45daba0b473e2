"""The update feed as Sparkle reads it: its signatures, its archives and its form. Shared by make-appcast and check-appcast.

Signatures are Ed25519 (RFC 8032) over all bytes of a file. Keys are as Sparkle's generate_keys writes them: the public one
as 32 bytes in base64, the private one as its seed of 32 bytes in base64. OpenSSL 3 computes.
"""

from __future__ import annotations

import base64
import binascii
import dataclasses
import os
import pathlib
import plistlib
import re
import subprocess
import tempfile
import zipfile
from xml.etree import ElementTree
from xml.parsers.expat import ExpatError

NAMESPACE = "http://www.andymatuschak.org/xml-namespaces/sparkle"
# What stands before the key itself in DER, the same for every Ed25519 key (RFC 8410).
PRIVATE_HEAD = bytes.fromhex("302e020100300506032b657004220420")
PUBLIC_HEAD = bytes.fromhex("302a300506032b6570032100")
# Sparkle takes off what begins with the last of these; what stands before is what was signed.
SIGNATURE_START = b"<!-- sparkle-signatures:\n"
SIGNATURE_BLOCK = re.compile(rb"<!-- sparkle-signatures:\nedSignature: ([A-Za-z0-9+/=]+)\nlength: (\d+)\n-->\n\Z")
# What plistlib raises for what is no property list.
NO_PROPERTY_LIST = (plistlib.InvalidFileException, ExpatError, ValueError)
INFORMATION = "keyvora.app/Contents/Info.plist"
ElementTree.register_namespace("sparkle", NAMESPACE)


class FeedError(Exception):
    """What is wrong, and what to do about it; for the user."""


def sparkle(name: str) -> str:
    """The name in Sparkle's namespace, as ElementTree writes it."""
    return f"{{{NAMESPACE}}}{name}"


def decoded(text: str, size: int) -> bytes | None:
    """The bytes that base64 stands for; none when it is no base64, or another number of bytes."""
    try:
        value = base64.b64decode(text.strip(), validate=True)
    except (binascii.Error, ValueError):
        return None
    return value if len(value) == size else None


def openssl() -> str:
    """The path of an OpenSSL that knows Ed25519. The one that comes with macOS is another program and does not."""
    for program in ("openssl", "/opt/homebrew/opt/openssl@3/bin/openssl", "/usr/local/opt/openssl@3/bin/openssl"):
        try:
            said = subprocess.run([program, "version"], capture_output=True, text=True, check=True).stdout
        except (OSError, subprocess.CalledProcessError):
            continue
        if re.match(r"OpenSSL ([3-9]|\d\d)\.", said):
            return program
    raise FeedError("OpenSSL 3 is missing: apt-get install openssl, or on a Mac brew install openssl@3")


def run_openssl(*arguments: str | os.PathLike[str], key: bytes = b"") -> subprocess.CompletedProcess[bytes]:
    """Runs OpenSSL with a key on its standard input, so that no private key is written to a disk."""
    return subprocess.run([openssl(), *arguments], input=key, capture_output=True, check=False)


def public_key(seed: bytes) -> bytes:
    """The public key that belongs to a private one."""
    done = run_openssl("pkey", "-inform", "DER", "-pubout", "-outform", "DER", key=PRIVATE_HEAD + seed)
    if done.returncode != 0 or not done.stdout.startswith(PUBLIC_HEAD):
        raise FeedError(f"openssl made no public key: {done.stderr.decode(errors='replace').strip()}")
    return done.stdout[len(PUBLIC_HEAD):]


def sign(file: pathlib.Path, seed: bytes) -> bytes:
    """The signature of a file by a private key."""
    done = run_openssl("pkeyutl", "-sign", "-rawin", "-keyform", "DER", "-inkey", "/dev/stdin", "-in", file,
                       key=PRIVATE_HEAD + seed)
    if done.returncode != 0 or len(done.stdout) != 64:
        raise FeedError(f"openssl did not sign {file}: {done.stderr.decode(errors='replace').strip()}")
    return done.stdout


def is_signed(file: pathlib.Path, signature: bytes, key: bytes) -> bool:
    """Whether the signature is that of the file by the owner of the public key."""
    with tempfile.NamedTemporaryFile(prefix="keyvora-signature-") as kept:
        kept.write(signature)
        kept.flush()
        return run_openssl("pkeyutl", "-verify", "-rawin", "-pubin", "-keyform", "DER", "-inkey", "/dev/stdin", "-in", file,
                           "-sigfile", kept.name, key=PUBLIC_HEAD + key).returncode == 0


def are_signed(content: bytes, signature: bytes, key: bytes) -> bool:
    """As `is_signed`, for bytes in memory."""
    with tempfile.NamedTemporaryFile(prefix="keyvora-feed-") as kept:
        kept.write(content)
        kept.flush()
        return is_signed(pathlib.Path(kept.name), signature, key)


@dataclasses.dataclass(frozen=True)
class Archive:
    """A release as it is downloaded, and what its information dictionary says."""

    file: pathlib.Path
    version: str  # what updates are compared by
    display_version: str
    minimum_system: str
    key: str  # in base64; empty where the bundle has none
    feed: str

    @property
    def size(self) -> int:
        """In bytes."""
        return self.file.stat().st_size


def read_archive(file: pathlib.Path) -> Archive:
    """What an archive of the application says of itself."""
    try:
        with zipfile.ZipFile(file) as archive:
            information = plistlib.loads(archive.read(INFORMATION))
    except (OSError, zipfile.BadZipFile, KeyError, *NO_PROPERTY_LIST) as error:
        raise FeedError(f"{file} is no archive with {INFORMATION}: {error}") from error

    def value(name: str) -> str:
        return str(information.get(name, ""))

    return Archive(file, value("CFBundleVersion"), value("CFBundleShortVersionString"), value("LSMinimumSystemVersion"),
                   value("SUPublicEDKey"), value("SUFeedURL"))


@dataclasses.dataclass(frozen=True)
class SignedFeed:
    """A feed taken apart: the bytes that were signed, and their signature where there is one."""

    content: bytes
    signature: bytes | None
    length: int | None


def take_apart(feed: bytes) -> SignedFeed:
    """A feed without its block of signatures, and what the block says."""
    start = feed.rfind(SIGNATURE_START)
    if start < 0:
        return SignedFeed(feed, None, None)
    block = SIGNATURE_BLOCK.match(feed, start)
    if block is None:
        raise FeedError("the block of signatures at the end of the feed is malformed")
    signature = decoded(block[1].decode("ascii"), 64)
    if signature is None:
        raise FeedError("the signature of the feed is not 64 bytes in base64")
    return SignedFeed(feed[:start], signature, int(block[2]))


def signature_block(content: bytes, signature: bytes) -> bytes:
    """What is put behind a feed to sign it, in the form of Sparkle 2.9."""
    encoded = base64.b64encode(signature).decode("ascii")
    return SIGNATURE_START + f"edSignature: {encoded}\nlength: {len(content)}\n-->\n".encode("ascii")
