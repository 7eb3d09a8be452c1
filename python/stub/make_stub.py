#!/usr/bin/env python3
"""Writes the type stub of the module velwhiteboard from the module itself.

    make_stub.py FILE            writes it
    make_stub.py FILE --check    fails when the file is not what would be written
"""

import inspect
import pathlib
import re
import sys
import types

import velwhiteboard

HEAD = '''"""Written by python/stub/make_stub.py: the target update_python_stub does it again."""
import os
from collections.abc import Callable, Iterable, Mapping, Sequence
from typing import Any, Self

__version__: str
'''
# The type of a property of each kind: as it is read, and as it may be set where that is more.
KINDS = {
    "text": ("str | None", None), "real": ("float", None), "signed": ("int", None), "unsigned": ("int", None),
    "boolean": ("bool", None), "path": ("list[list[float]] | None", "Sequence[Sequence[float]] | None"),
    "free": ("list[Any] | None", "Sequence[Any] | None"), "items": ("list[Any] | None", "Sequence[Any] | None"),
}
# What a signature of the extension leaves open, by its class (none for a function) and name.
ARGUMENTS = {"path": "str | bytes | os.PathLike[str]", "texts": "Iterable[str]", "ignore": "bool",
             "dictionary": "dict[str, Any]", "vectors": "Sequence[VelWbBaseVector]", "memo": "Any"}
OBSERVERS = {"set_change_observer": "Callable[[ChangeReport], Any] | None",
             "set_write_observer": "Callable[[WriteReport], Any] | None"}
MAY_BE_NONE = {("Storage", "current_page"), ("Storage", "entry"), ("EntryChange", "entry"), (None, "record_from_json"),
               ("VelWbVecSwitchPage", "page_from_info")}
RETURNS = {"dict": "dict[str, Any]", "str": "str", "object": "Any", "list": "list[str]"}


def clean(text):
    """A type of the extension's signatures as the stub says it."""
    text = text.replace("velwhiteboard.", "").replace("List[", "list[")
    return RETURNS.get(text, text)


def parts_of(function):
    """The arguments (name, type, default) and the result by the signature in the documentation."""
    match = re.match(r"\w+\((.*)\) -> (.*)", (function.__doc__ or "").splitlines()[0])
    arguments = []
    for part in filter(None, re.split(r", (?=\*|\w+:)", match[1])):
        name, _, rest = part.partition(": ")
        kind, _, default = rest.partition(" = ")
        arguments.append((name, kind, default))
    return arguments, match[2]


def definition(owner, name, function, indent=""):
    arguments, result = parts_of(function)
    result = clean(result)
    if (owner, name) in MAY_BE_NONE or name == "from_json":
        result += " | None"
    texts = []
    is_static = owner is not None and (not arguments or clean(arguments[0][1]) != owner)
    for position, (argument, kind, default) in enumerate(arguments):
        if position == 0 and owner is not None and not is_static:
            texts.append("self")
            continue
        if name in OBSERVERS:
            kind = OBSERVERS[name]
        elif name != "is_same_stroke":
            kind = ARGUMENTS.get(argument, kind)
        text = f"{argument}: {clean(kind)}"
        if default == "None":
            text += " | None"
        texts.append(f"{text} = {default}" if default else text)
    if (owner, name) == ("Record", "copy"):
        result = "Self"
    mark = f"{indent}@staticmethod\n" if is_static else ""
    return f"{mark}{indent}def {name}({', '.join(texts)}) -> {result}: ..."


def own_kinds(record_class):
    inherited = getattr(record_class.__base__, "PROPERTIES", {})
    return {name: kind for name, kind in record_class.PROPERTIES.items() if name not in inherited}


def record_properties(record_class):
    for name, kind in own_kinds(record_class).items():
        read, written = KINDS[kind]
        yield f"    @property\n    def {name}(self) -> {read}: ..."
        yield f"    @{name}.setter\n    def {name}(self, value: {written or read}) -> None: ..."


def constructor(record_class):
    properties = [f"        {name}: {KINDS[kind][1] or KINDS[kind][0]} = ...,"
                  for name, kind in record_class.PROPERTIES.items()]
    return "\n".join(["    def __init__(", "        self,", "        *,", *properties, "    ) -> None: ..."])


def members(each):
    """The lines of a class."""
    name = each.__name__
    if "PROPERTIES" in vars(each):
        yield "    PROPERTIES: Mapping[str, str]"
        yield constructor(each)
        yield from record_properties(each)
    known = getattr(each, "PROPERTIES", {})
    for member, value in vars(each).items():
        if member == "__init__" and not known and value.__doc__ and "path" in value.__doc__:
            yield f"    def __init__(self, path: {ARGUMENTS['path']}) -> None: ..."
        elif isinstance(value, property) and member not in known:
            result = clean(re.search(r"-> (.*)", value.fget.__doc__)[1])
            if (name, member) in MAY_BE_NONE:
                result += " | None"
            yield f"    @property\n    def {member}(self) -> {result}: ..."
            if value.fset:
                yield f"    @{member}.setter\n    def {member}(self, value: {result}) -> None: ..."
        elif not member.startswith("_") and callable(getattr(each, member)):
            yield definition(name, member, getattr(each, member), "    ")
    if name == "Storage":
        yield "    def __enter__(self) -> Storage: ..."
        yield "    def __exit__(self, *error: Any) -> None: ..."


def stub():
    text = HEAD
    for name in velwhiteboard.__all__:
        value = getattr(velwhiteboard, name)
        if inspect.isclass(value):
            base = value.__base__.__name__
            text += f"\nclass {name}{'' if base == 'pybind11_object' else f'({base})'}:\n"
            text += "\n".join(members(value)) + "\n"
        elif isinstance(value, types.BuiltinFunctionType):
            text += f"\n{definition(None, name, value)}\n"
    return text


def main():
    if len(sys.argv) not in (2, 3) or sys.argv[2:] not in ([], ["--check"]):
        sys.exit(__doc__)
    file = pathlib.Path(sys.argv[1])
    if sys.argv[2:]:
        if file.read_text(encoding="utf-8") != stub():
            sys.exit(f"{file} is not what the module has: build the target update_python_stub")
    else:
        file.write_text(stub(), encoding="utf-8")


if __name__ == "__main__":
    main()
