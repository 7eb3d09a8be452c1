// JSON text of pieces in, decoded and saved: one stroke, and a lesson page.
#include <map>
#include <memory>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "benchmarks/plain_board.h"
#include "benchmarks/workload.h"

namespace benchmarks {
namespace {

const std::vector<std::string>& strokeOf(std::int64_t pieces) {
  static std::map<std::int64_t, std::vector<std::string>> strokes;
  auto& texts = strokes[pieces];
  if (texts.empty()) texts = strokeTexts("u1_100", static_cast<std::size_t>(pieces));
  return texts;
}

const std::vector<std::string>& lessonPage() {
  static const auto texts = lessonTexts(2'000, 20, 500, 20, 200);
  return texts;
}

void countPieces(benchmark::State& state, std::size_t pieces) {
  state.SetItemsProcessed(static_cast<std::int64_t>(pieces) * state.iterations());
}

void foldIntoPlainBoard(benchmark::State& state, const std::vector<std::string>& texts) {
  for (auto _ : state) {
    state.PauseTiming();
    auto board = std::make_unique<PlainBoard>();
    state.ResumeTiming();
    for (const std::string& text : texts) board->take(text);
    state.PauseTiming();
    board.reset();
    state.ResumeTiming();
  }
  countPieces(state, texts.size());
}

void foldIntoStorage(benchmark::State& state, const std::vector<std::string>& texts) {
  for (auto _ : state) {
    state.PauseTiming();
    auto folder = std::make_unique<Folder>(parentInMemory());
    auto storage = recordingStorage(*folder);
    state.ResumeTiming();
    saveTexts(texts, *storage);
    state.PauseTiming();
    storage.reset();
    folder.reset();
    state.ResumeTiming();
  }
  countPieces(state, texts.size());
}

void strokeIntoPlainBoard(benchmark::State& state) {
  foldIntoPlainBoard(state, strokeOf(state.range(0)));
}
BENCHMARK(strokeIntoPlainBoard)->Arg(10'000)->Arg(100'000)->Unit(benchmark::kMillisecond);
BENCHMARK(strokeIntoPlainBoard)->Arg(1'000'000)->Iterations(1)->Unit(benchmark::kMillisecond);

void strokeIntoStorage(benchmark::State& state) {
  foldIntoStorage(state, strokeOf(state.range(0)));
}
BENCHMARK(strokeIntoStorage)->Arg(10'000)->Arg(100'000)->Unit(benchmark::kMillisecond);
BENCHMARK(strokeIntoStorage)->Arg(1'000'000)->Iterations(1)->Unit(benchmark::kMillisecond);

void lessonIntoPlainBoard(benchmark::State& state) { foldIntoPlainBoard(state, lessonPage()); }
BENCHMARK(lessonIntoPlainBoard)->Unit(benchmark::kMillisecond);

void lessonIntoStorage(benchmark::State& state) { foldIntoStorage(state, lessonPage()); }
BENCHMARK(lessonIntoStorage)->Unit(benchmark::kMillisecond);

// Without the decoding; no target of its own, but it tells where the time of the above goes.
void saveVectorAlone(benchmark::State& state) {
  const auto& texts = strokeOf(state.range(0));
  for (auto _ : state) {
    state.PauseTiming();
    auto folder = std::make_unique<Folder>(parentInMemory());
    auto storage = recordingStorage(*folder);
    VectorList pieces = decoded(texts);
    state.ResumeTiming();
    for (const VectorPtr& piece : pieces) storage->saveVector(piece);
    state.PauseTiming();
    storage.reset();
    folder.reset();
    pieces.clear();
    state.ResumeTiming();
  }
  countPieces(state, texts.size());
}
BENCHMARK(saveVectorAlone)->Arg(10'000)->Arg(100'000)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace benchmarks
