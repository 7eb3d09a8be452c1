#!/usr/bin/env python3
"""Fails on a source file that no CMakeLists.txt names.

Lists of sources are written by hand, so a file can be forgotten; a forgotten test passes forever.

    check_lists.py ROOT
"""

import pathlib
import re
import sys

FOLDERS = ["VelWhiteBoard", "tests", "examples", "benchmarks", "fuzz", "python"]


def listed_names(cmake_file):
    """The words of a CMakeLists.txt, comments aside."""
    text = re.sub(r"#[^\n]*", "", cmake_file.read_text(encoding="utf-8"))
    return set(re.findall(r"[\w./+-]+", text))


def is_listed(file, root):
    """Whether a CMakeLists.txt of the file's folder, or of one above it, names the file."""
    for folder in file.parents:
        cmake_file = folder / "CMakeLists.txt"
        if cmake_file.is_file():
            if file.relative_to(folder).as_posix() in listed_names(cmake_file):
                return True
        if folder == root:
            return False
    return False


def forgotten(root):
    for top in FOLDERS:
        for file in sorted((root / top).rglob("*")):
            # Outside the library a header comes in through the source that includes it.
            wanted = file.suffix == ".cpp" or (file.suffix == ".h" and top == "VelWhiteBoard")
            if wanted and not is_listed(file, root):
                yield file.relative_to(root).as_posix()


def main():
    if len(sys.argv) != 2 or not (pathlib.Path(sys.argv[1]) / "VelWhiteBoard").is_dir():
        sys.exit(__doc__)
    found = list(forgotten(pathlib.Path(sys.argv[1]).resolve()))
    for name in found:
        print(f"{name}: named in no CMakeLists.txt")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
