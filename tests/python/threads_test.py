"""Threads, observers, the interpreter's lock and its end."""

import gc
import os
import sys
import threading
import time
import weakref

import pytest
import velwhiteboard
from conftest import ROOT
from velwhiteboard import Storage, VelWbVecLine, VelWbVecSwitchPage, VelWbVecText

PAGE = VelWbVecSwitchPage(type="switchPage", ts=1.0, WBID=7, curPage=1)
OTHER = VelWbVecSwitchPage(type="switchPage", ts=2.0, WBID=7, curPage=2)
BEGIN = """
import os, sys, threading, time
from velwhiteboard import *
page = VelWbVecSwitchPage(type="switchPage", ts=1.0, WBID=7, curPage=1)
def stroke(number):
    return VelWbVecLine(type="line", ID=f"a{number}", path=[[number, 0, 1]])
def opened(path):
    storage = Storage(path)
    storage.ignore_changes = False
    storage.switch_page(page)
    return storage
"""


def stroke(ID, *xs):
    return VelWbVecLine(type="line", ID=ID, path=[[x, 0, x] for x in xs])


@pytest.fixture
def board(tmp_path):
    storage = Storage(tmp_path)
    storage.ignore_changes = False
    storage.switch_page(PAGE)
    return storage


def in_threads(*functions):
    """Runs the functions at the same time; fails as they do."""
    errors = []

    def run(function):
        try:
            function()
        except BaseException as error:  # told to the test
            errors.append(error)

    threads = [threading.Thread(target=run, args=(function,), daemon=True) for function in functions]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join(120)
        assert not thread.is_alive(), "a thread hangs"
    assert errors == []


def test_changes_are_told_with_copies_of_the_entries(board):
    reports = []
    board.set_change_observer(reports.append)
    board.save_vector(stroke("a", 1))
    board.save_vector(stroke("a", 2, 3))
    board.save_vector(VelWbVecText(type="text", ID="t", text="one"))
    board.save_vectors([stroke("b", 1)], OTHER)
    board.switch_page(OTHER)
    board.clear()
    told = [(each.kind, each.number, each.page, each.is_current,
             [(change.kind, change.entry.ID, change.first_new) for change in each.changes]) for each in reports]
    assert told == [
        ("entries", 1, "7_1", True, [("added", "a", 0)]), ("entries", 2, "7_1", True, [("extended", "a", 1)]),
        ("entries", 3, "7_1", True, [("added", "t", 0)]), ("entries", 4, "7_2", False, [("added", "b", 0)]),
        ("switched", 5, "7_2", True, []), ("reloaded", 6, "7_2", True, [])]
    assert len(reports[0].changes[0].entry.path) == 1  # as it was then
    board.set_change_observer(None)
    board.switch_page(PAGE)
    assert len(reports) == 6


def test_an_observer_may_call_the_storage(board):
    seen = []
    board.set_change_observer(lambda report: seen.append([each.ID for each in board.entries()]))
    board.save_vector(stroke("a", 1))
    board.save_vector(stroke("b", 1))
    assert seen == [["a"], ["a", "b"]]
    board.set_change_observer(None)


def test_an_observer_may_take_itself_away(board):
    told = []

    def once(report):
        board.set_change_observer(None)
        board.set_write_observer(None)
        told.append(report.kind)

    board.set_change_observer(once)
    board.save_vector(stroke("a", 1))
    board.save_vector(stroke("b", 1))
    board.set_write_observer(once)
    board.save()
    assert told == ["entries", "written"]


def test_an_observer_that_fails_is_told_of_and_harms_nothing(board, monkeypatch):
    unraisable = []
    monkeypatch.setattr(sys, "unraisablehook", lambda error: unraisable.append(error.exc_type))
    board.set_change_observer(lambda report: 1 / 0)
    board.set_write_observer(lambda report: {}[report.path])
    board.save_vector(stroke("a", 1))
    assert board.save()
    assert unraisable[0] is ZeroDivisionError and set(unraisable[1:]) == {KeyError}
    assert [each.ID for each in board.entries()] == ["a"]
    with pytest.raises(TypeError):
        board.set_change_observer(5)


def test_writes_are_told_on_another_thread_while_python_runs(board):
    board.wait_until_finished()
    threads, began, may_end = [], threading.Event(), threading.Event()

    def observe(report):
        threads.append(threading.get_ident())
        began.set()
        assert may_end.wait(60)

    board.set_write_observer(observe)
    board.save_vector(stroke("a", 1))
    board.save(wait=False)
    assert began.wait(60)  # this thread goes on while the observer is called
    may_end.set()
    assert board.save()
    assert len(threads) >= 2 and threading.get_ident() not in threads


