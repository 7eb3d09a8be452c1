// A window without a lesson: the tools, and the board's files.
#include <QClipboard>
#include <QGuiApplication>
#include <QPlainTextEdit>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "drawing/export.h"
#include "tests/client/windows/participants.h"

namespace whiteboard {
namespace {

namespace vwb = VelWhiteBoard;
using vwb::TemporaryFolder;

class AWindow : public testing::Test {
 protected:
  vwb::VectorPtr only() {
    const vwb::VectorList entries = someone_.entries();
    EXPECT_EQ(entries.size(), 1u);
    return entries.empty() ? nullptr : entries.front();
  }

  TemporaryFolder folder_;
  Someone someone_{folder_.path()};
};

TEST_F(AWindow, DrawsStrokesOfPenMarkerAndEraser) {
  for (const char* tool : {"Pen", "Marker", "Eraser"}) {
    someone_.take(tool);
    someone_.drag(0.2, 0.2, 0.6, 0.5);
  }
  const vwb::VectorList entries = someone_.entries();
  ASSERT_EQ(entries.size(), 3u);
  EXPECT_EQ(entries[0]->type, "line");
  EXPECT_EQ(entries[1]->type, "markerPen");
  EXPECT_EQ(entries[2]->type, "eraser");
  const auto stroke = vwb::recordPointerCast<vwb::VelWbVecLine>(entries[0]);
  ASSERT_TRUE(stroke && stroke->path);
  EXPECT_TRUE(stroke->end);
  EXPECT_NEAR((*stroke->path)[0][0], -0.3, 0.003);
  EXPECT_NEAR((*stroke->path)[0][1], -0.3, 0.003);
  EXPECT_NEAR(stroke->path->back()[0], 0.1, 0.003);
  EXPECT_NEAR(stroke->path->back()[1], 0.0, 0.003);
}

TEST_F(AWindow, DrawsTheSevenShapes) {
  for (const char* tool :
       {"Rectangle", "Circle", "Ellipse", "Triangle", "Rhombus", "Line", "Arrow"}) {
    someone_.take(tool);
    someone_.drag(0.2, 0.2, 0.4, 0.5);
  }
  std::vector<std::string> kinds;
  for (const auto& entry : someone_.entries()) {
    const auto diagram = vwb::recordPointerCast<vwb::VelWbVecDiagram>(entry);
    ASSERT_TRUE(diagram);
    kinds.push_back(diagram->kind.value_or(""));
  }
  EXPECT_THAT(kinds, testing::ElementsAre("rectangle", "circle", "ellipse", "triangle", "rhombus",
                                          "line", "arrowLine"));
}

TEST_F(AWindow, DrawsNoShapeForAClick) {
  someone_.take("Rectangle");
  someone_.click(0.5, 0.5);
  EXPECT_TRUE(someone_.entries().empty());
  EXPECT_TRUE(someone_.board().ink().inks().empty());
}

TEST_F(AWindow, WritesATextAndEditsIt) {
  someone_.take("Text");
  someone_.click(0.3, 0.3);
  QWidget* editor = someone_.view().findChild<QPlainTextEdit*>();
  ASSERT_NE(editor, nullptr);
  QTest::keyClicks(editor, "Two words");
  QTest::keyClick(editor, Qt::Key_Return, Qt::ControlModifier);
  auto text = vwb::recordPointerCast<vwb::VelWbVecText>(only());
  ASSERT_TRUE(text);
  EXPECT_EQ(text->text, "Two words");
  EXPECT_EQ(text->ps, 400);

  QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  someone_.click(0.32, 0.33);
  editor = someone_.view().findChild<QPlainTextEdit*>();
  ASSERT_NE(editor, nullptr);
  QTest::keyClick(editor, Qt::Key_End);
  QTest::keyClicks(editor, " more");
  QTest::keyClick(editor, Qt::Key_Escape);
  text = vwb::recordPointerCast<vwb::VelWbVecText>(only());
  EXPECT_EQ(text->text, "Two words more");
}

TEST_F(AWindow, MovesResizesAndDeletesWhatIsSelected) {
  someone_.take("Rectangle");
  someone_.drag(0.2, 0.2, 0.4, 0.4);
  someone_.take("Select");
  someone_.drag(0.2, 0.3, 0.3, 0.4);
  auto box = vwb::recordPointerCast<vwb::VelWbVecSquare>(only());
  EXPECT_NEAR(box->x, -0.2, 0.005);
  EXPECT_NEAR(box->y, -0.2, 0.005);
  EXPECT_NEAR(box->w, 0.2, 0.005);
  someone_.drag(0.5, 0.5, 0.6, 0.7);  // its lower right corner
  box = vwb::recordPointerCast<vwb::VelWbVecSquare>(only());
  EXPECT_NEAR(box->x, -0.2, 0.005);
  EXPECT_NEAR(box->w, 0.3, 0.005);
  EXPECT_NEAR(box->h, 0.4, 0.005);
  QTest::keyClick(&someone_.view(), Qt::Key_Delete);
  EXPECT_TRUE(someone_.entries().empty());
}

TEST_F(AWindow, MovesAStrokeByItsOffset) {
  someone_.take("Pen");
  someone_.drag(0.2, 0.2, 0.4, 0.2);
  someone_.take("Select");
  for (int i = 0; i < 2; ++i) someone_.drag(0.3, 0.2 + 0.1 * i, 0.3, 0.3 + 0.1 * i);
  const auto stroke = vwb::recordPointerCast<vwb::VelWbVecLine>(only());
  ASSERT_TRUE(stroke && stroke->offset);
  EXPECT_NEAR((*stroke->offset)[0].get<double>(), 0, 0.005);
  EXPECT_NEAR((*stroke->offset)[1].get<double>(), 0.2, 0.005);
}

TEST_F(AWindow, LeavesAnEntryThatIsDraggedOutAndBack) {
  someone_.take("Rectangle");
  someone_.drag(0.2, 0.2, 0.4, 0.4);
  const auto before = textsOf(someone_.entries());
  someone_.take("Select");
  someone_.press(0.2, 0.3);
  someone_.moveTo(0.5, 0.6);
  someone_.moveTo(0.2, 0.3);
  someone_.release(0.2, 0.3);
  EXPECT_EQ(textsOf(someone_.entries()), before);
  EXPECT_TRUE(someone_.board().ink().inks().empty());
}

TEST_F(AWindow, GivesUpADragWithEscape) {
  someone_.take("Rectangle");
  someone_.drag(0.2, 0.2, 0.4, 0.4);
  const auto before = textsOf(someone_.entries());
  someone_.take("Select");
  someone_.press(0.2, 0.3);
  someone_.moveTo(0.5, 0.6);
  QTest::keyClick(&someone_.view(), Qt::Key_Delete);  // not while it is dragged
  QTest::keyClick(&someone_.view(), Qt::Key_Escape);
  someone_.release(0.5, 0.6);
  EXPECT_EQ(textsOf(someone_.entries()), before);
  EXPECT_TRUE(someone_.board().ink().inks().empty());
}

TEST_F(AWindow, KeepsThePictureOfAnImageThatIsMoved) {
  QImage picture(80, 45, QImage::Format_RGB32);
  picture.fill(Qt::red);
  QGuiApplication::clipboard()->setImage(picture);
  for (QAction* action : someone_.window().actions()) {
    if (action->text() == "Paste") action->trigger();
  }
  someone_.drag(0.5, 0.5, 0.6, 0.6);
  const auto image = vwb::recordPointerCast<vwb::VelWbVecFile>(only());
  ASSERT_TRUE(image);
  EXPECT_NEAR(image->x, -0.1, 0.005);
  EXPECT_TRUE(image->url.value_or("").starts_with("data:image/png;base64,"));
}

TEST_F(AWindow, MovesAStrokeThatHasNoEnd) {
  auto stroke = vwb::VelWbVecLine::initWithType("line");
  stroke->ID = "crashed_1";
  stroke->pixel = 4;
  stroke->ps = 400;
  stroke->path.emplace();
  for (int i = 0; i < 10; ++i) stroke->path->push_back({-0.3 + 0.02 * i, 0, 1.0 + i});
  someone_.board().file("1_1", stroke);
  someone_.take("Select");
  someone_.drag(0.3, 0.5, 0.3, 0.7);
  EXPECT_TRUE(someone_.board().ink().inks().empty());
  EXPECT_TRUE(vwb::recordPointerCast<vwb::VelWbVecLine>(only())->offset.has_value());
}

TEST_F(AWindow, KeepsWhatATextEditorHoldsWhenThePageIsTurned) {
  someone_.take("Text");
  someone_.click(0.3, 0.3);
  QWidget* editor = someone_.view().findChild<QPlainTextEdit*>();
  ASSERT_NE(editor, nullptr);
  QTest::keyClicks(editor, "First page");
  someone_.session().addPage();
  EXPECT_TRUE(someone_.entries().empty());
  someone_.session().turnToPrevious();
  EXPECT_EQ(vwb::recordPointerCast<vwb::VelWbVecText>(only())->text, "First page");
}

TEST_F(AWindow, TurnsNoPageWhileThePenIsDown) {
  someone_.take("Pen");
  someone_.press(0.5, 0.5);
  someone_.session().addPage();
  someone_.moveTo(0.6, 0.6);
  someone_.release(0.6, 0.6);
  EXPECT_EQ(someone_.board().number().second, 1u);
  EXPECT_TRUE(vwb::recordPointerCast<vwb::VelWbVecLine>(only())->end);
}

TEST_F(AWindow, TakesAnEditorThatADoubleClickHasOpened) {
  someone_.take("Text");
  someone_.click(0.3, 0.3);
  QTest::keyClicks(someone_.view().findChild<QPlainTextEdit*>(), "Old");
  someone_.take("Select");
  EXPECT_EQ(vwb::recordPointerCast<vwb::VelWbVecText>(only())->text, "Old");
  QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  QTest::mouseDClick(&someone_.view(), Qt::LeftButton, Qt::NoModifier, someone_.at(0.32, 0.33));
  QWidget* editor = someone_.view().findChild<QPlainTextEdit*>();
  ASSERT_NE(editor, nullptr);
  QTest::keyClick(editor, Qt::Key_End);
  QTest::keyClicks(editor, "er");
  someone_.take("Pen");
  EXPECT_EQ(vwb::recordPointerCast<vwb::VelWbVecText>(only())->text, "Older");
}

TEST_F(AWindow, UndoesAndRedoesWhatWasDrawn) {
  someone_.take("Pen");
  someone_.drag(0.2, 0.2, 0.4, 0.2);
  someone_.drag(0.2, 0.5, 0.4, 0.5);
  const std::vector<std::string> drawn = textsOf(someone_.entries());
  ASSERT_EQ(drawn.size(), 2u);
  someone_.session().undo();
  EXPECT_EQ(textsOf(someone_.entries()), std::vector<std::string>{drawn[0]});
  someone_.session().undo();
  EXPECT_TRUE(someone_.entries().empty());
  EXPECT_FALSE(someone_.session().canUndo());
  someone_.session().redo();
  someone_.session().redo();
  EXPECT_EQ(textsOf(someone_.entries()), drawn);
}

TEST_F(AWindow, TakesNothingBackWhileThePenIsDown) {
  someone_.take("Pen");
  someone_.drag(0.2, 0.2, 0.4, 0.2);
  someone_.press(0.5, 0.5);
  someone_.session().undo();
  EXPECT_EQ(someone_.entries().size(), 2u);
  someone_.release(0.6, 0.6);
}

TEST_F(AWindow, PutsAPictureOnThePage) {
  QImage picture(80, 60, QImage::Format_RGB32);
  picture.fill(Qt::red);
  QGuiApplication::clipboard()->setImage(picture);
  for (QAction* action : someone_.window().actions()) {
    if (action->text() == "Paste") action->trigger();
  }
  const auto image = vwb::recordPointerCast<vwb::VelWbVecFile>(only());
  ASSERT_TRUE(image);
  EXPECT_TRUE(image->url.value_or("").starts_with("data:image/png;base64,"));
  const QPoint middle = someone_.view().picture().rect().center();
  someone_.view().grab();
  EXPECT_EQ(someone_.view().picture().pixelColor(middle), QColor(Qt::red));
}

TEST_F(AWindow, TurnsPagesAndClearsOne) {
  someone_.take("Pen");
  someone_.drag(0.2, 0.2, 0.4, 0.2);
  someone_.session().addPage();
  EXPECT_TRUE(someone_.entries().empty());
  someone_.drag(0.2, 0.2, 0.4, 0.4);
  someone_.drag(0.5, 0.2, 0.6, 0.4);
  EXPECT_EQ(someone_.entries().size(), 2u);
  someone_.session().turnToPrevious();
  EXPECT_EQ(someone_.entries().size(), 1u);
  someone_.session().turnToNext();
  someone_.session().clearPage();
  EXPECT_TRUE(someone_.entries().empty());
  someone_.session().turnToPrevious();
  EXPECT_EQ(someone_.entries().size(), 1u);
}

TEST_F(AWindow, ShowsWhatDrawingTheWholePageShows) {
  const auto tools = {"Pen", "Marker", "Rectangle", "Eraser", "Arrow", "Ellipse"};
  unsigned seed = 7;
  const auto next = [&seed] {
    seed = seed * 1664525u + 1013904223u;
    return 0.05 + 0.9 * (seed >> 8) / double(1u << 24);
  };
  for (int round = 0; round < 8; ++round) {
    for (const char* tool : tools) {
      someone_.take(tool);
      someone_.drag(next(), next(), next(), next());
    }
    someone_.take("Select");
    someone_.drag(next(), next(), next(), next());
    someone_.session().undo();
    someone_.view().grab();  // draws what is stale
  }
  someone_.take("Pen");
  someone_.view().grab();
  const QImage shown = someone_.view().picture();
  EXPECT_EQ(shown, pictureOf(someone_.entries(), shown.size()).convertToFormat(shown.format()));
}

TEST_F(AWindow, LeavesNoTraceOfABoxWhereItHasBeenPaintedOnItsWay) {
  for (const char* tool : {"Rectangle", "Triangle", "Ellipse", "Arrow"}) {
    someone_.take(tool);
    someone_.drag(0.1, 0.1, 0.3, 0.3);
    someone_.take("Select");
    someone_.press(0.2, 0.1);
    for (double at = 0.3; at < 0.7; at += 0.1) {
      someone_.moveTo(at, at);
      someone_.view().grab();  // draws what is stale
    }
    someone_.release(0.7, 0.6);
  }
  someone_.take("Pen");
  someone_.view().grab();
  const QImage shown = someone_.view().picture();
  EXPECT_EQ(shown, pictureOf(someone_.entries(), shown.size()).convertToFormat(shown.format()));
}

TEST_F(AWindow, LeavesNoTraceOfABoxThatOthersMoveTwice) {
  someone_.take("Rectangle");
  someone_.drag(0.1, 0.1, 0.3, 0.3);
  for (const double x : {-0.2, 0.1, 0.3}) {
    const auto moved = someone_.entries().front()->copyWithZone();
    auto* box = VelWhiteBoard::recordCast<VelWhiteBoard::VelWbVecSquare>(moved.get());
    box->x = x;
    box->ts += 1;
    someone_.board().file(someone_.board().pageKey(), moved);
    someone_.view().grab();
  }
  const QImage shown = someone_.view().picture();
  EXPECT_EQ(shown, pictureOf(someone_.entries(), shown.size()).convertToFormat(shown.format()));
}

TEST_F(AWindow, KeepsThePictureWhenItsSizeChanges) {
  someone_.take("Pen");
  someone_.drag(0.1, 0.1, 0.9, 0.8);
  const QSize before = someone_.view().picture().size();
  someone_.window().resize(700, 520);
  ASSERT_TRUE(soon([&] { return someone_.view().picture().size() != before; }));
  someone_.view().grab();
  const QImage shown = someone_.view().picture();
  EXPECT_NEAR(double(shown.width()) / shown.height(), 16.0 / 9.0, 0.02);
  EXPECT_EQ(shown, pictureOf(someone_.entries(), shown.size()).convertToFormat(shown.format()));
}

TEST_F(AWindow, KeepsATextEditorInItsPlaceWhenItsSizeChanges) {
  someone_.take("Text");
  someone_.click(0.3, 0.6);
  auto* editor = someone_.view().findChild<QPlainTextEdit*>();
  ASSERT_NE(editor, nullptr);
  QTest::keyClicks(editor, "Here");
  const double letters = editor->font().pixelSize();
  const double width = someone_.view().boardSize().width;
  someone_.window().resize(700, 520);
  ASSERT_TRUE(soon([&] { return someone_.view().boardSize().width < width; }));
  const QPointF corner = someone_.view().toBoard(editor->pos());
  const vwb::Size board = someone_.view().boardSize();
  EXPECT_NEAR(corner.x() / board.width, 0.3, 0.01);
  EXPECT_NEAR(corner.y() / board.height, 0.6, 0.01);
  EXPECT_LT(editor->font().pixelSize(), letters);
  QTest::keyClick(editor, Qt::Key_Escape);
  EXPECT_NEAR(vwb::recordPointerCast<vwb::VelWbVecText>(only())->x, -0.2, 0.01);
}

TEST(ABoardThatIsReopened, HasItsPagesAndShowsTheLastOne) {
  const TemporaryFolder folder;
  std::vector<std::string> first;
  std::vector<std::string> second;
  {
    Someone someone(folder.path());
    someone.take("Pen");
    someone.drag(0.2, 0.2, 0.4, 0.2);
    first = textsOf(someone.entries());
    someone.session().addPage();
    someone.drag(0.2, 0.2, 0.8, 0.8);
    second = textsOf(someone.entries());
  }
  Someone again(folder.path());
  EXPECT_EQ(again.board().number(), (Board::PageNumber{1, 2}));
  EXPECT_EQ(textsOf(again.entries()), second);
  again.session().turnToPrevious();
  EXPECT_EQ(textsOf(again.entries()), first);
  EXPECT_EQ(again.board().pages().size(), 2u);
}

}  // namespace
}  // namespace whiteboard
