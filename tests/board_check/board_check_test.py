#!/usr/bin/env python3
"""What `board-check` tells of boards, and what it saves of them.

    board_check_test.py BOARD_CHECK LESSON
"""

import filecmp
import os
import shutil
import subprocess
import sys
import unittest

from checked_boards import CheckedBoards, plist


class Boards(CheckedBoards):
    def test_a_sound_board_is_all_fine(self):
        for folder in [self.board, self.files]:
            result = self.check(folder)
            self.assertEqual((result.returncode, result.stderr), (0, ""))
            self.assertIn("snap_7_1.plist: readable, 3 records: 2 line, 1 text.\n", result.stdout)
            self.assertTrue(result.stdout.endswith("All is fine.\n"))

    def test_a_sound_board_is_recovered_as_it_is(self):
        result = self.check(self.board, "--recover", self.out)
        self.assertEqual(result.returncode, 0, result.stderr)
        files = [file.name for file in self.files.iterdir()]
        self.assertEqual(sorted(files), sorted(file.name for file in (self.out / "whiteBoard").iterdir()))
        self.assertEqual(filecmp.cmpfiles(self.files, self.out / "whiteBoard", files, shallow=False),
                         (files, [], []))
        self.assertEqual([file.name for file in self.out.iterdir()], ["whiteBoard"])

    def test_of_a_log_cut_off_anywhere_the_records_before_are_saved(self):
        file = self.files / "whole_7_1.plist"
        whole, text = plist(file), file.read_bytes()
        end = text.index(b"</plist>") + len(b"</plist>")
        for size in sorted({0, 1, 100, end - 1, *range(200, end, 331)}):
            with self.subTest(size=size):
                file.write_bytes(text[:size])
                result = self.recover()
                self.assertIn("whole_7_1.plist: DAMAGED at line ", result.stdout)
                saved = text[:size].count(b"\n\t</dict>")
                if saved > 0:
                    self.assertEqual(self.recovered("whole_7_1.plist")[:saved], whole[:saved])
                self.assertEqual(self.recovered("snap_7_1.plist"),
                                 plist(self.whole_board / "whiteBoard" / "snap_7_1.plist"))

    def test_the_place_of_the_damage_is_told(self):
        file = self.files / "whole_7_1.plist"
        lines = file.read_bytes().split(b"\n")
        lines[30] = b"\t\t&nonsense;"
        file.write_bytes(b"\n".join(lines))
        self.assertRegex(self.recover().stdout, r"whole_7_1\.plist: DAMAGED at line 31, column 3: ")

    def test_a_lost_or_damaged_snapshot_is_rebuilt_from_the_log(self):
        file = self.files / "snap_7_1.plist"
        snap, text = plist(file), file.read_bytes()
        for name, damaged in [("missing", None), ("empty", b""), ("cut", text[: len(text) // 2]),
                              ("not UTF-8", text.replace(b"hello", b"\xff\xfe")),
                              ("another encoding", text.decode().encode("utf-16")[:-1]),
                              ("garbage", text[:500] + b"\0<<" + text[510:]),
                              ("a dictionary", b"<plist version=\"1.0\"><dict/></plist>")]:
            with self.subTest(damage=name):
                file.unlink(missing_ok=True)
                if damaged is not None:
                    file.write_bytes(damaged)
                self.assertIn("snapshot rebuilt from the log, 3 records.\n", self.recover().stdout)
                self.assertEqual(self.recovered("snap_7_1.plist"), snap)

    def test_a_lost_log_begins_anew_with_the_snapshot(self):
        (self.files / "whole_7_1.plist").unlink()
        result = self.recover()
        self.assertIn("whole_7_1.plist: MISSING.\n", result.stdout)
        self.assertEqual(self.recovered("whole_7_1.plist"), plist(self.files / "snap_7_1.plist"))

    def test_a_lost_list_of_pages_is_made_up_from_the_files(self):
        for damage in [None, b"", b"no list"]:
            file = self.files / "page.plist"
            file.unlink(missing_ok=True)
            if damage is not None:
                file.write_bytes(damage)
            self.recover()
            self.assertEqual([(page["WBID"], page["curPage"]) for page in self.recovered("page.plist")],
                             [(7, 1), (7, 2)])

    def test_strangers_and_temporaries_do_no_harm(self):
        strangers = ["notes.txt", "snap_x.plist", "snap_07_1.plist", "whole_7_1.plist.old", ".DS_Store",
                     "mine.tmp", "mine.plist.damaged", "snap_7_1.plist.damaged.tmp", "snap_7_1.plist.damaged-1",
                     "snap_7_1.plist.damaged-02", "snap_7_1.plist.damaged2", "page.plist.tmp-1", "page.plist.tmp-a-1",
                     "page.plist.tmp--1", "whole_7_1.plist.tmp2", "whole_7_99999999999999999999.plist"]
        for name in strangers:
            (self.files / name).write_text("mine")
        (self.files / "folder").mkdir()
        (self.files / "page.plist.tmp").write_text("")
        result = self.check(self.board)
        self.assertEqual(result.returncode, 0)
        for name in [*strangers, "folder"]:
            self.assertIn(name + ": no file of a board.\n", result.stdout)
        self.assertIn("page.plist.tmp: a write that did not end; 0 records.\n", result.stdout)

    def test_a_page_of_which_only_temporaries_are_there_may_have_been_cleared_and_does_not_come_back(self):
        text = (self.files / "whole_7_2.plist").read_bytes()
        for names in [["whole_7_3.plist.tmp"], ["snap_7_3.plist.tmp-12-3"],
                      ["snap_7_3.plist.tmp", "whole_7_3.plist.tmp", "whole_7_3.plist.tmp-12-3"]]:
            with self.subTest(names=names):
                for name in names:
                    (self.files / name).write_bytes(text)
                result = self.recover(status=0)
                self.assertNotIn("MISSING", result.stdout)
                for name in names:
                    self.assertIn(name + ": a first write that did not end; 1 record: 1 line.\n", result.stdout)
                    self.assertIn(f"page 7_3: {name} skipped: it is a write that did not end, neither file of the page "
                                  "is there, and the page may have been cleared.\n", result.stdout)
                    (self.files / name).unlink()
                self.assertEqual([file.name for file in (self.out / "whiteBoard").glob("*7_3*")], [])

    def test_what_was_set_aside_of_a_cleared_page_brings_no_temporary_back(self):
        text = (self.files / "whole_7_2.plist").read_bytes()
        (self.files / "whole_7_3.plist.damaged").write_bytes(text)
        (self.files / "whole_7_3.plist.tmp").write_bytes((self.files / "whole_7_1.plist").read_bytes())
        self.assertIn("whole_7_3.plist.tmp skipped", self.recover().stdout)
        self.assertEqual(self.recovered("whole_7_3.plist"), plist(self.files / "whole_7_2.plist"))

    def test_a_temporary_list_of_visits_alone_makes_no_visits(self):
        for file in self.files.iterdir():
            if file.name != "page.plist":
                file.unlink()
        (self.files / "page.plist").rename(self.files / "page.plist.tmp")
        self.recover(status=0)
        self.assertEqual(self.recovered("page.plist"), [])

    def test_a_write_that_did_not_end_stands_in_when_it_holds_more(self):
        log, snap = self.files / "whole_7_1.plist", self.files / "snap_7_1.plist"
        for suffix in [".tmp", ".tmp-4711-2"]:
            temporary = log.with_name(log.name + suffix)
            for state, replacement in [("missing", None), ("cut off", b"<plist><array>")]:
                with self.subTest(log=state, temporary=suffix):
                    shutil.copy(self.whole_board / "whiteBoard" / log.name, temporary)
                    log.unlink(missing_ok=True)
                    if replacement is not None:
                        log.write_bytes(replacement)
                    snap.write_bytes(b"")
                    self.assertIn("log of 8 records, 8 of them from a write that did not end; snapshot rebuilt",
                                  self.recover().stdout)
                    for name in [log.name, snap.name]:
                        self.assertEqual(self.recovered(name), plist(self.whole_board / "whiteBoard" / name))
            temporary.unlink()
        shutil.copy(self.whole_board / "whiteBoard" / log.name, log)
        (self.files / "whole_7_1.plist.tmp").write_bytes(b"<plist><array>")
        self.assertNotIn("of them from a write", self.recover().stdout)

    def test_an_empty_board_is_fine_and_a_folder_without_a_board_is_a_mistake(self):
        shutil.rmtree(self.files)
        self.files.mkdir()
        for folder in [self.board, self.files, str(self.files) + "/."]:
            result = self.check(folder)
            self.assertEqual((result.returncode, result.stderr), (0, ""))
            self.assertIn("The board is empty.\nAll is fine.\n", result.stdout)
        self.files.rmdir()
        for stranger in [None, "notes.txt"]:
            if stranger:
                (self.board / stranger).write_text("mine")
            result = self.check(self.board, "--recover", self.out)
            self.assertEqual((result.returncode, result.stdout), (2, ""))
            self.assertIn("there is no board", result.stderr)
            self.assertFalse(self.out.exists())

    def test_mistakes_have_a_status_of_their_own_and_write_nothing(self):
        self.out.mkdir()
        (self.out / "mine").write_text("mine")
        file = self.out / "mine"
        missing = self.board / "nothing"
        before = self.contents()
        for arguments, message in [
                ((), "DIR is required"), ((self.board, "--unknown"), "--unknown"),
                ((missing,), f"{missing}: No such file or directory"),
                ((file,), f"{file}: Not a directory"),
                (("",), "DIR: its name is empty"),
                ((self.board, "--recover", ""), "--recover: its name is empty"),
                ((self.board, "--recover"), "--recover: 1 required OUT missing"),
                ((self.board, "--recover", self.board), f"{self.board} exists and is not empty"),
                ((self.board, "--recover", self.out), f"{self.out} exists and is not empty"),
                ((self.board, "--recover", file), f"{file} exists and is no folder"),
                ((self.board, "--recover", "/proc/nowhere"), "cannot make /proc/nowhere/whiteBoard: "),
                ((self.board, "--recover", missing), f"{missing} lies in {self.board}, in which nothing is changed"),
                ((self.files, "--recover", self.files / ".." / "whiteBoard" / "a" / "b"), "nothing is changed")]:
            with self.subTest(arguments=arguments):
                result = self.check(*arguments)
                self.assertEqual(result.returncode, 2)
                self.assertIn(message, result.stderr)
        self.assertEqual([file.name for file in self.out.iterdir()], ["mine"])
        self.assertEqual(self.contents(), before)

    def test_an_empty_board_is_not_recovered_into_itself(self):
        shutil.rmtree(self.files)
        self.files.mkdir()
        self.assertEqual(self.check(self.files, "--recover", self.files).returncode, 2)
        self.assertEqual(list(self.files.iterdir()), [])
        self.assertEqual(self.check(self.board, "--recover", self.out).returncode, 0)
        self.assertEqual(self.recovered("page.plist"), [])

    def test_a_neighbour_whose_name_begins_the_same_is_outside(self):
        neighbour = self.board.with_name("board2")
        self.assertEqual(self.check(self.board, "--recover", str(neighbour) + "/").returncode, 0)
        self.assertEqual(self.check(neighbour).returncode, 0)

    def test_output_that_is_not_taken_is_a_mistake_even_of_a_sound_board(self):
        for arguments in [(self.board,), (self.board, "--recover", self.out), ("--help",)]:
            with self.subTest(arguments=arguments), open("/dev/full", "w", encoding="utf-8") as full:
                result = self.check(*arguments, stdout=full, stderr=subprocess.PIPE)
                self.assertEqual((result.returncode, result.stderr),
                                 (2, "board-check: cannot write to standard output\n"))
        self.assertEqual(self.check(self.out).returncode, 0, "what was asked for is done nevertheless")

    def test_a_closed_standard_stream_gives_its_number_to_no_file(self):
        result = self.check(self.board, "--recover", self.out, stderr=subprocess.PIPE, preexec_fn=lambda: os.close(1))
        self.assertEqual((result.returncode, result.stderr), (2, "board-check: cannot write to standard output\n"))
        self.assertEqual(self.check(self.out).returncode, 0)

    def test_a_board_that_cannot_be_written_whole_leaves_nothing_that_looks_like_one(self):
        result = self.check_limited(self.board, "--recover", self.out, FSIZE=2000)
        self.assertEqual(result.returncode, 2)
        self.assertRegex(result.stderr, r"\Aboard-check: write .*: File too large\n\Z")
        self.assertEqual(list(self.out.iterdir()), [])


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
