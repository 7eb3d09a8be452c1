// All that can be read of one property list.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "VelWhiteBoard/foundation/plist/property_list_reader.h"

#include "file_blocks.h"
#include "place.h"

namespace board_check {

/// Records, counted by their types.
struct Tally {
  std::uint64_t records = 0;
  /// Type name -> how many records have it. Names are cut, and beyond a great many they are counted
  /// together, so that memory is bounded.
  std::map<std::string, std::uint64_t> types;

  void add(const VelWhiteBoard::Record& record);
};

/// A part of a file that is no record, or a broken one.
struct Gap {
  /// Where it breaks.
  Place place;
  std::uint64_t records = 0;
  std::uint64_t bytes = 0;
};

/// The gaps of a file. Neighbours count as one.
struct Gaps {
  std::uint64_t records = 0;
  std::uint64_t bytes = 0;
  std::uint64_t count = 0;
  /// The first of them, enough for a report.
  std::vector<Gap> first;

  void add(const Gap& gap, bool continuesLast);
};

/// How the reading of a list went.
struct Reading {
  /// Why the file, or its rest, was not read.
  std::optional<ReadFailure> failure;
  /// Where the file breaks and why; ok when it does not.
  VelWhiteBoard::PropertyListResult result;
  /// The records up to where the file breaks, and those after that place.
  Tally before;
  Tally after;
  /// What was passed over; nothing in a file that is cut off between two records.
  Gaps skipped;
  /// Where the file begins to differ from what the library would write; nullopt when it does not,
  /// and when it breaks.
  std::optional<Place> differsAt;

  bool isSound() const { return !failure && result.ok(); }
  bool wasGiven() const { return !failure || failure->kind == ReadFailure::Kind::kNoFile; }
  std::uint64_t records() const { return before.records + after.records; }
};

/// Takes what is read.
class ListVisitor {
 public:
  virtual ~ListVisitor() = default;
  virtual void takeRecord(const std::shared_ptr<VelWhiteBoard::Record>& record) = 0;
  /// Something may be missing between the record before and the one after.
  virtual void takeGap() {}
};

/// Reads a list as the library does, and when it breaks, every record after that place that can be
/// read. Time is linear in the file, memory that of one record; what `visitor` throws, except
/// std::bad_alloc, passes through.
Reading readList(const std::filesystem::path& path, const VelWhiteBoard::RecordClass& asked,
                 ListVisitor& visitor);

}  // namespace board_check
