"""Dictionary form and JSON text, both ways."""

import json
import math

import pytest
import velwhiteboard
from random_records import RECORD_CLASSES, RandomValues, bits, seeded
from velwhiteboard import (Record, VelWbBaseVector, VelWbVecCircle, VelWbVecDiagram, VelWbVecLine, VelWbVecMediaItem,
                           VelWbVecMediaList, VelWbVecPoint, VelWbVecSquare, VelWbVecSwitchPage, VelWbVecText)

each_class = pytest.mark.parametrize("record_class", RECORD_CLASSES, ids=lambda each: each.__name__)
TYPES = {"VelWbVecLine": "line", "VelWbVecText": "text", "VelWbVecFile": "image", "VelWbVecVideo": "media",
         "VelWbCaptureInfo": "camera", "VelWbVecDiagram": "diagram", "VelWbVecCircle": "diagram",
         "VelWbVecRemove": "remove", "VelWbVecClear": "clear", "VelWbVecSwitchPage": "switchPage",
         "VelWbVecOffset": "offset", "VelWbVecMediaList": "mediaList"}


def typed(record):
    """The record with the type by which docs/records.md chooses its class."""
    if isinstance(record, VelWbBaseVector):
        record.type = TYPES.get(type(record).__name__)
    return record


def as_numbers(value):
    """JSON has one kind of numbers: 1.0 comes back as 1."""
    if isinstance(value, float) and value.is_integer():
        return int(value)
    if isinstance(value, list):
        return [as_numbers(element) for element in value]
    if isinstance(value, dict):
        return {key: as_numbers(element) for key, element in value.items()}
    return value


@each_class
def test_a_record_comes_back_from_its_dictionary(record_class):
    values = RandomValues(seeded())
    for _ in range(50):
        record = typed(values.record(record_class))
        again = record_class.from_dict(record.to_dict())
        assert type(again) is record_class
        assert bits(again) == bits(record)
        if isinstance(record, VelWbBaseVector) and record.type:
            assert bits(velwhiteboard.record_from_dict(record.to_dict())) == bits(record)


@each_class
def test_a_record_comes_back_from_its_json_text(record_class):
    values = RandomValues(seeded())
    for _ in range(50):
        record = typed(values.record(record_class))
        again = record_class.from_json(record.to_json())
        assert type(again) is record_class
        assert again == record
        if isinstance(record, VelWbBaseVector) and record.type:
            assert velwhiteboard.record_from_json(record.to_json()) == record


@each_class
def test_the_json_text_says_what_the_dictionary_says(record_class):
    values = RandomValues(seeded())
    for _ in range(50):
        record = values.record(record_class)
        assert as_numbers(json.loads(record.to_json())) == as_numbers(record.to_dict())


def test_the_json_text_has_the_keys_in_the_order_of_declaration():
    record = VelWbVecLine(type="line", ID="a", path=[], color="", offset=[])
    assert list(json.loads(record.to_json())) == list(VelWbVecLine.PROPERTIES)


def test_absent_properties_and_numbers_that_json_has_not_are_left_out():
    assert VelWbVecPoint(ts=math.nan, x=math.inf, path=[[math.nan, 1]]).to_dict() == {
        "y": 0.0, "ps": 0, "end": False, "path": [[0.0, 1.0]]}


def test_a_byte_that_is_no_utf_8_becomes_the_replacement_character():
    assert json.loads(VelWbVecText(text="a\udcffb").to_json())["text"] == "a\ufffdb"
    assert VelWbVecText(text="a\udcffb").to_dict()["text"] == "a\ufffdb"


@pytest.mark.parametrize("dictionary, record_class", [
    ({"type": "line"}, VelWbVecLine), ({"type": "diagram"}, VelWbVecDiagram),
    ({"type": "diagram", "radiusX": None}, VelWbVecCircle), ({"type": "else", "w": 1}, VelWbVecSquare),
    ({"x": 1}, VelWbVecPoint), ({}, VelWbBaseVector), ({"type": "switchPage"}, VelWbVecSwitchPage)])
def test_type_and_keys_choose_the_class(dictionary, record_class):
    assert type(velwhiteboard.record_from_dict(dictionary)) is record_class
    assert type(velwhiteboard.record_from_json(json.dumps(dictionary))) is record_class
    assert issubclass(record_class, Record)


