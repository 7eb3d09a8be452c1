#include "VelWhiteBoard/foundation/plist/value_builder.h"

#include <utility>
#include <variant>

#include "VelWhiteBoard/foundation/records/assignment.h"

namespace VelWhiteBoard {

void ValueBuilder::beginUnits(std::size_t unit) {
  dismantle(top_);
  top_ = Array();
  open_.assign(1, &top_);
  beyond_ = 0;
  tooDeep_ = false;
  unit_ = unit;
}

void ValueBuilder::add(const Scalar& scalar) {
  if (tooDeep_) return;
  if (!std::holds_alternative<std::monostate>(scalar)) {
    place(valueWithScalar(scalar));
  } else if (open_.back()->is_object()) {
    // Of a key that occurs twice only the last value counts, even when it is left out.
    auto& members = open_.back()->get_ref<Dictionary&>();
    const auto earlier = members.find(key_);
    if (earlier == members.end()) return;
    dismantle(earlier->second);
    members.erase(earlier);
  }
}

void ValueBuilder::beginContainer(bool isDictionary) {
  if (tooDeep_ || open_.size() == kMaximumValueDepth + unit_ - 1) {
    tooDeep_ = true;
    ++beyond_;
    return;
  }
  open_.push_back(&place(isDictionary ? Value(Dictionary()) : Value(Array())));
}

void ValueBuilder::endContainer() {
  if (beyond_ > 0) {
    --beyond_;
    return;
  }
  if (tooDeep_ && open_.size() == unit_) dropUnit();
  open_.pop_back();
}

/// Replaces the open unit, which is nested too deep, by null.
void ValueBuilder::dropUnit() {
  if (unit_ == kWhole) return;
  dismantle(*open_.back());
  *open_.back() = nullptr;
  tooDeep_ = false;
}

bool ValueBuilder::take(Value& value) {
  if (tooDeep_) return false;
  value.swap(top_);
  return true;
}

Value& ValueBuilder::place(Value value) {
  Value& parent = *open_.back();
  if (parent.is_array()) {
    auto& elements = parent.get_ref<Array&>();
    return elements.emplace_back(std::move(value));
  }
  Value& member = parent.get_ref<Dictionary&>().try_emplace(key_).first->second;
  dismantle(member);
  member.swap(value);
  return member;
}

}  // namespace VelWhiteBoard
