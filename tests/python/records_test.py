"""Records as Python objects: their classes, their properties, what they refuse."""

import copy
import gc
import inspect
import math
import pathlib
import pickle
import re
import resource

import pytest
import velwhiteboard
from random_records import RECORD_CLASSES, RandomValues, bits, seeded
from velwhiteboard import (VelWbBaseVector, VelWbVecLine, VelWbVecMediaItem, VelWbVecMediaList, VelWbVecPoint,
                           VelWbVecSquare, VelWbVecSwitchPage, VelWbVecText)

ROOT = pathlib.Path(__file__).parents[2]
each_class = pytest.mark.parametrize("record_class", RECORD_CLASSES, ids=lambda each: each.__name__)


def declared_classes():
    """Class to base, from the library's headers."""
    pattern = r"class VELWHITEBOARD_EXPORT (\w+)\s*: public (?:VectorOf|RecordOf)<\w+, (\w+)>"
    texts = (file.read_text(encoding="utf-8") for file in (ROOT / "VelWhiteBoard").rglob("*.h"))
    return {name: base for text in texts for name, base in re.findall(pattern, text)}


def declared_properties():
    """Class to the names that the class itself declares, in order, from the headers."""
    texts = (file.read_text(encoding="utf-8") for file in (ROOT / "VelWhiteBoard").rglob("*.h"))
    found = {}
    for text in texts:
        for name, member in re.findall(r'^    visit\(property<&(\w+)::\w+>\("(\w+)"\)', text, re.MULTILINE):
            found.setdefault(name, []).append(member)
    return found


def test_every_class_of_the_headers_is_there_and_derives_from_the_same_class():
    assert {each.__name__: each.__base__.__name__ for each in RECORD_CLASSES} == declared_classes()


@each_class
def test_a_class_has_the_properties_that_the_headers_declare(record_class):
    chain = [each.__name__ for each in reversed(record_class.__mro__)]
    declared = declared_properties()
    assert list(record_class.PROPERTIES) == [name for each in chain for name in declared.get(each, [])]


@each_class
def test_each_property_keeps_every_value_to_the_bit(record_class):
    values = RandomValues(seeded(), exotic=True)
    for _ in range(50):
        record = record_class()
        for name, kind in record_class.PROPERTIES.items():
            value = values.items(record_class) if kind == "items" else getattr(values, kind)()
            setattr(record, name, value)
            assert bits(getattr(record, name)) == bits(value), name


@each_class
def test_copies_are_equal_to_the_bit(record_class):
    values = RandomValues(seeded(), exotic=True)
    for _ in range(30):
        record = values.record(record_class)
        for same in (record.copy(), copy.copy(record), copy.deepcopy(record)):
            assert bits(same) == bits(record)
            assert same == record and same is not record


@each_class
def test_a_record_that_was_pickled_comes_back_to_the_bit_but_for_the_kind_of_nan(record_class):
    values = RandomValues(seeded(), exotic=True)
    for _ in range(30):
        record = values.record(record_class)
        assert bits(pickle.loads(pickle.dumps(record)), one_nan=True) == bits(record, one_nan=True)


def test_a_copy_does_not_share_the_items_of_a_list():
    record = VelWbVecMediaList(list=[VelWbVecMediaItem(title="a")])
    same = record.copy()
    same.list[0].title = "b"
    assert record.list[0].title == "a"


def test_a_list_of_records_gives_the_very_records():
    item = VelWbVecMediaItem(title="a")
    record = VelWbVecMediaList(list=[item])
    assert record.list[0] is item


@each_class
def test_the_constructor_sets_the_properties_it_names(record_class):
    values = RandomValues(seeded(), exotic=True)
    record = values.record(record_class)
    named = {name: getattr(record, name) for name in record_class.PROPERTIES}
    assert bits(record_class(**named)) == bits(record)


@each_class
def test_a_new_record_has_the_initial_values(record_class):
    initial = {"text": None, "real": 0.0, "signed": 0, "unsigned": 0, "boolean": False, "path": None, "free": None,
               "items": None}
    record = record_class()
    assert {name: getattr(record, name) for name in record_class.PROPERTIES} == {
        name: initial[kind] for name, kind in record_class.PROPERTIES.items()}


WRONG = {
    "text": [1, 1.0, True, b"a", [], {}, {1}], "real": [None, "1", b"1", [], {1}, True, 1j],
    "signed": [None, 1.0, "1", b"1", [], {1}, True], "unsigned": [None, 1.0, "1", [], {1}, False],
    "boolean": [None, 0, 1, 1.0, "true", []], "path": [1, "ab", b"ab", {1}, {}, [1], ["ab"], [[1, "2"]], [[None]], [{1}]],
    "free": [1, "ab", b"ab", {1}, {}, [b"a"], [{1}], [[1, {2}]], [{1: 2}], [object()]],
    "items": [1, "ab", {}, {1}, [None], [1], ["a"], [VelWbBaseVector()]],
}


@each_class
def test_a_value_of_a_wrong_type_is_a_type_error_and_changes_nothing(record_class):
    record = RandomValues(seeded()).record(record_class)
    before = bits(record)
    for name, kind in record_class.PROPERTIES.items():
        for value in WRONG[kind]:
            with pytest.raises(TypeError, match=name):
                setattr(record, name, value)
    assert bits(record) == before


