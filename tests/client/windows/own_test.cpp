// What one sees of one's own doing before the lesson has it, and when it never will.
#include <QStatusBar>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/client/support/nats_server.h"
#include "tests/client/windows/participants.h"
#include "window/page_export.h"

namespace whiteboard {
namespace {

namespace vwb = VelWhiteBoard;
using vwb::TemporaryFolder;

class OwnEntries : public testing::Test {
 protected:
  std::unique_ptr<Someone> enter(const std::string& name) {
    auto someone = std::make_unique<Someone>(name, folder_.at(name), server_.url());
    EXPECT_TRUE(soon([&] { return someone->isLive(); })) << someone->session().status().problem;
    return someone;
  }
  /// The colour in the middle of the page.
  static QColor middleOf(Someone& someone) {
    someone.view().grab();
    const QImage picture = someone.view().picture();
    return picture.pixelColor(picture.rect().center());
  }
  static void drawThroughTheMiddle(Someone& someone) {
    someone.take("Pen");
    someone.drag(0.3, 0.5, 0.7, 0.5);
  }
  static bool areEqual(Someone& a, Someone& b) {
    if (!a.isSettled() || !b.isSettled()) return false;
    a.view().grab();
    b.view().grab();
    return textsOf(a.entries()) == textsOf(b.entries()) && a.view().picture() == b.view().picture();
  }

  TemporaryFolder folder_;
  NatsServer server_{{.maxPayload = 20000}};
};

TEST_F(OwnEntries, GoWhenTheLessonDoesNotTakeThem) {
  const auto teacher = enter("teacher");
  auto text = vwb::recordPointerCast<vwb::VelWbVecText>(vwb::VWBToolManager::genVectorWithTool(
      vwb::VelWBToolText, teacher->session().newIdentifier()));
  text->text = std::string(30000, 'x');
  teacher->session().draw(text);
  EXPECT_TRUE(soon([&] { return teacher->isSettled(); }));
  EXPECT_TRUE(teacher->entries().empty());
  EXPECT_FALSE(teacher->session().canUndo());
  EXPECT_THAT(teacher->window().status().connection().toStdString(),
              testing::HasSubstr("A message was not sent"));
}

TEST_F(OwnEntries, AreTakenBackNewestFirstWithoutAConnection) {
  const auto teacher = enter("teacher");
  drawThroughTheMiddle(*teacher);
  ASSERT_TRUE(soon([&] { return teacher->isSettled(); }));
  const auto drawn = textsOf(teacher->entries());
  server_.kill();
  ASSERT_TRUE(soon([&] { return !teacher->isLive(); }));
  teacher->drag(0.3, 0.2, 0.7, 0.2);
  EXPECT_TRUE(teacher->session().canUndo());
  teacher->session().undo();
  EXPECT_TRUE(teacher->session().canRedo());
  server_.start();
  ASSERT_TRUE(soon([&] { return teacher->isLive() && teacher->isSettled(); }));
  EXPECT_EQ(textsOf(teacher->entries()), drawn);
}

TEST_F(OwnEntries, OfAnEarlierRunAreShownBeforeTheyAreSent) {
  server_.kill();
  {
    Someone teacher("teacher", folder_.at("teacher"), server_.url());
    drawThroughTheMiddle(teacher);
    ASSERT_NE(middleOf(teacher), QColor(Qt::white));
  }
  Someone teacher("teacher", folder_.at("teacher"), server_.url());
  EXPECT_TRUE(teacher.entries().empty());
  EXPECT_NE(middleOf(teacher), QColor(Qt::white));
  EXPECT_EQ(teacher.session().status().unsent, 1u);
  server_.start();
  ASSERT_TRUE(soon([&] { return teacher.isLive() && teacher.isSettled(); }));
  EXPECT_EQ(teacher.entries().size(), 1u);
  EXPECT_NE(middleOf(teacher), QColor(Qt::white));
}

TEST_F(OwnEntries, OfAnEarlierRunAreShownOnTheirPages) {
  {
    Someone teacher("teacher", folder_.at("teacher"), server_.url());
    ASSERT_TRUE(soon([&] { return teacher.isLive(); }));
    drawThroughTheMiddle(teacher);
    ASSERT_TRUE(soon([&] { return teacher.isSettled(); }));
    server_.kill();
    ASSERT_TRUE(soon([&] { return !teacher.isLive(); }));
    teacher.session().remove(*teacher.entries().front()->ID);
    teacher.session().addPage();
    drawThroughTheMiddle(teacher);
  }
  Someone teacher("teacher", folder_.at("teacher"), server_.url());
  teacher.session().setTurnsTogether(false);
  teacher.session().turnTo({1, 1});
  EXPECT_EQ(middleOf(teacher), QColor(Qt::white)) << "the line was removed";
  teacher.session().turnTo({1, 2});
  EXPECT_NE(middleOf(teacher), QColor(Qt::white));
}

TEST_F(OwnEntries, AreInAPictureOfThePageThoughTheyHaveNotComeBack) {
  const auto teacher = enter("teacher");
  server_.hang();
  drawThroughTheMiddle(*teacher);
  ASSERT_TRUE(teacher->entries().empty());
  const QString file = QString::fromStdString(folder_.at("page.png"));
  ASSERT_EQ(savePages(teacher->board(), file), QString());
  const QImage picture(file);
  ASSERT_FALSE(picture.isNull());
  EXPECT_NE(picture.pixelColor(picture.rect().center()), QColor(Qt::white));
}

TEST_F(OwnEntries, AreClearedAtOnce) {
  const auto teacher = enter("teacher");
  const auto pupil = enter("pupil");
  drawThroughTheMiddle(*teacher);
  ASSERT_TRUE(soon([&] { return areEqual(*teacher, *pupil); }));
  server_.hang();
  teacher->session().clearPage();
  EXPECT_EQ(middleOf(*teacher), QColor(Qt::white));
  EXPECT_EQ(teacher->entries().size(), 1u);
  EXPECT_EQ(teacher->view().scene().at({1, 1}, 1e4), nullptr) << "what is not seen is not hit";
  teacher->drag(0.5, 0.3, 0.5, 0.7);
  EXPECT_NE(middleOf(*teacher), QColor(Qt::white));
  server_.resume();
  ASSERT_TRUE(soon([&] { return areEqual(*teacher, *pupil); }));
  EXPECT_EQ(pupil->entries().size(), 1u);
}

}  // namespace
}  // namespace whiteboard
