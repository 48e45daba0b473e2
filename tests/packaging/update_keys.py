"""Key pairs for update feeds, made for one test by packaging/macos/feed.py."""

import secrets
import sys
import unittest

from stand_in_bundle import ROOT

sys.path.insert(0, str(ROOT / "packaging/macos"))
import feed  # noqa: E402


def require_openssl() -> None:
    """Skips the tests of the module that calls it if there is no OpenSSL 3, which a Mac may lack; Debian must have it."""
    try:
        feed.openssl()
    except feed.FeedError as missing:
        if sys.platform == "linux":
            raise
        raise unittest.SkipTest(str(missing)) from missing


def new_key_pair() -> tuple[bytes, bytes]:
    """A new private key, as the seed of Ed25519, and its public key."""
    seed = secrets.token_bytes(32)
    return seed, feed.public_key(seed)
