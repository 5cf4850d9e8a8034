"""The manual page and the completions list exactly the program's options."""
import gzip
import pathlib
import re
import tempfile
import unittest

from tests.support.installation import PREFIX, output_of

PROGRAM = PREFIX / "bin/lightmotion"
COMPLETIONS = {
    "bash": PREFIX / "share/bash-completion/completions/lightmotion",
    "zsh": PREFIX / "share/zsh/vendor-completions/_lightmotion",
    "fish": PREFIX / "share/fish/vendor_completions.d/lightmotion.fish",
}
OPTION = re.compile(r"(?<![\w-])--?[a-z][a-z-]*")


def subcommands():
    text = output_of(PROGRAM, "--help")
    return re.findall(r"^  ([a-z]+) ", text[text.index("\nCommands:"):text.index("\nExamples:")], re.MULTILINE)


def options_in_help():
    """Each option's line starts like "  -c,--config FILE"."""
    text = output_of(PROGRAM, "--help") + "".join(output_of(PROGRAM, name, "--help") for name in subcommands())
    lines = re.findall(r"^  (-[^ ]+) ", text, re.MULTILINE)
    return {option for line in lines for option in line.split(",")}


class Options(unittest.TestCase):
    def test_of_the_help_are_seen(self):
        self.assertLessEqual({"-h", "--help", "--version", "-c", "--config", "--plugin"}, options_in_help())

    def test_of_the_manual_page_are_those_of_the_help(self):
        with gzip.open(PREFIX / "share/man/man1/lightmotion.1.gz", "rt") as page:
            text = page.read()
        options = text[text.index(".SH OPTIONS"):text.index(".SH RESULT")].replace("\\-", "-")
        entries = " ".join(re.findall(r"^\.TP\n(.*)$", options, re.MULTILINE)).replace("\\fI", " ")
        self.assertEqual(set(OPTION.findall(entries)), options_in_help())

    def test_of_the_bash_completion_are_those_of_the_help(self):
        offered = set(self.complete_in_bash("-"))
        for name in subcommands():
            offered.update(self.complete_in_bash(name, "-"))
        self.assertEqual(offered, options_in_help())

    def test_of_the_zsh_completion_are_those_of_the_help(self):
        text = COMPLETIONS["zsh"].read_text()
        quoted = re.findall(r"(\{[^}]*\}|--[\w-]+)'?\[", text.replace("'[", "["))
        self.assertEqual(set(OPTION.findall(" ".join(quoted).replace("{", " ").replace(",", " "))), options_in_help())

    def test_of_the_fish_completion_are_those_of_the_help(self):
        text = COMPLETIONS["fish"].read_text()
        named = {"-" + name for name in re.findall(r" -s (\w)", text)}
        named |= {"--" + name for name in re.findall(r" -l ([\w-]+) ", text.replace("set -l", ""))}
        self.assertEqual(named, options_in_help())

    def test_every_shell_offers_the_subcommands(self):
        self.assertLessEqual({"run", "check", "presets"}, set(subcommands()))
        self.assertLessEqual(set(subcommands()), set(self.complete_in_bash("")))
        for shell in "zsh", "fish":
            text = COMPLETIONS[shell].read_text()
            for name in subcommands():
                self.assertRegex(text, rf'\b{name}( -d|\\:")', f"{shell}: {name}")

    def complete_in_bash(self, *words):
        script = ('source "$1"; shift; COMP_WORDS=(lightmotion "$@"); COMP_CWORD=$#; '
                  '_lightmotion lightmotion "${@: -1}" "${@: -2:1}"; printf "%s\\n" "${COMPREPLY[@]}"')
        return output_of("bash", "-c", script, "bash", COMPLETIONS["bash"], *words).split()

    def test_bash_offers_videos_where_a_video_is_written(self):
        with tempfile.TemporaryDirectory() as folder:
            for name in "a.mp4", "b.mkv", "c.mov", "d.json":
                pathlib.Path(folder, name).touch()
            offered = self.complete_in_bash("run", "--annotate", folder + "/")
        self.assertEqual(sorted(pathlib.Path(name).name for name in offered), ["a.mp4", "b.mkv", "c.mov"])

    def test_every_shell_reads_its_completion(self):
        for shell, file in COMPLETIONS.items():
            output_of(shell, "-n", file)


if __name__ == "__main__":
    unittest.main()
