/// @file
/// Generic code over all kinds of properties.
#pragma once

#include <cmath>
#include <optional>
#include <string>
#include <type_traits>

#include "VelWhiteBoard/foundation/records/property.h"

namespace VelWhiteBoard {

/// Calls `function` with the field of `record` that `property` describes, in its own type; a list
/// of records comes as `std::optional<RecordList>`, whatever its elements are. Returns what the
/// function returns.
template <class Function>
decltype(auto) visitField(const Property& property, const Record& record, Function&& function) {
  switch (property.kind) {
    case PropertyKind::text:
      return function(property.in<std::optional<std::string>>(record));
    case PropertyKind::real:
      return function(property.in<double>(record));
    case PropertyKind::signedInteger:
      return function(property.in<std::int64_t>(record));
    case PropertyKind::unsignedInteger:
      return function(property.in<std::uint64_t>(record));
    case PropertyKind::boolean:
      return function(property.in<bool>(record));
    case PropertyKind::path:
      return function(property.in<std::optional<Path>>(record));
    case PropertyKind::array:
      return function(property.in<std::optional<Array>>(record));
    case PropertyKind::records:
      break;
  }
  return function(property.list->get(record));
}

/// Calls `function` with the field if the dictionary form includes it: absent strings and arrays
/// are left out, and so are numbers that are not finite. The function gets the content of an
/// optional.
template <class Function>
void visitWrittenField(const Property& property, const Record& record, Function&& function) {
  visitField(property, record, [&function](const auto& field) {
    using Field = std::remove_cvref_t<decltype(field)>;
    if constexpr (std::is_same_v<Field, double>) {
      if (std::isfinite(field)) function(field);
    } else if constexpr (std::is_arithmetic_v<Field>) {
      function(field);
    } else {
      if (field) function(*field);
    }
  });
}

}  // namespace VelWhiteBoard
