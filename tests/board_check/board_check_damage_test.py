#!/usr/bin/env python3
"""A corpus of damage: what `board-check` tells of each, and that it saves what can be saved.

    board_check_damage_test.py BOARD_CHECK LESSON
"""

import os
import re
import shutil
import sys
import unittest

from checked_boards import LINE, PAGE, REMOVE, CheckedBoards, plist, small_lesson

HEAD = b'<?xml version="1.0" encoding="UTF-8"?>\n'
DEEP = 100_000
MANY = 1_000_000
BOMB = (b'<!DOCTYPE plist [<!ENTITY a "aaaaaaaaaa">'
        + b"".join(b'<!ENTITY %c "%s">' % (98 + level, b"&%c;" % (97 + level) * 10) for level in range(20))
        + b"]>")


def list_of(contents):
    return HEAD + b'<plist version="1.0"><array>' + contents + b"</array></plist>\n"


def record(contents):
    return b"<dict><key>type</key><string>line</string>" + contents + b"</dict>"


def nested(opening, closing):
    return record(b"<key>path</key>" + opening * DEEP + closing * DEEP)


# What breaks a file, and how many records stand before the break.
BROKEN = {
    "nothing at all": (b"", 0),
    "zeros": (bytes(5000), 0),
    "bytes of another kind": (bytes(range(256)) * 20, 0),
    "a binary property list": (b"bplist00\xd1\x01\x02" + bytes(40), 0),
    "another encoding": (list_of(record(b"")).decode().encode("utf-16"), 0),
    "no UTF-8": (list_of(record(b"") + record(b"<key>ID</key><string>\xff\xfe</string>")), 1),
    "a zero in a text": (list_of(record(b"") + record(b"<key>ID</key><string>a\0b</string>")), 1),
    "a dictionary at the top": (HEAD + b'<plist version="1.0"><dict/></plist>', 0),
    "another document": (b"<html><body>Not found</body></html>", 0),
    "two lists": (list_of(record(b"")) + list_of(record(b"")), 1),
    "an element of no property list": (list_of(record(b"") + b"<set/>"), 1),
    "a value without a key": (list_of(record(b"") + record(b"<real>1</real>")), 1),
    "tags that do not match": (list_of(record(b"") + b"<dict></array>"), 1),
    "nesting that is never closed": (HEAD + b'<plist version="1.0">' + b"<array>" * DEEP, 0),
    "dictionaries that are never closed":
        (HEAD + b'<plist version="1.0"><array>' + b"<dict><key>path</key>" * DEEP, 0),
    "an entity bomb": (HEAD + BOMB + b'<plist version="1.0"><array>' + record(b"<key>ID</key><string>&u;</string>")
                       + b"</array></plist>", 0),
    "an entity from outside": (HEAD + b'<!DOCTYPE plist [<!ENTITY a SYSTEM "file:///etc/passwd">]>'
                               b'<plist version="1.0"><array><dict><key>ID</key><string>&a;</string></dict></array>'
                               b"</plist>", 0),
    "a text that never ends": (HEAD + b'<plist version="1.0"><array>' + record(b"")
                               + b"<dict><key>ID</key><string>" + b"a" * 20_000_000, 1),
}

# What a reader takes although the library would never write it, and how many records it gives.
ODD = {
    "deep arrays": (list_of(nested(b"<array>", b"</array>")), 1),
    "deep dictionaries": (list_of(nested(b"<dict><key>a</key>", b"</dict>").replace(
        b"<key>a</key></dict>", b"</dict>")), 1),
    "no dictionaries": (list_of(b"<string>a</string><array/><true/>" * 100), 0),
    "a huge text": (list_of(record(b"<key>ID</key><string>" + b"a" * 20_000_000 + b"</string>")), 1),
    "a million keys": (list_of(record(b"".join(b"<key>%d</key><true/>" % key for key in range(MANY)))), 1),
    "another layout": (list_of(record(b"")), 1),
}
for kind in [b"<string>a</string>", b"<real>nan</real>", b"<integer>-1</integer>", b"<true/>", b"<data>AAAA</data>",
             b"<date>2020-01-01T00:00:00Z</date>", b"<array><array/></array>", b"<dict><key>a</key><true/></dict>"]:
    names = [b"type", b"ts", b"ID", b"x", b"y", b"color", b"pixel", b"ps", b"path", b"offset", b"end", b"rmID", b"w"]
    ODD[f"{kind.decode()} under every key"] = (
        list_of(b"<dict>" + b"".join(b"<key>%s</key>%s" % (name, kind) for name in names) + b"</dict>"), 1)


