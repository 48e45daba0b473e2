"""Keeps samples anew, in a folder that is thrown away, and has today's reader read them.

usage: keep_test.py BUILD_FOLDER SAMPLES_TEST
"""

import os
import pathlib
import subprocess
import sys
import tempfile

KEEP = pathlib.Path(__file__).resolve().parent / "keep"


def main() -> int:
    """The exit status of the first of the two that fails."""
    build, reader = sys.argv[1:]
    with tempfile.TemporaryDirectory(prefix="keyvora-samples-") as folder:
        kept = subprocess.run(["/usr/bin/python3", KEEP, build, folder], check=False)
        if kept.returncode != 0:
            return kept.returncode
        again = subprocess.run(["/usr/bin/python3", KEEP, build, folder], capture_output=True, text=True, check=False)
        if again.returncode == 0 or "is there already" not in again.stderr:
            print(f"keep replaces samples: {again.stderr}")
            return 1
        return subprocess.run([reader, "--gtest_filter=Versions/*"], check=False,
                              env={**os.environ, "KEYVORA_SAMPLES": folder}).returncode


if __name__ == "__main__":
    sys.exit(main())
