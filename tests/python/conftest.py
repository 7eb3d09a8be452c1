"""What the tests of the Python module share."""

import os
import pathlib
import subprocess
import sys

import pytest

ROOT = pathlib.Path(__file__).parents[2]
# The name of a shipped lesson, and what the lesson program prints of it, see the tests of that program.
LESSONS = ["lesson", "second_lesson"]


@pytest.fixture(params=LESSONS)
def recorded(request):
    """The texts of a lesson that ships with the project."""
    return (ROOT / "examples/lesson/data" / f"{request.param}.ndjson").read_text(encoding="utf-8").splitlines()


@pytest.fixture
def played_by_program(request, recorded, tmp_path):
    """The folder of the board into which the lesson program played the same lesson."""
    name = request.node.callspec.params["recorded"]
    home = tmp_path / "program"
    subprocess.run([os.environ["VELWB_LESSON_PROGRAM"], "--board", home, ROOT / f"examples/lesson/data/{name}.ndjson"],
                   check=True, stdout=subprocess.DEVNULL, timeout=120)
    return home


@pytest.fixture
def run_python():
    """Runs a program in an interpreter of its own, which sees the same module."""
    def run(program, *arguments, timeout=120):
        return subprocess.run([sys.executable, "-B", "-c", program, *map(str, arguments)], text=True,
                              capture_output=True, timeout=timeout)
    return run
