// A page between its files and its records.
#include <fstream>
#include <iterator>
#include <string>

#include <benchmark/benchmark.h>
#include <expat.h>

#include "benchmarks/workload.h"

namespace benchmarks {
namespace {

constexpr std::size_t kStrokes = 500;
constexpr std::size_t kPositions = 100;

std::string readFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

/// A board whose page 1 has 500 strokes of 100 positions, written.
class WrittenBoard {
 public:
  WrittenBoard() : storage_(recordingStorage(folder_)) {
    for (const std::string& text : lessonTexts(kStrokes, kPositions, 0, 0, 0)) {
      storage_->saveVector(modelWithJSON<VelWbBaseVector>(text));
    }
    storage_->saveFile(true);
    storage_->saveQueue()->waitUntilAllOperationsAreFinished();
  }

  const Folder& folder() const { return folder_; }
  std::string snapFile() const { return *storage_->snapFile(); }
  std::string wholeFile() const { return *storage_->wholeFile(); }
  VWBVectorStorage& storage() { return *storage_; }

 private:
  Folder folder_;
  std::shared_ptr<VWBVectorStorage> storage_;
};

void parseSnapFileWithEmptyHandlers(benchmark::State& state) {
  const WrittenBoard board;
  const std::string text = readFile(board.snapFile());
  for (auto _ : state) {
    XML_Parser parser = XML_ParserCreate(nullptr);
    XML_SetElementHandler(
        parser, [](void*, const XML_Char*, const XML_Char**) {}, [](void*, const XML_Char*) {});
    XML_SetCharacterDataHandler(parser, [](void*, const XML_Char*, int) {});
    benchmark::DoNotOptimize(XML_Parse(parser, text.data(), static_cast<int>(text.size()), 1));
    XML_ParserFree(parser);
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(text.size()) * state.iterations());
}
BENCHMARK(parseSnapFileWithEmptyHandlers)->Unit(benchmark::kMillisecond);

void loadSnapFile(benchmark::State& state) {
  const WrittenBoard board;
  const auto storage = VWBVectorStorage::initWithPath(board.folder().path());
  for (auto _ : state) benchmark::DoNotOptimize(storage->snapWithPage(*page(1)));
  state.SetBytesProcessed(static_cast<std::int64_t>(readFile(board.snapFile()).size()) *
                          state.iterations());
}
BENCHMARK(loadSnapFile)->Unit(benchmark::kMillisecond);

void switchToAWrittenPage(benchmark::State& state) {
  const WrittenBoard board;
  for (auto _ : state) {
    const auto storage = VWBVectorStorage::initWithPath(board.folder().path());
    benchmark::DoNotOptimize(storage->switchPage(page(1)));
  }
}
BENCHMARK(switchToAWrittenPage)->Unit(benchmark::kMillisecond);

void writePage(benchmark::State& state) {
  WrittenBoard board;
  for (auto _ : state) {
    board.storage().setHasNewChange(true);
    board.storage().saveFile(true);
    board.storage().saveQueue()->waitUntilAllOperationsAreFinished();
  }
  const std::size_t bytes = readFile(board.snapFile()).size() + readFile(board.wholeFile()).size();
  state.SetBytesProcessed(static_cast<std::int64_t>(bytes) * state.iterations());
}
BENCHMARK(writePage)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace
}  // namespace benchmarks
