#!/usr/bin/env python3
"""Proves that check_pages.py sees a link that leads nowhere, and what would need a network."""

import pathlib
import tempfile
import unittest

import check_pages

START = '<a id="top"></a><a href="other.html#there">other</a><img src="picture.png">'


class CheckPages(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        self.write("index.html", START)
        self.write("other.html", '<h1 id="there">There</h1><a href="index.html#top">back</a><a href="#there">up</a>')
        self.write("picture.png", "")

    def write(self, name, text):
        file = self.folder / name
        file.parent.mkdir(exist_ok=True)
        file.write_text(text, encoding="utf-8")

    def faults(self):
        return list(check_pages.Pages(self.folder).faults())

    def test_pages_without_a_fault_pass(self):
        self.assertEqual(self.faults(), [])

    def test_a_missing_page_is_found(self):
        self.write("index.html", START + '<a href="gone.html">gone</a>')
        self.assertEqual(self.faults(), [("index.html", "gone.html", "does not exist")])

    def test_so_is_a_missing_anchor(self):
        self.write("index.html", START + '<a href="other.html#gone">gone</a><a href="#gone">here</a>')
        self.assertEqual([target for _, target, _ in self.faults()], ["other.html#gone", "#gone"])

    def test_so_is_a_missing_picture(self):
        (self.folder / "picture.png").unlink()
        self.assertEqual(self.faults(), [("index.html", "picture.png", "does not exist")])

    def test_so_is_a_link_to_the_sources(self):
        self.write("index.html", START + '<a href="../README.md">sources</a>')
        self.assertEqual(self.faults(), [("index.html", "../README.md", "lies outside of the reference")])

    def test_so_is_a_link_of_the_tree_or_of_the_search(self):
        self.write("tree.js", 'var tree = [["there", "other.html#there"], ["gone", "other.html#gone"]];')
        self.write("search/all_0.js", "[['../gone.html',1,''],['../index.html#top',1,'']]")
        self.assertEqual([target for _, target, _ in self.faults()], ["../gone.html", "other.html#gone"])

    def test_a_link_to_another_site_passes(self):
        self.write("index.html", START + '<a href="https://example.org/x#y">x</a><a href="mailto:a@example.org">a</a>')
        self.assertEqual(self.faults(), [])

    def test_what_is_loaded_from_another_site_is_found(self):
        for part in (
            '<script src="https://example.org/a.js"></script>',
            '<link rel="stylesheet" href="//example.org/a.css">',
            '<img src="http://example.org/a.png">',
        ):
            self.write("index.html", START + part)
            self.assertEqual([found for _, _, found in self.faults()], ["is loaded from elsewhere"], part)

    def test_so_is_what_a_style_sheet_names(self):
        self.write("style.css", "a { background: url('picture.png') } b { background: url(gone.png) }")
        self.assertEqual(self.faults(), [("style.css", "gone.png", "does not exist")])


if __name__ == "__main__":
    unittest.main()
