// Random lessons: the storage and a naive model of its rules are given the same, and must agree on
// everything after every step, in memory and on disk.
//
// VELWB_TEST_SEED runs one more lesson of that seed first, VELWB_TEST_ROUNDS so many more with
// seeds of their own.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <deque>
#include <iostream>
#include <map>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "VelWhiteBoard/storage/vector_storage.h"

#include "tests/support/naive_board.h"
#include "tests/support/storage_story.h"

namespace VelWhiteBoard {
namespace {

// One object in each of the two worlds.
using Twins = std::pair<VectorPtr, VectorPtr>;

class Dice {
 public:
  explicit Dice(std::uint64_t seed) : engine_(seed) {}
  int below(int limit) { return static_cast<int>(engine_() % static_cast<std::uint64_t>(limit)); }
  bool oneIn(int chances) { return below(chances) == 0; }
  template <class Choices>
  const auto& of(const Choices& choices) {
    return choices[static_cast<std::size_t>(below(static_cast<int>(choices.size())))];
  }

 private:
  std::mt19937_64 engine_;  // the same numbers on every platform
};

// ---- What arrives

Value position(Dice& dice, double ts) {
  Array numbers{Value(dice.below(5)), Value(dice.below(5) / 8.0)};
  if (!dice.oneIn(5)) numbers.emplace_back(ts);
  if (dice.oneIn(20)) numbers.emplace_back(7);
  return numbers;
}

void addShape(Dice& dice, double ts, Dictionary& form) {
  if (dice.oneIn(6)) return;
  form["x"] = dice.oneIn(5) ? -10.0 : dice.below(9) / 4.0;
  form["y"] = dice.below(9) / 4.0;
  if (dice.oneIn(3)) form["ps"] = dice.below(3);
  if (dice.oneIn(3)) form["end"] = dice.oneIn(2);
  if (dice.oneIn(3)) {
    Array path;
    for (int i = dice.below(4); i > 0; --i) path.push_back(position(dice, ts + i - 2));
    form["path"] = path;
  }
  if (dice.oneIn(2)) {
    form["w"] = dice.below(3);
    form["h"] = dice.below(3);
  }
}

Dictionary vectorForm(Dice& dice) {
  static const std::vector<std::string> kTypes{
      "line",  "line",   "line",   "line",   "markerPen", "eraser",    "text",     "text",
      "image", "media",  "offset", "offset", "diagram",   "mediaList", "remove",   "remove",
      "clear", "cursor", "cursor", "camera", "magnifier", "magnifier", "micPhone", "switchPage"};
  static const std::vector<std::string> kIdentifiers{"a", "b", "c", "d", "e", "f", ""};
  const double ts = dice.below(30) - 1;
  Dictionary form;
  if (!dice.oneIn(30)) form["type"] = dice.of(kTypes);
  if (!dice.oneIn(12)) form["ID"] = dice.of(kIdentifiers);
  // An empty page is a dull one: most clears and removes become something else.
  if (form["type"] == "clear" && !dice.oneIn(3)) form["type"] = "line";
  form["ts"] = ts;
  addShape(dice, ts, form);
  if (form["type"] == "remove" && !dice.oneIn(8)) form["rmID"] = dice.of(kIdentifiers);
  if (dice.oneIn(3)) form["text"] = dice.oneIn(4) ? "" : "words" + std::to_string(dice.below(3));
  if (dice.oneIn(3)) form["url"] = "url" + std::to_string(dice.below(3));
  if (dice.oneIn(3)) form["value"] = dice.below(9);
  if (dice.oneIn(3)) form["radiusX"] = dice.below(3);
  if (dice.oneIn(8)) form["offset"] = Array{Value(dice.below(3)), Value("right")};
  if (dice.oneIn(4)) form["pixel"] = dice.below(4);
  return form;
}

std::shared_ptr<VelWbVecSwitchPage> randomPage(Dice& dice) {
  static const std::vector<std::pair<std::int64_t, std::uint64_t>> kPages{
      {1, 1}, {1, 2}, {-5, 0}, {2, 1}, {0, 18446744073709551615U}};
  const auto& [board, number] = dice.of(kPages);
  return page(board, number, dice.below(6) / 2000.0, dice.below(2));
}

// ---- What is compared

// All records of both kinds of list, each object numbered where it is met first: the same numbers
// mean that the same places hold the same objects.
class Inventory {
 public:
  void add(const std::string& name, const VectorList& list) {
    Value numbers = Array();
    for (const VectorPtr& vector : list) numbers.push_back(number(vector));
    lists_[name] = numbers;
  }
  template <class Lists>
  void addAll(const std::string& kind, const Lists& lists) {
    const std::map<std::string, VectorList> inOrder(lists.begin(), lists.end());
    for (const auto& [key, list] : inOrder) add(kind + " " + key, list);
  }
  template <class Query>
  void addQuery(const Query& query) {
    const std::map<std::string, VectorPtr> inOrder(query.begin(), query.end());
    Value numbers = Dictionary();
    for (const auto& [id, vector] : inOrder) numbers[id] = number(vector);
    lists_["snapQuery"] = numbers;
  }
  Value value() const { return Dictionary{{"lists", lists_}, {"records", records_}}; }

