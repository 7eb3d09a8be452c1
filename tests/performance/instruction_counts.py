#!/usr/bin/env python3
"""Fails when decoding or saving takes more instructions than were recorded, by more than 20 %.

    instruction_counts.py PROGRAM CONFIGURATION            checks
    instruction_counts.py --update PROGRAM CONFIGURATION   records what it counts; so does building the
                                                           target record_instruction_counts

Counts are kept beside this script, one set a configuration (compiler, processor, flags). A configuration
without counts is skipped, exit code 77; with GCC under CI, where that must not happen, it fails.
"""

import json
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

RECORD = pathlib.Path(__file__).resolve().parent / "instruction_counts.json"
# What is reported -> the function of the program that does it and nothing else.
COUNTED = {"modelWithJSON": "countedModelWithJSON", "saveVector": "countedSaveVector"}
TOLERATED = 1.20
WORTH_RECORDING = 0.80  # a count that has fallen below this lets the next regression hide
SKIPPED = 77


def instructions(program, function):
    """How many instructions the program executes inside a function."""
    with tempfile.TemporaryDirectory() as folder:
        out = pathlib.Path(folder) / "callgrind.out"
        subprocess.run(
            ["valgrind", "--quiet", "--tool=callgrind", f"--toggle-collect={function}",
             f"--callgrind-out-file={out}", program],
            check=True)
        return int(re.search(r"^(?:totals|summary): (\d+)$", out.read_text(encoding="utf-8"), re.M).group(1))


def problems(counts, recorded):
    """What is wrong with counts, one line each."""
    for name, count in counts.items():
        before = recorded.get(name)
        if count == 0:
            yield f"{name}: nothing was counted; has its function been renamed?"
        elif before is None:
            yield f"{name}: no count is recorded"
        elif count > before * TOLERATED:
            yield (f"{name}: {count:,} instructions, {count / before - 1:.0%} more than the recorded {before:,}. "
                   "If that is the price of something worth it, build the target record_instruction_counts.")


def missing_record_is_failure(configuration, environment):
    return bool(environment.get("CI")) and configuration.startswith("GNU ") and "sanitizers" not in configuration


def main(arguments):
    update = arguments[:1] == ["--update"]
    if len(arguments) != 2 + update:
        sys.exit(__doc__)
    program, configuration = arguments[-2:]
    record = json.loads(RECORD.read_text(encoding="utf-8")) if RECORD.exists() else {}
    if configuration not in record and not update:
        print(f"No counts are recorded for this configuration: {configuration}")
        return 1 if missing_record_is_failure(configuration, os.environ) else SKIPPED
    if shutil.which("valgrind") is None:
        print("valgrind is not installed")
        return 1

    counts = {name: instructions(program, function) for name, function in COUNTED.items()}
    before = record.get(configuration, {})
    for name, count in counts.items():
        print(f"{name}: {count:,} instructions" + (f", recorded {before[name]:,}" if name in before else ""))
    if update:
        record[configuration] = counts
        RECORD.write_text(json.dumps(record, indent=2, sort_keys=True) + "\n", encoding="utf-8")
        return 0
    for name, count in counts.items():
        if 0 < count < before.get(name, 0) * WORTH_RECORDING:
            print(f"{name} has become faster; the target record_instruction_counts keeps it so")
    found = list(problems(counts, before))
    print("\n".join(found))
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
