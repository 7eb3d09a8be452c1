// Plays a lesson into a board at full speed until somebody kills it.
//
//   crash_player DIRECTORY LESSON SEED [STEPS]
//
// Before it queues a write it announces on its standard output what the file is going to hold, one
// line a file:
//
//   file NAME DIGEST    from now on the file may hold this generation
//   clear               from now on any file may be missing
//   settled             all that was announced has been written
//   lost NAME           a board that was opened again showed something else than was queued for
//   this
//                       file
//   over                STEPS steps are done (without STEPS it never ends by itself)
//
// Lines are written at once and whole, so whoever reads them after a kill knows everything.
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <map>
#include <memory>
#include <random>
#include <semaphore>
#include <string>
#include <unistd.h>
#include <vector>

#include "VelWhiteBoard/foundation/records/model_mapping.h"
#include "VelWhiteBoard/foundation/values/clock.h"
#include "VelWhiteBoard/storage/vector_storage.h"
#include "VelWhiteBoard/vectors/commands.h"

#include "tests/reliability/generations.h"
#include "tests/support/manual_clock.h"

namespace VelWhiteBoard {
namespace {

constexpr std::int64_t kBoards = 2;
constexpr std::int64_t kPagesOfABoard = 3;

void announce(const std::string& line) {
  const std::string text = line + "\n";
  if (::write(STDOUT_FILENO, text.data(), text.size()) != static_cast<ssize_t>(text.size())) {
    std::_Exit(3);
  }
}

class Player {
 public:
  Player(const std::string& directory, const std::string& lesson, std::uint32_t seed)
      : directory_(directory), random_(seed), storage_(VWBVectorStorage::initWithPath(directory)) {
    std::ifstream file(lesson);
    for (std::string line; std::getline(file, line);) lesson_.push_back(line);
    if (lesson_.empty()) std::_Exit(2);
    next_ = random_() % lesson_.size();
    // Distinct in every millisecond and from one run to the next: no switch replaces the last one.
    switchTime_ = static_cast<double>(seed);
    storage_->setIgnoreChanges(false);
  }

  void step() {
    const auto chance = random_() % 1000;
    if (chance < 530) {
      draw();
    } else if (chance < 550) {
      reopen();
    } else if (chance < 750) {
      save();
    } else if (chance < 860) {
      show();
    } else if (chance < 940) {
      append();
    } else if (chance < 975) {
      clearPage();
    } else if (chance < 996) {
      settle();
    } else {
      awaitOldQueues();
      announce("clear");
      queued_.clear();
      storage_->clear();
    }
  }

  void settle() {
    awaitOldQueues();
    storage_->saveQueue()->waitUntilAllOperationsAreFinished();
    announce("settled");
  }

 private:
  VectorPtr nextVector() {
    for (;;) {
      auto vector = modelWithJSON<VelWbBaseVector>(lesson_[next_++ % lesson_.size()]);
      if (vector && vector->type != "switchPage") return vector;
    }
  }

  std::shared_ptr<VelWbVecSwitchPage> anyPage() {
    auto page = VelWbVecSwitchPage::initWithType("switchPage");
    page->WBID = 1 + static_cast<std::int64_t>(random_() % kBoards);
    page->curPage = 1 + random_() % kPagesOfABoard;
    page->ts = switchTime_ += 0.01;
    return page;
  }

  bool isCurrent(const VelWbVecSwitchPage& page) const {
    const auto current = storage_->currentPage();
    return current && current->pageInfo() == page.pageInfo();
  }

  void announceFile(const std::string& name, const std::string& digest) {
    announce("file " + name + ' ' + digest);
    queued_[name] = digest;
  }

  void announcePage(const std::string& key) {
    announceFile(wholeName(key), digestOf(storage_->wholeVectorss()[key]));
    announceFile(snapName(key), digestOf(storage_->snapVectorss()[key]));
  }

  // The queues of the storages before have an order of their own, which nobody keeps but readers.
  void awaitOldQueues() {
    for (const auto& queue : oldQueues_) queue->waitUntilAllOperationsAreFinished();
    oldQueues_.clear();
  }

