// The longest that the pen's thread is kept while another thread appends a large batch to another
// page.
#include <algorithm>
#include <atomic>
#include <chrono>
#include <string>
#include <thread>

#include <benchmark/benchmark.h>

#include "benchmarks/workload.h"

namespace benchmarks {
namespace {

using SteadyClock = std::chrono::steady_clock;

// 300,000 pieces.
constexpr std::size_t kStrokes = 3'000;
constexpr std::size_t kPiecesOfAStroke = 100;
constexpr std::chrono::microseconds kBetweenCalls{20};

/// The longest of many calls.
class Longest {
 public:
  template <class Call>
  void time(const Call& call) {
    const auto start = SteadyClock::now();
    call();
    const std::chrono::duration<double, std::micro> taken = SteadyClock::now() - start;
    microseconds_ = std::max(microseconds_, taken.count());
  }
  double microseconds() const { return microseconds_; }

 private:
  double microseconds_ = 0;
};

void drawBesideABatch(benchmark::State& state) {
  const auto texts = lessonTexts(kStrokes, kPiecesOfAStroke, 0, 0, 0);
  for (auto _ : state) {
    const Folder folder(parentInMemory());
    const auto storage = recordingStorage(folder);
    const VectorList batch = decoded(texts);
    std::atomic<bool> isDone = false;
    Longest pen;
    Longest accessor;
    std::thread other([&] {
      storage->appendVectors(batch, page(2));
      isDone = true;
    });
    for (std::size_t index = 0; !isDone; ++index) {
      const auto piece = modelWithJSON<VelWbBaseVector>(pieceText("u1_100", index));
      pen.time([&] { storage->saveVector(piece); });
      accessor.time([&] { benchmark::DoNotOptimize(storage->currentPage()); });
      // Awaited awake: a thread that sleeps measures how it is woken.
      const auto due = SteadyClock::now() + kBetweenCalls;
      while (SteadyClock::now() < due) {
      }
    }
    other.join();
    state.counters["pen_us"] = pen.microseconds();
    state.counters["accessor_us"] = accessor.microseconds();
    storage->saveQueue()->waitUntilAllOperationsAreFinished();
  }
}
BENCHMARK(drawBesideABatch)->Iterations(1)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace benchmarks
