// A process that ends while a storage's writes are queued. Started by storage_exit_test.cpp with
// the way to end, a directory, a number of pages and a number of vectors a page.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "VelWhiteBoard/storage/vector_storage.h"
#include "VelWhiteBoard/vectors/commands.h"
#include "VelWhiteBoard/vectors/strokes.h"

namespace VelWhiteBoard {
namespace {

VectorPtr stroke(int number) {
  auto line = VelWbVecLine::initWithType("line");
  line->ID = "line " + std::to_string(number);
  line->x = 0.25;
  line->y = number;
  line->ts = number;
  return line;
}

std::shared_ptr<VelWbVecSwitchPage> page(int number) {
  auto page = VelWbVecSwitchPage::initWithType("switchPage");
  page->WBID = 1;
  page->curPage = static_cast<std::uint64_t>(number);
  page->ts = number;
  return page;
}

// Destroyed by the process's end, like a client's own.
std::shared_ptr<VWBVectorStorage> ofStaticStorage;

void fill(VWBVectorStorage& storage, int pages, int vectors) {
  storage.setIgnoreChanges(false);
  for (int number = 1; number <= pages; ++number) {
    storage.switchPage(page(number));  // writes the page before
    for (int i = 0; i < vectors; ++i) storage.saveVector(stroke(i));
  }
  storage.saveFile(true);
  storage.appendVectors({stroke(1), stroke(2)}, page(pages + 1));
}

int end(const std::string& way, const std::string& directory, int pages, int vectors) {
  auto storage = VWBVectorStorage::initWithPath(directory);
  fill(*storage, pages, vectors);
  if (way == "return") {
    ofStaticStorage = storage;
  } else if (way == "exit") {
    std::exit(0);
  } else if (way == "forgotten") {
    // A client that never lets go of it.
    static const auto* const kept = new std::shared_ptr<VWBVectorStorage>(storage);
    static_cast<void>(kept);
  } else if (way == "dropped") {
    storage.reset();
  } else if (way == "waited") {
    // Dropped with a full queue in a process that goes on.
    const auto queue = storage->saveQueue();
    storage.reset();
    queue->waitUntilAllOperationsAreFinished();
    std::_Exit(0);
  } else {
    return 2;
  }
  return 0;
}

}  // namespace
}  // namespace VelWhiteBoard

int main(int count, char** arguments) {
  if (count != 5) return 2;
  return VelWhiteBoard::end(arguments[1], arguments[2], std::atoi(arguments[3]),
                            std::atoi(arguments[4]));
}
