#!/usr/bin/env python3
"""Proves that check_documents.py sees a line that is too long."""

import pathlib
import tempfile
import unittest

import check_documents

LONG = "word " * 24 + "w"  # 121 columns


class CheckDocuments(unittest.TestCase):
    def found(self, text):
        return list(check_documents.long_lines(text))

    def test_a_line_that_just_fits_passes(self):
        self.assertEqual(self.found(LONG[:-1] + "\n" + LONG[:-2] + "é\n"), [])

    def test_a_line_that_is_too_long_is_named(self):
        self.assertEqual(self.found(f"short\n{LONG}\n"), [(2, 121)])

    def test_so_is_a_row_of_a_table(self):
        self.assertEqual(self.found(f"| {LONG} | a |\n"), [(1, 129)])

    def test_a_line_that_cannot_be_broken_passes(self):
        address = "https://example.org/" + "a" * 120
        self.assertEqual(self.found(f"{address}\n- {address}\n  1. <{address}>\n[a]({address})\n"), [])

    def test_a_long_word_among_others_is_named(self):
        self.assertEqual(len(self.found(f"see https://example.org/{'a' * 120}\n")), 1)

    def test_the_documents_of_a_project_are_found_and_those_of_its_builds_are_not(self):
        with tempfile.TemporaryDirectory() as folder:
            root = pathlib.Path(folder)
            for name in ("README.md", "docs/a.md", "build/b.md", "build-x/c.md", ".git/d.md", "docs/e.txt"):
                (root / name).parent.mkdir(parents=True, exist_ok=True)
                (root / name).write_text("text\n", encoding="utf-8")
            found = [file.relative_to(root).as_posix() for file in check_documents.documents([folder])]
            self.assertEqual(found, ["README.md", "docs/a.md"])


if __name__ == "__main__":
    unittest.main()
