#!/usr/bin/env python3
"""Compares what a shared library exports with a list, so that nothing comes or goes unseen.

    check_symbols.py NM LIBRARY LIST             fails on a name that is new or gone
    check_symbols.py NM LIBRARY LIST --update    writes the list anew

A name in the list is shortened to what a reader needs, so that it is the same for every compiler.
"""

import pathlib
import re
import subprocess
import sys

# Arguments of the standard library's templates that are nearly always the default.
DEFAULTS = re.compile(r"^std::(allocator|char_traits|equal_to|hash|less|default_delete)<")
JSON = re.compile(r"nlohmann::basic_json<std::map, std::vector, std::string, [^<>]*<[^<>]*>[^<>]*>")
# Objects inside of functions of the standard library; exports.map says why it shows them. They depend on the compiler.
OF_THE_STANDARD_LIBRARY = re.compile(r"^_Z(GVZ|Z)NSt")

HEADING = """\
# What the shared library exports on 64-bit Linux. A line that comes is a promise to clients, a line that
# goes breaks those that are built. Default template arguments are left out. To write it anew:
#   cmake --build --preset dev --target update_exported_symbols
"""


def arguments(text):
    """Splits 'a, b<c, d>>rest' after a '<': the arguments, and the rest behind the closing bracket."""
    found, depth, begin = [], 0, 0
    for place, sign in enumerate(text):
        if sign in "<(":
            depth += 1
        elif sign == ")" or (sign == ">" and depth > 0):
            depth -= 1
        elif sign == ">" or (sign == "," and depth == 0):
            found.append(text[begin:place].strip())
            begin = place + 1
            if sign == ">":
                return found, text[begin:]
    raise ValueError(f"no end of the template arguments in {text}")


def without_defaults(name):
    opening = re.search(r"\w<(?!<|=)", name)
    if opening is None or name[: opening.end() - 1].endswith("operator"):
        return name
    inner, rest = arguments(name[opening.end():])
    kept = [without_defaults(each) for each in inner if not DEFAULTS.match(each)]
    return f"{name[:opening.end()]}{', '.join(kept)}>{without_defaults(rest)}"


def shortened(name):
    """A demangled name as it stands in the list."""
    name = re.sub(r"\[abi:\w+\]", "", name)
    name = re.sub(r"\bstd::(__cxx11|_V2|__1)::", "std::", name)
    name = re.sub(r"\bnlohmann::json_abi\w*::", "nlohmann::", name)
    name = re.sub(r", 18446744073709551615ul>", ">", name)
    name = without_defaults(name)
    name = name.replace("std::basic_string<char>", "std::string")
    name = name.replace("std::basic_string_view<char>", "std::string_view")
    return JSON.sub("nlohmann::json", name)


def exported(nm, library):
    """The sorted names that the library exports; the variants of one constructor count as one."""
    def column(*options):
        command = [nm, "--dynamic", "--defined-only", "--no-sort", *options, library]
        lines = subprocess.run(command, check=True, capture_output=True, text=True).stdout.splitlines()
        return [line.split(maxsplit=2)[2] for line in lines]

    return sorted({shortened(name) for mangled, name in zip(column(), column("--demangle"))
                   if not OF_THE_STANDARD_LIBRARY.match(mangled)})


def complaints(names, listed):
    for name in sorted(set(names) - set(listed)):
        yield f"new:  {name}"
    for name in sorted(set(listed) - set(names)):
        yield f"gone: {name}"


def listed_in(file):
    return [line for line in file.read_text(encoding="utf-8").splitlines() if line and not line.startswith("#")]


def main():
    if len(sys.argv) not in (4, 5) or sys.argv[4:] not in ([], ["--update"]):
        sys.exit(__doc__)
    nm, library, file = sys.argv[1], sys.argv[2], pathlib.Path(sys.argv[3])
    names = exported(nm, library)
    if not names:
        sys.exit(f"{library} exports nothing")
    if sys.argv[4:]:
        file.write_text(HEADING + "\n".join(names) + "\n", encoding="utf-8")
        print(f"{file.name}: {len(names)} names")
        return 0
    found = list(complaints(names, listed_in(file)))
    print("\n".join(found) or f"exactly the {len(names)} names of {file.name}")
    if found:
        print(HEADING, end="")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
