"""Reads a property list with Python's own strict reader and prints it as JSON.

Text goes out in ASCII escapes; an integer keeps all its digits, and a real number always has a fraction
or an exponent, so that whoever reads the JSON can tell the two apart.
"""

import json
import plistlib
import sys


def main():
    with open(sys.argv[1], "rb") as file:
        values = plistlib.load(file, fmt=plistlib.FMT_XML)
    json.dump(values, sys.stdout, allow_nan=False)


main()