  /// What was read must be what was queued last.
  void check(const std::string& name, const VectorList& read) {
    const auto queued = queued_.find(name);
    if (queued == queued_.end()) return;
    const std::string expected = queued->second == kAbsentFile ? digestOf({}) : queued->second;
    if (digestOf(read) != expected) announce("lost " + name);
  }

  // Closes the board and opens it again at once, with whatever is queued.
  void reopen() {
    oldQueues_.push_back(storage_->saveQueue());
    storage_.reset();
    storage_ = VWBVectorStorage::initWithPath(directory_);
    storage_->setIgnoreChanges(false);
    check(kPagesName, vectorsOf(storage_->pageArray()));
  }

  void announceSave() {
    if (const auto page = storage_->currentPage(); page && storage_->hasNewChange()) {
      announcePage(page->pageInfo());
    }
  }

  void draw() {
    if (!storage_->currentPage()) return;  // what has no page is never written
    for (auto left = 1 + random_() % 20; left > 0; --left) {
      storage_->saveVector(nextVector());
    }
  }

  void save() {
    announceSave();
    storage_->saveFile(true);
  }

  void show() {
    const auto page = anyPage();
    announceSave();
    if (!isCurrent(*page)) {
      VectorList visited = vectorsOf(storage_->pageArray());
      visited.push_back(page);
      announceFile(kPagesName, digestOf(visited));
    }
    const std::string key = page->pageInfo();
    const bool isRead = !storage_->wholeVectorss().contains(key);
    storage_->switchPage(page);
    if (!isRead) return;
    check(wholeName(key), storage_->wholeVectorss()[key]);
    check(snapName(key), storage_->snapVectorss()[key]);
  }

  // Which lists the new vectors join is known only afterwards, so nothing is written before that:
  // the queue stands still, and no save waits in it whose turn the new one could take.
  void append() {
    const auto page = anyPage();
    VectorList vectors;
    for (auto left = random_() % 30; left > 0; --left) vectors.push_back(nextVector());
    if (isCurrent(*page)) {
      storage_->appendVectors(vectors, page);
      return;
    }
    // A page that is read while the queue stands still is read as it is on the disk.
    if (!storage_->wholeVectorss().contains(page->pageInfo())) settle();
    const auto stands = std::make_shared<std::binary_semaphore>(0);
    const auto gate = std::make_shared<std::binary_semaphore>(0);
    storage_->saveQueue()->addOperationWithBlock([stands, gate] {
      stands->release();
      gate->acquire();
    });
    stands->acquire();
    storage_->appendVectors(vectors, page);
    announcePage(page->pageInfo());
    gate->release();
  }

  void clearPage() {
    const auto page = anyPage();
    awaitOldQueues();
    announceFile(wholeName(page->pageInfo()), kAbsentFile);
    announceFile(snapName(page->pageInfo()), kAbsentFile);
    storage_->clearPage(*page);
  }

  const std::string directory_;
  std::mt19937 random_;
  std::shared_ptr<VWBVectorStorage> storage_;
  std::vector<std::string> lesson_;
  std::size_t next_ = 0;
  double switchTime_ = 0;
  std::vector<std::shared_ptr<OperationQueue>> oldQueues_;
  /// Name -> generation that was queued last, as far as that is certain.
  std::map<std::string, std::string> queued_;
};

int play(const std::vector<std::string>& arguments) {
  // Time stands still: no timed save comes without having been announced.
  ManualClock clock;
  const ScopedClock scope(clock);
  Player player(arguments[0], arguments[1],
                static_cast<std::uint32_t>(std::strtoul(arguments[2].c_str(), nullptr, 10)));
  const long steps = arguments.size() > 3 ? std::strtol(arguments[3].c_str(), nullptr, 10) : -1;
  for (long done = 0; done != steps; ++done) player.step();
  player.settle();
  announce("over");
  return 0;
}

}  // namespace
}  // namespace VelWhiteBoard

int main(int count, char** arguments) {
  if (count < 4) return 2;
  return VelWhiteBoard::play({arguments + 1, arguments + count});
}
