// Random records for property tests: every declared property of every class gets a value, without a
// line for any of them, since the generators follow the tables that the classes declare.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <random>
#include <string>

#include "VelWhiteBoard/foundation/records/record.h"
#include "VelWhiteBoard/foundation/values/path.h"
#include "VelWhiteBoard/foundation/values/value.h"

namespace VelWhiteBoard {

/// Which values may occur; each kind of file or text carries something else.
struct Taste {
  bool numbersWithoutBound = false;  ///< NaN and the infinities
  bool controlCharacters = false;    ///< and U+FFFE, U+FFFF: text that XML cannot carry
  bool brokenText = false;           ///< bytes that are not UTF-8
  bool nulls = false;                ///< null inside of free-form values
};

inline constexpr Taste kAnything{true, true, true, true};
/// For dictionaries and JSON text.
inline constexpr Taste kForDictionaries{false, true, false, true};
inline constexpr Taste kForJSONText = kForDictionaries;
inline constexpr Taste kForPropertyLists{};

/// The seed of all property tests: VELWB_TEST_SEED where that is set, otherwise a fixed one.
std::uint64_t testSeed();

class RandomRecords {
 public:
  /// `purpose` gives each test a sequence of its own; the same seed always gives the same one.
  explicit RandomRecords(Taste taste, std::uint64_t purpose = 0)
      : taste_(taste), engine_(testSeed() ^ (purpose * 0x9E3779B97F4A7C15U)) {}

  /// A record of the class, every property filled. Its dictionary form decodes to the class again.
  std::shared_ptr<Record> record(const RecordClass& recordClass);
  /// Gives one property a new value.
  void fill(const Property& property, Record& record);

  /// An object whose keys are mostly those of some class, with values of any kind under them.
  Dictionary dictionary();
  Value value(std::size_t depth);

  double number();
  std::string text();
  Path path();
  Array array(std::size_t depth);
  /// 0 to `bound` - 1.
  std::size_t below(std::size_t bound);

 private:
  std::int64_t integer();
  RecordList list(const RecordClass& elementClass);
  bool chooseType(Record& record);

  Taste taste_;
  std::mt19937_64 engine_;
};

}  // namespace VelWhiteBoard
