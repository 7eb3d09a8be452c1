#include "tests/support/storage_story.h"

#include <algorithm>
#include <sstream>
#include <stdexcept>
#include <utility>

#include "VelWhiteBoard/foundation/files/file_system.h"
#include "VelWhiteBoard/foundation/plist/property_list_reader.h"

#include "tests/support/write_all.h"

namespace VelWhiteBoard {
namespace {

std::string textOf(double number) {
  std::ostringstream out;
  out.precision(15);
  out << number;
  return out.str();
}

template <class Vector>
std::shared_ptr<Vector> make(const char* type, const Identifier& id) {
  auto vector = Vector::initWithType(type);
  vector->ID = id;
  return vector;
}

void tellPath(const Path& path, std::string& words) {
  words += path.empty() ? " ()" : " ";
  for (const auto position : path) {
    words += '(';
    for (const double number : position) {
      if (words.back() != '(') words += ' ';
      words += textOf(number);
    }
    words += ')';
  }
}

void tellPoint(const VelWbVecPoint& point, std::string& words) {
  words += " at " + textOf(point.x) + ' ' + textOf(point.y);
  if (const auto* square = recordCast<const VelWbVecSquare>(&point)) {
    words += " size " + textOf(square->w) + ' ' + textOf(square->h);
  }
}

}  // namespace

std::shared_ptr<VelWbVecLine> line(const Identifier& id, double x, double y, double ts) {
  auto piece = make<VelWbVecLine>("line", id);
  piece->x = x;
  piece->y = y;
  piece->ts = ts;
  return piece;
}

std::shared_ptr<VelWbVecLine> lineWith(const Identifier& id, const Path& path) {
  auto piece = make<VelWbVecLine>("line", id);
  piece->path = path;
  return piece;
}

std::shared_ptr<VelWbVecSquare> box(const Identifier& id, double x, double y, double w, double h) {
  auto square = make<VelWbVecSquare>("box", id);
  square->x = x;
  square->y = y;
  square->w = w;
  square->h = h;
  return square;
}

std::shared_ptr<VelWbVecText> text(const Identifier& id, const std::string& words, double ts) {
  auto vector = make<VelWbVecText>("text", id);
  vector->text = words;
  vector->ts = ts;
  return vector;
}

std::shared_ptr<VelWbVecFile> image(const Identifier& id, const std::string& url) {
  auto file = make<VelWbVecFile>("image", id);
  file->url = url;
  return file;
}

std::shared_ptr<VelWbVecFile> cursor(const Identifier& id) {
  return make<VelWbVecFile>("cursor", id);
}

std::shared_ptr<VelWbCaptureInfo> camera(const Identifier& id) {
  return make<VelWbCaptureInfo>("camera", id);
}

std::shared_ptr<VelWbVecSquare> magnifier(const Identifier& id) {
  return make<VelWbVecSquare>("magnifier", id);
}

std::shared_ptr<VelWbVecOffset> offset(const Identifier& id, double value) {
  auto vector = make<VelWbVecOffset>("offset", id);
  vector->value = value;
  return vector;
}

std::shared_ptr<VelWbVecRemove> removal(const Identifier& of) {
  auto vector = make<VelWbVecRemove>("remove", "remover");
  vector->rmID = of;
  return vector;
}

std::shared_ptr<VelWbVecClear> clearing() { return make<VelWbVecClear>("clear", "clearer"); }

VectorPtr bare(const std::optional<std::string>& type, const Identifier& id) {
  auto vector = VelWbBaseVector::initWithType(type);
  vector->ID = id;
  return vector;
}

std::shared_ptr<VelWbVecSwitchPage> page(std::int64_t WBID, std::uint64_t curPage, double ts,
                                         std::int64_t resource) {
  auto vector = VelWbVecSwitchPage::initWithType("switchPage");
  vector->WBID = WBID;
  vector->curPage = curPage;
  vector->ts = ts;
  vector->resource = resource;
  return vector;
}

std::string tell(const VelWbBaseVector& vector) {
  std::string words = vector.type.value_or("typeless") + ' ' + vector.ID.value_or("nameless");
  const auto* const point = recordCast<const VelWbVecPoint>(&vector);
  if (point != nullptr && !recordCast<const VelWbVecLine>(point)) tellPoint(*point, words);
  if (point != nullptr && point->path) tellPath(*point->path, words);
  if (const auto* words2 = recordCast<const VelWbVecText>(&vector)) {
    words += " '" + words2->text.value_or("") + "'";
  }
  if (const auto* file = recordCast<const VelWbVecFile>(&vector)) {
    words += " '" + file->url.value_or("") + "'";
  }
  if (const auto* move = recordCast<const VelWbVecOffset>(&vector)) {
    words += " by " + textOf(move->value);
  }
  if (const auto* remove = recordCast<const VelWbVecRemove>(&vector)) {
    words += " of " + remove->rmID.value_or("none");
  }
  return words;
}

Tale tell(const VectorList& vectors) {
  Tale tale;
  for (const VectorPtr& vector : vectors) tale.push_back(vector ? tell(*vector) : "null");
  return tale;
}

Tale tell(const std::vector<std::shared_ptr<VelWbVecSwitchPage>>& pages) {
  Tale tale;
  for (const auto& each : pages) tale.push_back(each ? each->pageInfo() : "null");
  return tale;
}

RecordList recordsOfFile(const RecordClass& asked, const std::string& file) {
  RecordList records;
  PropertyListReader reader(asked, [&](std::shared_ptr<Record> each) { records.push_back(each); });
  const FileResult result =
      FileSystem::current().read(file, [&](std::string_view block) { return reader.feed(block); });
  if (!result) throw std::runtime_error(result.describe());
  const PropertyListResult form = reader.finish();
  if (!form) throw std::runtime_error(file + ": " + form.error);
  return records;
}

QueueHold::QueueHold(const std::shared_ptr<OperationQueue>& queue)
    : gate_(std::make_shared<Gate>()) {
  queue->addOperationWithBlock([gate = gate_] { gate->pass(); });
}

void QueueHold::letGo() {
  if (gate_) gate_->open();
  gate_.reset();
}

Board::Board() { reopen(); }

Board::~Board() {
  if (!storage_) return;
  settle();
  StrictReader::collect(storage_->folder(), planted_, records_);
}

void Board::reopen() {
  if (storage_) settle();
  storage_ = VWBVectorStorage::initWithPath(parent_.path());
  storage_->setIgnoreChanges(false);
}

VectorList Board::snapVectors(const std::optional<std::string>& key) const {
  const auto current = storage_->currentPage();
  return storage_->snapVectorss()[key.value_or(current ? current->pageInfo() : "")];
}

VectorList Board::wholeVectors(const std::optional<std::string>& key) const {
  const auto current = storage_->currentPage();
  return storage_->wholeVectorss()[key.value_or(current ? current->pageInfo() : "")];
}

Tale Board::index() const {
  Tale tale;
  for (const auto& [id, entry] : storage_->snapQuery()) {
    tale.push_back(id + ": " + (entry ? tell(*entry) : "null"));
  }
  std::sort(tale.begin(), tale.end());
  return tale;
}

Tale Board::file(const std::string& name) const {
  if (!has(name)) return {"missing"};
  Tale tale;
  for (const auto& record : recordsOfFile(VelWbBaseVector::ownClass(), at(name))) {
    const auto& vector = static_cast<const VelWbBaseVector&>(*record);
    const auto* const visited = recordCast<const VelWbVecSwitchPage>(&vector);
    tale.push_back(visited != nullptr ? visited->pageInfo() : tell(vector));
  }
  return tale;
}

bool Board::has(const std::string& name) const {
  settle();
  return FileSystem::current().exists(at(name));
}

std::vector<std::string> Board::names() const {
  settle();
  std::vector<std::string> names;
  if (!FileSystem::current().list(storage_->folder(), names)) return {"no such folder"};
  std::sort(names.begin(), names.end());
  return names;
}

void Board::plant(const std::string& name, const std::string& contents) {
  const FileResult result = writeAll(FileSystem::current(), at(name), contents);
  if (!result) throw std::runtime_error(result.describe());
  planted_.emplace_back(name, contents);
}

}  // namespace VelWhiteBoard
