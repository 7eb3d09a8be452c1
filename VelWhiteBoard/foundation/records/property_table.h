/// @file
/// Makes the table that generic code reads from the properties that a record class declares.
#pragma once

#include <array>
#include <cstddef>
#include <memory>
#include <optional>
#include <string_view>
#include <utility>

#include "VelWhiteBoard/foundation/records/record.h"

namespace VelWhiteBoard {

namespace property_table {

template <class T>
consteval std::size_t count() {
  std::size_t number = 0;
  T::properties([&number](auto) { ++number; });
  return number;
}

/// Two properties with one name would share one key: each would overwrite the other.
template <class T>
consteval bool namesAreUnique() {
  std::array<std::string_view, count<T>()> names;
  std::size_t number = 0;
  T::properties([&](auto declared) { names[number++] = declared.name; });
  for (std::size_t i = 0; i < names.size(); ++i) {
    for (std::size_t j = 0; j < i; ++j) {
      if (names[i] == names[j]) return false;
    }
  }
  return true;
}

template <class T, auto Member>
struct Access {
  using Field = std::remove_reference_t<decltype(std::declval<T&>().*Member)>;

  static void* address(Record& record) { return &(static_cast<T&>(record).*Member); }
};

template <class T, auto Member>
struct ListAccess {
  using Field = typename Access<T, Member>::Field;
  using Element = typename PropertyKindOf<Field>::Element;

  static const RecordClass& elementClass() { return Element::ownClass(); }
  static std::optional<RecordList> get(const Record& record) {
    const Field& list = static_cast<const T&>(record).*Member;
    if (!list) return std::nullopt;
    return RecordList(list->begin(), list->end());
  }
  static void set(Record& record, std::optional<RecordList> list) {
    Field& field = static_cast<T&>(record).*Member;
    field.reset();
    if (!list) return;
    field.emplace().reserve(list->size());
    for (auto& element : *list) {
      field->push_back(std::static_pointer_cast<Element>(std::move(element)));
    }
  }
  static constexpr RecordListAccess functions{&elementClass, &get, &set};
};

template <class T, auto Member>
constexpr Property describe(DeclaredProperty<Member> declared) {
  using Reach = Access<T, Member>;
  constexpr PropertyKind kind = PropertyKindOf<typename Reach::Field>::value;
  if constexpr (kind == PropertyKind::records) {
    return {declared.name, kind, &Reach::address, &ListAccess<T, Member>::functions};
  } else {
    return {declared.name, kind, &Reach::address, nullptr};
  }
}

template <class T>
constexpr auto make() {
  std::array<Property, count<T>()> table{};
  std::size_t number = 0;
  T::properties([&](auto declared) { table[number++] = describe<T>(declared); });
  return table;
}

template <class T>
inline constexpr auto table = make<T>();

}  // namespace property_table

/// The class object of `T`, to be kept in one static object. A class inherits its base's rule for
/// choosing a class; `customClass` and `propertyOfFamily` are for roots.
template <class T>
constexpr RecordClass makeRecordClass(
    std::string_view name, const RecordClass* base,
    const RecordClass& (*customClass)(const DictionaryKeys&, const RecordClass&) = nullptr,
    const Property* (*propertyOfFamily)(std::string_view name) = nullptr) {
  static_assert(property_table::namesAreUnique<T>(), "two properties of a record share one name");
  return {name,
          base,
          property_table::table<T>,
          []() -> std::shared_ptr<Record> { return std::make_shared<T>(); },
          base == nullptr ? customClass : base->customClass,
          propertyOfFamily};
}

}  // namespace VelWhiteBoard
