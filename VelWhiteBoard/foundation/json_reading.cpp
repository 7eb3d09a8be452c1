// Records from their dictionary form and from JSON text.
#include <algorithm>
#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <simdjson.h>

#include "VelWhiteBoard/foundation/assignment.h"
#include "VelWhiteBoard/foundation/dictionary_keys.h"
#include "VelWhiteBoard/foundation/json_mending.h"
#include "VelWhiteBoard/foundation/model_mapping.h"
#include "VelWhiteBoard/foundation/per_thread.h"

namespace VelWhiteBoard {

namespace {

namespace dom = simdjson::dom;

/// A parser and a buffer with the padding that it wants, kept for the next text of the same thread.
class TextParser {
 public:
  simdjson::simdjson_result<dom::element> parse(std::string_view text) {
    if (buffer_.size() < text.size() + simdjson::SIMDJSON_PADDING) {
      buffer_.resize(text.size() + simdjson::SIMDJSON_PADDING);
    }
    std::copy(text.begin(), text.end(), buffer_.begin());
    return parser_.parse(buffer_.data(), text.size(), false);
  }

  /// Gives memory back that only an unusual text needed.
  void trim() {
    constexpr std::size_t kKept = std::size_t{1} << 20U;
    if (buffer_.size() <= kKept) return;
    buffer_ = {};
    parser_ = dom::parser();
  }

 private:
  dom::parser parser_;
  std::vector<char> buffer_;
};

/// What a thread keeps from text to text, so that most texts need no memory but their records'.
struct ReadingMemory {
  TextParser parser;
  std::vector<double> numbers;
};

/// The keys of a parsed object, for the decoding rule. A key that occurs twice has its last value.
class KeysOfObject final : public DictionaryKeys {
 public:
  explicit KeysOfObject(const dom::object& object) : object_(object) {}

  bool contains(std::string_view key) const override {
    return std::any_of(object_.begin(), object_.end(),
                       [key](const dom::key_value_pair& field) { return field.key == key; });
  }
  std::optional<std::string_view> text(std::string_view key) const override {
    std::optional<std::string_view> last;
    for (const dom::key_value_pair field : object_) {
      if (!isSameName(field.key, key)) continue;
      last.reset();
      if (field.value.is_string()) last = field.value.get_string().value_unsafe();
    }
    return last;
  }

