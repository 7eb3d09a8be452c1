#include "replay.h"

#include <cstdint>
#include <memory>
#include <new>

#include "VelWhiteBoard/storage/vector_storage.h"
#include "VelWhiteBoard/vectors/strokes.h"
#include "VelWhiteBoard/vectors/vector_defines.h"

#include "list_reading.h"
#include "recovery.h"

namespace board_check {

using namespace VelWhiteBoard;

namespace {

/// No folder can be made below a file: the storage has its lists in memory only.
constexpr const char* kNowhere = "/dev/null";

/// Without a page switch everything goes to the page without a key.
constexpr const char* kPage = "";

/// How many records of its own log the storage may keep meanwhile.
constexpr std::uint64_t kKeptRecords = 4096;

/// Whether a vector came by `appendVectors` and left no trace on the page: saving gives an
/// identifier, appending gives none, and of what has none only strokes, removals and clears count.
bool hadNoEffect(const VelWbBaseVector& vector) {
  return !vector.ID && recordCast<const VelWbVecLine>(vector) == nullptr &&
         vector.type != VelWBVectorStrRemove && vector.type != VelWBVectorStrClear;
}

class Replay final : public ListVisitor {
 public:
  Replay() : storage_(VWBVectorStorage::initWithPath(kNowhere)) {
    storage_->setIgnoreChanges(false);
  }

  void takeRecord(const std::shared_ptr<Record>& record) override {
    const auto vector = std::static_pointer_cast<VelWbBaseVector>(record);
    if (hadNoEffect(*vector)) return;
    if (!vector->ID) nameless_.push_back(vector);
    storage_->saveVector(vector);
    if (++records_ % kKeptRecords == 0) storage_->setWholeVectorss({});
  }

  VectorList page() const {
    // Saving has given them identifiers that the log does not know.
    for (const VectorPtr& vector : nameless_) vector->ID.reset();
    const auto pages = storage_->snapVectorss();
    const auto found = pages.find(kPage);
    return found == pages.end() ? VectorList() : found->second;
  }

 private:
  std::shared_ptr<VWBVectorStorage> storage_;
  /// Strokes without an identifier, which stand on the page as they are.
  VectorList nameless_;
  std::uint64_t records_ = 0;
};

}  // namespace

VectorList replay(const std::filesystem::path& log) {
  Replay replayed;
  const Reading reading = readList(log, VelWbBaseVector::ownClass(), replayed);
  if (reading.failure && reading.failure->kind == ReadFailure::Kind::kNoMemory) {
    throw std::bad_alloc();
  }
  if (!reading.isSound()) throw CannotRecover("cannot read " + log.string() + " again");
  return replayed.page();
}

}  // namespace board_check
