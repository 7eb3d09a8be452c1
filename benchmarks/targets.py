"""What is measured, beside which baseline, how much it may be and how much it should be: the one list."""

import dataclasses
import math
import typing

MICRO, MILLI = 1e-6, 1e-3


@dataclasses.dataclass
class Target:
    """One row of the table.

    `held` is what the library keeps: chosen from what was measured, and no looser than that needs. Missing it
    is a fault. `wished` is what it should come to, and is only told. Without either, a row is told for its own
    sake.
    """

    what: str
    unit: str  # of the figure and the baseline
    figure: typing.Callable
    baseline: typing.Optional[typing.Callable] = None
    held: typing.Optional[float] = None
    # What is limited: "times" the baseline, how much "more" than the baseline, or the figure "itself".
    relation: str = "times"
    wished: typing.Optional[float] = None

    def number(self, results):
        """What is compared with the held figure and the wished one."""
        figure = self.figure(results)
        if self.relation == "itself":
            return figure
        baseline = self.baseline(results)
        return figure - baseline if self.relation == "more" else figure / baseline

    def is_missed_by(self, results):
        """How far beyond the held figure, as a part of it; 0 when it is kept."""
        if self.held is None:
            return 0
        number = self.number(results)
        if number <= self.held:
            return 0
        return number / self.held - 1 if self.held > 0 else math.inf

    def is_wish_met(self, results):
        return self.number(results) <= self.wished


def seconds(name, per=1, unit=MICRO):
    return lambda results: results[name] / per / unit


def raw(name):
    return lambda results: results[name]


def median(name):
    return lambda results: results.median(name)


def _strokes():
    for pieces in (10_000, 100_000, 1_000_000):
        yield Target(f"one stroke of {pieces:,} pieces in, a piece", "us",
                     seconds(f"strokeIntoStorage/{pieces}", pieces),
                     seconds(f"strokeIntoPlainBoard/{pieces}", pieces), 1.8, wished=1.3)
    yield Target("the same: a piece of 1,000,000 beside one of 10,000", "us",
                 seconds("strokeIntoStorage/1000000", 1_000_000), seconds("strokeIntoStorage/10000", 10_000), 1.2)
    yield Target("saveVector of it alone, a piece", "us", seconds("saveVectorAlone/100000", 100_000),
                 seconds("strokeIntoPlainBoard/100000", 100_000))
    yield Target("the same pieces into SQLite, beside ours", "us", seconds("strokeIntoSqlite", 10_000),
                 seconds("strokeIntoStorage/10000", 10_000))


def _page_batches():
    for benchmark, queue in (("appendPageByPage", "drained"),
                             ("appendWhilePagesAreWritten", "running"),
                             ("appendWithTheQueueHeldUp", "held up")):
        for pages in (400, 800):
            yield Target(f"a batch for {pages} pages beside 200, queue {queue}, a page", "us",
                         seconds(f"{benchmark}/{pages}", pages), seconds(f"{benchmark}/200", 200), 1.2)
    for figure, queue in (("awaited", "drained"), ("written_meanwhile", "running"),
                          ("held_up", "held up")):
        name = f"bytes_of_a_batch_{figure}"
        yield Target(f"its memory for 800 pages, queue {queue}, a page", "bytes",
                     raw(f"{name}/800"), raw(f"{name}/200"), 1.05)
    for pages in (2_000, 4_000):
        yield Target(f"a pen's piece while {pages:,} pages wait to be written beside 1,000", "us",
                     seconds(f"savePieceWhilePagesWait/{pages}"), seconds("savePieceWhilePagesWait/1000"), 1.2)


def _repeated_vectors():
    for benchmark, what, count, held in (
            ("appendOffsetsOfOneIdentifier", "{:,} offsets of one identifier beside {:,}, each", 16_000, 1.3),
            ("appendRemovesOfOneIdentifier", "{:,} removes of one identifier beside {:,}, each", 20_000, 1.4),
            ("removeOneOfAlternatingOffsets", "a remove after {:,} mixed offsets beside {:,}, each",
             40_000, 1.6),
            ("appendMagnifiersAmongStrokes", "{:,} magnifiers among as many strokes beside {:,}, each",
             40_000, 1.6)):
        quarter = count // 4
        yield Target(what.format(count, quarter), "us", seconds(f"{benchmark}/{count}", count),
                     seconds(f"{benchmark}/{quarter}", quarter), held)


LESSON_PIECES = 2_000 * 20 + 500 * 21 + 200

