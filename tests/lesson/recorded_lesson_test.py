#!/usr/bin/env python3
"""The recorded lesson reaches the board's files whole, is reported rightly, and all clients agree."""

import json
import os
import pathlib
import pty
import re
import subprocess
import tempfile
import unittest
import xml.etree.ElementTree as ElementTree

import support

PAGES = ["7_1", "7_2", "7_3"]


def expected_pages():
    """Per page key the number of records, strokes and positions, counted in the lesson itself.

    Every position of the recording stands in exactly one piece, so counting needs no folding.
    """
    pages, key = {}, None
    for line in support.recorded("lesson.ndjson").read_text(encoding="utf-8").splitlines():
        record = json.loads(line)
        if record["type"] == "switchPage":
            key = f"{record['WBID']}_{record['curPage']}"
            pages[key] = {"records": 0, "strokes": set(), "positions": 0}
            continue
        pages[key]["records"] += 1
        pages[key]["strokes"].add(record["ID"])
        pages[key]["positions"] += len(record["path"])
    return pages


class RecordedLesson(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        folder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(folder.cleanup)
        cls.home = pathlib.Path(folder.name) / "new" / "board"
        cls.pictures = pathlib.Path(folder.name) / "pictures"
        cls.result = support.play(
            support.recorded("lesson.ndjson"), "--board", cls.home, "--second-client",
            "--svg", cls.pictures, "--png", cls.pictures, "--pdf", pathlib.Path(folder.name) / "lesson.pdf",
            "--size", "640x360")
        cls.pdf = (pathlib.Path(folder.name) / "lesson.pdf").read_bytes()
        cls.table = support.table_of(cls.result.stdout)

    def test_everything_is_verified(self):
        self.assertEqual(self.result.returncode, 0, self.result.stderr)
        self.assertIn("3 pages, 514 strokes, 31,667 positions: all pages verified.\n",
                      self.result.stdout)
        self.assertEqual([self.table[key]["reopened"] for key in PAGES], ["equal"] * 3)

    def test_the_board_is_where_it_was_asked_for_and_told(self):
        self.assertIn(f"Board: {self.home}/whiteBoard\n", self.result.stdout)

    def test_the_table_counts_what_the_lesson_holds(self):
        self.assertEqual(list(self.table), [*PAGES, "all"])
        for key, page in expected_pages().items():
            row = self.table[key]
            self.assertEqual((row["records"], row["entries"], row["positions"]),
                             (page["records"], len(page["strokes"]), page["positions"]), key)

    def test_the_last_row_is_the_sum(self):
        for column in ["records", "entries", "positions", "whole", "snap"]:
            self.assertEqual(self.table["all"][column], sum(self.table[key][column] for key in PAGES))

    def test_the_table_tells_the_sizes_of_the_files(self):
        for key in PAGES:
            for column in ["whole", "snap"]:
                size = (self.home / "whiteBoard" / f"{column}_{key}.plist").stat().st_size
                self.assertEqual(self.table[key][column], size, (key, column))

    def test_another_reader_finds_the_same_in_the_files(self):
        for key, page in expected_pages().items():
            board = self.home / "whiteBoard"
            snapshot = support.records_in(board / f"snap_{key}.plist")
            self.assertEqual({entry["ID"] for entry in snapshot}, page["strokes"])
            self.assertEqual(sum(len(entry["path"]) for entry in snapshot), page["positions"])
            self.assertEqual(len(support.records_in(board / f"whole_{key}.plist")), page["records"])
        visits = support.records_in(self.home / "whiteBoard" / "page.plist")
        self.assertEqual([visit["curPage"] for visit in visits], [1, 2, 3])

    def test_the_clients_agree(self):
        self.assertIn("Second client: 3 pages, 3 pictures, 7 files equal.\n", self.result.stdout)
        self.assertIn("Client that received everything twice: 3 pages, 3 pictures equal.\n",
                      self.result.stdout)

    def test_stderr_is_silent_when_nobody_watches(self):
        self.assertEqual(self.result.stderr, "")

    def test_there_is_one_picture_of_each_kind_for_every_page(self):
        names = sorted(path.name for path in self.pictures.iterdir())
        self.assertEqual(names, sorted(f"page-{key}{suffix}" for key in PAGES
                                       for suffix in [".png", ".svg"]))

    def test_the_pictures_have_the_size_and_the_colours_of_the_lesson(self):
        picture = support.Picture(self.pictures / "page-7_2.png")
        self.assertEqual((picture.width, picture.height), (640, 360))
        colours = picture.colours_in(0, 0, 640, 360)
        for colour in [(0x21, 0xA7, 0xFF), (0x30, 0x30, 0x33), (0xFF, 0x34, 0x67), (0, 0xCD, 0xB1),
                       (0x97, 0x63, 0xFF), (255, 255, 255)]:
            self.assertIn(colour, colours)

    def test_the_svg_files_hold_a_path_for_every_stroke(self):
        svg = "{http://www.w3.org/2000/svg}"
        for key, page in expected_pages().items():
            root = ElementTree.parse(self.pictures / f"page-{key}.svg").getroot()
            self.assertEqual((root.tag, root.get("width"), root.get("height")),
                             (svg + "svg", "640px", "360px"))
            self.assertEqual(len(root.findall(f".//{svg}path")), len(page["strokes"]), key)
            self.assertEqual(root.findall(f".//{svg}image"), [], key)

    def test_the_pdf_file_has_a_sheet_for_every_page(self):
        self.assertTrue(self.pdf.startswith(b"%PDF-"))
        self.assertTrue(self.pdf.rstrip().endswith(b"%%EOF"))
        self.assertEqual(re.findall(rb"/Count (\d+)", self.pdf), [b"3"])
        self.assertEqual(re.findall(rb"/MediaBox \[([^]]+)\]", self.pdf).count(b" 0 0 640 360 "), 3)


def everything_from(terminal):
    """What is written to a terminal until its other end is closed."""
    seen = b""
    while True:
        try:
            seen += os.read(terminal, 4096)
        except OSError:  # this is how Linux tells the end
            return seen.decode()


class Watched(support.TemporaryFolder):
    def test_a_terminal_shows_a_bar_that_is_gone_at_the_end(self):
        terminal, other_end = pty.openpty()
        self.addCleanup(os.close, terminal)
        lesson = subprocess.Popen(
            [support.argument(1), support.recorded("second_lesson.ndjson"), "--board", self.folder],
            stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=other_end)
        os.close(other_end)
        seen = everything_from(terminal)
        self.assertEqual(lesson.wait(), 0)
        self.assertRegex(seen, r"\r\[#+\.*\] \d+ lines ")
        self.assertTrue(seen.endswith("\r\x1b[K"), seen[-40:])


if __name__ == "__main__":
    support.main()
