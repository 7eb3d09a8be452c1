// A file that exists but cannot be read is an empty list; before it is replaced it is set aside, so
// that somebody may still recover it.
#include <cerrno>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "VelWhiteBoard/foundation/disk_file_system.h"
#include "VelWhiteBoard/storage/board_files.h"
#include "VelWhiteBoard/storage/vector_storage.h"

#include "tests/reliability/generations.h"
#include "tests/support/faulty_calls.h"
#include "tests/support/storage_story.h"
#include "tests/support/temporary_folder.h"

namespace VelWhiteBoard {
namespace {

using Names = std::vector<std::string>;

struct Damage {
  std::string name;
  /// What becomes of a sound file.
  std::function<std::string(const std::string& sound)> of;
};

const std::vector<Damage>& damages() {
  static const std::vector<Damage> all = {
      {"truncated", [](const std::string& sound) { return sound.substr(0, sound.size() / 2); }},
      {"without its last line",
       [](const std::string& sound) { return sound.substr(0, sound.rfind("</plist>")); }},
      {"garbage", [](const std::string&) { return std::string("\x01\xFF\0garbage", 10); }},
      {"a dictionary at the top",
       [](const std::string&) {
         return std::string(
             "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
             "<plist version=\"1.0\"><dict><key>a</key><string>b</string></dict>"
             "</plist>\n");
       }},
      {"empty", [](const std::string&) { return std::string(); }},
      {"zeros", [](const std::string& sound) { return std::string(sound.size(), '\0'); }},
  };
  return all;
}

/// A board on a disk that can be made to fail.
class DamagedBoard {
 public:
  DamagedBoard() {
    open();
    for (std::uint64_t number = 1; number <= 2; ++number) {
      show(number);
      storage_->saveVector(line("old " + std::to_string(number), 1, 2, 3));
    }
    save();
    storage_.reset();
  }

  VWBVectorStorage* operator->() const { return storage_.get(); }
  FaultyCalls& calls() { return calls_; }
  std::string at(const std::string& name) const { return boardFolder(parent_.path()) + "/" + name; }

  void open() {
    storage_ = VWBVectorStorage::initWithPath(parent_.path());
    storage_->setIgnoreChanges(false);
  }
  Tale show(std::uint64_t number) { return tell(storage_->switchPage(page(1, number, ++time_))); }
  void draw(const std::string& id) { storage_->saveVector(line(id, 1, 2, 3)); }
  void save() {
    storage_->saveFile(true);
    settle();
  }
  void settle() { storage_->saveQueue()->waitUntilAllOperationsAreFinished(); }

  std::string contents(const std::string& name) {
    std::string text;
    const FileResult read = disk_.readAll(at(name), text);
    return read ? text : "(" + read.describe() + ")";
  }
  void put(const std::string& name, const std::string& text) {
    const FileResult written = disk_.writeAll(at(name), text);
    ASSERT_TRUE(written) << written.describe();
  }
  Names setAside() const { return namesIn(boardFolder(parent_.path()), ".damaged"); }
  std::set<std::string> identifiers(const std::string& name) const {
    return identifiersIn(at(name));
  }

