#include "lesson/save_state.h"

#include <system_error>

namespace whiteboard {

namespace vwb = VelWhiteBoard;

std::shared_ptr<SaveState> SaveState::watch(vwb::VWBVectorStorage& board) {
  auto state = std::make_shared<SaveState>();
  board.setWriteObserver([state](const vwb::WriteReport& report) { state->take(report); });
  return state;
}

void SaveState::take(const vwb::WriteReport& report) {
  const std::lock_guard<std::mutex> hold(mutex_);
  ++reports_;
  if (report.result.ok()) {
    failed_.erase(report.path);
    if (report.kind == vwb::WriteReport::Kind::kWritten) summary_.lastWritten = std::time(nullptr);
  } else {
    failed_.insert(report.path);
    summary_.problem = std::generic_category().message(report.result.error);
  }
  if (failed_.empty()) summary_.problem.clear();
}

SaveState::Summary SaveState::summary() const {
  const std::lock_guard<std::mutex> hold(mutex_);
  return summary_;
}

std::uint64_t SaveState::reports() const {
  const std::lock_guard<std::mutex> hold(mutex_);
  return reports_;
}

void SaveState::forget() {
  const std::lock_guard<std::mutex> hold(mutex_);
  failed_.clear();
  summary_.problem.clear();
}

}  // namespace whiteboard
