// Two windows in one lesson, with a real server between them.
#include <cerrno>
#include <set>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "VelWhiteBoard/foundation/files/disk_file_system.h"
#include "VelWhiteBoard/foundation/files/file_system.h"

#include "lesson/player.h"
#include "lesson/recording.h"
#include "tests/client/support/nats_server.h"
#include "tests/client/windows/participants.h"
#include "tests/support/faulty_calls.h"

namespace whiteboard {
namespace {

namespace vwb = VelWhiteBoard;
using vwb::TemporaryFolder;

class ALesson : public testing::Test {
 protected:
  std::unique_ptr<Someone> enter(const std::string& name) {
    auto someone = std::make_unique<Someone>(name, folder_.at(name), server_.url());
    EXPECT_TRUE(soon([&] { return someone->isLive(); })) << someone->session().status().problem;
    return someone;
  }
  /// Both have the same entries, and see the same.
  static bool areEqual(Someone& a, Someone& b) {
    if (!a.isSettled() || !b.isSettled()) return false;
    if (textsOf(a.entries()) != textsOf(b.entries())) return false;
    a.view().grab();
    b.view().grab();
    return a.view().picture() == b.view().picture();
  }
  static void expectEqual(Someone& a, Someone& b) {
    EXPECT_TRUE(soon([&] { return areEqual(a, b); }));
    EXPECT_EQ(textsOf(a.entries()), textsOf(b.entries()));
    EXPECT_EQ(a.view().picture(), b.view().picture());
  }
  static void drawOfEverything(Someone& someone) {
    double y = 0.1;
    for (const char* tool : {"Pen", "Marker", "Rectangle", "Triangle", "Eraser", "Arrow"}) {
      someone.take(tool);
      someone.drag(0.1, y, 0.8, y + 0.15);
      y += 0.1;
    }
  }

