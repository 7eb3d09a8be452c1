#!/usr/bin/env python3
"""Measures what including each public header costs a source file, and prints it as a table.

    include_cost.py COMPILER BUILD [ROUNDS [HEADER...]]

BUILD is a configured build folder, for the generated headers. For each header a source that includes nothing
else is compiled with -fsyntax-only, ROUNDS times (9 unless told); the median of the processor time counts. The
size is that of the preprocessed text. Without HEADER these are all public ones and nlohmann/json. The last row
is the umbrella header as a precompiled one.
"""

import pathlib
import re
import resource
import statistics
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parent.parent
UMBRELLA = "VelWhiteBoard/VelWhiteBoard.h"


def public_headers():
    """The headers that VelWhiteBoard/CMakeLists.txt lists as public, as clients write them."""
    text = (ROOT / "VelWhiteBoard/CMakeLists.txt").read_text(encoding="utf-8")
    listed = re.search(r"set\(public_headers\n(.*?)\)", text, re.DOTALL).group(1).split()
    return [f"VelWhiteBoard/{name}" for name in listed]


def seconds_of(command):
    """The processor time of a command, its child processes included."""
    before = resource.getrusage(resource.RUSAGE_CHILDREN)
    subprocess.run(command, check=True, stdout=subprocess.DEVNULL)
    after = resource.getrusage(resource.RUSAGE_CHILDREN)
    return after.ru_utime + after.ru_stime - before.ru_utime - before.ru_stime


def median(command, rounds):
    return statistics.median(seconds_of(command) for _ in range(rounds))


def size_of(compiler, options, source):
    text = subprocess.run([*compiler, *options, "-E", "-P", source], check=True, capture_output=True)
    return len(text.stdout)


def rows(compiler, build, rounds, headers, folder):
    options = ["-std=c++20", f"-I{ROOT}", f"-I{build / 'include'}"]
    source = folder / "source.cpp"
    for header in headers:
        source.write_text(f"#include <{header}>\n", encoding="utf-8")
        seconds = median([*compiler, *options, "-fsyntax-only", source], rounds)
        yield f"`{header}`", seconds, size_of(compiler, options, source)

    # A header beside its precompiled form: GCC finds the latter by itself, Clang is told.
    first = folder / "first.h"
    first.write_text(f"#include <{UMBRELLA}>\n", encoding="utf-8")
    precompiled = folder / "first.h.gch"
    subprocess.run([*compiler, *options, "-x", "c++-header", first, "-o", precompiled], check=True)
    source.write_text("", encoding="utf-8")
    use = ["-include-pch", precompiled] if "clang" in compiler[0] else ["-include", first]
    yield "the umbrella, precompiled", median([*compiler, *options, *use, "-fsyntax-only", source], rounds), None


def main():
    compiler, build = sys.argv[1].split(), pathlib.Path(sys.argv[2]).resolve()
    rounds = int(sys.argv[3]) if len(sys.argv) > 3 else 9
    headers = sys.argv[4:] or [*public_headers(), "nlohmann/json.hpp"]
    print("| Included alone | Processor time | Preprocessed |\n|---|---|---|")
    with tempfile.TemporaryDirectory() as folder:
        for what, seconds, size in rows(compiler, build, rounds, headers, pathlib.Path(folder)):
            shown = f"{size / 1e6:.2f} MB" if size is not None else ""
            print(f"| {what} | {seconds:.2f} s | {shown} |", flush=True)


if __name__ == "__main__":
    main()
