// Mouse, pen and fingers, and what takes them off the board.
#include <QPlainTextEdit>
#include <QPointingDevice>
#include <QTabletEvent>

#include <gtest/gtest.h>

#include "tests/client/windows/participants.h"

namespace whiteboard {
namespace {

namespace vwb = VelWhiteBoard;
using vwb::TemporaryFolder;

class AHand : public testing::Test {
 protected:
  /// A pen without pressure, tilt or anything else.
  void pen(QEvent::Type type, double x, double y, Qt::MouseButton button = Qt::LeftButton) {
    const QPointF at = someone_.at(x, y);
    const QPointF onScreen = someone_.view().mapToGlobal(at);
    const bool isUp = type == QEvent::TabletRelease;
    const Qt::MouseButtons buttons = isUp ? Qt::NoButton : Qt::MouseButtons(button);
    QTabletEvent event(type, &pen_, at, onScreen, 0, 0, 0, 0, 0, 0, Qt::NoModifier,
                       type == QEvent::TabletMove ? Qt::NoButton : button, buttons);
    QCoreApplication::sendEvent(&someone_.view(), &event);
  }
  QTest::QTouchEventWidgetSequence touch() { return QTest::touchEvent(&someone_.view(), fingers_); }
  void loseFocus() {
    QFocusEvent gone(QEvent::FocusOut);
    QCoreApplication::sendEvent(&someone_.view(), &gone);
  }
  QPoint at(double x, double y) { return someone_.at(x, y); }

  std::vector<std::shared_ptr<vwb::VelWbVecLine>> strokes() {
    std::vector<std::shared_ptr<vwb::VelWbVecLine>> all;
    for (const auto& entry : someone_.entries()) {
      all.push_back(vwb::recordPointerCast<vwb::VelWbVecLine>(entry));
    }
    return all;
  }
  /// One finished stroke, from fraction to fraction of the board.
  void expectOneStroke(double fromX, double toX) {
    const auto all = strokes();
    ASSERT_EQ(all.size(), 1u);
    ASSERT_TRUE(all[0] && all[0]->path);
    EXPECT_TRUE(all[0]->end);
    EXPECT_NEAR((*all[0]->path)[0][0], fromX - 0.5, 0.003);
    EXPECT_NEAR(all[0]->path->back()[0], toX - 0.5, 0.003);
    EXPECT_TRUE(someone_.board().ink().inks().empty());
  }

