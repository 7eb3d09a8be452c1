// A vector without an identifier, which is given one, by the number of cached pages.
#include <cstddef>
#include <string>
#include <unordered_map>

#include <benchmark/benchmark.h>

#include "benchmarks/workload.h"
#include "tests/support/hand_clock.h"

namespace benchmarks {
namespace {

constexpr std::size_t kVectors = 10'000;

VectorPtr unnamedLine() {
  auto line = VelWbVecLine::initWithType("line");
  line->ts = kLessonStart;
  return line;
}

void save(benchmark::State& state, bool areOnAPage) {
  const HandClock clock;  // stands still, so that no save falls due
  const ScopedClock scope(clock);
  const Folder folder(parentInMemory());
  const auto storage = recordingStorage(folder);
  std::unordered_map<std::string, VectorList> lists;
  for (std::uint64_t number = 2; number <= static_cast<std::uint64_t>(state.range(0)); ++number) {
    lists[page(number)->pageInfo()] = decoded({pieceText("u1_100", 0)});
  }
  VectorList vectors;
  for (std::size_t index = 0; index < kVectors; ++index) vectors.push_back(unnamedLine());
  if (areOnAPage) lists[page(2)->pageInfo()] = vectors;
  lists[page(1)->pageInfo()] = {};
  storage->setSnapVectorss(lists);
  storage->setWholeVectorss(lists);
  std::size_t next = 0;
  for (auto _ : state) storage->saveVector(vectors[next++]);
  storage->saveQueue()->waitUntilAllOperationsAreFinished();
}

void saveUnnamed(benchmark::State& state) { save(state, false); }
BENCHMARK(saveUnnamed)->Arg(10)->Arg(4'000)->Iterations(kVectors)->Unit(benchmark::kMicrosecond);

// The page where it stands must find it by its new identifier.
void saveUnnamedOfAnotherPage(benchmark::State& state) { save(state, true); }
BENCHMARK(saveUnnamedOfAnotherPage)
    ->Arg(10)
    ->Arg(4'000)
    ->Iterations(kVectors)
    ->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace benchmarks
