"""Reads property lists with the system's strict reader and compares them with what another reader
made of them.

usage: strict_reader.py FOLDER

FOLDER holds pairs NUMBER.plist and NUMBER.json; the JSON file is an object with the "name" of the
property list where it came from and the "records" that were read from it. A note that is "odd" is of
records whose class is not the one that a reader chooses, so only the keys that both have count.
Prints a line for each difference; exit status 1 when there is one.
"""

import json
import math
import pathlib
import plistlib
import sys


def same(left, right):
    """Equality in which true is not 1 and -0.0 is not 0; a whole real may be an integer in JSON."""
    if isinstance(left, bool) or isinstance(right, bool):
        return left is right
    if isinstance(left, dict) and isinstance(right, dict):
        return left.keys() == right.keys() and all(same(left[key], right[key]) for key in left)
    if isinstance(left, list) and isinstance(right, list):
        return len(left) == len(right) and all(map(same, left, right))
    if isinstance(left, float) and isinstance(right, (int, float)):
        return left == right and math.copysign(1, left) == math.copysign(1, right)
    return type(left) is type(right) and left == right


def finding(plist, note):
    """What is wrong with one file; nothing when all is well."""
    try:
        with plist.open("rb") as file:
            strict = plistlib.load(file, fmt=plistlib.FMT_XML)
    except Exception as error:  # whatever it is, the file is not what it should be
        return f"unreadable: {error!r}"
    records = note["records"]
    if not isinstance(strict, list):
        return "the top is no array"
    if len(strict) != len(records):
        return f"{len(strict)} elements, the other reader found {len(records)}"
    for index, (left, right) in enumerate(zip(strict, records)):
        if note["odd"]:
            common = left.keys() & right.keys()
            left = {key: left[key] for key in common}
            right = {key: right[key] for key in common}
        if not same(left, right):
            return f"element {index} is {left}, the other reader found {right}"
    return None


def main(folder):
    failed = False
    notes = sorted(pathlib.Path(folder).glob("*.json"))
    for path in notes:
        note = json.loads(path.read_text(encoding="utf-8"))
        wrong = finding(path.with_suffix(".plist"), note)
        if wrong:
            failed = True
            print(f"{note['name']}: {wrong}")
    print(f"{len(notes)} property lists read", file=sys.stderr)
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1]))
