#pragma once

#include <condition_variable>
#include <mutex>

namespace VelWhiteBoard {

/// Closed until somebody opens it; then it stays open. Lets a test decide when an operation goes
/// on.
class Gate {
 public:
  void open() {
    const std::lock_guard<std::mutex> hold(mutex_);
    isOpen_ = true;
    opened_.notify_all();
  }
  void pass() {
    std::unique_lock<std::mutex> hold(mutex_);
    opened_.wait(hold, [this] { return isOpen_; });
  }

 private:
  std::mutex mutex_;
  std::condition_variable opened_;
  bool isOpen_ = false;
};

/// Where threads wait until so many of them are there.
class Meeting {
 public:
  explicit Meeting(int expected) : missing_(expected) {}
  void arrive() {
    std::unique_lock<std::mutex> hold(mutex_);
    if (--missing_ == 0) complete_.notify_all();
    complete_.wait(hold, [this] { return missing_ <= 0; });
  }

 private:
  std::mutex mutex_;
  std::condition_variable complete_;
  int missing_;
};

}  // namespace VelWhiteBoard
