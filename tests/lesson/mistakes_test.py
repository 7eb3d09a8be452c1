#!/usr/bin/env python3
"""What `lesson` does with bad lines, bad options and places where it cannot read or write."""

import os
import string
import tempfile

import support

PAGE = '{"type":"switchPage","ts":1,"ID":"u1_0","WBID":7,"resource":42,"curPage":1,"totalPage":1}'
LINE = '{"type":"line","ts":2,"ID":"u1_1","x":0.1,"y":0.2,"color":"#FF3467FF","pixel":4,"ps":400}'


class Lines(support.TemporaryFolder):
    def play_lines(self, *lines, arguments=()):
        file = self.folder / "lesson.ndjson"
        file.write_bytes(b"\n".join(line if isinstance(line, bytes) else line.encode()
                                    for line in lines) + b"\n")
        return support.play(file, "--board", self.folder / "board", *arguments)

    def test_a_line_that_is_no_record_is_reported_with_its_number_and_skipped(self):
        for bad in ["not JSON", "42", '"text"', "null", "[1, 2]", "[" + LINE + "]", "{", "{}",
                    '{"unknown": 1}', LINE[:-1], LINE + LINE, b'{"type":"\xff"}', "\x00", "{" * 5000]:
            with self.subTest(line=bad[:40]):
                result = self.play_lines(PAGE, bad, LINE, arguments=["--fresh"])
                self.assertEqual(result.returncode, 1)
                self.assertRegex(result.stderr, r"\Alesson: line 2: no .*, skipped\n\Z")
                self.assertIn("1 page, 1 stroke, 1 position: all pages verified.\n", result.stdout)
                self.assertIn("Lines skipped: 1.\n", result.stdout)

    def test_every_skipped_line_is_reported_and_counted(self):
        result = self.play_lines("a", PAGE, "", "b", LINE, "c")
        self.assertEqual(result.returncode, 1)
        numbers = [line.split(":")[1] for line in result.stderr.splitlines()]
        self.assertEqual(numbers, [" line 1", " line 4", " line 6"])
        self.assertIn("Lines skipped: 3.\n", result.stdout)

    def test_empty_lines_and_line_ends_of_other_systems_are_no_mistake(self):
        result = self.play_lines("", PAGE + "\r", "  \t", "\r", LINE + "\r", "")
        self.assertEqual((result.returncode, result.stderr), (0, ""))

    def test_a_last_line_without_line_end_counts(self):
        result = support.play("-", "--board", self.folder, input=PAGE + "\n" + LINE)
        self.assertEqual(result.returncode, 0)
        self.assertIn("1 page, 1 stroke, 1 position: all pages verified.\n", result.stdout)

    def test_records_of_unknown_types_are_records(self):
        result = self.play_lines(PAGE, '{"type":"somethingNew","ID":"a"}', '{"x":0.1,"y":0,"ID":"b"}')
        self.assertEqual((result.returncode, result.stderr), (0, ""))
        self.assertEqual(support.table_of(result.stdout)["7_1"]["entries"], 2)

    def test_records_before_the_first_page_are_told_to_be_in_no_file(self):
        result = self.play_lines(LINE, LINE, PAGE, LINE)
        self.assertEqual(result.returncode, 1)
        self.assertEqual(result.stderr, "lesson: 2 records came before the first page switch; "
                                        "the board keeps them in no file\n")

    def test_an_empty_lesson_is_played(self):
        result = self.play_lines("")
        self.assertEqual((result.returncode, result.stderr), (0, ""))
        self.assertIn("0 pages, 0 strokes, 0 positions: all pages verified.\n", result.stdout)

    def test_a_page_that_comes_back_different_is_named(self):
        # XML cannot carry this character, so the file has another one in its place.
        text = r'{"type":"text","ts":2,"ID":"t","x":0,"y":0,"w":0.1,"h":0.1,"text":"a\u0001b"}'
        result = self.play_lines(PAGE, LINE, text)
        self.assertEqual(result.returncode, 1)
        self.assertIn("Page 7_1 came back different: in the snapshot, record 2 (text t) differs in "
                      "text.\n", result.stdout)
        self.assertIn("1 page, 1 stroke, 1 position: NOT verified.\n", result.stdout)
        self.assertEqual(support.table_of(result.stdout)["7_1"]["reopened"], "DIFFERENT")

    def test_clients_that_disagree_are_told(self):
        # Each arrival of a record that is no position adds the stroke with its identifier once more.
        offset = '{"type":"offset","ts":3,"ID":"u1_1","direction":1,"value":1}'
        result = self.play_lines(PAGE, LINE, offset, arguments=["--second-client"])
        self.assertEqual(result.returncode, 1)
        self.assertIn("Second client: 1 page, 1 picture, 3 files equal.\n", result.stdout)
        self.assertIn("Client that received everything twice: DIFFERENT: page 7_1: "
                      "3 records instead of 2.\n", result.stdout)

    def test_records_without_identifier_are_the_same_for_all_clients(self):
        text = '{"type":"text","ts":2,"x":0,"y":0,"w":0.1,"h":0.1,"text":"a"}'
        result = self.play_lines(PAGE, text, arguments=["--second-client"])
        self.assertEqual((result.returncode, result.stderr), (0, ""))


