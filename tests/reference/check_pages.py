#!/usr/bin/env python3
"""Fails on a page of the built reference that leads nowhere, or that needs a network.

    check_pages.py FOLDER     all pages, scripts and style sheets in it

A link or a picture whose file or anchor is missing is an error, and so is anything that a page loads from
elsewhere. Links to other sites are not followed.
"""

import html.parser
import pathlib
import re
import sys
import urllib.parse

# Attributes whose targets are part of the page, and those that are links.
LOADED = {("script", "src"), ("img", "src"), ("iframe", "src"), ("object", "data"), ("embed", "src"),
          ("source", "src")}
LINKS = {("a", "href"), ("area", "href"), ("form", "action")}
# What the scripts of the navigation and of the search name: 'page.html', '../page.html#anchor'.
IN_SCRIPT = re.compile(r"""["']((?:\.\./)?[\w./-]+\.html(?:#[\w.:-]+)?)["']""")
IN_STYLE = re.compile(r"""url\(\s*["']?([^"')]+)["']?\s*\)""")


class Page(html.parser.HTMLParser):
    """The anchors of a page, and what it refers to."""

    def __init__(self, text):
        super().__init__()
        self.anchors = set()
        self.links = []
        self.loaded = []
        self.feed(text)
        self.close()

    def handle_starttag(self, tag, attributes):
        attributes = dict(attributes)
        for name in ("id", "name"):
            if attributes.get(name):
                self.anchors.add(attributes[name])
        for name, value in attributes.items():
            if value is None:
                continue
            if (tag, name) in LOADED or (tag == "link" and name == "href"):
                self.loaded.append(value)
            elif (tag, name) in LINKS:
                self.links.append(value)


def is_elsewhere(target):
    """Whether it names a scheme or a host: no file of the folder."""
    parts = urllib.parse.urlsplit(target)
    return bool(parts.scheme or parts.netloc)


class Pages:
    def __init__(self, folder):
        self.folder = pathlib.Path(folder).resolve()
        self.known = {}

    def page(self, file):
        if file not in self.known:
            self.known[file] = Page(file.read_text(encoding="utf-8"))
        return self.known[file]

    def fault(self, file, target):
        """What is wrong with a local target, or None."""
        parts = urllib.parse.urlsplit(target)
        place = file if not parts.path else (file.parent / urllib.parse.unquote(parts.path)).resolve()
        if not place.is_relative_to(self.folder):
            return "lies outside of the reference"
        if not place.is_file():
            return "does not exist"
        anchor = urllib.parse.unquote(parts.fragment)
        if anchor and place.suffix == ".html" and anchor not in self.page(place).anchors:
            return "has no such anchor"
        return None

    def faults_of(self, file):
        text = None
        links, loaded = [], []
        if file.suffix == ".html":
            page = self.page(file)
            links, loaded = page.links, page.loaded
        elif file.suffix == ".js":
            text = file.read_text(encoding="utf-8", errors="replace")
            links = IN_SCRIPT.findall(text)
        elif file.suffix == ".css":
            text = file.read_text(encoding="utf-8", errors="replace")
            loaded = IN_STYLE.findall(text)
        for target in dict.fromkeys(loaded):
            if target.startswith(("data:", "javascript:")):  # in the page itself
                continue
            found = "is loaded from elsewhere" if is_elsewhere(target) else self.fault(file, target)
            if found:
                yield target, found
        for target in dict.fromkeys(links):
            found = None if is_elsewhere(target) else self.fault(file, target)
            if found:
                yield target, found

    def faults(self):
        """For each fault its file, the target and what is wrong with it."""
        for file in sorted(self.folder.rglob("*")):
            if file.is_file():
                for target, found in self.faults_of(file):
                    yield file.relative_to(self.folder).as_posix(), target, found


def main():
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    pages = Pages(sys.argv[1])
    if not (pages.folder / "index.html").is_file():
        sys.exit(f"{pages.folder}: holds no reference")
    faults = list(pages.faults())
    for file, target, found in faults:
        print(f"{file}: {target} {found}")
    print(f"{len(pages.known)} pages, {len(faults)} faults")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
