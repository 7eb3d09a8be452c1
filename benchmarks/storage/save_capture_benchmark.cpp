// What a timed save costs its caller, by the size of the page, when as much has changed since the
// last one.
#include <chrono>
#include <map>
#include <memory>
#include <optional>

#include <benchmark/benchmark.h>

#include "benchmarks/workload.h"
#include "tests/support/hand_clock.h"

namespace benchmarks {
namespace {

constexpr std::size_t kPiecesOfAStroke = 50;
constexpr std::size_t kChanges = 100;

/// A page whose files have no path: a save captures it as ever, and the queue has nothing to write.
class CapturedPage {
 public:
  explicit CapturedPage(std::size_t pieces)
      : strokes_(pieces / kPiecesOfAStroke), storage_(recordingStorage(folder_)) {
    saveTexts(lessonTexts(strokes_, kPiecesOfAStroke, 0, 0, 0), *storage_);
    storage_->setWholeFile(std::nullopt);
    storage_->setSnapFile(std::nullopt);
  }

  void change() {
    for (std::size_t index = 0; index < kChanges; ++index) {
      time_ += 0.005;
      storage_->saveVector(modelWithJSON<VelWbBaseVector>(
          lineText(lessonStroke(index * 7 % strokes_), 0.1, 0.2, time_)));
    }
  }
  VWBVectorStorage& storage() { return *storage_; }

 private:
  Folder folder_{parentInMemory()};
  std::size_t strokes_;
  std::shared_ptr<VWBVectorStorage> storage_;
  double time_ = kLessonStart + 100'000;
};

void captureTimedSave(benchmark::State& state) {
  static HandClock clock;
  const ScopedClock scope(clock);
  static std::map<std::int64_t, std::unique_ptr<CapturedPage>> pages;
  auto& page = pages[state.range(0)];
  if (!page) page = std::make_unique<CapturedPage>(static_cast<std::size_t>(state.range(0)));
  for (auto _ : state) {
    page->change();
    clock.advance(kBeyondSaveInterval);
    const auto start = std::chrono::steady_clock::now();
    page->storage().saveFile(false);
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
    state.SetIterationTime(taken.count());
    page->storage().saveQueue()->waitUntilAllOperationsAreFinished();
  }
}
BENCHMARK(captureTimedSave)
    ->Arg(10'000)
    ->Arg(100'000)
    ->Arg(1'000'000)
    ->Iterations(10)
    ->UseManualTime()
    ->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace benchmarks