 private:
  std::size_t number(const VectorPtr& vector) {
    const auto [at, isNew] = numbers_.try_emplace(vector, numbers_.size());
    if (isNew) {
      records_.push_back(Array{Value(vector->recordClass().name), modelToJSONObject(*vector)});
    }
    return at->second;
  }

  // Kept alive, so that no later record gets the address of one that was counted.
  std::map<VectorPtr, std::size_t> numbers_;
  Value lists_ = Dictionary();
  Value records_ = Array();
};

Value formOf(const std::vector<std::shared_ptr<VelWbVecSwitchPage>>& pages) {
  return modelToJSONObject(VectorList(pages.begin(), pages.end()));
}

Value formOf(const std::shared_ptr<VelWbVecSwitchPage>& page) {
  return page ? Value(modelToJSONObject(*page)) : Value();
}

// ---- The lesson

class Lesson {
 public:
  explicit Lesson(std::uint64_t seed) : dice_(seed) {
    model_.now = board_.clock().milliseconds();
    model_.lastSaveDate = model_.now;
  }

  void play(int steps) {
    for (int i = 0; i < steps && !::testing::Test::HasFailure(); ++i) {
      board_.clock().advance(std::chrono::milliseconds(dice_.of(kPauses)));
      model_.now = board_.clock().milliseconds();
      step();
      compareMemory();
      if (dice_.oneIn(25)) compareDisk();
    }
    compareDisk();
    if (::testing::Test::HasFailure()) tellTheEnd();
  }

 private:
  void step() {
    const int chance = dice_.below(100);
    if (chance < 50) {
      save(arrival());
    } else if (chance < 58) {
      if (!past_.empty()) save(dice_.of(past_));
    } else if (chance < 72) {
      append();
    } else if (chance < 84) {
      switchPage();
    } else if (chance < 90) {
      const bool force = dice_.oneIn(2);
      log("saveFile " + std::string(force ? "forced" : "timed"));
      board_->saveFile(force);
      model_.saveFile(force);
    } else if (chance < 93) {
      const bool ignore = dice_.oneIn(4);
      log(ignore ? "ignore changes" : "record changes");
      board_->setIgnoreChanges(ignore);
      model_.ignoreChanges = ignore;
    } else if (chance < 97) {
      log("hold or let go");
      if (hold_) {
        hold_.reset();
      } else {
        hold_ = std::make_unique<QueueHold>(board_->saveQueue());
      }
    } else {
      rareStep();
    }
  }

  // Reads files, or makes later steps read them, while writes may be under way: what they find is
  // not determined, so the queue is emptied before and after.
  void rareStep() {
    settle();
    switch (dice_.below(5)) {
      case 0:
        log("clear");
        board_->clear();
        model_.clear();
        break;
      case 1:
        log("reload");
        board_->reload();
        model_.reload();
        break;
      case 2:
        log("forget the index");
        board_->setSnapQuery({});
        model_.snapQuery.clear();
        break;
      default: {
        const auto page = randomPage(dice_);
        log("clearPage " + page->pageInfo());
        board_->clearPage(*page);
        model_.clearPage(*page);
      }
    }
    settle();
  }

  Twins arrival() {
    Dictionary form = vectorForm(dice_);
    if (!past_.empty() && dice_.oneIn(6)) {
      // Meant for something that was there, whose identifier may have been generated.
      const auto& id = dice_.of(past_).second->ID;
      if (id) form[form["type"] == "remove" ? "rmID" : "ID"] = *id;
    }
    Twins twins{modelWithDictionary<VelWbBaseVector>(form),
                modelWithDictionary<VelWbBaseVector>(form)};
    past_.push_back(twins);
    if (past_.size() > 30) past_.pop_front();
    return twins;
  }

  void save(const Twins& twins) {
    log("save " + modelToJSONString(*twins.second));
    board_->saveVector(twins.first);
    model_.saveVector(twins.second);
  }

  void append() {
    VectorList real;
    VectorList naive;
    std::string words;
    for (int i = dice_.below(5); i > 0; --i) {
      const Twins twins = past_.empty() || !dice_.oneIn(6) ? arrival() : dice_.of(past_);
      real.push_back(twins.first);
      naive.push_back(twins.second);
      words += "\n    " + modelToJSONString(*twins.second);
    }
    const auto page = randomPage(dice_);
    log("append to " + page->pageInfo() + words);
    board_->appendVectors(real, page);
    model_.appendVectors(naive, page);
  }