  TemporaryFolder folder_;
  NatsServer server_;
};

TEST_F(ALesson, ShowsThePupilWhatTheTeacherDraws) {
  const auto teacher = enter("teacher");
  const auto pupil = enter("pupil");
  drawOfEverything(*teacher);
  expectEqual(*teacher, *pupil);
  EXPECT_EQ(pupil->entries().size(), 6u);
}

TEST_F(ALesson, ShowsOwnInkBeforeItComesBack) {
  const auto teacher = enter("teacher");
  server_.hang();
  teacher->take("Pen");
  teacher->drag(0.2, 0.5, 0.8, 0.5);
  EXPECT_TRUE(teacher->entries().empty());
  teacher->view().grab();
  const QImage picture = teacher->view().picture();
  EXPECT_NE(picture.pixelColor(picture.rect().center()), QColor(Qt::white));
}

TEST_F(ALesson, HasBothWhenTwoDrawAtOnce) {
  const auto teacher = enter("teacher");
  const auto pupil = enter("pupil");
  teacher->take("Pen");
  pupil->take("Pen");
  teacher->press(0.1, 0.1);
  pupil->press(0.1, 0.9);
  for (int i = 1; i <= 20; ++i) {
    teacher->moveTo(0.1 + 0.04 * i, 0.1 + 0.04 * i);
    pupil->moveTo(0.1 + 0.04 * i, 0.9 - 0.04 * i);
    QTest::qWait(2);
  }
  teacher->release(0.9, 0.9);
  pupil->release(0.9, 0.1);
  expectEqual(*teacher, *pupil);
  EXPECT_EQ(teacher->entries().size(), 2u);
}

TEST_F(ALesson, GivesALateJoinerEverything) {
  const auto teacher = enter("teacher");
  drawOfEverything(*teacher);
  teacher->session().addPage();
  teacher->take("Pen");
  teacher->drag(0.3, 0.3, 0.6, 0.6);
  ASSERT_TRUE(soon([&] { return teacher->isSettled(); }));
  const auto pupil = enter("pupil");
  ASSERT_TRUE(soon([&] { return pupil->board().number() == teacher->board().number(); }));
  expectEqual(*teacher, *pupil);
  teacher->session().turnToPrevious();
  ASSERT_TRUE(soon([&] { return pupil->board().number() == teacher->board().number(); }));
  expectEqual(*teacher, *pupil);
  EXPECT_EQ(pupil->entries().size(), 6u);
}

TEST_F(ALesson, LosesNothingWhenTheServerIsKilledInTheMiddleOfAStroke) {
  const auto teacher = enter("teacher");
  const auto pupil = enter("pupil");
  teacher->take("Pen");
  teacher->press(0.1, 0.2);
  for (int i = 1; i <= 40; ++i) {
    teacher->moveTo(0.1 + 0.02 * i, 0.2 + (i % 5) * 0.02);
    QTest::qWait(5);
    if (i == 15) server_.kill();
    if (i == 30) server_.start();
  }
  teacher->release(0.95, 0.2);
  expectEqual(*teacher, *pupil);
  const auto stroke = vwb::recordPointerCast<vwb::VelWbVecLine>(pupil->entries().at(0));
  ASSERT_TRUE(stroke && stroke->path);
  EXPECT_EQ(pupil->entries().size(), 1u);
  EXPECT_EQ(stroke->path->size(), 42u);  // where the pen went down, 40 moves, where it came up
}

TEST_F(ALesson, SendsWhatWasDrawnOfflineWhenTheServerIsBack) {
  const auto teacher = enter("teacher");
  const auto pupil = enter("pupil");
  server_.kill();
  ASSERT_TRUE(soon([&] { return !teacher->isLive() && !pupil->isLive(); }));
  teacher->take("Rectangle");
  teacher->drag(0.1, 0.1, 0.3, 0.3);
  pupil->take("Circle");
  pupil->drag(0.5, 0.5, 0.7, 0.7);
  EXPECT_EQ(teacher->session().status().unsent, 1u);
  server_.start();
  expectEqual(*teacher, *pupil);
  EXPECT_EQ(teacher->entries().size(), 2u);
}

TEST_F(ALesson, EndsEqualWhenTwoMoveTheSameBoxAtOnce) {
  const auto teacher = enter("teacher");
  const auto pupil = enter("pupil");
  teacher->take("Rectangle");
  teacher->drag(0.4, 0.4, 0.6, 0.6);
  expectEqual(*teacher, *pupil);
  teacher->take("Select");
  pupil->take("Select");
  teacher->press(0.4, 0.5);
  pupil->press(0.4, 0.5);
  teacher->moveTo(0.2, 0.5);
  pupil->moveTo(0.7, 0.7);
  teacher->release(0.1, 0.5);
  pupil->release(0.8, 0.8);
  expectEqual(*teacher, *pupil);
  EXPECT_EQ(teacher->entries().size(), 1u);
}

TEST_F(ALesson, TurnsThePagesOfEverybodyWhoTurnsTogether) {
  const auto teacher = enter("teacher");
  const auto pupil = enter("pupil");
  teacher->session().addPage();
  EXPECT_TRUE(soon([&] { return pupil->board().number().second == 2; }));
  pupil->session().setTurnsTogether(false);
  pupil->session().turnToPrevious();
  teacher->take("Pen");
  teacher->drag(0.2, 0.2, 0.6, 0.6);
  ASSERT_TRUE(soon([&] { return teacher->isSettled(); }));
  EXPECT_EQ(teacher->board().number().second, 2u);
  EXPECT_EQ(pupil->board().number().second, 1u);
  // What was drawn on the page that the pupil does not see is there, too.
  EXPECT_TRUE(soon([&] {
    return textsOf(pupil->board().entries({1, 2})) == textsOf(teacher->entries());
  }));
}

TEST_F(ALesson, EndsOnThePageThatWasTurnedToLast) {
  const auto teacher = enter("teacher");
  const auto pupil = enter("pupil");
  for (int i = 0; i < 5; ++i) teacher->session().addPage();
  EXPECT_EQ(teacher->board().number().second, 6u);
  std::set<std::uint64_t> shown;
  QObject::connect(&teacher->board(), &Board::pagesChanged, &teacher->window(),
                   [&] { shown.insert(teacher->board().number().second); });
  ASSERT_TRUE(soon([&] { return teacher->isSettled() && pupil->board().number().second == 6; }));
  QTest::qWait(50);
  EXPECT_EQ(teacher->board().number().second, 6u);
  for (std::uint64_t page = 1; page < 6; ++page) EXPECT_EQ(shown.count(page), 0u);
}

TEST_F(ALesson, IsTheSameWhenAPupilComesBackWhoHasNotSeenAPage) {
  const auto teacher = enter("teacher");
  auto pupil = enter("pupil");
  pupil->session().setTurnsTogether(false);
  teacher->session().addPage();
  drawOfEverything(*teacher);
  ASSERT_TRUE(soon([&] {
    return textsOf(pupil->board().entries({1, 2})) == textsOf(teacher->entries());
  }));
  const auto writing = pupil->board().storage().saveQueue();
  pupil.reset();
  writing->waitUntilAllOperationsAreFinished();
  pupil = enter("pupil");
  ASSERT_TRUE(soon([&] { return pupil->board().number().second == 2; }));
  expectEqual(*teacher, *pupil);
}

TEST_F(ALesson, DoesNotBringBackWhatWasRemovedDuringADrag) {
  const auto teacher = enter("teacher");
  const auto pupil = enter("pupil");
  teacher->take("Rectangle");
  teacher->drag(0.4, 0.4, 0.6, 0.6);
  expectEqual(*teacher, *pupil);
  pupil->take("Select");
  pupil->press(0.4, 0.5);
  pupil->moveTo(0.5, 0.6);
  teacher->session().remove(*teacher->entries().front()->ID);
  ASSERT_TRUE(soon([&] { return pupil->entries().empty(); }));
  pupil->release(0.6, 0.7);
  expectEqual(*teacher, *pupil);
  EXPECT_TRUE(pupil->entries().empty());
}

TEST_F(ALesson, ShowsAPointerUntilTheNextVector) {
  const auto teacher = enter("teacher");
  const auto pupil = enter("pupil");
  teacher->take("Pointer");
  teacher->click(0.5, 0.5);
  ASSERT_TRUE(soon([&] { return pupil->entries().size() == 1; }));
  EXPECT_EQ(pupil->entries().front()->type, "cursor");
  teacher->take("Pen");
  teacher->drag(0.1, 0.1, 0.2, 0.2);
  expectEqual(*teacher, *pupil);
  EXPECT_EQ(pupil->entries().size(), 1u);
  EXPECT_EQ(pupil->entries().front()->type, "line");
}

TEST_F(ALesson, TakesAPointerOffWhenItsToolIsPutAway) {
  const auto teacher = enter("teacher");
  const auto pupil = enter("pupil");
  teacher->take("Pointer");
  teacher->click(0.5, 0.5);
  ASSERT_TRUE(soon([&] { return pupil->entries().size() == 1; }));
  const auto late = enter("late");
  EXPECT_TRUE(late->entries().empty()) << "it is not kept";
  teacher->take("Pen");
  EXPECT_TRUE(soon([&] { return pupil->entries().empty() && teacher->entries().empty(); }));
}

TEST_F(ALesson, LosesNoEntryToWhatIsOnlyShown) {
  const auto teacher = enter("teacher");
  teacher->take("Pen");
  teacher->drag(0.2, 0.2, 0.4, 0.4);
  ASSERT_TRUE(soon([&] { return teacher->isSettled(); }));
  auto cursor = vwb::VelWbVecSquare::initWithType("cursor");
  cursor->ID = "p";
  teacher->session().stopPointing(*teacher->entries().front()->ID);
  teacher->session().point(cursor);
  ASSERT_TRUE(soon([&] { return teacher->entries().size() == 2; }));
  EXPECT_EQ(teacher->entries().front()->type, "line");
}

TEST_F(ALesson, StillTakesPointersThatItHasKept) {
  const auto teacher = enter("teacher");
  auto cursor = vwb::VelWbVecSquare::initWithType("cursor");
  cursor->ID = "old_1";
  teacher->session().send(cursor);
  ASSERT_TRUE(soon([&] { return teacher->entries().size() == 1; }));
  NatsBus bus(NatsBus::Options{server_.url(), "maths", "", ""});
  const ReadRecording read = recordLesson(bus, 30);
  EXPECT_EQ(read.recording.events.size(), 1u);
  const TemporaryFolder folder;
  Board board(folder.path());
  Player player(board, read.recording);
  player.seek(player.duration());
  EXPECT_EQ(textsOf(board.entries(board.number())), textsOf(teacher->entries()));
}

TEST_F(ALesson, IsReplayedAsItWent) {
  const auto teacher = enter("teacher");
  drawOfEverything(*teacher);
  teacher->session().addPage();
  drawOfEverything(*teacher);
  ASSERT_TRUE(soon([&] { return teacher->isSettled(); }));

  NatsBus bus(NatsBus::Options{server_.url(), "maths", "", ""});
  ReadRecording read = recordLesson(bus, 30);
  ASSERT_EQ(read.problem, "");
  const TemporaryFolder folder;
  Board board(folder.path());
  Player player(board, read.recording);
  player.seek(player.duration());
  EXPECT_TRUE(player.isAtEnd());
  for (const Board::PageNumber& page : teacher->board().pages()) {
    EXPECT_EQ(textsOf(board.entries(page)), textsOf(teacher->board().entries(page)));
  }
  player.seek(0);
  player.seek(player.duration() / 2);
  player.seek(player.duration());
  EXPECT_EQ(textsOf(board.entries(board.number())), textsOf(teacher->entries()));
}

TEST(AFullDisk, IsShownAndWhatWasDrawnIsWrittenLater) {
  vwb::FaultyCalls calls;
  vwb::DiskFileSystem disk(calls);
  const vwb::ScopedFileSystem scope(disk);
  const TemporaryFolder folder;
  std::shared_ptr<vwb::OperationQueue> writing;
  {
    Someone someone(folder.path());
    calls.inject(vwb::Fault::noSpace(1));
    someone.take("Pen");
    someone.drag(0.2, 0.2, 0.4, 0.4);
    EXPECT_TRUE(soon([&] {
      return someone.window().status().saved() == "Not saved: No space left on device";
    })) << someone.window().status().saved().toStdString();
    calls.heal();
    someone.drag(0.2, 0.5, 0.4, 0.6);
    EXPECT_TRUE(soon([&] { return someone.window().status().saved().startsWith("Saved "); }))
        << someone.window().status().saved().toStdString();
    writing = someone.board().storage().saveQueue();
  }
  writing->waitUntilAllOperationsAreFinished();
  Someone again(folder.path());
  EXPECT_EQ(again.entries().size(), 2u);
}

}  // namespace
}  // namespace whiteboard