  TemporaryFolder folder_;
  Someone someone_{folder_.path()};
  QPointingDevice pen_{"pen",
                       77,
                       QInputDevice::DeviceType::Stylus,
                       QPointingDevice::PointerType::Pen,
                       QInputDevice::Capability::Position,
                       1,
                       1};
  /// Qt keeps it.
  QPointingDevice* fingers_ = QTest::createTouchDevice();
};

TEST_F(AHand, DrawsWithAPenThatHasNoPressure) {
  someone_.take("Pen");
  pen(QEvent::TabletMove, 0.1, 0.5, Qt::NoButton);  // above the board
  EXPECT_TRUE(someone_.entries().empty());
  pen(QEvent::TabletPress, 0.2, 0.5);
  pen(QEvent::TabletMove, 0.4, 0.5);
  pen(QEvent::TabletRelease, 0.6, 0.5);
  expectOneStroke(0.2, 0.6);
}

TEST_F(AHand, DrawsNothingWithTheButtonOfAPen) {
  someone_.take("Pen");
  pen(QEvent::TabletPress, 0.2, 0.5, Qt::RightButton);
  pen(QEvent::TabletMove, 0.4, 0.5, Qt::RightButton);
  pen(QEvent::TabletRelease, 0.6, 0.5, Qt::RightButton);
  EXPECT_TRUE(someone_.entries().empty());
}

TEST_F(AHand, EndsTheStrokeOfAPenThatLeaves) {
  someone_.take("Pen");
  pen(QEvent::TabletPress, 0.2, 0.5);
  pen(QEvent::TabletMove, 0.4, 0.5);
  QEvent leaves(QEvent::TabletLeaveProximity);
  QCoreApplication::sendEvent(qApp, &leaves);
  expectOneStroke(0.2, 0.4);
  pen(QEvent::TabletMove, 0.8, 0.5, Qt::NoButton);
  expectOneStroke(0.2, 0.4);
}

TEST_F(AHand, EndsTheStrokeOfAPenThatCameUpUnheard) {
  someone_.take("Pen");
  pen(QEvent::TabletPress, 0.2, 0.5);
  pen(QEvent::TabletMove, 0.4, 0.5, Qt::NoButton);
  pen(QEvent::TabletMove, 0.8, 0.5, Qt::NoButton);
  expectOneStroke(0.2, 0.4);
}

TEST_F(AHand, DrawsWithOneFinger) {
  someone_.take("Pen");
  touch().press(0, at(0.2, 0.5));
  touch().move(0, at(0.4, 0.5));
  touch().release(0, at(0.6, 0.5));
  expectOneStroke(0.2, 0.6);
}

TEST_F(AHand, DrawsNothingWithASecondFinger) {
  someone_.take("Pen");
  touch().press(0, at(0.2, 0.5));
  touch().stationary(0).press(1, at(0.9, 0.9));
  touch().move(0, at(0.3, 0.5)).move(1, at(0.8, 0.9));
  touch().release(0, at(0.4, 0.5)).stationary(1);
  touch().move(1, at(0.7, 0.9));
  touch().release(1, at(0.6, 0.9));
  expectOneStroke(0.2, 0.4);
}

TEST_F(AHand, EndsTheStrokeOfATouchThatIsCancelled) {
  someone_.take("Pen");
  touch().press(0, at(0.2, 0.5));
  touch().move(0, at(0.4, 0.5));
  QTouchEvent cancelled(QEvent::TouchCancel, fingers_);
  QCoreApplication::sendEvent(&someone_.view(), &cancelled);
  expectOneStroke(0.2, 0.4);
}

TEST_F(AHand, ThatHoldsAPenDrawsNothingItself) {
  someone_.take("Pen");
  pen(QEvent::TabletPress, 0.2, 0.5);
  touch().press(0, at(0.8, 0.9));
  pen(QEvent::TabletMove, 0.3, 0.5);
  touch().move(0, at(0.9, 0.9));
  touch().release(0, at(0.9, 0.9));
  pen(QEvent::TabletRelease, 0.4, 0.5);
  touch().press(1, at(0.8, 0.9));  // still rests there
  touch().release(1, at(0.9, 0.9));
  expectOneStroke(0.2, 0.4);
}

TEST_F(AHand, EndsTheStrokeOfAFingerWhenThePenComes) {
  someone_.take("Pen");
  touch().press(0, at(0.8, 0.9));
  pen(QEvent::TabletPress, 0.2, 0.5);
  touch().move(0, at(0.9, 0.9));
  pen(QEvent::TabletRelease, 0.4, 0.5);
  touch().release(0, at(0.9, 0.9));
  const auto all = strokes();
  ASSERT_EQ(all.size(), 2u);
  for (const auto& stroke : all) EXPECT_TRUE(stroke->end);
  EXPECT_NEAR(all[0]->path->back()[0], 0.3, 0.003);
  EXPECT_NEAR(all[1]->path->back()[0], -0.1, 0.003);
}

TEST_F(AHand, EndsAStrokeWhenTheFocusGoes) {
  someone_.take("Pen");
  someone_.press(0.2, 0.5);
  someone_.moveTo(0.4, 0.5);
  loseFocus();
  expectOneStroke(0.2, 0.4);
  someone_.release(0.8, 0.5);
  expectOneStroke(0.2, 0.4);
}

TEST_F(AHand, EndsAStrokeWhenAnotherWindowComesUp) {
  someone_.take("Pen");
  someone_.press(0.2, 0.5);
  someone_.moveTo(0.4, 0.5);
  QEvent deactivated(QEvent::WindowDeactivate);
  QCoreApplication::sendEvent(&someone_.view(), &deactivated);
  expectOneStroke(0.2, 0.4);
}

TEST_F(AHand, LetsGoOfWhatItDragsWhenTheFocusGoes) {
  someone_.take("Rectangle");
  someone_.drag(0.2, 0.2, 0.4, 0.4);
  const auto before = textsOf(someone_.entries());
  someone_.take("Select");
  someone_.press(0.2, 0.3);
  someone_.moveTo(0.5, 0.6);
  loseFocus();
  EXPECT_TRUE(someone_.board().ink().inks().empty());
  someone_.release(0.5, 0.6);
  EXPECT_EQ(textsOf(someone_.entries()), before);
}

TEST_F(AHand, LetsGoOfAShapeWhenTheFocusGoes) {
  someone_.take("Rectangle");
  someone_.press(0.2, 0.2);
  someone_.moveTo(0.4, 0.4);
  EXPECT_EQ(someone_.board().ink().inks().size(), 1u);
  someone_.window().hide();
  EXPECT_TRUE(someone_.board().ink().inks().empty());
  EXPECT_TRUE(someone_.entries().empty());
  someone_.session().addPage();
  EXPECT_EQ(someone_.board().number().second, 2u) << "the pen is not down";
}

TEST_F(AHand, KeepsATextEditorOpenWhenAnotherWindowComesUp) {
  someone_.take("Text");
  someone_.click(0.3, 0.3);
  auto* editor = someone_.view().findChild<QPlainTextEdit*>();
  ASSERT_NE(editor, nullptr);
  QTest::keyClicks(editor, "Half a");
  QEvent deactivated(QEvent::WindowDeactivate);
  QCoreApplication::sendEvent(&someone_.view(), &deactivated);
  EXPECT_TRUE(editor->isVisible());
  EXPECT_TRUE(someone_.entries().empty());
}

}  // namespace
}  // namespace whiteboard