@pytest.mark.parametrize("key, value, expected", [
    ("x", "1.5", 1.5), ("x", True, 1.0), ("x", [], 0.0), ("x", None, 0.0), ("ps", 2.9, 2), ("ps", 1e300, 2**63 - 1),
    ("ps", "word", 0), ("end", 5, True), ("end", "true", True), ("end", "yes", False), ("color", 0.1, "0.1"),
    ("color", [], None), ("path", [[1, 2], 3, ["a"]], [[1.0, 2.0]]), ("path", 5, None), ("nobody", {"a": [1]}, None)])
def test_values_of_wrong_types_are_what_the_library_makes_of_them(key, value, expected):
    for record in (velwhiteboard.record_from_dict({"type": "line", key: value}),
                   velwhiteboard.record_from_json(json.dumps({"type": "line", key: value}))):
        assert bits(getattr(record, key, None)) == bits(expected)


@pytest.mark.parametrize("text", ["", "[]", "1", "null", '"a"', "{", '{"type":"line"', "{'a':1}", '{"a":1}}'])
def test_what_is_no_json_object_gives_none(text):
    assert velwhiteboard.record_from_json(text) is None
    assert VelWbVecMediaItem.from_json(text) is None


def test_an_array_of_records_gives_those_that_are_dictionaries():
    records = velwhiteboard.records_from_json('[{"type":"line","x":1}, 5, {"x":2}]')
    assert [(type(each), each.x) for each in records] == [(VelWbVecLine, 1.0), (VelWbVecPoint, 2.0)]
    assert velwhiteboard.records_from_json("{}") == []


def test_the_items_of_a_list_are_records():
    record = velwhiteboard.record_from_dict({"type": "mediaList", "list": [{"title": "a", "duration": 2**63 - 1}, 7]})
    assert record == VelWbVecMediaList(type="mediaList", list=[VelWbVecMediaItem(title="a", duration=2**63 - 1)])


@pytest.mark.parametrize("bad", [{1}, b"a", object(), 1j, {"a": {1}}, {1: 2}, [b"a"]])
def test_a_dictionary_with_what_is_no_value_is_a_type_error(bad):
    with pytest.raises(TypeError):
        velwhiteboard.record_from_dict({"type": "line", "offset": bad})


@pytest.mark.parametrize("bad", [None, 1, b"{}", ["{}"], {}, {1}])
def test_a_text_that_is_no_str_is_a_type_error(bad):
    for function in (velwhiteboard.record_from_json, velwhiteboard.records_from_json, VelWbVecLine.from_json):
        with pytest.raises(TypeError):
            function(bad)


@pytest.mark.parametrize("bad", [None, 1, "{}", [], [("type", "line")], VelWbVecLine()])
def test_a_dictionary_that_is_none_is_a_type_error(bad):
    for function in (velwhiteboard.record_from_dict, VelWbVecLine.from_dict):
        with pytest.raises(TypeError):
            function(bad)


def test_an_int_beyond_64_bits_is_an_overflow_error_in_a_dictionary_and_the_nearest_real_in_a_text():
    with pytest.raises(OverflowError):
        velwhiteboard.record_from_dict({"type": "line", "offset": [2**64]})
    record = velwhiteboard.record_from_json('{"type":"line","offset":[18446744073709551616]}')
    assert bits(record.offset) == bits([2.0**64])


def test_large_ints_are_exact_in_both_forms():
    for value in (2**64 - 1, 2**63, 2**63 - 1, -2**63, 2**53 + 1):
        record = VelWbVecLine(type="line", offset=[value, {"a": value}])
        for again in (velwhiteboard.record_from_json(record.to_json()), velwhiteboard.record_from_dict(record.to_dict())):
            assert bits(again.offset) == bits([value, {"a": value}])


def test_a_value_of_a_dictionary_that_nests_too_deep_is_a_value_error():
    deep = []
    for _ in range(255):
        deep = [deep]
    assert velwhiteboard.record_from_dict({"type": "line", "offset": deep}).offset == deep
    with pytest.raises(ValueError, match="256"):
        velwhiteboard.record_from_dict({"type": "line", "offset": [deep]})
