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

/// @addtogroup records_in_general
/// @{

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
  const RecordClass& (*elementClass)();  ///< The class of the elements.
  /// The list of `record`, its elements shared; absent when the property is.
  std::optional<RecordList> (*get)(const Record& record);
  /// Replaces the list of `record`; the elements, of the class above, are shared.
  void (*set)(Record& record, std::optional<RecordList> list);
};

/// One property of one record class.
struct Property {
  std::string_view name;  ///< The key in the dictionary form, in files and in archives.
  PropertyKind kind;      ///< What it holds.
  /// The member inside a record of the class that this property was listed for.
  void* (*address)(Record& record);
  /// For the kind `records` only, otherwise null.
  const RecordListAccess* list;

  /// The member itself; `Field` must be the type of the property's kind.
  template <class Field>
  Field& in(Record& record) const {
    return *static_cast<Field*>(address(record));
  }
  /// The same, to be read only.
  template <class Field>
  const Field& in(const Record& record) const {
    return *static_cast<const Field*>(address(const_cast<Record&>(record)));
  }
};

/// A property as a record class declares it: a member and its name.
template <auto Member>
struct DeclaredProperty {
  std::string_view name;  ///< The key of the property.
};

/// Declares the property that `Member`, a pointer to member, holds.
template <auto Member>
constexpr DeclaredProperty<Member> property(std::string_view name) {
  return {name};
}

/// The kind of a member type; other types cannot be properties.
template <class Field>
struct PropertyKindOf;
/// A text.
template <>
struct PropertyKindOf<std::optional<std::string>> {
  static constexpr PropertyKind value = PropertyKind::text;  ///< A `string` in a file.
};
/// A real number.
template <>
struct PropertyKindOf<double> {
  static constexpr PropertyKind value = PropertyKind::real;  ///< A `real` in a file.
};
/// A signed integer of 64 bits.
template <>
struct PropertyKindOf<std::int64_t> {
  static constexpr PropertyKind value = PropertyKind::signedInteger;  ///< An `integer` in a file.
};
/// An unsigned integer of 64 bits.
template <>
struct PropertyKindOf<std::uint64_t> {
  static constexpr PropertyKind value = PropertyKind::unsignedInteger;  ///< An `integer` in a file.
};
/// A boolean.
template <>
struct PropertyKindOf<bool> {
  static constexpr PropertyKind value = PropertyKind::boolean;  ///< `true` or `false` in a file.
};
/// The positions of a stroke.
template <>
struct PropertyKindOf<std::optional<Path>> {
  static constexpr PropertyKind value = PropertyKind::path;  ///< `array` of `array` in a file.
};
/// An array of any values.
template <>
struct PropertyKindOf<std::optional<Array>> {
  static constexpr PropertyKind value = PropertyKind::array;  ///< An `array` in a file.
};
/// A list of records.
template <class T>
struct PropertyKindOf<std::optional<std::vector<std::shared_ptr<T>>>> {
  static constexpr PropertyKind value = PropertyKind::records;  ///< `array` of `dict` in a file.
  using Element = T;                                            ///< The class of the elements.
};

/// @}

}  // namespace VelWhiteBoard
