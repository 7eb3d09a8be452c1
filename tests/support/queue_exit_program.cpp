// A process that ends while operations are still queued. Started by queue_exit_test.cpp with the
// way to end and a folder; what is in the folder afterwards is what was not lost.
#include <cstdlib>
#include <fstream>
#include <functional>
#include <memory>
#include <string>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

#include "VelWhiteBoard/foundation/queue/operation_queue.h"
#include "VelWhiteBoard/foundation/queue/shared_threads.h"
#include "VelWhiteBoard/foundation/records/model_mapping.h"
#include "VelWhiteBoard/vectors/strokes.h"

#include "tests/support/gate.h"

namespace VelWhiteBoard {
namespace {

constexpr int kQueues = 20;
constexpr int kFiles = 25;

// Never destroyed: the last operations need it.
std::string& folder = *new std::string;

void write(const std::string& name, const std::string& text) {
  std::ofstream(folder + "/" + name) << text;
}

std::function<void()> writing(const std::string& name) {
  return [name] { write(name, name); };
}

/// There before the first queue, so it is destroyed after the queues have been drained.
struct AddsWhileItIsDestroyed {
  ~AddsWhileItIsDestroyed() {
    if (queue == nullptr) return;
    bool ranAtOnce = false;
    queue->addOperationWithBlock([&, thread = std::this_thread::get_id()] {
      ranAtOnce = thread == std::this_thread::get_id();
    });
    queue->waitUntilAllOperationsAreFinished();
    OperationQueue newOne;
    newOne.addOperationWithBlock(writing("late"));
    write("at-once", ranAtOnce ? "yes" : "no");
  }
  std::unique_ptr<OperationQueue> queue;
} addsWhileItIsDestroyed;

OperationQueue ofStaticStorage;

std::vector<OperationQueue>& filledQueues() {
  static auto* const queues = new std::vector<OperationQueue>(kQueues);
  for (int q = 0; q < kQueues; ++q) {
    for (int i = 0; i < kFiles; ++i) {
      (*queues)[static_cast<std::size_t>(q)].addOperationWithBlock(
          writing(std::to_string(q) + "-" + std::to_string(i)));
    }
  }
  return *queues;
}

void addChain(OperationQueue& queue, int left) {
  queue.addOperationWithBlock([&queue, left] {
    write("chain-" + std::to_string(left), "");
    if (left > 1) addChain(queue, left - 1);
  });
}

[[noreturn]] void endInsideAnOperation() {
  static OperationQueue* const queue = new OperationQueue;
  Gate never;
  Gate allAdded;
  queue->addOperationWithBlock([&] {
    allAdded.pass();
    std::exit(0);
  });
  for (int i = 0; i < 20; ++i) queue->addOperationWithBlock(writing("behind-" + std::to_string(i)));
  filledQueues();
  allAdded.open();
  never.pass();
  std::abort();
}

/// Ends the process inside an operation that a waiting operation of another queue runs: all other
/// shared threads hang, so no other can.
[[noreturn]] void endInsideAnOperationThatAnotherWaitsFor() {
  constexpr int kOtherThreads = static_cast<int>(SharedThreads::kMaxThreads) - 1;
  static OperationQueue* const waiting = new OperationQueue;
  static auto* const hanging = new std::vector<OperationQueue>(kOtherThreads);
  addsWhileItIsDestroyed.queue = std::make_unique<OperationQueue>();
  OperationQueue& awaited = *addsWhileItIsDestroyed.queue;
  Meeting allHang(kOtherThreads + 1);
  Gate never;
  Gate gate;
  for (OperationQueue& queue : *hanging) {
    queue.addOperationWithBlock([&] {
      allHang.arrive();
      gate.pass();
    });
  }
  allHang.arrive();
  waiting->addOperationWithBlock([&] {
    awaited.addOperationWithBlock([&] {
      gate.open();
      std::exit(0);
    });
    awaited.addOperationWithBlock(writing("behind"));
    awaited.waitUntilAllOperationsAreFinished();
  });
  waiting->addOperationWithBlock(writing("behind-both"));
  never.pass();
  std::abort();
}

/// Other threads go on adding to a queue of their own and to one that has work, and waiting for
/// both.
void endWhileOthersGoOn() {
  static auto* const queues = new std::vector<OperationQueue>(2);
  static auto* const begun = new Meeting(4);
  std::function<void(std::size_t)> goOn = [](std::size_t at) {
    begun->arrive();
    for (int round = 0;; ++round) {
      (*queues)[at % 2].addOperationWithBlock([] {});
      if (at == 2 && round % 1000 == 0) (*queues)[1].waitUntilAllOperationsAreFinished();
    }
  };
  for (const std::size_t at : {0U, 1U, 2U}) std::thread(goOn, at).detach();
  begun->arrive();
  filledQueues();
  (*queues)[1].addOperationWithBlock(writing("behind"));
}

void addForEver(OperationQueue& queue) {
  queue.addOperationWithBlock([&queue] { addForEver(queue); });
}

/// The last operation runs on the main thread, since all others wait for it, and parses a text as
/// the main thread has done before.
void endWithATextToRead() {
  constexpr int kThreads = static_cast<int>(SharedThreads::kMaxThreads);
  static auto* const hanging = new std::vector<OperationQueue>(kThreads);
  static auto* const allHang = new Meeting(kThreads + 1);
  static auto* const gate = new Gate;
  const std::string text =
      R"({"type": "line", "ID": ")" + std::string(100'000, 'x') + R"(", "path": [[1, 2, 3]]})";
  const auto parse = [text] {
    const auto line = std::dynamic_pointer_cast<VelWbVecLine>(modelWithJSON<VelWbVecLine>(text));
    return line != nullptr && line->ID->size() == 100'000 && line->path->size() == 1;
  };
  if (!parse()) return;
  for (OperationQueue& queue : *hanging) {
    queue.addOperationWithBlock([] {
      allHang->arrive();
      gate->pass();
    });
  }
  allHang->arrive();
  ofStaticStorage.addOperationWithBlock([parse] {
    write("parsed", parse() ? "yes" : "no");
    gate->open();
  });
}

int endInAForkedChild() {
  filledQueues();
  if (::fork() == 0) std::exit(0);
  int status = -1;
  ::wait(&status);
  return WIFEXITED(status) ? WEXITSTATUS(status) : 1;
}

int end(const std::string& way) {
  if (way == "return") {
    filledQueues();
  } else if (way == "exit") {
    filledQueues();
    std::exit(0);
  } else if (way == "dropped") {
    filledQueues().clear();
  } else if (way == "chain") {
    addChain(ofStaticStorage, 100);
  } else if (way == "late") {
    addsWhileItIsDestroyed.queue = std::make_unique<OperationQueue>();
    addsWhileItIsDestroyed.queue->addOperationWithBlock(writing("early"));
  } else if (way == "inside") {
    endInsideAnOperation();
  } else if (way == "inside-awaited") {
    endInsideAnOperationThatAnotherWaitsFor();
  } else if (way == "others") {
    endWhileOthersGoOn();
  } else if (way == "forever") {
    addForEver(ofStaticStorage);
    filledQueues();
  } else if (way == "text") {
    endWithATextToRead();
  } else if (way == "fork") {
    return endInAForkedChild();
  } else {
    return 2;
  }
  return 0;
}

}  // namespace
}  // namespace VelWhiteBoard

int main(int count, char** arguments) {
  if (count != 3) return 2;
  ::alarm(100);  // a process that does not end fails its test
  VelWhiteBoard::folder = arguments[2];
  return VelWhiteBoard::end(arguments[1]);
}
