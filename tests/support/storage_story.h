#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "VelWhiteBoard/foundation/values/clock.h"
#include "VelWhiteBoard/storage/vector_storage.h"
#include "VelWhiteBoard/vectors/boxes.h"
#include "VelWhiteBoard/vectors/commands.h"
#include "VelWhiteBoard/vectors/strokes.h"

#include "tests/support/gate.h"
#include "tests/support/hand_clock.h"
#include "tests/support/strict_reader.h"
#include "tests/support/temporary_folder.h"

/// A small language in which tests of the storage read as stories: who draws what, and what the
/// board tells afterwards.
namespace VelWhiteBoard {

// ---- What is drawn. An identifier may be std::nullopt.

using Identifier = std::optional<std::string>;

/// A piece of a pen stroke that says where the pen is at the time `ts`.
std::shared_ptr<VelWbVecLine> line(const Identifier& id, double x, double y, double ts);
/// A piece of a pen stroke with positions of its own.
std::shared_ptr<VelWbVecLine> lineWith(const Identifier& id, const Path& path);
std::shared_ptr<VelWbVecSquare> box(const Identifier& id, double x, double y, double w, double h);
std::shared_ptr<VelWbVecText> text(const Identifier& id, const std::string& words, double ts = 0);
std::shared_ptr<VelWbVecFile> image(const Identifier& id, const std::string& url);
std::shared_ptr<VelWbVecFile> cursor(const Identifier& id = "cursor");
std::shared_ptr<VelWbCaptureInfo> camera(const Identifier& id);
std::shared_ptr<VelWbVecSquare> magnifier(const Identifier& id);
std::shared_ptr<VelWbVecOffset> offset(const Identifier& id, double value);
std::shared_ptr<VelWbVecRemove> removal(const Identifier& of);
std::shared_ptr<VelWbVecClear> clearing();
/// A record of the root class with any type.
VectorPtr bare(const std::optional<std::string>& type, const Identifier& id);

/// A page switch; `ts` in seconds.
std::shared_ptr<VelWbVecSwitchPage> page(std::int64_t WBID, std::uint64_t curPage, double ts = 0,
                                         std::int64_t resource = 0);

// ---- What is told.

using Tale = std::vector<std::string>;

/// One vector in a few words: "line a (1 2 3)(4 5 6)", "text t 'hello'", "remove r of a".
std::string tell(const VelWbBaseVector& vector);
Tale tell(const VectorList& vectors);
/// Keys of the pages, oldest first.
Tale tell(const std::vector<std::shared_ptr<VelWbVecSwitchPage>>& pages);

/// The records of a property list, decoded as the class asked for. Throws when it is missing or
/// unreadable.
RecordList recordsOfFile(const RecordClass& asked, const std::string& file);

// ---- The queue.

/// Keeps a queue from running anything that is added from now on, until it is let go.
class QueueHold {
 public:
  explicit QueueHold(const std::shared_ptr<OperationQueue>& queue);
  ~QueueHold() { letGo(); }
  QueueHold(const QueueHold&) = delete;
  QueueHold& operator=(const QueueHold&) = delete;
  void letGo();

 private:
  std::shared_ptr<Gate> gate_;
};

// ---- The board.

/// A board that records, in a folder of its own, under a clock of its own. When it goes, every file
/// that the storage left is handed to the strict second reader.
class Board {
 public:
  Board();
  ~Board();
  Board(const Board&) = delete;
  Board& operator=(const Board&) = delete;

  VWBVectorStorage& operator*() const { return *storage_; }
  VWBVectorStorage* operator->() const { return storage_.get(); }
  HandClock& clock() { return clock_; }

  /// Switches to the page; answers what is to be drawn.
  Tale show(const std::shared_ptr<VelWbVecSwitchPage>& to) {
    return tell(storage_->switchPage(to));
  }
  template <class... Vectors>
  void save(const Vectors&... vectors) {
    (storage_->saveVector(vectors), ...);
  }
  template <class... Vectors>
  void append(const std::shared_ptr<VelWbVecSwitchPage>& to, const Vectors&... vectors) {
    storage_->appendVectors({vectors...}, to);
  }
  /// Writes the current page, whether it is time or not.
  void write() { storage_->saveFile(true); }
  /// Waits until everything that is queued has been written.
  void settle() const { storage_->saveQueue()->waitUntilAllOperationsAreFinished(); }
  QueueHold holdQueue() const { return QueueHold(storage_->saveQueue()); }

  /// The lists in memory, of the current page or of any.
  VectorList snapVectors(const std::optional<std::string>& key = std::nullopt) const;
  VectorList wholeVectors(const std::optional<std::string>& key = std::nullopt) const;
  Tale snap(const std::optional<std::string>& key = std::nullopt) const {
    return tell(snapVectors(key));
  }
  Tale whole(const std::optional<std::string>& key = std::nullopt) const {
    return tell(wholeVectors(key));
  }
  /// The index, as "identifier: entry", in order of the identifiers.
  Tale index() const;

  /// The files, as they are once the queue is empty; "missing" when there is none.
  Tale snapFile(const std::string& key) const { return file("snap_" + key + ".plist"); }
  Tale wholeFile(const std::string& key) const { return file("whole_" + key + ".plist"); }
  Tale pageFile() const { return file("page.plist"); }
  std::string at(const std::string& name) const { return storage_->folder() + "/" + name; }
  bool has(const std::string& name) const;
  /// Names of the entries of the board's folder, in order.
  std::vector<std::string> names() const;
  /// Puts a file of the test's own making into the folder.
  void plant(const std::string& name, const std::string& contents);

  /// Says that the test saves records of classes that a reader will not choose for them.
  void savesOddRecords() { records_ = StrictReader::Records::kOdd; }

  /// The directory in which the board's folder lies.
  const std::string& parent() const { return parent_.path(); }
  /// Lets the storage go and opens the board anew.
  void reopen();
  /// Lets the storage go.
  void drop() { storage_.reset(); }

 private:
  Tale file(const std::string& name) const;

  TemporaryFolder parent_{TemporaryFolder::Volume::kMemory};
  HandClock clock_;
  ScopedClock clockScope_{clock_};
  std::shared_ptr<VWBVectorStorage> storage_;
  std::vector<StrictReader::File> planted_;
  StrictReader::Records records_ = StrictReader::Records::kOrdinary;
};

}  // namespace VelWhiteBoard
