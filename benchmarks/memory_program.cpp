// How much memory strokes, logs, boards, batches and the loading of a page take, and how many
// threads and file handles. Prints one figure a line.
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include "benchmarks/counted_memory.h"
#include "benchmarks/storage/page_batches.h"
#include "benchmarks/written_board.h"

namespace benchmarks {
namespace {

void print(const char* name, std::size_t figure) { std::cout << name << ' ' << figure << '\n'; }
void print(const char* name, std::size_t bytes, std::size_t count) {
  std::cout << name << ' ' << static_cast<double>(bytes) / static_cast<double>(count) << '\n';
}

void longStroke() {
  constexpr std::size_t kPositions = 1'000'000;
  const auto stroke = std::dynamic_pointer_cast<VelWbVecLine>(
      modelWithJSON<VelWbBaseVector>(pieceText("u1_100", 0)));
  if (!stroke) return;
  const std::size_t before = memoryInUse();
  for (std::size_t index = 1; index <= kPositions; ++index) {
    stroke->append(*modelWithJSON<VelWbBaseVector>(pieceText("u1_100", index)));
  }
  print("bytes_of_a_position", memoryInUse() - before, kPositions);
}

// Everything that a piece adds: its place in the log, and its position in the stroke besides.
void loggedPieces() {
  constexpr std::size_t kPieces = 100'000;
  const Folder folder(parentInMemory());
  const auto storage = recordingStorage(folder);
  const std::size_t before = memoryInUse();
  for (std::size_t index = 0; index < kPieces; ++index) {
    storage->saveVector(modelWithJSON<VelWbBaseVector>(pieceText("u1_100", index)));
  }
  print("bytes_of_a_logged_piece", memoryInUse() - before, kPieces);
}

/// Number of threads of this process; 0 where the system does not tell.
std::size_t threads() {
  std::ifstream status("/proc/self/status");
  for (std::string word; status >> word;) {
    std::size_t count = 0;
    if (word == "Threads:" && status >> count) return count;
  }
  return 0;
}

void manyBoards() {
  constexpr std::size_t kBoards = 10'000;
  const Folder folder(parentInMemory());
  std::vector<std::shared_ptr<VWBVectorStorage>> boards;
  boards.reserve(kBoards);
  const std::size_t before = memoryInUse();
  for (std::size_t index = 0; index < kBoards; ++index) {
    boards.push_back(VWBVectorStorage::initWithPath(folder.path() + "/" + std::to_string(index)));
  }
  print("bytes_of_an_empty_storage", memoryInUse() - before, kBoards);
  // Every queue has run something; then only the threads that stay are there.
  for (const auto& board : boards) board->saveQueue()->addOperationWithBlock([] {});
  for (const auto& board : boards) board->saveQueue()->waitUntilAllOperationsAreFinished();
  print("boards_open", boards.size());
  print("threads_with_all_boards_open", threads());
  print("bytes_of_a_storage_whose_queue_has_run", memoryInUse() - before, kBoards);
}

void loading() {
  WrittenBoard board(500, 100);
  const std::size_t file = readFile(board.snapFile()).size();
  const auto storage = VWBVectorStorage::initWithPath(board.folder().path());
  const std::size_t before = memoryInUse();
  forgetPeakMemory();
  const VectorList records = storage->snapWithPage(*page(1));
  const std::size_t peak = peakMemory();
  print("bytes_of_the_page_file", file);
  print("bytes_of_its_records", memoryInUse() - before);
  print("peak_bytes_beyond_the_records", peak - memoryInUse());
}

// Beyond the records, which the client has made.
void batches(const char* name, Writes writes) {
  for (const std::int64_t pages : {200, 800}) {
    PageBatches batches(pages, writes);
    const std::size_t before = memoryInUse();
    forgetPeakMemory();
    batches.append();
    const std::string figure = name + std::to_string(pages);
    print(figure.c_str(), peakMemory() - before, static_cast<std::size_t>(pages));
  }
}

/// Number of open file handles of this process; 0 where the system does not tell.
std::size_t openHandles() {
  std::error_code unknown;
  std::filesystem::directory_iterator handles("/proc/self/fd", unknown);
  return static_cast<std::size_t>(std::distance(begin(handles), end(handles)));
}

void manyPages() {
  constexpr std::uint64_t kPages = 100;
  const Folder folder(parentInMemory());
  const auto visit = [&folder](bool draws) {
    const auto storage = VWBVectorStorage::initWithPath(folder.path());
    storage->setIgnoreChanges(false);
    for (std::uint64_t number = 1; number <= kPages; ++number) {
      storage->switchPage(page(number));
      if (draws) saveTexts({pieceText("u1_100", 0)}, *storage);
    }
    storage->saveFile(true);
    return storage;
  };
  visit(true)->saveQueue()->waitUntilAllOperationsAreFinished();
  const std::size_t before = openHandles();
  const auto storage = visit(false);
  storage->saveQueue()->waitUntilAllOperationsAreFinished();
  print("handles_after_100_pages", openHandles() - before);
}

}  // namespace
}  // namespace benchmarks

int main() {
  benchmarks::longStroke();
  benchmarks::loggedPieces();
  benchmarks::manyBoards();
  benchmarks::loading();
  benchmarks::batches("bytes_of_a_batch_awaited/", benchmarks::Writes::kAwaited);
  benchmarks::batches("bytes_of_a_batch_written_meanwhile/", benchmarks::Writes::kRunning);
  benchmarks::batches("bytes_of_a_batch_held_up/", benchmarks::Writes::kHeldUp);
  benchmarks::manyPages();
}
