// The page that is shown, as shapes.
#pragma once

#include <QPainter>
#include <QPointF>
#include <QRectF>
#include <VelWhiteBoard/VelWhiteBoard.h>
#include <cstddef>
#include <map>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "drawing/shape.h"
#include "lesson/own_ink.h"

namespace whiteboard {

/// The shapes of a page's entries, kept by what the board reports, and of the own ink that lies on
/// top of them. An entry for which there is own ink is left out; all are while own ink clears the
/// page.
///
/// Every change names the rectangles, in view points, in which the picture is no longer right;
/// `takeStale` hands them out.
///
/// Threads: that of the windows.
class Scene {
 public:
  /// The board's size in view points.
  VelWhiteBoard::Size size() const { return size_; }
  void setSize(VelWhiteBoard::Size size);

  /// Takes another page, or the same one after everything has changed.
  void show(const VelWhiteBoard::VectorList& entries, const OwnInk& ink, const std::string& page);
  void take(const VelWhiteBoard::EntryChange& change);
  void takeInk(const std::string& ID, std::size_t firstNew, const OwnInk& ink,
               const std::string& page);

  /// Where the picture is to be drawn again.
  std::vector<QRectF> takeStale();
  /// Draws what touches `part`; the painter's clip is set by the caller.
  void paint(QPainter& painter, const QRectF& part) const;

  /// The uppermost shape at a view point; null when there is none.
  const Shape* at(QPointF point, double tolerance) const;
  /// The shape of an entry or of own ink; null when none is shown.
  const Shape* find(const std::string& ID) const;
  /// The lens that is shown; null when there is none.
  const Shape* lens() const;

 private:
  using Shapes = std::vector<std::unique_ptr<Shape>>;

  bool isHidden(const Shape& shape) const;
  void addStale(const Shape& shape);
  void addStale(const QRectF& rect);
  Shape* shapeOf(const VelWhiteBoard::VectorPtr& entry) const;
  void add(const VelWhiteBoard::VectorPtr& entry);
  Shapes::iterator find(const VelWhiteBoard::VectorPtr& entry, bool isLast);
  void updateAll(const VelWhiteBoard::VectorPtr& entry, std::size_t firstNew);
  void remove(Shapes::iterator shape);
  template <class Visitor>
  bool anyFromTop(const Visitor& visitor) const;

  VelWhiteBoard::Size size_{1, 1};
  Shapes shapes_;  // lowest first
  /// The uppermost shape of an entry, which may stand twice.
  std::unordered_map<const VelWhiteBoard::VelWbBaseVector*, Shape*> byEntry_;
  /// Own ink; null: the entry is hidden.
  std::map<std::string, std::unique_ptr<Shape>> ink_;
  bool isCleared_ = false;
  std::vector<QRectF> stale_;
};

}  // namespace whiteboard
