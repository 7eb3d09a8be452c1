#include "lesson/recording.h"

#include <chrono>
#include <condition_variable>
#include <fstream>
#include <mutex>
#include <utility>

namespace whiteboard {

namespace vwb = VelWhiteBoard;

namespace {

constexpr std::size_t kLongestLine = 1 << 20;
constexpr const char* kPageBeforeAnySwitch = "1_1";

/// A pause that is longer is none: clocks differ, and a time may be any number.
constexpr double kLongestPause = 3600;

/// Fills a recording, event by event.
class Recorder {
 public:
  explicit Recorder(Recording& recording) : recording_(recording) {}

  /// @param time when the vector was made, by whatever clock; only its distance from the time
  /// before counts.
  void add(double time, std::string page, vwb::VectorPtr vector) {
    const double passed = recording_.empty() ? 0 : time - last_;
    last_ = time;
    const double at = recording_.end() + (passed > 0 && passed <= kLongestPause ? passed : 0);
    recording_.events.push_back({at, std::move(page), std::move(vector)});
  }

 private:
  Recording& recording_;
  double last_ = 0;
};

/// Something that another thread may wait for.
class Bell {
 public:
  void ring() {
    {
      const std::lock_guard<std::mutex> hold(mutex_);
      hasRung_ = true;
    }
    changed_.notify_one();
  }
  void waitUntil(std::chrono::steady_clock::time_point deadline) {
    std::unique_lock<std::mutex> hold(mutex_);
    changed_.wait_until(hold, deadline, [this] { return hasRung_; });
    hasRung_ = false;
  }

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  bool hasRung_ = false;
};

}  // namespace

ReadRecording readRecording(const std::string& file) {
  ReadRecording read;
  std::ifstream input(file, std::ios::binary);
  if (!input) {
    read.problem = "cannot open " + file;
    return read;
  }
  Recorder recorder(read.recording);
  std::string page = kPageBeforeAnySwitch;
  for (std::string line; std::getline(input, line);) {
    if (line.empty()) continue;
    const vwb::VectorPtr vector =
        line.size() > kLongestLine ? nullptr : vwb::modelWithJSON<vwb::VelWbBaseVector>(line);
    if (!vector || !vector->type || !vector->ID) {
      ++read.skipped;
      continue;
    }
    if (const auto* turn = vwb::recordCast<const vwb::VelWbVecSwitchPage>(vector.get())) {
      page = turn->pageInfo();
    }
    recorder.add(vector->ts, page, vector);
  }
  if (input.bad()) read.problem = "cannot read " + file;
  if (read.recording.empty() && read.problem.empty()) {
    read.problem = file + " holds no lesson: no line is the text of a vector";
  }
  return read;
}

ReadRecording recordLesson(Bus& bus, double seconds) {
  using Clock = std::chrono::steady_clock;
  const auto deadline = Clock::now() + std::chrono::duration_cast<Clock::duration>(
                                           std::chrono::duration<double>(seconds));
  ReadRecording read;
  Recorder recorder(read.recording);
  const auto bell = std::make_shared<Bell>();
  bus.start([bell] { bell->ring(); });
  for (;;) {
    const BusStatus status = bus.status();
    for (std::vector<Arrival> arrivals; !(arrivals = bus.take(1000)).empty();) {
      for (Arrival& arrival : arrivals) {
        if (arrival.sequence == 0) continue;  // is only shown
        recorder.add(arrival.time, std::move(arrival.page), std::move(arrival.vector));
      }
    }
    if (status.kind == BusStatus::Kind::kLive) break;
    const bool isRefused = status.kind == BusStatus::Kind::kRefused;
    if (isRefused || Clock::now() >= deadline) {
      read.problem = status.problem.empty() ? "the lesson cannot be reached" : status.problem;
      break;
    }
    bell->waitUntil(deadline);
  }
  if (read.recording.empty() && read.problem.empty()) read.problem = "the lesson is empty";
  return read;
}

}  // namespace whiteboard
