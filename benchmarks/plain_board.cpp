#include "benchmarks/plain_board.h"

namespace benchmarks {

namespace {

constexpr std::size_t kNumbersOfAPosition = 3;  // the last one is its time

/// Takes the value of a member; one of another kind counts as absent.
template <class Value>
void read(const simdjson::dom::element& element, Value& value) {
  if (element.get(value) != simdjson::SUCCESS) value = {};
}

void addNewer(const simdjson::dom::array& path, std::vector<double>& positions) {
  for (const simdjson::dom::element position : path) {
    simdjson::dom::array array;
    if (position.get_array().get(array) != simdjson::SUCCESS) continue;
    double numbers[kNumbersOfAPosition] = {};
    std::size_t count = 0;
    for (const simdjson::dom::element each : array) {
      if (count < kNumbersOfAPosition) read(each, numbers[count++]);
    }
    const bool isNewer = positions.empty() || numbers[kNumbersOfAPosition - 1] > positions.back();
    if (isNewer) positions.insert(positions.end(), numbers, numbers + kNumbersOfAPosition);
  }
}

}  // namespace

void PlainBoard::take(const std::string& text) {
  buffer_.assign(text.begin(), text.end());
  buffer_.resize(text.size() + simdjson::SIMDJSON_PADDING);
  simdjson::dom::object object;
  if (parser_.parse(buffer_.data(), text.size(), false).get(object) != simdjson::SUCCESS) return;
  fold(membersOf(object));
  log_.push_back(text);
}

std::size_t PlainBoard::positionCount() const {
  std::size_t numbers = 0;
  for (const auto& [identifier, entry] : entries_) numbers += entry.positions.size();
  return numbers / kNumbersOfAPosition;
}

PlainBoard::Members PlainBoard::membersOf(const simdjson::dom::object& object) {
  Members members;
  for (const auto& [key, value] : object) {
    if (key == "type") {
      read(value, members.type);
    } else if (key == "ts") {
      read(value, members.ts);
    } else if (key == "ID") {
      read(value, members.ID);
    } else if (key == "x") {
      read(value, members.x);
    } else if (key == "y") {
      read(value, members.y);
    } else if (key == "ps") {
      read(value, members.ps);
    } else if (key == "end") {
      read(value, members.end);
    } else if (key == "path") {
      members.hasPath = value.get(members.path) == simdjson::SUCCESS;
    } else if (key == "color") {
      read(value, members.color);
    } else if (key == "widthIndex") {
      read(value, members.widthIndex);
    } else if (key == "pixel") {
      read(value, members.pixel);
    } else if (key == "w") {
      read(value, members.w);
    } else if (key == "h") {
      read(value, members.h);
    } else if (key == "rmID") {
      read(value, members.rmID);
    }
  }
  return members;
}

void PlainBoard::fold(const Members& members) {
  if (members.type == "remove") {
    entries_.erase(std::string(members.rmID));
    return;
  }
  const auto [place, isNew] = entries_.try_emplace(std::string(members.ID));
  Entry& entry = place->second;
  if (isNew) {
    entry.type = members.type;
    entry.color = members.color;
  }
  entry.ts = members.ts;
  entry.x = members.x;
  entry.y = members.y;
  entry.w = members.w;
  entry.h = members.h;
  entry.ps = members.ps;
  entry.widthIndex = members.widthIndex;
  entry.pixel = members.pixel;
  entry.end = members.end;
  if (members.hasPath) addNewer(members.path, entry.positions);
}

}  // namespace benchmarks
