/// @file
/// The common operations of records: copy, equality, hash, description, archive.
#pragma once

#include <concepts>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

#include "VelWhiteBoard/foundation/export.h"
#include "VelWhiteBoard/foundation/records/property.h"

namespace VelWhiteBoard {

/// @addtogroup records_in_general
/// @{

class Coder;

/// What the rule that chooses a record's class may ask about a dictionary.
class DictionaryKeys {
 public:
  /// Whether the key is there, whatever its value, null included.
  virtual bool contains(std::string_view key) const = 0;
  /// The string under the key; absent when the key is missing or its value is not a string.
  virtual std::optional<std::string_view> text(std::string_view key) const = 0;

 protected:
  ~DictionaryKeys() = default;  ///< Not destroyed through this class.
};

/// A class of records: its name, its base and its properties. One object for each class, compared
/// by address.
struct RecordClass {
  /// The class name, such as "VelWbVecLine".
  std::string_view name;
  /// The class that this one derives from; null for a class that derives from no other record
  /// class.
  const RecordClass* base;
  /// All properties, those of the furthest ancestor first.
  std::span<const Property> properties;
  /// A new record of this class in its initial state.
  std::shared_ptr<Record> (*create)();
  /// Chooses the class for a dictionary when `asked` is requested; null: always the requested one.
  const RecordClass& (*customClass)(const DictionaryKeys& keys, const RecordClass& asked);
  /// Root classes only: looks `name` up in every class that the rule can choose; the property, or
  /// null. Null itself in other classes, and where there is no such rule.
  const Property* (*propertyOfFamily)(std::string_view name);

  /// Whether this is `other` or derives from it.
  bool isKindOf(const RecordClass& other) const noexcept {
    for (const RecordClass* each = this; each != nullptr; each = each->base) {
      if (each == &other) return true;
    }
    return false;
  }

  /// Whether both are the very same class object.
  friend bool operator==(const RecordClass& left, const RecordClass& right) noexcept {
    return &left == &right;
  }
};

/// The root of all records: vectors, media items, resources.
///
/// A record is a plain object with public properties. It takes no lock: a record must not be
/// changed while another thread uses it. Operations that change a record either have their whole
/// effect or, when they throw std::bad_alloc, no effect.
///
/// Clients do not derive classes from it.
class VELWHITEBOARD_EXPORT Record {
 public:
  virtual ~Record();  ///< Records are destroyed through pointers to any of their bases.

  /// The class of this very object.
  virtual const RecordClass& recordClass() const = 0;

  /// True for the same object; otherwise when `other` is of exactly the same class and every
  /// property is equal. Two absent values are equal, 0 equals -0, and a NaN equals a NaN, so that a
  /// record always equals its copy.
  bool isEqual(const Record& other) const;
  /// The same as `left.isEqual(right)`.
  friend bool operator==(const Record& left, const Record& right) { return left.isEqual(right); }

  /// The exclusive-or of the hashes of all properties; equal records have equal hashes.
  std::uint64_t hash() const;

  /// A listing of the class and all properties for human readers; its format may change.
  std::string description() const;

  /// Puts every property into the archive, under its name. The entry of an absent one is removed.
  void encodeWithCoder(Coder& coder) const;

  /// Moves every property of `from`, a record of exactly the same class, into this record. Needs no
  /// memory. What `from` holds afterwards is unspecified, as after any move; it may be assigned to
  /// or destroyed. A record of another class, and the receiver itself, changes nothing.
  void takeContents(Record& from) noexcept;

 protected:
  Record() = default;                          ///< Has no properties of its own.
  Record(const Record&) = default;             ///< Only derived classes copy.
  Record& operator=(const Record&) = default;  ///< Only derived classes copy.

  /// A full copy, of the class of this very object.
  virtual std::shared_ptr<Record> makeCopy() const = 0;

  /// Moves the members of `from`, which is another record of this very class.
  virtual void moveMembers(Record& from) noexcept = 0;

  /// Reads the properties, see below.
  friend VELWHITEBOARD_EXPORT void decodeWithCoder(Record& record, const Coder& coder);
};

/// The class of the elements of each property that is a list of records.
VELWHITEBOARD_EXPORT std::map<std::string, const RecordClass*> containerClasses(
    const RecordClass& recordClass);

/// Reads every property of the record back from the archive, by name. A property that the archive
/// lacks stays as it is; a value that the property cannot take sets it to its default.
VELWHITEBOARD_EXPORT void decodeWithCoder(Record& record, const Coder& coder);

/// Provides the common operations to a class declared as `class Self : public RecordOf<Self,
/// Base>`.
///
/// `Self` provides `static const RecordClass& ownClass()` and `properties(visit)`.
template <class Self, class Base>
class RecordOf : public Base {
 public:
  /// The class of this very object.
  const RecordClass& recordClass() const override { return Self::ownClass(); }

  /// A new record with the properties of the archive; a property that the archive lacks keeps its
  /// default.
  static std::shared_ptr<Self> initWithCoder(const Coder& coder) {
    auto record = std::make_shared<Self>();
    decodeWithCoder(*record, coder);
    return record;
  }

  /// A full copy: a new record of the receiver's own class with every property. The elements of a
  /// list of records are shared.
  std::shared_ptr<Self> copyWithZone() const {
    return std::static_pointer_cast<Self>(this->makeCopy());
  }

 protected:
  /// A full copy, of the class of this very object.
  std::shared_ptr<Record> makeCopy() const override {
    return std::make_shared<Self>(static_cast<const Self&>(*this));
  }
  /// Moves the members of `from`, which is another `Self`.
  void moveMembers(Record& from) noexcept override {
    static_assert(std::is_nothrow_move_assignable_v<Self>,
                  "storages change records by moves that must not fail half way");
    static_cast<Self&>(*this) = std::move(static_cast<Self&>(from));
  }
};

/// `record` as a `T`, or null when its class is not `T` and does not derive from it. A null pointer
/// gives null. Cheaper than `dynamic_cast`: a few comparisons of addresses.
template <class T>
T* recordCast(std::conditional_t<std::is_const_v<T>, const Record, Record>* record) noexcept {
  const bool matches =
      record != nullptr && record->recordClass().isKindOf(std::remove_const_t<T>::ownClass());
  return matches ? static_cast<T*>(record) : nullptr;
}
/// The same for a reference.
template <class T>
T* recordCast(std::conditional_t<std::is_const_v<T>, const Record, Record>& record) noexcept {
  return recordCast<T>(&record);
}

/// Whether a reference to an `R` may become one to a `T`: both are records, and `T` is const where
/// `R` is.
template <class R, class T>
concept CastableRecord = std::derived_from<std::remove_const_t<R>, Record> &&
    (std::is_const_v<T> || !std::is_const_v<R>);

/// A shared reference to the same record as a `T`, which shares the ownership of `record`; null
/// when the record's class is not `T` and does not derive from it, and for null. As cheap as
/// `recordCast` and one more owner. Any thread may call it that may read `record`.
template <class T, CastableRecord<T> R>
std::shared_ptr<T> recordPointerCast(const std::shared_ptr<R>& record) noexcept {
  T* const same = recordCast<T>(record.get());
  if (same == nullptr) return nullptr;
  return std::shared_ptr<T>(record, same);
}

/// @}

}  // namespace VelWhiteBoard
