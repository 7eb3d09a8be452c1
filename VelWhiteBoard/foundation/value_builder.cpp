#include "VelWhiteBoard/foundation/value_builder.h"

#include <type_traits>
#include <utility>
#include <variant>

namespace VelWhiteBoard {

void ValueBuilder::begin() {
  top_ = Array();
  open_.assign(1, &top_);
  beyond_ = 0;
  tooDeep_ = false;
}

void ValueBuilder::add(const std::optional<Scalar>& scalar) {
  if (tooDeep_) return;
  if (!scalar) {
    // Of a key that occurs twice only the last value counts, also when it is of no use.
    if (open_.back()->is_object()) open_.back()->get_ref<Dictionary&>().erase(key_);
    return;
  }
  std::visit(
      [this](const auto& value) {
        using T = std::decay_t<decltype(value)>;
        if constexpr (std::is_same_v<T, std::monostate>) {
          place(nullptr);
        } else {
          place(value);
        }
      },
      *scalar);
}

void ValueBuilder::beginContainer(bool isDictionary) {
  if (tooDeep_ || open_.size() == kMaximumValueDepth) {
    tooDeep_ = true;
    ++beyond_;
    return;
  }
  open_.push_back(&place(isDictionary ? Value(Dictionary()) : Value(Array())));
}

void ValueBuilder::endContainer() {
  if (beyond_ > 0) {
    --beyond_;
  } else {
    open_.pop_back();
  }
}

std::optional<Value> ValueBuilder::take() {
  if (tooDeep_) return std::nullopt;
  return std::exchange(top_, {});
}

Value& ValueBuilder::place(Value value) {
  Value& parent = *open_.back();
  if (parent.is_array()) {
    auto& elements = parent.get_ref<Array&>();
    return elements.emplace_back(std::move(value));
  }
  return parent.get_ref<Dictionary&>().insert_or_assign(key_, std::move(value)).first->second;
}

}  // namespace VelWhiteBoard
