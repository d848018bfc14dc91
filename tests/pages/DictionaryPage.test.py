#!/usr/bin/env python3
"""Holds docs/DICTIONARY-FORMAT.md against the loader: every message stands there, with when it comes
and what to do, and none that is gone; and so do the words of the grammar.
"""
import re
import unittest

from message_texts import LIBRARY, page, rows, texts_in

LOADER = "RadiusDictionaryParser.cpp"


class DictionaryPage(unittest.TestCase):
    def setUp(self):
        self.page = page("DICTIONARY-FORMAT.md")
        self.rows = [(texts, others) for texts, others in rows(self.page) if len(others) == 3]
        self.documented = {text for texts, _ in self.rows for text in texts}

    def test_has_the_messages_of_the_loader_and_no_others(self):
        texts = texts_in(LIBRARY, LOADER)
        self.assertGreater(len(texts), 35)
        self.assertEqual(self.documented, texts)

    def test_says_of_each_how_it_goes_on_when_it_comes_and_what_to_do(self):
        self.assertEqual([texts for texts, others in self.rows
                          if others[0] not in ("ends", "goes on") or not all(others)], [])

    def test_knows_which_messages_end_the_process(self):
        """What is told before the text of a fatal problem goes on by itself."""
        code = (LIBRARY / LOADER).read_text(encoding="utf-8")
        fatal = {text.strip(" ") for text in
                 re.findall(r'FATAL_PROBLEM\((?:[^"();]|\([^"]*?\))*?"([^"]*)"', code)}
        ends = {text for texts, others in self.rows if others[0] == "ends" for text in texts}
        self.assertGreater(len(fatal), 15)
        self.assertEqual({text.strip(" ") for text in ends}, fatal | {"file.is_open()"})

    def test_has_every_keyword_type_and_flag(self):
        code = (LIBRARY / LOADER).read_text(encoding="utf-8")
        words = set(re.findall(r'[!=]= "([\w$-]+)"', code)) | {"encrypt="}
        types = (LIBRARY / "RadiusDictionaryParser.h").read_text(encoding="utf-8")
        words |= set(re.findall(r"X\((\w+), \d+\)", types))
        self.assertGreaterEqual(words, {"$INCLUDE", "BEGIN-VENDOR", "has_tag", "ipv6prefix"})
        grammar = "".join(re.findall(r"^```\n(.*?)^```$", self.page, re.MULTILINE | re.DOTALL))
        grammar += "".join(re.findall(r"`[^`\n]+`", self.page))
        self.assertEqual([word for word in sorted(words) if word not in grammar], [])


if __name__ == "__main__":
    unittest.main()
