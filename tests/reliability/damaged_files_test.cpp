// A file that exists but cannot be read is an empty list; before it is replaced it is set aside, so
// that somebody may still recover it.
#include <cerrno>
#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/reliability/damaged_board.h"

namespace VelWhiteBoard {
namespace {

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
    EXPECT_EQ(readPages(board.at(kPagesName)).list.size(), 1U);
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

TEST(ADamagedFile, IsSetAsideBesideThoseThatWereSetAsideBefore) {
  DamagedBoard board;
  const std::string aside = snapName("1_1") + ".damaged";
  for (const std::string garbage : {"first garbage", "second garbage"}) {
    board.put(snapName("1_1"), garbage);
    board.open();
    board.show(1);
    board.draw("new");
    board.save();
  }
  EXPECT_EQ(board.contents(aside), "first garbage");
  EXPECT_EQ(board.contents(aside + "-2"), "second garbage");
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

}  // namespace
}  // namespace VelWhiteBoard
