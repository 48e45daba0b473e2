"""Rules for all workflows of continuous integration: least permissions, and actions pinned by commit."""

import pathlib
import re
import subprocess
import unittest

try:
    import yaml
except ImportError:  # Debian's python3-yaml, which yamllint brings along
    yaml = None

ROOT = pathlib.Path(__file__).resolve().parents[2]
WORKFLOWS = {path.name: path.read_text(encoding="utf-8") for path in (ROOT / ".github" / "workflows").glob("*.yml")}


class Workflows(unittest.TestCase):
    def test_there_are_workflows(self) -> None:
        self.assertLessEqual({"linux.yml", "macos.yml", "nightly.yml", "release.yml"}, set(WORKFLOWS))

    def test_every_workflow_may_only_read(self) -> None:
        for name, text in WORKFLOWS.items():
            with self.subTest(name):
                self.assertEqual(re.findall(r"^permissions:\n((?: +.*\n)+)", text, flags=re.MULTILINE), ["  contents: read\n"])

    def test_one_job_may_write_and_it_builds_nothing(self) -> None:
        for name, text in WORKFLOWS.items():
            with self.subTest(name):
                rights = re.findall(r"^    permissions:\n((?: {6}.*\n)+)", text, flags=re.MULTILINE)
                self.assertEqual(text.count("permissions:"), 1 + len(rights))
                self.assertEqual([re.findall(r"^ +([\w-]+: \w+)", right, flags=re.MULTILINE) for right in rights],
                                 [["contents: write", "id-token: write", "attestations: write"]] if name == "release.yml" else [])
        job = WORKFLOWS["release.yml"].split("\n  publish:\n")[1]
        self.assertIn("    permissions:\n", job)
        self.assertNotRegex(job, r"cmake|ninja|\./test|scripts/(build|setup|linux)|apt-get|brew")

    def test_secrets_are_given_to_single_steps_of_a_release(self) -> None:
        """As values; that a secret is there at all may be known to a whole job."""
        for name, text in WORKFLOWS.items():
            given = [line for line in text.splitlines() if "secrets." in line and "!= ''" not in line]
            with self.subTest(name):
                self.assertEqual([line for line in given if not re.fullmatch(r" {10}(\w+): \$\{\{ secrets\.\1 \}\}", line)], [])
                self.assertEqual(bool(given), name == "release.yml")

    def test_what_others_choose_never_becomes_part_of_a_command(self) -> None:
        """Names of tags and branches come as variables of the environment, which the shell does not read as code."""
        for name, text in WORKFLOWS.items():
            with self.subTest(name):
                self.assertNotRegex(text, r"\$\{\{ *github\.(ref|head_ref|event)")

    def test_every_secret_and_variable_of_a_release_is_documented(self) -> None:
        page = (ROOT / "docs/release.md").read_text(encoding="utf-8")
        names = set(re.findall(r"(?:secrets|vars)\.(\w+)", WORKFLOWS["release.yml"]))
        self.assertTrue(names)
        for name in sorted(names):
            self.assertIn(f"`{name}`", page)

    def test_every_action_is_pinned_by_commit_and_says_its_version(self) -> None:
        for name, text in WORKFLOWS.items():
            for line in re.findall(r"^.*\buses:.*$", text, flags=re.MULTILINE):
                with self.subTest(f"{name}: {line.strip()}"):
                    self.assertRegex(line, r"uses: [\w./-]+@[0-9a-f]{40} +# v\d+\.\d+\.\d+$")

    def test_no_checkout_leaves_its_token_behind(self) -> None:
        for name, text in WORKFLOWS.items():
            with self.subTest(name):
                self.assertEqual(text.count("actions/checkout@"), text.count("persist-credentials: false"))

    def test_the_commands_that_run_are_there(self) -> None:
        for name, text in WORKFLOWS.items():
            for command in re.findall(r"(?:run: |^ {10})(\./\w+|(?:scripts|packaging)/[\w/-]+)", text, flags=re.MULTILINE):
                with self.subTest(f"{name}: {command}"):
                    self.assertTrue((ROOT / command).is_file())

    @unittest.skipIf(yaml is None, "python3-yaml reads them")
    def test_jobs_are_whole(self) -> None:
        for name, text in WORKFLOWS.items():
            workflow = yaml.safe_load(text)
            self.assertIn(True, workflow, f"{name}: on")  # YAML reads the word as a truth value
            for title, job in workflow["jobs"].items():
                with self.subTest(f"{name}: {title}"):
                    self.assertIn("runs-on", job)
                    self.assertIsInstance(job["timeout-minutes"], int)
                    needs = job.get("needs", [])
                    self.assertLessEqual(set([needs] if isinstance(needs, str) else needs), set(workflow["jobs"]))
                    for step in job["steps"]:
                        self.assertEqual(len({"uses", "run"} & set(step)), 1, step)
                        if "run" in step:
                            script = re.sub(r"\$\{\{.*?\}\}", "x", step["run"])
                            done = subprocess.run(["bash", "-n"], input=script, text=True, capture_output=True, check=False)
                            self.assertEqual((done.returncode, done.stderr), (0, ""), step)


if __name__ == "__main__":
    unittest.main()