class Pictures(support.TemporaryFolder):
    def test_no_record_keeps_a_picture_from_being_drawn(self):
        far, many = "1e308", "9223372036854775807"
        lines = [PAGE]
        for kind in ["rectangle", "circle", "ellipse", "triangle", "line", "arrowLine", "rhombus", "?"]:
            for x, w, points in [(far, "-" + far, "[]"), ("0", "0", "[[0]]"), ("-0.5", far, "[7]"),
                                 ("0", "-0.5", f"[[{far},0],[0,{far}],[1,-{far}]]"),
                                 ("0", "0.5", '[["a","b"],null,[{}]]')]:
                lines.append(f'{{"type":"diagram","ts":2,"ID":"{len(lines)}","kind":"{kind}","x":{x},'
                             f'"y":{x},"w":{w},"h":{w},"points":{points},"pixel":{many},"ps":1,'
                             f'"radiusX":{w},"radiusY":{far},"color":"?"}}')
        for type_name in ["text", "image", "media", "cursor", "camera", "magnifier", "line", "eraser"]:
            for x, w in [(far, far), ("-" + far, "0"), ("0", "-" + far), ("0", "0")]:
                lines.append(f'{{"type":"{type_name}","ts":2,"ID":"{len(lines)}","x":{x},"y":{x},"w":{w},'
                             f'"h":{w},"text":"a b\\n\\u0001 é","fontSize":{w},"fontName":"\\u0002",'
                             f'"rotation":{far},"url":"{"long " * 400}","pixel":{many},"ps":1,'
                             f'"path":[[],[1],[{x},{x}],[{far},-{far},1]],"offset":[{far},"a"],"end":true}}')
        result = support.play("-", "--board", self.folder, "--png", self.folder, "--svg", self.folder,
                              "--size", "64x36", input="\n".join(lines))
        self.assertEqual(result.stderr, "")
        self.assertTrue((self.folder / "page-7_1.svg").is_file())
        picture = support.Picture(self.folder / "page-7_1.png")
        self.assertEqual((picture.width, picture.height), (64, 36))

    def test_texts_and_addresses_of_a_megabyte_are_drawn(self):
        box = '"ts":2,"x":-0.5,"y":-0.5,"w":1e300,"h":0.5'
        lines = [PAGE, f'{{"type":"text","ID":"a",{box},"text":"{"word " * 200000}","fontSize":0.001}}',
                 f'{{"type":"text","ID":"b",{box},"text":"{"é" * 500000}"}}',
                 f'{{"type":"image","ID":"c",{box},"url":"{"é" * 500000}"}}']
        result = support.play("-", "--board", self.folder, "--png", self.folder, input="\n".join(lines))
        self.assertEqual((result.returncode, result.stderr), (0, ""))
        self.assertTrue((self.folder / "page-7_1.png").is_file())

    def test_a_picture_can_be_a_single_pixel(self):
        result = support.play("-", "--board", self.folder, "--png", self.folder, "--size", "1x1",
                              input=PAGE + "\n" + LINE)
        self.assertEqual((result.returncode, result.stderr), (0, ""))
        self.assertEqual(support.Picture(self.folder / "page-7_1.png").width, 1)

    def test_a_picture_that_cannot_be_written_whole_is_none_and_an_earlier_one_stays(self):
        # Its letters take more room in a picture than in the board.
        letters = string.ascii_letters + string.digits
        text = f'{{"type":"text","ts":2,"ID":"t","x":-0.5,"y":-0.25,"w":1,"h":0.5,"text":"{letters}","fontSize":30}}'
        lines = [PAGE, LINE, text]
        for kind in ["svg", "png"]:
            with self.subTest(kind=kind):
                pictures = self.folder / kind
                draw = ["-", "--fresh", "--board", self.folder / "board", f"--{kind}", pictures, "--size", "4000x4000"]
                support.play(*draw, input="\n".join(lines))
                picture = pictures / f"page-7_1.{kind}"
                limit = picture.stat().st_size - 1
                largest = max(file.stat().st_size for file in (self.folder / "board" / "whiteBoard").iterdir())
                self.assertLess(largest, limit, "the limit must be the picture's alone")
                for earlier in [None, b"mine"]:
                    picture.unlink() if earlier is None else picture.write_bytes(earlier)
                    result = support.play(*draw, input="\n".join(lines), preexec_fn=lambda: support.limit_files(limit))
                    self.assertEqual(result.returncode, 2)
                    self.assertRegex(result.stderr, rf"\Alesson: cannot write {picture}: .+\n\Z")
                    left = {file.name: file.read_bytes() for file in pictures.iterdir()}
                    self.assertEqual(left, {} if earlier is None else {picture.name: earlier})

    def test_a_pdf_file_that_cannot_be_written_whole_is_none_and_an_earlier_one_stays(self):
        letters = string.ascii_letters + string.digits
        text = f'{{"type":"text","ts":2,"ID":"t","x":-0.5,"y":-0.25,"w":1,"h":0.5,"text":"{letters}","fontSize":30}}'
        pdf = self.folder / "lesson.pdf"
        draw = ["-", "--fresh", "--board", self.folder / "board", "--pdf", pdf]
        support.play(*draw, input="\n".join([PAGE, text]))
        limit = pdf.stat().st_size - 1
        largest = max(file.stat().st_size for file in (self.folder / "board" / "whiteBoard").iterdir())
        self.assertLess(largest, limit, "the limit must be the picture's alone")
        for earlier in [None, b"mine"]:
            pdf.unlink() if earlier is None else pdf.write_bytes(earlier)
            result = support.play(*draw, input="\n".join([PAGE, text]),
                                  preexec_fn=lambda: support.limit_files(limit))
            self.assertEqual(result.returncode, 2)
            self.assertRegex(result.stderr, rf"\Alesson: cannot write {pdf}: .+\n\Z")
            left = {file.name: file.read_bytes() for file in self.folder.iterdir() if file.name != "board"}
            self.assertEqual(left, {} if earlier is None else {pdf.name: earlier})

    def test_a_pdf_file_in_a_folder_that_is_not_there_is_a_clear_sentence(self):
        pdf = self.folder / "no" / "lesson.pdf"
        result = support.play("-", "--board", self.folder / "board", "--pdf", pdf, input=PAGE)
        self.assertEqual(result.returncode, 2)
        self.assertRegex(result.stderr, rf"\Alesson: cannot write {pdf}: .+\n\Z")


