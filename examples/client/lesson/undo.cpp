#include "lesson/undo.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace whiteboard {

namespace vwb = VelWhiteBoard;

namespace {

/// What stays on a page until it is taken off, as opposed to what changes pages.
bool isEntry(const vwb::VelWbBaseVector& vector) {
  const auto& type = vector.type;
  return type != vwb::VelWBVectorStrRemove && type != vwb::VelWBVectorStrClear &&
         type != vwb::VelWBVectorStrSwitchPage && type != vwb::VelWBVectorStrCursor &&
         type != vwb::VelWBVectorStrMagnifier && type != vwb::VelWBVectorStrCamera;
}

template <class Entries>
auto entryIn(Entries& entries, const std::string& ID) {
  return std::find_if(entries.begin(), entries.end(),
                      [&](const auto& each) { return each.ID == ID; });
}

}  // namespace

void Undo::sent(const std::string& page, const vwb::VelWbBaseVector& vector) {
  if (vector.type == vwb::VelWBVectorStrClear) pages_.erase(page);
  const std::string ID = vector.ID.value_or("");
  if (!isEntry(vector) || !ID.starts_with(own_)) return;
  std::vector<Entry>& drawn = pages_[page].drawn;
  // Pieces of a stroke and changes of a box leave it where it was.
  if (entryIn(drawn, ID) == drawn.end()) drawn.push_back({ID, false, {}});
}

void Undo::refused(const std::string& page, const vwb::VelWbBaseVector& vector) {
  Lists& lists = pages_[page];
  if (const auto* remove = vwb::recordCast<const vwb::VelWbVecRemove>(&vector)) {
    const auto entry = entryIn(lists.undone, remove->rmID.value_or(""));
    if (entry == lists.undone.end()) return;
    lists.drawn.push_back(std::move(*entry));
    lists.undone.erase(entry);
    return;
  }
  const std::string ID = vector.ID.value_or("");
  const auto isGone = [&](const Entry& entry) { return entry.ID == ID && !entry.isFiled; };
  std::erase_if(lists.drawn, isGone);
  std::erase_if(lists.undone, isGone);
}

void Undo::filed(const std::string& page, const std::string& ID) {
  if (!ID.starts_with(own_)) return;
  Lists& lists = pages_[page];
  for (std::vector<Entry>* entries : {&lists.drawn, &lists.undone}) {
    const auto entry = entryIn(*entries, ID);
    if (entry == entries->end()) continue;
    entry->isFiled = true;
    return;
  }
  lists.drawn.push_back({ID, true, {}});
}

void Undo::take(const vwb::ChangeReport& report) {
  const auto forget = [](Lists& lists) {
    // What is still under way comes after the clear.
    const auto isFiled = [](const Entry& entry) { return entry.isFiled; };
    std::erase_if(lists.drawn, isFiled);
    std::erase_if(lists.undone, isFiled);
  };
  if (report.kind == vwb::ChangeReport::Kind::kReloaded) {
    for (auto& [page, lists] : pages_) forget(lists);
  }
  if (report.kind != vwb::ChangeReport::Kind::kEntries) return;
  for (const vwb::EntryChange& change : report.changes) {
    if (change.kind == vwb::EntryChange::Kind::kCleared) forget(pages_[report.page]);
    if (change.kind == vwb::EntryChange::Kind::kAdded && isEntry(*change.entry)) {
      filed(report.page, change.entry->ID.value_or(""));
    }
  }
}

vwb::VectorPtr Undo::undo(const std::string& page, const Shown& shown) {
  Lists& lists = pages_[page];
  while (!lists.drawn.empty()) {
    Entry entry = std::move(lists.drawn.back());
    lists.drawn.pop_back();
    const vwb::VectorPtr vector = shown(entry.ID);
    if (!vector) continue;  // it has been removed already
    entry.text = vwb::modelToJSONString(*vector);
    auto remove = vwb::recordPointerCast<vwb::VelWbVecRemove>(
        vwb::VWBToolManager::genVectorWithType(vwb::VelWBVectorTypeRemove));
    remove->rmID = entry.ID;
    lists.undone.push_back(std::move(entry));
    return remove;
  }
  return nullptr;
}

vwb::VectorPtr Undo::redo(const std::string& page) {
  Lists& lists = pages_[page];
  if (lists.undone.empty()) return nullptr;
  const std::string text = std::move(lists.undone.back().text);
  lists.undone.pop_back();
  return vwb::modelWithJSON<vwb::VelWbBaseVector>(text);
}

bool Undo::canUndo(const std::string& page) const {
  const auto lists = pages_.find(page);
  return lists != pages_.end() && !lists->second.drawn.empty();
}

bool Undo::canRedo(const std::string& page) const {
  const auto lists = pages_.find(page);
  return lists != pages_.end() && !lists->second.undone.empty();
}

}  // namespace whiteboard
