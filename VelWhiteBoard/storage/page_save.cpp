#include "VelWhiteBoard/storage/page_save.h"

#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

#include "VelWhiteBoard/storage/board_files.h"

namespace VelWhiteBoard {

namespace {

/// How many vectors are copied at a time while the storage may have to wait: about a microsecond,
/// which is no longer than `Mutex` waits before it goes to sleep.
constexpr std::size_t kCopiedAtATime = 8;

/// How many saves of one page may wait. Usually none does; a disk that hangs must not make them
/// pile up.
constexpr std::ptrdiff_t kMostWaiting = 3;

}  // namespace

PageSave::PageSave(PageLog whole, std::optional<std::string> wholePath, PageList snap,
                   std::optional<std::string> snapPath, SaveOrder order,
                   std::shared_ptr<DamagedFiles> damaged)
    : wholePath_(std::move(wholePath)),
      snapPath_(std::move(snapPath)),
      damaged_(std::move(damaged)),
      order_(order),
      whole_(std::move(whole)),
      snap_(std::move(snap)) {}

void PageSave::aboutToChange(const VectorPtr& vector) {
  const MutexHold hold(mutex_);
  if (phase_ == Phase::over || kept_.contains(vector.get())) return;
  kept_.emplace(vector.get(), Kept{vector, vector->copyWithZone()});
}

void PageSave::supersede() {
  Contents letGo;
  const MutexHold hold(mutex_);
  if (phase_ == Phase::waiting) letGo = finish();
}

bool PageSave::replaceBy(PageSave& newer) {
  KeptVectors letGo;
  const MutexHold hold(mutex_);
  if (phase_ != Phase::waiting || isClosed_) return false;
  order_ = newer.order_;
  std::swap(whole_, newer.whole_);
  std::swap(snap_, newer.snap_);
  std::swap(kept_, letGo);
  return true;
}

void PageSave::close() {
  const MutexHold hold(mutex_);
  isClosed_ = true;
}

void PageSave::write() {
  {
    const MutexHold hold(mutex_);
    if (phase_ != Phase::waiting) return;
    phase_ = Phase::writing;
  }
  if (order_ == SaveOrder::wholeFirst) writeWhole();
  writeSnap();
  if (order_ == SaveOrder::snapFirst) writeWhole();
  Contents letGo;
  const MutexHold hold(mutex_);
  letGo = finish();
}

bool PageSave::isOver() const {
  const MutexHold hold(mutex_);
  return phase_ == Phase::over;
}

bool PageSave::isWaiting() const {
  const MutexHold hold(mutex_);
  return phase_ == Phase::waiting;
}

bool PageSave::writesSameFilesAs(const PageSave& other) const {
  return wholePath_ == other.wholePath_ && snapPath_ == other.snapPath_;
}

bool PageSave::writesAny(const std::optional<std::string>& wholePath,
                         const std::optional<std::string>& snapPath) const {
  return (wholePath_ && wholePath_ == wholePath) || (snapPath_ && snapPath_ == snapPath);
}

void PageSave::writeWhole() {
  if (!wholePath_) return;
  // First of all what the file held before: once it is replaced, nobody can read that any more.
  const PageList before = whole_.before();
  writeRecords(*wholePath_, *damaged_, [&](PropertyListWriter& writer) {
    if (addAll(before, writer)) addAll(whole_.since(), writer);
  });
}

void PageSave::writeSnap() {
  if (!snapPath_) return;
  writeRecords(*snapPath_, *damaged_,
               [this](PropertyListWriter& writer) { addAll(snap_, writer); });
}

bool PageSave::addAll(const PageList& list, PropertyListWriter& writer) {
  std::vector<std::shared_ptr<const Record>> copies;
  PageList::Place next = 0;
  while (next < list.endPlace()) {
    copies.clear();
    {
      const MutexHold hold(mutex_);
      for (; next < list.endPlace() && copies.size() < kCopiedAtATime; ++next) {
        const VectorPtr& vector = list.at(next);
        if (!vector) continue;
        const auto kept = kept_.find(vector.get());
        copies.push_back(kept != kept_.end() ? kept->second.copy : vector->copyWithZone());
      }
    }
    for (const auto& copy : copies) {
      if (!writer.add(*copy)) return false;
    }
  }
  return true;
}

PageSave::Contents PageSave::finish() {
  phase_ = Phase::over;
  return {std::exchange(whole_, {}), std::exchange(snap_, {}), std::exchange(kept_, {})};
}

void PendingSaves::aboutToChange(const VectorPtr& vector) {
  for (const auto& save : saves_) save->aboutToChange(vector);
}

bool PendingSaves::add(const std::shared_ptr<PageSave>& save) {
  std::erase_if(saves_, [](const auto& each) { return each->isOver(); });
  // What writes one of the two files must stay behind this save, and so must what comes later.
  for (const auto& each : saves_) {
    if (each->sharesAFileWith(*save) && !each->writesSameFilesAs(*save)) each->close();
  }
  const auto waitsForSameFiles = [&save](const auto& each) {
    return each->isWaiting() && each->writesSameFilesAs(*save);
  };
  if (std::count_if(saves_.begin(), saves_.end(), waitsForSameFiles) >= kMostWaiting) {
    const auto newest = std::find_if(saves_.rbegin(), saves_.rend(), waitsForSameFiles);
    if (newest != saves_.rend() && (*newest)->replaceBy(*save)) return false;
    const auto oldest = std::find_if(saves_.begin(), saves_.end(), waitsForSameFiles);
    if (oldest != saves_.end()) (*oldest)->supersede();
  }
  saves_.push_back(save);
  return true;
}

void PendingSaves::close() {
  for (const auto& save : saves_) save->close();
}

void PendingSaves::closeThoseOf(const std::string& wholePath, const std::string& snapPath) {
  for (const auto& save : saves_) {
    if (save->writesAny(wholePath, snapPath)) save->close();
  }
}

}  // namespace VelWhiteBoard