 private:
  const dom::object& object_;
};

std::optional<Scalar> scalarWithElement(const dom::element& element) {
  switch (element.type()) {
    case dom::element_type::NULL_VALUE:
      return Scalar();
    case dom::element_type::BOOL:
      return Scalar(element.get_bool().value_unsafe());
    case dom::element_type::INT64:
      return Scalar(element.get_int64().value_unsafe());
    case dom::element_type::UINT64:
      return Scalar(element.get_uint64().value_unsafe());
    case dom::element_type::DOUBLE:
      return Scalar(element.get_double().value_unsafe());
    case dom::element_type::STRING:
      return Scalar(element.get_string().value_unsafe());
    default:
      return std::nullopt;
  }
}

/// Adds the position that `element` is; one that is not an array of numbers is dropped.
void addPosition(Path& path, const dom::element& element, std::vector<double>& numbers) {
  dom::array position;
  if (element.get_array().get(position) != simdjson::SUCCESS) return;
  numbers.clear();
  for (const dom::element each : position) {
    double number = 0;
    if (each.get_double().get(number) != simdjson::SUCCESS) return;
    numbers.push_back(number);
  }
  path.push_back(Path::Position(numbers));
}

Path pathWithElements(const dom::array& positions) {
  Path path;
  path.reserve(positions.size());
  std::vector<double>& numbers = ofThisThread<ReadingMemory>().numbers;
  for (const dom::element position : positions) addPosition(path, position, numbers);
  return path;
}

/// A free-form value; none when it is nested too deep.
std::optional<Value> valueWithElement(const dom::element& element, std::size_t depth) {
  if (const auto scalar = scalarWithElement(element)) {
    return std::visit(
        [](const auto& value) -> Value {
          using T = std::decay_t<decltype(value)>;
          if constexpr (std::is_same_v<T, std::monostate>)
            return nullptr;
          else
            return value;
        },
        *scalar);
  }
  if (depth > kMaximumValueDepth) return std::nullopt;
  dom::array elements;
  if (element.get_array().get(elements) == simdjson::SUCCESS) {
    Array array;
    for (const dom::element each : elements) {
      auto value = valueWithElement(each, depth + 1);
      if (!value) return std::nullopt;
      array.push_back(std::move(*value));
    }
    return Value(std::move(array));
  }
  Dictionary members;
  const dom::object object = element.get_object().value_unsafe();
  for (const dom::key_value_pair field : object) {
    auto value = valueWithElement(field.value, depth + 1);
    if (!value) return std::nullopt;
    members.insert_or_assign(std::string(field.key), std::move(*value));
  }
  return Value(std::move(members));
}

std::shared_ptr<Record> recordWithObject(const RecordClass& asked, const dom::object& object);

RecordList recordsWithElements(const RecordClass& asked, const dom::array& elements) {
  RecordList records;
  for (const dom::element element : elements) {
    dom::object object;
    if (element.get_object().get(object) != simdjson::SUCCESS) continue;
    records.push_back(recordWithObject(asked, object));
  }
  return records;
}

/// Puts a value into `field` if `Taken` says what it is; `field` stays as it is otherwise.
template <class Taken, class Field>
bool take(const dom::element& element, Field& field) {
  Taken value;
  if (element.get<Taken>().get(value) != simdjson::SUCCESS) return false;
  field = value;
  return true;
}

/// Puts a value into a property of just its kind, as nearly all are; false for any other value.
bool assignOwnKind(const Property& property, Record& record, const dom::element& element) {
  switch (property.kind) {
    case PropertyKind::text:
      return take<std::string_view>(element, property.in<std::optional<std::string>>(record));
    case PropertyKind::real:
      return take<double>(element, property.in<double>(record));
    case PropertyKind::signedInteger:
      return take<std::int64_t>(element, property.in<std::int64_t>(record));
    case PropertyKind::unsignedInteger:
      return take<std::uint64_t>(element, property.in<std::uint64_t>(record));
    case PropertyKind::boolean:
      return take<bool>(element, property.in<bool>(record));
    case PropertyKind::path: {
      dom::array positions;
      if (element.get_array().get(positions) != simdjson::SUCCESS) return false;
      property.in<std::optional<Path>>(record) = pathWithElements(positions);
      return true;
    }
    case PropertyKind::records: {
      dom::array elements;
      if (element.get_array().get(elements) != simdjson::SUCCESS) return false;
      property.list->set(record, recordsWithElements(property.list->elementClass(), elements));
      return true;
    }
    case PropertyKind::array: {
      if (!element.is_array()) return false;
      auto& field = property.in<std::optional<Array>>(record);
      auto value = valueWithElement(element, 1);
      field.reset();
      if (value) field = std::move(value->get_ref<Array&>());
      return true;
    }
  }
  return false;
}

void assignElement(const Property& property, Record& record, const dom::element& element) {
  if (assignOwnKind(property, record, element)) return;
  // No property takes a list or an object of another kind; like null, they put it back.
  assign(property, record, scalarWithElement(element).value_or(Scalar()));
}

std::shared_ptr<Record> recordWithObject(const RecordClass& asked, const dom::object& object) {
  const RecordClass& chosen =
      asked.customClass == nullptr ? asked : asked.customClass(KeysOfObject(object), asked);
  auto record = chosen.create();
  PropertyFinder finder(chosen);
  for (const dom::key_value_pair field : object) {
    if (const Property* property = finder.find(field.key)) {
      assignElement(*property, *record, field.value);
    }
  }
  return record;
}

/// Parses `text` and hands it to `use`. What is no JSON text gives what `use` answers by default.
template <class Use>
auto withParsedText(std::string_view text, const Use& use)
    -> decltype(use(std::declval<const dom::element&>())) {
  TextParser& parser = ofThisThread<ReadingMemory>().parser;
  dom::element element;
  auto error = parser.parse(text).get(element);
  if (error != simdjson::SUCCESS) {
    // Which error stands for what depends on the parser's version, so any is worth a look.
    const std::string mended = mendedJSON(text);
    if (mended != text) error = parser.parse(mended).get(element);
  }
  decltype(use(element)) result{};
  if (error == simdjson::SUCCESS) result = use(element);
  parser.trim();
  return result;
}

}  // namespace

std::shared_ptr<Record> recordWithJSON(const RecordClass& asked, std::string_view text) {
  return withParsedText(text, [&asked](const dom::element& element) -> std::shared_ptr<Record> {
    dom::object object;
    if (element.get_object().get(object) != simdjson::SUCCESS) return nullptr;
    return recordWithObject(asked, object);
  });
}

RecordList recordsWithJSON(const RecordClass& asked, std::string_view text) {
  return withParsedText(text, [&asked](const dom::element& element) -> RecordList {
    dom::array elements;
    if (element.get_array().get(elements) != simdjson::SUCCESS) return {};
    return recordsWithElements(asked, elements);
  });
}

std::shared_ptr<Record> recordWithDictionary(const RecordClass& asked,
                                             const Dictionary& dictionary) {
  const RecordClass& chosen =
      asked.customClass == nullptr ? asked : asked.customClass(KeysOfDictionary(dictionary), asked);
  auto record = chosen.create();
  for (const Property& property : chosen.properties) {
    const auto found = dictionary.find(property.name);
    if (found != dictionary.end()) assignFromOutside(property, *record, found->second);
  }
  return record;
}

RecordList recordsWithArray(const RecordClass& asked, const Array& array) {
  RecordList records;
  for (const Value& element : array) {
    if (!element.is_object()) continue;
    records.push_back(recordWithDictionary(asked, element.get_ref<const Dictionary&>()));
  }
  return records;
}

}  // namespace VelWhiteBoard
