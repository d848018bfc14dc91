#!/usr/bin/env python3
"""The pictures, and the tables of figures, are what their sources give."""

import re
import sys
import unittest
import xml.etree.ElementTree as ElementTree
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT / "docs" / "generate"))

from pictures import FIGURES_PAGE, PICTURES, TABLE, sources, stamp, with_tables  # noqa: E402
from plots import plots, report  # noqa: E402

ANEW = "scripts/pages pictures makes it anew"
SHOWN = re.compile(r"!\[[^\]]+\]\(pictures/([\w-]+\.svg)\)")


class Drawings(unittest.TestCase):
    def test_are_drawn_from_their_sources_as_they_are(self):
        """By a stamp: other releases of graphviz draw otherwise, and there may be none."""
        self.assertGreaterEqual(len(sources()), 2)
        for source in sources():
            with self.subTest(source.name):
                drawing = source.with_suffix(".svg").read_text(encoding="utf-8")
                self.assertTrue(drawing.endswith(stamp(source) + "\n"), ANEW)


class Figures(unittest.TestCase):
    maxDiff = None

    def test_are_plotted_as_they_are(self):
        for name, content in plots(report.kept_figures()).items():
            with self.subTest(name):
                self.assertEqual((PICTURES / name).read_text(encoding="utf-8"), content, ANEW)

    def test_stand_in_the_tables_as_they_are(self):
        page = FIGURES_PAGE.read_text(encoding="utf-8")
        self.assertGreaterEqual(len(TABLE.findall(page)), 6)
        self.assertEqual(page, with_tables(page), ANEW)

    def test_come_from_a_run(self):
        def median(name, time, **counts):
            return {"run_name": name, "aggregate_name": "median", "cpu_time": time,
                    "time_unit": "us", **counts}
        run = {"benchmarks": [
            median("parse/ours/p1", 2.0, allocations=3.0), median("parse/floor/p1", 1.5),
            median("hmac/ours/p1", 1.0), median("hmac/kept-context/p1", 0.5),
            median("threads/ours/p1/threads:1", 1, items_per_second=100.0),
            median("threads/ours/p1/threads:2", 1, items_per_second=150.0),
            {"run_name": "parse/ours/p1", "aggregate_name": "mean", "cpu_time": 9}]}
        figures = report.figures_of(run)
        self.assertEqual(report.table(figures, "parse"),
                         "| packet | ours ns | floor ns | ours/floor | allocations |\n"
                         "| --- | --- | --- | --- | --- |\n| p1 | 2,000 | 1,500 | 1.33 | 3 |\n")
        self.assertEqual(figures["hmac"]["p1"]["ours"]["share"], 0.5)
        self.assertEqual(report.table(figures, "threads"), "| p1 |\n| --- |\n| 1.50 |\n")

    def test_of_a_benchmark_that_failed_are_none(self):
        failed = {"run_name": "parse/ours/p1", "error_occurred": True}
        with self.assertRaisesRegex(SystemExit, "^did not do their work: parse/ours/p1$"):
            report.figures_of({"benchmarks": [failed]})


class Pictures(unittest.TestCase):
    def test_are_whole_and_shown_on_a_page(self):
        shown = {name for page in (ROOT / "docs").glob("*.md")
                 for name in SHOWN.findall(page.read_text(encoding="utf-8"))}
        pictures = sorted(PICTURES.glob("*.svg"))
        self.assertEqual({path.name for path in pictures}, shown)
        for path in pictures:
            with self.subTest(path.name):
                self.assertTrue(ElementTree.parse(path).getroot().tag.endswith("}svg"))


if __name__ == "__main__":
    unittest.main()
