#include "tests/support/naive_board.h"

#include <algorithm>
#include <cmath>

#include "VelWhiteBoard/services/vector_manager.h"
#include "VelWhiteBoard/vectors/boxes.h"
#include "VelWhiteBoard/vectors/strokes.h"

namespace VelWhiteBoard {
namespace {

template <class Class>
bool isA(const VectorPtr& vector) {
  return dynamic_cast<const Class*>(vector.get()) != nullptr;
}

bool isTransient(const VelWbBaseVector& vector) {
  for (const char* type : {"cursor", "camera", "magnifier", "clear", "remove"}) {
    if (vector.type == std::string(type)) return true;
  }
  return false;
}

bool areEqual(const VelWbBaseVector& left, const VelWbBaseVector& right) {
  return &left == &right || (left.recordClass().name == right.recordClass().name &&
                             modelToJSONObject(left) == modelToJSONObject(right));
}

void removeObject(VectorList& list, const VectorPtr& object) {
  std::erase_if(list, [&](const VectorPtr& each) { return areEqual(*each, *object); });
}

VectorList::iterator first(VectorList& list, const std::optional<std::string>& id) {
  return std::find_if(list.begin(), list.end(),
                      [&](const VectorPtr& each) { return id && each->ID == id; });
}

VectorList::iterator last(VectorList& list, const std::optional<std::string>& id) {
  for (auto each = list.end(); each != list.begin();) {
    --each;
    if (id && (*each)->ID == id) return each;
  }
  return list.end();
}

void append(const VectorPtr& entry, const VectorPtr& vector) {
  std::static_pointer_cast<VelWbVecPoint>(entry)->append(*vector);
}

void merge(const VectorPtr& entry, const VectorPtr& vector) {
  std::static_pointer_cast<VelWbVecSquare>(entry)->merge(*vector);
}

std::int64_t milliseconds(double ts) { return static_cast<std::int64_t>(std::trunc(ts * 1000)); }

std::string wholeName(const std::string& key) { return "whole_" + key + ".plist"; }
std::string snapName(const std::string& key) { return "snap_" + key + ".plist"; }

VectorList listOf(const NaiveBoard::Lists& lists, const std::string& key) {
  const auto found = lists.find(key);
  return found == lists.end() ? VectorList() : found->second;
}

}  // namespace

// ---- Files

VectorList NaiveBoard::load(const std::string& name) const {
  const auto found = files.find(name);
  return found == files.end() ? VectorList() : modelArrayWithClass<VelWbBaseVector>(found->second);
}

void NaiveBoard::write(const std::string& key) {
  files[wholeName(key)] = modelToJSONObject(listOf(wholeVectorss, key));
  files[snapName(key)] = modelToJSONObject(listOf(snapVectorss, key));
}

void NaiveBoard::reload() {
  wholeVectorss.clear();
  snapVectorss.clear();
  pageArray.clear();
  for (const VectorPtr& vector : load("page.plist")) {
    pageArray.push_back(std::dynamic_pointer_cast<VelWbVecSwitchPage>(vector));
  }
  lastSaveDate = now;
  hasNewChange = false;
}

void NaiveBoard::saveFile(bool force) {
  if (!hasNewChange) return;
  if (!force && !(now - lastSaveDate > 20'000)) return;
  if (!currentPage) return;
  lastSaveDate = now;
  write(currentPage->pageInfo());
}

// ---- Saving vectors

void NaiveBoard::saveVector(const VectorPtr& vector) {
  if (ignoreChanges) return;
  const std::string key = currentPage ? currentPage->pageInfo() : "";
  VectorList& snap = snapVectorss[key];
  if (!snap.empty() && isTransient(*snap.back())) snap.pop_back();
  if (!vector->ID) vector->ID = VelWbVectorManager::shareManager().genID();
  applySaved(vector, snap);
  wholeVectorss[key].push_back(vector);
  hasNewChange = true;
  saveFile(false);
}

void NaiveBoard::applySaved(const VectorPtr& vector, VectorList& snap) {
  const auto entry = snapQuery.find(*vector->ID);
  if (entry != snapQuery.end() && !isTransient(*vector)) {
    continueEntry(VectorPtr(entry->second), vector, snap);
  } else {
    applyNew(vector, snap);
  }
}

void NaiveBoard::continueEntry(const VectorPtr& entry, const VectorPtr& vector, VectorList& snap) {
  if (isA<VelWbVecLine>(entry) && isA<VelWbVecPoint>(vector) && entry->ID == vector->ID) {
    append(entry, vector);
    return;
  }
  const VectorPtr tail = snap.empty() ? nullptr : snap.back();
  if (tail && !isA<VelWbVecLine>(tail) && tail->ID == vector->ID) {
    snap.pop_back();
    if (isA<VelWbVecSquare>(tail) && isA<VelWbVecSquare>(vector)) merge(tail, vector);
    snap.push_back(tail);
    snapQuery[*tail->ID] = tail;
    return;
  }
  if (isA<VelWbVecSquare>(entry) && isA<VelWbVecSquare>(vector)) {
    removeObject(snap, entry);
    merge(entry, vector);
  }
  snap.push_back(entry);
  snapQuery[*entry->ID] = entry;
}

void NaiveBoard::applyNew(const VectorPtr& vector, VectorList& snap) {
  if (vector->type == "remove") {
    const auto remove = std::dynamic_pointer_cast<VelWbVecRemove>(vector);
    if (!remove || !remove->rmID || snapQuery.count(*remove->rmID) == 0) return;
    if (const auto found = first(snap, remove->rmID); found != snap.end()) {
      removeObject(snap, VectorPtr(*found));
    }
    snapQuery.erase(*remove->rmID);
  } else if (vector->type == "clear") {
    snap.clear();
    snapQuery.clear();
  } else if (vector->type == "magnifier") {
    const auto found = std::find_if(
        snap.begin(), snap.end(), [](const VectorPtr& each) { return each->type == "magnifier"; });
    if (found != snap.end()) snap.erase(found);
    snap.push_back(vector);
  } else if (isTransient(*vector)) {
    snap.push_back(vector);
  } else {
    if (const auto line = std::dynamic_pointer_cast<VelWbVecLine>(vector); line && !line->path) {
      line->path = Path{{line->x, line->y, line->ts}};
    }
    snap.push_back(vector);
    snapQuery[*vector->ID] = vector;
  }
}

void NaiveBoard::appendVectors(const VectorList& vectors, const Page& page) {
  if (currentPage && page->curPage == currentPage->curPage && page->WBID == currentPage->WBID) {
    for (const VectorPtr& vector : vectors) saveVector(vector);
    return;
  }
  const std::string key = page->pageInfo();
  if (wholeVectorss.count(key) == 0) wholeVectorss[key] = load(wholeName(key));
  if (snapVectorss.count(key) == 0) snapVectorss[key] = load(snapName(key));
  for (const VectorPtr& vector : vectors) {
    applyAppended(vector, snapVectorss[key]);
    wholeVectorss[key].push_back(vector);
  }
  write(key);
}

void NaiveBoard::applyAppended(const VectorPtr& vector, VectorList& snap) {
  if (isA<VelWbVecLine>(vector)) {
    const auto found = last(snap, vector->ID);
    if (found == snap.end()) {
      snap.push_back(vector);
    } else if (isA<VelWbVecPoint>(*found)) {
      append(*found, vector);
    }
  } else if (vector->type == "remove") {
    const auto remove = std::dynamic_pointer_cast<VelWbVecRemove>(vector);
    if (!remove) return;
    if (const auto found = first(snap, remove->rmID); found != snap.end()) snap.erase(found);
  } else if (vector->type == "clear") {
    snap.clear();
  } else if (vector->ID && !isTransient(*vector)) {
    const auto found = last(snap, vector->ID);
    if (found != snap.end() && isA<VelWbVecPoint>(*found) && isA<VelWbVecPoint>(vector)) {
      const VectorPtr entry = *found;
      append(entry, vector);
      snap.erase(found);
      snap.push_back(entry);
    } else {
      snap.push_back(vector);
    }
  }
}

// ---- Pages

bool NaiveBoard::hasVectorsWithPage(const VelWbVecSwitchPage& page) const {
  const std::string key = page.pageInfo();
  return snapVectorss.count(key) != 0 || files.count(wholeName(key)) != 0;
}

VectorList NaiveBoard::switchPage(const Page& page) {
  saveFile(true);
  if (currentPage && currentPage->WBID == page->WBID && currentPage->resource == page->resource &&
      currentPage->curPage == page->curPage) {
    return {};
  }
  const std::string key = page->pageInfo();
  hasNewChange = false;
  currentPage = page->mutableCopyWithZone();
  if (wholeVectorss.count(key) == 0) wholeVectorss[key] = load(wholeName(key));
  if (snapVectorss.count(key) == 0) snapVectorss[key] = load(snapName(key));
  snapQuery.clear();
  for (const VectorPtr& entry : snapVectorss[key]) {
    if (entry->ID) snapQuery[*entry->ID] = entry;
  }
  if (!ignoreChanges) {
    if (!pageArray.empty() && milliseconds(pageArray.back()->ts) == milliseconds(page->ts)) {
      pageArray.pop_back();
    }
    pageArray.push_back(page);
    files["page.plist"] = modelToJSONObject(VectorList(pageArray.begin(), pageArray.end()));
  }
  return snapVectorss[key];
}

VectorList NaiveBoard::snapWithPage(const VelWbVecSwitchPage& page) const {
  const auto cached = snapVectorss.find(page.pageInfo());
  return cached == snapVectorss.end() ? load(snapName(page.pageInfo())) : cached->second;
}

void NaiveBoard::clear() {
  files.clear();
  snapQuery.clear();
  reload();
}

void NaiveBoard::clearPage(const VelWbVecSwitchPage& page) {
  const std::string key = page.pageInfo();
  wholeVectorss.erase(key);
  snapVectorss.erase(key);
  if (currentPage && page.WBID == currentPage->WBID && page.curPage == currentPage->curPage) {
    snapQuery.clear();
    hasNewChange = false;
  }
  files.erase(wholeName(key));
  files.erase(snapName(key));
}

}  // namespace VelWhiteBoard