def test_other_threads_run_while_one_waits_for_the_disk(board):
    board.wait_until_finished()
    may_end = threading.Event()
    board.set_write_observer(lambda report: may_end.wait(60))
    board.save_vector(stroke("a", 1))
    waiter = threading.Thread(target=board.save, daemon=True)
    waiter.start()
    time.sleep(0.05)
    assert waiter.is_alive()  # it waits for the observer, which waits for us
    may_end.set()
    waiter.join(60)
    assert not waiter.is_alive()


def test_an_observer_of_writes_that_waits_for_the_queue_does_not_wait_for_itself(board):
    done = []
    board.set_write_observer(lambda report: (board.wait_until_finished(), done.append(report.path)))
    board.save_vector(stroke("a", 1))
    assert board.save() and done


def test_strokes_of_many_threads_are_all_there_and_readers_see_whole_ones(board):
    def draw(name):
        for number in range(1, 201):
            board.save_vector(stroke(name, number))

    ends = threading.Event()

    def read():
        while not ends.is_set():
            for entry in [*board.entries(), *board.log()]:
                assert [place[0] for place in entry.path] == sorted(place[0] for place in entry.path)
                entry.path = None  # a reader's own copy

    def turn():
        while not ends.is_set():
            board.save_vectors([stroke("o", 1)], OTHER)
            board.save(wait=False)

    reports = []
    board.set_change_observer(lambda report: reports.append(report.number))
    helpers = [threading.Thread(target=each, daemon=True) for each in (read, turn)]
    for helper in helpers:
        helper.start()
    in_threads(*(lambda name=name: draw(name) for name in "abcd"))
    ends.set()
    for helper in helpers:
        helper.join(60)
        assert not helper.is_alive()
    assert {each.ID: len(each.path) for each in board.entries()} == dict.fromkeys("abcd", 200)
    assert sorted(reports) == list(range(1, len(reports) + 1)) and len(reports) >= 800
    assert board.save()


def test_many_boards_are_recorded_at_once(tmp_path):
    def record(number):
        with Storage(tmp_path / str(number)) as storage:
            storage.ignore_changes = False
            storage.set_write_observer(lambda report: None)
            storage.replay([PAGE.to_json(), *(stroke(f"s{each}", each).to_json() for each in range(50))])

    in_threads(*(lambda number=number: record(number) for number in range(12)))
    assert {len(velwhiteboard.read_entries(tmp_path / str(number), PAGE)) for number in range(12)} == {50}


def test_an_observer_lives_as_long_as_it_is_set_and_a_storage_as_long_as_it_is_named(tmp_path):
    class Observer:
        def __call__(self, report):
            pass

    storage, changes, writes = Storage(tmp_path), Observer(), Observer()
    storage.set_change_observer(changes)
    storage.set_write_observer(writes)
    watched = [weakref.ref(changes), weakref.ref(writes), weakref.ref(storage)]
    del changes, writes
    gc.collect()
    assert all(each() is not None for each in watched)
    storage.set_change_observer(None)
    storage.set_write_observer(Observer())
    assert watched[0]() is None and watched[1]() is None
    del storage
    gc.collect()
    assert watched[2]() is None


def test_entries_outlive_their_storage(tmp_path):
    with Storage(tmp_path) as storage:
        storage.ignore_changes = False
        storage.switch_page(PAGE)
        storage.save_vector(stroke("a", 1))
        entries = storage.entries()
    del storage
    gc.collect()
    assert entries[0].path == [[1, 0, 1]]


def test_writes_of_a_storage_that_has_gone_are_made_and_told(tmp_path):
    told = []
    storage = Storage(tmp_path)
    storage.ignore_changes = False
    storage.set_write_observer(lambda report: told.append(os.path.basename(report.path)))
    storage.switch_page(PAGE)
    storage.save_vector(stroke("a", 1))
    storage.save(wait=False)
    del storage
    limit = time.monotonic() + 60
    while len(told) < 3 and time.monotonic() < limit:
        time.sleep(0.01)
    assert set(told) == {"page.plist", "snap_7_1.plist", "whole_7_1.plist"}


def test_what_is_queued_when_the_interpreter_ends_is_written_and_told(run_python, tmp_path):
    result = run_python(BEGIN + """
storage = opened(sys.argv[1])
storage.set_write_observer(lambda report: (time.sleep(0.02), print(os.path.basename(report.path), flush=True)))
for number in range(2000):
    storage.save_vector(stroke(number))
storage.save(wait=False)
""", tmp_path)
    assert (result.returncode, result.stderr) == (0, "")
    assert set(result.stdout.split()) >= {"snap_7_1.plist", "whole_7_1.plist"}
    assert len(velwhiteboard.read_entries(tmp_path, PAGE)) == 2000


def test_writes_of_a_storage_that_has_gone_are_told_before_the_interpreter_ends(run_python, tmp_path):
    result = run_python(BEGIN + """
storage = opened(sys.argv[1])
storage.set_write_observer(lambda report: (time.sleep(0.05), print(os.path.basename(report.path), flush=True)))
storage.save_vector(stroke(1))
storage.save(wait=False)
del storage
""", tmp_path)
    assert (result.returncode, result.stderr) == (0, "")
    assert set(result.stdout.split()) >= {"snap_7_1.plist", "whole_7_1.plist"}


