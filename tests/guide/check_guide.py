#!/usr/bin/env python3
"""Fails when docs/client.md shows other code than the tests of the guide compile.

A region of a source begins with the line `// [snippet: NAME]` and ends with `// [end]`. The document shows it
in a ```cpp block, the line before which is `<!-- snippet: NAME -->`. Every block has a name, and every region
is shown once.

    check_guide.py ROOT            compares
    check_guide.py ROOT --update   puts the regions into the document
"""

import pathlib
import re
import sys

REGION = re.compile(r"^// \[snippet: ([\w-]+)\]\n(.*?)^// \[end\]\n", re.M | re.S)
BLOCK = re.compile(r"^(?:<!-- snippet: ([\w-]+) -->\n)?```cpp\n(.*?)^```\n", re.M | re.S)


def regions_of(sources):
    """Name -> code, and what is wrong with the marks, for the texts of all sources."""
    regions, problems = {}, []
    for text in sources:
        for name, code in REGION.findall(text):
            if name in regions:
                problems.append(f"{name}: two regions")
            if "// [snippet:" in code:
                problems.append(f"{name}: no end")
            regions[name] = code
    if sum(text.count("// [snippet:") for text in sources) != len(regions):
        problems.append("a region has no end, or its mark is not at the beginning of a line")
    return regions, problems


def compare(document, sources):
    """What is wrong, a sentence each."""
    regions, problems = regions_of(sources)
    shown = []
    for name, code in BLOCK.findall(document):
        if not name:
            problems.append(f"a block has no name: {code.splitlines()[0] if code else 'empty'}")
        elif name not in regions:
            problems.append(f"{name}: shown, but in no source")
        elif code != regions[name]:
            problems.append(f"{name}: the document shows other code than the source has; run with --update")
        shown.append(name)
    if document.count("```cpp") != len(shown):
        problems.append("a ```cpp block is indented or not closed")
    for name in regions:
        if shown.count(name) != 1:
            problems.append(f"{name}: shown {shown.count(name)} times")
    return problems


def updated(document, sources):
    """The document with the code that the sources have."""
    regions, _ = regions_of(sources)

    def block(match):
        name = match[1]
        return f"<!-- snippet: {name} -->\n```cpp\n{regions[name]}```\n" if name in regions else match[0]

    return BLOCK.sub(block, document)


def main():
    if len(sys.argv) not in (2, 3) or sys.argv[2:] not in ([], ["--update"]):
        sys.exit(__doc__)
    root = pathlib.Path(sys.argv[1])
    guide = root / "docs/client.md"
    document = guide.read_text(encoding="utf-8")
    sources = [file.read_text(encoding="utf-8") for file in sorted((root / "tests/guide").glob("*.cpp"))]
    if sys.argv[2:]:
        document = updated(document, sources)
        guide.write_text(document, encoding="utf-8")
    problems = compare(document, sources)
    for problem in problems:
        print(f"docs/client.md: {problem}")
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
