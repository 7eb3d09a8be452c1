#include "VelWhiteBoard/foundation/coder.h"

#include <cstdint>
#include <utility>
#include <vector>

namespace VelWhiteBoard {

namespace {

/// What CBOR calls the first three bits of an item.
enum class Major : std::uint8_t { natural, negative, bytes, text, array, map, tag, other };

// Walks an archive without building anything: that it is whole and nested no deeper than a value
// may be. The reader that builds the values recurses on nesting, on texts in pieces and on tags, so
// it may only see bytes that passed; pieces, tags and items of no stated length are never written
// here.
class ArchiveCheck {
 public:
  explicit ArchiveCheck(std::string_view data) : rest_(data) {}

  bool passes() {
    do {
      if (!takeItem()) return false;
      while (!open_.empty() && open_.back() == 0) open_.pop_back();
    } while (!open_.empty());
    return rest_.empty();
  }

 private:
  std::uint8_t takeByte() {
    const auto byte = static_cast<std::uint8_t>(rest_.front());
    rest_.remove_prefix(1);
    return byte;
  }

  bool takeItem() {
    if (rest_.empty()) return false;
    if (!open_.empty()) --open_.back();
    const std::uint8_t head = takeByte();
    const auto major = static_cast<Major>(head >> 5U);
    const std::uint8_t information = head & 0x1FU;
    constexpr std::uint8_t kOneByte = 24;
    constexpr std::uint8_t kEightBytes = 27;
    if (information > kEightBytes) return false;
    std::uint64_t argument = information;
    if (information >= kOneByte) {
      const std::size_t size = std::size_t{1} << (information - kOneByte);
      if (rest_.size() < size) return false;
      argument = 0;
      for (std::size_t index = 0; index < size; ++index) argument = argument << 8U | takeByte();
    }
    return takeContent(major, argument);
  }

  bool takeContent(Major major, std::uint64_t argument) {
    switch (major) {
      case Major::bytes:
      case Major::text:
        if (argument > rest_.size()) return false;
        rest_.remove_prefix(static_cast<std::size_t>(argument));
        return true;
      case Major::array:
      case Major::map:
        // Each element takes a byte at least.
        if (argument > rest_.size()) return false;
        open_.push_back(major == Major::map ? argument * 2 : argument);
        // One level more than a value may have: the archive's own map.
        return open_.size() <= kMaximumValueDepth + 1;
      case Major::tag:
        return false;
      default:
        return true;
    }
  }

  std::string_view rest_;
  /// Of each container that is open, outermost first, how many items are still to come.
  std::vector<std::uint64_t> open_;
};

Value parse(std::string_view data) {
  try {
    if (!ArchiveCheck(data).passes()) return {};
    return Value::from_cbor(data, true, false);
  } catch (const Value::exception&) {
    return {};
  }
}

}  // namespace

Coder::Coder(std::string_view data) {
  Value archive = parse(data);
  if (archive.is_object()) values_ = std::move(archive.get_ref<Dictionary&>());
}

std::string Coder::data() const {
  std::string bytes;
  Value::to_cbor(Value(values_), bytes);
  return bytes;
}

void Coder::encode(std::string_view key, Value value) {
  values_.insert_or_assign(std::string(key), std::move(value));
}

const Value* Coder::decode(std::string_view key) const {
  const auto found = values_.find(key);
  return found == values_.end() ? nullptr : &found->second;
}

}  // namespace VelWhiteBoard
