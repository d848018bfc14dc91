"""docs/pictures: drawings from their sources by graphviz, plots from the figures of the benchmarks; and
the tables of figures on docs/PERFORMANCE.md."""

import hashlib
import pathlib
import re
import subprocess

import plots
from plots import report

ROOT = pathlib.Path(__file__).resolve().parents[2]
PICTURES = ROOT / "docs" / "pictures"
FIGURES_PAGE = ROOT / "docs" / "PERFORMANCE.md"

TABLE = re.compile(r"^<!-- bench/figures.json: (?P<name>[\w-]+) -->\n(?:\|[^\n]*\n)*", re.MULTILINE)


def stamp(source):
    """What a drawing says of the source that it was made of."""
    digest = hashlib.sha256(source.read_bytes()).hexdigest()
    return f"<!-- drawn from {source.name}, sha256 {digest} -->"


def sources():
    return sorted(PICTURES.glob("*.dot"))


def draw():
    for source in sources():
        svg = subprocess.run(["dot", "-Tsvg", str(source)], check=True, capture_output=True,
                             text=True).stdout
        source.with_suffix(".svg").write_text(svg + stamp(source) + "\n", encoding="utf-8")


def plot():
    for name, content in plots.plots(report.kept_figures()).items():
        (PICTURES / name).write_text(content, encoding="utf-8")


def with_tables(page):
    """The page with the tables that the figures give."""
    figures = report.kept_figures()
    return TABLE.sub(lambda found: f"<!-- bench/figures.json: {found['name']} -->\n"
                     + report.table(figures, found["name"]), page)
