#include "lesson/undo.h"

namespace whiteboard {

namespace vwb = VelWhiteBoard;

void Undo::take(const vwb::ChangeReport& report, const vwb::VWBVectorStorage& board) {
  if (report.kind == vwb::ChangeReport::Kind::kReloaded) pages_.clear();
  if (report.kind != vwb::ChangeReport::Kind::kEntries) return;
  for (const vwb::EntryChange& change : report.changes) {
    if (change.kind == vwb::EntryChange::Kind::kCleared) pages_.erase(report.page);
    if (change.kind != vwb::EntryChange::Kind::kAdded || board.ignoreVector(*change.entry))
      continue;
    const std::string ID = change.entry->ID.value_or("");
    if (ID.starts_with(own_)) pages_[report.page].drawn.push_back(ID);
  }
}

vwb::VectorPtr Undo::undo(const vwb::VWBVectorStorage& board) {
  const auto page = board.currentPage();
  if (!page) return nullptr;
  Lists& lists = pages_[page->pageInfo()];
  while (!lists.drawn.empty()) {
    const std::string ID = lists.drawn.back();
    lists.drawn.pop_back();
    const vwb::VectorPtr entry = board.entryWithID(ID);
    if (!entry) continue;  // it has been removed already
    lists.undone.push_back(vwb::modelToJSONString(*entry));
    auto remove = vwb::recordPointerCast<vwb::VelWbVecRemove>(
        vwb::VWBToolManager::genVectorWithType(vwb::VelWBVectorTypeRemove));
    remove->rmID = ID;
    return remove;
  }
  return nullptr;
}

vwb::VectorPtr Undo::redo(const vwb::VWBVectorStorage& board) {
  const auto page = board.currentPage();
  if (!page) return nullptr;
  Lists& lists = pages_[page->pageInfo()];
  if (lists.undone.empty()) return nullptr;
  const std::string entry = lists.undone.back();
  lists.undone.pop_back();
  return vwb::modelWithJSON<vwb::VelWbBaseVector>(entry);
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
