#!/usr/bin/env python3
"""Proves that check_lists.py sees a forgotten file."""

import pathlib
import tempfile
import unittest

import check_lists


class CheckLists(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.root = pathlib.Path(folder.name).resolve()
        self.write("VelWhiteBoard/CMakeLists.txt", "set(sources\n  foundation/values/path.cpp\n)\n")
        self.write("VelWhiteBoard/foundation/values/path.cpp")
        self.write("tests/CMakeLists.txt", "add_executable(t path_test.cpp)  # old_test.cpp\n")
        self.write("tests/path_test.cpp")

    def write(self, name, text=""):
        file = self.root / name
        file.parent.mkdir(parents=True, exist_ok=True)
        file.write_text(text, encoding="utf-8")

    def forgotten(self):
        return list(check_lists.forgotten(self.root))

    def test_listed_files_pass(self):
        self.assertEqual(self.forgotten(), [])

    def test_a_forgotten_source_is_named(self):
        self.write("VelWhiteBoard/vectors/strokes.cpp")
        self.assertEqual(self.forgotten(), ["VelWhiteBoard/vectors/strokes.cpp"])

    def test_a_forgotten_header_of_the_library_is_named(self):
        self.write("VelWhiteBoard/foundation/values/path.h")
        self.assertEqual(self.forgotten(), ["VelWhiteBoard/foundation/values/path.h"])

    def test_a_name_in_a_comment_does_not_count(self):
        self.write("tests/old_test.cpp")
        self.assertEqual(self.forgotten(), ["tests/old_test.cpp"])

    def test_a_name_that_is_the_end_of_another_does_not_count(self):
        self.write("tests/test.cpp")
        self.assertEqual(self.forgotten(), ["tests/test.cpp"])


if __name__ == "__main__":
    unittest.main()
