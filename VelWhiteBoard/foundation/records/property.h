/// @file
/// The properties of records. Each is declared once; all generic operations are derived from
/// it.
///
/// A record class lists its properties, its base's first:
///
///     template <class Visitor>
///     static constexpr void properties(Visitor&& visit) {
///       VelWbBaseVector::properties(visit);
///       visit(property<&VelWbVecPoint::x>("x"));
///     }
///
/// The name is the key in the dictionary form and in files; the kind follows from the member's
/// type.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include "VelWhiteBoard/foundation/values/path.h"
#include "VelWhiteBoard/foundation/values/value.h"

namespace VelWhiteBoard {

class Record;
struct RecordClass;

/// A list of records of any class, as generic code sees it.
using RecordList = std::vector<std::shared_ptr<Record>>;

/// What a property holds; each kind has one C++ type.
enum class PropertyKind : std::uint8_t {
  text,             ///< `std::optional<std::string>`
  real,             ///< `double`
  signedInteger,    ///< `std::int64_t`
  unsignedInteger,  ///< `std::uint64_t`
  boolean,          ///< `bool`
  path,             ///< `std::optional<Path>`
  array,            ///< `std::optional<Array>`
  records,          ///< `std::optional<std::vector<std::shared_ptr<T>>>`, T a record class
};

/// How generic code accesses a list of records, whose element type it does not know.
struct RecordListAccess {
  const RecordClass& (*elementClass)();
  std::optional<RecordList> (*get)(const Record& record);
  void (*set)(Record& record, std::optional<RecordList> list);
};

/// One property of one record class.
struct Property {
  std::string_view name;
  PropertyKind kind;
  /// The member inside a record of the class that this property was listed for.
  void* (*address)(Record& record);
  /// For the kind `records` only, otherwise null.
  const RecordListAccess* list;

  /// The member itself; `Field` must be the type of the property's kind.
  template <class Field>
  Field& in(Record& record) const {
    return *static_cast<Field*>(address(record));
  }
  template <class Field>
  const Field& in(const Record& record) const {
    return *static_cast<const Field*>(address(const_cast<Record&>(record)));
  }
};

/// A property as a record class declares it: a member and its name.
template <auto Member>
struct DeclaredProperty {
  std::string_view name;
};

/// Declares the property that `Member`, a pointer to member, holds.
template <auto Member>
constexpr DeclaredProperty<Member> property(std::string_view name) {
  return {name};
}

/// The kind of a member type; other types cannot be properties.
template <class Field>
struct PropertyKindOf;
template <>
struct PropertyKindOf<std::optional<std::string>> {
  static constexpr PropertyKind value = PropertyKind::text;
};
template <>
struct PropertyKindOf<double> {
  static constexpr PropertyKind value = PropertyKind::real;
};
template <>
struct PropertyKindOf<std::int64_t> {
  static constexpr PropertyKind value = PropertyKind::signedInteger;
};
template <>
struct PropertyKindOf<std::uint64_t> {
  static constexpr PropertyKind value = PropertyKind::unsignedInteger;
};
template <>
struct PropertyKindOf<bool> {
  static constexpr PropertyKind value = PropertyKind::boolean;
};
template <>
struct PropertyKindOf<std::optional<Path>> {
  static constexpr PropertyKind value = PropertyKind::path;
};
template <>
struct PropertyKindOf<std::optional<Array>> {
  static constexpr PropertyKind value = PropertyKind::array;
};
template <class T>
struct PropertyKindOf<std::optional<std::vector<std::shared_ptr<T>>>> {
  static constexpr PropertyKind value = PropertyKind::records;
  using Element = T;
};

}  // namespace VelWhiteBoard
