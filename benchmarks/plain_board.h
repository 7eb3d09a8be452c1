// The baseline of everything that takes pieces in: the least program that keeps what a board must
// keep.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include <simdjson.h>

namespace benchmarks {

/// One page's state and its log, for strokes, boxes and removals: no records, no rules for unusual
/// texts, no locks, no files.
///
/// Each text is parsed once, by the parser that the library uses, and its members are walked over
/// once. The state has an entry for each identifier; later pieces add their newer positions to it
/// and replace its time, place, size, width and end. The log has a copy of each text.
class PlainBoard {
 public:
  void take(const std::string& text);
  std::size_t entryCount() const { return entries_.size(); }
  std::size_t logSize() const { return log_.size(); }
  /// The positions of all entries; counts them.
  std::size_t positionCount() const;

 private:
  /// The members that the state needs. Texts are valid until the next one is parsed.
  struct Members {
    std::string_view type, ID, color, rmID;
    double ts = 0, x = 0, y = 0, w = 0, h = 0;
    std::int64_t ps = 0, widthIndex = 0, pixel = 0;
    bool end = false;
    simdjson::dom::array path;
    bool hasPath = false;
  };
  struct Entry {
    std::string type, color;
    double ts = 0, x = 0, y = 0, w = 0, h = 0;
    std::int64_t ps = 0, widthIndex = 0, pixel = 0;
    bool end = false;
    std::vector<double> positions;
  };

  static Members membersOf(const simdjson::dom::object& object);
  void fold(const Members& members);

  simdjson::dom::parser parser_;
  std::vector<char> buffer_;
  std::unordered_map<std::string, Entry> entries_;
  std::vector<std::string> log_;
};

}  // namespace benchmarks
