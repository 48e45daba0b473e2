"""scripts/cross-build-macos without an SDK: it prints that and exits with 77, which CTest shows as skipped."""

import os
import pathlib
import subprocess
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]


class CrossBuild(unittest.TestCase):
    def run_script(self, **settings: str) -> subprocess.CompletedProcess[str]:
        plain = {name: value for name, value in os.environ.items() if not name.startswith(("MACOS_", "KEYVORA_"))}
        return subprocess.run([str(ROOT / "scripts" / "cross-build-macos")], env=plain | settings, text=True,
                              capture_output=True, timeout=60, check=False)

    def test_without_an_sdk_it_builds_nothing_and_says_so(self) -> None:
        result = self.run_script()
        self.assertEqual(result.returncode, 77)
        self.assertIn("was not built: MACOS_SDK names no SDK", result.stdout)

    def test_a_folder_that_is_no_sdk_is_refused(self) -> None:
        result = self.run_script(MACOS_SDK=str(ROOT))
        self.assertEqual(result.returncode, 1)
        self.assertIn("MACOS_SDK is no macOS SDK", result.stderr)


if __name__ == "__main__":
    unittest.main()