 private:
  TemporaryFolder parent_{TemporaryFolder::Volume::kMemory};
  FaultyCalls calls_;
  DiskFileSystem disk_{calls_};
  ScopedFileSystem scope_{disk_};
  std::shared_ptr<VWBVectorStorage> storage_;
  double time_ = 0;
};

using Strings = std::set<std::string>;

TEST(ADamagedFile, IsSetAsideByteForByteBeforeTheFirstSaveThatReplacesIt) {
  for (const Damage& damage : damages()) {
    for (const std::string& name : {wholeName("1_1"), snapName("1_1")}) {
      SCOPED_TRACE(name + " is " + damage.name);
      DamagedBoard board;
      const std::string damaged = damage.of(board.contents(name));
      board.put(name, damaged);
      board.open();
      EXPECT_EQ(board.show(1).size(), name == snapName("1_1") ? 0U : 1U);
      board.draw("new");
      board.settle();
      EXPECT_EQ(board.contents(name), damaged) << "replaced by nothing but a save";
      EXPECT_EQ(board.setAside(), Names());
      board.save();
      EXPECT_EQ(board.setAside(), Names{name + ".damaged"});
      EXPECT_EQ(board.contents(name + ".damaged"), damaged);
      EXPECT_EQ(board.identifiers(name), Strings{"new"});
    }
  }
}

TEST(ADamagedFile, IsSetAsideWhenVectorsAreAppendedToItsPage) {
  for (const Damage& damage : damages()) {
    for (const std::string& name : {wholeName("1_2"), snapName("1_2")}) {
      SCOPED_TRACE(name + " is " + damage.name);
      DamagedBoard board;
      const std::string damaged = damage.of(board.contents(name));
      board.put(name, damaged);
      board.open();
      board.show(1);
      board->appendVectors({line("new", 1, 2, 3)}, page(1, 2));
      board.settle();
      EXPECT_EQ(board.setAside(), Names{name + ".damaged"});
      EXPECT_EQ(board.contents(name + ".damaged"), damaged);
      EXPECT_EQ(board.identifiers(name), Strings{"new"});
    }
  }
}

TEST(ADamagedFile, ThatWasOnlyLookedAtIsSetAsideWhenItsPageIsSavedLater) {
  DamagedBoard board;
  board.put(snapName("1_2"), "garbage");
  board.open();
  EXPECT_EQ(board->snapWithPage(*page(1, 2)).size(), 0U);
  board.settle();
  EXPECT_EQ(board.setAside(), Names());
  EXPECT_EQ(board.contents(snapName("1_2")), "garbage");
  board.show(2);
  board.draw("new");
  board.save();
  EXPECT_EQ(board.setAside(), Names{snapName("1_2") + ".damaged"});
  EXPECT_EQ(board.contents(snapName("1_2") + ".damaged"), "garbage");
}

TEST(ADamagedFile, OfTheVisitedPagesIsSetAsideBeforeTheFirstSwitchIsRecorded) {
  for (const Damage& damage : damages()) {
    SCOPED_TRACE(damage.name);
    DamagedBoard board;
    const std::string damaged = damage.of(board.contents(kPagesName));
    board.put(kPagesName, damaged);
    board.open();
    EXPECT_EQ(board->latestPage(), nullptr);
    EXPECT_EQ(board.setAside(), Names());
    board.show(1);
    board.settle();
    EXPECT_EQ(board.setAside(), Names{"page.plist.damaged"});
    EXPECT_EQ(board.contents("page.plist.damaged"), damaged);
    EXPECT_EQ(loadPages(board.at(kPagesName)).size(), 1U);
  }
}

// A sound file that could not be read for once: it is all there in the one set aside.
TEST(ADamagedFile, MayBeASoundOneThatTheDiskWouldNotGive) {
  struct Row {
    const char* name;
    Call call;
    int nth;
  };
  // The snap list is read when its page is shown, the log first when it is saved.
  for (const Row& row : {Row{"open", Call::kOpen, 1}, Row{"read", Call::kRead, 1}}) {
    SCOPED_TRACE(row.name);
    DamagedBoard board;
    board.open();
    const std::string snap = board.contents(snapName("1_1"));
    const std::string whole = board.contents(wholeName("1_1"));
    board.calls().inject(Fault::failingFrom(row.call, row.nth, EIO));
    EXPECT_EQ(board.show(1), Tale());
    board.draw("new");
    static_cast<void>(board->wholeVectorss());
    board.calls().heal();
    board.save();
    EXPECT_EQ(board.setAside(),
              (Names{snapName("1_1") + ".damaged", wholeName("1_1") + ".damaged"}));
    EXPECT_EQ(board.contents(snapName("1_1") + ".damaged"), snap);
    EXPECT_EQ(board.contents(wholeName("1_1") + ".damaged"), whole);
    EXPECT_EQ(board.identifiers(wholeName("1_1")), Strings{"new"});
  }
}

TEST(ADamagedFile, ThatCanNeitherBeOpenedNorLookedAtIsKeptToo) {
  DamagedBoard board;
  board.open();
  const std::string snap = board.contents(snapName("1_1"));
  board.calls().inject(Fault::failingFrom(Call::kOpen, 1, EIO));
  board.calls().inject(Fault::failingFrom(Call::kStatus, 1, EIO));
  EXPECT_EQ(board.show(1), Tale());
  board.settle();
  board.calls().heal();
  board.draw("new");
  board.save();
  EXPECT_EQ(board.contents(snapName("1_1") + ".damaged"), snap);
  EXPECT_EQ(board.identifiers(snapName("1_1")), Strings{"new"});
}

TEST(ADamagedFile, ReplacesTheOneThatWasSetAsideBefore) {
  DamagedBoard board;
  for (const std::string garbage : {"first garbage", "second garbage"}) {
    board.put(snapName("1_1"), garbage);
    board.open();
    board.show(1);
    board.draw("new");
    board.save();
    EXPECT_EQ(board.contents(snapName("1_1") + ".damaged"), garbage);
  }
  EXPECT_EQ(board.setAside(), Names{snapName("1_1") + ".damaged"});
}

TEST(ADamagedFile, IsSetAsideOnceNotWithEverySave) {
  DamagedBoard board;
  board.put(snapName("1_1"), "garbage");
  board.open();
  board.show(1);
  for (int i = 0; i < 3; ++i) {
    board.draw("new " + std::to_string(i));
    board.save();
  }
  EXPECT_EQ(board.contents(snapName("1_1") + ".damaged"), "garbage");
  EXPECT_EQ(board.identifiers(snapName("1_1")), (Strings{"new 0", "new 1", "new 2"}));
}

TEST(ADamagedFile, IsNotReplacedWhileItCannotBeSetAside) {
  DamagedBoard board;
  board.put(snapName("1_1"), "garbage");
  board.open();
  board.show(1);
  board.draw("new");
  board.settle();
  board.calls().inject(Fault::failingFrom(Call::kRename, 1, EACCES));
  for (int i = 0; i < 3; ++i) board.save();
  EXPECT_EQ(board.setAside(), Names());
  EXPECT_EQ(board.contents(snapName("1_1")), "garbage");
  board.calls().heal();
  board.save();
  EXPECT_EQ(board.contents(snapName("1_1") + ".damaged"), "garbage");
  EXPECT_EQ(board.identifiers(snapName("1_1")), Strings{"new"});
}

TEST(ADamagedFile, IsNotReplacedWhileNobodyCanTellWhatItIs) {
  DamagedBoard board;
  board.put(snapName("1_1"), "garbage");
  board.open();
  board.show(1);
  board.draw("new");
  board.settle();
  board.calls().inject(Fault::failingFrom(Call::kStatus, 1, EIO));
  board.save();
  board.calls().heal();
  EXPECT_EQ(board.contents(snapName("1_1")), "garbage");
  board.save();
  EXPECT_EQ(board.contents(snapName("1_1") + ".damaged"), "garbage");
  EXPECT_EQ(board.identifiers(snapName("1_1")), Strings{"new"});
}

TEST(ADamagedFile, GoesWithItsPageWhenThatIsCleared) {
  DamagedBoard board;
  board.put(snapName("1_1"), "garbage");
  board.put(wholeName("1_1"), "garbage");
  board.open();
  board.show(1);
  board->clearPage(*page(1, 1));
  board.settle();
  EXPECT_EQ(board.setAside(), Names());
  EXPECT_FALSE(FileSystem::current().exists(board.at(snapName("1_1"))));
  EXPECT_FALSE(FileSystem::current().exists(board.at(wholeName("1_1"))));
  // What comes after it is a page like any other.
  board.draw("new");
  board.save();
  EXPECT_EQ(board.setAside(), Names());
  EXPECT_EQ(board.identifiers(snapName("1_1")), Strings{"new"});
}

TEST(ADamagedFile, ThatWasSetAsideStaysWhenItsPageIsCleared) {
  DamagedBoard board;
  board.put(snapName("1_1"), "garbage");
  board.open();
  board.show(1);
  board.draw("new");
  board.save();
  board->clearPage(*page(1, 1));
  board.settle();
  EXPECT_EQ(board.setAside(), Names{snapName("1_1") + ".damaged"});
}

TEST(ADamagedFile, GoesWithTheWholeBoardWhenThatIsCleared) {
  DamagedBoard board;
  board.put(snapName("1_1"), "garbage");
  board.put(snapName("1_2"), "garbage");
  board.open();
  board.show(1);
  board.draw("new");
  board.save();
  board.show(2);
  board.settle();
  board->clear();
  board.settle();
  EXPECT_EQ(board.setAside(), Names());
  board.draw("new");
  board.save();
  EXPECT_EQ(board.setAside(), Names());
  EXPECT_EQ(board.identifiers(snapName("1_2")), Strings{"new"});
}

TEST(ADamagedFile, IsNoneThatIsSoundOrMissing) {
  DamagedBoard board;
  board.open();
  for (std::uint64_t number = 1; number <= 3; ++number) {
    board.show(number);
    board.draw("new " + std::to_string(number));
  }
  board->appendVectors({line("appended", 1, 2, 3)}, page(1, 4));
  EXPECT_EQ(board->snapWithPage(*page(1, 5)).size(), 0U);
  board.save();
  EXPECT_EQ(board.setAside(), Names());
  EXPECT_EQ(board.identifiers(wholeName("1_1")), (Strings{"old 1", "new 1"}));
}

// Repaired by somebody while the board is open, and read again: then it is sound.
TEST(ADamagedFile, IsNoneAnyMoreOnceItHasBeenRead) {
  DamagedBoard board;
  const std::string sound = board.contents(snapName("1_2"));
  board.put(snapName("1_2"), "garbage");
  board.open();
  board.show(1);
  EXPECT_EQ(board->snapWithPage(*page(1, 2)).size(), 0U);
  board.put(snapName("1_2"), sound);
  EXPECT_EQ(board->snapWithPage(*page(1, 2)).size(), 1U);
  board->appendVectors({line("appended", 1, 2, 3)}, page(1, 2));
  board.settle();
  EXPECT_EQ(board.setAside(), Names());
  EXPECT_EQ(board.identifiers(snapName("1_2")), (Strings{"old 2", "appended"}));
}

}  // namespace
}  // namespace VelWhiteBoard
