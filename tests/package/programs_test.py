#!/usr/bin/env python3
"""Fails when an installed program does not say its version, or when its manual page or the completion of
its options leaves out an option that --help names.

    programs_test.py PREFIX VERSION PROGRAM...
"""

import pathlib
import re
import subprocess
import sys


def options_of(text):
    """The long options that stand in a text; a manual page writes its hyphens with a backslash."""
    return set(re.findall(r"--[a-z][a-z-]*", text.replace("\\-", "-")))


def output_of(program, option):
    return subprocess.run([program, option], check=True, capture_output=True, text=True,
                          timeout=60).stdout


def problems(prefix, version, name):
    program = prefix / "bin" / name
    if output_of(program, "--version").strip() != f"{name} {version}":
        yield f"{name} --version does not say '{name} {version}'"
    asked = options_of(output_of(program, "--help")) - {"--help-all"}
    for path in (f"share/man/man1/{name}.1", f"share/bash-completion/completions/{name}"):
        told = options_of((prefix / path).read_text(encoding="utf-8"))
        for option in sorted(asked - told):
            yield f"{path} leaves out {option}"
        for option in sorted(told - asked):
            yield f"{path} names {option}, which {name} has not"
    page = subprocess.run(["groff", "-man", "-ww", "-z", prefix / f"share/man/man1/{name}.1"],
                          capture_output=True, text=True)
    if page.returncode != 0 or page.stderr:
        yield f"{name}.1: {page.stderr or page.returncode}"


def main():
    prefix, version, names = pathlib.Path(sys.argv[1]), sys.argv[2], sys.argv[3:]
    found = [problem for name in names for problem in problems(prefix, version, name)]
    print("\n".join(found) or f"{', '.join(names)}: version, manual page and completion")
    return 1 if found or not names else 0


sys.exit(main())
