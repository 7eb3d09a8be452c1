#include "benchmarks/workload.h"

#include <atomic>
#include <chrono>
#include <cmath>
#include <cstdio>

namespace benchmarks {

namespace {

constexpr std::size_t kUsers = 4;

std::string formatted(const char* format, const std::string& identifier, double x, double y,
                      double time) {
  char text[512];
  const int length =
      std::snprintf(text, sizeof text, format, time, identifier.c_str(), x, y, x, y, time);
  return {text, static_cast<std::size_t>(length)};
}

}  // namespace

std::string lineText(const std::string& identifier, double x, double y, double time) {
  return formatted(R"({"type":"line","ts":%.3f,"ID":"%s","x":%.5f,"y":%.5f,"ps":400,"end":false,)"
                   R"("path":[[%.5f,%.5f,%.3f]],"color":"#FF3467FF","widthIndex":1,"pixel":4})",
                   identifier, x, y, time);
}

std::string boxText(const std::string& identifier, double x, double y, double time) {
  return formatted(
      R"({"type":"image","ts":%.3f,"ID":"%s","x":%.5f,"y":%.5f,"ps":0,"end":false,"w":0.2,"h":0.1,)"
      R"("url":"https://example.org/picture.png","rotation":0,"undeletable":false})",
      identifier, x, y, time);
}

std::string pieceText(const std::string& identifier, std::size_t index) {
  const auto step = static_cast<double>(index);
  return lineText(identifier, std::cos(step * 0.01) * 0.4, std::sin(step * 0.013) * 0.4,
                  kLessonStart + step * 0.01);
}

std::vector<std::string> strokeTexts(const std::string& identifier, std::size_t count) {
  std::vector<std::string> texts;
  texts.reserve(count);
  for (std::size_t index = 0; index < count; ++index) texts.push_back(pieceText(identifier, index));
  return texts;
}

std::string lessonStroke(std::size_t number) {
  std::string identifier("u");
  identifier.append(std::to_string(number % kUsers)).append("_").append(std::to_string(number));
  return identifier;
}

std::string lessonBox(std::size_t number) { return "b_" + std::to_string(number); }

std::vector<std::string> lessonTexts(std::size_t strokes, std::size_t piecesOfAStroke,
                                     std::size_t boxes, std::size_t movesOfABox,
                                     std::size_t removes) {
  std::vector<std::string> texts;
  double time = kLessonStart;
  const auto next = [&time] { return time += 0.005; };
  for (std::size_t first = 0; first < strokes; first += kUsers) {
    for (std::size_t piece = 0; piece < piecesOfAStroke; ++piece) {
      for (std::size_t user = 0; user < kUsers && first + user < strokes; ++user) {
        const auto step = static_cast<double>(piece + first);
        texts.push_back(lineText(lessonStroke(first + user), std::cos(step) * 0.4,
                                 std::sin(step) * 0.4, next()));
      }
    }
  }
  for (std::size_t move = 0; move <= movesOfABox; ++move) {
    for (std::size_t box = 0; box < boxes; ++box) {
      const auto step = static_cast<double>(box + move);
      texts.push_back(boxText(lessonBox(box), std::cos(step) * 0.4, std::sin(step) * 0.4, next()));
    }
  }
  for (std::size_t remove = 0; remove < removes; ++remove) {
    const std::size_t stroke = remove * 7 % (strokes == 0 ? 1 : strokes);
    char text[256];
    const int length = std::snprintf(
        text, sizeof text, R"({"type":"remove","ts":%.3f,"ID":"r_%zu","rmID":"u%zu_%zu"})", next(),
        remove, stroke % kUsers, stroke);
    texts.emplace_back(text, static_cast<std::size_t>(length));
  }
  return texts;
}

VectorList decoded(const std::vector<std::string>& texts) {
  VectorList vectors;
  vectors.reserve(texts.size());
  for (const std::string& text : texts) vectors.push_back(modelWithJSON<VelWbBaseVector>(text));
  return vectors;
}

void saveTexts(const std::vector<std::string>& texts, VWBVectorStorage& storage) {
  for (const std::string& text : texts) storage.saveVector(modelWithJSON<VelWbBaseVector>(text));
}

std::shared_ptr<VelWbVecSwitchPage> page(std::uint64_t number) {
  auto record = VelWbVecSwitchPage::initWithType("switchPage");
  record->ts = kLessonStart + static_cast<double>(number);
  record->WBID = 7;
  record->curPage = number;
  record->totalPage = 200;
  return record;
}

std::filesystem::path parentInMemory() {
  const std::filesystem::path shared = "/dev/shm";
  return std::filesystem::is_directory(shared) ? shared : std::filesystem::temp_directory_path();
}

Folder::Folder(const std::filesystem::path& parent) {
  static std::atomic<int> count{0};
  path_ = parent / ("VelWhiteBoard-benchmark-" +
                    std::to_string(std::chrono::steady_clock::now().time_since_epoch().count()) +
                    "-" + std::to_string(count++));
  std::filesystem::create_directories(path_);
}

Folder::~Folder() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

std::shared_ptr<VWBVectorStorage> recordingStorage(const Folder& folder) {
  auto storage = VWBVectorStorage::initWithPath(folder.path());
  storage->setIgnoreChanges(false);
  storage->switchPage(page(1));
  storage->saveQueue()->waitUntilAllOperationsAreFinished();
  return storage;
}

}  // namespace benchmarks
