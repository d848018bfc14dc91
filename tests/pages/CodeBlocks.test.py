#!/usr/bin/env python3
"""The code on the pages is that of the examples, which are compiled and run."""

import re
import sys
import unittest
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT / "docs" / "generate"))

from blocks import CODE, CODE_PAGES, Unnamed, region, with_code  # noqa: E402


class CodeBlocks(unittest.TestCase):
    maxDiff = None

    def test_are_what_the_examples_have(self):
        for path in CODE_PAGES:
            with self.subTest(path.name):
                page = path.read_text(encoding="utf-8")
                self.assertEqual(page, with_code(page), "scripts/pages writes them anew")

    def test_are_all_found(self):
        counts = {}
        for path in CODE_PAGES:
            page = path.read_text(encoding="utf-8")
            counts[path.name] = len(CODE.findall(page))
            self.assertEqual(page.count("```cpp"), counts[path.name])
        self.assertEqual(counts["README.md"], 2)
        self.assertGreaterEqual(counts["GUIDE.md"], 15)

    def test_come_from_programs_that_are_built(self):
        built = (ROOT / "examples" / "CMakeLists.txt").read_text(encoding="utf-8")
        for path in CODE_PAGES:
            for source, _, _ in CODE.findall(path.read_text(encoding="utf-8")):
                program = Path(source)
                with self.subTest(source):
                    self.assertEqual(program.parts[0], "examples")
                    if program.suffix == ".cpp":
                        self.assertRegex(built, rf"\b{program.stem}\b")
                    else:
                        users = [user for user in (ROOT / "examples").rglob("*.cpp")
                                 if f'"{source}"' in user.read_text(encoding="utf-8")]
                        self.assertTrue(users)

    def test_show_every_region(self):
        shown = set()
        for path in CODE_PAGES:
            for source, regions, _ in CODE.findall(path.read_text(encoding="utf-8")):
                shown |= {(source, name) for name in regions.split(", ")}
        marked = {(str(path.relative_to(ROOT)), name)
                  for path in (ROOT / "examples").rglob("*")
                  if path.suffix in (".cpp", ".h")
                  for name in re.findall(r"^ *// \[(\w[\w-]*)\]$", path.read_text(encoding="utf-8"),
                                         re.MULTILINE)}
        self.assertEqual(marked, shown)


class Faults(unittest.TestCase):
    def test_a_block_without_a_source_is_one(self):
        with self.assertRaises(Unnamed):
            with_code("text\n\n```cpp\nint one = 1;\n```\n")

    def test_a_region_that_is_not_there_is_one(self):
        with self.assertRaisesRegex(LookupError, "has 0 regions called nothing"):
            region("examples/guide/parse.cpp", "nothing")

    def test_a_change_of_the_page_is_undone(self):
        block = "<!-- examples/guide/parse.cpp: load -->\n```cpp\n{}```\n"
        good = block.format(region("examples/guide/parse.cpp", "load"))
        self.assertEqual(with_code(block.format("int one = 1;\n")), good)
        self.assertEqual(with_code(good), good)


if __name__ == "__main__":
    unittest.main()
