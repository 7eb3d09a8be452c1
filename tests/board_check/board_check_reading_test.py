#!/usr/bin/env python3
"""What `board-check` does with files that the system does not give.

    board_check_reading_test.py BOARD_CHECK LESSON
"""

import os
import re
import shutil
import sys
import unittest

from checked_boards import CheckedBoards, plist

# A regular file that can be opened; reading it fails.
FAILS_TO_READ = "/proc/self/mem"


class FilesThatAreNotGiven(CheckedBoards):
    def take_away(self, name):
        """Answers the records that the file had."""
        file = self.files / name
        records = plist(self.whole_board / "whiteBoard" / name)
        file.unlink(missing_ok=True)
        os.symlink(FAILS_TO_READ, file)
        return records

    def assert_is_not_called_damaged(self, result):
        self.assertNotRegex(re.sub(r"\.damaged\b", "", result.stdout + result.stderr), "(?i)damage|broken|missing|lost")

    def test_each_is_not_read_for_the_reason_of_the_system_and_the_status_tells(self):
        for name in ["whole_7_1.plist", "snap_7_1.plist", "page.plist"]:
            with self.subTest(name=name):
                records = self.take_away(name)
                result = self.check(self.board)
                self.assertEqual(result.returncode, 3)
                self.assertIn(name + ": not read: Input/output error.\n", result.stdout)
                self.assertIn("Not everything was read.\n", result.stdout)
                self.assert_is_not_called_damaged(result)
                (self.files / name).unlink()
                shutil.copy(self.whole_board / "whiteBoard" / name, self.files / name)
                self.assertEqual(plist(self.files / name), records)

    def test_files_set_aside_and_temporaries_are_told_alike(self):
        os.symlink(FAILS_TO_READ, self.files / "whole_7_1.plist.damaged-2")
        os.symlink(FAILS_TO_READ, self.files / "snap_7_1.plist.tmp")
        result = self.check(self.board)
        self.assertEqual(result.returncode, 3)
        self.assertRegex(result.stdout,
                         r"whole_7_1\.plist\.damaged-2: set aside, [^\n]*\n  Now: not read: Input/output")
        self.assertIn("snap_7_1.plist.tmp: a write that did not end; not read: Input/output error.\n", result.stdout)
        self.assert_is_not_called_damaged(result)

    def test_the_other_files_are_read_all_the_same(self):
        self.take_away("whole_7_1.plist")
        os.truncate(self.files / "whole_7_2.plist", 300)
        result = self.check(self.board)
        self.assertIn("snap_7_1.plist: readable, 3 records", result.stdout)
        self.assertIn("whole_7_2.plist: DAMAGED at line ", result.stdout)
        self.assertEqual(result.returncode, 3, "a verdict on what was not read is not known")

    def test_a_board_without_them_is_recovered_and_that_is_told(self):
        self.take_away("whole_7_1.plist")
        result = self.recover(status=3)
        self.assertIn("page 7_1: log not read, its place taken by the 3 records of the snapshot; "
                      "snapshot of 3 records.\n", result.stdout)
        self.assert_is_not_called_damaged(result)
        snapshot = plist(self.files / "snap_7_1.plist")
        self.assertEqual(self.recovered("whole_7_1.plist"), snapshot)
        self.assertEqual(self.recovered("snap_7_1.plist"), snapshot)

    def test_a_snapshot_that_is_not_read_is_rebuilt_from_the_log(self):
        records = self.take_away("snap_7_1.plist")
        self.assertIn("snapshot rebuilt from the log, 3 records.\n", self.recover(status=3).stdout)
        self.assertEqual(self.recovered("snap_7_1.plist"), records)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
