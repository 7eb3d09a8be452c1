// The observers of a storage, and looking up one entry.
#include <utility>

#include "VelWhiteBoard/storage/reporting.h"
#include "VelWhiteBoard/storage/vector_storage.h"

namespace VelWhiteBoard {

void VWBVectorStorage::State::Reporting::tell() const noexcept {
  try {
    (*observer_)(*report_);
  } catch (...) {
    // The change has been made, so the operation has not failed.
  }
}

void VWBVectorStorage::State::Reporting::begin(const State& state, ChangeReport::Kind kind,
                                               const std::string& page, bool isCurrent) {
  if (!state.changeObserver) return;
  observer_ = state.changeObserver;
  report_.emplace();
  report_->kind = kind;
  report_->page = page;
  report_->isCurrent = isCurrent;
}

void VWBVectorStorage::State::Reporting::complete(State& state) noexcept {
  if (!report_) return;
  if (report_->kind == ChangeReport::Kind::kEntries && report_->changes.empty()) return;
  report_->number = ++state.reports;
}

void VWBVectorStorage::setChangeObserver(ChangeObserver observer) {
  auto shared = observer ? std::make_shared<const ChangeObserver>(std::move(observer)) : nullptr;
  const MutexHold hold(state_->guard);
  std::swap(state_->changeObserver, shared);
}

void VWBVectorStorage::setWriteObserver(WriteObserver observer) {
  state_->files.setObserver(std::move(observer));
}

VectorPtr VWBVectorStorage::entryWithID(std::string_view ID) const {
  const std::string identifier(ID);
  const MutexHold hold(state_->guard);
  const auto found = state_->snapQuery.find(identifier);
  return found == state_->snapQuery.end() ? nullptr : found->second;
}

}  // namespace VelWhiteBoard
