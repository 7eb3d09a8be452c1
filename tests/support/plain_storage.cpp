#include "tests/support/plain_storage.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "VelWhiteBoard/foundation/records/model_mapping.h"
#include "VelWhiteBoard/foundation/values/clock.h"
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

VectorList listOf(const PlainStorage::Lists& lists, const std::string& key) {
  const auto found = lists.find(key);
  return found == lists.end() ? VectorList() : found->second;
}

}  // namespace

// ---- The disk

void PlainDisk::write(const std::string& path, const Value& contents) {
  files_[path] = contents;
  log_.push_back("write " + path);
}

void PlainDisk::remove(const std::string& path) {
  if (files_.erase(path) != 0) log_.push_back("remove " + path);
}

void PlainDisk::removeFolder(const std::string& folder) {
  std::erase_if(files_, [&](const auto& file) { return file.first.starts_with(folder + "/"); });
}

Array PlainDisk::list(const std::string& path) const {
  const auto found = files_.find(path);
  if (found == files_.end() || !found->second.is_array()) return {};
  return found->second;
}

// ---- The queue

void PlainQueue::add(std::function<void()> operation, std::vector<std::string> writes) {
  waiting_.push_back({std::move(operation), std::move(writes)});
  if (!isHeld_) letGo();
}

void PlainQueue::letGo() {
  isHeld_ = false;
  while (!waiting_.empty()) {
    waiting_.front().run();
    waiting_.pop_front();
  }
}

std::size_t PlainQueue::mostWaitingForAFile() const {
  std::map<std::string, std::size_t> counts;
  std::size_t most = 0;
  for (const Operation& operation : waiting_) {
    for (const std::string& path : operation.writes) most = std::max(most, ++counts[path]);
  }
  return most;
}

// ---- Files

PlainStorage::PlainStorage(PlainDisk& disk, const std::string& path)
    : folder(path + "/whiteBoard"), disk_(disk) {
  reload();
}

std::string PlainStorage::wholePath(const std::string& key) const {
  return folder + "/whole_" + key + ".plist";
}

std::string PlainStorage::snapPath(const std::string& key) const {
  return folder + "/snap_" + key + ".plist";
}

VectorList PlainStorage::load(const std::string& path) const {
  return modelArrayWithClass<VelWbBaseVector>(disk_.list(path));
}

void PlainStorage::reload() {
  wholeVectorss.clear();
  snapVectorss.clear();
  pageCacheList.clear();
  pageFile = folder + "/page.plist";
  pageArray.clear();
  for (const VectorPtr& vector : modelArrayWithClass<VelWbVecSwitchPage>(disk_.list(pageFile))) {
    if (auto page = std::dynamic_pointer_cast<VelWbVecSwitchPage>(vector)) {
      pageArray.push_back(page);
    }
  }
  lastSaveDate = currentDate();
  hasNewChange = false;
}

void PlainStorage::saveFile(bool force) {
  if (!hasNewChange) return;
  const auto now = currentDate();
  if (!force && !(now - lastSaveDate > std::chrono::seconds(20))) return;
  if (!currentPage) return;
  lastSaveDate = now;
  const std::string key = currentPage->pageInfo();
  const Value snapForm = modelToJSONObject(listOf(snapVectorss, key));
  const Value wholeForm = modelToJSONObject(listOf(wholeVectorss, key));
  std::vector<std::string> writes;
  if (wholeFile) writes.push_back(*wholeFile);
  if (snapFile) writes.push_back(*snapFile);
  saveQueue->add(
      [&disk = disk_, snapForm, wholeForm, whole = wholeFile, snap = snapFile] {
        if (whole) disk.write(*whole, wholeForm);
        if (snap) disk.write(*snap, snapForm);
      },
      writes);
}

// ---- Saving vectors

void PlainStorage::saveVector(const VectorPtr& vector) {
  if (ignoreChanges) return;
  const std::string key = currentPage ? currentPage->pageInfo() : "";
  VectorList snap = listOf(snapVectorss, key);
  VectorList whole = listOf(wholeVectorss, key);
  if (!snap.empty() && isTransient(*snap.back())) snap.pop_back();
  if (!vector->ID) vector->ID = VelWbVectorManager::shareManager().genID();
  const auto entry = snapQuery.find(*vector->ID);
  if (entry != snapQuery.end() && !isTransient(*vector)) {
    continueEntry(VectorPtr(entry->second), vector, snap);
  } else {
    applyNew(vector, snap);
  }
  whole.push_back(vector);
  hasNewChange = true;
  wholeVectorss[key] = whole;
  snapVectorss[key] = snap;
  saveFile(false);
}

