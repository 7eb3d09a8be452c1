#include "VelWhiteBoard/foundation/values/value.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "VelWhiteBoard/foundation/values/same_number.h"

namespace VelWhiteBoard {

namespace {

/// Mixes the hash of an element into that of its container; order counts.
void mix(std::size_t& hash, std::size_t element) {
  constexpr std::size_t kOddMultiplier = 0x9E3779B97F4A7C15U;  // 2^64 divided by the golden ratio
  hash = (hash ^ element) * kOddMultiplier;
}

bool areSameNumbers(const Value& left, const Value& right) {
  if (left.is_number_float() || right.is_number_float()) {
    return sameNumber(left.get<double>(), right.get<double>());
  }
  // The JSON library compares a signed and an unsigned integer as signed, which makes -1 equal to
  // the largest unsigned integer.
  if (left.is_number_unsigned() != right.is_number_unsigned()) {
    const Value& asSigned = left.is_number_unsigned() ? right : left;
    if (asSigned.get<std::int64_t>() < 0) return false;
  }
  return left.get<std::uint64_t>() == right.get<std::uint64_t>();
}

/// Empties the containers inside `value`, then `value` itself, which is at the given depth.
void dismantleAt(Value& value, std::size_t depth) noexcept {
  if (depth > kMaximumValueDepth) return;
  if (auto* const array = value.get_ptr<Array*>()) {
    for (Value& element : *array) dismantleAt(element, depth + 1);
    array->clear();
  } else if (auto* const members = value.get_ptr<Dictionary*>()) {
    for (auto& [key, member] : *members) dismantleAt(member, depth + 1);
    members->clear();
  }
}

}  // namespace

bool sameValue(const Value& left, const Value& right) {
  if (left.is_number() && right.is_number()) return areSameNumbers(left, right);
  if (left.type() != right.type()) return false;
  if (left.is_array())
    return std::equal(left.begin(), left.end(), right.begin(), right.end(), sameValue);
  if (!left.is_object()) return left == right;
  const auto& first = left.get_ref<const Dictionary&>();
  const auto& second = right.get_ref<const Dictionary&>();
  return std::equal(first.begin(), first.end(), second.begin(), second.end(),
                    [](const auto& one, const auto& other) {
                      return one.first == other.first && sameValue(one.second, other.second);
                    });
}

std::size_t hashOfNumber(double number) {
  if (number == 0) number = 0;  // -0 too
  if (std::isnan(number)) return 1;
  return std::hash<double>()(number);
}

std::size_t hashOfValue(const Value& value) {
  if (value.is_number()) return hashOfNumber(value.get<double>());
  if (value.is_string()) return std::hash<std::string>()(value.get_ref<const std::string&>());
  if (value.is_boolean()) return std::hash<bool>()(value.get<bool>());
  std::size_t hash = 0;
  mix(hash, static_cast<std::size_t>(value.type()));
  if (value.is_array()) {
    for (const Value& element : value) mix(hash, hashOfValue(element));
  }
  if (value.is_object()) {
    for (const auto& [key, element] : value.get_ref<const Dictionary&>()) {
      mix(hash, std::hash<std::string>()(key));
      mix(hash, hashOfValue(element));
    }
  }
  return hash;
}

void dismantle(Value& value) noexcept { dismantleAt(value, 1); }

void dismantle(Array& array) noexcept {
  for (Value& element : array) dismantleAt(element, 2);
  array.clear();
}

void dismantle(Dictionary& dictionary) noexcept {
  for (auto& [key, member] : dictionary) dismantleAt(member, 2);
  dictionary.clear();
}

bool nestsTooDeep(const Value& value) {
  std::vector<std::pair<const Value*, std::size_t>> open;
  open.emplace_back(&value, 1);
  while (!open.empty()) {
    const auto [current, depth] = open.back();
    open.pop_back();
    if (!current->is_structured()) continue;
    if (depth > kMaximumValueDepth) return true;
    for (const Value& element : *current) {
      if (element.is_structured()) open.emplace_back(&element, depth + 1);
    }
  }
  return false;
}

}  // namespace VelWhiteBoard