TARGETS = [
    *_strokes(),
    Target("a lesson page in, a piece", "us", seconds("lessonIntoStorage", LESSON_PIECES),
           seconds("lessonIntoPlainBoard", LESSON_PIECES), 2.0, wished=1.3),
    Target("a move of a box among 10,000", "us", seconds("moveOfABoxAmongTenThousand"), held=2, relation="itself"),
    *_repeated_vectors(),
    Target("saveVector without an identifier, 4,000 cached pages beside 10", "us",
           seconds("saveUnnamed/4000"), seconds("saveUnnamed/10"), 1.2),
    Target("the same, of a vector that another page has", "us",
           seconds("saveUnnamedOfAnotherPage/4000"), seconds("saveUnnamedOfAnotherPage/10"), 1.2),
    Target("saveVector while saves are written: half of all calls", "us",
           raw("drawWhileSavesFire.p50_us"), raw("drawWithoutSaves.p50_us")),
    Target("saveVector while saves are written: 99.9 % of all calls", "us",
           raw("drawWhileSavesFire.p99.9_us"), raw("drawWithoutSaves.p99.9_us"), 50, "itself"),
    Target("saveVector while saves are written: the longest call", "us",
           raw("drawWhileSavesFire.max_us"), raw("drawWithoutSaves.max_us"), 2_000, "more"),
    Target("saveVector beside a batch of 300,000 pieces: the longest call, typically", "us",
           median("drawBesideABatch.pen_us"), held=1_000, relation="itself"),
    Target("currentPage beside it: the longest call, typically", "us",
           median("drawBesideABatch.accessor_us"), held=1_000, relation="itself"),
    Target("a timed save's caller, page of 100,000 pieces beside 10,000", "us",
           seconds("captureTimedSave/100000"), seconds("captureTimedSave/10000"), 1.2),
    Target("a timed save's caller, page of 1,000,000 pieces beside 10,000", "us",
           seconds("captureTimedSave/1000000"), seconds("captureTimedSave/10000"), 1.2),
    *_page_batches(),
    Target("page file to records, fresh process", "ms", seconds("fresh.load", unit=MILLI),
           seconds("fresh.parse", unit=MILLI), 1.5),
    Target("page file to records, warm", "ms", seconds("loadSnapFile", unit=MILLI),
           seconds("parseSnapFileWithEmptyHandlers", unit=MILLI), 1.5),
    Target("peak memory beyond the records beside the file", "bytes",
           raw("peak_bytes_beyond_the_records"), raw("bytes_of_the_page_file"), 0.05),
    Target("switchPage to a log of 60,000 beside its snapshot", "ms",
           seconds("switchToAWrittenPage", unit=MILLI), seconds("loadSnapFile", unit=MILLI), 1.8, wished=1.4),
    Target("the same log, when it is needed after all", "ms", seconds("readTheLog", unit=MILLI),
           seconds("loadSnapFile", unit=MILLI)),
    Target("open file handles after 100 pages", "handles", raw("handles_after_100_pages"), held=0,
           relation="itself"),
    Target("records to files on the disk", "ms", seconds("writePage", unit=MILLI),
           seconds("putTheSameBytesThere", unit=MILLI), 2.8, wished=2.0),
    Target("a piece's JSON text to its record", "us", seconds("decodePieceFromText"),
           seconds("parsePieceOnly"), 2.2, wished=1.6),
    Target("a piece's record to its JSON text", "us", seconds("encodePieceToText"),
           seconds("formatPieceByHand"), 1.3),
    *(Target(f"a position of {numbers} numbers added and the stroke copied, beside 3", "us",
             seconds(f"copyAfterEachPosition/{numbers}", 40_000), seconds("copyAfterEachPosition/3", 40_000), held)
      for numbers, held in ((2, 1.2), (4, 1.4))),
    Target("a position of a long stroke", "bytes", raw("bytes_of_a_position"), lambda results: 24, 1.05),
    Target("a piece of one position in the log", "bytes", raw("bytes_of_a_logged_piece"), held=360, relation="itself"),
    Target("an empty storage", "bytes", raw("bytes_of_an_empty_storage"), held=2_700, relation="itself"),
    Target("threads with 10,000 boards open, all queues used", "threads",
           raw("threads_with_all_boards_open"), held=9, relation="itself"),
    Target("switchPage among 200 cached pages, up to 400 visits", "us", seconds("switchAmongCachedPages/10"),
           held=10, relation="itself"),
    Target("the same: strokes of 1,000 positions beside 10", "us",
           seconds("switchAmongCachedPages/1000"), seconds("switchAmongCachedPages/10"), 1.2),
    Target("snapWithPage, cached", "us", seconds("snapOfACachedPage/10"), seconds("copyAListFromAPlainMap/10"), 1.8),
    Target("the same: strokes of 1,000 positions beside 10", "us",
           seconds("snapOfACachedPage/1000"), seconds("snapOfACachedPage/10"), 1.2),
    Target("hasVectorsWithPage, cached", "us", seconds("askWhetherACachedPageHasVectors/10"), held=0.2, relation="itself"),
    Target("the same: strokes of 1,000 positions beside 10", "us",
           seconds("askWhetherACachedPageHasVectors/1000"), seconds("askWhetherACachedPageHasVectors/10"), 1.2),
]