void PlainStorage::continueEntry(const VectorPtr& entry, const VectorPtr& vector,
                                 VectorList& snap) {
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

void PlainStorage::applyNew(const VectorPtr& vector, VectorList& snap) {
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

void PlainStorage::appendVectors(const VectorList& vectors, const Page& page) {
  if (currentPage && page->curPage == currentPage->curPage && page->WBID == currentPage->WBID) {
    for (const VectorPtr& vector : vectors) saveVector(vector);
    return;
  }
  const std::string key = page->pageInfo();
  VectorList whole = wholeVectorss.contains(key) ? wholeVectorss[key] : load(wholePath(key));
  VectorList snap = snapVectorss.contains(key) ? snapVectorss[key] : load(snapPath(key));
  for (const VectorPtr& vector : vectors) {
    applyAppended(vector, snap);
    whole.push_back(vector);
  }
  wholeVectorss[key] = whole;
  snapVectorss[key] = snap;
  const Value snapForm = modelToJSONObject(snap);
  const Value wholeForm = modelToJSONObject(whole);
  saveQueue->add(
      [&disk = disk_, snapForm, wholeForm, wholeTo = wholePath(key), snapTo = snapPath(key)] {
        disk.write(snapTo, snapForm);
        disk.write(wholeTo, wholeForm);
      },
      {wholePath(key), snapPath(key)});
}

void PlainStorage::applyAppended(const VectorPtr& vector, VectorList& snap) {
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

bool PlainStorage::hasVectorsWithPage(const VelWbVecSwitchPage& page) const {
  const std::string key = page.pageInfo();
  if (snapVectorss.contains(key)) return true;
  for (const std::string& each : pageCacheList) {
    if (each == key) return true;
  }
  return disk_.has(wholePath(key));
}

VectorList PlainStorage::switchPage(const Page& page) {
  saveFile(true);
  if (currentPage && currentPage->WBID == page->WBID && currentPage->resource == page->resource &&
      currentPage->curPage == page->curPage) {
    return {};
  }
  const std::string key = page->pageInfo();
  hasNewChange = false;
  currentPage = page->mutableCopyWithZone();
  wholeFile = wholePath(key);
  snapFile = snapPath(key);
  if (!wholeVectorss.contains(key)) wholeVectorss[key] = load(*wholeFile);
  if (!snapVectorss.contains(key)) snapVectorss[key] = load(*snapFile);
  snapQuery.clear();
  for (const VectorPtr& entry : snapVectorss[key]) {
    if (entry->ID) snapQuery[*entry->ID] = entry;
  }
  if (!ignoreChanges) {
    if (!pageArray.empty() && milliseconds(pageArray.back()->ts) == milliseconds(page->ts)) {
      pageArray.pop_back();
    }
    pageArray.push_back(page);
    const Value form = modelToJSONObject(VectorList(pageArray.begin(), pageArray.end()));
    // Where the file is, is asked for when the operation runs.
    saveQueue->add([this, form] { disk_.write(pageFile, form); }, {pageFile});
  }
  return snapVectorss[key];
}

VectorList PlainStorage::snapWithPage(const VelWbVecSwitchPage& page) const {
  const auto cached = snapVectorss.find(page.pageInfo());
  return cached == snapVectorss.end() ? load(snapPath(page.pageInfo())) : cached->second;
}

void PlainStorage::clear() {
  disk_.removeFolder(folder);
  wholeVectorss.clear();
  snapVectorss.clear();
  snapQuery.clear();
  reload();
}

void PlainStorage::clearPage(const VelWbVecSwitchPage& page) {
  const std::string key = page.pageInfo();
  std::erase(pageCacheList, key);
  wholeVectorss.erase(key);
  snapVectorss.erase(key);
  if (currentPage && page.WBID == currentPage->WBID && page.curPage == currentPage->curPage) {
    snapQuery.clear();
    hasNewChange = false;
  }
  saveQueue->add([&disk = disk_, whole = wholePath(key), snap = snapPath(key)] {
    disk.remove(whole);
    disk.remove(snap);
  });
}

}  // namespace VelWhiteBoard
