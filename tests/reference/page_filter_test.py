#!/usr/bin/env python3
"""Shows what page_filter.py makes of a document's headings, links and colours."""

import pathlib
import sys
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "docs" / "reference"))
import page_filter


class PageFilter(unittest.TestCase):
    def filtered(self, text, path="docs/client.md"):
        return page_filter.Page(path, text).filtered()

    def test_a_heading_gets_a_label(self):
        self.assertEqual(self.filtered("# Writing\n## One `order`, all\n"),
                         "# Writing {#page_client}\n## One `order`, all {#page_client_one_order_all}\n")

    def test_a_document_is_called_by_its_heading(self):
        self.assertEqual(self.filtered("see [records.md](records.md)"),
                         "see [The records of a board](@ref page_records)")
        self.assertEqual(self.filtered("see [it](../README.md)"), "see [it](@ref page_readme)")

    def test_a_link_to_a_heading_becomes_a_reference(self):
        self.assertEqual(self.filtered("[a](#in-here), [b](records.md#widths-and-font-sizes)"),
                         "[a](@ref page_client_in_here), [b](@ref page_records_widths_and_font_sizes)")

    def test_a_link_to_a_source_becomes_text(self):
        self.assertEqual(self.filtered("[`examples/lesson`](../examples/lesson), [it](../tests/guide)"),
                         "`examples/lesson`, it (`tests/guide`)")

    def test_a_link_to_nothing_is_left_to_doxygen_to_complain_of(self):
        self.assertIn("(@ref missing_file_", self.filtered("[a](gone.md)"))
        self.assertIn("(@ref missing_file_", self.filtered("[a](../tests/gone)"))

    def test_a_link_to_another_site_stays(self):
        self.assertEqual(self.filtered("[a](https://example.org/b#c)"), "[a](https://example.org/b#c)")

    def test_a_picture_is_found_by_its_name(self):
        self.assertEqual(self.filtered("![a](images/a.png)"), "![a](a.png)")

    def test_a_colour_is_no_link_and_a_word_no_class(self):
        self.assertEqual(self.filtered("Path: #FF3467, `#RRGGBBAA`"), "%Path: \\#FF3467, `#RRGGBBAA`")

    def test_a_class_in_code_leads_to_the_class(self):
        self.assertEqual(self.filtered("`VelWbVecLine`, `other`"),
                         '<code>@ref VelWhiteBoard::VelWbVecLine "VelWbVecLine"</code>, `other`')

    def test_blocks_of_code_stay_as_they_are(self):
        text = "```cpp\n# not a heading [a](b.md) #FF\n```\n<!-- [a](b.md) -->\n"
        self.assertEqual(self.filtered(text), text)


if __name__ == "__main__":
    unittest.main()