@pytest.mark.parametrize("name, value", [
    ("signed", 2**63), ("signed", -2**63 - 1), ("unsigned", 2**64), ("unsigned", -1),
    ("real", 2**53 + 1), ("real", 10**400), ("path", [[10**400]]), ("free", [2**64]), ("free", [[-2**63 - 1]])])
def test_an_int_that_does_not_fit_is_an_overflow_error_and_changes_nothing(name, value):
    for record_class in RECORD_CLASSES:
        for member, kind in record_class.PROPERTIES.items():
            if kind != name:
                continue
            record = RandomValues(seeded()).record(record_class)
            before = bits(record)
            with pytest.raises(OverflowError):
                setattr(record, member, value)
            assert bits(record) == before


def test_an_int_that_a_float_can_hold_is_one():
    assert bits(VelWbVecPoint(x=2**53 + 2).x) == bits(2.0**53 + 2)
    assert bits(VelWbVecPoint(path=[(1, 2)]).path) == bits([[1.0, 2.0]])


def test_a_text_with_half_a_surrogate_of_no_byte_is_refused():
    with pytest.raises(UnicodeEncodeError):
        VelWbVecText(text="\ud800")


def nested(levels):
    value = []
    for _ in range(levels - 1):
        value = [value]
    return value


def test_free_values_nest_as_deep_as_the_library_allows_and_no_deeper():
    assert VelWbVecLine(offset=nested(256)).offset == nested(256)
    with pytest.raises(ValueError, match="256"):
        VelWbVecLine(offset=nested(257))
    loop = []
    loop += [loop, loop]
    with pytest.raises(ValueError, match="256"):
        VelWbVecLine(offset=loop)


def test_an_unknown_property_is_refused():
    with pytest.raises(TypeError, match="colour"):
        VelWbVecLine(colour="#FF0000FF")
    with pytest.raises(AttributeError):
        VelWbVecLine().colour = "#FF0000FF"


def test_records_of_different_classes_differ_and_records_are_no_keys():
    assert VelWbVecPoint() != VelWbVecSquare()
    assert VelWbVecPoint() != 1
    assert VelWbVecPoint(x=math.nan) == VelWbVecPoint(x=math.nan)
    assert VelWbVecPoint(x=0.0) == VelWbVecPoint(x=-0.0)
    assert VelWbVecPoint(x=1) != VelWbVecPoint(x=2)
    with pytest.raises(TypeError):
        hash(VelWbVecPoint())


def test_the_representation_names_the_class_and_what_is_set():
    assert repr(VelWbVecLine()) == "VelWbVecLine()"
    assert repr(VelWbVecPoint(type="line", x=0.5, path=[[1, 2]])) == (
        "VelWbVecPoint(type='line', x=0.5, path=[[1.0, 2.0]])")
    assert repr(VelWbVecPoint(path=[[1, 2]] * 9)) == "VelWbVecPoint(path=<9 positions>)"
    assert repr(VelWbVecText(text="", color="\udcff")) == r"VelWbVecText(text='', color='\udcff')"


def test_a_stroke_takes_its_later_pieces_and_a_box_its_edits():
    stroke = VelWbVecLine(type="line", ID="a", path=[[0, 0, 1]])
    update = VelWbVecLine(type="line", ID="a", path=[[1, 1, 2], [2, 2, 1.5]], end=True)
    assert stroke.is_same_stroke(update)
    stroke.append(update)
    assert stroke.path == [[0, 0, 1], [1, 1, 2]] and stroke.end
    assert stroke.start_time_stamp() == 1.0
    box = VelWbVecText(type="text", ID="b", text="old", w=1, h=1)
    box.merge(VelWbVecText(type="text", ID="b", text="new"))
    assert (box.text, box.w) == ("new", 1)


def test_a_page_key_names_a_page_and_nothing_else_does():
    page = VelWbVecSwitchPage(WBID=-2**63, curPage=2**64 - 1)
    assert page.page_info() == "-9223372036854775808_18446744073709551615"
    again = VelWbVecSwitchPage.page_from_info(page.page_info())
    assert (again.type, again.WBID, again.curPage) == ("switchPage", -2**63, 2**64 - 1)
    assert VelWbVecSwitchPage.page_from_info("07_1") is None


def test_everything_public_has_a_documentation():
    for name in velwhiteboard.__all__:
        value = getattr(velwhiteboard, name)
        if name == "__version__":
            continue
        assert value.__doc__, name
        members = vars(value).items() if inspect.isclass(value) else ()
        for member, each in members:
            if not member.startswith("_") and member != "PROPERTIES":
                text = inspect.getdoc(each) if isinstance(each, property) else getattr(value, member).__doc__
                assert text and len(text.splitlines()[-1]) > 8, f"{name}.{member}"


def test_many_records_leave_no_memory_behind():
    def make(count):
        for _ in range(count):
            record = VelWbVecLine(type="line", ID="a" * 100, path=[[1, 2, 3]] * 50, offset=[{"a": ["b" * 100]}])
            assert record.copy() == velwhiteboard.record_from_json(record.to_json())
            pickle.loads(pickle.dumps(record))
            with pytest.raises(TypeError):
                record.path = [[1, "a"]]
        gc.collect()

    make(500)  # what is allocated once
    before = resource.getrusage(resource.RUSAGE_SELF).ru_maxrss
    make(5000)
    grown = resource.getrusage(resource.RUSAGE_SELF).ru_maxrss - before
    # One record takes more than 2 KiB: if only one of its forms were kept, it would be 10 MiB.
    assert grown < 5000, f"{grown} KiB"
