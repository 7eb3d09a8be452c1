// Generic code over all kinds of properties.
#pragma once

#include <VelWhiteBoard/foundation/records/record.h>
#include <VelWhiteBoard/foundation/values/path.h>
#include <VelWhiteBoard/foundation/values/value.h>
#include <cstdint>
#include <optional>
#include <string>

namespace bindings {

/// Calls `function` with a pointer to the member of `record` that holds the property; for a list of
/// records, whose member generic code cannot name, with a null `std::optional<RecordList>*`.
template <class Function>
decltype(auto) withKind(const VelWhiteBoard::Property& property, VelWhiteBoard::Record& record,
                        Function&& function) {
  using VelWhiteBoard::PropertyKind;
  switch (property.kind) {
    case PropertyKind::text:
      return function(&property.in<std::optional<std::string>>(record));
    case PropertyKind::real:
      return function(&property.in<double>(record));
    case PropertyKind::signedInteger:
      return function(&property.in<std::int64_t>(record));
    case PropertyKind::unsignedInteger:
      return function(&property.in<std::uint64_t>(record));
    case PropertyKind::boolean:
      return function(&property.in<bool>(record));
    case PropertyKind::path:
      return function(&property.in<std::optional<VelWhiteBoard::Path>>(record));
    case PropertyKind::array:
      return function(&property.in<std::optional<VelWhiteBoard::Array>>(record));
    case PropertyKind::records:
      break;
  }
  return function(static_cast<std::optional<VelWhiteBoard::RecordList>*>(nullptr));
}

}  // namespace bindings
