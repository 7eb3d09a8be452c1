// Taking back, with a board that hears of everything, now or later.
#include "lesson/undo.h"

#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/temporary_folder.h"

namespace whiteboard {
namespace {

namespace vwb = VelWhiteBoard;

constexpr const char* kPage = "1_1";

vwb::VectorPtr text(const std::string& ID) {
  auto made = vwb::VelWbVecText::initWithType("text");
  made->ID = ID;
  made->w = made->h = 0.1;
  return made;
}

vwb::VectorPtr clearOf(const std::string& ID) {
  auto made = vwb::VelWbBaseVector::initWithType("clear");
  made->ID = ID;
  return made;
}

/// The participant "me" and a board. What is sent comes back when `comesBack` is called.
class AnUndo : public testing::Test {
 protected:
  AnUndo() {
    board_->setIgnoreChanges(false);
    board_->setChangeObserver([this](const vwb::ChangeReport& report) { undo_.take(report); });
    board_->switchPage(vwb::VelWbVecSwitchPage::pageFromInfo(kPage));
  }
  ~AnUndo() override { board_->setChangeObserver(nullptr); }

  void send(const vwb::VectorPtr& vector) {
    undo_.sent(kPage, *vector);
    sent_.push_back(vector->copyWithZone());
    // As own ink has it.
    const auto* remove = vwb::recordCast<const vwb::VelWbVecRemove>(vector.get());
    if (remove != nullptr) {
      shown_[remove->rmID.value()] = nullptr;
    } else if (vector->type == "clear") {
      shown_.clear();
    } else {
      shown_[vector->ID.value()] = vector;
    }
  }
  void comesBack() {
    for (const vwb::VectorPtr& vector : sent_) board_->saveVector(vector);
    sent_.clear();
  }
  /// What is taken back; "" when nothing.
  std::string undone() {
    const vwb::VectorPtr vector = undo_.undo(kPage, [this](const std::string& ID) {
      const auto found = shown_.find(ID);
      return found == shown_.end() ? nullptr : found->second;
    });
    if (!vector) return "";
    send(vector);
    return vwb::recordCast<const vwb::VelWbVecRemove>(vector.get())->rmID.value();
  }
  std::string redone() {
    const vwb::VectorPtr vector = undo_.redo(kPage);
    if (!vector) return "";
    send(vector);
    return vector->ID.value();
  }
  std::vector<std::string> entries() {
    std::vector<std::string> all;
    for (const auto& each : board_->snapWithPage(*vwb::VelWbVecSwitchPage::pageFromInfo(kPage))) {
      all.push_back(each->ID.value());
    }
    return all;
  }

