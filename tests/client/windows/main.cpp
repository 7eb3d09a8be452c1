// Runs the tests of the windows on the display that there is.
#include <QApplication>

#include <gtest/gtest.h>

#include "window/style.h"

int main(int argc, char* argv[]) {
  testing::InitGoogleTest(&argc, argv);
  const QApplication application(argc, argv);
  QApplication::setApplicationName("whiteboard tests");
  whiteboard::applyStyle(*qApp);
  return RUN_ALL_TESTS();
}
