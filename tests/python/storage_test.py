"""A board read, recorded and replayed."""

import errno
import os
import pathlib
import shutil

import pytest
import velwhiteboard
from conftest import ROOT
from velwhiteboard import Storage, VelWbVecLine, VelWbVecRemove, VelWbVecSwitchPage, VelWbVecText

FIRST = VelWbVecSwitchPage(type="switchPage", ts=1.0, WBID=7, curPage=1)
SECOND = VelWbVecSwitchPage(type="switchPage", ts=2.0, WBID=7, curPage=2)


def files_of(home):
    return {file.name: file.read_bytes() for file in (pathlib.Path(home) / "whiteBoard").iterdir()}


def stroke(ID, *xs, **more):
    return VelWbVecLine(type="line", ID=ID, path=[[x, 0, x] for x in xs], **more)


@pytest.fixture
def board(tmp_path):
    storage = Storage(tmp_path)
    storage.ignore_changes = False
    storage.switch_page(FIRST)
    return storage


def test_a_replayed_lesson_makes_the_files_that_the_lesson_program_makes(recorded, played_by_program, tmp_path):
    storage = Storage(tmp_path / "python")
    storage.ignore_changes = False
    assert storage.replay(recorded) == len(recorded)
    assert storage.save()
    assert files_of(tmp_path / "python") == files_of(played_by_program)
    assert len(files_of(played_by_program)) >= 7


def test_a_lesson_that_is_saved_record_by_record_makes_the_same_files(recorded, tmp_path):
    with Storage(tmp_path / "texts") as texts:
        texts.ignore_changes = False
        texts.replay(recorded)
    with Storage(tmp_path / "records") as records:
        records.ignore_changes = False
        for text in recorded:
            record = velwhiteboard.record_from_json(text)
            if isinstance(record, VelWbVecSwitchPage):
                records.switch_page(record)
            else:
                records.save_vector(record)
    assert files_of(tmp_path / "texts") == files_of(tmp_path / "records")


def test_a_reader_finds_what_a_recorder_had_in_memory(recorded, tmp_path):
    storage = Storage(tmp_path)
    storage.ignore_changes = False
    storage.replay(recorded)
    storage.save()
    pages = velwhiteboard.pages(tmp_path)
    assert [page.page_info() for page in pages] == list(dict.fromkeys(
        page.page_info() for page in map(velwhiteboard.record_from_json, recorded)
        if isinstance(page, VelWbVecSwitchPage)))
    for page in pages:
        assert velwhiteboard.read_entries(tmp_path, page) == storage.entries(page) != []
        assert velwhiteboard.read_log(tmp_path, page) == storage.log(page)
    vectors = [text for text in recorded if '"switchPage"' not in text]
    assert sum(len(velwhiteboard.read_log(tmp_path, page)) for page in pages) == len(vectors)


def test_reading_changes_no_file(recorded, played_by_program):
    before = files_of(played_by_program)
    for page in velwhiteboard.pages(played_by_program):
        velwhiteboard.read_entries(played_by_program, page)
        velwhiteboard.read_log(played_by_program, page)
    with Storage(played_by_program) as storage:
        for page in storage.pages:
            storage.switch_page(page)
            storage.save_vector(stroke("x", 1))
    assert files_of(played_by_program) == before


def test_a_path_without_a_board_is_an_error_and_stays_as_it_is(tmp_path):
    for read in (velwhiteboard.pages, lambda path: velwhiteboard.read_log(path, FIRST),
                 lambda path: velwhiteboard.read_entries(path, FIRST)):
        with pytest.raises(FileNotFoundError, match="no board"):
            read(tmp_path)
    assert list(tmp_path.iterdir()) == []


