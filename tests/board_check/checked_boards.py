"""Boards to be damaged, and `board-check` to look at them; for the tests of that program."""

import os
import pathlib
import plistlib
import resource
import shutil
import signal
import subprocess
import sys
import tempfile
import unittest

BOARD_CHECK, LESSON = sys.argv[1:3]
PAGE = '{"type":"switchPage","ts":%d,"ID":"p%d","WBID":7,"resource":1,"curPage":%d,"totalPage":2}'
LINE = ('{"type":"line","ts":%d,"ID":"%s","x":0.1,"y":0.2,"color":"#FF3467FF","pixel":4,"ps":400,'
        '"path":[[0.1,0.2,%d]]}')
TEXT = '{"type":"text","ts":9,"ID":"t","x":0,"y":0,"w":9,"h":9,"text":"hello"}'
REMOVE = '{"type":"remove","ts":10,"ID":"r","rmID":"b"}'


def small_lesson():
    lines = [PAGE % (1, 1, 1)]
    lines += [LINE % (ts, "abc"[ts % 3], ts) for ts in range(2, 8)]
    lines += [TEXT, REMOVE, PAGE % (20, 2, 2), LINE % (21, "d", 21)]
    return "\n".join(lines) + "\n"


def plist(path):
    with open(path, "rb") as file:
        return plistlib.load(file, fmt=plistlib.FMT_XML)


class CheckedBoards(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.home = tempfile.TemporaryDirectory()
        cls.whole_board = cls.play("whole", small_lesson())

    @classmethod
    def play(cls, name, lesson):
        """The board that comes of a lesson."""
        board = pathlib.Path(cls.home.name) / name
        file = board.with_suffix(".ndjson")
        file.write_text(lesson, encoding="utf-8")
        subprocess.run([LESSON, file, "--board", board], check=True, stdout=subprocess.DEVNULL)
        return board

    @classmethod
    def tearDownClass(cls):
        cls.home.cleanup()

    def setUp(self):
        self.temporary = tempfile.TemporaryDirectory()
        self.addCleanup(self.temporary.cleanup)
        self.board = pathlib.Path(self.temporary.name) / "board"
        self.out = pathlib.Path(self.temporary.name) / "out"
        shutil.copytree(self.whole_board, self.board)
        self.files = self.board / "whiteBoard"

    def check(self, *arguments, **options):
        options = {"capture_output": True} if not options else options
        return subprocess.run([BOARD_CHECK, *map(str, arguments)], text=True, timeout=120, **options)

    def check_limited(self, *arguments, **limits):
        """The same with limits of the process, such as AS=BYTES."""
        def limit():
            signal.signal(signal.SIGXFSZ, signal.SIG_IGN)
            for name, most in limits.items():
                resource.setrlimit(getattr(resource, "RLIMIT_" + name), (most, most))
        return self.check(*arguments, capture_output=True, preexec_fn=limit)

    def contents(self):
        def content(file):
            if file.is_symlink():
                return os.readlink(file)
            return file.read_bytes() if file.is_file() else file.lstat().st_mtime_ns
        return {str(file): content(file) for file in [self.board, *self.board.rglob("*")]}

    def recovered(self, name):
        return plist(self.out / "whiteBoard" / name)

    def recover(self, status=1):
        before = self.contents()
        shutil.rmtree(self.out, ignore_errors=True)
        result = self.check(self.board, "--recover", self.out)
        self.assertEqual(self.contents(), before, "the board itself is never changed")
        self.assertEqual(result.returncode, status, result.stdout + result.stderr)
        self.assertEqual(self.check(self.out).returncode, 0, "what is recovered is fine")
        return result
