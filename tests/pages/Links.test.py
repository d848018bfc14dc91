#!/usr/bin/env python3
"""Every link of a page leads somewhere: to a file of the project, and to a heading that is there."""

import re
import subprocess
import unittest
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]

LINK = re.compile(r"\[[^\]]*\]\(([^)\s]+)\)")
HEADING = re.compile(r"^#+ (.+)$", re.MULTILINE)
BLOCK = re.compile(r"^ *```.*?^ *```$", re.MULTILINE | re.DOTALL)
ELSEWHERE = re.compile(r"[a-z]+:")


def prose(page):
    """A page without its blocks of code and its code in the line."""
    return re.sub(r"`[^`\n]*`", "", BLOCK.sub("", page))


def anchors(page):
    """What headings are called in a link."""
    headings = HEADING.findall(BLOCK.sub("", page))
    return {re.sub(r"[^\w\- ]", "", heading.lower()).strip().replace(" ", "-")
            for heading in headings}


def pages():
    listed = subprocess.run(["git", "ls-files", "--cached", "--others", "--exclude-standard",
                             "*.md"], cwd=ROOT, capture_output=True, text=True, check=False)
    if listed.returncode == 0:
        return [ROOT / name for name in listed.stdout.splitlines() if (ROOT / name).exists()]
    return [path for path in ROOT.rglob("*.md")
            if not path.relative_to(ROOT).parts[0].startswith("build")]


def fault_of(path, link):
    """Why a link on the page at `path` leads nowhere; empty when it leads somewhere."""
    if ELSEWHERE.match(link):
        return ""
    name, _, anchor = link.partition("#")
    target = (path.parent / name).resolve() if name else path
    if not target.exists() or ROOT not in [target, *target.parents]:
        return f"no file {name}"
    if anchor and anchor not in anchors(target.read_text(encoding="utf-8")):
        return f"no heading {anchor} in {target.name}"
    return ""


class Links(unittest.TestCase):
    def test_lead_somewhere(self):
        found = [(path.relative_to(ROOT), link, fault_of(path, link)) for path in pages()
                 for link in LINK.findall(prose(path.read_text(encoding="utf-8")))]
        self.assertGreater(len(found), 20)
        self.assertEqual([one for one in found if one[2]], [])

    def test_lead_from_the_readme_to_every_page(self):
        readme = (ROOT / "README.md").read_text(encoding="utf-8")
        linked = {(ROOT / link).resolve() for link in LINK.findall(prose(readme))}
        at_the_door = {path for path in pages()
                       if path.parent in (ROOT, ROOT / "docs") and path.name != "README.md"}
        self.assertGreater(len(at_the_door), 8)
        self.assertEqual(sorted(at_the_door - linked), [])

    def test_lead_nowhere_when_they_are_wrong(self):
        readme = ROOT / "README.md"
        self.assertEqual(fault_of(readme, "docs/GUIDE.md#build-a-packet"), "")
        self.assertEqual(fault_of(readme, "docs/GUIDES.md"), "no file docs/GUIDES.md")
        self.assertEqual(fault_of(readme, "docs/GUIDE.md#bild-a-packet"),
                         "no heading bild-a-packet in GUIDE.md")
        self.assertEqual(fault_of(readme, "../elsewhere.md"), "no file ../elsewhere.md")


if __name__ == "__main__":
    unittest.main()
