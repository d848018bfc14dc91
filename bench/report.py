#!/usr/bin/env python3
"""Prints the medians of a run of radius-bench, and their ratios to the floor and to the peer.

Benchmarks are named operation/who/what; rows of the same operation and what belong together.
"""
import json
import sys

UNITS = {"ns": 1.0, "us": 1e3, "ms": 1e6}


def medians(run):
    """(operation, who, what) -> the benchmark's median record."""
    failed = [b["run_name"] for b in run["benchmarks"] if b.get("error_occurred")]
    if failed:
        sys.exit(f"did not do their work: {', '.join(failed)}")
    return {
        tuple(b["run_name"].split("/", 2)): b
        for b in run["benchmarks"]
        if b.get("aggregate_name") == "median"
    }


def nanoseconds(record):
    """Processor time of one round."""
    return record["cpu_time"] * UNITS[record["time_unit"]]


def table(head, rows):
    widths = [max(len(str(row[i])) for row in [head, *rows]) for i in range(len(head))]
    lines = [head, ["-" * w for w in widths], *rows]
    for line in lines:
        print("| " + " | ".join(str(cell).ljust(w) for cell, w in zip(line, widths)) + " |")
    print()


def ratio(ours, other):
    return f"{nanoseconds(ours) / nanoseconds(other):.2f}" if other else ""


def show_compared(results, operation):
    """One row for each thing that `operation` is done to."""
    rows = []
    for (name, who, what), ours in sorted(results.items()):
        if name != operation or who != "ours":
            continue
        floor = results.get((name, "floor", what))
        peer = results.get((name, "peer", what))
        unkept = results.get((name, "ours-unkept", what))
        row = [what, f"{nanoseconds(ours):,.0f}"]
        row += [f"{nanoseconds(other):,.0f}" if other else "" for other in (unkept, floor, peer)]
        row += [ratio(ours, floor), ratio(unkept, floor) if unkept else "", ratio(ours, peer)]
        row += [f"{r['allocations']:.0f}" if r and "allocations" in r else ""
                for r in (ours, floor, peer)]
        rows.append(row)
    if rows:
        print(f"{operation}\n")
        table(["what", "ours ns", "unkept ns", "floor ns", "peer ns", "ours/floor", "unkept/floor",
               "ours/peer",
               "allocations", "floor's", "peer's"], rows)


def show_walk(results):
    walk = results.get(("walk", "ours", "p3"))
    if walk:
        count = walk["attributes"]
        print(f"walk without digests: {nanoseconds(walk) / count:.1f} ns per attribute "
              f"({count:.0f} attributes, {walk['allocations']:.0f} allocations)\n")


def show_hmac(results):
    rows = []
    for (name, who, what), ours in sorted(results.items()):
        if name == "hmac" and who == "ours":
            kept = results.get(("hmac", "kept-context", what))
            parse = results.get(("parse", "ours", what))
            rows.append([what, f"{nanoseconds(ours):,.0f}", f"{nanoseconds(kept):,.0f}",
                         f"{nanoseconds(ours) / nanoseconds(parse):.0%}" if parse else ""])
    if rows:
        print("HMAC-MD5 over the whole packet\n")
        table(["what", "one-shot ns", "kept context ns", "one-shot's share of parse"], rows)


def show_legacy(results):
    rows = []
    for (name, who, what), legacy in sorted(results.items()):
        if who == "legacy":
            newer = results[(name, "newer", what)]
            rows.append([f"{name} {what}", f"{nanoseconds(legacy):,.0f}",
                         f"{nanoseconds(newer):,.0f}", ratio(legacy, newer),
                         f"{legacy['allocations']:.0f}", f"{newer['allocations']:.0f}"])
    if rows:
        print("the legacy interface\n")
        table(["what", "legacy ns", "newer ns", "legacy/newer", "allocations", "newer's"], rows)


def show_threads(results):
    rows = []
    for (name, who, what), two in sorted(results.items()):
        if name == "threads" and what.endswith("threads:2"):
            one = results[(name, who, what.replace("threads:2", "threads:1"))]
            factor = two["items_per_second"] / one["items_per_second"]
            rows.append([what.split("/")[0], f"{one['items_per_second']:,.0f}",
                         f"{two['items_per_second']:,.0f}", f"{factor:.2f}"])
    if rows:
        print("threads on one parser\n")
        table(["what", "one, packets/s", "two, packets/s", "factor"], rows)


def main():
    with open(sys.argv[1], encoding="utf-8") as file:
        results = medians(json.load(file))
    for operation in ("parse", "build", "build-with-header", "modify", "load"):
        show_compared(results, operation)
    show_walk(results)
    show_hmac(results)
    show_threads(results)
    show_legacy(results)


if __name__ == "__main__":
    main()
