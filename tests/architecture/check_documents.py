#!/usr/bin/env python3
"""Fails on a document with a line that is too long.

A line that cannot be broken, because it is one word (an address, say), may be longer. A table's row can be
broken: a table of sentences is better a list.

    check_documents.py ROOT       every *.md of the project
    check_documents.py FILE...    these
"""

import pathlib
import re
import sys

WIDTH = 120
# What comes before the one word of a line that cannot be broken: indentation, marks of lists and quotes.
MARKS = re.compile(r"^(\s*([-*+>#]+|\d+\.)\s)*\s*")


def long_lines(text):
    """The numbers and lengths of the lines that are too long."""
    for number, line in enumerate(text.splitlines(), 1):
        if len(line) > WIDTH and re.search(r"\s", MARKS.sub("", line).rstrip()):
            yield number, len(line)


def documents(names):
    for name in map(pathlib.Path, names):
        if not name.is_dir():
            yield name
            continue
        for file in sorted(name.rglob("*.md")):
            folders = file.relative_to(name).parts[:-1]
            if not any(folder.startswith((".", "build")) for folder in folders):
                yield file


def main():
    if len(sys.argv) < 2:
        sys.exit(__doc__)
    found = False
    for file in documents(sys.argv[1:]):
        for number, length in long_lines(file.read_text(encoding="utf-8")):
            print(f"{file}:{number}: {length} columns; documents are wrapped at {WIDTH}")
            found = True
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
