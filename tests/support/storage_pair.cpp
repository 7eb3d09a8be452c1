#include "tests/support/storage_pair.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "tests/support/board_state.h"
#include "tests/support/property_lists.h"

namespace VelWhiteBoard {
namespace {

constexpr const char* kGarbage = "garbage";

/// What a file holds: its dictionaries, or a string when it is no list.
Value contentsOf(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  const std::string text{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  const ReadRecords list = readPropertyList(VelWbBaseVector::ownClass(), text);
  if (!list.result.ok()) return kGarbage;
  Array forms;
  for (const auto& record : list.records) forms.emplace_back(modelToJSONObject(*record));
  return forms;
}

/// The lists in the folders; what was set aside is not compared.
Value filesIn(const std::vector<std::string>& folders) {
  Dictionary files;
  for (const std::string& folder : folders) {
    std::error_code missing;
    for (const auto& entry : std::filesystem::directory_iterator(folder, missing)) {
      if (entry.path().extension() == ".plist") files[entry.path()] = contentsOf(entry.path());
    }
  }
  return files;
}

Value stateOf(const PlainStorage& plain, const VectorList& others) {
  const auto lastComponent = [](const std::optional<std::string>& path) {
    return path ? Value(path->substr(path->rfind('/') + 1)) : Value();
  };
  Inventory state;
  state.add("others", others);
  state.addAll("whole", plain.wholeVectorss);
  state.addAll("snap", plain.snapVectorss);
  state.addQuery("query", plain.snapQuery);
  state.addPages("pageArray", plain.pageArray);
  state.add("currentPage", plain.currentPage);
  state.note("hasNewChange", plain.hasNewChange);
  state.note("ignoreChanges", plain.ignoreChanges);
  state.note("pageCacheList", plain.pageCacheList);
  state.note("folder", lastComponent(plain.folder));
  state.note("pageFile", lastComponent(plain.pageFile));
  state.note("wholeFile", lastComponent(plain.wholeFile));
  state.note("snapFile", lastComponent(plain.snapFile));
  return state.value();
}

/// The first few steps from one value to the other.
std::string difference(const std::string& what, const Value& plain, const Value& real) {
  if (plain == real) return "";
  constexpr std::size_t kMost = 1500;
  return what + ": " + Value::diff(plain, real).dump().substr(0, kMost) + "\n";
}

}  // namespace

StoragePair::StoragePair() {
  std::filesystem::create_directory(secondFolder_);
  real_ = VWBVectorStorage::initWithPath(parent_.path());
  plains_.push_back(std::make_unique<PlainStorage>(disk_, parent_.path()));
  plain_ = plains_.back().get();
  queues_.push_back({real_->saveQueue(), plain_->saveQueue, nullptr});
  watch();
}

StoragePair::~StoragePair() { letGo(); }

void StoragePair::watch() {
  std::filesystem::create_directories(secondFolder_);
  folderLog_ = std::make_unique<FolderLog>(
      std::vector<std::string>{parent_.at("whiteBoard"), secondFolder_});
}

// ---- The queue

void StoragePair::hold() {
  settle();  // what waits behind is counted from here on
  queues_.back().hold = std::make_unique<QueueHold>(queues_.back().real);
  queues_.back().plain->hold();
}

void StoragePair::letGo() {
  // The present one first: it is the one whose order a client would look at.
  std::rotate(queues_.begin(), std::prev(queues_.end()), queues_.end());
  for (Queue& queue : queues_) {
    queue.hold.reset();
    queue.real->waitUntilAllOperationsAreFinished();
    queue.plain->letGo();
  }
  settled_ = disk_.log().size();
  queues_.erase(std::next(queues_.begin()), queues_.end());
}

void StoragePair::settle() {
  for (Queue& queue : queues_) {
    if (!queue.hold) queue.real->waitUntilAllOperationsAreFinished();
  }
  settled_ = disk_.log().size();
}

void StoragePair::replaceQueue() {
  settle();
  const auto real = std::make_shared<OperationQueue>();
  const auto plain = std::make_shared<PlainQueue>();
  real_->setSaveQueue(real);
  plain_->saveQueue = plain;
  queues_.push_back({real, plain, nullptr});
}

std::size_t StoragePair::mostWaiting() const {
  std::size_t most = 0;
  for (const Queue& queue : queues_) most = std::max(most, queue.plain->mostWaitingForAFile());
  return most;
}

void StoragePair::look() {
  queues_.back().real->addOperationWithBlock(
      [looks = realLooks_,
       folders = std::vector<std::string>{parent_.at("whiteBoard"), secondFolder_}] {
        looks->push_back(filesIn(folders));
      });
  queues_.back().plain->add([this] { plainLooks_.push_back(plainFiles()); });
}

// ---- The disk

void StoragePair::reopen() {
  const std::string parent = parent_.path();
  real_.reset();
  real_ = VWBVectorStorage::initWithPath(parent);
  plains_.push_back(std::make_unique<PlainStorage>(disk_, parent));
  plain_ = plains_.back().get();
  queues_.push_back({real_->saveQueue(), plain_->saveQueue, nullptr});
  settle();  // two queues have no common order
}

void StoragePair::clear() {
  settle();
  const auto before = folderLog_->take();
  realLog_.insert(realLog_.end(), before.begin(), before.end());
  real_->clear();
  plain_->clear();
  watch();
}

void StoragePair::damage(int which) {
  settle();
  const auto& path = which == 0 ? plain_->wholeFile : plain_->snapFile;
  if (!path || !disk_.has(*path)) return;
  std::ofstream(*path, std::ios::trunc) << kGarbage;
  disk_.overwrite(*path, kGarbage);
}

// ---- Comparisons

Value StoragePair::realFiles() const { return filesIn({parent_.at("whiteBoard"), secondFolder_}); }

Value StoragePair::plainFiles() const {
  Dictionary files;
  for (const auto& [path, contents] : disk_.files()) files[path] = contents;
  return files;
}

std::string StoragePair::differencesInMemory(const VectorList& realDrawn,
                                             const VectorList& plainDrawn) {
  std::string found =
      difference("memory", stateOf(*plain_, plainDrawn), VelWhiteBoard::stateOf(*real_, realDrawn));
  if (real_->lastSaveDate() != plain_->lastSaveDate) found += "lastSaveDate is another\n";
  if (real_->currentPage() != real_->currentPage()) found += "currentPage is another each time\n";
  if (real_->saveQueue() != queues_.back().real) found += "saveQueue is another\n";
  return found;
}

std::string StoragePair::differencesOnDisk() {
  return difference("disk", plainFiles(), realFiles());
}

std::string StoragePair::differencesInOrder() {
  std::string found;
  const auto latest = folderLog_->take();
  realLog_.insert(realLog_.end(), latest.begin(), latest.end());
  found += difference("order of writes", disk_.log(), realLog_);
  found += difference("number of looks", plainLooks_.size(), realLooks_->size());
  for (std::size_t i = 0; i < plainLooks_.size() && found.empty(); ++i) {
    found += difference("look " + std::to_string(i), plainLooks_[i], (*realLooks_)[i]);
  }
  return found;
}

}  // namespace VelWhiteBoard
