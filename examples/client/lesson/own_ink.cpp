#include "lesson/own_ink.h"

#include <cstdint>
#include <tuple>
#include <utility>

namespace whiteboard {

namespace vwb = VelWhiteBoard;

namespace {

/// The identifier of what a vector changes; empty without one.
std::string targetOf(const vwb::VelWbBaseVector& vector) {
  if (const auto* remove = vwb::recordCast<const vwb::VelWbVecRemove>(&vector)) {
    return remove->rmID.value_or("");
  }
  return vector.ID.value_or("");
}

/// Applies a change as the board will. Answers the first new position of a stroke that has grown.
std::size_t apply(const vwb::VelWbBaseVector& change, vwb::VelWbBaseVector& shown) {
  if (auto* box = vwb::recordCast<vwb::VelWbVecSquare>(&shown)) {
    box->merge(change);
    return 0;
  }
  auto* stroke = vwb::recordCast<vwb::VelWbVecLine>(&shown);
  const auto* piece = vwb::recordCast<const vwb::VelWbVecLine>(&change);
  if (stroke == nullptr || piece == nullptr) return 0;
  const std::size_t before = stroke->path ? stroke->path->size() : 1;
  const bool moves = piece->offset.has_value() || stroke->offset.has_value();
  const auto width = std::tie(stroke->pixel, stroke->ps, stroke->widthIndex);
  const std::tuple<std::int64_t, std::int64_t, std::int64_t> widthBefore = width;
  stroke->append(change);
  return moves || width != widthBefore ? 0 : before;
}

bool isRemove(const vwb::VelWbBaseVector& vector) {
  return vector.type == vwb::VelWBVectorStrRemove;
}

}  // namespace

OwnInk::Change OwnInk::showClear(const std::string& page, const std::string& ID) {
  // What is under way on this page comes back before the clear.
  std::erase_if(inks_,
                [&](const auto& each) { return each.second.page == page && each.first != held_; });
  clears_[page] = ID;
  return {{}, 0, true};
}

OwnInk::Change OwnInk::show(const std::string& page, const vwb::VelWbBaseVector& change,
                            const vwb::VectorPtr& entry) {
  const std::string ID = targetOf(change);
  if (ID.empty()) return {};
  if (change.type == vwb::VelWBVectorStrClear) return showClear(page, ID);
  Ink& ink = inks_[ID];
  const bool isNew = ink.page.empty();
  ink.page = page;
  if (isRemove(change)) {
    ink.shown = nullptr;
    return {ID, 0};
  }
  if (!ink.shown) {
    if (isNew && entry) {
      ink.shown = entry->copyWithZone();
    } else {
      ink.shown = change.copyWithZone();
      return {ID, 0};
    }
    apply(change, *ink.shown);
    return {ID, 0};
  }
  return {ID, apply(change, *ink.shown)};
}

void OwnInk::sent(const vwb::VelWbBaseVector& change) {
  const auto found = inks_.find(targetOf(change));
  if (found == inks_.end()) return;
  found->second.sentTs = change.ts;
  found->second.isRemoveSent = isRemove(change);
}

OwnInk::Change OwnInk::received(const vwb::VelWbBaseVector& vector) {
  const std::string ID = targetOf(vector);
  if (vector.type == vwb::VelWBVectorStrClear) {
    const bool isLast =
        std::erase_if(clears_, [&](const auto& each) { return each.second == ID; }) > 0;
    return {{}, 0, isLast};
  }
  const auto found = inks_.find(ID);
  if (found == inks_.end() || ID == held_) return {};
  // Something that was sent later is still under way. What is brought back after a remove has the
  // timestamp that it had before.
  const bool isLast =
      vector.ts >= found->second.sentTs && isRemove(vector) == found->second.isRemoveSent;
  if (!isLast) return {};
  inks_.erase(found);
  return {ID, 0};
}

std::optional<OwnInk::Ink> OwnInk::copyOf(const std::string& ID) const {
  const Ink* ink = find(ID);
  if (ink == nullptr) return std::nullopt;
  Ink copy = *ink;
  if (copy.shown) copy.shown = copy.shown->copyWithZone();
  return copy;
}

OwnInk::Change OwnInk::restore(const std::string& ID, const std::optional<Ink>& before) {
  if (!before) return forget(ID);
  inks_[ID] = *before;
  return {ID, 0};
}

OwnInk::Change OwnInk::forget(const std::string& ID) {
  return inks_.erase(ID) > 0 ? Change{ID, 0} : Change{};
}

vwb::VectorList OwnInk::over(const std::string& page, const vwb::VectorList& entries) const {
  vwb::VectorList shown;
  for (const vwb::VectorPtr& entry : entries) {
    const Ink* ink = entry->ID ? find(*entry->ID) : nullptr;
    const bool isCovered = ink != nullptr && ink->page == page;
    if (!isCovered && !isCleared(page)) shown.push_back(entry);
  }
  for (const auto& [ID, ink] : inks_) {
    if (ink.page == page && ink.shown) shown.push_back(ink.shown);
  }
  return shown;
}

const OwnInk::Ink* OwnInk::find(const std::string& ID) const {
  const auto found = inks_.find(ID);
  return found == inks_.end() ? nullptr : &found->second;
}

}  // namespace whiteboard
