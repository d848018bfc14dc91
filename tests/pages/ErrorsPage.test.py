#!/usr/bin/env python3
"""Holds docs/ERRORS.md against the sources: every text that is traced as an error or asserted, and
every name of an error, stands there or, of the dictionary, in docs/DICTIONARY-FORMAT.md, with when
it comes and what to do.
"""
import re
import unittest

from message_texts import LIBRARY, PLATFORM, code_in, page, rows, texts_in

CODEC_AND_LEGACY = (LIBRARY, "RadiusP*.cpp", "RadiusP*.h")
GROUND_FLOOR = (PLATFORM, "*/*.cpp", "*/*.h")


class ErrorsPage(unittest.TestCase):
    def setUp(self):
        self.page = page("ERRORS.md")

    def test_has_every_text_of_codec_and_legacy_interface(self):
        texts = texts_in(*CODEC_AND_LEGACY)
        self.assertGreater(len(texts), 70)
        self.assertEqual([text for text in sorted(texts) if f"`{text}`" not in self.page], [])

    def test_has_every_assertion_of_the_ground_floor(self):
        texts = texts_in(*GROUND_FLOOR)
        self.assertGreaterEqual(len(texts), 3)
        self.assertEqual([text for text in sorted(texts) if f"`{text}`" not in self.page], [])

    def test_has_every_error_by_name_and_number(self):
        types = (LIBRARY / "RadiusPktTypes.h").read_text(encoding="utf-8")
        errors = re.findall(r"X\((\w+), (\d+)\)", types)
        self.assertGreaterEqual(len(errors), 21)
        self.assertEqual([error for error in errors
                          if f"| `{error[0]}` | {error[1]} |" not in self.page], [])

    def test_promises_no_text_that_is_gone(self):
        code = code_in(*CODEC_AND_LEGACY) + code_in(*GROUND_FLOOR)
        texts = [text for of_row, _ in rows(self.page) for text in of_row if " " in text]
        self.assertGreater(len(texts), 70)
        self.assertEqual([text for text in texts if " ".join(text.split()) not in code], [])

    def test_says_of_each_when_it_comes_and_what_to_do(self):
        cells = list(rows(self.page))
        self.assertGreater(len(cells), 120)
        self.assertEqual([texts for texts, others in cells
                          if not all(cell.strip() for cell in others)], [])


if __name__ == "__main__":
    unittest.main()
