#include "tests/client/drawing/random_pages.h"

#include <array>
#include <cmath>
#include <limits>
#include <string>

#include "tests/client/drawing/tools.h"

namespace whiteboard {

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

QImage checkered() {
  QImage image(37, 23, QImage::Format_ARGB32);
  for (int y = 0; y < image.height(); ++y) {
    for (int x = 0; x < image.width(); ++x) {
      image.setPixelColor(x, y, QColor(x * 6, y * 11, (x + y) % 2 * 255, 255 - x * 4));
    }
  }
  return image;
}

}  // namespace

double RandomPages::between(double low, double high) {
  return low + (high - low) * dice_.below(1'000'001) / 1e6;
}

double RandomPages::fraction() {
  if (dice_.oneIn(60)) {
    const std::array strange{kNaN, kInfinity, -kInfinity, 1e300, -1e300, 7.0, -2.5};
    return strange[static_cast<std::size_t>(dice_.below(strange.size()))];
  }
  return between(-0.6, 0.6);
}

double RandomPages::size() {
  if (dice_.oneIn(25)) {
    const std::array strange{kNaN, 1e300, -0.2, 0.0, 5.0};
    return strange[static_cast<std::size_t>(dice_.below(strange.size()))];
  }
  return between(0.02, 0.5);
}

std::string RandomPages::colour() {
  if (dice_.oneIn(15)) return "colour";
  std::string colour = "#";
  for (int i = 0; i < 6; ++i) colour += "0123456789ABCDEF"[dice_.below(16)];
  return colour + (dice_.oneIn(3) ? "67" : "ff");
}

std::string RandomPages::words() {
  const std::array words{"a",   "of",     "sine",    "cosine",
                         "\n",  "Würfel", "f(x)=x²", "WWWWWWWWWWWW",
                         "jgy", "中文",   "שלום",    "e\u0301\u0302\u0303\u0304\u0305\u0306",
                         "\t"};
  std::string text;
  for (int i = dice_.below(25); i >= 0; --i) {
    text += words[static_cast<std::size_t>(dice_.below(words.size()))];
    if (!dice_.oneIn(6)) text += ' ';
  }
  return text;
}

void RandomPages::grow(vwb::VelWbVecLine& stroke, int positions) {
  if (!stroke.path) stroke.path.emplace();
  double x = stroke.x;
  double y = stroke.y;
  for (int i = 0; i < positions; ++i) {
    if (dice_.oneIn(40)) x = fraction(), y = fraction();
    if (!dice_.oneIn(20)) x += between(-0.02, 0.02), y += between(-0.03, 0.03);
    if (dice_.oneIn(100)) {
      stroke.path->push_back({x});
    } else {
      stroke.path->push_back({x, y, static_cast<double>(i)});
    }
    if (std::abs(x) > 1 || !std::isfinite(x)) x = 0;
    if (std::abs(y) > 1 || !std::isfinite(y)) y = 0;
  }
  stroke.x = x;
  stroke.y = y;
}

vwb::VectorPtr RandomPages::stroke() {
  const std::array types{vwb::VelWBVectorStrLine, vwb::VelWBVectorStrMarkerPen,
                         vwb::VelWBVectorStrEraser};
  const auto type = static_cast<std::size_t>(dice_.below(3));
  auto line = vwb::VelWbVecLine::initWithType(types[type]);
  line->x = fraction();
  line->y = fraction();
  if (!dice_.oneIn(20)) grow(*line, dice_.oneIn(4) ? dice_.below(400) : dice_.below(30));
  if (type != 2) line->color = colour();
  if (dice_.oneIn(3)) {
    line->widthIndex = dice_.below(4);
  } else {
    line->ps = dice_.oneIn(30) ? 1 : 400;
    line->pixel = type == 0 ? dice_.below(8) : 8 + dice_.below(20);
  }
  if (dice_.oneIn(8)) line->offset = vwb::Array{between(-0.3, 0.3), between(-0.3, 0.3)};
  return line;
}

