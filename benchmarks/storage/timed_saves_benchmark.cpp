// The longest that the pen's thread is kept while timed saves of a large page are written behind
// it.
#include <algorithm>
#include <chrono>
#include <vector>

#include <benchmark/benchmark.h>

#include "benchmarks/workload.h"
#include "tests/support/hand_clock.h"

namespace benchmarks {
namespace {

using SteadyClock = std::chrono::steady_clock;

// A page of about 100,000 pieces.
constexpr std::size_t kStrokes = 2'000;
constexpr std::size_t kPiecesOfAStroke = 44;
constexpr std::size_t kBoxes = 500;
constexpr std::size_t kMoves = 23;

// Many times the pieces that hands give, and a save every 40 milliseconds instead of 20 seconds,
// which is faster than the disk takes them: the queue never stands still.
constexpr std::size_t kCalls = 40'000;
constexpr std::chrono::microseconds kBetweenCalls{20};
constexpr std::size_t kCallsBetweenSaves = 2'000;

/// As a lesson goes on: half of them pieces of strokes that four users draw on at once, a quarter
/// moves of boxes, a quarter new strokes. Strokes and boxes are those of the page, so that a save
/// must keep them as they were; each is worked on for a while, then the next.
VectorList piecesToCome() {
  constexpr std::size_t kInARow = 20;
  constexpr std::size_t kUsers = 4;
  VectorList pieces;
  pieces.reserve(kCalls);
  double time = kLessonStart + 100'000;
  for (std::size_t index = 0; index < kCalls; ++index) {
    const auto step = static_cast<double>(index);
    const double x = std::cos(step) * 0.4;
    const double y = std::sin(step) * 0.4;
    time += 0.005;
    std::string text;
    if (index % 2 == 0) {
      const std::size_t piece = index / 2;
      const std::size_t stroke = piece / (kUsers * kInARow) * kUsers + piece % kUsers;
      text = lineText(lessonStroke(stroke % kStrokes), x, y, time);
    } else if (index % 4 == 1) {
      text = boxText(lessonBox(index / 4 / kInARow % kBoxes), x, y, time);
    } else {
      text = lineText("new_" + std::to_string(index), x, y, time);
    }
    pieces.push_back(modelWithJSON<VelWbBaseVector>(text));
  }
  return pieces;
}

void reportLatencies(benchmark::State& state, std::vector<double>& microseconds) {
  std::sort(microseconds.begin(), microseconds.end());
  const auto quantile = [&](double part) {
    return microseconds[static_cast<std::size_t>(static_cast<double>(microseconds.size()) * part)];
  };
  state.counters["p50_us"] = quantile(0.5);
  state.counters["p99.9_us"] = quantile(0.999);
  state.counters["max_us"] = microseconds.back();
}

void draw(benchmark::State& state, bool savesFire) {
  static const auto page = lessonTexts(kStrokes, kPiecesOfAStroke, kBoxes, kMoves, 0);
  HandClock clock;
  const ScopedClock scope(clock);
  for (auto _ : state) {
    const Folder folder;
    const auto storage = recordingStorage(folder);
    saveTexts(page, *storage);
    storage->saveFile(true);
    storage->saveQueue()->waitUntilAllOperationsAreFinished();
    const VectorList pieces = piecesToCome();
    std::vector<double> microseconds;
    microseconds.reserve(kCalls);

    auto due = SteadyClock::now();
    for (std::size_t index = 0; index < kCalls; ++index) {
      if (savesFire && index % kCallsBetweenSaves == 0) clock.advance(kBeyondSaveInterval);
      // Awaited awake: a thread that sleeps measures how it is woken.
      while (SteadyClock::now() < due) {
      }
      const auto start = SteadyClock::now();
      storage->saveVector(pieces[index]);
      const auto end = SteadyClock::now();
      microseconds.push_back(std::chrono::duration<double, std::micro>(end - start).count());
      due = end + kBetweenCalls;
    }
    reportLatencies(state, microseconds);
    storage->saveQueue()->waitUntilAllOperationsAreFinished();
  }
}

void drawWithoutSaves(benchmark::State& state) { draw(state, false); }
BENCHMARK(drawWithoutSaves)->Iterations(1)->Unit(benchmark::kMillisecond);

void drawWhileSavesFire(benchmark::State& state) { draw(state, true); }
BENCHMARK(drawWhileSavesFire)->Iterations(1)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace benchmarks
