"""The arguments of `./run`, with stand-ins for package installation, the build and the program."""
import pathlib
import shutil
import subprocess
import tempfile
import unittest

from tests.support.installation import PREFIX, SOURCE, output_of

PROGRAM = """#!/bin/sh
printf '%s\\n' "$@" >"$CALLED"
"""


class Run(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.root = pathlib.Path(folder.name)
        shutil.copy(SOURCE / "run", self.root)
        self.script("tools/setup", "#!/bin/sh\n: >\"$INSTALLED\"\n")
        self.script("bin/cmake", "#!/bin/sh\n")
        self.script("build/release/lightmotion", PROGRAM)
        for name in ("street.avi", "two.dots.mp4"):
            (self.root / name).touch()

    def script(self, name, text):
        file = self.root / name
        file.parent.mkdir(parents=True, exist_ok=True)
        file.write_text(text)
        file.chmod(0o755)

    def run_script(self, *arguments):
        environment = {"PATH": f"{self.root}/bin:/usr/bin:/bin", "CALLED": str(self.root / "called"),
                       "INSTALLED": str(self.root / "installed")}
        return subprocess.run(["./run", *arguments], cwd=self.root, env=environment, capture_output=True, text=True)

    def arguments_of(self, *arguments):
        done = self.run_script(*arguments)
        self.assertEqual(done.returncode, 0, done.stderr)
        return (self.root / "called").read_text().replace(str(self.root) + "/", "").split("\n")[:-1]

    def outputs(self, name):
        return ["-o", f"out/{name}.jsonl", "--annotate", f"out/{name}.mp4"]

    def test_help_installs_and_builds_nothing(self):
        for option in ("-h", "--help"):
            done = self.run_script("street.avi", option)
            self.assertEqual((done.returncode, done.stdout[:14]), (0, "usage: ./run ["))
        self.assertFalse((self.root / "installed").exists())

    def test_missing_file_is_reported_before_anything_is_installed(self):
        done = self.run_script("--quiet", "missing.mp4")
        self.assertEqual((done.returncode, done.stderr), (1, "run: missing.mp4: no such file\n"))
        self.assertFalse((self.root / "installed").exists())

    def test_outputs_are_named_after_the_source_wherever_it_stands(self):
        for arguments, name in ((["street.avi"], "street"), ([], "scene"), (["--preset", "street", "street.avi"], "street"),
                                (["-q", "--fps=5", "two.dots.mp4", "--gap", "3"], "two.dots"), (["-c", "x"], "scene"),
                                (["rtsp://camera/a?b=1"], "a_b_1")):
            self.assertEqual(self.arguments_of(*arguments), ["run", *arguments, *self.outputs(name)])

    def test_outputs_of_the_caller_win(self):
        for arguments in (["-o", "x.jsonl"], ["-ox.jsonl"], ["--output", "x.jsonl"], ["--output=x.jsonl"]):
            self.assertEqual(self.arguments_of("street.avi", *arguments),
                             ["run", "street.avi", *arguments, "--annotate", "out/street.mp4"])
        for arguments in (["-a", "x.mp4"], ["--annotate=x.mp4"]):
            self.assertEqual(self.arguments_of("street.avi", *arguments),
                             ["run", "street.avi", *arguments, "-o", "out/street.jsonl"])
        self.assertEqual(self.arguments_of("street.avi", "--out", "results"), ["run", "street.avi", "--out", "results"])

    def test_leaves_naming_the_outputs_to_the_program(self):
        self.assertEqual(self.run_script("street.avi").stdout, "")

    def test_knows_the_options_without_a_value(self):
        text = output_of(PREFIX / "bin/lightmotion", "run", "--help")
        flags = {line.split()[0] for line in text.splitlines()
                 if line.startswith("  -") and len(line.split()) > 1 and not line.split()[1].isupper()}
        known = (SOURCE / "run").read_text()
        for names in flags:
            for name in names.split(","):
                self.assertIn(f"{name} ", known.replace(")", " "), names)


if __name__ == "__main__":
    unittest.main()
