// Records from JSON text.
#include <algorithm>
#include <cstddef>
#include <memory>
#include <new>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <simdjson.h>

#include "VelWhiteBoard/foundation/json/json_mending.h"
#include "VelWhiteBoard/foundation/records/assignment.h"
#include "VelWhiteBoard/foundation/records/model_mapping.h"
#include "VelWhiteBoard/foundation/values/per_thread.h"
#include "VelWhiteBoard/foundation/values/safe_values.h"

namespace VelWhiteBoard {

namespace {

namespace dom = simdjson::dom;

/// A parser and its padded buffer, kept for the next text of the same thread.
class TextParser {
 public:
  /// Returns the parser's error. On success `element` is the whole text.
  /// @throws std::bad_alloc when memory runs out.
  simdjson::error_code parse(std::string_view text, dom::element& element) {
    if (buffer_.size() < text.size() + simdjson::SIMDJSON_PADDING) {
      buffer_.resize(text.size() + simdjson::SIMDJSON_PADDING);
    }
    std::copy(text.begin(), text.end(), buffer_.begin());
    auto error = parser_.parse(buffer_.data(), text.size(), false).get(element);
    if (error == simdjson::DEPTH_ERROR) {
      // The parser needs room for each open container: allow for as many as the text can hold.
      isUnusual_ = true;
      error = parser_.allocate(std::max(text.size(), parser_.capacity()), text.size());
      if (error == simdjson::SUCCESS) {
        error = parser_.parse(buffer_.data(), text.size(), false).get(element);
      }
    }
    if (error == simdjson::MEMALLOC) {
      isUnusual_ = true;
      throw std::bad_alloc();
    }
    return error;
  }

  /// Releases memory that only an unusual text needed.
  void trim() noexcept {
    constexpr std::size_t kKept = std::size_t{1} << 20U;
    if (buffer_.size() <= kKept && !isUnusual_) return;
    buffer_ = {};
    parser_ = dom::parser();
    isUnusual_ = false;
  }

 private:
  dom::parser parser_;
  std::vector<char> buffer_;
  /// Whether the parser differs from a new one in more than its capacity.
  bool isUnusual_ = false;
};

/// What a thread keeps between texts, so that most texts need memory for their records only.
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

/// Adds `element` to the path if it is a position, that is, an array of numbers.
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

/// Puts a free-form value into `place`; false when it is nested too deep. Builds it in place, so
/// that only the whole has to be destroyed when memory runs out.
bool putElement(Value& place, const dom::element& element, std::size_t depth) {
  if (const auto scalar = scalarWithElement(element)) {
    place = valueWithScalar(*scalar);
    return true;
  }
  if (depth > kMaximumValueDepth) return false;
  dom::array elements;
  if (element.get_array().get(elements) == simdjson::SUCCESS) {
    place = Array();
    auto& array = place.get_ref<Array&>();
    return std::all_of(elements.begin(), elements.end(), [&](const dom::element& each) {
      return putElement(array.emplace_back(), each, depth + 1);
    });
  }
  place = Dictionary();
  auto& members = place.get_ref<Dictionary&>();
  const dom::object object = element.get_object().value_unsafe();
  return std::all_of(object.begin(), object.end(), [&](const dom::key_value_pair& field) {
    Value& member = members.try_emplace(std::string(field.key)).first->second;
    dismantle(member);  // of a key that occurs twice the last value counts
    return putElement(member, field.value, depth + 1);
  });
}

// Records may hold lists of records; `depth` says how many lists are open around a record.

std::shared_ptr<Record> recordWithObject(const RecordClass& asked, const dom::object& object,
                                         std::size_t depth);

RecordList recordsWithElements(const RecordClass& asked, const dom::array& elements,
                               std::size_t depth) {
  RecordList records;
  if (depth > kMaximumValueDepth) return records;
  for (const dom::element element : elements) {
    dom::object object;
    if (element.get_object().get(object) != simdjson::SUCCESS) continue;
    records.push_back(recordWithObject(asked, object, depth));
  }
  return records;
}

/// Sets `field` if the value is of type `Taken`; otherwise leaves it as it is.
template <class Taken, class Field>
bool take(const dom::element& element, Field& field) {
  Taken value;
  if (element.get<Taken>().get(value) != simdjson::SUCCESS) return false;
  field = value;
  return true;
}

/// Sets a property from a value of the matching type, the usual case; false for any other value.
bool assignOwnKind(const Property& property, Record& record, const dom::element& element,
                   std::size_t depth) {
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
      property.list->set(record,
                         recordsWithElements(property.list->elementClass(), elements, depth + 1));
      return true;
    }
    case PropertyKind::array: {
      if (!element.is_array()) return false;
      Value value;
      const DismantledAtEnd guard(value);
      const bool isTaken = putElement(value, element, 1);
      auto& field = property.in<std::optional<Array>>(record);
      if (field) dismantle(*field);
      field.reset();
      if (isTaken) field.emplace().swap(value.get_ref<Array&>());
      return true;
    }
  }
  return false;
}