def test_a_path_may_be_text_bytes_or_a_path_object(tmp_path):
    Storage(os.fsencode(tmp_path / "a"))
    Storage(str(tmp_path / "b"))
    assert Storage(tmp_path / "c").folder == str(tmp_path / "c/whiteBoard")
    assert sorted(each.name for each in tmp_path.iterdir()) == ["a", "b", "c"]
    with pytest.raises(FileNotFoundError, match="no board"):
        velwhiteboard.pages(os.fsencode(tmp_path) + b"/\xff")
    with pytest.raises(TypeError):
        Storage(5)
    with pytest.raises(ValueError):
        Storage("a\0b")


def test_a_page_that_was_never_visited_is_listed_behind_the_others(board, tmp_path):
    board.save_vectors([stroke("a", 1)], VelWbVecSwitchPage(WBID=-3, curPage=9))
    board.save()
    assert [page.page_info() for page in board.pages] == ["7_1", "-3_9"]
    assert [page.page_info() for page in velwhiteboard.pages(tmp_path)] == ["7_1", "-3_9"]


def test_visited_pages_are_listed_once_and_switches_each_time(board):
    board.switch_page(SECOND)
    third = FIRST.copy()
    third.ts = 3.0
    board.switch_page(third)
    assert [page.page_info() for page in board.pages] == ["7_1", "7_2"]
    assert [page.ts for page in board.visited_pages] == [1.0, 2.0, 3.0]
    assert board.current_page.page_info() == "7_1"


def test_a_new_storage_has_no_page_and_ignores_changes(tmp_path):
    storage = Storage(tmp_path)
    assert storage.ignore_changes and storage.current_page is None and not storage.has_new_change
    assert storage.pages == [] and storage.entries() == [] and storage.log() == []
    storage.switch_page(FIRST)
    storage.save_vector(stroke("a", 1))
    assert storage.entries() == [] and storage.pages == []
    with pytest.raises(TypeError):
        storage.ignore_changes = 0


def test_pieces_are_folded_and_the_log_keeps_each(board):
    board.save_vector(stroke("a", 1))
    board.save_vector(stroke("a", 2, end=True))
    board.save_vector(stroke("b", 3))
    board.save_vector(VelWbVecRemove(type="remove", rmID="b", ID="c"))
    assert [(each.ID, len(each.path)) for each in board.entries()] == [("a", 2)]
    assert [each.type for each in board.log()] == ["line", "line", "line", "remove"]
    assert board.entry("a").end and board.entry("b") is None and board.has_new_change


def test_what_is_saved_and_what_is_answered_are_copies(board):
    vector = stroke("a", 1)
    board.save_vector(vector)
    vector.path = None
    board.entries()[0].color = "#FF0000FF"
    board.entry("a").color = "#FF0000FF"
    board.log()[0].color = "#FF0000FF"
    board.pages[0].WBID = 9
    board.current_page.WBID = 9
    assert board.entries() == [stroke("a", 1, x=0, y=0)]
    assert board.current_page.WBID == board.pages[0].WBID == 7


def test_another_page_is_saved_without_a_switch(board, tmp_path):
    board.save_vectors([stroke("a", 1), stroke("a", 2)], SECOND)
    board.append_vectors([stroke("b", 1)], SECOND)
    assert [each.ID for each in board.entries(SECOND)] == ["a", "b"]
    assert board.entries() == []
    board.wait_until_finished()
    assert velwhiteboard.read_entries(tmp_path, SECOND) == board.entries(SECOND)
    with pytest.raises(TypeError):
        board.save_vectors([None], SECOND)
    with pytest.raises(TypeError):
        board.save_vectors([FIRST, 5], SECOND)


def test_a_box_on_another_page_is_edited_when_saved_and_keeps_its_size_when_appended(board):
    def box(size):
        return VelWbVecText(type="text", ID="t", text="one", w=size, h=size)

    board.save_vectors([box(1), box(2)], SECOND)
    board.append_vectors([box(3)], SECOND)
    assert [each.w for each in board.entries(SECOND)] == [2]


