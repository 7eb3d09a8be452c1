#!/usr/bin/env python3
"""Fails on an #include that points against the arrows of the architecture.

ROOMS lists the folders of the library from the bottom up, each with the rooms below that it may look
at beside itself. Nothing points upward, and nothing outside storage/ looks at storage/. The umbrella
header is for clients only.

    check_includes.py ROOT [--public HEADER...]

HEADER is a path below ROOT. Public headers must be usable after installation: they include no
internal header and, of all other libraries, only nlohmann/json. Example programs and the Python module
are clients: of the library they include public headers only; board_check alone looks at files more
closely than a client can.
"""

import argparse
import pathlib
import re
import sys

LIBRARY = "VelWhiteBoard"
NO_CLIENT = pathlib.PurePath("examples/board_check")
UMBRELLA = f"{LIBRARY}/VelWhiteBoard.h"
GENERATED = {f"{LIBRARY}/foundation/export.h"}
FOUNDATION = ["foundation", "foundation/values", "foundation/queue", "foundation/text",
              "foundation/records", "foundation/json", "foundation/plist", "foundation/files"]
ROOMS = {
    "foundation": [],  # the generated header of exports
    "foundation/values": ["foundation"],
    "foundation/queue": ["foundation", "foundation/values"],
    "foundation/text": ["foundation/values"],
    "foundation/records": ["foundation", "foundation/values", "foundation/text"],
    "foundation/json": ["foundation/values", "foundation/text", "foundation/records"],
    "foundation/plist": ["foundation/values", "foundation/text", "foundation/records"],
    "foundation/files": ["foundation", "foundation/values", "foundation/queue"],
    "vectors": FOUNDATION,
    "services": [*FOUNDATION, "vectors"],
    "tools": [*FOUNDATION, "vectors", "services"],
    "storage/lists": [*FOUNDATION, "vectors"],
    "storage/files": [*FOUNDATION, "vectors", "services", "storage/lists"],
    "storage": [*FOUNDATION, "vectors", "services", "tools", "storage/lists", "storage/files"],
}

PUBLIC_HEADERS_MAY_SHOW = re.compile(r"nlohmann/")

INCLUDE = re.compile(r'^\s*#\s*include\s*([<"])([^>"]+)[>"]', re.MULTILINE)
COMMENT = re.compile(r"/\*.*?\*/|//[^\n]*", re.DOTALL)


def includes_of(file):
    """Yields (line number, '<' or '"', target) for each #include of the file, comments aside."""
    text = file.read_text(encoding="utf-8")
    # An include path holds no comment mark, so comments can go first; their line breaks must stay.
    text = COMMENT.sub(lambda m: "\n" * m.group().count("\n"), text)
    for match in INCLUDE.finditer(text):
        line = text.count("\n", 0, match.start(1)) + 1
        yield line, match.group(1), match.group(2)


def is_library(target):
    return target.startswith(f"{LIBRARY}/")


def room_of(name):
    """The room of a file of the library; empty for the umbrella."""
    return name.rsplit("/", 1)[0].removeprefix(LIBRARY).removeprefix("/")


def wrong_within_library(name, target, known):
    """What is wrong with the include of `target` in the library's file `name`, or None."""
    if not is_library(target):
        return None
    if target not in known and target not in GENERATED:
        return "no such file"
    if name == UMBRELLA:
        return None
    if target == UMBRELLA:
        return "the umbrella header is for clients"
    room = room_of(name)
    if room_of(target) not in [room, *ROOMS[room]]:
        return f"{room}/ may include only {', '.join([room, *ROOMS[room]])}"
    return None


def wrong_in_public_header(target, quote, public):
    if is_library(target):
        return None if target in public | GENERATED else "an internal header in a public one"
    if quote == "<" and "/" not in target and not target.endswith(".h"):
        return None  # standard library
    if PUBLIC_HEADERS_MAY_SHOW.match(target):
        return None
    return "a public header shows no library but nlohmann/json"


def violations(root, public):
    root = pathlib.Path(root)
    public = set(public)
    files = sorted(f for f in (root / LIBRARY).rglob("*") if f.suffix in {".h", ".cpp"})
    known = {f.relative_to(root).as_posix() for f in files}
    for file in files:
        name = file.relative_to(root).as_posix()
        if name != UMBRELLA and room_of(name) not in ROOMS:
            yield f"{name}: is in no room; the rooms are: {', '.join(ROOMS)}"
            continue
        for line, quote, target in includes_of(file):
            wrong = None
            if quote == '"' and not is_library(target):
                wrong = f'includes are written from the root: "{LIBRARY}/..."'
            elif quote == "<" and is_library(target):
                wrong = "the library includes its own files with quotes"
            wrong = wrong or wrong_within_library(name, target, known)
            if not wrong and name in public:
                wrong = wrong_in_public_header(target, quote, public)
            if wrong:
                yield f"{name}:{line}: {target}: {wrong}"
    for file in sorted(file for top in ("examples", "python") for file in (root / top).rglob("*")):
        if NO_CLIENT in file.relative_to(root).parents:
            continue
        if public and file.suffix in {".h", ".cpp"}:
            for line, _, target in includes_of(file):
                if is_library(target) and target not in public | GENERATED:
                    yield f"{file.relative_to(root)}:{line}: {target}: not a public header"


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("root", type=pathlib.Path)
    parser.add_argument("--public", nargs="*", default=[], metavar="HEADER")
    arguments = parser.parse_args()
    if not (arguments.root / LIBRARY / "foundation").is_dir():
        parser.error(f"{arguments.root} holds no {LIBRARY}/foundation")
    found = list(violations(arguments.root, arguments.public))
    print("\n".join(found) or "every #include follows the arrows")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
