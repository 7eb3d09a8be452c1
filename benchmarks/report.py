#!/usr/bin/env python3
"""Measures everything and prints it as a table: figure, baseline, ratio, what is held, verdict, what is wished.

    report.py FOLDER [DOCUMENT]

FOLDER is where the benchmark programs are. The table goes into DOCUMENT too, between the two marks there.
Fails when a held figure is missed by more than 25 %. A wished one never fails.
"""

import math
import pathlib
import re
import sys

import results
import targets

TOLERATED = 0.25  # how far beyond its held figure a number may be before it counts as a failure


def shown(number):
    if abs(number) >= 100 or number == int(number):
        return f"{number:,.0f}"
    return f"{number:.3g}" if abs(number) < 1 else f"{number:.2f}"


def verdict(target, measured):
    if target.held is None:
        return ""
    excess = target.is_missed_by(measured)
    if excess == 0:
        return "met"
    by = f" by {excess:.0%}" if excess < math.inf else ""
    return f"{'missed' if excess <= TOLERATED else 'MISSED'}{by}"


def limit(target, number):
    meant = {"times": " x", "more": f" {target.unit} more", "itself": f" {target.unit}"}[target.relation]
    return f"{shown(number)}{meant}"


def wish(target, measured):
    if target.wished is None:
        return ""
    return f"{limit(target, target.wished)}, {'reached' if target.is_wish_met(measured) else 'not yet'}"


HEAD = ["What", "Figure", "Baseline", "Ratio", "Held", "Verdict", "Wished"]


def row(target, measured):
    figure = target.figure(measured)
    baseline = target.baseline(measured) if target.baseline else None
    return [
        target.what,
        f"{shown(figure)} {target.unit}",
        f"{shown(baseline)} {target.unit}" if baseline is not None else "",
        f"{shown(figure / baseline)} x" if baseline is not None else "",
        limit(target, target.held) if target.held is not None else "",
        verdict(target, measured),
        wish(target, measured),
    ]


def failures(all_targets, measured):
    return [target.what for target in all_targets if target.is_missed_by(measured) > TOLERATED]


def as_table(rows, aligned):
    """The rows in Markdown; aligned for a terminal, otherwise as narrow as a document wants its lines."""
    widths = [max(len(each[column]) for each in rows) if aligned else 1 for column in range(len(rows[0]))]
    lines = ["| " + " | ".join(text.ljust(width) for text, width in zip(each, widths)) + " |" for each in rows]
    lines.insert(1, "|" + "|".join("-" * (width + 2) for width in widths) + "|")
    return "\n".join(lines)


def with_table(document, table):
    """The document with another table between its marks."""
    marks = re.compile(r"(<!-- figures: begin -->\n).*?(<!-- figures: end -->)", re.S)
    text, count = marks.subn(lambda found: found[1] + table + "\n" + found[2], document)
    if count != 1:
        raise ValueError("the document has no marks for the table")
    return text


def main():
    if len(sys.argv) not in (2, 3) or not pathlib.Path(sys.argv[1]).is_dir():
        sys.exit(__doc__)
    measured = results.Results()
    measured.run_all(pathlib.Path(sys.argv[1]).resolve(), lambda what: print(what, file=sys.stderr, flush=True))
    rows = [HEAD, *(row(target, measured) for target in targets.TARGETS)]
    print(as_table(rows, aligned=True))
    for document in map(pathlib.Path, sys.argv[2:]):
        text = with_table(document.read_text(encoding="utf-8"), as_table(rows, aligned=False))
        document.write_text(text, encoding="utf-8")
    failed = failures(targets.TARGETS, measured)
    for what in failed:
        print(f"missed by more than {TOLERATED:.0%}: {what}", file=sys.stderr)
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
