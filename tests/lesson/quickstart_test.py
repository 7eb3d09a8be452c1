#!/usr/bin/env python3
"""The quickstart does what it tells: every piece as JSON, and one stroke in the files."""

import json
import os
import subprocess

import support


class Quickstart(support.TemporaryFolder):
    def run_it(self):
        return subprocess.run([support.argument(1)], capture_output=True, text=True, encoding="utf-8",
                              env={**os.environ, "TMPDIR": str(self.folder)})

    def test_the_files_hold_the_stroke_that_its_pieces_make(self):
        result = self.run_it()
        self.assertEqual((result.returncode, result.stderr), (0, ""))
        *lines, verdict = result.stdout.splitlines()
        pieces = [json.loads(line) for line in lines]
        self.assertEqual(len(pieces), 9)
        self.assertEqual(len({piece["ID"] for piece in pieces}), 1)

        board = self.folder / "quickstart" / "whiteBoard"
        self.assertEqual(verdict, f"{board} holds the stroke.")
        stroke, = support.records_in(board / "snap_7_1.plist")
        self.assertEqual(stroke["path"], [[p["x"], p["y"], p["ts"]] for p in pieces])
        self.assertEqual((stroke["type"], stroke["end"], stroke["pixel"]), ("line", True, 4))

    def test_output_that_is_not_taken_is_an_error(self):
        with open("/dev/full", "w", encoding="utf-8") as full:
            result = subprocess.run([support.argument(1)], stdout=full, stderr=subprocess.PIPE, text=True,
                                    env={**os.environ, "TMPDIR": str(self.folder)})
        self.assertEqual((result.returncode, result.stderr), (1, "quickstart: cannot write to standard output\n"))

    def test_it_can_run_again(self):
        self.assertEqual(self.run_it().returncode, 0)
        self.assertEqual(self.run_it().returncode, 0)


if __name__ == "__main__":
    support.main()
