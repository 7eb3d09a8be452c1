// What docs/client.md tells about the lesson's clock, identifiers and page switches.
#include <VelWhiteBoard/VelWhiteBoard.h>
#include <chrono>
#include <cstdint>
#include <memory>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/storage_story.h"

namespace VelWhiteBoard {
namespace {

using std::chrono::milliseconds;
using ::testing::ElementsAre;

// [snippet: lesson-clock]
/// What the server tells a participant who joins.
struct Lesson {
  double created;  // stored with the lesson: the same for everybody, each time the lesson is opened
  double now;      // the server's clock
};

/// Before the first vector, and not while a pen is down.
void join(const Lesson& lesson, const std::string& userID) {
  VelWbVectorManager& clock = VelWbVectorManager::shareManager();
  // The clock that genTs() reads.
  const bool readsMediaClock = VWBToolManager::sharedManager().version() == 1;
  const double here = readsMediaClock ? currentMediaTime() : currentTime();
  clock.setUserID(userID);  // another one on each device
  clock.setCourseCreateTs(lesson.created, lesson.now, here);
  clock.setIsRunning(true);
}
// [end]

// [snippet: identifiers]
/// Identifiers of one session, however many are asked for at once. To be made after `join`, and
/// used by one thread.
class Identifiers {
 public:
  std::string next() { return session_ + '.' + std::to_string(++count_); }

 private:
  std::string session_ = VelWbVectorManager::shareManager().genID();
  std::uint64_t count_ = 0;
};
// [end]

// [snippet: switch-page]
/// A page switch from the factory, which gives it `type`, `ts` and `ID`.
std::shared_ptr<VelWbVecSwitchPage> switchTo(std::int64_t WBID, std::uint64_t curPage) {
  auto page = recordPointerCast<VelWbVecSwitchPage>(
      VWBToolManager::genVectorWithType(VelWBVectorTypeSwitchPage));
  page->WBID = WBID;
  page->curPage = curPage;
  return page;
}
// [end]

class StampsOfTheGuide : public ::testing::Test {
 protected:
  StampsOfTheGuide() { forget(); }
  ~StampsOfTheGuide() override { forget(); }

  static void forget() {
    VelWbVectorManager::shareManager().init();
    VWBToolManager::sharedManager().init();
  }
  /// The process ends, and later begins anew.
  void restart() {
    forget();
    board.reopen();
    board.clock().advance(std::chrono::hours(24));
  }
  void drawStroke() {
    board.clock().advance(milliseconds(1500));
    const VectorPtr stroke = VWBToolManager::genVectorWithTool(VelWBToolLine);
    board.save(stroke);
    board.write();
    board.settle();
  }

  Board board;
  const double created_ = 1'699'990'000;
};

TEST_F(StampsOfTheGuide, StrokesOfTwoSessionsStayApartWhenCreateTsIsTheStoredOne) {
  join({created_, currentTime()}, "u1");
  board->switchPage(switchTo(7, 1));
  drawStroke();
  restart();
  join({created_, currentTime()}, "u1");
  board->switchPage(switchTo(7, 1));
  drawStroke();
  EXPECT_EQ(board.snap().size(), 2U);
}

TEST_F(StampsOfTheGuide, StrokesOfTwoSessionsFuseWhenCreateTsIsNow) {
  join({currentTime(), currentTime()}, "u1");
  board->switchPage(switchTo(7, 1));
  drawStroke();
  restart();
  join({currentTime(), currentTime()}, "u1");
  board->switchPage(switchTo(7, 1));
  drawStroke();
  EXPECT_EQ(board.snap().size(), 1U);
}

TEST_F(StampsOfTheGuide, TheServersTimeIsWhatGenTsTells) {
  join({created_, 1'800'000'000}, "u1");
  board.clock().advance(milliseconds(500));
  EXPECT_DOUBLE_EQ(VelWbVectorManager::shareManager().genTs(), 1'800'000'000.5);
  VWBToolManager::sharedManager().setVersion(1);
  join({created_, 1'800'000'000}, "u1");
  board.clock().advance(milliseconds(500));
  EXPECT_DOUBLE_EQ(VelWbVectorManager::shareManager().genTs(), 1'800'000'000.5);
}

TEST_F(StampsOfTheGuide, BoxesOfOneMomentAreOneUnlessTheyHaveIdentifiersOfTheirOwn) {
  join({created_, currentTime()}, "u1");
  board->switchPage(switchTo(7, 1));
  for (int i = 0; i < 3; ++i) board.save(VWBToolManager::genVectorWithTool(VelWBToolImage));
  EXPECT_EQ(board.snap().size(), 1U);
  Identifiers identifiers;
  for (int i = 0; i < 3; ++i) {
    board.save(VWBToolManager::genVectorWithTool(VelWBToolImage, identifiers.next()));
  }
  EXPECT_EQ(board.snap().size(), 4U);
}

TEST_F(StampsOfTheGuide, AHundredthOfASecondLaterTheIdentifierIsAnother) {
  join({created_, currentTime()}, "u1");
  VelWbVectorManager& clock = VelWbVectorManager::shareManager();
  EXPECT_EQ(clock.genID(), "u1_1000000");
  EXPECT_EQ(clock.genID(), "u1_1000000");
  board.clock().advance(milliseconds(15));
  EXPECT_EQ(clock.genID(), "u1_1000001");
  EXPECT_EQ(Identifiers().next(), "u1_1000001.1");
}

TEST_F(StampsOfTheGuide, PageSwitchesFromTheFactoryAreAllRemembered) {
  join({created_, currentTime()}, "u1");
  for (std::uint64_t number = 1; number <= 3; ++number) {
    board->switchPage(switchTo(7, number));
    board.clock().advance(milliseconds(2));
  }
  EXPECT_THAT(tell(board->pageArray()), ElementsAre("7_1", "7_2", "7_3"));
}

TEST_F(StampsOfTheGuide, PageSwitchesWithoutATimeCollapseIntoOne) {
  for (std::uint64_t number = 1; number <= 3; ++number) {
    const auto page = VelWbVecSwitchPage::initWithType(VelWBVectorStrSwitchPage);
    page->curPage = number;
    board->switchPage(page);
  }
  EXPECT_THAT(tell(board->pageArray()), ElementsAre("0_3"));
}

TEST_F(StampsOfTheGuide, PageSwitchesCollapseAlsoWhileTheClockStands) {
  VelWbVectorManager::shareManager().setCourseCreateTs(created_, 5, 1);
  for (std::uint64_t number = 1; number <= 3; ++number) {
    board->switchPage(switchTo(7, number));
    board.clock().advance(milliseconds(2));
  }
  EXPECT_THAT(tell(board->pageArray()), ElementsAre("7_3"));
}

TEST_F(StampsOfTheGuide, APieceIsLostWhenTheClockIsSetBackWhileThePenIsDown) {
  join({created_, currentTime()}, "u1");
  board->switchPage(switchTo(7, 1));
  const auto draw = [&] {
    board.clock().advance(milliseconds(16));
    const VectorPtr piece = VWBToolManager::genVectorWithTool(VelWBToolLine, "s");
    board.save(piece);
  };
  draw();
  draw();
  join({created_, currentTime() - 1}, "u1");
  draw();
  const auto stroke = recordPointerCast<VelWbVecLine>(board->entryWithID("s"));
  EXPECT_EQ(stroke->path->size(), 2U);
}

}  // namespace
}  // namespace VelWhiteBoard
