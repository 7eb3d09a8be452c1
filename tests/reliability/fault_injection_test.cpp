// Every single system call of a small lesson fails once, and from then on for ever, in every way in
// which it can. Afterwards every file must be one whole generation, nothing readable may be gone,
// no temporary may be left, and the next save must write everything.
#include <cerrno>
#include <filesystem>
#include <iostream>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "VelWhiteBoard/foundation/files/disk_file_system.h"
#include "VelWhiteBoard/storage/files/board_files.h"
#include "VelWhiteBoard/storage/vector_storage.h"

#include "tests/reliability/board_on_disk.h"
#include "tests/reliability/faulty_lesson.h"
#include "tests/reliability/generations.h"
#include "tests/support/faulty_calls.h"
#include "tests/support/manual_clock.h"
#include "tests/support/storage_story.h"
#include "tests/support/temporary_folder.h"

namespace VelWhiteBoard {
namespace {

class AFault : public ::testing::Test {
 protected:
  AFault() { playTheFirstDay(firstDay_.path()); }

  /// Plays the second day on a copy of the first with one fault; what is wrong then is a failure.
  void endure(const Trouble& trouble) {
    const TemporaryFolder parent(TemporaryFolder::Volume::kMemory);
    std::filesystem::copy(firstDay_.path(), parent.path(),
                          std::filesystem::copy_options::recursive |
                              std::filesystem::copy_options::overwrite_existing);
    const std::string folder = boardFolder(parent.path());
    calls_ = std::make_unique<FaultyCalls>();
    DiskFileSystem disk(*calls_);
    const ScopedFileSystem scope(disk);
    calls_->inject(trouble.fault);
    {
      Lesson lesson(parent.path());
      playTheSecondDay(lesson);
      const int met = calls_->faultsMet();
      EXPECT_GT(met, 0) << "the fault was not met";
      faults_ += met;
      calls_->heal();
      expectWholeGenerations(folder, lesson.generations());
      expectNothingLost(folder);
      if (!mayLeaveATemporary(trouble.fault)) {
        EXPECT_EQ(namesIn(folder, ".tmp"), std::vector<std::string>());
      }
      expectThatTheNextSavesWriteEverything(folder, lesson);
    }
    EXPECT_EQ(calls_->openHandles(), 0U);
  }

  /// The same while the board is cleared.
  void endureWhileClearing(const Trouble& trouble) {
    const TemporaryFolder parent(TemporaryFolder::Volume::kMemory);
    std::filesystem::copy(firstDay_.path(), parent.path(),
                          std::filesystem::copy_options::recursive);
    const std::string folder = boardFolder(parent.path());
    calls_ = std::make_unique<FaultyCalls>();
    DiskFileSystem disk(*calls_);
    const ScopedFileSystem scope(disk);
    {
      Lesson lesson(parent.path());
      lesson.show(1);
      calls_->inject(trouble.fault);
      lesson.storage().clear();
      EXPECT_GT(calls_->faultsMet(), 0) << "the fault was not met";
      faults_ += calls_->faultsMet();
      calls_->heal();
      lesson.generations().addClear();
      expectWholeGenerations(folder, lesson.generations());
      ASSERT_TRUE(disk.makeFolders(folder));  // without it every write fails, quietly
      expectThatTheNextSavesWriteEverything(folder, lesson);
    }
    EXPECT_EQ(calls_->openHandles(), 0U);
  }

  /// How many calls of each kind clearing the board makes.
  std::map<Call, int> callsOfClearing() {
    const TemporaryFolder parent(TemporaryFolder::Volume::kMemory);
    std::filesystem::copy(firstDay_.path(), parent.path(),
                          std::filesystem::copy_options::recursive);
    FaultyCalls calls;
    DiskFileSystem disk(calls);
    const ScopedFileSystem scope(disk);
    std::map<Call, int> counts;
    Lesson lesson(parent.path());
    lesson.show(1);
    calls.resetCounts();
    lesson.storage().clear();
    for (const Call call : kAllCalls) counts[call] = calls.count(call);
    return counts;
  }

  /// How many calls of each kind the second day makes when nothing goes wrong.
  std::map<Call, int> callsOfTheSecondDay() {
    const TemporaryFolder parent(TemporaryFolder::Volume::kMemory);
    std::filesystem::copy(firstDay_.path(), parent.path(),
                          std::filesystem::copy_options::recursive);
    FaultyCalls calls;
    DiskFileSystem disk(calls);
    const ScopedFileSystem scope(disk);
    {
      Lesson lesson(parent.path());
      playTheSecondDay(lesson);
    }
    std::map<Call, int> counts;
    for (const Call call : kAllCalls) counts[call] = calls.count(call);
    return counts;
  }

  int faults() const { return faults_; }

 private:
  /// Nothing can be removed, or nobody can ever tell whose file it is.
  static bool mayLeaveATemporary(const Fault& fault) {
    return fault.call == Call::kRemove || fault.call == Call::kRemoveAll ||
           (fault.call == Call::kStatus && fault.times > 1);
  }

  /// Each file holds what the day before left or what some save of this day meant it to hold.
  void expectWholeGenerations(const std::string& folder, const Generations& generations) const {
    const std::string before = boardFolder(firstDay_.path());
    for (const std::string& name : listNames()) {
      const std::string digest = digestOfFile(folder + "/" + name);
      EXPECT_NE(digest, kUnreadableFile) << name;
      EXPECT_TRUE(digest == digestOfFile(before + "/" + name) || generations.allow(name, digest))
          << name << " holds " << digest << "\n"
          << generations.describe(name);
    }
  }

