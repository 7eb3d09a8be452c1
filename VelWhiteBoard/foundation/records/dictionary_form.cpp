// Records to and from their dictionary form.
#include <cmath>
#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>

#include "VelWhiteBoard/foundation/records/assignment.h"
#include "VelWhiteBoard/foundation/records/dictionary_keys.h"
#include "VelWhiteBoard/foundation/records/model_mapping.h"
#include "VelWhiteBoard/foundation/records/property_visit.h"
#include "VelWhiteBoard/foundation/text/text.h"
#include "VelWhiteBoard/foundation/values/safe_values.h"

namespace VelWhiteBoard {

namespace {

// Reading. Records may hold lists of records; `depth` says how many lists are open around this one.

std::shared_ptr<Record> recordAt(const RecordClass& asked, const Dictionary& dictionary,
                                 std::size_t depth);

RecordList recordsAt(const RecordClass& asked, const Array& array, std::size_t depth) {
  RecordList records;
  if (depth > kMaximumValueDepth) return records;
  for (const Value& element : array) {
    if (!element.is_object()) continue;
    records.push_back(recordAt(asked, element.get_ref<const Dictionary&>(), depth));
  }
  return records;
}

/// The depth of each value is checked separately: one element of a list that is nested too deep
/// does not affect the others.
void assignAt(const Property& property, Record& record, const Value& value, std::size_t depth) {
  if (const auto scalar = scalarWithValue(value)) return assign(property, record, *scalar);
  const auto* const array = value.get_ptr<const Array*>();
  if (array == nullptr) return;
  if (property.kind == PropertyKind::path) {
    property.in<std::optional<Path>>(record) = pathWithArray(*array);
  } else if (property.kind == PropertyKind::records) {
    property.list->set(record, recordsAt(property.list->elementClass(), *array, depth + 1));
  } else if (property.kind == PropertyKind::array && !nestsTooDeep(value)) {
    ArrayOwner copy(*array);
    copy.swap(property.in<std::optional<Array>>(record));
  }
}

std::shared_ptr<Record> recordAt(const RecordClass& asked, const Dictionary& dictionary,
                                 std::size_t depth) {
  const RecordClass& chosen =
      asked.customClass == nullptr ? asked : asked.customClass(KeysOfDictionary(dictionary), asked);
  auto record = chosen.create();
  for (const Property& property : chosen.properties) {
    const auto found = dictionary.find(property.name);
    if (found != dictionary.end()) assignAt(property, *record, found->second, depth);
  }
  return record;
}

// Writing: one function per kind of field. Each fills the place of a null value.

void put(Value& place, const std::string& field) { place = withValidUTF8(field); }
template <class Number>
requires std::is_arithmetic_v<Number>
void put(Value& place, Number field) { place = field; }
void put(Value& place, const Path& field) {
  putPath(place, field);
  for (Value& position : place) {
    for (Value& number : position) {
      if (!std::isfinite(number.get<double>())) number = 0.0;
    }
  }
}

void putElements(Value& place, const Array& field, std::size_t depth);

/// A copy in which what JSON cannot express is null, as in the text.
void putFree(Value& place, const Value& value, std::size_t depth) {
  if (value.is_structured() && depth > kMaximumValueDepth) return;
  if (value.is_binary() || value.is_discarded()) return;
  if (value.is_number_float() && !std::isfinite(value.get<double>())) return;
  if (const auto* const text = value.get_ptr<const std::string*>()) {
    place = withValidUTF8(*text);
  } else if (const auto* const array = value.get_ptr<const Array*>()) {
    putElements(place, *array, depth);
  } else if (const auto* const members = value.get_ptr<const Dictionary*>()) {
    place = Dictionary();
    for (const auto& [key, member] : *members) {
      putFree(place[withValidUTF8(key)], member, depth + 1);
    }
  } else {
    place = value;
  }
}

void putElements(Value& place, const Array& field, std::size_t depth) {
  place = Array();
  auto& elements = place.get_ref<Array&>();
  elements.reserve(field.size());
  for (const Value& element : field) putFree(elements.emplace_back(), element, depth + 1);
}
void put(Value& place, const Array& field) { putElements(place, field, 1); }

void putRecord(Value& place, const Record& record);

void put(Value& place, const RecordList& field) {
  place = Array();
  auto& elements = place.get_ref<Array&>();
  for (const auto& record : field) {
    if (record) putRecord(elements.emplace_back(), *record);
  }
}

void putRecord(Value& place, const Record& record) {
  place = Dictionary();
  auto& members = place.get_ref<Dictionary&>();
  for (const Property& property : record.recordClass().properties) {
    visitWrittenField(property, record, [&](const auto& field) {
      put(members.try_emplace(std::string(property.name)).first->second, field);
    });
  }
}

}  // namespace

void assignFromOutside(const Property& property, Record& record, const Value& value) {
  assignAt(property, record, value, 1);
}

std::shared_ptr<Record> recordWithDictionary(const RecordClass& asked,
                                             const Dictionary& dictionary) {
  return recordAt(asked, dictionary, 1);
}

RecordList recordsWithArray(const RecordClass& asked, const Array& array) {
  return recordsAt(asked, array, 1);
}

Dictionary modelToJSONObject(const Record& record) {
  Value form;
  const DismantledAtEnd guard(form);
  putRecord(form, record);
  return std::move(form.get_ref<Dictionary&>());
}

}  // namespace VelWhiteBoard
