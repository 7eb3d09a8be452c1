#!/usr/bin/env python3
"""Mends two kinds of links that Doxygen 1.9 gets wrong in the built reference.

    mend_pages.py FOLDER

- What belongs to a topic is described on the topic's page, but below a header the tree leads to the header's
  page, to an anchor that is not there. It is led to the topic.
- The page of a class whose nested classes are all private has a link to a list of them, which is not there.
  The link is taken out.
"""

import pathlib
import re
import sys

ANCHOR = re.compile(r'<a id="(g?ga[0-9a-f]+)"')
IN_TREE = re.compile(r'"(\w+_8h\.html)#(g?ga[0-9a-f]+)"')
TO_NESTED = re.compile(r'<a href="#nested-classes">[^<]*</a>\s*&#124;\s*')


def replace(file, change):
    text = file.read_text(encoding="utf-8")
    changed = change(text)
    if changed != text:
        file.write_text(changed, encoding="utf-8")


def main():
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    folder = pathlib.Path(sys.argv[1])
    topics = {}
    for page in folder.glob("group__*.html"):
        for anchor in ANCHOR.findall(page.read_text(encoding="utf-8")):
            topics[anchor] = page.name
    for tree in folder.glob("*_8h.js"):
        replace(tree, lambda text: IN_TREE.sub(lambda found: f'"{topics.get(found[2], found[1])}#{found[2]}"', text))
    for page in folder.glob("class*.html"):
        replace(page, lambda text: text if 'id="nested-classes"' in text else TO_NESTED.sub("", text))


if __name__ == "__main__":
    main()
