#!/usr/bin/env python3
"""Writes a document of the project as Doxygen's Markdown wants it. Doxygen's filter for *.md.

    page_filter.py FILE

Each heading gets a label. A link to a document or to a heading becomes a reference to its label, a link to
any other file of the project plain text: the pages of the reference are read without the sources beside
them.
"""

import os.path
import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parents[2]
# Where links to a folder lead.
PAGES_OF_FOLDERS = {"VelWhiteBoard": "modules.html"}
# Documents whose heading says too little among others.
TITLES = {"README.md": "About the library"}
# Classes whose names are English words. Doxygen would take each such word at the start of a sentence for
# the class.
WORDS = "Coder|Path|Point|Property|Record|Rect|Size"

FENCED = re.compile(r"^([ \t]*)(```+|~~~+).*?^\1\2[ \t]*$\n?", re.MULTILINE | re.DOTALL)
CODE = re.compile(r"(?<!`)(`+)(?!`)(.+?)(?<!`)\1(?!`)", re.DOTALL)
COMMENT = re.compile(r"<!--.*?-->", re.DOTALL)
LINK = re.compile(r"(!?)\[([^\]]*)\]\(([^)\s]+)\)")
HEADING = re.compile(r"^(#+) +(.+?)[ \t]*$", re.MULTILINE)
KEPT = re.compile("\0([0-9]+)\0")


def slug(heading):
    """What a link to the heading says after the number sign."""
    return re.sub(r"[^\w -]", "", heading.replace("`", "").lower()).replace(" ", "-")


def page_label(path):
    """The label of a document, and the name of its page; `path` begins at the project's folder."""
    path = pathlib.PurePosixPath(path)
    name = path.parent.name or "readme" if path.stem == "README" else path.stem
    return "page_" + name.lower().replace("-", "_")


def title(path):
    """What a document is called."""
    return TITLES.get(path) or HEADING.search((ROOT / path).read_text(encoding="utf-8")).group(2)


def label(path, heading):
    return f"{page_label(path)}_{heading.replace('-', '_')}" if heading else page_label(path)


class Page:
    def __init__(self, path, text):
        self.path = path
        self.text = text
        self.kept = []

    def keep(self, match):
        """Takes out what is not to be changed."""
        self.kept.append(match.group())
        return f"\0{len(self.kept) - 1}\0"

    def restored(self, text, links=False):
        """Puts back what was kept; with `links`, code that is the name of a class leads to the class."""
        def put(match):
            kept = self.kept[int(match.group(1))]
            name = kept.strip("`")
            linked = f'<code>@ref VelWhiteBoard::{name} "{name}"</code>'
            return linked if links and name in CLASSES else kept

        return KEPT.sub(put, text)

    def link(self, match):
        mark, text, target = match.groups()
        text = self.restored(text)
        if mark:  # Doxygen finds pictures by their names alone
            return f"![{text}]({pathlib.PurePosixPath(target).name})"
        if re.match(r"[a-z]+:", target):
            return match.group()
        file, _, heading = target.partition("#")
        place = os.path.normpath(os.path.join(os.path.dirname(self.path), file)) if file else self.path
        if place.endswith(".md") and page_label(place) in PAGES:
            shown = title(place) if text.endswith(".md") else text
            return f"[{shown}](@ref {label(place, heading)})"
        if place in PAGES_OF_FOLDERS:
            return f"[{text}]({PAGES_OF_FOLDERS[place]})"
        if not (ROOT / place).exists():
            return f"[{text}](@ref missing_file_{slug(place)})"  # Doxygen says that it finds nothing
        return text if text.strip("`") == place else f"{text} (`{place}`)"

    def heading(self, match):
        marks, text = match.groups()
        text = self.restored(text)
        if marks == "#":
            text = TITLES.get(self.path, text)
        name = label(self.path, "" if marks == "#" else slug(text))
        return f"{marks} {text} {{#{name}}}"

    def filtered(self):
        text = self.text
        for kept in FENCED, COMMENT, CODE:
            text = kept.sub(self.keep, text)
        text = HEADING.sub(self.heading, LINK.sub(self.link, text))
        text = re.sub(r"(?<![\w#&{])#(?=\w)", r"\\#", text)  # a colour, no link
        text = re.sub(rf"(?<![\w:%/.-])(?=({WORDS})\b(?!::))", "%", text)
        return self.restored(text, links=True)


def documents():
    """The documents that the Doxyfile names."""
    return [*ROOT.glob("*.md"), *ROOT.glob("docs/*.md")]


CLASSES = set()
for header in ROOT.glob("VelWhiteBoard/**/*.h"):
    text = header.read_text(encoding="utf-8")
    CLASSES.update(re.findall(r"^class VELWHITEBOARD_EXPORT (\w+)", text, re.MULTILINE))
PAGES = {page_label(file.relative_to(ROOT).as_posix()) for file in documents()}

if __name__ == "__main__":
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    given = pathlib.Path(sys.argv[1]).resolve()
    sys.stdout.write(Page(given.relative_to(ROOT).as_posix(), given.read_text(encoding="utf-8")).filtered())
