"""The program under test, run as a script would run it. It is the first argument of every test."""

import json
import os
import subprocess
import sys

PROGRAM = sys.argv[1]
VARIABLE = "RADIUS_PACKET_SECRET"


class Result:
    def __init__(self, completed):
        self.status = completed.returncode
        self.output = completed.stdout
        self.errors = completed.stderr.decode()

    @property
    def text(self):
        return self.output.decode()

    @property
    def objects(self):
        """The JSON objects on standard output, one a line."""
        return [json.loads(line) for line in self.text.splitlines()]


def run(*arguments, stdin=b"", variable=None, **options):
    """Runs the program, with the secret's variable as given or unset."""
    environment = {key: value for key, value in os.environ.items() if key != VARIABLE}
    if variable is not None:
        environment[VARIABLE] = variable
    stdin = stdin if isinstance(stdin, bytes) else stdin.encode()
    return Result(subprocess.run([PROGRAM, *arguments], input=stdin, env=environment, timeout=120,
                                 stdout=subprocess.PIPE, stderr=subprocess.PIPE, **options))
