// A part is drawn as it is within the whole.
#include <QPainter>
#include <cmath>
#include <string>

#include <gtest/gtest.h>

#include "tests/client/drawing/random_pages.h"
#include "tests/client/drawing/tools.h"

namespace whiteboard {
namespace {

/// Clears a part of the layer, in pixels, and draws there what touches it.
void redraw(QImage& layer, const ShapeList& shapes, const QRect& pixels, vwb::Size board,
            double scale) {
  QPainter painter(&layer);
  painter.setClipRect(pixels);
  painter.setCompositionMode(QPainter::CompositionMode_Clear);
  painter.fillRect(pixels, Qt::black);
  painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
  painter.scale(scale, scale);
  const QRectF part(pixels.x() / scale, pixels.y() / scale, pixels.width() / scale,
                    pixels.height() / scale);
  for (const auto& shape : shapes) {
    if (shape->bounds(board).intersects(part)) shape->paint(painter, board, part);
  }
}

QRect randomRectangle(vwb::Dice& dice, QSize within) {
  const int largest = dice.oneIn(4) ? 200 : 40;
  return QRect(dice.below(within.width()), dice.below(within.height()), 1 + dice.below(largest),
               1 + dice.below(largest)) &
         QRect(QPoint(), within);
}

/// What is different, for a person.
std::string difference(const QImage& a, const QImage& b) {
  int count = 0;
  QRect where;
  for (int y = 0; y < a.height(); ++y) {
    for (int x = 0; x < a.width(); ++x) {
      if (a.pixel(x, y) != b.pixel(x, y)) ++count, where |= QRect(x, y, 1, 1);
    }
  }
  return std::to_string(count) + " pixels differ, from " + std::to_string(where.x()) + ", " +
         std::to_string(where.y()) + " to " + std::to_string(where.right()) + ", " +
         std::to_string(where.bottom());
}

void expectPartsAsWhole(const vwb::VectorList& page, vwb::Dice& dice, vwb::Size board,
                        double scale) {
  const ShapeList shapes = shapesOf(page);
  const QImage whole = layerOf(shapes, board, scale);
  QImage layer = whole;
  for (int i = 0; i < 20; ++i) {
    const QRect part = randomRectangle(dice, layer.size());
    redraw(layer, shapes, part, board, scale);
    ASSERT_EQ(layer, whole) << "part " << part.x() << ", " << part.y() << ", " << part.width()
                            << ", " << part.height() << ": " << difference(layer, whole);
  }
}

TEST(Parts, EachEntryAloneIsDrawnAsInTheWhole) {
  for (std::uint64_t seed = 0; seed < 400; ++seed) {
    RandomPages pages(seed);
    const vwb::VectorList page = pages.page(1);
    SCOPED_TRACE("seed " + std::to_string(seed) + ": " + vwb::modelToJSONString(*page.front()));
    expectPartsAsWhole(page, pages.dice(), kBoard, 1);
    if (HasFatalFailure()) return;
  }
}

TEST(Parts, PagesAreDrawnAsInTheWholeInAllScales) {
  for (std::uint64_t seed = 1000; seed < 1060; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    RandomPages pages(seed);
    const double scale = seed % 3 == 0 ? 1 : seed % 3 == 1 ? 2 : 1.5;
    expectPartsAsWhole(pages.page(40), pages.dice(), {533, 300}, scale);
    if (HasFatalFailure()) return;
  }
}

TEST(Parts, BoundsHoldAllThatIsDrawn) {
  for (std::uint64_t seed = 2000; seed < 2600; ++seed) {
    RandomPages pages(seed);
    vwb::VectorPtr entry = pages.entry();
    if (entry->type == vwb::VelWBVectorStrEraser) entry->type = vwb::VelWBVectorStrLine;
    ShapeList shapes;
    shapes.push_back(std::make_unique<Shape>(entry));
    const QRect ink = inkOf(layerOf(shapes));
    const QRectF bounds = shapes.front()->bounds(kBoard);
    EXPECT_TRUE(ink.isNull() || bounds.contains(QRectF(ink)))
        << "seed " << seed << ": " << vwb::modelToJSONString(*entry);
    EXPECT_TRUE(QRectF(0, 0, kBoard.width, kBoard.height).contains(bounds) || bounds.isNull());
  }
}

TEST(Parts, AGrownStrokeIsDrawnAsANewOne) {
  for (std::uint64_t seed = 3000; seed < 3200; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    RandomPages pages(seed);
    const vwb::VectorPtr entry = pages.stroke();
    auto& line = *vwb::recordCast<vwb::VelWbVecLine>(entry.get());
    line.type = vwb::VelWBVectorStrLine;
    if (!line.path) line.path.emplace();
    ShapeList grown;
    grown.push_back(std::make_unique<Shape>(entry));
    QImage layer = layerOf(grown);
    for (int piece = 0; piece < 8; ++piece) {
      const std::size_t firstNew = line.path->size();
      pages.grow(line, pages.dice().oneIn(3) ? 90 : 1 + pages.dice().below(4));
      grown.front()->update(firstNew);

      // A new shape knows nothing of before.
      const QImage whole = layerOf(shapesOf({entry}));
      ASSERT_EQ(layerOf(grown), whole);
      // Only there may it look otherwise than before.
      const QRectF changed = grown.front()->boundsFrom(firstNew, kBoard);
      redraw(layer, grown, changed.toAlignedRect(), kBoard, 1);
      ASSERT_EQ(layer, whole) << difference(layer, whole);
    }
  }
}

TEST(Parts, TheEndOfALongStrokeIsSmall) {
  auto line = stroke(vwb::VelWBVectorStrLine, {{10, 10}}, 4);
  for (int i = 0; i < 1000; ++i) line->path->push_back({-0.4 + i * 0.0008, -0.4 + i * 0.0008, 1.0});
  const Shape shape(line);
  EXPECT_LT(shape.boundsFrom(1000, kBoard).width(), 20);
  EXPECT_GT(shape.bounds(kBoard).width(), 300);
  EXPECT_EQ(shape.boundsFrom(0, kBoard), shape.bounds(kBoard));
}

TEST(Parts, AnEditedEntryIsDrawnAsANewOne) {
  for (std::uint64_t seed = 4000; seed < 4100; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    RandomPages pages(seed);
    const vwb::VectorPtr entry = pages.entry();
    const ShapeList edited = shapesOf({entry});
    layerOf(edited);  // so that it remembers something
    if (auto* box = vwb::recordCast<vwb::VelWbVecSquare>(entry.get())) box->x += 0.1, box->w = 0.3;
    if (auto* text = vwb::recordCast<vwb::VelWbVecText>(entry.get())) text->text = "edited";
    if (auto* file = vwb::recordCast<vwb::VelWbVecFile>(entry.get())) file->url = "other";
    if (auto* line = vwb::recordCast<vwb::VelWbVecLine>(entry.get())) {
      line->offset = vwb::Array{0.1, 0.1};
    }
    edited.front()->update();
    ASSERT_EQ(layerOf(edited), layerOf(shapesOf({entry})));
  }
}

}  // namespace
}  // namespace whiteboard
