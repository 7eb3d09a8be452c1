#!/usr/bin/env python3
"""What `board-check` tells of a log and a snapshot of different times, and what becomes of them.

    board_check_generations_test.py BOARD_CHECK LESSON
"""

import re
import shutil
import sys
import unittest

from checked_boards import LINE, PAGE, CheckedBoards, plist

TEXT = '{"type":"text","ts":%d,"ID":"%s","x":0,"y":0,"w":%d,"h":9,"text":"%s"}'
REMOVE = '{"type":"remove","ts":%d,"ID":"r","rmID":"%s"}'
CLEAR = '{"type":"clear","ts":%d,"ID":"clear"}'
CURSOR = '{"type":"cursor","ts":%d,"ID":"cursor","x":0.5,"y":0.5}'

BEFORE = [PAGE % (1, 1, 1), LINE % (2, "a", 2), LINE % (3, "a", 3), TEXT % (4, "t", 9, "hello"), LINE % (5, "b", 5)]

# What arrived between the two times, how many entries differ by it, and one of them.
LATER = {
    "a stroke": ([LINE % (6, "c", 6)], 1, "c"),
    "a piece of a stroke": ([LINE % (6, "b", 6)], 1, "b"),
    "a piece of an earlier stroke": ([LINE % (6, "a", 6)], 1, "a"),
    "a piece without a time of its own": ([LINE.replace('"ts":%d,', '"ts":5,') % ("b", 6)], 1, "b"),
    "an edit of a box": ([TEXT % (6, "t", 12, "bye")], 1, "t"),
    "a removal": ([REMOVE % (6, "a")], 1, "a"),
    "a stroke in the place of a removed one": ([REMOVE % (6, "a"), LINE % (7, "a", 7)], 1, "a"),
    "a clear": ([CLEAR % 6], 3, "[abt]"),
    "a clear and a stroke": ([CLEAR % 6, LINE % (7, "c", 7)], 4, "[abct]"),
    "several": ([LINE % (6, "c", 6), TEXT % (7, "t", 12, "bye"), LINE % (8, "d", 8)], 3, "[cdt]"),
}


class Generations(CheckedBoards):
    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        cls.early = cls.play("early", "\n".join(BEFORE) + "\n")
        cls.late = {name: cls.play(f"late{number}", "\n".join([*BEFORE, *lines]) + "\n")
                    for number, (name, (lines, _, _)) in enumerate(LATER.items())}

    def pair(self, log, snapshot):
        """Puts the files of two boards together."""
        shutil.rmtree(self.files)
        shutil.copytree(log / "whiteBoard", self.files)
        shutil.copy(snapshot / "whiteBoard" / "snap_7_1.plist", self.files)

    def told(self, result):
        return [line for line in result.stdout.splitlines() if line.startswith("page 7_1: OUT OF STEP")]

    def test_a_log_that_is_ahead_is_told_and_the_snapshot_is_rebuilt_from_it(self):
        for name, (_, count, example) in LATER.items():
            with self.subTest(later=name):
                late = self.late[name]
                self.pair(late, self.early)
                result = self.recover()
                entries = "entry" if count == 1 else "entries"
                self.assertEqual(len(self.told(result)), 1, result.stdout)
                self.assertRegex(self.told(result)[0], r"OUT OF STEP: the log is ahead of the snapshot by "
                                 rf"{count} {entries}, such as {example}\.$")
                self.assertIn("Not all is fine.\n", result.stdout)
                self.assertIn("snapshot rebuilt from the log", result.stdout)
                for file in ["whole_7_1.plist", "snap_7_1.plist"]:
                    self.assertEqual(self.recovered(file), plist(late / "whiteBoard" / file))

    def test_a_snapshot_that_is_ahead_is_told_and_what_only_it_knows_is_added_to_the_log(self):
        for name in ["a stroke", "a piece of a stroke", "a piece of an earlier stroke", "an edit of a box",
                     "a piece without a time of its own", "several"]:
            with self.subTest(later=name):
                late = self.late[name]
                self.pair(self.early, late)
                result = self.recover()
                _, count, example = LATER[name]
                self.assertRegex(self.told(result)[0], rf"the snapshot is ahead of the log by {count} entr\w+, "
                                 rf"such as {example}\.$")
                snapshot = plist(late / "whiteBoard" / "snap_7_1.plist")
                self.assertEqual(self.recovered("snap_7_1.plist"), snapshot)
                log = self.recovered("whole_7_1.plist")
                before = plist(self.early / "whiteBoard" / "whole_7_1.plist")
                self.assertEqual(log[:len(before)], before)
                self.assertEqual(len(log), len(before) + count)
                self.assertTrue(all(record in snapshot for record in log[len(before):]))

    def test_each_may_know_what_the_other_does_not(self):
        self.pair(self.late["a stroke"], self.late["an edit of a box"])
        result = self.recover()
        self.assertIn("page 7_1: OUT OF STEP: the log is ahead of the snapshot by 1 entry, such as c; the snapshot "
                      "is ahead of the log by 1 entry, such as t.\n", result.stdout)
        recovered = {record["ID"]: record for record in self.recovered("snap_7_1.plist")}
        self.assertEqual(set(recovered), {"a", "b", "c", "t"})
        self.assertEqual(recovered["t"]["text"], "bye")

    def test_what_does_not_stay_on_a_page_makes_no_difference(self):
        lines = [CURSOR % 6, CURSOR % 7]
        late = self.play("cursors", "\n".join([*BEFORE, *lines]) + "\n")
        self.pair(late, self.early)
        result = self.check(self.board)
        self.assertEqual(result.returncode, 0, result.stdout)

    def test_a_removal_that_a_damaged_log_has_lost_is_made_up(self):
        late = self.late["a removal"]
        self.pair(late, late)
        log = self.files / "whole_7_1.plist"
        text = log.read_bytes()
        log.write_bytes(text[:text.index(b"<key>rmID</key>")])
        result = self.recover()
        self.assertIn("log of 5 records, 1 removal made up; snapshot of 2 records.\n", result.stdout)
        self.assertEqual(self.recovered("snap_7_1.plist"), plist(late / "whiteBoard" / "snap_7_1.plist"))
        self.assertEqual(self.recovered("whole_7_1.plist")[-1]["rmID"], "a")

    def test_a_damaged_log_may_be_ahead_all_the_same(self):
        late = self.late["several"]
        self.pair(late, self.early)
        log = self.files / "whole_7_1.plist"
        text = log.read_bytes()
        log.write_bytes(re.sub(rb"<real>2.0</real>", rb"<real>x</real>", text, count=1))
        self.assertIn("snapshot rebuilt from the log, 5 records.\n", self.recover().stdout)
        self.assertEqual({record["ID"] for record in self.recovered("snap_7_1.plist")}, {"a", "b", "c", "d", "t"})

    def test_vectors_without_identifiers_are_not_compared(self):
        for kind in ["whole", "snap"]:
            file = self.files / f"{kind}_7_1.plist"
            text = re.sub(rb"\t\t<key>ID</key>\n\t\t<string>.*</string>\n", b"", file.read_bytes())
            file.write_bytes(text)
        self.assertEqual(self.check(self.board).returncode, 0)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
