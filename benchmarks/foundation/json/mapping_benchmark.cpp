// One record between its forms.
#include <charconv>
#include <string>

#include <benchmark/benchmark.h>
#include <simdjson.h>

#include "benchmarks/workload.h"

namespace benchmarks {
namespace {

void parsePieceOnly(benchmark::State& state) {
  const std::string text = pieceText("u1_100", 5);
  simdjson::dom::parser parser;
  const simdjson::padded_string padded(text);
  for (auto _ : state) {
    simdjson::dom::element element;
    benchmark::DoNotOptimize(parser.parse(padded).get(element));
  }
}
BENCHMARK(parsePieceOnly);

void decodePieceFromText(benchmark::State& state) {
  const std::string text = pieceText("u1_100", 5);
  for (auto _ : state) benchmark::DoNotOptimize(modelWithJSON<VelWbBaseVector>(text));
}
BENCHMARK(decodePieceFromText);

void append(std::string& text, double number) {
  char digits[32];
  text.append(digits,
              std::to_chars(digits, digits + sizeof digits, number, std::chars_format::fixed).ptr);
}
void append(std::string& text, std::int64_t number) {
  char digits[24];
  text.append(digits, std::to_chars(digits, digits + sizeof digits, number).ptr);
}

// What somebody would write for this very record and no other.
std::string formatByHand(const VelWbVecLine& line) {
  std::string text;
  text += R"({"type":")";
  text += *line.type;
  text += R"(","ts":)";
  append(text, line.ts);
  text += R"(,"ID":")";
  text += *line.ID;
  text += R"(","x":)";
  append(text, line.x);
  text += R"(,"y":)";
  append(text, line.y);
  text += R"(,"ps":)";
  append(text, line.ps);
  text += line.end ? R"(,"end":true,"path":[)" : R"(,"end":false,"path":[)";
  for (std::size_t index = 0; index < line.path->size(); ++index) {
    const auto position = (*line.path)[index];
    text += index == 0 ? "[" : ",[";
    append(text, position[0]);
    text += ',';
    append(text, position[1]);
    text += ',';
    append(text, position[2]);
    text += ']';
  }
  text += R"(],"color":")";
  text += *line.color;
  text += R"(","widthIndex":)";
  append(text, line.widthIndex);
  text += R"(,"pixel":)";
  append(text, line.pixel);
  text += '}';
  return text;
}

void formatPieceByHand(benchmark::State& state) {
  const auto piece = modelWithJSON<VelWbBaseVector>(pieceText("u1_100", 5));
  const auto& line = *recordCast<VelWbVecLine>(piece.get());
  if (formatByHand(line) != modelToJSONString(line)) state.SkipWithError("the texts differ");
  for (auto _ : state) benchmark::DoNotOptimize(formatByHand(line));
}
BENCHMARK(formatPieceByHand);

void encodePieceToText(benchmark::State& state) {
  const auto piece = modelWithJSON<VelWbBaseVector>(pieceText("u1_100", 5));
  for (auto _ : state) benchmark::DoNotOptimize(modelToJSONString(*piece));
}
BENCHMARK(encodePieceToText);

void decodePieceFromDictionary(benchmark::State& state) {
  const auto dictionary =
      modelToJSONObject(*modelWithJSON<VelWbBaseVector>(pieceText("u1_100", 5)));
  for (auto _ : state) benchmark::DoNotOptimize(modelWithDictionary<VelWbBaseVector>(dictionary));
}
BENCHMARK(decodePieceFromDictionary);

void encodePieceToDictionary(benchmark::State& state) {
  const auto piece = modelWithJSON<VelWbBaseVector>(pieceText("u1_100", 5));
  for (auto _ : state) benchmark::DoNotOptimize(modelToJSONObject(*piece));
}
BENCHMARK(encodePieceToDictionary);

}  // namespace
}  // namespace benchmarks
