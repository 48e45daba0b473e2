"""The libraries that a Mac builds from sources: the calls of git, and that local folders need no git. A stand-in for git
records its arguments, so that nothing is fetched.
"""

import os
import pathlib
import re
import subprocess
import tempfile
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
FETCH = ROOT / "cmake" / "KeyvoraFetch.cmake"

PROJECT = f"""\
cmake_minimum_required(VERSION 3.25)
project(sources LANGUAGES NONE)
include("{FETCH.as_posix()}")
"""

# Clones an empty project and records which commit is checked out.
GIT = """\
#!/bin/sh
echo "$*" >>"$GIT_CALLS"
for argument; do last=$argument; done
case "$*" in
  --version) echo 'git version 2.39.0' ;;
  *clone*) mkdir -p "$last/.git" "$last/include" && echo "$EMPTY" >"$last/CMakeLists.txt" ;;
  *checkout*) for argument; do [ "$argument" = -- ] || echo "$argument" >.git/at; done ;;
  *rev-parse*) cat .git/at ;;
esac
"""
EMPTY = "if(NOT TARGET utf8proc)\n  add_library(utf8proc INTERFACE)\nendif()"


def pinned() -> dict[str, str]:
    return dict(re.findall(r"^set\((\w+)_commit (\w+)\)", FETCH.read_text(encoding="utf-8"), flags=re.MULTILINE))


class Sources(unittest.TestCase):
    def setUp(self) -> None:
        scratch = tempfile.TemporaryDirectory()
        self.addCleanup(scratch.cleanup)
        self.folder = pathlib.Path(scratch.name)
        (self.folder / "CMakeLists.txt").write_text(PROJECT, encoding="utf-8")
        (self.folder / "frameworks" / "Sparkle.framework").mkdir(parents=True)
        self.calls = self.folder / "calls"
        self.calls.touch()
        git = self.folder / "git"
        git.write_text(GIT, encoding="utf-8")
        git.chmod(0o755)

    def configure(self, *arguments: str) -> subprocess.CompletedProcess[str]:
        environment = dict(os.environ, GIT_CALLS=str(self.calls), EMPTY=EMPTY,
                           PATH=f"{self.folder}{os.pathsep}{os.environ['PATH']}")
        return subprocess.run(
            ["cmake", "-S", str(self.folder), "-B", str(self.folder / "build"), "-G", "Ninja",
             f"-DKEYVORA_SPARKLE_DIR={self.folder / 'frameworks'}", *arguments],
            env=environment, text=True, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, timeout=120, check=False)

    def test_every_library_is_checked_out_at_its_commit_and_nothing_else(self) -> None:
        commits = pinned()
        self.assertGreaterEqual(len(commits), 2)
        result = self.configure("-DKEYVORA_TESTS=ON")
        self.assertEqual(result.returncode, 0, result.stdout)
        calls = self.calls.read_text(encoding="utf-8").splitlines()
        checkouts = [re.sub(r"^.*\bcheckout ", "", call) for call in calls if " checkout " in f" {call}"]
        self.assertEqual(sorted(checkouts), sorted(f"{commit} --" for commit in commits.values()), calls)

    def test_rapidjson_is_cloned_without_its_submodule(self) -> None:
        result = self.configure("-DKEYVORA_TESTS=ON")
        self.assertEqual(result.returncode, 0, result.stdout)
        of_rapidjson = self.calls.read_text(encoding="utf-8").partition("rapidjson.git")[2].partition("clone")[0]
        self.assertIn("checkout", of_rapidjson)
        self.assertNotIn("submodule", of_rapidjson)

    def test_local_folders_need_no_git(self) -> None:
        folders = []
        for name in pinned():
            folder = self.folder / "sources" / name
            folder.mkdir(parents=True)
            (folder / "CMakeLists.txt").write_text(EMPTY, encoding="utf-8")
            folders.append(f"-DFETCHCONTENT_SOURCE_DIR_{name.upper()}={folder}")
        result = self.configure("-DKEYVORA_TESTS=ON", "-DFETCHCONTENT_FULLY_DISCONNECTED=ON", *folders)
        self.assertEqual(result.returncode, 0, result.stdout)
        self.assertEqual(self.calls.read_text(encoding="utf-8"), "")


if __name__ == "__main__":
    unittest.main()
