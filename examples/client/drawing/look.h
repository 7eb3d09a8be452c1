// How an entry of a page looks. One class for each kind of look; `Shape` chooses.
#pragma once

#include <QPainter>
#include <QPointF>
#include <QRectF>
#include <VelWhiteBoard/VelWhiteBoard.h>
#include <cstddef>
#include <memory>

namespace whiteboard {

/// The operations are those of `Shape`. The record belongs to the shape and outlives the look. The
/// board is drawable, see `isDrawable`.
///
/// Threads: one at a time; drawing, too, remembers things.
class Look {
 public:
  Look() = default;
  virtual ~Look() = default;
  Look(const Look&) = delete;
  Look& operator=(const Look&) = delete;

  /// Reads the record again.
  virtual void update(std::size_t firstNew) = 0;
  /// Where it draws, without what antialiasing adds and without regard to the board's edges.
  virtual QRectF inked(VelWhiteBoard::Size board) const = 0;
  virtual QRectF inkedFrom(std::size_t firstNew, VelWhiteBoard::Size board) const {
    static_cast<void>(firstNew);
    return inked(board);
  }
  /// Whether letters or pictures are drawn, which may stand out: they are clipped.
  virtual bool isClipped() const { return false; }
  virtual void paint(QPainter& painter, VelWhiteBoard::Size board, const QRectF& part) const = 0;
  virtual bool hits(QPointF at, double tolerance, VelWhiteBoard::Size board) const = 0;
};

/// The look of a vector; null when nothing of it can be seen, as of a command.
std::unique_ptr<Look> lookOf(const VelWhiteBoard::VelWbBaseVector& vector);

}  // namespace whiteboard
