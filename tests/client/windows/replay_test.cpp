// Playing a recorded lesson from a file.
#include <QSlider>
#include <fstream>
#include <string>

#include <gtest/gtest.h>

#include "lesson/player.h"
#include "lesson/recording.h"
#include "tests/client/windows/participants.h"
#include "tests/support/temporary_folder.h"
#include "window/replay_window.h"

namespace whiteboard {
namespace {

namespace vwb = VelWhiteBoard;
using vwb::TemporaryFolder;

const std::string kLesson = std::string(VELWB_LESSONS) + "/second_lesson.ndjson";

class AReplay : public testing::Test {
 protected:
  std::vector<std::vector<std::string>> pages() {
    std::vector<std::vector<std::string>> all;
    for (const Board::PageNumber& page : board_.pages())
      all.push_back(textsOf(board_.entries(page)));
    return all;
  }

  TemporaryFolder folder_;
  ReadRecording read_ = readRecording(kLesson);
  Board board_{folder_.path(),
               {read_.recording.firstPage()->WBID, read_.recording.firstPage()->curPage}};
  Player player_{board_, read_.recording};
};

/// The pages of a lesson that was saved vector by vector.
std::vector<std::vector<std::string>> pagesOfSavedLesson(std::set<std::string>& keys) {
  const TemporaryFolder folder;
  const auto board = vwb::VWBVectorStorage::initWithPath(folder.path());
  board->setIgnoreChanges(false);
  std::ifstream lines(kLesson);
  for (std::string line; std::getline(lines, line);) {
    const vwb::VectorPtr vector = vwb::modelWithJSON<vwb::VelWbBaseVector>(line);
    if (const auto page = vwb::recordPointerCast<vwb::VelWbVecSwitchPage>(vector)) {
      keys.insert(page->pageInfo());
      board->switchPage(page);
    } else {
      board->saveVector(vector);
    }
  }
  std::vector<std::vector<std::string>> all;
  for (const std::string& key : keys) {
    all.push_back(textsOf(board->snapWithPage(*vwb::VelWbVecSwitchPage::pageFromInfo(key))));
  }
  return all;
}

TEST_F(AReplay, EndsAsTheBoardDid) {
  player_.seek(player_.duration());
  EXPECT_TRUE(player_.isAtEnd());
  std::set<std::string> keys;
  EXPECT_EQ(pages(), pagesOfSavedLesson(keys));
  EXPECT_EQ(board_.pages().size(), keys.size());
}

TEST_F(AReplay, ShowsTheSameHoweverAPositionIsReached) {
  const double middle = player_.duration() / 2;
  player_.seek(middle);
  const auto once = pages();
  player_.seek(player_.duration());
  EXPECT_NE(pages(), once);
  player_.seek(middle);
  EXPECT_EQ(pages(), once);
  for (double position = 0; position < middle; position += 0.7) player_.seek(position);
  player_.seek(middle);
  EXPECT_EQ(pages(), once);
}

TEST_F(AReplay, TakesPositionsOutsideTheLessonAsItsEnds) {
  player_.seek(-5);
  EXPECT_EQ(player_.position(), 0);
  player_.seek(1e9);
  EXPECT_EQ(player_.position(), player_.duration());
  player_.seek(std::nan(""));
  EXPECT_EQ(player_.position(), 0);
}

TEST_F(AReplay, PlaysFasterWhenItIsTold) {
  ASSERT_GT(player_.duration(), 45);  // at its own speed it does not end while we wait
  player_.setSpeed(1000);             // becomes 60
  player_.play();
  EXPECT_TRUE(player_.isPlaying());
  EXPECT_TRUE(soon([&] { return player_.isAtEnd(); }));
  EXPECT_FALSE(player_.isPlaying());
}

TEST_F(AReplay, JumpsWhereTheSliderIsClicked) {
  ReplayWindow window(board_, player_);
  window.show();
  ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
  QSlider& slider = window.slider();
  QTest::mouseClick(&slider, Qt::LeftButton, Qt::NoModifier,
                    QPoint(slider.width() / 2, slider.height() / 2));
  EXPECT_NEAR(player_.position(), player_.duration() / 2, player_.duration() * 0.03);
}

TEST(AFileThatIsNoRecording, IsToldOf) {
  const TemporaryFolder folder;
  EXPECT_EQ(readRecording(folder.at("none")).problem, "cannot open " + folder.at("none"));
  std::ofstream(folder.at("words")) << "no vector\n\n{}\n[1]\n";
  const ReadRecording read = readRecording(folder.at("words"));
  EXPECT_EQ(read.skipped, 3u);
  EXPECT_NE(read.problem.find("holds no lesson"), std::string::npos);
  EXPECT_NE(readRecording(folder.path()).problem, "");
}

}  // namespace
}  // namespace whiteboard
