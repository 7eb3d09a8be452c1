/// @file
/// A free-form value that is built piece by piece.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "VelWhiteBoard/foundation/values/scalar.h"
#include "VelWhiteBoard/foundation/values/value.h"

namespace VelWhiteBoard {

/// Builds an array of free-form values, without recursion.
///
/// A value that is nested deeper than `kMaximumValueDepth` is dropped with the whole unit that
/// contains it: the array, or, if the array is a list of records, the member of one record.
class ValueBuilder {
 public:
  ~ValueBuilder() { dismantle(top_); }

  /// Starts a new array that is one unit; discards what was built before.
  void begin() { beginUnits(kWhole); }
  /// Starts a new array of records, each member of which is a unit.
  void beginRecords() { beginUnits(kMemberOfRecord); }
  /// The key of the next element of the dictionary that is open.
  void setKey(std::string_view key) { key_ = key; }
  /// Adds a scalar; null stands for what JSON cannot express, and is left out.
  void add(const Scalar& scalar);
  void beginContainer(bool isDictionary);
  void endContainer();
  /// Moves the whole array into `value`; false when it was nested too deep. To be called once.
  bool take(Value& value);

 private:
  // The number of open containers at which a unit begins: the array; or list, record and member.
  static constexpr std::size_t kWhole = 1;
  static constexpr std::size_t kMemberOfRecord = 3;

  void beginUnits(std::size_t unit);
  void dropUnit();
  Value& place(Value value);

  Value top_;
  /// The open containers, outermost first. An element's address holds as long as it is open, since
  /// its parent does not grow meanwhile.
  std::vector<Value*> open_;
  /// How many containers are open beyond the bound.
  std::size_t beyond_ = 0;
  /// Whether the unit that is open is nested too deep.
  bool tooDeep_ = false;
  std::size_t unit_ = kWhole;
  std::string key_;
};

}  // namespace VelWhiteBoard