class Damage(CheckedBoards):
    def test_whatever_breaks_a_log_it_is_told_and_the_records_before_are_saved(self):
        log = self.files / "whole_7_1.plist"
        for name, (contents, records) in BROKEN.items():
            with self.subTest(damage=name):
                log.write_bytes(contents)
                result = self.recover()
                self.assertRegex(result.stdout, r"whole_7_1\.plist: DAMAGED at line \d+, column \d+: .+\.\n"
                                 rf"  A strict reader refuses the whole file\. Before that place: {records} records?\b")
                # What only the snapshot knows of comes after what was saved.
                snapshot = plist(self.files / "snap_7_1.plist")
                self.assertEqual(self.recovered("whole_7_1.plist")[records:], snapshot)
                self.assertEqual(self.recovered("snap_7_1.plist"), plist(self.files / "snap_7_1.plist"))

    def test_whatever_breaks_a_snapshot_it_is_rebuilt_from_the_log(self):
        snap = self.files / "snap_7_1.plist"
        sound = plist(snap)
        for name, (contents, _) in BROKEN.items():
            with self.subTest(damage=name):
                snap.write_bytes(contents)
                self.assertIn("snapshot rebuilt from the log, 3 records.\n", self.recover().stdout)
                self.assertEqual(self.recovered("snap_7_1.plist"), sound)

    def test_odd_contents_are_readable_and_a_strict_reader_may_object(self):
        names = ["whole_7_1.plist", "snap_7_1.plist"]
        for oddity, (contents, records) in ODD.items():
            with self.subTest(oddity=oddity):
                for name in names:
                    (self.files / name).write_bytes(contents)
                result = self.recover(status=0)
                for name in names:
                    self.assertRegex(result.stdout, re.escape(name) + rf": readable, {records} records?\b[^\n]*\n"
                                     r"  A strict reader may object at line \d+, column \d+: ")
                    self.assertEqual(len(self.recovered(name)), records)
                if "nan" in oddity:
                    continue  # no file says it, so the next reader sees the default and writes that
                self.assertNotIn("strict reader", self.check(self.out).stdout)

    def test_the_place_of_an_odd_content_is_told(self):
        snap = self.files / "snap_7_1.plist"
        lines = snap.read_bytes().split(b"\n")
        place = next(number for number, text in enumerate(lines) if b"<string>line</string>" in text)
        lines[place] = lines[place].replace(b"line", "lüne".encode()) + b" "
        snap.write_bytes(b"\n".join(lines))
        column = len("\t\t<string>lüne</string>") + 1
        self.assertIn(f"may object at line {place + 1}, column {column}: ", self.check(self.board).stdout)

    def test_every_prefix_of_a_log_gives_the_records_before_its_end(self):
        text = (self.files / "whole_7_1.plist").read_bytes()
        # All of the part where records end and begin, and a sample of the rest.
        second = text.index(b"<dict>", text.index(b"</dict>"))
        end = text.index(b"</plist>") + len(b"</plist>")
        sizes = sorted({*range(second - 60, second + 60), *range(0, end, 31), *range(end - 30, end)})
        records = plist(self.files / "whole_7_1.plist")
        for size in sizes:
            (self.files / f"whole_8_{size}.plist").write_bytes(text[:size])
        result = self.recover()
        for size in sizes:
            self.assertIn(f"whole_8_{size}.plist: DAMAGED at line ", result.stdout)
            saved = text[:size].count(b"\n\t</dict>")
            self.assertEqual(self.recovered(f"whole_8_{size}.plist"), records[:saved], size)
            self.assertIn(f"snap_8_{size}.plist: MISSING.\n", result.stdout)
            self.assertEqual(bool(self.recovered(f"snap_8_{size}.plist")), saved > 0, size)
        pages = {(page["WBID"], page["curPage"]) for page in self.recovered("page.plist")}
        self.assertEqual(pages, {(7, 1), (7, 2)}, "a list of pages that is sound stays as it is")

    def test_what_is_no_file_is_neither_waited_for_nor_followed(self):
        for name, make in [("a folder", os.mkdir), ("a pipe", os.mkfifo),
                           ("a link to nowhere", lambda path: os.symlink("nowhere", path)),
                           ("a link to itself", lambda path: os.symlink(os.path.basename(path), path))]:
            with self.subTest(instead=name):
                snap = self.files / "snap_7_1.plist"
                sound = plist(self.whole_board / "whiteBoard" / snap.name)
                snap.unlink()
                make(snap)
                self.assertRegex(self.recover().stdout, r"snap_7_1\.plist: CANNOT BE OPENED: .+\.\n")
                self.assertEqual(self.recovered(snap.name), sound)
                if snap.is_dir():
                    snap.rmdir()
                    snap.touch()

    def test_texts_of_a_file_do_not_command_the_terminal(self):
        types = [b"li\nne", b"\xc2\x9b31m", "é".encode() * 5000, *(b"t%d" % number for number in range(1000))]
        dicts = b"".join(b"<dict><key>type</key><string>%s</string></dict>" % each for each in types)
        (self.files / "whole_7_1.plist").write_bytes(list_of(dicts))
        (self.files / "a\x1b[31m\nb").touch()
        result = self.check(self.board)
        self.assertIn("a?[31m?b: no file of a board.\n", result.stdout)
        self.assertIn(" types more.\n", result.stdout)
        self.assertTrue(all(len(line) < 1000 for line in result.stdout.splitlines()))
        self.assertEqual([byte for byte in result.stdout if ord(byte) < 32 and byte != "\n" or byte == "\x9b"], [])


