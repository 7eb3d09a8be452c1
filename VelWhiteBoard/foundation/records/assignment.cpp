#include "VelWhiteBoard/foundation/records/assignment.h"

#include <cmath>
#include <cstdint>
#include <limits>
#include <string>
#include <type_traits>
#include <variant>
#include <vector>

#include "VelWhiteBoard/foundation/text/number_text.h"
#include "VelWhiteBoard/foundation/values/safe_values.h"
#include "VelWhiteBoard/foundation/values/truncation.h"

namespace VelWhiteBoard {

namespace {

template <class T>
constexpr bool isNumber = std::is_same_v<T, std::int64_t> || std::is_same_v<T, std::uint64_t> ||
                          std::is_same_v<T, double>;

// One function per kind of property, each over all kinds of scalars. Each starts from the default,
// so that an earlier value of the same key has no effect.

void assignText(std::optional<std::string>& field, const Scalar& scalar) {
  field.reset();
  std::visit(
      [&field](const auto& value) {
        using T = std::decay_t<decltype(value)>;
        if constexpr (std::is_same_v<T, std::string_view>) field.emplace(value);
        if constexpr (std::is_same_v<T, double>) {
          if (!std::isfinite(value)) return;
        }
        if constexpr (isNumber<T>) appendNumber(field.emplace(), value);
      },
      scalar);
}

std::int64_t convert(std::int64_t number, std::int64_t) { return number; }
std::int64_t convert(std::uint64_t number, std::int64_t) {
  constexpr auto kLargest = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
  return static_cast<std::int64_t>(number < kLargest ? number : kLargest);
}
std::int64_t convert(double number, std::int64_t) { return truncatedToSigned(number); }
std::uint64_t convert(std::int64_t number, std::uint64_t) {
  return number < 0 ? 0 : static_cast<std::uint64_t>(number);
}
std::uint64_t convert(std::uint64_t number, std::uint64_t) { return number; }
std::uint64_t convert(double number, std::uint64_t) { return truncatedToUnsigned(number); }
template <class Number>
double convert(Number number, double) {
  return static_cast<double>(number);
}

template <class Field>
void assignNumber(Field& field, const Scalar& scalar) {
  field = 0;
  std::visit(
      [&field](const auto& value) {
        using T = std::decay_t<decltype(value)>;
        if constexpr (std::is_same_v<T, bool>) field = value ? 1 : 0;
        if constexpr (isNumber<T>) field = convert(value, Field{});
        if constexpr (std::is_same_v<T, std::string_view>) {
          if (const auto number = numberWithJSON(value)) assignNumber(field, *number);
        }
      },
      scalar);
}

void assignBoolean(bool& field, const Scalar& scalar) {
  field = false;
  std::visit(
      [&field](const auto& value) {
        using T = std::decay_t<decltype(value)>;
        if constexpr (std::is_same_v<T, bool>) field = value;
        if constexpr (isNumber<T>) field = value != T{};
        if constexpr (std::is_same_v<T, std::string_view>) {
          field = value == "true";
        }
      },
      scalar);
}

}  // namespace

void assign(const Property& property, Record& record, const Scalar& scalar) {
  switch (property.kind) {
    case PropertyKind::text:
      return assignText(property.in<std::optional<std::string>>(record), scalar);
    case PropertyKind::real:
      return assignNumber(property.in<double>(record), scalar);
    case PropertyKind::signedInteger:
      return assignNumber(property.in<std::int64_t>(record), scalar);
    case PropertyKind::unsignedInteger:
      return assignNumber(property.in<std::uint64_t>(record), scalar);
    case PropertyKind::boolean:
      return assignBoolean(property.in<bool>(record), scalar);
    case PropertyKind::path:
      return property.in<std::optional<Path>>(record).reset();
    case PropertyKind::array:
      return ArrayOwner().swap(property.in<std::optional<Array>>(record));
    case PropertyKind::records:
      return property.list->set(record, std::nullopt);
  }
}

void assign(const Property& property, Record& record, Value&& value) {
  const DismantledAtEnd guard(value);
  assign(property, record, Scalar());
  auto* const array = value.get_ptr<Array*>();
  if (array != nullptr && property.kind == PropertyKind::array) {
    property.in<std::optional<Array>>(record).emplace().swap(*array);
  } else {
    assignFromOutside(property, record, value);
  }
}

Path pathWithArray(const Array& positions) {
  Path path;
  path.reserve(positions.size());
  std::vector<double> numbers;
  for (const Value& position : positions) {
    if (!position.is_array()) continue;
    numbers.clear();
    for (const Value& number : position) {
      if (!number.is_number()) break;
      numbers.push_back(number.get<double>());
    }
    if (numbers.size() == position.size()) path.push_back(Path::Position(numbers));
  }
  return path;
}

void putPath(Value& place, const Path& path) {
  place = Array();
  auto& positions = place.get_ref<Array&>();
  positions.reserve(path.size());
  for (const auto position : path) {
    positions.emplace_back() = Array(position.begin(), position.end());
  }
}

Value valueWithScalar(const Scalar& scalar) {
  return std::visit(
      [](const auto& value) -> Value {
        using T = std::decay_t<decltype(value)>;
        if constexpr (std::is_same_v<T, std::monostate>) {
          return nullptr;
        } else {
          return value;
        }
      },
      scalar);
}

std::optional<Scalar> scalarWithValue(const Value& value) {
  switch (value.type()) {
    case Value::value_t::null:
      return Scalar();
    case Value::value_t::boolean:
      return Scalar(value.get<bool>());
    case Value::value_t::number_integer:
      return Scalar(value.get<std::int64_t>());
    case Value::value_t::number_unsigned:
      return Scalar(value.get<std::uint64_t>());
    case Value::value_t::number_float:
      return Scalar(value.get<double>());
    case Value::value_t::string:
      return Scalar(std::string_view(value.get_ref<const std::string&>()));
    default:
      return std::nullopt;
  }
}

}  // namespace VelWhiteBoard
