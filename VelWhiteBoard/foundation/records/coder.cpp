#include "VelWhiteBoard/foundation/records/coder.h"

#include <cstdint>
#include <utility>
#include <vector>

#include "VelWhiteBoard/foundation/values/safe_values.h"

namespace VelWhiteBoard {

namespace {

/// The first three bits of a CBOR item, its major type.
enum class Major : std::uint8_t { natural, negative, bytes, text, array, map, tag, other };
// The other five bits: a number below 24 is the argument itself; a higher one says how many bytes
// follow with it.
constexpr std::uint8_t kOneByte = 24;
constexpr std::uint8_t kEightBytes = 27;

// Checks an archive without building anything: that it is complete and nested no deeper than a
// value may be. The decoder recurses on nesting, on chunked strings and on tags, so it may only see
// bytes that passed. Chunks, tags and items of indefinite length are refused: they are never
// written here.
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
  /// For each open container, outermost first: how many items are still to come.
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

/// Adds the head of an item: its major type, and its length or value in as few bytes as possible.
void appendHead(std::string& bytes, Major major, std::uint64_t argument) {
  const auto kind = static_cast<unsigned>(major) << 5U;
  if (argument < kOneByte) {
    bytes += static_cast<char>(kind | static_cast<unsigned>(argument));
    return;
  }
  unsigned information = kOneByte;
  while (information < kEightBytes && argument >> (8U << (information - kOneByte)) != 0) {
    ++information;
  }
  bytes += static_cast<char>(kind | information);
  for (unsigned bits = 8U << (information - kOneByte); bits > 0; bits -= 8) {
    bytes += static_cast<char>(argument >> (bits - 8) & 0xFFU);
  }
}

/// Replaces in `value` what an archive cannot hold. `value` must not be nested too deep.
void replaceBinary(Value& value) {
  if (value.is_binary() || value.is_discarded()) value = nullptr;
  if (!value.is_structured()) return;
  for (Value& element : value) replaceBinary(element);
}

}  // namespace

Coder::Coder(std::string_view data) {
  Value archive = parse(data);
  replaceBinary(archive);
  if (archive.is_object()) values_.swap(archive.get_ref<Dictionary&>());
}

Coder::~Coder() { dismantle(values_); }

// Writes the map itself and its members through the library; to write the whole through it would
// take a copy first.
std::string Coder::data() const {
  std::string bytes;
  appendHead(bytes, Major::map, values_.size());
  for (const auto& [key, value] : values_) {
    Value::to_cbor(Value(key), bytes);
    Value::to_cbor(value, bytes);
  }
  return bytes;
}

void Coder::encode(std::string_view key, Value value) {
  const DismantledAtEnd guard(value);
  if (nestsTooDeep(value)) value = nullptr;
  replaceBinary(value);
  values_.try_emplace(std::string(key)).first->second.swap(value);
}

void Coder::remove(std::string_view key) {
  const auto found = values_.find(key);
  if (found == values_.end()) return;
  dismantle(found->second);
  values_.erase(found);
}

const Value* Coder::decode(std::string_view key) const {
  const auto found = values_.find(key);
  return found == values_.end() ? nullptr : &found->second;
}

}  // namespace VelWhiteBoard
