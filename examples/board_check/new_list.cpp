#include "new_list.h"

#include <memory>
#include <new>

#include "VelWhiteBoard/foundation/files/file_system.h"
#include "VelWhiteBoard/foundation/plist/property_list_writer.h"

#include "recovery.h"

namespace board_check {

using namespace VelWhiteBoard;

namespace {

/// Hands over the records of one class; others do not belong into the list.
template <class T>
class VisitorOf final : public ListVisitor {
 public:
  explicit VisitorOf(const std::function<void(const T&)>& take) : take_(take) {}

  void takeRecord(const std::shared_ptr<Record>& record) override {
    if (const auto* taken = recordCast<const T>(record.get())) take_(*taken);
  }

 private:
  const std::function<void(const T&)>& take_;
};

}  // namespace

std::uint64_t writeList(const std::filesystem::path& path,
                        const std::function<void(const AddRecord& add)>& addAll) {
  std::uint64_t records = 0;
  const FileResult written =
      FileSystem::current().writeAtomically(path.string(), [&](const BlockConsumer& consume) {
        PropertyListWriter writer(consume);
        addAll([&](const Record& record) {
          ++records;
          writer.add(record);  // a failure comes back at the end
        });
        return writer.finish();
      });
  if (!written.ok()) throw CannotRecover(written.describe());
  return records;
}

void readAll(const std::vector<const ListFile*>& files, const RecordClass& asked,
             ListVisitor& visitor) {
  for (const ListFile* file : files) {
    const Reading reading = readList(file->path, asked, visitor);
    // What could not be read before has been told.
    if (!reading.failure || file->reading.failure) continue;
    if (reading.failure->kind == ReadFailure::Kind::kNoMemory) throw std::bad_alloc();
    throw CannotRecover("cannot read " + file->path.string() + ": " + reading.failure->reason);
  }
}

void forEachVector(const std::vector<const ListFile*>& files,
                   const std::function<void(const VelWbBaseVector& vector)>& take) {
  VisitorOf<VelWbBaseVector> visitor(take);
  readAll(files, VelWbBaseVector::ownClass(), visitor);
}

void forEachVisit(const std::vector<const ListFile*>& files,
                  const std::function<void(const VelWbVecSwitchPage& visit)>& take) {
  VisitorOf<VelWbVecSwitchPage> visitor(take);
  readAll(files, VelWbVecSwitchPage::ownClass(), visitor);
}

}  // namespace board_check
