#!/usr/bin/env python3
"""Fails on a static or thread-local object with a destructor in the library.

When the process ends, queued operations still run after such objects have been destroyed. So only the
object that runs these operations may have a destructor, and only the one template for thread-local
objects that knows of this. Both are seen by the function that registers a destructor.

    check_statics.py NM ARCHIVE
"""

import re
import subprocess
import sys

# The function, and the objects that may refer to it.
ALLOWED = {
    "atexit": set(),
    "at_quick_exit": set(),
    "__cxa_atexit": {"operation_queue.cpp.o"},
    "__cxa_thread_atexit": {"json_reading.cpp.o", "real_parsing.cpp.o"},
    "__cxa_thread_atexit_impl": {"json_reading.cpp.o", "real_parsing.cpp.o"},
}
# Without these the check would look at nothing.
EXPECTED = {("operation_queue.cpp.o", "__cxa_atexit"), ("json_reading.cpp.o", "__cxa_thread_atexit")}

MEMBER = re.compile(r"^(?:.*\()?([^\s()]+\.o)\)?:$")
UNDEFINED = re.compile(r"^\s+U\s+(\w+)")


def references(listing):
    """The pairs of object and registering function in what nm prints."""
    member = None
    for line in listing.splitlines():
        if match := MEMBER.match(line):
            member = match.group(1)
        elif (match := UNDEFINED.match(line)) and match.group(1) in ALLOWED:
            yield member, match.group(1)


def complaints(listing):
    found = set(references(listing))
    for member, function in sorted(found):
        if member not in ALLOWED[function]:
            yield f"{member}: a static or thread-local object with a destructor ({function})"
    for member, function in sorted(EXPECTED - found):
        yield f"{member}: does not refer to {function}; is this the library?"


def main():
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    listing = subprocess.run([sys.argv[1], sys.argv[2]], check=True, capture_output=True, text=True).stdout
    found = list(complaints(listing))
    print("\n".join(found) or "no static object with a destructor but the allowed ones")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
