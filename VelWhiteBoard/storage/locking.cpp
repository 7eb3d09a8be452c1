// How the operations of a storage exclude one another.
#include "VelWhiteBoard/storage/storage_state.h"

namespace VelWhiteBoard {

// The analysis cannot follow a lock that is released and retaken on one branch only.
VWBVectorStorage::State::ShortOperation::ShortOperation(State& state)
    VELWHITEBOARD_THREAD_ANNOTATION(no_thread_safety_analysis)
    : state_(state) {
  state_.guard.lock();
  if (!state_.isSemphoreShared && state_.longOperations == 0) return;
  held_ = state_.semphore;
  state_.guard.unlock();
  ++state_.waitingForSemphore;
  waitOn(*held_);
  --state_.waitingForSemphore;
  state_.guard.lock();
}

VWBVectorStorage::State::ShortOperation::~ShortOperation()
    VELWHITEBOARD_THREAD_ANNOTATION(no_thread_safety_analysis) {
  state_.guard.unlock();
  if (held_) held_->release();
}

VWBVectorStorage::State::LongOperation::LongOperation(State& state) : state_(state) {
  {
    const MutexHold hold(state_.guard);
    held_ = state_.semphore;
  }
  waitOn(*held_);
  const MutexHold hold(state_.guard);
  ++state_.longOperations;
}

VWBVectorStorage::State::LongOperation::~LongOperation() {
  {
    const MutexHold hold(state_.guard);
    --state_.longOperations;
  }
  held_->release();
}

}  // namespace VelWhiteBoard
