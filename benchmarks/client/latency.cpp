// How long it takes from the movement of a pen until it is painted, on a full page of the desktop
// client.
//
//   client_latency [POSITIONS]    on a display; POSITIONS: what the page has already, 100000
#include <QApplication>
#include <QMouseEvent>
#include <QTemporaryDir>
#include <QTest>
#include <VelWhiteBoard/VelWhiteBoard.h>
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <vector>

#include "lesson/local_bus.h"
#include "lesson/session.h"
#include "window/main_window.h"

namespace {

namespace vwb = VelWhiteBoard;
using whiteboard::Board;

constexpr int kPositionsOfStroke = 100;
constexpr int kStrokes = 20;
constexpr int kMoves = 200;

/// Strokes all over the page, as handwriting has them.
void fill(Board& board, int positions) {
  for (int stroke = 0; stroke * kPositionsOfStroke < positions; ++stroke) {
    auto line = vwb::VelWbVecLine::initWithType(vwb::VelWBVectorStrLine);
    line->ID = "page_" + std::to_string(stroke);
    line->color = "#303033FF";
    line->pixel = 2;
    line->ps = 400;
    line->end = true;
    line->path.emplace();
    const double left = -0.48 + 0.9 * ((stroke * 37) % 101) / 101.0;
    const double top = -0.48 + 0.9 * ((stroke * 53) % 97) / 97.0;
    for (int i = 0; i < kPositionsOfStroke; ++i) {
      line->path->push_back({left + 0.0006 * i, top + 0.02 * std::sin(i * 0.3), 1.0 + i});
    }
    line->x = line->path->back()[0];
    line->y = line->path->back()[1];
    board.file(board.pageKey(), line);
  }
}

void send(whiteboard::BoardView& view, QEvent::Type type, QPointF at) {
  const bool isMove = type == QEvent::MouseMove;
  QMouseEvent event(type, at, view.mapToGlobal(at), isMove ? Qt::NoButton : Qt::LeftButton,
                    type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton,
                    Qt::NoModifier);
  QCoreApplication::sendEvent(&view, &event);
  QCoreApplication::processEvents();
}

void draw(whiteboard::BoardView& view, int stroke) {
  const QRectF place = view.boardRect();
  const auto at = [&](int i) {
    return place.topLeft() + QPointF(place.width() * (0.1 + 0.004 * i),
                                     place.height() * (0.1 + 0.04 * stroke + 0.02 * std::sin(i)));
  };
  send(view, QEvent::MouseButtonPress, at(0));
  for (int i = 1; i < kMoves; ++i) send(view, QEvent::MouseMove, at(i));
  send(view, QEvent::MouseButtonRelease, at(kMoves));
}

}  // namespace

int main(int argc, char* argv[]) {
  QApplication application(argc, argv);
  const int positions = argc > 1 ? std::atoi(argv[1]) : 100'000;
  const QTemporaryDir folder;
  Board board(folder.path().toStdString());
  whiteboard::Session session(board, std::make_unique<whiteboard::LocalBus>(1000.0),
                              whiteboard::Session::Kind::kAlone, "pen");
  fill(board, positions);
  whiteboard::MainWindow window(session, false);
  window.resize(1920, 1080);
  window.show();
  if (!QTest::qWaitForWindowExposed(&window)) {
    std::fputs("client_latency: the window does not appear\n", stderr);
    return 1;
  }
  whiteboard::BoardView& view = window.view();
  QTest::qWait(500);
  view.takeLatencies();
  for (int stroke = 0; stroke < kStrokes; ++stroke) draw(view, stroke);

  std::vector<double> taken = view.takeLatencies();
  if (taken.size() < kStrokes * kMoves / 2) {
    std::fprintf(stderr, "client_latency: only %zu movements were painted\n", taken.size());
    return 1;
  }
  std::sort(taken.begin(), taken.end());
  const auto at = [&](double part) {
    return taken[static_cast<std::size_t>(part * static_cast<double>(taken.size() - 1))];
  };
  std::printf(
      "%d positions, board %.0f x %.0f, %zu movements: p50 %.2f ms, p99 %.2f ms, "
      "longest %.2f ms\n",
      positions, view.boardSize().width, view.boardSize().height, taken.size(), at(0.5), at(0.99),
      taken.back());
  return 0;
}
