#include "benchmarks/plain_fold.h"

namespace benchmarks {

namespace {

void takePosition(std::vector<double>& stroke, const simdjson::dom::element& position) {
  simdjson::dom::array numbers;
  if (position.get_array().get(numbers) != simdjson::SUCCESS) return;
  for (const simdjson::dom::element each : numbers) {
    double number = 0;
    if (each.get_double().get(number) == simdjson::SUCCESS) stroke.push_back(number);
  }
}

}  // namespace

void PlainFold::take(const std::string& text) {
  buffer_.assign(text.begin(), text.end());
  buffer_.resize(text.size() + simdjson::SIMDJSON_PADDING);
  simdjson::dom::object piece;
  if (parser_.parse(buffer_.data(), text.size(), false).get(piece) != simdjson::SUCCESS) return;
  std::string_view identifier;
  if (piece["ID"].get(identifier) != simdjson::SUCCESS) return;
  auto& stroke = strokes_[std::string(identifier)];
  simdjson::dom::array path;
  if (piece["path"].get(path) == simdjson::SUCCESS) {
    for (const simdjson::dom::element position : path) takePosition(stroke, position);
  } else {
    double x = 0;
    double y = 0;
    if (piece["x"].get(x) == simdjson::SUCCESS && piece["y"].get(y) == simdjson::SUCCESS) {
      stroke.assign({x, y});
    }
  }
}

}  // namespace benchmarks
