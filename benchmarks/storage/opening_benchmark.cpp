// A page from its files: to its records, and through a page switch.
#include <benchmark/benchmark.h>

#include "benchmarks/written_board.h"

namespace benchmarks {
namespace {

/// 500 strokes in the snapshot, 60,000 pieces in the log.
WrittenBoard& board() {
  static WrittenBoard board(500, 120);
  return board;
}

void parseSnapFileWithEmptyHandlers(benchmark::State& state) {
  const std::string path = board().snapFile();
  for (auto _ : state) {
    if (!parseWithEmptyHandlers(path)) state.SkipWithError("no XML");
  }
}
BENCHMARK(parseSnapFileWithEmptyHandlers)->Unit(benchmark::kMillisecond);

void loadSnapFile(benchmark::State& state) {
  const auto storage = VWBVectorStorage::initWithPath(board().folder().path());
  for (auto _ : state) benchmark::DoNotOptimize(storage->snapWithPage(*page(1)));
}
BENCHMARK(loadSnapFile)->Unit(benchmark::kMillisecond);

void switchToAWrittenPage(benchmark::State& state) {
  for (auto _ : state) {
    state.PauseTiming();
    auto storage = VWBVectorStorage::initWithPath(board().folder().path());
    storage->setIgnoreChanges(false);
    state.ResumeTiming();
    auto entries = storage->switchPage(page(1));
    state.PauseTiming();
    if (entries.size() != 500) state.SkipWithError("not the page");
    storage->saveQueue()->waitUntilAllOperationsAreFinished();
    static_cast<void>(storage->wholeVectorss());  // the log's records are made in the background
    entries.clear();
    storage.reset();
    state.ResumeTiming();
  }
}
BENCHMARK(switchToAWrittenPage)->Unit(benchmark::kMillisecond);

// What the pen meets when the log is wanted after all; no target, but the price of the above.
void readTheLog(benchmark::State& state) {
  for (auto _ : state) {
    state.PauseTiming();
    auto storage = VWBVectorStorage::initWithPath(board().folder().path());
    storage->switchPage(page(1));
    state.ResumeTiming();
    auto lists = storage->wholeVectorss();
    state.PauseTiming();
    lists.clear();
    storage.reset();
    state.ResumeTiming();
  }
}
BENCHMARK(readTheLog)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace benchmarks
