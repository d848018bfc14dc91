#!/usr/bin/env python3
"""What the tool prints on the pages is what it prints.

    Sessions.test.py TOOL
"""

import sys
import unittest
from pathlib import Path

TOOL = Path(sys.argv[1])
sys.path.insert(0, str(Path(__file__).resolve().parents[2] / "docs" / "generate"))

from blocks import COMMAND, SESSION, SESSION_PAGES, with_sessions  # noqa: E402


class Sessions(unittest.TestCase):
    maxDiff = None

    def test_are_what_the_tool_prints(self):
        for path in SESSION_PAGES:
            with self.subTest(path.name):
                page = path.read_text(encoding="utf-8")
                self.assertEqual(page, with_sessions(page, TOOL), "scripts/pages writes them anew")

    def test_are_found(self):
        readme = SESSION_PAGES[0].read_text(encoding="utf-8")
        commands = [command for session in SESSION.findall(readme)
                    for command in COMMAND.findall(session)]
        self.assertGreaterEqual(len(commands), 2)
        self.assertEqual([command for command in commands
                          if not command.startswith("radius-packet ")], [])

    def test_are_written_anew(self):
        made = with_sessions("```\n$ radius-packet --version\nan older one\n```\n", TOOL)
        self.assertRegex(made, r"\A```\n\$ radius-packet --version\nradius-packet \d+\.\d+\.\d+\n"
                               r"```\n\Z")


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
