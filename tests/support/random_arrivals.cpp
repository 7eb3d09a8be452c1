#include "tests/support/random_arrivals.h"

#include <vector>

namespace VelWhiteBoard {
namespace {

Value position(Chances& chances, double ts) {
  Array numbers{Value(chances.below(5)), Value(chances.below(5) / 8.0)};
  if (!chances.oneIn(5)) numbers.emplace_back(ts);
  if (chances.oneIn(20)) numbers.emplace_back(7);
  return numbers;
}

void addShape(Chances& chances, double ts, Dictionary& form) {
  if (chances.oneIn(6)) return;
  form["x"] = chances.oneIn(5) ? -10.0 : chances.below(9) / 4.0;
  form["y"] = chances.below(9) / 4.0;
  if (chances.oneIn(3)) form["ps"] = chances.below(3);
  if (chances.oneIn(3)) form["end"] = chances.oneIn(2);
  if (chances.oneIn(3)) {
    Array path;
    for (int i = chances.below(4); i > 0; --i) path.push_back(position(chances, ts + i - 2));
    form["path"] = path;
  }
  if (chances.oneIn(2)) {
    form["w"] = chances.below(3);
    form["h"] = chances.below(3);
  }
}

}  // namespace

Dictionary randomArrival(Chances& chances) {
  static const std::vector<std::string> kTypes{
      "line",  "line",   "line",   "line",   "markerPen", "eraser",    "text",     "text",
      "image", "media",  "offset", "offset", "diagram",   "mediaList", "remove",   "remove",
      "clear", "cursor", "cursor", "camera", "magnifier", "magnifier", "micPhone", "switchPage"};
  static const std::vector<std::string> kIdentifiers{"a", "b", "c", "d", "e", "f", ""};
  const double ts = chances.below(30) - 1;
  Dictionary form;
  if (!chances.oneIn(30)) form["type"] = chances.of(kTypes);
  if (!chances.oneIn(12)) form["ID"] = chances.of(kIdentifiers);
  // An empty page is a dull one: most clears and removes become something else.
  if (form["type"] == "clear" && !chances.oneIn(3)) form["type"] = "line";
  form["ts"] = ts;
  addShape(chances, ts, form);
  if (form["type"] == "remove" && !chances.oneIn(8)) form["rmID"] = chances.of(kIdentifiers);
  if (chances.oneIn(3))
    form["text"] = chances.oneIn(4) ? "" : "words" + std::to_string(chances.below(3));
  if (chances.oneIn(3)) form["url"] = "url" + std::to_string(chances.below(3));
  if (chances.oneIn(3)) form["value"] = chances.below(9);
  if (chances.oneIn(3)) form["radiusX"] = chances.below(3);
  if (chances.oneIn(8)) form["offset"] = Array{Value(chances.below(3)), Value("right")};
  if (chances.oneIn(4)) form["pixel"] = chances.below(4);
  return form;
}

}  // namespace VelWhiteBoard
