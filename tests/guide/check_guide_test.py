#!/usr/bin/env python3
"""Proves that check_guide.py sees a document and its sources drift apart."""

import unittest

import check_guide

SOURCE = "int a;\n// [snippet: one]\nint b;\n// [end]\nint c;\n// [snippet: two]\nint d;\n// [end]\n"


def block(name, code):
    return f"text\n\n<!-- snippet: {name} -->\n```cpp\n{code}```\n\n"


SHOWN = block("one", "int b;\n") + block("two", "int d;\n")


class CheckGuide(unittest.TestCase):
    def found(self, document, *sources):
        return check_guide.compare(document, sources or [SOURCE])

    def test_what_is_shown_as_it_is_passes(self):
        self.assertEqual(self.found(SHOWN), [])
        self.assertEqual(self.found(SHOWN + "```sh\nmake\n```\n"), [])

    def test_other_code_is_named(self):
        self.assertRegex(" ".join(self.found(SHOWN.replace("int d", "int e"))), "two: .*other code")
        self.assertRegex(" ".join(self.found(SHOWN, SOURCE.replace("int d;", "int d;\n"))), "two: .*other code")

    def test_a_region_that_is_not_shown_or_shown_twice_is_named(self):
        self.assertEqual(self.found(block("one", "int b;\n")), ["two: shown 0 times"])
        self.assertEqual(self.found(SHOWN + block("two", "int d;\n")), ["two: shown 2 times"])

    def test_a_block_that_no_source_has_is_named(self):
        self.assertEqual(self.found(SHOWN + block("three", "int e;\n")), ["three: shown, but in no source"])
        self.assertEqual(self.found(SHOWN + "```cpp\nint e;\n```\n"), ["a block has no name: int e;"])
        self.assertEqual(self.found(SHOWN + "- a\n  ```cpp\n  int e;\n  ```\n"),
                         ["a ```cpp block is indented or not closed"])

    def test_marks_that_do_not_match_are_named(self):
        self.assertNotEqual(self.found(SHOWN, SOURCE.replace("// [end]\nint c;\n", "")), [])
        self.assertNotEqual(self.found(SHOWN, SOURCE + "// [snippet: three]\n"), [])
        self.assertNotEqual(self.found(SHOWN, SOURCE, SOURCE), [])

    def test_an_update_makes_them_equal(self):
        document = check_guide.updated(SHOWN.replace("int d", "int e"), [SOURCE])
        self.assertEqual(document, SHOWN)


if __name__ == "__main__":
    unittest.main()
