// Going through pages that are at hand, with little and with much in them.
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include <benchmark/benchmark.h>

#include "benchmarks/workload.h"

namespace benchmarks {
namespace {

constexpr std::uint64_t kPages = 200;
constexpr std::size_t kEntries = 20;

/// 200 cached pages of 20 strokes each; the argument is the number of positions of a stroke.
class CachedPages {
 public:
  explicit CachedPages(std::int64_t positions)
      : storage_(VWBVectorStorage::initWithPath(folder_.path())) {
    for (std::uint64_t number = 1; number <= kPages; ++number) {
      pages_.push_back(page(number));
      lists_[pages_.back()->pageInfo()] = strokes(number, positions);
    }
    storage_->setSnapVectorss(lists_);
    storage_->setWholeVectorss(lists_);
    storage_->setIgnoreChanges(false);
    // As in any client there is a second thread, so that counting references costs what it does.
    storage_->saveQueue()->addOperationWithBlock([] {});
    storage_->saveQueue()->waitUntilAllOperationsAreFinished();
  }
  ~CachedPages() { storage_->saveQueue()->waitUntilAllOperationsAreFinished(); }
  CachedPages(const CachedPages&) = delete;
  CachedPages& operator=(const CachedPages&) = delete;

  VWBVectorStorage& storage() { return *storage_; }
  const std::unordered_map<std::string, VectorList>& lists() const { return lists_; }
  /// The pages one after the other, again and again.
  const std::shared_ptr<VelWbVecSwitchPage>& nextPage() { return pages_[next_++ % kPages]; }

  static CachedPages& with(std::int64_t positions) {
    static std::unordered_map<std::int64_t, std::unique_ptr<CachedPages>> all;
    auto& pages = all[positions];
    if (!pages) pages = std::make_unique<CachedPages>(positions);
    return *pages;
  }

 private:
  static VectorList strokes(std::uint64_t page, std::int64_t positions) {
    VectorList strokes;
    for (std::size_t entry = 0; entry < kEntries; ++entry) {
      auto stroke = VelWbVecLine::initWithType("line");
      stroke->ID = "u1_" + std::to_string(page * kEntries + entry);
      stroke->path.emplace();
      for (std::int64_t index = 0; index < positions; ++index) {
        const auto step = static_cast<double>(index);
        stroke->path->push_back({step, step, kLessonStart + step});
      }
      strokes.push_back(std::move(stroke));
    }
    return strokes;
  }

  Folder folder_;
  std::shared_ptr<VWBVectorStorage> storage_;
  std::vector<std::shared_ptr<VelWbVecSwitchPage>> pages_;
  std::unordered_map<std::string, VectorList> lists_;
  std::uint64_t next_ = 0;
};

// Each switch looks through the list of visits, so it begins empty and gets as long as in a lesson.
void switchAmongCachedPages(benchmark::State& state) {
  CachedPages& pages = CachedPages::with(state.range(0));
  pages.storage().setPageArray({});
  for (auto _ : state) benchmark::DoNotOptimize(pages.storage().switchPage(pages.nextPage()));
}
BENCHMARK(switchAmongCachedPages)
    ->Arg(10)
    ->Arg(1'000)
    ->Iterations(400)
    ->Unit(benchmark::kMicrosecond);

void snapOfACachedPage(benchmark::State& state) {
  CachedPages& pages = CachedPages::with(state.range(0));
  for (auto _ : state) benchmark::DoNotOptimize(pages.storage().snapWithPage(*pages.nextPage()));
}
BENCHMARK(snapOfACachedPage)->Arg(10)->Arg(1'000)->Unit(benchmark::kMicrosecond);

void askWhetherACachedPageHasVectors(benchmark::State& state) {
  CachedPages& pages = CachedPages::with(state.range(0));
  for (auto _ : state) {
    benchmark::DoNotOptimize(pages.storage().hasVectorsWithPage(*pages.nextPage()));
  }
}
BENCHMARK(askWhetherACachedPageHasVectors)->Arg(10)->Arg(1'000)->Unit(benchmark::kMicrosecond);

// The baseline of all three: the key, the map, a copy of the list.
void copyAListFromAPlainMap(benchmark::State& state) {
  CachedPages& pages = CachedPages::with(state.range(0));
  for (auto _ : state) {
    VectorList list = pages.lists().find(pages.nextPage()->pageInfo())->second;
    benchmark::DoNotOptimize(list);
  }
}
BENCHMARK(copyAListFromAPlainMap)->Arg(10)->Arg(1'000)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace benchmarks
