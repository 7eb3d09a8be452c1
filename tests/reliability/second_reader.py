#!/usr/bin/env python3
"""Reads property lists with Python's reader, which shares nothing with ours.

    second_reader.py FOLDER

Each NAME.plist in the folder must be a list that holds exactly what NAME.json tells of it. Says what
differs, one line a file, and exits with 1 when anything does.
"""

import json
import pathlib
import plistlib
import sys


def difference(expected, found):
    if not isinstance(found, list):
        return f"is no list but a {type(found).__name__}"
    if len(found) != len(expected):
        return f"holds {len(found)} records instead of {len(expected)}"
    for number, (want, have) in enumerate(zip(expected, found)):
        if want != have:
            return f"record {number} is {have} instead of {want}"
    return None


def main(folder):
    wrong = 0
    checked = 0
    for path in sorted(pathlib.Path(folder).glob("*.plist")):
        expected = json.loads(path.with_suffix(".json").read_text(encoding="utf-8"))
        checked += 1
        try:
            problem = difference(expected, plistlib.loads(path.read_bytes(), fmt=plistlib.FMT_XML))
        except Exception as error:  # whatever it is: the file cannot be read
            problem = f"cannot be read: {error!r}"
        if problem:
            wrong += 1
            print(f"{path.name}: {problem}")
    print(f"{checked} files read, {wrong} wrong")
    return 1 if wrong or not checked else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1]))