class Streams(support.TemporaryFolder):
    def test_a_standard_input_that_cannot_be_read_is_a_clear_sentence(self):
        with tempfile.TemporaryDirectory() as folder:
            handle = os.open(folder, os.O_RDONLY)
            self.addCleanup(os.close, handle)
            for options in [{"stdin": handle}, {"preexec_fn": lambda: os.close(0)}]:
                with self.subTest(options=options):
                    result = support.play("-", "--board", self.folder, **options)
                    self.assertEqual(result.returncode, 2)
                    self.assertEqual(result.stderr, "lesson: reading standard input failed\n")

    def test_a_file_that_cannot_be_read_is_a_clear_sentence(self):
        result = support.play("/proc/self/mem", "--board", self.folder)
        self.assertEqual((result.returncode, result.stderr), (2, "lesson: reading /proc/self/mem failed\n"))

    def test_output_that_is_not_taken_is_a_clear_sentence(self):
        for arguments in [["-", "--board", self.folder], ["--help"]]:
            with self.subTest(arguments=arguments), open("/dev/full", "w", encoding="utf-8") as full:
                result = support.play(*arguments, stdout=full, input=PAGE)
                self.assertEqual((result.returncode, result.stderr), (2, "lesson: cannot write to standard output\n"))

    def test_a_closed_standard_stream_gives_its_number_to_no_file(self):
        result = support.play("-", "--board", self.folder, input=PAGE + "\n" + LINE, preexec_fn=lambda: os.close(1))
        self.assertEqual((result.returncode, result.stderr), (2, "lesson: cannot write to standard output\n"))
        for file in (self.folder / "whiteBoard").iterdir():
            support.records_in(file)