def test_observers_do_not_keep_a_program_from_closing_its_files(run_python, tmp_path):
    result = run_python(BEGIN + """
report_file = open(os.path.join(sys.argv[1], "report"), "w")
storage = opened(sys.argv[1])
storage.set_change_observer(lambda report: report_file.write("changed "))
storage.set_write_observer(lambda report: report_file.write("written "))
storage.save_vector(stroke(1))
storage.save(wait=False)
""", tmp_path)
    assert (result.returncode, result.stderr) == (0, "")
    assert set((tmp_path / "report").read_text().split()) == {"changed", "written"}


def test_the_interpreter_ends_while_daemon_threads_use_storages(run_python, tmp_path):
    result = run_python(BEGIN + """
def draw(path):
    storage = opened(path)
    storage.set_change_observer(lambda report: report.changes)
    storage.set_write_observer(lambda report: report.path)
    for number in range(10**9):
        storage.save_vector(stroke(number % 50))
        storage.save(wait=number % 3 == 0)
        storage.entries()
for number in range(6):
    threading.Thread(target=draw, args=(os.path.join(sys.argv[1], str(number)),), daemon=True).start()
time.sleep(0.3)
""", tmp_path)
    assert (result.returncode, result.stderr) == (0, "")
    for number in range(6):
        assert velwhiteboard.pages(tmp_path / str(number))


def test_the_interpreter_waits_for_an_observer_that_a_daemon_thread_calls(run_python, tmp_path):
    result = run_python(BEGIN + """
storage = opened(sys.argv[1])
began = threading.Event()
storage.set_change_observer(lambda report: (began.set(), time.sleep(0.5), print("told", flush=True)))
threading.Thread(target=lambda: storage.save_vector(stroke(1)), daemon=True).start()
began.wait()
""", tmp_path)
    assert (result.returncode, result.stdout, result.stderr) == (0, "told\n", "")


def test_storages_may_be_used_by_the_last_functions_of_the_interpreter(run_python, tmp_path):
    result = run_python("""
import atexit
atexit.register(lambda: last())  # before the module's own, so it is called after that
""" + BEGIN + """
storage = opened(os.path.join(sys.argv[1], "first"))
storage.set_change_observer(lambda report: print("too late", flush=True))
def last():
    storage.save_vector(stroke(1))
    print(storage.save(), len(storage.entries()), flush=True)
class Last:
    def __init__(self, storage, vector):
        self.storage, self.vector = storage, vector
    def __del__(self):  # when the modules are emptied
        self.storage.save_vector(self.vector)
        self.storage.save()
        self.storage.save_vector(self.vector.copy())
        self.storage.save(wait=False)
kept = Last(opened(os.path.join(sys.argv[1], "second")), stroke(2))
""", tmp_path)
    assert (result.returncode, result.stdout, result.stderr) == (0, "True 1\n", "")
    assert len(velwhiteboard.read_entries(tmp_path / "first", PAGE)) == 1
    assert len(velwhiteboard.read_log(tmp_path / "second", PAGE)) == 2


def test_a_process_that_was_forked_refuses_storages_and_ends(run_python, tmp_path):
    result = run_python(BEGIN + """
storage = opened(sys.argv[1])
storage.save()
child = os.fork()
if child == 0:
    for use in (storage.entries, storage.save, lambda: Storage(sys.argv[1])):
        try:
            use()
        except RuntimeError as error:
            print("spawn" in str(error))
    sys.exit(3)
print(os.waitstatus_to_exitcode(os.waitpid(child, 0)[1]))
""", tmp_path)
    assert (result.returncode, sorted(result.stdout.split())) == (0, ["3", "True", "True", "True"]), result.stderr


def test_a_process_that_was_forked_before_any_storage_may_use_them(run_python, tmp_path):
    result = run_python(BEGIN + """
child = os.fork()
if child == 0:
    storage = opened(sys.argv[1])
    storage.save_vector(stroke(1))
    sys.exit(0 if storage.save() else 1)
print(os.waitstatus_to_exitcode(os.waitpid(child, 0)[1]))
""", tmp_path)
    assert (result.returncode, result.stdout) == (0, "0\n"), result.stderr
    assert len(velwhiteboard.read_entries(tmp_path, PAGE)) == 1


def test_the_stub_of_types_is_what_the_module_has(run_python):
    result = run_python(f"import runpy; runpy.run_path({str(ROOT / 'python/stub/make_stub.py')!r}, run_name='__main__')",
                        ROOT / "python/velwhiteboard/__init__.pyi", "--check")
    assert (result.returncode, result.stderr) == (0, "")
