// What a storage has not read is moved aside before it is replaced, and what was moved aside is
// never replaced.
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "VelWhiteBoard/foundation/files/disk_file_system.h"

#include "tests/reliability/board_on_disk.h"
#include "tests/support/faulty_calls.h"
#include "tests/support/storage_story.h"

namespace VelWhiteBoard {
namespace {

class AFileThatWasSetAside : public ::testing::Test {
 protected:
  AFileThatWasSetAside() {
    const auto storage = board_.open();
    storage->switchPage(page(1, 1, ++time_));
    draw(*storage, old_);
    saveNow(*storage);
  }

  /// A session in which the page is shown, drawn on and saved.
  void play(const std::string& identifier) {
    const auto storage = board_.open();
    storage->switchPage(page(1, 1, ++time_));
    draw(*storage, {identifier});
    saveNow(*storage);
  }

  BoardOnDisk board_;
  const Names old_ = numbered("old", 1, 30);
  double time_ = 0;
};

TEST_F(AFileThatWasSetAside, StaysWhenTheNextOneIsDamaged) {
  for (const std::string& name : {wholeName("1_1"), snapName("1_1"), kPagesName}) {
    for (const std::string garbage : {"first", "second", "third"}) {
      board_.put(name, garbage + " garbage");
      play(garbage);
    }
    EXPECT_EQ(board_.setAside(name),
              (Names{name + ".damaged", name + ".damaged-2", name + ".damaged-3"}));
    EXPECT_EQ(board_.contents(name + ".damaged"), "first garbage");
    EXPECT_EQ(board_.contents(name + ".damaged-2"), "second garbage");
    EXPECT_EQ(board_.contents(name + ".damaged-3"), "third garbage");
  }
}

// The name is taken by something that is no file of the board.
TEST_F(AFileThatWasSetAside, TakesAnotherNameThanAFolder) {
  const std::string name = snapName("1_1");
  std::filesystem::create_directory(board_.at(name + ".damaged"));
  board_.put(name, "garbage");
  play("new");
  EXPECT_TRUE(std::filesystem::is_directory(board_.at(name + ".damaged")));
  EXPECT_EQ(board_.contents(name + ".damaged-2"), "garbage");
  EXPECT_EQ(board_.identifiers(name), Names{"new"});
}

// A reader opens a damaged file; before it has come to the damage, the file is set aside and
// replaced by a sound one. What the reader then says about the old one is no reason to move the
// sound one over it.
TEST_F(AFileThatWasSetAside, StaysWhenASlowReaderFindsTheDamageLater) {
  const std::string name = snapName("1_1");
  const std::string lesson = board_.contents(name).substr(0, board_.contents(name).size() / 2);
  board_.put(name, lesson);
  FaultyCalls calls;
  DiskFileSystem disk(calls);
  const ScopedFileSystem scope(disk);
  const auto storage = board_.open();
  calls.before(Call::kRead, 1, [&] {
    storage->switchPage(page(1, 1, ++time_));
    draw(*storage, {"new"});
    saveNow(*storage);
  });
  static_cast<void>(storage->snapWithPage(*page(1, 1)));
  draw(*storage, {"newer"});
  saveNow(*storage);
  EXPECT_EQ(board_.contents(name + ".damaged"), lesson);
  EXPECT_EQ(missing({"new", "newer"}, board_.kept(name)), Names());
  EXPECT_EQ(missing(old_, board_.kept(wholeName("1_1"))), Names());
}

// A storage that knows nothing of a file does not destroy it: here it was never read.
TEST_F(AFileThatWasSetAside, WasOneThatTheStorageHadNeverLookedAt) {
  const auto storage = board_.open();
  storage->setSnapVectorss({{"1_1", {}}});
  storage->setWholeVectorss({{"1_1", {}}});
  storage->switchPage(page(1, 1, ++time_));  // both lists are cached
  draw(*storage, {"new"});
  saveNow(*storage);
  Names all = old_;
  all.emplace_back("new");
  EXPECT_EQ(missing(all, board_.kept(wholeName("1_1"))), Names());
  EXPECT_EQ(missing(all, board_.kept(snapName("1_1"))), Names());
}

TEST_F(AFileThatWasSetAside, IsKeptOnceHoweverOftenThePageIsSaved) {
  const std::string name = snapName("1_1");
  board_.put(name, "garbage");
  const auto storage = board_.open();
  storage->switchPage(page(1, 1, ++time_));
  for (int i = 0; i < 5; ++i) {
    draw(*storage, {"new " + std::to_string(i)});
    saveNow(*storage);
  }
  EXPECT_EQ(board_.setAside(name), Names{name + ".damaged"});
}

// ---- What is in the way of a file's name.

TEST_F(AFileThatWasSetAside, MayHaveBeenAFolderInTheWay) {
  for (const std::string& name : {wholeName("1_2"), snapName("1_2")}) {
    std::filesystem::create_directory(board_.at(name));
    std::ofstream(board_.at(name) + "/something") << "of another";
  }
  const auto storage = board_.open();
  EXPECT_EQ(storage->switchPage(page(1, 2, ++time_)), VectorList());
  draw(*storage, {"new"});
  saveNow(*storage);
  for (const std::string& name : {wholeName("1_2"), snapName("1_2")}) {
    EXPECT_EQ(board_.identifiers(name), Names{"new"}) << name;
    EXPECT_EQ(board_.contents(name + ".damaged/something"), "of another") << name;
  }
}

TEST_F(AFileThatWasSetAside, MayHaveBeenAFolderInTheWayOfTheVisitedPages) {
  std::filesystem::remove(board_.at(kPagesName));
  std::filesystem::create_directory(board_.at(kPagesName));
  const auto storage = board_.open();
  EXPECT_EQ(storage->latestPage(), nullptr);
  storage->switchPage(page(1, 1, ++time_));
  settle(*storage);
  EXPECT_EQ(board_.identifiers(kPagesName), Names{"1_1"});
  EXPECT_TRUE(std::filesystem::is_directory(board_.at(kPagesName + ".damaged")));
}

// ---- Reloading while a page is current.

class AReloadedBoard : public AFileThatWasSetAside {};

// A client that reloads means the state in memory to go. Only another page switch brings it back.
TEST_F(AReloadedBoard, ReplacesTheFilesOfTheCurrentPageByWhatComesAfter) {
  const auto storage = board_.open();
  storage->switchPage(page(1, 1, ++time_));
  storage->reload();
  draw(*storage, {"last"});
  saveNow(*storage);
  EXPECT_EQ(board_.identifiers(wholeName("1_1")), Names{"last"});
  EXPECT_EQ(board_.identifiers(snapName("1_1")), Names{"last"});
}

TEST_F(AReloadedBoard, GivesThePageBackWhenItIsShownAgain) {
  const auto storage = board_.open();
  storage->switchPage(page(1, 1, ++time_));
  draw(*storage, {"queued"});
  storage->saveFile(true);
  storage->reload();
  storage->switchPage(page(1, 2, ++time_));
  Names all = old_;
  all.emplace_back("queued");
  EXPECT_EQ(identifiersOf(storage->switchPage(page(1, 1, ++time_))), all);
  EXPECT_EQ(board_.setAside(wholeName("1_1")), Names());
}

}  // namespace
}  // namespace VelWhiteBoard
