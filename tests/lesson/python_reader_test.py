#!/usr/bin/env python3
"""Fails when the program that was written from the description of the files alone draws other pages than
the library's example.

    python_reader_test.py LESSON-PROGRAM LESSONS DRAW-BOARD
"""

import pathlib
import subprocess
import sys
import tempfile

HERE = pathlib.Path(__file__).resolve().parent
# Signs in place of pictures and media are free; everything else agrees to some pixels.
LIMITS = {"lesson.ndjson": "0.05", "second_lesson.ndjson": "1.0"}


def run(*command):
    subprocess.run([str(each) for each in command], check=True, stdout=subprocess.DEVNULL)


def main():
    lesson, data, drawer = (pathlib.Path(argument) for argument in sys.argv[1:])
    failed = False
    for name, limit in LIMITS.items():
        with tempfile.TemporaryDirectory() as folder:
            folder = pathlib.Path(folder)
            run(lesson, data / name, "--board", folder / "board", "--png", folder / "ours")
            run(sys.executable, "-B", drawer, folder / "board" / "whiteBoard", folder / "theirs")
            compared = subprocess.run([sys.executable, "-B", HERE / "compare_pictures.py",
                                       folder / "ours", folder / "theirs", "--limit", limit])
            failed |= compared.returncode != 0
    return 1 if failed else 0


sys.exit(main())
