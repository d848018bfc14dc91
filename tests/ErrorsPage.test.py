#!/usr/bin/env python3
"""Holds docs/ERRORS.md against the sources: every text that is traced as an error or asserted, and
every name of an error, stands there or, of the dictionary, in docs/DICTIONARY-FORMAT.md.
"""
import pathlib
import re
import unittest

ROOT = pathlib.Path(__file__).parent.parent
LIBRARY = ROOT / "RadiusPacketParser"

LITERAL = re.compile(r'"((?:[^"\\]|\\.)*)"')
# The calls that say something, up to the first bracket that closes.
CALL = re.compile(r"\b(VERDA_TRACE(?:_AS)?|VERDA_ASSERT_TEXT|TRACE_[A-Z]+)\(((?:[^()\"]|"
                  r'"(?:[^"\\]|\\.)*"|\((?:[^()\"]|"(?:[^"\\]|\\.)*"|\([^()]*\))*\))*)\)')
CONDITION = re.compile(r"\bVERDA_ASSERT\((.*?)\);", re.DOTALL)
RETURNED = re.compile(r'(?:return|")\s*"?((?:Received|Packet has)[^"]*)"')


def joined(text):
    """Neighbouring string literals as one, and macros' own definitions left out."""
    text = re.sub(r"#define(?:[^\n]*\\\n)*[^\n]*", "", text)
    return re.sub(r'"\s*\n\s*"', "", text)


def texts_of(source):
    texts = set()
    code = joined(source)
    for _, arguments in CALL.findall(code):
        literals = [text for text in LITERAL.findall(arguments) if text]
        if "traceEntries" in arguments or not literals or literals[-1] in ("{}", "entry"):
            continue
        texts.add(literals[-1].replace('\\"', '"'))
    for condition in CONDITION.findall(code):
        texts.add(" ".join(condition.split()))
    texts.update(RETURNED.findall(code))
    return texts


def source_texts(pattern):
    texts = set()
    for path in sorted(LIBRARY.glob(pattern)):
        texts |= texts_of(path.read_text(encoding="utf-8"))
    return texts


class ErrorsPage(unittest.TestCase):
    def setUp(self):
        self.page = (ROOT / "docs" / "ERRORS.md").read_text(encoding="utf-8")

    def test_has_every_text_of_codec_and_legacy_interface(self):
        texts = source_texts("RadiusP*.cpp") | source_texts("RadiusP*.h")
        self.assertGreater(len(texts), 70)
        self.assertEqual([text for text in sorted(texts) if f"`{text}`" not in self.page], [])

    def test_has_every_error_by_name_and_number(self):
        types = (LIBRARY / "RadiusPktTypes.h").read_text(encoding="utf-8")
        errors = re.findall(r"X\((\w+), (\d+)\)", types)
        self.assertEqual(len(errors), 21)
        self.assertEqual([error for error in errors
                          if f"| `{error[0]}` | {error[1]} |" not in self.page], [])

    def test_promises_no_text_that_is_gone(self):
        sources = "".join(joined(path.read_text(encoding="utf-8"))
                          for path in sorted(LIBRARY.glob("RadiusP*"))).replace('\\"', '"')
        sources = " ".join(sources.split())
        rows = re.findall(r"^\| `([^|]*)` \|", self.page, re.MULTILINE)
        texts = [text for row in rows for text in row.split("`; `") if " " in text]
        self.assertGreater(len(texts), 70)
        self.assertEqual([text for text in texts
                          if " ".join(text.split()) not in sources], [])


if __name__ == "__main__":
    unittest.main()
