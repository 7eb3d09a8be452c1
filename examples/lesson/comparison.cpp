#include "comparison.h"

#include <algorithm>
#include <cstddef>

namespace lesson {

namespace vwb = VelWhiteBoard;

namespace {

std::string nameOf(const vwb::VelWbBaseVector& record) {
  return record.type.value_or("no type") + " " + record.ID.value_or("without ID");
}

/// The first property in which two records differ.
std::string differingProperty(const vwb::VelWbBaseVector& left, const vwb::VelWbBaseVector& right) {
  if (!(left.recordClass() == right.recordClass())) return "class";
  const vwb::Dictionary ours = vwb::modelToJSONObject(left);
  const vwb::Dictionary theirs = vwb::modelToJSONObject(right);
  for (const auto& [key, value] : ours) {
    const auto found = theirs.find(key);
    if (found == theirs.end() || !vwb::sameValue(value, found->second)) return key;
  }
  for (const auto& [key, value] : theirs) {
    if (!ours.contains(key)) return key;
  }
  return "a number that JSON cannot carry";
}

}  // namespace

std::string firstDifference(const vwb::VectorList& left, const vwb::VectorList& right) {
  const std::size_t shared = std::min(left.size(), right.size());
  for (std::size_t i = 0; i < shared; ++i) {
    if (left[i]->isEqual(*right[i])) continue;
    return "record " + std::to_string(i + 1) + " (" + nameOf(*left[i]) + ") differs in " +
           differingProperty(*left[i], *right[i]);
  }
  if (left.size() == right.size()) return {};
  return std::to_string(right.size()) + " records instead of " + std::to_string(left.size());
}

}  // namespace lesson