void RandomPages::place(vwb::VelWbVecSquare& box) {
  box.x = fraction() - 0.1;
  box.y = fraction() - 0.1;
  box.w = size();
  box.h = size();
}

vwb::VectorPtr RandomPages::diagram() {
  const std::array kinds{"rectangle", "circle",    "ellipse", "triangle",
                         "line",      "arrowLine", "rhombus", "anything"};
  const auto fill = [&](vwb::VelWbVecDiagram& made) {
    place(made);
    made.kind = kinds[static_cast<std::size_t>(dice_.below(kinds.size()))];
    made.color = colour();
    made.ps = 400;
    made.pixel = dice_.oneIn(30) ? 1'000'000 : dice_.below(9);
    if (dice_.oneIn(3)) {
      made.points.emplace();
      for (int i = dice_.below(6); i > 0; --i) {
        made.points->push_back(vwb::Value::array({fraction(), fraction()}));
      }
    }
  };
  if (dice_.oneIn(3)) {
    auto circle = vwb::VelWbVecCircle::initWithType(vwb::VelWBVectorStrDiagram);
    fill(*circle);
    circle->radiusX = size();
    circle->radiusY = size();
    return circle;
  }
  auto made = vwb::VelWbVecDiagram::initWithType(vwb::VelWBVectorStrDiagram);
  fill(*made);
  return made;
}

vwb::VectorPtr RandomPages::text() {
  auto made = vwb::VelWbVecText::initWithType(vwb::VelWBVectorStrText);
  place(*made);
  made->text = words();
  made->ps = dice_.oneIn(10) ? 0 : 400;
  made->fontSize = dice_.oneIn(10) ? size() : between(3, dice_.oneIn(8) ? 120 : 30);
  if (dice_.oneIn(2)) made->bgColor = colour();
  made->color = colour();
  return made;
}

vwb::VectorPtr RandomPages::file() {
  static const std::string url = urlOf(checkered());
  const auto fill = [&](vwb::VelWbVecFile& made) {
    place(made);
    if (!dice_.oneIn(3)) made.rotation = dice_.oneIn(9) ? size() : dice_.below(720) - 360;
    made.url = dice_.oneIn(2) ? url : words();
  };
  if (dice_.oneIn(3)) {
    auto media = vwb::VelWbVecVideo::initWithType(vwb::VelWBVectorStrMedia);
    fill(*media);
    if (dice_.oneIn(2)) media->kind = vwb::VelWBVectorStrKindAudio;
    if (dice_.oneIn(2)) media->title = words();
    if (dice_.oneIn(2)) media->cover = url;
    return media;
  }
  auto made = vwb::VelWbVecFile::initWithType(dice_.oneIn(4) ? vwb::VelWBVectorStrCursor
                                                             : vwb::VelWBVectorStrImage);
  fill(*made);
  return made;
}

vwb::VectorPtr RandomPages::entry() {
  switch (dice_.below(10)) {
    case 0:
    case 1:
      return diagram();
    case 2:
      return text();
    case 3:
    case 4:
      return file();
    case 5: {
      auto made = vwb::VelWbVecSquare::initWithType(
          dice_.oneIn(2) ? vwb::VelWBVectorStrMagnifier : vwb::VelWBVectorStrInstruction);
      place(*made);
      return made;
    }
    case 6: {
      if (dice_.oneIn(2)) return vwb::VelWbVecClear::initWithType(vwb::VelWBVectorStrClear);
      auto made = vwb::VelWbCaptureInfo::initWithType(vwb::VelWBVectorStrCamera);
      place(*made);
      return made;
    }
    default:
      return stroke();
  }
}

vwb::VectorList RandomPages::page(int entries) {
  vwb::VectorList page;
  for (int i = 0; i < entries; ++i) page.push_back(entry());
  return page;
}

}  // namespace whiteboard
