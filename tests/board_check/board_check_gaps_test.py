#!/usr/bin/env python3
"""What `board-check` reads of a list behind a place where it breaks.

    board_check_gaps_test.py BOARD_CHECK LESSON
"""

import random
import re
import sys
import unittest

from checked_boards import LINE, PAGE, CheckedBoards, plist

RECORDS = 299
SEED = 20240607


class Gaps(CheckedBoards):
    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        lines = [PAGE % (1, 1, 1)] + [LINE % (ts, f"i{ts}", ts) for ts in range(2, RECORDS + 2)]
        cls.whole_board = cls.play("many", "\n".join(lines) + "\n")

    def setUp(self):
        super().setUp()
        self.log = self.files / "whole_7_1.plist"
        self.text = self.log.read_bytes()
        self.records = plist(self.log)

    def starts(self):
        """Where the records begin, and where the last one ends."""
        starts = [match.start() for match in re.finditer(rb"(?m)^\t<dict>", self.text)]
        return [*starts, self.text.index(b"</array>\n</plist>")]

    def break_records(self, *numbers):
        """Puts an x in the place of a digit of each; answers the lines on which they are broken."""
        text, starts, lines = bytearray(self.text), self.starts(), []
        for number in numbers:
            place = text.index(b"<real>", starts[number]) + len(b"<real>")
            text[place] = ord("x")
            lines.append(text.count(b"\n", 0, place) + 1)
        self.log.write_bytes(text)
        return lines

    def assert_reads_all_but(self, lost, result):
        expected = [record for number, record in enumerate(self.records) if number not in lost]
        self.assertEqual(self.recovered("whole_7_1.plist")[:len(expected)], expected, result.stdout)

    def test_one_broken_byte_costs_one_record(self):
        line, = self.break_records(3)
        result = self.recover()
        self.assertRegex(result.stdout, rf"whole_7_1\.plist: DAMAGED at line {line}, column \d+: ")
        self.assertIn("Before that place: 3 records: 3 line.\n  After it: 295 records: 295 line.\n", result.stdout)
        size = self.starts()[4] - self.starts()[3]
        self.assertIn(f"  Skipped: 1 record, {size} bytes.\n", result.stdout)
        self.assert_reads_all_but({3}, result)

    def test_what_the_log_lost_but_the_snapshot_has_is_added_to_the_log(self):
        self.break_records(3)
        result = self.recover()
        self.assertEqual(self.recovered("whole_7_1.plist"), self.records[:3] + self.records[4:] + [self.records[3]])
        self.assertIn("log of 299 records, 1 of them from the snapshot; snapshot of 299 records.\n", result.stdout)

    def test_whichever_byte_is_broken_costs_at_most_its_record(self):
        dice = random.Random(SEED)
        starts = self.starts()
        for place in [*range(0, starts[0], 7), *(dice.randrange(starts[0], starts[-1]) for _ in range(60))]:
            byte = bytes([dice.choice([0, 60, 63, 33, 38, 9, 10, 47, 255, dice.randrange(256)])])
            with self.subTest(place=place, byte=byte):
                self.log.write_bytes(self.text[:place] + byte + self.text[place + 1:])
                result = self.check(self.board, "--recover", self.out)
                if "whole_7_1.plist: DAMAGED" not in result.stdout:
                    self.out = self.out.with_name(f"out{place}")
                    continue
                number = sum(start <= place for start in starts) - 1
                read = self.recovered("whole_7_1.plist")
                for each, record in enumerate(self.records):
                    self.assertTrue(each in {number, number + 1} or record in read, each)
                self.assertGreaterEqual(sum(record in read for record in self.records), RECORDS - 1)
                self.out = self.out.with_name(f"out{place}")

    def test_every_gap_is_told_with_its_place(self):
        lines = self.break_records(5, 100, 101, 200)
        result = self.recover()
        self.assertIn("  Skipped: 4 records, ", result.stdout)
        gaps = re.findall(r"    At line (\d+), column \d+: (\d) records?, \d+ bytes\.\n", result.stdout)
        self.assertEqual(gaps, [(str(lines[0]), "1"), (str(lines[1]), "2"), (str(lines[3]), "1")])
        self.assert_reads_all_but({5, 100, 101, 200}, result)

    def test_of_very_many_gaps_the_first_are_told(self):
        self.break_records(*range(1, RECORDS, 2))
        result = self.recover()
        self.assertIn("  Skipped: 149 records, ", result.stdout)
        self.assertEqual(result.stdout.count("    At line "), 10)
        self.assertIn("    And at 139 places more.\n", result.stdout)

    def test_a_comment_without_an_end_takes_only_its_record(self):
        for opening in [b"<!--", b"<![CDATA[", b"<?pi ", b"<key a=\"", b"<key "]:
            with self.subTest(opening=opening):
                place = self.text.index(b"<key>", self.starts()[3])
                self.log.write_bytes(self.text[:place] + opening + self.text[place:])
                self.assert_reads_all_but({3}, self.recover())

    def test_a_broken_frame_costs_no_record(self):
        for old, new in [(b'encoding="UTF-8"', b'encoding="UTF-9"'), (b"<!DOCTYPE", b"<!DOCTYP\xff"),
                         (b"<array>", b"<arrax>"), (b"</plist>", b""), (b"\n\t<dict>", b"\nX<dict>")]:
            with self.subTest(broken=old):
                self.log.write_bytes(self.text.replace(old, new, 1))
                self.assert_reads_all_but(set(), self.recover())

    def test_a_block_of_zeros_costs_the_records_in_it(self):
        starts = self.starts()
        size = 4096
        place = starts[50] + 10
        self.log.write_bytes(self.text[:place] + bytes(size) + self.text[place + size:])
        lost = {number for number in range(RECORDS) if starts[number] < place + size and starts[number + 1] > place}
        self.assert_reads_all_but(lost, self.recover())

    def test_snapshots_visits_and_files_set_aside_are_read_on_as_well(self):
        def broken(text, after):
            place = text.index(b"<real>", text.index(b"<dict>", after)) + len(b"<real>")
            return text[:place] + b"x" + text[place + 1:]

        snap, pages = self.files / "snap_7_1.plist", self.files / "page.plist"
        snap.write_bytes(broken(snap.read_bytes(), 0))
        pages.write_bytes(broken(pages.read_bytes(), 0))
        (self.files / "whole_7_1.plist.damaged").write_bytes(broken(self.text, 0))
        result = self.recover()
        for name in ["whole_7_1.plist.damaged", "snap_7_1.plist"]:
            self.assertRegex(result.stdout,
                             re.escape(name) + r": [^:]*(\n  Now: )?DAMAGED(.*\n){2}  After it: 298 records")
        self.assertRegex(result.stdout, r"page\.plist: DAMAGED(.*\n){2}  Skipped: 1 record, \d+ bytes\.")
        self.assertEqual(self.recovered("whole_7_1.plist"), self.records[1:] + self.records)

    def test_a_text_may_hold_a_whole_file(self):
        escaped = self.text.decode().replace("&", "&amp;").replace("<", "&lt;").encode()
        at = self.text.index(b"</string>", self.starts()[3])
        text = self.text[:at] + escaped + self.text[at:]
        place = text.index(b"<real>", self.starts()[1]) + len(b"<real>")
        self.log.write_bytes(text[:place] + b"x" + text[place + 1:])
        result = self.recover()
        self.assertIn("Before that place: 1 record: 1 line.\n  After it: 297 records", result.stdout)


class HostileLists(CheckedBoards):
    def test_every_record_broken_in_a_way_that_takes_all_that_follows_is_still_read_in_one_go(self):
        log = self.files / "whole_7_1.plist"
        for piece in [b"\t<dict>\n<!--\n", b"\t<dict>\n<!--\n\t</dict>\n", b"\t<dict>\n",
                      b"\t<dict>\n<key a=\"\n\t</dict>\n", b"\t<dict>\n" + b"<array>" * 20 + b"\n\t</dict>\n",
                      b"x\n", b"\t</dict>\n", b"\t<dict"]:
            with self.subTest(piece=piece):
                log.write_bytes(b'<plist version="1.0">\n<array>\n' + piece * (3_000_000 // len(piece)))
                self.assertIn("whole_7_1.plist: DAMAGED at line ", self.recover().stdout)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
