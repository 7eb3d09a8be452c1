#include "VelWhiteBoard/storage/page_log.h"

#include <atomic>
#include <utility>

#include "VelWhiteBoard/storage/board_files.h"

namespace VelWhiteBoard {

namespace {

/// A process may have about a thousand handles; the client wants most of them for itself.
constexpr int kMostKeptOpen = 64;

std::atomic<int> keptOpen{0};

}  // namespace

UnreadLog::UnreadLog(std::unique_ptr<OpenedFile> file, std::string path,
                     std::shared_ptr<DamagedFiles> damaged)
    : path_(std::move(path)), damaged_(std::move(damaged)), file_(std::move(file)) {
  ++keptOpen;
}

UnreadLog::~UnreadLog() {
  if (file_) --keptOpen;
}

bool UnreadLog::mayKeepAnother() { return keptOpen < kMostKeptOpen; }

PageList UnreadLog::list() {
  const MutexHold hold(mutex_);
  if (file_) {
    list_ = PageList(readVectors(*file_, path_, damaged_.get()));
    file_.reset();
    --keptOpen;
  }
  return list_;
}

PageLog PageLog::open(const std::string& path, const std::shared_ptr<DamagedFiles>& damaged) {
  PageLog log;
  std::unique_ptr<OpenedFile> file;
  if (!openList(path, file, damaged.get())) return log;
  log.unread_ = std::make_shared<UnreadLog>(std::move(file), path, damaged);
  if (!UnreadLog::mayKeepAnother()) static_cast<void>(log.unread_->list());
  return log;
}

VectorList PageLog::vectors() const {
  VectorList vectors = before().vectors();
  const VectorList since = since_.vectors();
  vectors.insert(vectors.end(), since.begin(), since.end());
  return vectors;
}

}  // namespace VelWhiteBoard
