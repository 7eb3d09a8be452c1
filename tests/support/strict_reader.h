#pragma once

#include <string>
#include <utility>
#include <vector>

namespace VelWhiteBoard {

/// The second opinion on every file that the storage writes: a property-list reader that shares
/// nothing with ours.
///
/// Files are gathered while the tests run, each with what our own reader made of it. When all tests
/// of the process are over, `strict_reader.py` reads them all and compares every value. What it
/// finds fails the run.
class StrictReader {
 public:
  /// Name and contents of a file.
  using File = std::pair<std::string, std::string>;

  /// Whether the records in a file are of the classes that a reader will choose for them. Odd ones
  /// come back as another class, with other keys.
  enum class Records { kOrdinary, kOdd };

  /// Gathers the property lists of a board's folder, except those that still are what the test put
  /// there itself. A name that is no property list of a board is a failure of the running test.
  static void collect(const std::string& folder, const std::vector<File>& planted = {},
                      Records records = Records::kOrdinary);

  /// Gathers one file.
  static void collectFile(const std::string& path, Records records = Records::kOrdinary);

  /// Reads all that was gathered in `folder`; answers what is wrong, nothing when all is well.
  static std::string findings(const std::string& folder);
};

}  // namespace VelWhiteBoard
