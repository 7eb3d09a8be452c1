// Very many vectors that are no strokes and no boxes, most of them of one identifier: the cost of
// each must not grow with their number.
#include <cstddef>
#include <memory>
#include <string>

#include <benchmark/benchmark.h>

#include "benchmarks/workload.h"

namespace benchmarks {
namespace {

/// `count` offsets, their identifiers by turns.
VectorList offsets(std::size_t count, const std::vector<std::string>& identifiers) {
  VectorList vectors;
  for (std::size_t index = 0; index < count; ++index) {
    auto offset = VelWbVecOffset::initWithType("offset");
    offset->ID = identifiers[index % identifiers.size()];
    offset->ts = kLessonStart + static_cast<double>(index);
    vectors.push_back(std::move(offset));
  }
  return vectors;
}

VectorList removes(std::size_t count, const std::string& identifier) {
  VectorList vectors;
  for (std::size_t index = 0; index < count; ++index) {
    auto remove = VelWbVecRemove::initWithType("remove");
    remove->ID = "r_" + std::to_string(index);
    remove->rmID = identifier;
    vectors.push_back(std::move(remove));
  }
  return vectors;
}

VectorList magnifiers(std::size_t count) {
  VectorList vectors;
  for (std::size_t index = 0; index < count; ++index) {
    auto magnifier = VelWbBaseVector::initWithType("magnifier");
    magnifier->ID = "m_" + std::to_string(index);
    vectors.push_back(std::move(magnifier));
  }
  return vectors;
}

/// Appends `vectors` to a page that holds `before` already; only that is timed.
void append(benchmark::State& state, const VectorList& before, const VectorList& vectors,
            std::uint64_t pageNumber) {
  const Folder folder(parentInMemory());
  const auto storage = recordingStorage(folder);  // page 1 is current
  storage->appendVectors(before, page(pageNumber));
  storage->saveQueue()->waitUntilAllOperationsAreFinished();
  state.ResumeTiming();
  storage->appendVectors(vectors, page(pageNumber));
  state.PauseTiming();
  storage->saveQueue()->waitUntilAllOperationsAreFinished();
}

void appendOffsetsOfOneIdentifier(benchmark::State& state) {
  const auto count = static_cast<std::size_t>(state.range(0));
  for (auto _ : state) {
    state.PauseTiming();
    append(state, {}, offsets(count, {"o"}), 2);
    state.ResumeTiming();
  }
}
BENCHMARK(appendOffsetsOfOneIdentifier)
    ->Arg(4'000)
    ->Arg(16'000)
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);

void appendRemovesOfOneIdentifier(benchmark::State& state) {
  const auto count = static_cast<std::size_t>(state.range(0));
  for (auto _ : state) {
    state.PauseTiming();
    append(state, offsets(count, {"o"}), removes(count, "o"), 2);
    state.ResumeTiming();
  }
}
BENCHMARK(appendRemovesOfOneIdentifier)
    ->Arg(5'000)
    ->Arg(20'000)
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);

// On the current page an offset that is not the last one stands there once more with each vector
// of its identifier, and a remove takes all of them.
void removeOneOfAlternatingOffsets(benchmark::State& state) {
  const auto count = static_cast<std::size_t>(state.range(0));
  for (auto _ : state) {
    state.PauseTiming();
    append(state, offsets(count, {"o", "p"}), removes(1, "o"), 1);
    state.ResumeTiming();
  }
}
BENCHMARK(removeOneOfAlternatingOffsets)
    ->Arg(10'000)
    ->Arg(40'000)
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);

void appendMagnifiersAmongStrokes(benchmark::State& state) {
  const auto count = static_cast<std::size_t>(state.range(0));
  for (auto _ : state) {
    state.PauseTiming();
    append(state, decoded(lessonTexts(count, 1, 0, 0, 0)), magnifiers(count), 1);
    state.ResumeTiming();
  }
}
BENCHMARK(appendMagnifiersAmongStrokes)
    ->Arg(10'000)
    ->Arg(40'000)
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace benchmarks
