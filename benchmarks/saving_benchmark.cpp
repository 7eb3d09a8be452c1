// A pen's pieces into the storage, beside the least that any program must do with them.
#include <string>
#include <unordered_map>
#include <vector>

#include <benchmark/benchmark.h>
#include <simdjson.h>

#include "benchmarks/workload.h"

namespace benchmarks {
namespace {

// The baseline: the fold of a plain program without log, files or rules.
class PlainFold {
 public:
  void take(const std::string& text) {
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

 private:
  static void takePosition(std::vector<double>& stroke, const simdjson::dom::element& position) {
    simdjson::dom::array numbers;
    if (position.get_array().get(numbers) != simdjson::SUCCESS) return;
    for (const simdjson::dom::element each : numbers) {
      double number = 0;
      if (each.get_double().get(number) == simdjson::SUCCESS) stroke.push_back(number);
    }
  }

  simdjson::dom::parser parser_;
  std::vector<char> buffer_;
  std::unordered_map<std::string, std::vector<double>> strokes_;
};

void countPieces(benchmark::State& state, std::size_t pieces) {
  state.SetItemsProcessed(static_cast<std::int64_t>(pieces) * state.iterations());
}

void strokeIntoPlainFold(benchmark::State& state) {
  const auto texts = strokeTexts("u1_100", static_cast<std::size_t>(state.range(0)));
  for (auto _ : state) {
    PlainFold fold;
    for (const std::string& text : texts) fold.take(text);
  }
  countPieces(state, texts.size());
}
BENCHMARK(strokeIntoPlainFold)
    ->Arg(10'000)
    ->Arg(100'000)
    ->Arg(1'000'000)
    ->Unit(benchmark::kMillisecond);

void saveTexts(const std::vector<std::string>& texts, VWBVectorStorage& storage) {
  for (const std::string& text : texts) storage.saveVector(modelWithJSON<VelWbBaseVector>(text));
}

void strokeIntoStorage(benchmark::State& state) {
  const auto texts = strokeTexts("u1_100", static_cast<std::size_t>(state.range(0)));
  for (auto _ : state) {
    state.PauseTiming();
    Folder folder;
    auto storage = recordingStorage(folder);
    state.ResumeTiming();
    saveTexts(texts, *storage);
    state.PauseTiming();
    storage.reset();
    state.ResumeTiming();
  }
  countPieces(state, texts.size());
}
BENCHMARK(strokeIntoStorage)
    ->Arg(1'000)
    ->Arg(10'000)
    ->Arg(100'000)
    ->Arg(1'000'000)
    ->Unit(benchmark::kMillisecond);

void saveVectorAlone(benchmark::State& state) {
  const auto texts = strokeTexts("u1_100", static_cast<std::size_t>(state.range(0)));
  for (auto _ : state) {
    state.PauseTiming();
    Folder folder;
    auto storage = recordingStorage(folder);
    VectorList pieces;
    for (const std::string& text : texts) pieces.push_back(modelWithJSON<VelWbBaseVector>(text));
    state.ResumeTiming();
    for (const VectorPtr& piece : pieces) storage->saveVector(piece);
    state.PauseTiming();
    storage.reset();
    pieces.clear();
    state.ResumeTiming();
  }
  countPieces(state, texts.size());
}
BENCHMARK(saveVectorAlone)->Arg(1'000)->Arg(10'000)->Arg(100'000)->Unit(benchmark::kMillisecond);

std::vector<std::string> lessonPage() { return lessonTexts(2'000, 20, 500, 20, 200); }

void lessonIntoPlainFold(benchmark::State& state) {
  const auto texts = lessonPage();
  for (auto _ : state) {
    PlainFold fold;
    for (const std::string& text : texts) fold.take(text);
  }
  countPieces(state, texts.size());
}
BENCHMARK(lessonIntoPlainFold)->Unit(benchmark::kMillisecond);

void lessonIntoStorage(benchmark::State& state) {
  const auto texts = lessonPage();
  for (auto _ : state) {
    state.PauseTiming();
    Folder folder;
    auto storage = recordingStorage(folder);
    state.ResumeTiming();
    saveTexts(texts, *storage);
    state.PauseTiming();
    storage.reset();
    state.ResumeTiming();
  }
  countPieces(state, texts.size());
}
BENCHMARK(lessonIntoStorage)->Unit(benchmark::kMillisecond);

void moveOfABoxAmongTenThousand(benchmark::State& state) {
  Folder folder;
  auto storage = recordingStorage(folder);
  saveTexts(lessonTexts(0, 0, 10'000, 0, 0), *storage);
  VectorList moves;
  for (const std::string& text : lessonTexts(0, 0, 10'000, 1, 0)) {
    moves.push_back(modelWithJSON<VelWbBaseVector>(text));
  }
  std::size_t next = 0;
  for (auto _ : state) {
    storage->saveVector(moves[next]->copyWithZone());
    next = (next + 1) % moves.size();
  }
}
BENCHMARK(moveOfABoxAmongTenThousand)->Unit(benchmark::kMicrosecond)->Iterations(100'000);

}  // namespace
}  // namespace benchmarks
