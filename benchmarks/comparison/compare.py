#!/usr/bin/env python3
"""Compares the library with what people use instead to keep a board, and prints a table.

    compare.py FOLDER LESSON [DOCUMENT ...]

FOLDER is where the benchmark programs are, LESSON a recorded lesson: a vector's JSON text a line. The table goes into
each DOCUMENT too, between the two marks there: all of it, or its last rows in short. Node.js finds its packages in
NODE_PATH.

Each way records the lesson, and besides the tenth of such lessons on later pages of one board; then a fresh process
opens the newest page. Of several runs, which take turns, the median is shown.
"""

import json
import pathlib
import re
import statistics
import subprocess
import sys
import tempfile

RUNS = 3
LESSONS_OF_A_COURSE = 10

HERE = pathlib.Path(__file__).resolve().parent
HEAD = ["", "VelWhiteBoard", "event log in SQLite", "CRDT library (Yjs)", "own JSON file"]
STORES = ["velwhiteboard", "sqlite", "crdt", "document"]


def course(lesson, count):
    """Lessons one after the other: later pages, later times, other identifiers."""
    vectors = [json.loads(line) for line in lesson.read_text(encoding="utf-8").splitlines()]
    pages = sum(vector["type"] == "switchPage" for vector in vectors)
    seconds = vectors[-1]["ts"] - vectors[0]["ts"] + 60
    for number in range(count):
        for vector in vectors:
            moved = dict(vector, ts=vector["ts"] + number * seconds, ID=f"{vector['ID']}{number:02}")
            if vector["type"] == "switchPage":
                moved["curPage"] = vector["curPage"] + number * pages
            if "path" in vector:
                moved["path"] = [[x, y, ts + number * seconds] for x, y, ts in vector["path"]]
            yield json.dumps(moved, separators=(",", ":"))


def command(programs, store, what, *arguments):
    if store == "crdt":
        return ["node", HERE / "crdt_store.js", what, *arguments]
    return [programs / "velwb_comparison", what, store, *arguments]


def measured(programs, store, lesson, before):
    """What one run took: microseconds, and bytes on the disk."""
    with tempfile.TemporaryDirectory() as folder:
        run = lambda *arguments: json.loads(
            subprocess.run(command(programs, store, *arguments), check=True, capture_output=True, text=True).stdout)
        recorded = run("record", folder, lesson, str(before))
        size = sum(file.stat().st_size for file in pathlib.Path(folder).rglob("*") if file.is_file())
        return {**recorded, **run("open", folder), "bytes": size}


def medians(programs, lesson, before=0):
    """For each store, the median of each figure; all must have kept the same."""
    runs = {store: [] for store in STORES}
    for _ in range(RUNS):
        for store in STORES:
            runs[store].append(measured(programs, store, lesson, before))
    contents = {(run["pieces"], run["entries"], run["positions"]) for of_store in runs.values() for run in of_store}
    if len(contents) != 1:
        raise RuntimeError(f"the ways do not keep the same: {contents}")
    return {
        store: {name: statistics.median(run[name] for run in of_store) for name in of_store[0]}
        for store, of_store in runs.items()
    }


def time(microseconds):
    """In the unit that leaves one to three digits before the point."""
    for unit, size in (("us", 1), ("ms", 1e3)):
        if microseconds < 999.5 * size:
            return f"{microseconds / size:.3g} {unit}"
    return f"{microseconds / 1e6:.3g} s"


KINDS = [
    ("a piece, half of them within", "piece_median_us", time),
    ("a piece, 999 of 1,000 within", "piece_p999_us", time),
    ("a save holds the pen up for, at most", "save_longest_us", time),
    ("opening the newest page", "open_us", time),
    ("on the disk", "bytes", lambda figure: f"{figure / 1e6:.3g} MB"),
]


def rows(figures):
    return [[what, *(shown(figures[store][name]) for store in STORES)] for what, name, shown in KINDS]


def titled(title, plain_rows):
    return [[f"{title}: {row[0]}", *row[1:]] for row in plain_rows]


def as_table(plain_rows):
    lines = ["| " + " | ".join(each) + " |" for each in [HEAD, *plain_rows]]
    lines.insert(1, "|" + "---|" * len(HEAD))
    return "\n".join(lines)


def with_tables(document, tables):
    """The document with other tables between its marks: each is in `tables` by the name in the mark."""
    marks = re.compile(r"(<!-- comparison, (\w+): begin -->\n).*?(<!-- comparison, \2: end -->)", re.S)
    text, count = marks.subn(lambda found: found[1] + tables[found[2]] + "\n" + found[3], document)
    if count != 1:
        raise ValueError("the document has no marks for a table")
    return text


def main():
    if len(sys.argv) < 3 or not pathlib.Path(sys.argv[1]).is_dir():
        sys.exit(__doc__)
    programs, lesson = pathlib.Path(sys.argv[1]).resolve(), pathlib.Path(sys.argv[2]).resolve()
    first = rows(medians(programs, lesson))
    with tempfile.NamedTemporaryFile("w", encoding="utf-8", suffix=".ndjson") as file:
        texts = list(course(lesson, LESSONS_OF_A_COURSE))
        file.writelines(text + "\n" for text in texts)
        file.flush()
        before = len(texts) // LESSONS_OF_A_COURSE * (LESSONS_OF_A_COURSE - 1)
        last = rows(medians(programs, pathlib.Path(file.name), before))
    tables = {
        "all": as_table(titled("the first lesson", first) + titled(f"lesson {LESSONS_OF_A_COURSE} of a board", last)),
        "short": as_table(last),
    }
    print(tables["all"])
    for document in map(pathlib.Path, sys.argv[3:]):
        document.write_text(with_tables(document.read_text(encoding="utf-8"), tables), encoding="utf-8")


if __name__ == "__main__":
    main()
