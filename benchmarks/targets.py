"""What is measured, beside which baseline, and how much it may be: the one list of all targets."""

import dataclasses
import typing

MICRO, MILLI = 1e-6, 1e-3


@dataclasses.dataclass
class Target:
    what: str
    unit: str  # of the figure and the baseline
    figure: typing.Callable
    baseline: typing.Optional[typing.Callable] = None
    limit: typing.Optional[float] = None  # none: told for its own sake
    # What is limited: "times" the baseline, how much "more" than the baseline, or the figure "itself".
    relation: str = "times"

    def number(self, results):
        """What the limit is one of."""
        figure = self.figure(results)
        if self.relation == "itself":
            return figure
        baseline = self.baseline(results)
        return figure - baseline if self.relation == "more" else figure / baseline

    def is_missed_by(self, results):
        """How far beyond the limit, as a part of it; 0 when it is kept."""
        return 0 if self.limit is None else max(0, self.number(results) / self.limit - 1)


def seconds(name, per=1, unit=MICRO):
    return lambda results: results[name] / per / unit


def raw(name):
    return lambda results: results[name]


def _strokes():
    for pieces in (10_000, 100_000, 1_000_000):
        yield Target(f"one stroke of {pieces:,} pieces in, a piece", "us",
                     seconds(f"strokeIntoStorage/{pieces}", pieces),
                     seconds(f"strokeIntoPlainFold/{pieces}", pieces), 2.0)
    yield Target("the same: a piece of 1,000,000 beside one of 10,000", "us",
                 seconds("strokeIntoStorage/1000000", 1_000_000), seconds("strokeIntoStorage/10000", 10_000), 1.2)
    yield Target("saveVector of it alone, a piece", "us", seconds("saveVectorAlone/100000", 100_000),
                 seconds("strokeIntoPlainFold/100000", 100_000))


LESSON_PIECES = 2_000 * 20 + 500 * 21 + 200

TARGETS = [
    *_strokes(),
    Target("a lesson page in, a piece", "us", seconds("lessonIntoStorage", LESSON_PIECES),
           seconds("lessonIntoPlainFold", LESSON_PIECES), 2.5),
    Target("a move of a box among 10,000", "us", seconds("moveOfABoxAmongTenThousand"), limit=20, relation="itself"),
    Target("saveVector while saves are written: half of all calls", "us",
           raw("drawWhileSavesFire.p50_us"), raw("drawWithoutSaves.p50_us")),
    Target("saveVector while saves are written: 99.9 % of all calls", "us",
           raw("drawWhileSavesFire.p99.9_us"), raw("drawWithoutSaves.p99.9_us"), 100, "itself"),
    Target("saveVector while saves are written: the longest call", "us",
           raw("drawWhileSavesFire.max_us"), raw("drawWithoutSaves.max_us"), 2_000, "more"),
    Target("a timed save's caller, page of 100,000 pieces beside 10,000", "us",
           seconds("captureTimedSave/100000"), seconds("captureTimedSave/10000"), 1.2),
    Target("a timed save's caller, page of 1,000,000 pieces beside 10,000", "us",
           seconds("captureTimedSave/1000000"), seconds("captureTimedSave/10000"), 1.2),
    Target("page file to records, fresh process", "ms", seconds("fresh.load", unit=MILLI),
           seconds("fresh.parse", unit=MILLI), 1.5),
    Target("page file to records, warm", "ms", seconds("loadSnapFile", unit=MILLI),
           seconds("parseSnapFileWithEmptyHandlers", unit=MILLI), 1.5),
    Target("peak memory beyond the records beside the file", "bytes",
           raw("peak_bytes_beyond_the_records"), raw("bytes_of_the_page_file"), 1.0),
    Target("switchPage to a log of 60,000 pieces beside its snapshot alone", "ms",
           seconds("switchToAWrittenPage", unit=MILLI), seconds("loadSnapFile", unit=MILLI), 1.2),
    Target("the same log, when it is wanted after all", "ms", seconds("readTheLog", unit=MILLI),
           seconds("loadSnapFile", unit=MILLI)),
    Target("records to files on the disk", "ms", seconds("writePage", unit=MILLI),
           seconds("putTheSameBytesThere", unit=MILLI), 2.5),
    Target("a piece's JSON text to its record", "us", seconds("decodePieceFromText"),
           seconds("parsePieceOnly"), 1.6),
    Target("a piece's record to its JSON text", "us", seconds("encodePieceToText"),
           seconds("formatPieceByHand"), 1.3),
    Target("a position of a long stroke", "bytes", raw("bytes_of_a_position"), lambda results: 24, 1.05),
    Target("a piece of one position in the log", "bytes", raw("bytes_of_a_logged_piece"), limit=400, relation="itself"),
    Target("an empty storage", "bytes", raw("bytes_of_an_empty_storage"), limit=4_096, relation="itself"),
    Target("threads with 10,000 boards open, all queues used", "threads",
           raw("threads_with_all_boards_open"), limit=9, relation="itself"),
    Target("switchPage among 200 cached pages, up to 400 visits", "us", seconds("switchAmongCachedPages/10"), limit=10, relation="itself"),
    Target("the same: strokes of 1,000 positions beside 10", "us",
           seconds("switchAmongCachedPages/1000"), seconds("switchAmongCachedPages/10"), 1.2),
    Target("snapWithPage, cached", "us", seconds("snapOfACachedPage/10"), seconds("copyAListFromAPlainMap/10"), 2.0),
    Target("the same: strokes of 1,000 positions beside 10", "us",
           seconds("snapOfACachedPage/1000"), seconds("snapOfACachedPage/10"), 1.2),
    Target("hasVectorsWithPage, cached", "us", seconds("askWhetherACachedPageHasVectors/10"), limit=1, relation="itself"),
    Target("the same: strokes of 1,000 positions beside 10", "us",
           seconds("askWhetherACachedPageHasVectors/1000"), seconds("askWhetherACachedPageHasVectors/10"), 1.2),
]
