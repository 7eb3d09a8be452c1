"""Runs the example programs, and reads what they leave."""

import pathlib
import plistlib
import re
import resource
import signal
import struct
import subprocess
import sys
import tempfile
import unittest
import zlib


def main():
    """Runs the calling script's tests; its arguments are kept for `argument`."""
    unittest.main(argv=sys.argv[:1])


def argument(number):
    return pathlib.Path(sys.argv[number])


class TemporaryFolder(unittest.TestCase):
    """A test case with a folder of its own."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)


def play(*arguments, **options):
    """Runs `lesson` with the arguments; answers its output, errors and status."""
    command = [argument(1), *map(str, arguments)]
    options = {"stdin": subprocess.DEVNULL, **options} if "input" not in options else options
    options = {"stdout": subprocess.PIPE, "stderr": subprocess.PIPE, **options}
    return subprocess.run(command, text=True, encoding="utf-8", **options)


def limit_files(size):
    """In the process that is about to become a program: none of its files can become larger."""
    signal.signal(signal.SIGXFSZ, signal.SIG_IGN)
    resource.setrlimit(resource.RLIMIT_FSIZE, (size, size))


def recorded(name):
    """The path of a shipped lesson."""
    return argument(2) / "data" / name


COLUMNS = ["page", "records", "entries", "positions", "whole", "snap", "time", "reopened"]


def table_of(output):
    """The rows of the printed table, by page; the row of sums is called "all"."""
    rows = {}
    for line in output.splitlines():
        cells = re.split(r"\s{2,}", line.strip())
        if len(cells) >= 7 and cells[1].replace(",", "").isdigit():
            row = dict(zip(COLUMNS, cells))
            for key in COLUMNS[1:6]:
                row[key] = int(row[key].replace(",", ""))
            rows[row["page"]] = row
    return rows


def records_in(path):
    """The records of a page file, as a strict reader that is not ours finds them."""
    return plistlib.loads(path.read_bytes())


class Picture:
    """The pixels of a PNG file without transparency, 8 bits a channel."""

    def __init__(self, path):
        data = path.read_bytes()
        assert data.startswith(b"\x89PNG\r\n\x1a\n"), path
        at, packed = 8, b""
        while at < len(data):
            length, name = struct.unpack(">I4s", data[at:at + 8])
            body = data[at + 8:at + 8 + length]
            if name == b"IHDR":
                self.width, self.height, depth, kind, _, _, interlaced = struct.unpack(">IIBBBBB", body)
                assert (depth, kind, interlaced) == (8, 2, 0), (path, depth, kind, interlaced)
            elif name == b"IDAT":
                packed += body
            at += length + 12
        self.rows = self.unfiltered(zlib.decompress(packed))

    def unfiltered(self, data):
        stride = 3 * self.width
        rows, above = [], bytearray(stride)
        for start in range(0, len(data), stride + 1):
            kind, row = data[start], bytearray(data[start + 1:start + 1 + stride])
            if kind == 1:
                for i in range(3, stride):
                    row[i] = (row[i] + row[i - 3]) & 0xFF
            elif kind == 2:
                row = bytearray((a + b) & 0xFF for a, b in zip(row, above))
            elif kind == 3:
                for i in range(stride):
                    row[i] = (row[i] + ((row[i - 3] if i >= 3 else 0) + above[i]) // 2) & 0xFF
            elif kind == 4:
                for i in range(stride):
                    left, corner = (row[i - 3], above[i - 3]) if i >= 3 else (0, 0)
                    row[i] = (row[i] + self.nearest(left, above[i], corner)) & 0xFF
            rows.append(row)
            above = row
        return rows

    @staticmethod
    def nearest(left, up, corner):
        """Of the three neighbours the one nearest to left + up - corner; earlier ones win."""
        to_left, to_up, to_corner = abs(up - corner), abs(left - corner), abs(left + up - 2 * corner)
        if to_left <= to_up and to_left <= to_corner:
            return left
        return up if to_up <= to_corner else corner

    def at(self, x, y):
        return tuple(self.rows[y][3 * x:3 * x + 3])

    def colours_in(self, left, top, right, bottom):
        """The colours that occur in a part of the picture."""
        return {self.at(x, y) for y in range(top, bottom) for x in range(left, right)}
