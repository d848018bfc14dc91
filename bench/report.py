#!/usr/bin/env python3
"""Prints the medians of a run of radius-bench, and their ratios to the floor and to the peer.

    report.py RESULT             the tables of a run, as radius-bench writes it in JSON
    report.py RESULT --keep      also puts its figures into bench/figures.json, from which
                                 scripts/pages makes the tables and plots of docs/PERFORMANCE.md

Benchmarks are named operation/who/what; rows of the same operation and what belong together.
"""
import json
import pathlib
import sys

KEPT = pathlib.Path(__file__).with_name("figures.json")
UNITS = {"ns": 1.0, "us": 1e3, "ms": 1e6}

# What we aim at: at most so many times the time of another.
AIMS = {
    "parse": {"floor": {"p1": 1.35, "p2": 1.25, "p3": 2.5, "p4": 1.05},
              "peer": {"p1": 0.55, "p2": 0.55, "p3": 0.55, "p4": 1.0}},
    "build": {"floor": {"p1": 1.3, "p2": 1.25, "p3": 1.6, "p4": 1.05}},
}


def figures_of(run):
    """operation -> what -> who -> the medians of that benchmark: `ns` of processor time a round, and
    what it counted."""
    failed = [b["run_name"] for b in run["benchmarks"] if b.get("error_occurred")]
    if failed:
        sys.exit(f"did not do their work: {', '.join(failed)}")
    figures = {}
    for record in run["benchmarks"]:
        if record.get("aggregate_name") != "median":
            continue
        operation, who, what = record["run_name"].split("/", 2)
        kept = {"ns": round(record["cpu_time"] * UNITS[record["time_unit"]], 1)}
        for count in ("allocations", "attributes"):
            if count in record:
                kept[count] = round(record[count])
        if operation == "threads":
            what, _, threads = what.partition("/")
            who = "two" if threads.endswith("threads:2") else "one"
            kept = {"packets a second": round(record["items_per_second"])}
        figures.setdefault(operation, {}).setdefault(what, {})[who] = kept
    for what, row in figures.get("threads", {}).items():
        one, two = (row[who]["packets a second"] for who in ("one", "two"))
        row["two"]["factor"] = round(two / one, 2)
    for what, row in figures.get("hmac", {}).items():
        parse = figures.get("parse", {}).get(what)
        if parse:
            row["ours"]["share"] = round(row["ours"]["ns"] / parse["ours"]["ns"], 3)
    return figures


def kept_figures():
    return json.loads(KEPT.read_text(encoding="utf-8"))


def time(record):
    return f"{record['ns']:,.0f}" if record else ""


def ratio(row, ours, other):
    return f"{row[ours]['ns'] / row[other]['ns']:.2f}" if ours in row and other in row else ""


def count(record):
    return str(record["allocations"]) if record and "allocations" in record else ""


def without_empty_columns(head, rows):
    used = [i for i, _ in enumerate(head) if any(row[i] for row in rows)]
    return [head[i] for i in used], [[row[i] for i in used] for row in rows]


def compared(figures, operation):
    """One row for each thing that `operation` is done to."""
    aims = AIMS.get(operation, {}).get("floor", {}) if operation == "build" else {}
    rows = []
    for what, row in sorted(figures.get(operation, {}).items()):
        rows.append([what, *(time(row.get(who)) for who in ("ours", "ours-unkept", "floor", "peer")),
                     ratio(row, "ours", "floor"), str(aims.get(what, "")),
                     ratio(row, "ours-unkept", "floor"), ratio(row, "ours", "peer"),
                     *(count(row.get(who)) for who in ("ours", "floor", "peer"))])
    return without_empty_columns(
        ["packet", "ours ns", "unkept ns", "floor ns", "peer ns", "ours/floor", "aim",
         "unkept/floor", "ours/peer", "allocations", "floor's", "peer's"], rows)


def aims(figures, operation="parse"):
    """What is aimed at, and what is reached, under each other."""
    whats = sorted(figures.get(operation, {}))
    rows = []
    for other, words in (("floor", "at most so many times the floor"),
                         ("peer", "at most so much of the peer's time")):
        rows.append([words, *(str(AIMS[operation][other].get(what, "")) for what in whats)])
        rows.append(["reached", *(ratio(figures[operation][what], "ours", other)
                                  for what in whats)])
    return ["", *whats], rows


def hmac(figures):
    rows = [[what, time(row["ours"]), time(row["kept-context"]),
             f"{row['ours']['share']:.0%}" if "share" in row["ours"] else ""]
            for what, row in sorted(figures.get("hmac", {}).items())]
    return ["packet", "one-shot ns", "kept context ns", "one-shot's share of \"ours\""], rows


def legacy(figures):
    rows = [[f"{operation} {what}", time(row["legacy"]), time(row["newer"]),
             ratio(row, "legacy", "newer"), count(row["legacy"]), count(row["newer"])]
            for operation in ("read", "edit")
            for what, row in sorted(figures.get(operation, {}).items()) if "legacy" in row]
    return ["", "legacy ns", "newer ns", "legacy/newer", "allocations", "newer's"], rows


def threads(figures):
    whats = sorted(figures.get("threads", {}))
    factors = [f"{figures['threads'][what]['two']['factor']:.2f}" for what in whats]
    return whats, [factors] if whats else []


TABLES = {
    "parse": lambda figures: compared(figures, "parse"),
    "aims": aims,
    "build": lambda figures: compared(figures, "build"),
    "build-with-header": lambda figures: compared(figures, "build-with-header"),
    "modify": lambda figures: compared(figures, "modify"),
    "load": lambda figures: compared(figures, "load"),
    "hmac": hmac,
    "threads": threads,
    "legacy": legacy,
}


def table(figures, name):
    """A table of TABLES as Markdown; empty when the figures have nothing for it."""
    head, rows = TABLES[name](figures)
    if not rows:
        return ""
    lines = [head, ["---"] * len(head), *rows]
    return "".join("| " + " | ".join(cells) + " |\n" for cells in lines)


def main():
    arguments = sys.argv[1:]
    keep = "--keep" in arguments
    figures = figures_of(json.loads(pathlib.Path(
        next(one for one in arguments if one != "--keep")).read_text(encoding="utf-8")))
    for name in TABLES:
        if name != "aims" or "parse" in figures:
            text = table(figures, name)
            print(f"{name}\n\n{text}" if text else "", end="\n" if text else "")
    walk = figures.get("walk", {}).get("p3", {}).get("ours")
    if walk:
        print(f"walk without digests: {walk['ns'] / walk['attributes']:.1f} ns per attribute "
              f"({walk['attributes']} attributes, {walk['allocations']} allocations)")
    if keep:
        KEPT.write_text(json.dumps(figures, indent=1) + "\n", encoding="utf-8")


if __name__ == "__main__":
    main()
