#!/usr/bin/env python3
"""Shows that the ways of keeping a board that are compared keep the same, and that a course is a longer lesson.

    comparison_test.py COMPARISON PROGRAM LESSON    the folder with compare.py, and velwb_comparison
"""

import json
import pathlib
import subprocess
import sys
import tempfile
import unittest

LESSON, PROGRAM, COMPARISON = (pathlib.Path(sys.argv.pop()) for _ in range(3))
sys.path.insert(0, str(COMPARISON))

import compare  # noqa: E402

BUILT_HERE = ["velwhiteboard", "sqlite", "document"]


def content(store, lesson, before="0"):
    with tempfile.TemporaryDirectory() as folder:
        run = lambda *arguments: json.loads(subprocess.run([PROGRAM, *arguments], check=True, capture_output=True).stdout)
        recorded = run("record", store, folder, lesson, before)
        opened = run("open", store, folder)
        return recorded["pieces"], opened["entries"], opened["positions"]


class TheComparison(unittest.TestCase):
    def test_all_ways_keep_the_same(self):
        contents = {store: content(store, LESSON) for store in BUILT_HERE}
        self.assertEqual(len(set(contents.values())), 1, contents)
        vectors = [json.loads(line) for line in LESSON.read_text(encoding="utf-8").splitlines()]
        newest = max(number for number, vector in enumerate(vectors) if vector["type"] == "switchPage")
        pieces = sum(vector["type"] != "switchPage" for vector in vectors)
        self.assertEqual(contents["sqlite"],
                         (pieces, len({vector["ID"] for vector in vectors[newest + 1:]}),
                          sum(len(vector["path"]) for vector in vectors[newest + 1:])))

    def test_a_course_has_the_pages_of_all_its_lessons(self):
        vectors = [json.loads(text) for text in compare.course(LESSON, 3)]
        once = len(vectors) // 3
        self.assertEqual([vector["curPage"] for vector in vectors if vector["type"] == "switchPage"], list(range(1, 10)))
        self.assertTrue(all(earlier["ts"] <= later["ts"] for earlier, later in zip(vectors, vectors[once:])))
        self.assertFalse({vector["ID"] for vector in vectors[:once]} & {vector["ID"] for vector in vectors[once:]})

    def test_what_was_there_before_is_not_measured(self):
        with tempfile.NamedTemporaryFile("w", encoding="utf-8", suffix=".ndjson") as course:
            texts = list(compare.course(LESSON, 2))
            course.writelines(text + "\n" for text in texts)
            course.flush()
            once = content("sqlite", LESSON)
            self.assertEqual(content("sqlite", course.name, str(len(texts) // 2)), once)

    def test_a_document_without_marks_is_refused(self):
        with self.assertRaises(ValueError):
            compare.with_tables("no marks", {"all": "", "short": ""})
        self.assertEqual(
            compare.with_tables("<!-- comparison, all: begin -->\nold\n<!-- comparison, all: end -->", {"all": "new"}),
            "<!-- comparison, all: begin -->\nnew\n<!-- comparison, all: end -->")


if __name__ == "__main__":
    unittest.main()
