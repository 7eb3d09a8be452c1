#!/usr/bin/env python3
"""Proves that check_statics.py sees a static object with a destructor.

    check_statics_test.py NM COMPILER
"""

import pathlib
import subprocess
import sys
import tempfile
import unittest

import check_statics

NM, COMPILER = sys.argv[1:3]

OBJECT = "struct Object { ~Object(); };\n"
SOURCES = {
    "function's static": OBJECT + "Object& get() { static Object object; return object; }\n",
    "global": OBJECT + "Object object;\n",
    "thread-local": OBJECT + "Object& get() { thread_local Object object; return object; }\n",
}
HARMLESS = OBJECT + """
int& number() { static int number = 7; return number; }
Object& get() { static Object& object = *new Object; return object; }
"""


class CheckStatics(unittest.TestCase):
    def listing_of(self, name, source):
        with tempfile.TemporaryDirectory() as folder:
            file = pathlib.Path(folder) / "source.cpp"
            file.write_text(source, encoding="utf-8")
            compiled = pathlib.Path(folder) / name
            subprocess.run([COMPILER, "-std=c++20", "-c", file, "-o", compiled], check=True)
            symbols = subprocess.run([NM, compiled], check=True, capture_output=True, text=True).stdout
            return f"\n{name}:\n{symbols}"

    def complaints(self, listing):
        """The complaints about a library that is in order but for `listing`."""
        right = "".join(f"\n{name}:\n                 U {function}\n" for name, function in check_statics.EXPECTED)
        return list(check_statics.complaints(right + listing))

    def test_each_kind_of_static_object_is_named(self):
        for kind, source in SOURCES.items():
            with self.subTest(kind):
                found = self.complaints(self.listing_of("new_one.cpp.o", source))
                self.assertEqual(len(found), 1, found)
                self.assertTrue(found[0].startswith("new_one.cpp.o: "), found)

    def test_static_objects_without_a_destructor_pass(self):
        self.assertEqual(self.complaints(self.listing_of("new_one.cpp.o", HARMLESS)), [])

    def test_a_static_object_where_only_a_thread_local_one_is_allowed_is_named(self):
        found = self.complaints(self.listing_of("json_reading.cpp.o", SOURCES["global"]))
        self.assertEqual(len(found), 1, found)

    def test_a_listing_of_something_else_is_no_success(self):
        self.assertEqual(len(list(check_statics.complaints(""))), len(check_statics.EXPECTED))


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
