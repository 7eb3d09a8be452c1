// Random lessons: the storage and one of plain lists are given the same, and must agree on
// everything that a client can see: every getter, which object stands where, the order of writes,
// and every generation of every file, as operations of a client find them in the queue.
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
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "VelWhiteBoard/foundation/records/model_mapping.h"

#include "tests/support/random_arrivals.h"
#include "tests/support/storage_pair.h"

namespace VelWhiteBoard {
namespace {

/// So many waiting writes of a file are done one by one; of more the older may be dropped.
constexpr std::size_t kMostWaiting = 16;

/// What a lesson compares.
enum class Depth {
  kEveryGeneration,  ///< as long as no more than `kMostWaiting` writes wait
  kLastGeneration,   ///< any number may wait
};

using Lists = std::map<std::string, VectorList>;

class Lesson {
 public:
  Lesson(std::uint64_t seed, Depth depth) : chances_(seed), depth_(depth) {
    pair_.real().setIgnoreChanges(false);
    pair_.plain().ignoreChanges = false;
  }

  void play(int steps) {
    for (int i = 0; i < steps && !::testing::Test::HasFailure(); ++i) {
      pair_.pass(std::chrono::milliseconds(chances_.of(kPauses)));
      step();
      // Not after each step: to ask for a list may be what brings it in.
      if (chances_.oneIn(4)) compareMemory();
      if (depth_ == Depth::kEveryGeneration) stayBelowTheLimit();
      if (chances_.oneIn(25)) compareAll();
    }
    compareAll();
    if (::testing::Test::HasFailure()) tellTheEnd();
  }

 private:
  /// A step adds two waiting writes of a file at most.
  void stayBelowTheLimit() {
    if (pair_.mostWaiting() + 2 >= kMostWaiting) letGo();
    if (pair_.writesSinceSettled() + 6 >= kMostWaiting) pair_.settle();
  }

  struct Choice {
    int weight;
    void (Lesson::*step)();
  };

  void step() {
    static const std::vector<Choice> kChoices = {
        {36, &Lesson::save},       {8, &Lesson::saveAgain},   {14, &Lesson::append},
        {12, &Lesson::switchPage}, {6, &Lesson::saveFile},    {2, &Lesson::ignoreChanges},
        {5, &Lesson::holdOrLetGo}, {6, &Lesson::look},        {2, &Lesson::snapshot},
        {2, &Lesson::hasVectors},  {3, &Lesson::clearPage},   {3, &Lesson::reload},
        {1, &Lesson::clear},       {3, &Lesson::reopen},      {2, &Lesson::damage},
        {2, &Lesson::setLists},    {1, &Lesson::setIndex},    {1, &Lesson::setPages},
        {1, &Lesson::setFiles},    {1, &Lesson::setFlags},    {1, &Lesson::setQueue},
        {2, &Lesson::editCurrent}, {1, &Lesson::editVisited},
    };
    int all = 0;
    for (const Choice& choice : kChoices) all += choice.weight;
    int number = chances_.below(all);
    for (const Choice& choice : kChoices) {
      number -= choice.weight;
      if (number < 0) return (this->*choice.step)();
    }
  }

  // ---- What is drawn

  Twins arrival() {
    Dictionary form = randomArrival(chances_);
    if (!past_.empty() && chances_.oneIn(6)) {
      // Meant for something that was there, whose identifier may have been generated.
      const auto& id = chances_.of(past_).second->ID;
      if (id) form[form["type"] == "remove" ? "rmID" : "ID"] = *id;
    }
    const Twins twins{modelWithDictionary<VelWbBaseVector>(form),
                      modelWithDictionary<VelWbBaseVector>(form)};
    past_.push_back(twins);
    if (past_.size() > 30) past_.pop_front();
    return twins;
  }

  void save(const Twins& twins) {
    log("save " + modelToJSONString(*twins.second));
    pair_.real().saveVector(twins.first);
    pair_.plain().saveVector(twins.second);
  }
  void save() { save(arrival()); }
  void saveAgain() {
    if (!past_.empty()) save(chances_.of(past_));
  }

  void append() {
    VectorList real;
    VectorList plain;
    std::string words;
    for (int i = chances_.below(5); i > 0; --i) {
      const Twins twins = past_.empty() || !chances_.oneIn(6) ? arrival() : chances_.of(past_);
      real.push_back(twins.first);
      plain.push_back(twins.second);
      words += "\n    " + modelToJSONString(*twins.second);
    }
    const PageTwins page = anyPage();
    log("append to " + page.second->pageInfo() + words);
    pair_.real().appendVectors(real, page.first);
    pair_.plain().appendVectors(plain, page.second);
  }

  // ---- Pages

