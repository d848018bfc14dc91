"""The texts that the library's sources say: what they trace and what they assert."""

import pathlib
import re

ROOT = pathlib.Path(__file__).resolve().parents[2]
LIBRARY = ROOT / "RadiusPacketParser"
PLATFORM = ROOT / "Platform"

LITERAL = re.compile(r'"((?:[^"\\]|\\.)*)"')
# The calls that say something, up to the bracket that closes them.
CALL = re.compile(r"\b(VERDA_TRACE(?:_AS)?|VERDA_ASSERT_TEXT|TRACE_[A-Z]+|FATAL_[A-Z]+)\("
                  r'((?:[^()"]|"(?:[^"\\]|\\.)*"|'
                  r'\((?:[^()"]|"(?:[^"\\]|\\.)*"|\([^()]*\))*\))*)\)')
CONDITION = re.compile(r"\bVERDA_ASSERT\((.*?)\);", re.DOTALL)
RETURNED = re.compile(r'(?:return|")\s*"?((?:Received|Packet has)[^"]*)"')


def joined(text):
    """Neighbouring string literals as one, and macros' own definitions left out."""
    text = re.sub(r"#define(?:[^\n]*\\\n)*[^\n]*", "", text)
    return re.sub(r'"\s*\n\s*"', "", text)


def texts_of(source):
    """What a source says, without the blanks in front."""
    texts = set()
    code = joined(source)
    for _, arguments in CALL.findall(code):
        literals = [text for text in LITERAL.findall(arguments) if text]
        if "traceEntries" in arguments or not literals or literals[-1] in ("{}", "entry"):
            continue
        texts.add(literals[-1].replace('\\"', '"').lstrip())
    for condition in CONDITION.findall(code):
        texts.add(" ".join(condition.split()))
    texts.update(RETURNED.findall(code))
    return texts


def sources(folder, *patterns):
    for pattern in patterns:
        yield from sorted(folder.glob(pattern))


def texts_in(folder, *patterns):
    """What all of these sources say."""
    found = set()
    for path in sources(folder, *patterns):
        found |= texts_of(path.read_text(encoding="utf-8"))
    return found


def code_in(folder, *patterns):
    """These sources as one line, to look texts up in."""
    code = "".join(joined(path.read_text(encoding="utf-8"))
                   for path in sources(folder, *patterns))
    return " ".join(code.replace('\\"', '"').split())


def page(name):
    return (ROOT / "docs" / name).read_text(encoding="utf-8")


def rows(text):
    """The cells of each row of the tables of a page whose first cell holds texts: those texts, and
    the other cells."""
    for line in re.findall(r"^\| `[^\n]* \|$", text, re.MULTILINE):
        first, *others = (cell.strip() for cell in line[1:-1].split("|"))
        yield first.strip("`").split("`; `"), others
