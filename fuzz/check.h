// What the fuzz targets share: how they complain, and how they take decisions from bytes.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

#include "VelWhiteBoard/foundation/records/coder.h"
#include "VelWhiteBoard/foundation/records/record.h"

namespace fuzz {

/// Ends the process when a rule is broken: that is what a fuzzer notices.
inline void require(bool holds, std::string_view rule) {
  if (holds) return;
  std::fprintf(stderr, "broken: %.*s\n", static_cast<int>(rule.size()), rule.data());
  std::abort();
}

inline std::string_view textOf(const std::uint8_t* data, std::size_t size) {
  return {reinterpret_cast<const char*>(data), size};
}

/// Takes decisions from the input, byte by byte. An input that is used up answers 0 and nothing.
class Decisions {
 public:
  explicit Decisions(std::string_view bytes) : rest_(bytes) {}

  bool empty() const { return rest_.empty(); }
  std::uint8_t byte() {
    if (rest_.empty()) return 0;
    const auto byte = static_cast<std::uint8_t>(rest_.front());
    rest_.remove_prefix(1);
    return byte;
  }
  std::size_t below(std::size_t bound) { return byte() % bound; }
  bool flip() { return (byte() & 1U) != 0; }
  /// Up to `most` bytes as they are.
  std::string bytes(std::size_t most) {
    const std::size_t wanted = byte() % (most + 1);  // before looking at what is left
    const std::size_t size = std::min(wanted, rest_.size());
    std::string taken(rest_.substr(0, size));
    rest_.remove_prefix(size);
    return taken;
  }
  std::uint64_t eightBytes() {
    std::uint64_t value = 0;
    for (int count = 0; count < 8; ++count) value = value << 8U | byte();
    return value;
  }

 private:
  std::string_view rest_;
};

/// Whether every number of the record is finite. Files and JSON text hold no others.
bool isFinite(const VelWhiteBoard::Record& record);

/// Whether the decoding rule chooses the record's own class for the record's dictionary form.
///
/// By the rule it need not: a page switch without its type was read as one because that was asked
/// for, but its form has a key "w", which makes a box.
bool keepsItsClass(const VelWhiteBoard::Record& record, const VelWhiteBoard::RecordClass& asked);

}  // namespace fuzz
