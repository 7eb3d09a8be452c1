#!/usr/bin/env python3
"""Fails on something public without documentation.

    check_documented.py FOLDER HEADER...    FOLDER: Doxygen's XML; HEADER: the public headers

Doxygen's own warnings leave out the values of enumerations, macros, namespaces, and headers that do not say
what they hold.
"""

import pathlib
import sys
import xml.etree.ElementTree

COMPOUNDS = {"class", "struct", "union", "namespace", "concept", "file"}
VISIBLE = {"public", "protected"}


def is_documented(element):
    """Whether a comment says something about it."""
    return any("".join(element.find(name).itertext()).strip()
               for name in ("briefdescription", "detaileddescription") if element.find(name) is not None)


def named(element):
    return element.findtext("qualifiedname") or element.findtext("compoundname") or element.findtext("name")


def members(compound):
    """What can be seen of a compound, and the values of its enumerations."""
    for member in compound.iter("memberdef"):
        if member.get("prot") not in VISIBLE or (member.findtext("argsstring") or "").endswith("=delete"):
            continue
        yield named(member), member
        for value in member.iter("enumvalue"):
            yield f"{named(member)}::{value.findtext('name')}", value


def undocumented(compound):
    """The kinds and names of what has no documentation in a compound."""
    kind = compound.get("kind")
    if compound.get("prot", "public") not in VISIBLE:
        return
    if kind in COMPOUNDS and not is_documented(compound):
        yield kind, named(compound)
    for name, member in members(compound):
        if not is_documented(member):
            yield member.get("kind", "value"), name


def main():
    if len(sys.argv) < 3:
        sys.exit(__doc__)
    headers = {pathlib.Path(name).name for name in sys.argv[2:]}
    found, faults = set(), set()
    for file in sorted(pathlib.Path(sys.argv[1]).glob("*.xml")):
        for compound in xml.etree.ElementTree.parse(file).getroot().iter("compounddef"):
            if compound.get("kind") == "file":
                name = compound.findtext("compoundname")
                if name not in headers:
                    continue
                found.add(name)
            faults.update(undocumented(compound))
    faults.update(("file", name) for name in headers - found)
    for kind, name in sorted(faults):
        print(f"{kind} {name} has no documentation")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
