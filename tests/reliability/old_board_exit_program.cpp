// A process that opens boards of an earlier process, draws one stroke on each and ends at once.
// Started by old_board_exit_test.cpp with the way to end, a folder, a number of boards, and the
// identifier of the stroke. With the way "make" it makes the boards instead.
#include <atomic>
#include <cstdlib>
#include <memory>
#include <string>
#include <thread>
#include <unistd.h>
#include <vector>

#include "VelWhiteBoard/storage/vector_storage.h"
#include "VelWhiteBoard/vectors/commands.h"
#include "VelWhiteBoard/vectors/strokes.h"

#include "tests/support/gate.h"

namespace VelWhiteBoard {
namespace {

constexpr int kOldStrokes = 2000;
/// A process that does not end is killed after so many seconds, so that its test fails.
constexpr unsigned kLongestLife = 100;

using StoragePtr = std::shared_ptr<VWBVectorStorage>;

VectorPtr stroke(const std::string& identifier) {
  auto line = VelWbVecLine::initWithType("line");
  line->ID = identifier;
  line->x = 0.25;
  line->y = 0.5;
  line->ts = 7;
  return line;
}

/// Opens the boards at the page that all of them have.
std::vector<StoragePtr> opened(const std::string& folder, int count) {
  auto page = VelWbVecSwitchPage::initWithType("switchPage");
  page->WBID = 1;
  page->curPage = 1;
  std::vector<StoragePtr> boards;
  for (int i = 0; i < count; ++i) {
    boards.push_back(VWBVectorStorage::initWithPath(folder + "/" + std::to_string(i)));
    boards.back()->setIgnoreChanges(false);
    boards.back()->switchPage(page);
  }
  return boards;
}

void draw(const std::vector<StoragePtr>& boards, const std::string& identifier) {
  for (const StoragePtr& board : boards) {
    board->saveVector(stroke(identifier));
    board->saveFile(true);
  }
}

void make(const std::vector<StoragePtr>& boards) {
  for (const StoragePtr& board : boards) {
    for (int i = 0; i < kOldStrokes; ++i) board->saveVector(stroke("old " + std::to_string(i)));
    board->saveFile(true);
    board->saveQueue()->waitUntilAllOperationsAreFinished();
  }
}

/// A thread that goes on drawing and saving until the process is gone.
void drawForEver(const std::vector<StoragePtr>& boards) {
  auto begun = std::make_shared<Gate>();
  std::thread([boards, begun] {
    for (int i = 0;; ++i) {
      draw(boards, "busy " + std::to_string(i));
      begun->open();
    }
  }).detach();
  begun->pass();
}

/// A thread that waits again and again for what the others save.
void waitForEver(const std::vector<StoragePtr>& boards) {
  std::thread([boards] {
    for (;;) {
      for (const auto& board : boards) board->saveQueue()->waitUntilAllOperationsAreFinished();
    }
  }).detach();
}

/// Waited for without sleeping by what ends the process elsewhere, so that there is no time to
/// write before.
std::atomic<bool> isDrawn{false};

void endInsideAnOperation() {
  static OperationQueue& queue = *new OperationQueue;
  queue.addOperationWithBlock([] {
    while (!isDrawn) {
    }
    std::exit(0);
  });
}

void endOnAnotherThread() {
  std::thread([] {
    while (!isDrawn) {
    }
    std::exit(0);
  }).detach();
}

int end(const std::string& way, const std::vector<StoragePtr>& boards,
        const std::string& identifier) {
  if (way == "make") {
    make(boards);
    return 0;
  }
  if (way == "inside") endInsideAnOperation();
  if (way == "thread") endOnAnotherThread();
  if (way == "busy" || way == "busy_and_waiting") drawForEver(boards);
  if (way == "busy_and_waiting") waitForEver(boards);
  draw(boards, identifier);
  isDrawn = true;
  if (way == "exit") std::exit(0);
  while (way == "inside" || way == "thread") ::pause();
  return 0;
}

}  // namespace
}  // namespace VelWhiteBoard

int main(int count, char** arguments) {
  if (count != 5) return 2;
  ::alarm(VelWhiteBoard::kLongestLife);
  return VelWhiteBoard::end(
      arguments[1], VelWhiteBoard::opened(arguments[2], std::atoi(arguments[3])), arguments[4]);
}
