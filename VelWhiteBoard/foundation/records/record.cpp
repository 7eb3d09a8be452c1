#include "VelWhiteBoard/foundation/records/record.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <type_traits>
#include <utility>

#include "VelWhiteBoard/foundation/records/assignment.h"
#include "VelWhiteBoard/foundation/records/coder.h"
#include "VelWhiteBoard/foundation/records/property_visit.h"
#include "VelWhiteBoard/foundation/text/number_text.h"
#include "VelWhiteBoard/foundation/text/text.h"
#include "VelWhiteBoard/foundation/values/safe_values.h"
#include "VelWhiteBoard/foundation/values/same_number.h"

namespace VelWhiteBoard {

namespace {

// Equality: one function per kind.

template <class Field>
bool sameField(const Field& left, const Field& right) {
  return left == right;
}
bool sameField(double left, double right) { return sameNumber(left, right); }
bool sameField(const std::optional<Array>& left, const std::optional<Array>& right) {
  if (left.has_value() != right.has_value()) return false;
  return !left || std::equal(left->begin(), left->end(), right->begin(), right->end(), sameValue);
}
bool sameField(const std::optional<RecordList>& left, const std::optional<RecordList>& right) {
  if (left.has_value() != right.has_value()) return false;
  return !left || std::equal(left->begin(), left->end(), right->begin(), right->end(),
                             [](const auto& one, const auto& other) {
                               return one == other || (one && other && one->isEqual(*other));
                             });
}

// Hash: one function per kind. A property that is absent adds nothing.

template <class T>
std::size_t hashOf(const T& field) {
  return std::hash<T>()(field);
}
std::size_t hashOf(double field) { return hashOfNumber(field); }
std::size_t hashOf(const Array& field) {
  std::size_t hash = field.size();
  for (const Value& element : field) hash = hash * 31 + hashOfValue(element);
  return hash;
}
std::size_t hashOf(const Path& field) {
  std::size_t hash = field.size();
  for (const auto position : field) {
    for (const double number : position) hash = hash * 31 + hashOfNumber(number);
  }
  return hash;
}
std::size_t hashOf(const RecordList& field) {
  std::size_t hash = field.size();
  for (const auto& record : field) hash = hash * 31 + (record ? record->hash() : 0);
  return hash;
}
template <class T>
std::size_t hashOf(const std::optional<T>& field) {
  return field ? hashOf(*field) : 0;
}

// Description: one function per kind.

void describe(std::string& text, const std::string& field) { appendJSONText(text, field); }
void describe(std::string& text, bool field) { text += field ? "true" : "false"; }
void describe(std::string& text, double field) {
  if (std::isfinite(field)) {
    appendNumber(text, field);
  } else {
    text += std::isnan(field) ? "nan" : field < 0 ? "-inf" : "inf";
  }
}
void describe(std::string& text, std::int64_t field) { appendNumber(text, field); }
void describe(std::string& text, std::uint64_t field) { appendNumber(text, field); }
void describe(std::string& text, const Path& field) {
  text += '[';
  for (const auto position : field) {
    text += text.back() == '[' ? "[" : ", [";
    for (const double number : position) {
      if (text.back() != '[') text += ", ";
      describe(text, number);
    }
    text += ']';
  }
  text += ']';
}
void describe(std::string& text, const Array& field) {
  text += Value(field).dump(-1, ' ', false, Value::error_handler_t::replace);
}
void describe(std::string& text, const RecordList& field) {
  text += '[';
  for (const auto& record : field) {
    if (text.back() != '[') text += ", ";
    text += record ? record->description() : "null";
  }
  text += ']';
}
template <class T>
void describe(std::string& text, const std::optional<T>& field) {
  if (field) {
    describe(text, *field);
  } else {
    text += "null";
  }
}

// Archive: the value that an archive keeps for a field, put in the place of a null value.

template <class T>
void archive(Value& place, const T& field) {
  place = field;
}
void archive(Value& place, const Array& field) {
  place = Array();
  copyElements(field, place.get_ref<Array&>());
}
void archive(Value& place, const Path& field) { putPath(place, field); }
void archive(Value& place, const RecordList& field) {
  place = Array();
  for (const auto& record : field) {
    if (!record) continue;
    Coder element;
    record->encodeWithCoder(element);
    auto& members = place.get_ref<Array&>().emplace_back(Dictionary()).get_ref<Dictionary&>();
    for (const auto& [key, value] : element.values()) {
      copyInto(members.try_emplace(members.end(), key)->second, value);
    }
  }
}

}  // namespace

Record::~Record() = default;

bool Record::isEqual(const Record& other) const {
  if (this == &other) return true;
  if (!(recordClass() == other.recordClass())) return false;
  for (const Property& property : recordClass().properties) {
    const bool same = visitField(property, *this, [&](const auto& field) {
      using Field = std::decay_t<decltype(field)>;
      return visitField(property, other, [&](const auto& otherField) {
        if constexpr (std::is_same_v<Field, std::decay_t<decltype(otherField)>>) {
          return sameField(field, otherField);
        } else {
          return false;  // not reached: one property has one kind
        }
      });
    });
    if (!same) return false;
  }
  return true;
}

std::uint64_t Record::hash() const {
  std::uint64_t hash = 0;
  for (const Property& property : recordClass().properties) {
    hash ^= visitField(property, *this, [](const auto& field) { return hashOf(field); });
  }
  return hash;
}

std::string Record::description() const {
  std::string text = "<";
  text += recordClass().name;
  text += '>';
  for (const Property& property : recordClass().properties) {
    text += text.back() == '>' ? " {" : "; ";
    text += property.name;
    text += " = ";
    visitField(property, *this, [&text](const auto& field) { describe(text, field); });
  }
  text += '}';
  return text;
}

void Record::encodeWithCoder(Coder& coder) const {
  for (const Property& property : recordClass().properties) {
    Value value;
    const DismantledAtEnd guard(value);
    visitField(property, *this, [&](const auto& field) {
      if constexpr (requires { field.has_value(); }) {
        // The archive may have been used before, for a record in which the property is present.
        if (!field) return coder.remove(property.name);
        archive(value, *field);
      } else {
        archive(value, field);
      }
      coder.encode(property.name, std::move(value));
    });
  }
}

void Record::takeContents(Record& from) noexcept {
  if (this == &from || !(recordClass() == from.recordClass())) return;
  for (const Property& property : recordClass().properties) {
    if (property.kind != PropertyKind::array) continue;
    if (auto& array = property.in<std::optional<Array>>(*this)) dismantle(*array);
  }
  moveMembers(from);
}

std::map<std::string, const RecordClass*> containerClasses(const RecordClass& recordClass) {
  std::map<std::string, const RecordClass*> classes;
  for (const Property& property : recordClass.properties) {
    if (property.list != nullptr) classes.emplace(property.name, &property.list->elementClass());
  }
  return classes;
}

void decodeWithCoder(Record& record, const Coder& coder) {
  const auto filled = record.makeCopy();
  for (const Property& property : record.recordClass().properties) {
    const Value* value = coder.decode(property.name);
    if (value != nullptr) assignFromOutside(property, *filled, *value);
  }
  record.takeContents(*filled);
}

}  // namespace VelWhiteBoard
