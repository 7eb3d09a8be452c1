#!/usr/bin/env python3
"""Measures everything and prints it as a table: figure, baseline, ratio, target, verdict.

    report.py FOLDER    where the benchmark programs are; fails when a target is missed by more than 25 %
"""

import pathlib
import sys

import results
import targets

TOLERATED = 0.25  # how far beyond its target a number may be before it counts as a failure


def shown(number):
    if abs(number) >= 100:
        return f"{number:,.0f}"
    return f"{number:.3g}" if abs(number) < 1 else f"{number:.2f}"


def verdict(number, limit):
    excess = number / limit - 1
    if excess <= 0:
        return "met"
    return f"{'missed' if excess <= TOLERATED else 'MISSED'} by {excess:.0%}"


def row(target, measured):
    number = target.number(measured)
    baseline = shown(target.baseline(measured)) if target.baseline else ""
    limit = shown(target.limit)
    if target.baseline is None:
        ratio, limit = "", f"{limit} {target.unit}"
    else:
        ratio = shown(number) + (" x" if target.relation == "x" else f" {target.unit} more")
        limit += " x" if target.relation == "x" else f" {target.unit} more"
    return [target.what, f"{shown(target.figure(measured))} {target.unit}", baseline, ratio, limit,
            verdict(number, target.limit)]


def as_table(rows):
    widths = [max(len(each[column]) for each in rows) for column in range(len(rows[0]))]
    lines = ["| " + " | ".join(text.ljust(width) for text, width in zip(each, widths)) + " |" for each in rows]
    lines.insert(1, "|" + "|".join("-" * (width + 2) for width in widths) + "|")
    return "\n".join(lines)


def main():
    if len(sys.argv) != 2 or not pathlib.Path(sys.argv[1]).is_dir():
        sys.exit(__doc__)
    measured = results.Results()
    measured.run_all(pathlib.Path(sys.argv[1]).resolve(), lambda what: print(what, file=sys.stderr, flush=True))
    print(as_table([["What", "Figure", "Baseline", "Ratio", "Target", "Verdict"],
                    *(row(target, measured) for target in targets.TARGETS)]))
    failed = [each.what for each in targets.TARGETS if each.number(measured) > each.limit * (1 + TOLERATED)]
    for what in failed:
        print(f"missed by more than {TOLERATED:.0%}: {what}", file=sys.stderr)
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
