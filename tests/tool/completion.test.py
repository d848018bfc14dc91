"""What a shell completes of `radius-packet` command lines.

    completion.test.py PROGRAM COMPLETIONS

PROGRAM is the built program, COMPLETIONS the folder with the completion of each shell.
"""

import os
import pathlib
import pty
import re
import select
import shutil
import subprocess
import sys
import tempfile
import unittest

from program import PROGRAM, run

COMPLETIONS = pathlib.Path(sys.argv[2]).resolve()
PATIENCE_SECONDS = 60


def help_words(section, *command):
    """The options or commands that the program's help names."""
    text = run(*command, "--help").text
    lines = re.search(rf"^{section}:\n((?:  .*\n)+)", text, re.MULTILINE)[1].splitlines()
    words = [line.split()[0].split(",") for line in lines if re.match(r"  [-a-z]", line)]
    return sorted(word for names in words for word in names)


def commands_of(*group):
    return [[*group, name] for name in help_words("Subcommands", *group)]


COMMANDS = [command for command in commands_of() if command != ["dictionary"]]
COMMANDS += commands_of("dictionary")


@unittest.skipUnless(shutil.which("bash"), "bash is not installed")
class Bash(unittest.TestCase):
    def completed(self, *words, folder="/"):
        """What may stand in the place of the last word."""
        script = (f". '{COMPLETIONS}/radius-packet.bash'\n"
                  'COMP_WORDS=("$@") COMP_CWORD=$(($# - 1))\n'
                  "_radius_packet && printf '%s\\n' \"${COMPREPLY[@]}\"")
        result = subprocess.run(["bash", "-c", script, "-", PROGRAM, *words], cwd=folder, check=True,
                                stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        self.assertEqual(result.stderr, b"")
        return sorted(filter(None, result.stdout.decode().splitlines()))

    def test_knows_the_commands(self):
        self.assertEqual(self.completed(""), help_words("Subcommands"))
        self.assertEqual(self.completed("de"), ["decode"])
        self.assertEqual(self.completed("dictionary", ""), help_words("Subcommands", "dictionary"))

    def test_knows_the_options_of_every_command(self):
        for command in COMMANDS:
            with self.subTest(command):
                self.assertEqual(self.completed(*command, "-"), help_words("Options", *command))

    def test_knows_the_values_of_an_option(self):
        self.assertIn("hex", self.completed("decode", "-f", ""))
        self.assertEqual(self.completed("decode", "-f", "h"), ["hex"])
        self.assertEqual(self.completed("decode", "--secret", ""), [])

    def test_gives_files_where_files_stand(self):
        with tempfile.TemporaryDirectory() as folder:
            (pathlib.Path(folder) / "packet.hex").touch()
            for words in (("decode", ""), ("decode", "-s", "pa"), ("decode", "--json", "pack"),
                          ("dictionary", "check", "")):
                with self.subTest(words):
                    self.assertEqual(self.completed(*words, folder=folder), ["packet.hex"])


@unittest.skipUnless(shutil.which("zsh"), "zsh is not installed")
class Zsh(unittest.TestCase):
    """An interactive shell, for completion is nothing that another may call."""

    PROMPT = "READY> "

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        process, self.terminal = pty.fork()
        if process == 0:
            os.chdir(folder.name)
            os.environ.update(TERM="dumb", ZDOTDIR=folder.name, COLUMNS="200",
                              PATH=f"{pathlib.Path(PROGRAM).parent}:{os.environ['PATH']}")
            os.execvp("zsh", ["zsh", "-f", "-i"])
        self.addCleanup(os.waitpid, process, 0)
        self.addCleanup(os.close, self.terminal)
        (pathlib.Path(folder.name) / "packet.hex").touch()
        self.type(f"fpath=({COMPLETIONS} $fpath); autoload -Uz compinit; compinit -u -D; "
                  f"PS1='{self.PROMPT[:3]}''{self.PROMPT[3:]}'\n")
        self.wait_for(self.PROMPT)

    def type(self, text):
        os.write(self.terminal, text.encode())

    def wait_for(self, text):
        """What the shell writes, up to that text at the least."""
        seen = ""
        while text not in seen:
            ready, _, _ = select.select([self.terminal], [], [], PATIENCE_SECONDS)
            self.assertTrue(ready, f"no {text!r} in {seen!r}")
            seen += os.read(self.terminal, 65536).decode(errors="replace")
        return seen

    def check(self, typed, completed):
        self.type(typed + "\t")
        self.wait_for(completed)
        self.type("\x15")  # takes the line back

    def test_knows_commands_options_values_and_files(self):
        self.check("radius-packet de", "radius-packet decode ")
        self.check("radius-packet dictionary c", "radius-packet dictionary check ")
        self.check("radius-packet decode --stat", "decode --status-server ")
        self.check("radius-packet decode -f h", "decode -f hex ")
        self.check("radius-packet decode -s pa", "decode -s packet.hex ")
        self.check("radius-packet decode --json pa", "--json packet.hex ")

    def test_describes_the_options_of_every_command(self):
        for command in COMMANDS:
            with self.subTest(command):
                self.check(f"radius-packet {' '.join(command)} -", "-- Print this help message")


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