class Places(support.TemporaryFolder):
    def assert_cannot_run(self, result, reason):
        self.assertEqual(result.returncode, 2)
        self.assertRegex(result.stderr, rf"\Alesson: {reason}\n\Z")

    def test_a_missing_file_is_a_clear_sentence(self):
        missing = self.folder / "none.ndjson"
        self.assert_cannot_run(support.play(missing), f"there is no file {missing}")

    def test_a_folder_is_no_lesson(self):
        self.assert_cannot_run(support.play(self.folder), f"{self.folder} is a folder")

    def test_a_folder_that_cannot_be_made_is_a_clear_sentence(self):
        # Below a regular file nobody can make a folder, whoever runs the test.
        file = self.folder / "file"
        file.write_text(PAGE)
        for option in ["--board", "--svg", "--png"]:
            with self.subTest(option=option):
                result = support.play(file, "--board", self.folder / "board", "--fresh", option,
                                      file / "below")
                self.assert_cannot_run(result, f"cannot make the folder {file}/below")

    def test_a_folder_that_cannot_be_written_is_a_clear_sentence(self):
        self.assert_cannot_run(support.play("-", "--board", "/proc/self"),
                               "cannot write into the folder /proc/self")

    def test_a_board_that_holds_pages_is_refused_and_stays_as_it_is(self):
        first = support.play("-", "--board", self.folder, input=PAGE + "\n" + LINE)
        self.assertEqual(first.returncode, 0)
        files = {path: path.read_bytes() for path in (self.folder / "whiteBoard").iterdir()}
        again = support.play("-", "--board", self.folder, input=PAGE)
        self.assert_cannot_run(again, f"the board {self.folder}/whiteBoard already holds pages; "
                                      "--fresh deletes them first")
        self.assertEqual(
            {path: path.read_bytes() for path in (self.folder / "whiteBoard").iterdir()}, files)

    def test_fresh_deletes_the_pages_and_nothing_beside_the_board(self):
        support.play("-", "--board", self.folder, input=PAGE + "\n" + LINE)
        (self.folder / "mine.txt").write_text("mine")
        other = PAGE.replace('"curPage":1', '"curPage":2')
        result = support.play("-", "--board", self.folder, "--fresh", input=other + "\n" + LINE)
        self.assertEqual((result.returncode, result.stderr), (0, ""))
        self.assertEqual((self.folder / "mine.txt").read_text(), "mine")
        self.assertEqual(sorted(path.name for path in (self.folder / "whiteBoard").iterdir()),
                         ["page.plist", "snap_7_2.plist", "whole_7_2.plist"])

    def test_without_a_board_folder_there_is_a_new_one_below_the_temporary_directory(self):
        boards = set()
        for _ in range(2):
            result = support.play("-", input=PAGE, env={**os.environ, "TMPDIR": str(self.folder)})
            self.assertEqual(result.returncode, 0)
            boards.add(result.stdout.splitlines()[0])
        self.assertEqual(len(boards), 2)
        for board in boards:
            self.assertRegex(board, rf"\ABoard: {self.folder}/lesson-\w{{6}}/whiteBoard\Z")


class Options(support.TemporaryFolder):
    def test_help_names_every_option_and_every_status(self):
        result = support.play("--help")
        self.assertEqual((result.returncode, result.stderr), (0, ""))
        for word in ["LESSON", "--board", "--fresh", "--second-client", "--svg", "--png", "--pdf", "--size",
                     "Exit status: 0 "]:
            self.assertIn(word, result.stdout)

    def test_mistakes_in_the_command_line_end_with_status_2(self):
        for arguments in [[], ["--unknown"], ["-", "-"], ["-", "--board"], ["-", "--size", "1280"],
                          ["-", "--size", "0x720"], ["-", "--size", "1280x"], ["-", "--size", "-1x1"],
                          ["-", "--size", "1280x720x3"], ["-", "--size", "9000x1"],
                          ["-", "--size", "1e3x1"], ["-", "--size", "99999999999x1"]]:
            with self.subTest(arguments=arguments):
                result = support.play(*arguments)
                self.assertEqual((result.returncode, result.stdout), (2, ""))
                self.assertIn("--help", result.stderr)

    def test_of_two_equal_options_the_last_counts(self):
        result = support.play("-", "--board", self.folder / "a", "--board", self.folder / "b", input=PAGE)
        self.assertEqual(result.returncode, 0)
        self.assertFalse((self.folder / "a").exists())
        self.assertTrue((self.folder / "b").exists())


if __name__ == "__main__":
    support.main()
