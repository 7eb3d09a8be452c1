#!/usr/bin/env python3
"""What `board-check` does with little memory, and with few handles.

    board_check_memory_test.py BOARD_CHECK LESSON
"""

import shutil
import sys
import unittest

from checked_boards import CheckedBoards, plist

MEMORY = 96 << 20
LARGE = 120 << 20
TOO_LONG = 80 << 20
HEAD = b'<?xml version="1.0" encoding="UTF-8"?>\n<plist version="1.0">\n<array>\n'
FOOT = b"</array>\n</plist>\n"
RECORD = (b"\t<dict>\n\t\t<key>type</key>\n\t\t<string>line</string>\n\t\t<key>ts</key>\n\t\t<real>2.0</real>\n"
          b"\t\t<key>ID</key>\n\t\t<string>a</string>\n\t\t<key>url</key>\n\t\t<string>" + b"a" * 4000
          + b"</string>\n\t</dict>\n")


class FewHandles(CheckedBoards):
    def test_two_suffice(self):
        result = self.check_limited(self.board, "--recover", self.out, NOFILE=5)
        self.assertEqual((result.returncode, result.stderr), (0, ""))


class LargeFiles(CheckedBoards):
    def setUp(self):
        super().setUp()
        self.log = self.files / "whole_7_1.plist"

    def write(self, *pieces):
        """Each piece is (bytes, how often)."""
        with open(self.log, "wb") as file:
            for contents, times in pieces:
                at_once = max(1, (1 << 20) // len(contents))
                for _ in range(times // at_once):
                    file.write(contents * at_once)
                file.write(contents * (times % at_once))

    def check_in_little_memory(self):
        result = self.check_limited(self.board, "--recover", self.out, AS=MEMORY)
        self.assertEqual(result.stderr, "")
        return result

    def test_a_log_larger_than_memory_is_read_compared_and_recovered(self):
        count = LARGE // len(RECORD)
        self.write((HEAD, 1), (RECORD, count), (FOOT, 1))
        result = self.check_in_little_memory()
        self.assertIn(f"whole_7_1.plist: readable, {count} records: {count} line.\n", result.stdout)
        self.assertIn("page 7_1: OUT OF STEP: the snapshot is ahead of the log by 3 entries, such as c.\n",
                      result.stdout)
        self.assertIn(f"log of {count + 3} records, 3 of them from the snapshot; snapshot of 3 records.\n",
                      result.stdout)

    def test_a_snapshot_is_rebuilt_from_a_log_larger_than_memory(self):
        self.write((HEAD, 1), (RECORD, LARGE // len(RECORD)), (FOOT, 1))
        (self.files / "snap_7_1.plist").unlink()
        self.assertIn("snapshot rebuilt from the log, 1 record.\n", self.check_in_little_memory().stdout)

    def test_a_damaged_log_larger_than_memory_is_read_on(self):
        count = LARGE // len(RECORD) // 2
        self.write((HEAD, 1), (RECORD, count), (b"\t<dict>\n\t\t<!--\n", 1), (RECORD, count), (FOOT, 1))
        result = self.check_in_little_memory()
        self.assertEqual(result.returncode, 1)
        self.assertIn(f"Before that place: {count} records: {count} line.\n  After it: {count} records: {count} line.\n"
                      "  Skipped: 1 record, 15 bytes.\n", result.stdout)

    def test_a_sparse_file_of_zeros_takes_no_memory(self):
        with open(self.log, "wb") as file:
            file.truncate(1 << 30)
        result = self.check_in_little_memory()
        self.assertEqual(result.returncode, 1)
        self.assertIn("whole_7_1.plist: DAMAGED at line 1, column 1: ", result.stdout)
        self.assertEqual(self.recovered("snap_7_1.plist"), plist(self.files / "snap_7_1.plist"))

    def test_a_file_for_which_there_is_no_memory_is_not_read_and_the_others_are(self):
        text = b"\t<dict>\n\t\t<key>ID</key>\n\t\t<string>"
        for name, pieces in {
                "a record that is too long": [(HEAD, 1), (text, 1), (b"a" * 1024, TOO_LONG >> 10),
                                              (b"</string>\n\t</dict>\n" + FOOT, 1)],
                "one that never ends": [(HEAD, 1), (text, 1), (b"a" * 1024, TOO_LONG >> 10)],
                "a line that never ends": [(b'<plist version="1.0"><array><dict><key>ID</key><string>', 1),
                                           (b"a" * 1024, TOO_LONG >> 10)],
                "a tag that never ends": [(HEAD, 1), (b"\t<dict a=\"", 1), (b"a" * 1024, TOO_LONG >> 10)]}.items():
            with self.subTest(file=name):
                self.write(*pieces)
                shutil.rmtree(self.out, ignore_errors=True)
                result = self.check_in_little_memory()
                self.assertEqual(result.returncode, 3)
                self.assertRegex(result.stdout, r"whole_7_1\.plist: not read: no memory.*\.\n")
                self.assertNotIn("DAMAGED", result.stdout)
                self.assertIn("snap_7_2.plist: readable, 1 record: 1 line.\n", result.stdout)
                self.assertEqual(self.recovered("snap_7_1.plist"), plist(self.files / "snap_7_1.plist"))


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