  static const std::vector<std::string>& keys() {
    static const std::vector<std::string> all = {"", "1_1", "1_2", "-5_0", "2_1"};
    return all;
  }

  PageTwins anyPage() {
    static const std::vector<std::pair<std::int64_t, std::uint64_t>> kPages{
        {1, 1}, {1, 2}, {-5, 0}, {2, 1}, {0, 18446744073709551615U}};
    const auto& [board, number] = chances_.of(kPages);
    const double ts = chances_.below(6) / 2000.0;
    const std::int64_t resource = chances_.below(2);
    return {page(board, number, ts, resource), page(board, number, ts, resource)};
  }

  void switchPage() {
    const PageTwins page = anyPage();
    log("switch to " + modelToJSONString(*page.second));
    const VectorList real = pair_.real().switchPage(page.first);
    const VectorList plain = pair_.plain().switchPage(page.second);
    if (chances_.oneIn(3)) {
      ASSERT_EQ(pair_.differencesInMemory(real, plain), "");
      return;
    }
    ASSERT_EQ(modelToJSONString(real), modelToJSONString(plain));
    if (chances_.oneIn(3)) damage();  // before anything else asks for the lists
  }

  void snapshot() {
    const PageTwins page = anyPage();
    log("snapshot of " + page.second->pageInfo());
    ASSERT_EQ(modelToJSONString(pair_.real().snapWithPage(*page.first)),
              modelToJSONString(pair_.plain().snapWithPage(*page.second)));
  }

  void hasVectors() {
    pair_.settle();  // it never waits, and tells what is on the disk
    const PageTwins page = anyPage();
    log("has vectors " + page.second->pageInfo());
    ASSERT_EQ(pair_.real().hasVectorsWithPage(*page.first),
              pair_.plain().hasVectorsWithPage(*page.second));
  }

  void clearPage() {
    const PageTwins page = anyPage();
    log("clearPage " + page.second->pageInfo());
    pair_.real().clearPage(*page.first);
    pair_.plain().clearPage(*page.second);
  }

  // ---- Files and the queue

  void saveFile() {
    const bool force = chances_.oneIn(2);
    log("saveFile " + std::string(force ? "forced" : "timed"));
    pair_.real().saveFile(force);
    pair_.plain().saveFile(force);
  }

  void holdOrLetGo() {
    if (pair_.isHeld()) return letGo();
    log("hold");
    pair_.hold();
  }

  void letGo() {
    log("let go");
    pair_.letGo();
  }

  void look() {
    if (depth_ != Depth::kEveryGeneration) return;
    log("look");
    pair_.look();
  }

  void reload() {
    log("reload");
    pair_.real().reload();
    pair_.plain().reload();
  }

  void clear() {
    log("clear");
    pair_.clear();
  }

  void reopen() {
    log("reopen");
    if (chances_.oneIn(2)) compareMemory();
    pair_.reopen();
    past_.clear();  // these belong to the storage before
    pair_.real().setIgnoreChanges(false);
    pair_.plain().ignoreChanges = false;
  }

  void damage() {
    const int which = chances_.below(2);
    log("damage " + std::string(which == 0 ? "log" : "snapshot"));
    pair_.damage(which);
  }

  // ---- Setters

  void ignoreChanges() {
    const bool ignore = chances_.oneIn(4);
    log(ignore ? "ignore changes" : "record changes");
    pair_.real().setIgnoreChanges(ignore);
    pair_.plain().ignoreChanges = ignore;
  }

  void setFlags() {
    const bool changed = chances_.oneIn(2);
    log(std::string("has ") + (changed ? "a" : "no") + " new change, last saved earlier");
    pair_.real().setHasNewChange(changed);
    pair_.plain().hasNewChange = changed;
    const auto earlier = pair_.plain().lastSaveDate - std::chrono::seconds(chances_.below(30));
    pair_.real().setLastSaveDate(earlier);
    pair_.plain().lastSaveDate = earlier;
    const std::vector<std::string> known(1, chances_.of(keys()));
    pair_.real().setPageCacheList(known);
    pair_.plain().pageCacheList = known;
    pair_.real().setSemphore(std::make_shared<Semaphore>(1));
  }

