// What a pen's piece costs while many pages wait to be written.
#include <cstddef>
#include <string>

#include <benchmark/benchmark.h>

#include "benchmarks/storage/held_queue.h"
#include "benchmarks/workload.h"
#include "tests/support/hand_clock.h"

namespace benchmarks {
namespace {

constexpr std::size_t kStrokes = 100;
constexpr std::size_t kPieces = 20'000;

void savePieceWhilePagesWait(benchmark::State& state) {
  const auto pages = static_cast<std::uint64_t>(state.range(0));
  const HandClock clock;  // stands still, so that no save falls due
  const ScopedClock scope(clock);
  const Folder folder(parentInMemory());
  const auto storage = recordingStorage(folder);
  saveTexts(lessonTexts(kStrokes, 10, 0, 0, 0), *storage);
  VectorList pieces;
  for (std::size_t index = 0; index < kPieces; ++index) {
    const double time = kLessonStart + 1'000 + 0.01 * static_cast<double>(index);
    pieces.push_back(
        modelWithJSON<VelWbBaseVector>(lineText(lessonStroke(index % kStrokes), 0.1, 0.2, time)));
  }
  const HeldQueue held(storage->saveQueue());
  for (std::uint64_t number = 2; number <= pages + 1; ++number) {
    storage->appendVectors(decoded({pieceText("u1_100", 0)}), page(number));
  }
  storage->saveFile(true);
  std::size_t next = 0;
  for (auto _ : state) storage->saveVector(pieces[next++]);
}
BENCHMARK(savePieceWhilePagesWait)
    ->Arg(1'000)
    ->Arg(2'000)
    ->Arg(4'000)
    ->Iterations(kPieces)
    ->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace benchmarks
