// Drawn shapes.
#pragma once

#include <QPainterPath>
#include <QPolygonF>
#include <vector>

#include "drawing/look.h"

namespace whiteboard {

class Diagram : public Look {
 public:
  explicit Diagram(const VelWhiteBoard::VelWbVecDiagram& diagram) : diagram_(diagram) { update(0); }

  void update(std::size_t firstNew) override;
  QRectF inked(VelWhiteBoard::Size board) const override;
  void paint(QPainter& painter, VelWhiteBoard::Size board, const QRectF& part) const override;
  bool hits(QPointF at, double tolerance, VelWhiteBoard::Size board) const override;

 private:
  /// What is drawn, in view points.
  struct Form {
    QPolygonF line;  // empty when nothing is drawn
    bool isClosed = false;
    QPolygonF head;  // of an arrow, filled
    QRectF ellipse;  // of which the line is an approximation; empty for others
  };

  static QPainterPath centreLineOf(const Form& form);
  Form formOn(VelWhiteBoard::Size board) const;
  Form lineForm(const QRectF& box, VelWhiteBoard::Size board) const;
  Form ellipseForm(const QRectF& box, VelWhiteBoard::Size board) const;
  double widthOn(VelWhiteBoard::Size board) const;

  const VelWhiteBoard::VelWbVecDiagram& diagram_;
  std::vector<VelWhiteBoard::Point> points_;  // fractions; finite
};

}  // namespace whiteboard
