/// @file
/// Windows, and hands that use them.
#pragma once

#include <QPoint>
#include <QTest>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "lesson/local_bus.h"
#include "lesson/nats_bus.h"
#include "lesson/session.h"
#include "tests/support/temporary_folder.h"
#include "window/main_window.h"

namespace whiteboard {

/// Lets the windows live until it is so; tells whether it has become so within 30 seconds.
inline bool soon(const std::function<bool()>& isSo) { return QTest::qWaitFor(isSo, 30'000); }

/// Somebody with a window.
class Someone {
 public:
  /// With a board of this computer only.
  explicit Someone(const std::string& folder)
      : Someone(folder, std::make_unique<LocalBus>(1000.0), Session::Kind::kAlone, "alone") {}
  /// In a lesson. What is unsent at the end is kept in the folder.
  Someone(const std::string& name, const std::string& folder, const std::string& url)
      : Someone(folder, lessonBus(folder, url), Session::Kind::kShared, name) {}
  ~Someone() { window_.reset(); }

  Board& board() { return board_; }
  Session& session() { return *session_; }
  MainWindow& window() { return *window_; }
  BoardView& view() { return window_->view(); }

  void take(const std::string& tool) { window_->toolbox().take(tool); }
  /// Where a fraction of the board, from its upper left corner, is in the view.
  QPoint at(double x, double y) {
    const QRectF place = view().boardRect();
    return (place.topLeft() + QPointF(x * place.width(), y * place.height())).toPoint();
  }
  void press(double x, double y) {
    QTest::mousePress(&view(), Qt::LeftButton, Qt::NoModifier, at(x, y));
  }
  void moveTo(double x, double y) { QTest::mouseMove(&view(), at(x, y)); }
  void release(double x, double y) {
    QTest::mouseRelease(&view(), Qt::LeftButton, Qt::NoModifier, at(x, y));
  }
  void drag(double fromX, double fromY, double toX, double toY) {
    press(fromX, fromY);
    for (int i = 1; i <= 10; ++i) {
      const double part = i / 10.0;
      moveTo(fromX + part * (toX - fromX), fromY + part * (toY - fromY));
    }
    release(toX, toY);
  }
  void click(double x, double y) {
    press(x, y);
    release(x, y);
  }

  VelWhiteBoard::VectorList entries() { return board_.entries(board_.number()); }
  bool isLive() const { return session_->status().kind == BusStatus::Kind::kLive; }
  /// Everything that was sent has come back.
  bool isSettled() const { return session_->status().unsent == 0 && board_.ink().inks().empty(); }

 private:
  static std::unique_ptr<Bus> lessonBus(const std::string& folder, const std::string& url) {
    std::filesystem::create_directories(folder);
    return std::make_unique<NatsBus>(NatsBus::Options{url, "maths", "", folder + "/unsent"});
  }
  Someone(const std::string& folder, std::unique_ptr<Bus> bus, Session::Kind kind,
          const std::string& user)
      : board_(folder),
        session_(std::make_unique<Session>(board_, std::move(bus), kind, user)),
        window_(std::make_unique<MainWindow>(*session_, kind == Session::Kind::kShared)) {
    window_->show();
    EXPECT_TRUE(QTest::qWaitForWindowExposed(window_.get()));
  }

  Board board_;
  std::unique_ptr<Session> session_;
  std::unique_ptr<MainWindow> window_;
};

/// The texts of the entries, in their order: two boards are equal when these are.
inline std::vector<std::string> textsOf(const VelWhiteBoard::VectorList& entries) {
  std::vector<std::string> texts;
  for (const auto& entry : entries) texts.push_back(VelWhiteBoard::modelToJSONString(*entry));
  return texts;
}

}  // namespace whiteboard