  /// What could be read the day before can be read still, in its file or in one set aside; but
  /// for the page that was cleared.
  void expectNothingLost(const std::string& folder) const {
    const std::string before = boardFolder(firstDay_.path());
    for (const std::string& name : namesIn(before, ".plist")) {
      if (name == wholeName("1_3") || name == snapName("1_3")) continue;
      const Strings kept = keptIn(folder, name);
      EXPECT_EQ(missing(recordsIn(before + "/" + name), kept), Names()) << name;
    }
  }

  void expectThatTheNextSavesWriteEverything(const std::string& folder, Lesson& lesson) const {
    for (std::uint64_t number = 1; number <= kKeys.size(); ++number) {
      lesson.show(number);
      lesson.draw("healed " + std::to_string(number));
      lesson.save();
    }
    auto whole = lesson.storage().wholeVectorss();
    auto snap = lesson.storage().snapVectorss();
    const auto second = VWBVectorStorage::initWithPath(folder.substr(0, folder.rfind('/')));
    EXPECT_EQ(digestOf(vectorsOf(second->pageArray())),
              digestOf(vectorsOf(lesson.storage().pageArray())));
    for (std::uint64_t number = 1; number <= kKeys.size(); ++number) {
      const std::string key = keyOf(number);
      EXPECT_EQ(digestOf(second->switchPage(page(1, number))), digestOf(snap[key])) << key;
      EXPECT_EQ(digestOf(second->wholeVectorss()[key]), digestOf(whole[key])) << key;
    }
    EXPECT_EQ(namesIn(folder, ".tmp"), std::vector<std::string>());
  }

  TemporaryFolder firstDay_{TemporaryFolder::Volume::kMemory};
  ManualClock clock_;
  ScopedClock clockScope_{clock_};
  std::unique_ptr<FaultyCalls> calls_;
  int faults_ = 0;
};

TEST_F(AFault, OfAnySystemCallLosesNothingAndIsMadeGoodByTheNextSave) {
  int runs = 0;
  for (const auto& [call, count] : callsOfTheSecondDay()) {
    int runsOfThisCall = 0;
    for (int nth = 1; nth <= count; ++nth) {
      for (const Trouble& trouble : troublesOf(call, nth)) {
        SCOPED_TRACE(std::string(callName(call)) + " " + std::to_string(nth) + " of " +
                     std::to_string(count) + " " + trouble.name);
        endure(trouble);
        ++runsOfThisCall;
        if (HasFailure()) return;
      }
    }
    std::cout << callName(call) << ": " << count << " calls, " << runsOfThisCall << " lessons\n";
    runs += runsOfThisCall;
  }
  std::cout << runs << " lessons with " << faults() << " faults" << std::endl;
  EXPECT_GT(runs, 500);
}

TEST_F(AFault, WhileTheBoardIsClearedLeavesFilesOrNoneAndIsMadeGoodByTheNextSave) {
  int runs = 0;
  for (const auto& [call, count] : callsOfClearing()) {
    for (int nth = 1; nth <= count; ++nth) {
      for (const Trouble& trouble : troublesOf(call, nth)) {
        SCOPED_TRACE(std::string(callName(call)) + " " + std::to_string(nth) + " of " +
                     std::to_string(count) + " " + trouble.name);
        endureWhileClearing(trouble);
        ++runs;
        if (HasFailure()) return;
      }
    }
  }
  std::cout << runs << " lessons with " << faults() << " faults" << std::endl;
  EXPECT_GT(runs, 20);
}

// Two things at once: a write fails, and what it began cannot be removed.
TEST_F(AFault, OfARemovalLeavesATemporaryThatTheNextSaveUses) {
  const TemporaryFolder parent(TemporaryFolder::Volume::kMemory);
  const std::string folder = boardFolder(parent.path());
  FaultyCalls calls;
  DiskFileSystem disk(calls);
  const ScopedFileSystem scope(disk);
  Lesson lesson(parent.path());
  lesson.show(1);
  lesson.draw("a");
  calls.inject(Fault::failingFrom(Call::kSync, 1, EIO));
  calls.inject(Fault::failingFrom(Call::kRemove, 1, EACCES));
  for (int i = 0; i < 10; ++i) lesson.save();
  EXPECT_EQ(namesIn(folder), (std::vector<std::string>{"page.plist", snapName("1_1") + ".tmp",
                                                       wholeName("1_1") + ".tmp"}));
  calls.heal();
  lesson.save();
  EXPECT_EQ(namesIn(folder),
            (std::vector<std::string>{"page.plist", snapName("1_1"), wholeName("1_1")}));
}

// The folder is made when the board is opened. Without it every write fails, quietly, until
// somebody makes it.
TEST_F(AFault, OfMakingTheFolderIsMadeGoodOnceThereIsAFolder) {
  for (int nth = 1; nth <= 2; ++nth) {
    const TemporaryFolder parent(TemporaryFolder::Volume::kMemory);
    const std::string below = parent.at("missing");
    FaultyCalls calls;
    DiskFileSystem disk(calls);
    const ScopedFileSystem scope(disk);
    calls.inject(Fault::failingFrom(Call::kMakeFolder, nth, EACCES));
    Lesson lesson(below);
    lesson.show(1);
    lesson.draw("a");
    lesson.save();
    EXPECT_EQ(namesIn(boardFolder(below)), std::vector<std::string>());
    calls.heal();
    ASSERT_TRUE(disk.makeFolders(boardFolder(below)));
    lesson.show(2);
    lesson.show(1);
    lesson.draw("b");
    lesson.save();
    EXPECT_EQ(identifiersIn(boardFolder(below) + "/" + wholeName("1_1")),
              (std::set<std::string>{"a", "a text", "b", "b text"}));
    EXPECT_EQ(readPages(pageListFile(boardFolder(below))).list.size(), 3U);
  }
}

}  // namespace
}  // namespace VelWhiteBoard