void assignElement(const Property& property, Record& record, const dom::element& element,
                   std::size_t depth) {
  if (assignOwnKind(property, record, element, depth)) return;
  // A list or object that does not match sets the property to its default, like null.
  assign(property, record, scalarWithElement(element).value_or(Scalar()));
}

std::shared_ptr<Record> recordWithObject(const RecordClass& asked, const dom::object& object,
                                         std::size_t depth) {
  const RecordClass& chosen =
      asked.customClass == nullptr ? asked : asked.customClass(KeysOfObject(object), asked);
  auto record = chosen.create();
  PropertyFinder finder(chosen);
  for (const dom::key_value_pair field : object) {
    if (const Property* property = finder.find(field.key)) {
      assignElement(*property, *record, field.value, depth);
    }
  }
  return record;
}

/// Trims a parser when the scope ends, by return or exception.
class TrimmedAtEnd {
 public:
  explicit TrimmedAtEnd(TextParser& parser) noexcept : parser_(parser) {}
  ~TrimmedAtEnd() { parser_.trim(); }
  TrimmedAtEnd(const TrimmedAtEnd&) = delete;
  TrimmedAtEnd& operator=(const TrimmedAtEnd&) = delete;

 private:
  TextParser& parser_;
};

/// Parses `text` and passes it to `use`. For invalid JSON, returns a default value of the result
/// type of `use`.
template <class Use>
auto withParsedText(std::string_view text, const Use& use)
    -> decltype(use(std::declval<const dom::element&>())) {
  constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
  if (text.starts_with(kByteOrderMark)) text.remove_prefix(kByteOrderMark.size());
  TextParser& parser = ofThisThread<ReadingMemory>().parser;
  const TrimmedAtEnd trimmed(parser);
  dom::element element;
  auto error = parser.parse(text, element);
  if (error != simdjson::SUCCESS) {
    // The error codes depend on the parser's version, so mending is tried after any error.
    const std::string mended = mendedJSON(text);
    if (mended != text) error = parser.parse(mended, element);
  }
  if (error != simdjson::SUCCESS) return {};
  return use(element);
}

}  // namespace

std::shared_ptr<Record> recordWithJSON(const RecordClass& asked, std::string_view text) {
  return withParsedText(text, [&asked](const dom::element& element) -> std::shared_ptr<Record> {
    dom::object object;
    if (element.get_object().get(object) != simdjson::SUCCESS) return nullptr;
    return recordWithObject(asked, object, 1);
  });
}

RecordList recordsWithJSON(const RecordClass& asked, std::string_view text) {
  return withParsedText(text, [&asked](const dom::element& element) -> RecordList {
    dom::array elements;
    if (element.get_array().get(elements) != simdjson::SUCCESS) return {};
    return recordsWithElements(asked, elements, 1);
  });
}

}  // namespace VelWhiteBoard
