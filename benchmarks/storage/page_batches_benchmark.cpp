// The work for a batch for each of many pages, by the number of pages.
#include <memory>

#include <benchmark/benchmark.h>

#include "benchmarks/storage/page_batches.h"

namespace benchmarks {
namespace {

void append(benchmark::State& state, Writes writes) {
  for (auto _ : state) {
    state.PauseTiming();
    auto batches = std::make_unique<PageBatches>(state.range(0), writes);
    state.ResumeTiming();
    batches->append();
    state.PauseTiming();
    batches.reset();
    state.ResumeTiming();
  }
}

// The processor time of all threads, so that the queue's work counts.
void configure(benchmark::internal::Benchmark* benchmark) {
  benchmark->Arg(200)->Arg(400)->Arg(800)->Iterations(1)->MeasureProcessCPUTime()->Unit(
      benchmark::kMillisecond);
}

void appendPageByPage(benchmark::State& state) { append(state, Writes::kAwaited); }
BENCHMARK(appendPageByPage)->Apply(configure);

void appendWhilePagesAreWritten(benchmark::State& state) { append(state, Writes::kRunning); }
BENCHMARK(appendWhilePagesAreWritten)->Apply(configure);

void appendWithTheQueueHeldUp(benchmark::State& state) { append(state, Writes::kHeldUp); }
BENCHMARK(appendWithTheQueueHeldUp)->Apply(configure);

}  // namespace
}  // namespace benchmarks
