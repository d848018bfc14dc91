#!/usr/bin/env python3
"""Whatever test data comes from elsewhere is listed with its source and its licence."""

import collections
import json
import re
import unittest
from pathlib import Path

DATA = Path(__file__).resolve().parents[1] / "data"
VECTORS = DATA / "vectors"


def entries(name):
    return json.loads((VECTORS / name).read_text(encoding="utf-8"))


class Notices(unittest.TestCase):
    def setUp(self):
        self.list = (DATA / "README.md").read_text(encoding="utf-8")
        self.vectors = (VECTORS / "README.md").read_text(encoding="utf-8")

    def test_name_every_source_of_packets(self):
        counts = collections.Counter((one["source"], one["licence"])
                                     for one in entries("packets.json"))
        rows = re.findall(r"^\| `([^`]+)`(?: \([^|]*\))? \| (\d+) \| ([^|]+) \|$", self.vectors,
                          re.MULTILINE)
        self.assertEqual({(source, licence): int(count) for source, count, licence in rows}, counts)
        for source, licence in counts:
            if not source.startswith("rfc"):
                with self.subTest(source):
                    self.assertIn(f"| `{source}` | {licence} |", self.list)

    def test_name_every_source_of_hidden_values(self):
        for one in entries("hidden_values.json"):
            source = re.split(r" (?!section)", one["source"])[0]
            with self.subTest(one["source"]):
                self.assertIn(f"RFC {source[3:]}" if source.startswith("rfc") else f"`{source}`",
                              self.list)

    def test_know_every_file_of_vectors(self):
        for path in sorted(VECTORS.iterdir()):
            if path.name != "README.md":
                with self.subTest(path.name):
                    self.assertIn(f"| `{path.name}` |", self.vectors)


if __name__ == "__main__":
    unittest.main()
