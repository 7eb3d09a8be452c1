#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "VelWhiteBoard/storage/vector_storage.h"

#include "tests/reliability/generations.h"
#include "tests/support/faulty_calls.h"
#include "tests/support/storage_story.h"

/// The lesson in which every system call goes wrong once, and all that can go wrong with a call.
namespace VelWhiteBoard {

/// The pages of the lesson.
inline const std::vector<std::string> kKeys = {"1_1", "1_2", "1_3", "1_4"};
inline std::string keyOf(std::uint64_t number) { return "1_" + std::to_string(number); }
/// The names of all files of the lesson's board.
std::vector<std::string> listNames();

/// A lesson in a folder. After each of its steps it waits for the queue and notes what the files
/// that the step writes are to hold.
class Lesson {
 public:
  explicit Lesson(const std::string& parent)
      : parent_(parent), storage_(VWBVectorStorage::initWithPath(parent)) {
    storage_->setIgnoreChanges(false);
  }

  VWBVectorStorage& storage() { return *storage_; }
  Generations& generations() { return generations_; }

  void show(std::uint64_t number) {
    const auto left = storage_->currentPage();
    const bool isSaved = left && storage_->hasNewChange();
    storage_->switchPage(page(1, number, ++time_));
    if (isSaved) notePage(left->pageInfo());
    generations_.add(kPagesName, digestOf(vectorsOf(storage_->pageArray())));
    settle();
  }

  void draw(const std::string& id) {
    storage_->saveVector(line(id, 0.25, 0.5, ++time_));
    storage_->saveVector(line(id, 0.5, 0.75, ++time_));
    storage_->saveVector(text(id + " text", "words of " + id, ++time_));
  }

  void save() {
    storage_->saveFile(true);
    notePage(storage_->currentPage()->pageInfo());
    settle();
  }

  void append(std::uint64_t number, const std::string& id) {
    storage_->appendVectors({line(id, 0.1, 0.2, ++time_), box(id + " box", 0, 0, 0.1, 0.1)},
                            page(1, number));
    notePage(keyOf(number));
    settle();
  }

  void clearPage(std::uint64_t number) {
    storage_->clearPage(*page(1, number));
    generations_.add(wholeName(keyOf(number)), kAbsentFile);
    generations_.add(snapName(keyOf(number)), kAbsentFile);
    settle();
  }

  void look(std::uint64_t number) { static_cast<void>(storage_->snapWithPage(*page(1, number))); }

  void settle() { storage_->saveQueue()->waitUntilAllOperationsAreFinished(); }

 private:
  void notePage(const std::string& key) {
    generations_.add(wholeName(key), digestOf(storage_->wholeVectorss()[key]));
    generations_.add(snapName(key), digestOf(storage_->snapVectorss()[key]));
  }

  std::string parent_;
  std::shared_ptr<VWBVectorStorage> storage_;
  Generations generations_;
  double time_ = 1000;
};

/// The board as it was the day before.
void playTheFirstDay(const std::string& parent);
/// The day on which things go wrong: every way in which the storage uses its files.
void playTheSecondDay(Lesson& lesson);

struct Trouble {
  std::string name;
  Fault fault;
};

/// Everything that can happen to the `nth` call of a kind.
std::vector<Trouble> troublesOf(Call call, int nth);

}  // namespace VelWhiteBoard