def test_pages_and_boards_are_cleared(board):
    board.save_vector(stroke("a", 1))
    board.save()
    board.clear_page(FIRST)
    board.wait_until_finished()
    assert board.entries() == [] and list(files_of(pathlib.Path(board.folder).parent)) == ["page.plist"]
    board.clear()
    assert board.pages == [] and files_of(pathlib.Path(board.folder).parent) == {}


def test_nothing_is_written_before_it_is_saved(board):
    board.wait_until_finished()
    board.save_vector(stroke("a", 1))
    board.save_when_due()
    board.wait_until_finished()
    assert "snap_7_1.plist" not in files_of(pathlib.Path(board.folder).parent)
    assert board.save()
    assert "snap_7_1.plist" in files_of(pathlib.Path(board.folder).parent)


def test_a_write_that_fails_is_told_and_made_good_by_the_next_save(board):
    board.wait_until_finished()
    reports = []
    board.set_write_observer(reports.append)
    shutil.rmtree(board.folder)
    pathlib.Path(board.folder).write_text("in the way")
    board.save_vector(stroke("a", 1))
    board.save_vectors([stroke("b", 1)], SECOND)
    assert not board.save()
    assert {os.path.basename(name) for name in board.failed_files} >= {"snap_7_1.plist", "snap_7_2.plist"}
    failed = [report for report in reports if not report.ok]
    assert failed and all(report.error == errno.ENOTDIR and report.kind == "written" for report in failed)
    assert "Not a directory" in failed[0].text and failed[0].path.startswith(board.folder)
    pathlib.Path(board.folder).unlink()
    pathlib.Path(board.folder).mkdir()
    assert board.save()
    assert board.failed_files == []
    assert set(files_of(pathlib.Path(board.folder).parent)) >= {"snap_7_1.plist", "snap_7_2.plist"}


def test_a_replay_passes_over_what_is_no_record_and_refuses_what_is_no_text(tmp_path):
    storage = Storage(tmp_path)
    storage.ignore_changes = False
    assert storage.replay([FIRST.to_json(), "", "no", "[]", stroke("a", 1).to_json()]) == 2
    with pytest.raises(TypeError):
        storage.replay([stroke("b", 1).to_json(), b"{}"])
    with pytest.raises(TypeError):
        storage.replay(5)

    def broken():
        yield stroke("c", 1).to_json()
        raise KeyError("source")

    with pytest.raises(KeyError):
        storage.replay(broken())
    assert [each.ID for each in storage.entries()] == ["a", "b", "c"]


def test_a_damaged_file_is_an_empty_list_and_is_not_lost(board, tmp_path):
    board.save_vector(stroke("a", 1))
    board.save()
    snapshot = tmp_path / "whiteBoard/snap_7_1.plist"
    snapshot.write_bytes(b"damaged")
    assert velwhiteboard.read_entries(tmp_path, FIRST) == []
    assert snapshot.read_bytes() == b"damaged"


def test_a_block_saves_at_its_end_also_after_an_error(tmp_path):
    with pytest.raises(KeyError):
        with Storage(tmp_path) as storage:
            storage.ignore_changes = False
            storage.switch_page(FIRST)
            storage.save_vector(stroke("a", 1))
            raise KeyError
    assert velwhiteboard.read_entries(tmp_path, FIRST) == [stroke("a", 1)]


def test_the_example_counts_who_drew_what(run_python, recorded, played_by_program):
    program = ROOT / "examples/python/who_drew_what.py"
    result = run_python(f"import runpy, sys; runpy.run_path({str(program)!r}, run_name='__main__')", played_by_program)
    assert result.returncode == 0, result.stderr
    counted = sum(int(line.split()[-1]) for line in result.stdout.splitlines())
    assert counted == sum(len(velwhiteboard.read_entries(played_by_program, page))
                          for page in velwhiteboard.pages(played_by_program))
    document = (ROOT / "docs/python.md").read_text(encoding="utf-8")
    if len(recorded) < 1000:  # the second lesson is the one that is shown
        assert result.stdout in document
    assert program.read_text(encoding="utf-8") in document