  void setLists() {
    const bool whole = chances_.oneIn(2);
    const int kind = chances_.below(6);
    const std::string from = chances_.of(keys());
    const std::string to = chances_.of(keys());
    log("set " + std::string(whole ? "logs" : "snapshots") + ", kind " + std::to_string(kind) +
        ", " + from + " to " + to);
    const auto change = [&](Lists lists) {
      VectorList list = lists.contains(from) ? lists[from] : VectorList();
      if (kind == 0) lists.erase(from);
      if (kind == 1) std::reverse(lists[from].begin(), lists[from].end());
      if (kind == 2) lists[to] = list;
      if (kind == 3 && !list.empty()) lists[from].erase(lists[from].begin());
      if (kind == 4 && !list.empty()) lists[from].push_back(list.front());
      if (kind == 5) lists[from].push_back(nullptr);
      return lists;
    };
    const auto unordered = [](const Lists& lists) {
      return VWBVectorStorage::ListsByPage(lists.begin(), lists.end());
    };
    const auto ordered = [](const VWBVectorStorage::ListsByPage& lists) {
      return Lists(lists.begin(), lists.end());
    };
    VWBVectorStorage& real = pair_.real();
    Lists& plain = whole ? pair_.plain().wholeVectorss : pair_.plain().snapVectorss;
    if (whole) {
      real.setWholeVectorss(unordered(change(ordered(real.wholeVectorss()))));
    } else {
      real.setSnapVectorss(unordered(change(ordered(real.snapVectorss()))));
    }
    plain = change(plain);
    for (auto& [key, list] : plain) std::erase(list, nullptr);  // null entries are dropped
  }

  void setIndex() {
    log("set the index");
    const bool all = chances_.oneIn(2);
    auto real = pair_.real().snapQuery();
    auto& plain = pair_.plain().snapQuery;
    if (all || plain.empty()) {
      real.clear();
      plain.clear();
    } else {
      const std::string first = plain.begin()->first;
      real.erase(first);
      plain.erase(first);
    }
    pair_.real().setSnapQuery(real);
  }

  void setPages() {
    log("set the visited pages");
    auto real = pair_.real().pageArray();
    auto& plain = pair_.plain().pageArray;
    std::reverse(real.begin(), real.end());
    std::reverse(plain.begin(), plain.end());
    if (plain.size() > 3 && chances_.oneIn(2)) {
      real.resize(3);
      plain.resize(3);
    }
    real.push_back(nullptr);
    pair_.real().setPageArray(real);
  }

  void setFiles() {
    pair_.settle();  // the page file is asked for when the write runs
    PlainStorage& plain = pair_.plain();
    VWBVectorStorage& real = pair_.real();
    const int kind = chances_.below(5);
    log("set a path, kind " + std::to_string(kind));
    if (kind == 0) plain.folder = pair_.secondFolder();
    if (kind == 1) plain.pageFile = pair_.secondFolder() + "/page.plist";
    if (kind == 2) plain.wholeFile = pair_.secondFolder() + "/log.plist";
    if (kind == 3) plain.snapFile = std::nullopt;
    if (kind == 4) plain.wholeFile = std::nullopt;
    real.setFolder(plain.folder);
    real.setPageFile(plain.pageFile);
    real.setWholeFile(plain.wholeFile);
    real.setSnapFile(plain.snapFile);
  }

  void setQueue() {
    log("set the queue");
    pair_.replaceQueue();
  }

  // ---- Edits of records that the storage hands out

  void editCurrent() {
    if (!pair_.plain().currentPage) return;
    const PageTwins page = anyPage();
    log("edit the current page: " + page.second->pageInfo());
    for (const auto& current : {pair_.real().currentPage(), pair_.plain().currentPage}) {
      current->WBID = page.first->WBID;
      current->curPage = page.first->curPage;
      current->resource = page.first->resource;
    }
  }

  void editVisited() {
    const auto real = pair_.real().latestPage();
    const auto plain = pair_.plain().latestPage();
    ASSERT_EQ(real == nullptr, plain == nullptr);
    if (!plain) return;
    log("edit the latest page");
    for (const auto& latest : {real, plain}) latest->resource += 1;
  }

  // ---- Comparisons

  void compareMemory() { ASSERT_EQ(pair_.differencesInMemory(), ""); }

  void compareAll() {
    letGo();
    compareMemory();
    ASSERT_EQ(pair_.differencesOnDisk(), "");
    if (depth_ == Depth::kLastGeneration) return;
    ASSERT_EQ(pair_.differencesInOrder(), "");
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

  Chances chances_;
  Depth depth_;
  StoragePair pair_;
  std::deque<Twins> past_;
  std::deque<std::string> steps_;
};

class RandomLessons : public ::testing::TestWithParam<std::uint64_t> {};

TEST_P(RandomLessons, ShowAClientOfPlainListsNoDifference) {
  std::cout << "seed " << GetParam() << "\n";
  Lesson(GetParam(), Depth::kEveryGeneration).play(300);
}

TEST_P(RandomLessons, EndAlikeHoweverManyWritesWait) {
  std::cout << "seed " << GetParam() << "\n";
  Lesson(GetParam(), Depth::kLastGeneration).play(300);
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
