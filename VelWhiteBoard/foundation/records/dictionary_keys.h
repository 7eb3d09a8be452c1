/// @file
/// The keys of a `Dictionary`, for the rule that chooses a record's class.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "VelWhiteBoard/foundation/records/record.h"
#include "VelWhiteBoard/foundation/values/value.h"

namespace VelWhiteBoard {

class KeysOfDictionary final : public DictionaryKeys {
 public:
  explicit KeysOfDictionary(const Dictionary& dictionary) : dictionary_(dictionary) {}

  bool contains(std::string_view key) const override {
    return dictionary_.find(key) != dictionary_.end();
  }
  std::optional<std::string_view> text(std::string_view key) const override {
    const auto found = dictionary_.find(key);
    if (found == dictionary_.end() || !found->second.is_string()) return std::nullopt;
    return found->second.get_ref<const std::string&>();
  }

 private:
  const Dictionary& dictionary_;
};

}  // namespace VelWhiteBoard
