/// @file
/// What a storage knows of one of its files, and what it therefore may do with it.
#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "VelWhiteBoard/foundation/files/file_system.h"
#include "VelWhiteBoard/foundation/plist/property_list_writer.h"
#include "VelWhiteBoard/foundation/queue/mutex.h"
#include "VelWhiteBoard/storage/files/write_report.h"

namespace VelWhiteBoard {

/// Appended to the name of a file that is moved aside; "-2", "-3" and so on follow when there is
/// one already.
inline constexpr std::string_view kDamagedSuffix = ".damaged";

/// What stands in a file, as far as a storage knows.
enum class FileState {
  kUnknown,    ///< the storage has not read it, or could not: it is damaged, or was not given
  kAbsent,     ///< there was none, or it has been removed
  kReadWhole,  ///< the storage has read all of it
  kWritten,    ///< the storage has written it
};

/// The observer of a storage's writes, shared by its files: they may outlive the storage.
///
/// Threads: any.
class WriteObserverSlot {
 public:
  void set(WriteObserver observer);
  /// Tells the observer, if there is one. Nothing that it throws comes out.
  void tell(WriteReport::Kind kind, const std::string& path, const FileResult& result) noexcept;

 private:
  Mutex mutex_;
  std::shared_ptr<const WriteObserver> observer_ VELWHITEBOARD_GUARDED_BY(mutex_);
};

/// One file of a board.
///
/// - Only a file that was absent, that was read whole, or that this storage wrote is replaced. Any
///   other is moved aside first.
/// - A name that a file was moved to is never used again.
/// - What was found out about a file counts only if the file has not been written, moved or removed
///   since the reading began.
///
/// Threads: any.
class ProtectedFile {
 public:
  /// How often the file has been written, moved or removed.
  using Version = std::uint64_t;
  using AddRecords = std::function<void(PropertyListWriter& writer)>;

  explicit ProtectedFile(std::string path, std::shared_ptr<WriteObserverSlot> observer =
                                               std::make_shared<WriteObserverSlot>());

  const std::string& path() const { return path_; }
  /// The path as `PendingFile` takes it.
  const std::string& pendingName() const { return pendingName_; }

  /// To be called before the file is read; `endReading` takes the answer.
  Version beginReading() const;
  /// Notes what came of a reading.
  void endReading(Version begun, FileState found) noexcept;

  /// The file is no longer there.
  void hasBeenRemoved() noexcept;

  /// Replaces the file by the records that `addAll` adds. A write that fails, or throws, leaves the
  /// file that was there.
  void replace(const AddRecords& addAll);
  /// A write could not be completed, or could not even begin.
  void noteFailure(const FileResult& result) noexcept;
  /// Removes the file, with the temporaries that writes have left.
  void remove();

  /// Whether the last write has failed, and nothing has been written or removed since.
  bool hasFailed() const { return hasFailed_; }

 private:
  bool mayReplace() const;
  void note(FileState state) noexcept;
  FileResult moveAside();
  /// The same as `replace`, unobserved.
  FileResult write(const AddRecords& addAll);

  const std::string path_;
  const std::string pendingName_;
  const std::shared_ptr<WriteObserverSlot> observer_;
  std::atomic<bool> hasFailed_ = false;
  mutable Mutex mutex_;
  FileState state_ VELWHITEBOARD_GUARDED_BY(mutex_) = FileState::kUnknown;
  Version version_ VELWHITEBOARD_GUARDED_BY(mutex_) = 0;
};

/// The files that a storage has had to do with, by path.
///
/// Threads: any.
class ProtectedFiles {
 public:
  std::shared_ptr<ProtectedFile> at(const std::string& path);
  void setObserver(WriteObserver observer) { observer_->set(std::move(observer)); }
  /// Notes which files are no longer there, after the board's folder has been removed.
  void lookForRemoved();

 private:
  const std::shared_ptr<WriteObserverSlot> observer_ = std::make_shared<WriteObserverSlot>();
  Mutex mutex_;
  std::unordered_map<std::string, std::shared_ptr<ProtectedFile>> files_
      VELWHITEBOARD_GUARDED_BY(mutex_);
};

}  // namespace VelWhiteBoard
