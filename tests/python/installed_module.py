#!/usr/bin/env python3
"""Fails when the Python module is not the one that was installed, or not whole.

    installed_module.py FOLDER VERSION
"""

import pathlib
import sys

import velwhiteboard


def main():
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    package = pathlib.Path(velwhiteboard.__file__).parent
    if package.parent != pathlib.Path(sys.argv[1]):
        sys.exit(f"the module comes from {package}")
    if velwhiteboard.__version__ != sys.argv[2]:
        sys.exit(f"the module is of version {velwhiteboard.__version__}")
    for name in ("__init__.pyi", "py.typed"):
        if not (package / name).is_file():
            sys.exit(f"{name} is missing")
    record = velwhiteboard.record_from_json('{"type":"line","x":0.5}')
    if record != velwhiteboard.VelWbVecLine(type="line", x=0.5):
        sys.exit(f"a line was read as {record}")


if __name__ == "__main__":
    main()
