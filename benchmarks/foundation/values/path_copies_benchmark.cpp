// A stroke that is copied after each position that it gets, by the numbers of a position.
#include <cstddef>
#include <memory>
#include <vector>

#include <benchmark/benchmark.h>

#include "benchmarks/workload.h"

namespace benchmarks {
namespace {

constexpr int kPositions = 40'000;

void copyAfterEachPosition(benchmark::State& state) {
  std::vector<double> position(static_cast<std::size_t>(state.range(0)));
  for (auto _ : state) {
    const auto stroke = VelWbVecLine::initWithType("line");
    stroke->path.emplace();
    std::shared_ptr<Record> copy;
    for (int index = 0; index < kPositions; ++index) {
      position.back() = index;
      stroke->path->push_back(position);
      copy = stroke->copyWithZone();  // kept until the next one, as by a save
    }
    benchmark::DoNotOptimize(copy);
  }
}
BENCHMARK(copyAfterEachPosition)->Arg(2)->Arg(3)->Arg(4)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace benchmarks