class SetAside(CheckedBoards):
    """The library has set damaged files aside, and the lesson went on."""

    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        after = "\n".join([PAGE % (40, 1, 1), LINE % (41, "e", 41), REMOVE.replace('"b"', '"a"'), ""])
        cls.later_board = cls.play("later", after)
        cls.both_board = cls.play("both", small_lesson() + after)

    def set_aside(self, name, cut, suffix=".damaged"):
        """Puts a part of the file aside, and what came later in its place."""
        text = (self.files / name).read_bytes()
        (self.files / (name + suffix)).write_bytes(text[:cut])
        shutil.copy(self.later_board / "whiteBoard" / name, self.files / name)

    def both(self, name):
        return plist(self.both_board / "whiteBoard" / name)

    def test_it_counts_as_damage_and_its_records_are_told(self):
        self.set_aside("snap_7_1.plist", -10)
        result = self.check(self.board)
        self.assertEqual(result.returncode, 1)
        self.assertRegex(result.stdout, r"snap_7_1\.plist: readable, 1 record: 1 line\.\n"
                         r"snap_7_1\.plist\.damaged: set aside, before it was replaced, "
                         r"because it could not be read\.\n"
                         r"  Now: DAMAGED at line \d+, column \d+: .*\n.*: 3 records: 2 line, 1 text\.\n")
        self.assertIn("--recover OUT", result.stdout)

    def test_a_snapshot_is_rebuilt_from_a_log_that_is_whole(self):
        shutil.copy(self.both_board / "whiteBoard" / "whole_7_1.plist", self.files / "whole_7_1.plist")
        self.set_aside("snap_7_1.plist", 900)
        self.recover()
        for name in ["whole_7_1.plist", "snap_7_1.plist"]:
            self.assertEqual(self.recovered(name), self.both(name))

    def test_a_log_begins_with_what_was_set_aside(self):
        shutil.copy(self.both_board / "whiteBoard" / "snap_7_1.plist", self.files / "snap_7_1.plist")
        self.set_aside("whole_7_1.plist", -10)
        self.assertIn("log of 10 records, 8 of them set aside earlier; snapshot of 3 records.", self.recover().stdout)
        for name in ["whole_7_1.plist", "snap_7_1.plist"]:
            self.assertEqual(self.recovered(name), self.both(name))

    def test_of_a_page_whose_two_files_were_set_aside_nothing_readable_is_lost(self):
        self.set_aside("whole_7_1.plist", -10)
        self.set_aside("snap_7_1.plist", 900)
        self.recover()
        self.assertEqual(self.recovered("whole_7_1.plist"), self.both("whole_7_1.plist"))
        self.assertEqual(self.recovered("snap_7_1.plist"), self.both("snap_7_1.plist"))

    def test_it_may_be_a_sound_one_that_the_disk_would_not_give(self):
        self.set_aside("whole_7_1.plist", None)
        self.set_aside("snap_7_1.plist", None)
        self.assertIn("Now: readable, 3 records: 2 line, 1 text.\n", self.recover().stdout)
        self.assertEqual(self.recovered("snap_7_1.plist"), self.both("snap_7_1.plist"))

    def test_a_file_may_have_been_cleared_since(self):
        for name in ["whole_7_1.plist", "snap_7_1.plist"]:
            (self.files / name).rename(self.files / (name + ".damaged"))
        self.assertIn("snap_7_1.plist: MISSING.\n", self.recover().stdout)
        self.assertEqual(self.recovered("snap_7_1.plist"),
                         plist(self.whole_board / "whiteBoard" / "snap_7_1.plist"))

    def test_visited_pages_begin_with_those_set_aside(self):
        self.set_aside("page.plist", -10)
        self.assertIn("page.plist: 3 records kept, 2 of them set aside earlier; 0 made up", self.recover().stdout)
        self.assertEqual(self.recovered("page.plist"), self.both("page.plist"))

    def set_aside_thrice(self, name):
        """Answers the records of all, the oldest first."""
        records = []
        # The tenth comes after the ninth, although its name does not.
        for suffix, board in [(".damaged", self.whole_board), (".damaged-9", self.later_board),
                              (".damaged-10", self.both_board)]:
            shutil.copy(board / "whiteBoard" / name, self.files / (name + suffix))
            records += plist(board / "whiteBoard" / name)
        (self.files / name).write_bytes(list_of(b""))
        return records

    def test_logs_that_were_set_aside_one_after_the_other_follow_each_other(self):
        records = self.set_aside_thrice("whole_7_1.plist")
        result = self.recover()
        self.assertEqual(self.recovered("whole_7_1.plist"), records)
        self.assertIn(f"log of {len(records)} records, {len(records)} of them set aside earlier", result.stdout)
        for suffix in [".damaged", ".damaged-9", ".damaged-10"]:
            self.assertIn("whole_7_1.plist" + suffix + ": set aside, before it was replaced", result.stdout)

    def test_snapshots_that_were_set_aside_one_after_the_other_follow_each_other(self):
        records = self.set_aside_thrice("snap_7_1.plist")
        (self.files / "whole_7_1.plist").unlink()
        self.recover()
        self.assertEqual(self.recovered("snap_7_1.plist"), records)

    def test_visits_that_were_set_aside_one_after_the_other_follow_each_other(self):
        visits = self.set_aside_thrice("page.plist")
        self.recover()
        self.assertEqual(self.recovered("page.plist"), visits)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
