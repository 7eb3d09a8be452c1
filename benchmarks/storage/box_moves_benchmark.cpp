// A box that moves on a page full of boxes.
#include <benchmark/benchmark.h>

#include "benchmarks/workload.h"

namespace benchmarks {
namespace {

constexpr std::size_t kBoxes = 10'000;

void moveOfABoxAmongTenThousand(benchmark::State& state) {
  Folder folder(parentInMemory());
  const auto storage = recordingStorage(folder);
  saveTexts(lessonTexts(0, 0, kBoxes, 0, 0), *storage);
  const VectorList moves = decoded(lessonTexts(0, 0, kBoxes, 1, 0));
  std::size_t next = 0;
  for (auto _ : state) {
    // A copy, because the storage keeps what it is given.
    storage->saveVector(moves[next]->copyWithZone());
    next = (next + 1) % moves.size();
  }
}
BENCHMARK(moveOfABoxAmongTenThousand)->Unit(benchmark::kMicrosecond)->Iterations(20'000);

}  // namespace
}  // namespace benchmarks