  vwb::TemporaryFolder folder_;
  std::shared_ptr<vwb::VWBVectorStorage> board_ =
      vwb::VWBVectorStorage::initWithPath(folder_.path());
  Undo undo_{"me"};
  std::vector<vwb::VectorPtr> sent_;
  std::map<std::string, vwb::VectorPtr> shown_;
};

TEST_F(AnUndo, TakesTheNewestBackFirstAndBringsItBackLast) {
  for (const std::string ID : {"me_1", "me_2", "me_3"}) send(text(ID));
  comesBack();
  EXPECT_EQ(undone(), "me_3");
  EXPECT_EQ(undone(), "me_2");
  comesBack();
  EXPECT_EQ(entries(), std::vector<std::string>{"me_1"});
  EXPECT_EQ(redone(), "me_2");
  EXPECT_EQ(redone(), "me_3");
  EXPECT_EQ(redone(), "");
  comesBack();
  EXPECT_EQ(entries(), (std::vector<std::string>{"me_1", "me_2", "me_3"}));
}

TEST_F(AnUndo, TakesBackWhatHasNotComeBack) {
  send(text("me_1"));
  comesBack();
  send(text("me_2"));
  EXPECT_EQ(undone(), "me_2");
  comesBack();
  EXPECT_EQ(entries(), std::vector<std::string>{"me_1"});
  EXPECT_EQ(undone(), "me_1") << "once is enough for the other";
}

TEST_F(AnUndo, BringsBackWhatHadNotComeBack) {
  send(text("me_1"));
  EXPECT_EQ(undone(), "me_1");
  EXPECT_EQ(redone(), "me_1");
  EXPECT_EQ(undone(), "me_1");
  EXPECT_EQ(redone(), "me_1");
  comesBack();
  EXPECT_EQ(entries(), std::vector<std::string>{"me_1"});
  EXPECT_EQ(undone(), "me_1");
  EXPECT_EQ(undone(), "");
}

TEST_F(AnUndo, LeavesTheEntriesOfOthers) {
  send(text("me_1"));
  comesBack();
  board_->saveVector(text("you_1"));
  board_->saveVector(text("meanwhile_1"));
  undo_.sent(kPage, *text("you_1"));  // moved by this participant
  EXPECT_EQ(undone(), "me_1");
  EXPECT_EQ(undone(), "");
}

TEST_F(AnUndo, LeavesAnEntryInItsPlaceWhenItIsChanged) {
  send(text("me_1"));
  send(text("me_2"));
  send(text("me_1"));
  comesBack();
  EXPECT_EQ(undone(), "me_2");
  EXPECT_EQ(undone(), "me_1");
  EXPECT_EQ(undone(), "");
}

TEST_F(AnUndo, PassesOverWhatSomebodyHasRemoved) {
  send(text("me_1"));
  send(text("me_2"));
  comesBack();
  shown_.erase("me_2");
  EXPECT_EQ(undone(), "me_1");
}

TEST_F(AnUndo, KeepsPagesApart) {
  send(text("me_1"));
  EXPECT_TRUE(undo_.canUndo(kPage));
  EXPECT_FALSE(undo_.canUndo("1_2"));
  EXPECT_FALSE(undo_.canRedo(kPage));
  EXPECT_EQ(undone(), "me_1");
  EXPECT_FALSE(undo_.canUndo(kPage));
  EXPECT_TRUE(undo_.canRedo(kPage));
  EXPECT_FALSE(undo_.canRedo("1_2"));
}

TEST_F(AnUndo, DoesNotReachBehindAnOwnClear) {
  send(text("me_1"));
  send(text("me_2"));
  EXPECT_EQ(undone(), "me_2");
  send(clearOf("me_c"));
  send(text("me_3"));
  EXPECT_EQ(undone(), "me_3");
  EXPECT_EQ(undone(), "");
  comesBack();
  EXPECT_TRUE(entries().empty());
  EXPECT_EQ(redone(), "me_3");
  EXPECT_EQ(redone(), "");
}

TEST_F(AnUndo, ForgetsWhatSomebodyClearsButNotWhatIsUnderWay) {
  send(text("me_1"));
  send(text("me_2"));
  EXPECT_EQ(undone(), "me_2");
  comesBack();
  send(text("me_3"));
  board_->saveVector(clearOf("you_c"));
  comesBack();
  EXPECT_EQ(entries(), std::vector<std::string>{"me_3"});
  EXPECT_EQ(redone(), "");
  EXPECT_EQ(undone(), "me_3");
  EXPECT_EQ(undone(), "");
}

TEST_F(AnUndo, ForgetsABoardThatBeginsAnewButNotWhatIsUnderWay) {
  send(text("me_1"));
  comesBack();
  send(text("me_2"));
  board_->clear();
  EXPECT_EQ(undone(), "me_2");
  EXPECT_EQ(undone(), "");
}

TEST_F(AnUndo, ForgetsWhatIsRefused) {
  send(text("me_1"));
  comesBack();
  send(text("me_2"));
  undo_.refused(kPage, *text("me_2"));
  EXPECT_EQ(undone(), "me_1");
}

TEST_F(AnUndo, KeepsAnEntryOfWhichOnlyAChangeIsRefused) {
  send(text("me_1"));
  comesBack();
  undo_.refused(kPage, *text("me_1"));
  EXPECT_EQ(undone(), "me_1");
}

TEST_F(AnUndo, TriesAgainWhenARemoveIsRefused) {
  send(text("me_1"));
  comesBack();
  EXPECT_EQ(undone(), "me_1");
  const vwb::VectorPtr remove = sent_.back();
  sent_.clear();
  undo_.refused(kPage, *remove);
  shown_["me_1"] = text("me_1");
  EXPECT_EQ(redone(), "");
  EXPECT_EQ(undone(), "me_1");
}

TEST_F(AnUndo, DoesNotCountPointersPagesAndRemoves) {
  send(text("me_1"));
  for (const char* type : {"cursor", "magnifier", "camera", "switchPage"}) {
    auto vector = vwb::VelWbBaseVector::initWithType(type);
    vector->ID = std::string("me_") + type;
    undo_.sent(kPage, *vector);
    shown_[*vector->ID] = vector;
  }
  EXPECT_EQ(undone(), "me_1");
  EXPECT_EQ(undone(), "");
}

}  // namespace
}  // namespace whiteboard
