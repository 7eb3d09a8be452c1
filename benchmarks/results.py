"""Runs the benchmark programs and holds what they measured."""

import json
import pathlib
import statistics
import subprocess
import tempfile

UNITS = {"ns": 1e-9, "us": 1e-6, "ms": 1e-3, "s": 1.0}

# What one thread does alone is measured in the processor time that it takes, which other work on the
# machine hardly changes; what waits for a disk, a lock or another thread in the time that passes.
WORK, WAIT = "cpu_time", "real_time"

# (what runs together, clock, repetitions, seconds of each). A figure and its baseline are in one group:
# their repetitions take turns, so that whatever else the machine does meets both.
GROUPS = [
    ("strokeInto(PlainBoard|Storage)/(10000|100000)$|lessonInto|saveVectorAlone/100000", WORK, 7, 0.1),
    ("strokeInto(PlainBoard|Storage)/1000000/", WORK, 5, None),
    ("strokeIntoSqlite", WAIT, 5, None),
    ("moveOfABox", WORK, 7, None),
    ("drawW", WAIT, 7, None),
    ("drawBesideABatch", WAIT, 9, None),
    ("captureTimedSave", WAIT, 7, None),
    ("savePieceWhilePagesWait", WORK, 7, None),
    ("saveUnnamed", WORK, 7, None),
    ("append(PageByPage|WhilePages|WithTheQueue)", WORK, 5, None),
    ("OffsetsOfOne|RemovesOfOne|AlternatingOffsets|MagnifiersAmong", WORK, 9, None),
    ("copyAfterEachPosition", WORK, 9, 0.05),
    ("SnapFile|switchToAWrittenPage|readTheLog", WAIT, 9, 0.1),
    ("writePage|putTheSameBytesThere", WAIT, 9, 0.15),
    ("parsePieceOnly|decodePieceFromText|formatPieceByHand|encodePieceToText", WORK, 9, 0.05),
    ("switchAmongCachedPages", WAIT, 7, 0.05),
    ("OfACachedPage|ACachedPageHas|PlainMap", WORK, 7, 0.05),
]
FRESH_PROCESSES = 15


class Results:
    """What all repetitions measured."""

    def __init__(self):
        self._figures = {}

    def add(self, name, figure):
        self._figures.setdefault(name, []).append(figure)

    def __getitem__(self, name):
        """The least of all repetitions: what else runs on the machine only ever adds."""
        return min(self._figures[name])

    def median(self, name):
        """What half of the repetitions exceed, for what differs from one to the next by itself."""
        return statistics.median(self._figures[name])

    def run_all(self, programs, report=lambda what: None):
        for number, group in enumerate(GROUPS, 1):
            report(f"{number} of {len(GROUPS) + 2}: {group[0]}")
            self._run_group(programs, *group)
        report(f"{len(GROUPS) + 1} of {len(GROUPS) + 2}: fresh processes")
        self._run_fresh_processes(programs)
        report(f"{len(GROUPS) + 2} of {len(GROUPS) + 2}: memory")
        self._run_memory(programs)

    def _run_group(self, programs, pattern, clock, repetitions, seconds):
        with tempfile.TemporaryDirectory() as folder:
            out = pathlib.Path(folder) / "out.json"
            command = [
                programs / "velwb_benchmarks",
                f"--benchmark_filter={pattern}",
                f"--benchmark_repetitions={repetitions}",
                "--benchmark_enable_random_interleaving=true",
                f"--benchmark_out={out}",
                "--benchmark_out_format=json",
            ]
            if seconds is not None:
                command.append(f"--benchmark_min_time={seconds}")
            subprocess.run(command, check=True, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
            self.add_benchmarks(json.loads(out.read_text(encoding="utf-8")), clock)

    def add_benchmarks(self, report, clock):
        """Takes in a report of Google Benchmark: times by `clock` in seconds, counters by name."""
        for run in report["benchmarks"]:
            if run.get("run_type") != "iteration":
                continue
            if run.get("error_occurred"):
                raise RuntimeError(f"{run['name']}: {run['error_message']}")
            name = "/".join(part for part in run["name"].split("/") if ":" not in part and "_time" not in part)
            self.add(name, run[clock] * UNITS[run["time_unit"]])
            for counter, figure in run.items():
                if counter.endswith("_us") or counter == "bytes":
                    self.add(f"{name}.{counter}", figure)

    def _run_fresh_processes(self, programs):
        program = programs / "velwb_fresh_load"
        with tempfile.TemporaryDirectory() as folder:
            board = pathlib.Path(folder) / "board"
            subprocess.run([program, "write", board], check=True, stdout=subprocess.DEVNULL)
            for _ in range(FRESH_PROCESSES):
                for what in ["load", "parse"]:
                    done = subprocess.run([program, what, board], check=True, capture_output=True, text=True)
                    self.add(f"fresh.{what}", float(done.stdout) * UNITS["ms"])

    def _run_memory(self, programs):
        done = subprocess.run([programs / "velwb_memory"], check=True, capture_output=True, text=True)
        for line in done.stdout.splitlines():
            name, figure = line.split()
            self.add(name, float(figure))
