#include "tests/support/random_records.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdlib>
#include <iterator>
#include <limits>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "VelWhiteBoard/foundation/records/dictionary_keys.h"
#include "VelWhiteBoard/foundation/records/model_mapping.h"
#include "VelWhiteBoard/vectors/vector_defines.h"

#include "tests/support/record_classes.h"

namespace VelWhiteBoard {

namespace {

using std::string_view_literals::operator""sv;

constexpr double kNumbers[] = {0.0,
                               -0.0,
                               1.0,
                               -1.0,
                               10.0,
                               0.1,
                               -0.25,
                               1.0 / 3,
                               1e-4,
                               9e-5,
                               1e15,
                               1e16,
                               1e300,
                               5e-324,
                               -10.0,
                               1700000000.123456,
                               9.2e18,
                               1.8e19,
                               1e20,
                               -9.3e18,
                               2147483648.0,
                               0.30000000000000004,
                               1.7976931348623157e308,
                               2.2250738585072014e-308};
constexpr double kUnbounded[] = {std::numeric_limits<double>::quiet_NaN(),
                                 std::numeric_limits<double>::infinity(),
                                 -std::numeric_limits<double>::infinity()};

constexpr std::string_view kPieces[] = {"a"sv,
                                        "Z9"sv,
                                        " "sv,
                                        "  "sv,
                                        "\n"sv,
                                        "\r"sv,
                                        "\t"sv,
                                        "\r\n"sv,
                                        "]]>"sv,
                                        "&"sv,
                                        "<"sv,
                                        "</"sv,
                                        "\""sv,
                                        "'"sv,
                                        "\\"sv,
                                        "\\u0041"sv,
                                        "&amp;"sv,
                                        "12"sv,
                                        "-"sv,
                                        "1e5"sv,
                                        "true"sv,
                                        "line"sv,
                                        "\xC3\xA9"sv,
                                        "\xE7\x99\xBD"sv,
                                        "\x7F"sv,
                                        "\xF0\x9F\x98\x80"sv,
                                        "\xEF\xBF\xBD"sv,
                                        "\xEF\xBB\xBF"sv,
                                        "\xC2\x85"sv,
                                        "#FF3467FF"sv};
constexpr std::string_view kControls[] = {"\0"sv,   "\x01"sv,         "\x0B"sv,
                                          "\x1F"sv, "\xEF\xBF\xBE"sv, "\xEF\xBF\xBF"sv};
constexpr std::string_view kBroken[] = {"\xFF"sv,     "\x80"sv,         "\xC3"sv,
                                        "\xE2\x82"sv, "\xED\xA0\x80"sv, "\xF0\x9F\x98"sv};

constexpr std::int64_t kIntegers[] = {0,   1,   -1,        9,         10,         -11,
                                      -10, 400, INT64_MAX, INT64_MIN, 1LL << 53U, -(1LL << 31U)};

}  // namespace

std::uint64_t testSeed() {
  constexpr std::uint64_t kDefaultSeed = 20240229;
  const char* const text = std::getenv("VELWB_TEST_SEED");
  return text == nullptr ? kDefaultSeed : std::strtoull(text, nullptr, 10);
}

std::size_t RandomRecords::below(std::size_t bound) {
  return static_cast<std::size_t>(engine_() % bound);
}

double RandomRecords::number() {
  if (taste_.numbersWithoutBound && below(6) == 0) return kUnbounded[below(std::size(kUnbounded))];
  if (below(2) == 0) return kNumbers[below(std::size(kNumbers))];
  const auto any = std::bit_cast<double>(engine_());
  return std::isfinite(any) ? any : 0.5;
}

std::int64_t RandomRecords::integer() {
  if (below(2) == 0) return kIntegers[below(std::size(kIntegers))];
  return std::bit_cast<std::int64_t>(engine_());
}

std::string RandomRecords::text() {
  std::string text;
  for (std::size_t pieces = below(5); pieces > 0; --pieces) {
    const std::size_t kind = below(8);
    if (kind == 0 && taste_.controlCharacters) {
      text += kControls[below(std::size(kControls))];
    } else if (kind == 1 && taste_.brokenText) {
      text += kBroken[below(std::size(kBroken))];
    } else {
      text += kPieces[below(std::size(kPieces))];
    }
  }
  return text;
}

Path RandomRecords::path() {
  Path path;
  const bool even = below(2) == 0;
  for (std::size_t positions = below(6); positions > 0; --positions) {
    std::vector<double> position(even ? 3 : below(6));
    for (double& each : position) each = number();
    path.push_back(Path::Position(position));
  }
  return path;
}

Value RandomRecords::value(std::size_t depth) {
  switch (below(depth == 0 ? 6 : 9)) {
    case 0:
      if (taste_.nulls) return nullptr;
      return true;
    case 1:
      return below(2) == 0;
    case 2:
      return integer();
    case 3:
      return static_cast<std::uint64_t>(engine_());
    case 4:
      return number();
    case 5:
      return text();
    case 6: {
      Dictionary members;
      for (std::size_t count = below(4); count > 0; --count) {
        members.insert_or_assign(text(), value(depth - 1));
      }
      return members;
    }
    default:
      return array(depth - 1);
  }
}

Array RandomRecords::array(std::size_t depth) {
  Array elements;
  for (std::size_t count = below(5); count > 0; --count) elements.push_back(value(depth));
  return elements;
}

RecordList RandomRecords::list(const RecordClass& elementClass) {
  RecordList records;
  for (std::size_t count = below(4); count > 0; --count) records.push_back(record(elementClass));
  return records;
}

void RandomRecords::fill(const Property& property, Record& record) {
  const bool absent = below(5) == 0;
  switch (property.kind) {
    case PropertyKind::text: {
      auto& field = property.in<std::optional<std::string>>(record);
      field = absent ? std::nullopt : std::optional(text());
      return;
    }
    case PropertyKind::real:
      property.in<double>(record) = number();
      return;
    case PropertyKind::signedInteger:
      property.in<std::int64_t>(record) = integer();
      return;
    case PropertyKind::unsignedInteger:
      property.in<std::uint64_t>(record) = static_cast<std::uint64_t>(integer());
      return;
    case PropertyKind::boolean:
      property.in<bool>(record) = below(2) == 0;
      return;
    case PropertyKind::path: {
      auto& field = property.in<std::optional<Path>>(record);
      field = absent ? std::nullopt : std::optional(path());
      return;
    }
    case PropertyKind::array: {
      auto& field = property.in<std::optional<Array>>(record);
      field = absent ? std::nullopt : std::optional(array(3));
      return;
    }
    case PropertyKind::records:
      property.list->set(
          record, absent ? std::nullopt : std::optional(list(property.list->elementClass())));
      return;
  }
}

std::shared_ptr<Record> RandomRecords::record(const RecordClass& recordClass) {
  for (;;) {
    auto record = recordClass.create();
    for (const Property& property : recordClass.properties) fill(property, *record);
    // A number that a dictionary cannot carry may be the very key that makes the class.
    if (recordClass.customClass == nullptr || chooseType(*record)) return record;
  }
}

bool RandomRecords::chooseType(Record& record) {
  const RecordClass& own = record.recordClass();
  std::vector<std::optional<std::string>> candidates{std::nullopt, text(), text(), ""};
  for (std::uint64_t code = 1; code <= 17; ++code) {
    candidates.push_back(VelWbVectorDefines::vectorType(code));
  }
  std::shuffle(candidates.begin(), candidates.end(), engine_);
  for (const auto& candidate : candidates) {
    own.properties.front().in<std::optional<std::string>>(record) = candidate;
    Dictionary form = modelToJSONObject(record);
    if (!(own.customClass(KeysOfDictionary(form), own) == own)) continue;
    // Also once the numbers that were left out have become 0.
    for (const Property& property : own.properties) {
      if (property.kind == PropertyKind::real) form.emplace(property.name, 0.0);
    }
    if (own.customClass(KeysOfDictionary(form), own) == own) return true;
  }
  return false;
}

Dictionary RandomRecords::dictionary() {
  const auto& classes = testedClasses();
  const RecordClass& some = *classes[below(classes.size())].own;
  Dictionary dictionary;
  for (const Property& property : some.properties) {
    if (below(3) == 0) continue;
    // Half of the values fit their property, the others are of any kind.
    if (below(2) == 0) {
      dictionary.insert_or_assign(std::string(property.name), value(4));
      continue;
    }
    const auto donor = some.create();
    fill(property, *donor);
    Dictionary form = modelToJSONObject(*donor);
    const auto found = form.find(property.name);
    if (found != form.end()) {
      dictionary.insert_or_assign(std::string(property.name), std::move(found->second));
    }
  }
  if (below(2) == 0) {
    if (auto type = VelWbVectorDefines::vectorType(1 + below(17))) dictionary["type"] = *type;
  }
  if (below(4) == 0) dictionary.insert_or_assign(text(), value(2));
  if (below(8) == 0) dictionary.insert_or_assign("w", value(1));
  if (below(8) == 0) dictionary.insert_or_assign("x", value(1));
  return dictionary;
}

}  // namespace VelWhiteBoard