  void switchPage() {
    const auto page = randomPage(dice_);
    log("switch to " + modelToJSONString(*page));
    Inventory real;
    Inventory naive;
    real.add("drawn", board_->switchPage(page));
    naive.add("drawn", model_.switchPage(page));
    EXPECT_EQ(real.value(), naive.value());
  }

  void settle() {
    hold_.reset();
    board_.settle();
  }

  void compareMemory() {
    Inventory real;
    Inventory naive;
    real.addAll("whole", board_->wholeVectorss());
    real.addAll("snap", board_->snapVectorss());
    real.addQuery(board_->snapQuery());
    naive.addAll("whole", model_.wholeVectorss);
    naive.addAll("snap", model_.snapVectorss);
    naive.addQuery(model_.snapQuery);
    ASSERT_EQ(real.value(), naive.value());
    ASSERT_EQ(formOf(board_->pageArray()), formOf(model_.pageArray));
    ASSERT_EQ(formOf(board_->currentPage()), formOf(model_.currentPage));
    ASSERT_EQ(board_->hasNewChange(), model_.hasNewChange);
    ASSERT_EQ(board_->ignoreChanges(), model_.ignoreChanges);
    ASSERT_EQ(HandClock::milliseconds(board_->lastSaveDate()), model_.lastSaveDate);
  }

  void compareDisk() {
    settle();
    std::vector<std::string> names;
    for (const auto& [name, form] : model_.files) {
      names.push_back(name);
      Array read;
      for (const auto& record : recordsOfFile(VelWbBaseVector::ownClass(), board_.at(name))) {
        read.emplace_back(modelToJSONObject(*record));
      }
      ASSERT_EQ(Value(read), Value(form)) << name;
    }
    ASSERT_EQ(board_.names(), names);
    compareSecondStorage();
  }

  // Another client opens the same folder.
  void compareSecondStorage() {
    const auto second = VWBVectorStorage::initWithPath(board_.parent());
    NaiveBoard naive;
    naive.files = model_.files;
    naive.reload();
    naive.ignoreChanges = true;
    ASSERT_EQ(formOf(second->pageArray()), formOf(naive.pageArray));
    for (int i = 0; i < 3; ++i) {
      const auto page = randomPage(dice_);
      ASSERT_EQ(second->hasVectorsWithPage(*page), naive.hasVectorsWithPage(*page));
      Inventory realLists;
      Inventory naiveLists;
      realLists.add("snapshot", second->snapWithPage(*page));
      naiveLists.add("snapshot", naive.snapWithPage(*page));
      second->switchPage(page);
      naive.switchPage(page);
      realLists.addAll("whole", second->wholeVectorss());
      naiveLists.addAll("whole", naive.wholeVectorss);
      ASSERT_EQ(realLists.value(), naiveLists.value());
    }
  }

  void log(const std::string& step) {
    steps_.push_back(step);
    if (steps_.size() > 25) steps_.pop_front();
  }

  void tellTheEnd() const {
    std::cout << "the last steps:\n";
    for (const std::string& step : steps_) std::cout << "  " << step << "\n";
  }

  // Milliseconds; on both sides of the interval of timed saves.
  inline static const std::vector<int> kPauses{0, 0, 1, 7, 500, 4'000, 19'999, 20'000, 20'001};

  Dice dice_;
  Board board_;
  NaiveBoard model_;
  std::unique_ptr<QueueHold> hold_;
  std::deque<Twins> past_;
  std::deque<std::string> steps_;
};

class RandomLessons : public ::testing::TestWithParam<std::uint64_t> {};

TEST_P(RandomLessons, LeaveTheStorageAndItsRulesInAgreement) {
  std::cout << "seed " << GetParam() << "\n";
  Lesson(GetParam()).play(300);
}

std::vector<std::uint64_t> seeds() {
  constexpr std::uint64_t kUsual = 10;
  const char* const seed = std::getenv("VELWB_TEST_SEED");
  const char* const rounds = std::getenv("VELWB_TEST_ROUNDS");
  std::vector<std::uint64_t> seeds;
  if (seed != nullptr) seeds.push_back(std::strtoull(seed, nullptr, 10));
  const std::uint64_t more = rounds != nullptr ? std::strtoull(rounds, nullptr, 10) : 0;
  for (std::uint64_t i = 1; i <= kUsual + more; ++i) {
    if (std::find(seeds.begin(), seeds.end(), i) == seeds.end()) seeds.push_back(i);
  }
  return seeds;
}

INSTANTIATE_TEST_SUITE_P(Seed, RandomLessons, ::testing::ValuesIn(seeds()),
                         ::testing::PrintToStringParamName());

}  // namespace
}  // namespace VelWhiteBoard
