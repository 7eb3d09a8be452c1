/// @file
/// The lesson's clock, and the identifiers and timestamps of vectors.
#pragma once

#include <atomic>
#include <memory>
#include <optional>
#include <string>

#include "VelWhiteBoard/foundation/export.h"
#include "VelWhiteBoard/foundation/queue/semaphore.h"

namespace VelWhiteBoard {

class VelWbVecPoint;

/// Stamps vectors with an identifier and with a timestamp on the clock of the lesson's server.
///
/// One object for the process, made on first use and never destroyed; not meant as a base class. A
/// client sets `userID`; on joining a lesson it calls `setCourseCreateTs`, sets `isRunning` while
/// the lesson runs, and calls `clear` on leaving. Nothing inside the library changes `isRunning` or
/// `userID`.
///
/// Threads: everything may be called from any thread. `setCourseCreateTs` and, while the clock
/// runs, `genTs` wait for `semaphore` without limit; nothing else does, so the holder of the
/// semaphore may still call the rest. An operation that does not wait reads `createTs`, `serverTs`
/// and `localTs` atomically one by one, so it may see one of them from before a synchronisation and
/// another from after it.
/// @ingroup lesson_clock
class VELWHITEBOARD_EXPORT VelWbVectorManager {
 public:
  /// The one object.
  static VelWbVectorManager& shareManager();

  VelWbVectorManager(const VelWbVectorManager&) = delete;
  VelWbVectorManager(VelWbVectorManager&&) = delete;
  VelWbVectorManager& operator=(const VelWbVectorManager&) = delete;
  VelWbVectorManager& operator=(VelWbVectorManager&&) = delete;

  /// Resets the object to its initial state and returns it: not running, all times 0, no `userID`,
  /// a new `semaphore`.
  VelWbVectorManager& init();

  /// Stores a synchronisation with the server, under `semaphore`. Any value is accepted.
  /// @param createTs when the lesson was created, seconds since 1970-01-01.
  /// @param ServerTs the server's time, seconds.
  /// @param localTs the reading at which `ServerTs` arrived, taken from the clock that `genTs`
  /// reads: `currentMediaTime` under the tool manager's `version` 1, `currentTime` under any other.
  void setCourseCreateTs(double createTs, double ServerTs, double localTs);

  /// Forgets the synchronisation: `serverTs` and `localTs` become 0. `createTs` stays, so that
  /// identifiers go on counting from the same origin; `userID` and `isRunning` stay, too. Takes no
  /// semaphore.
  void clear();

  /// A new vector identifier: `userID` (nothing when absent), an underscore and the hundredths of a
  /// second since `createTs`, cut toward zero: "u42_1234". Negative when the clock stands before
  /// `createTs`; beyond 64 bits the nearest end of the range, and 0 when `createTs` is NaN. Calls
  /// within the same hundredth give the same identifier. Takes no semaphore.
  std::string genID();

  /// A timestamp in seconds on the server's clock. While the clock runs: `serverTs` and the time
  /// that has passed since `localTs`, read under `semaphore`. While it does not run: `serverTs` -
  /// `localTs`, without the semaphore. Times that are not finite are treated like any other.
  double genTs();

  /// Moves a point from the desktop client's coordinates to the board's: adds one half to `x` and
  /// to `y`, in exactly the floating-point operations that all clients share. No other field
  /// changes: the positions in `path`, and the size of a box, stay. NaN and the infinities do not
  /// change. The point belongs to the caller; no reference to it is kept.
  void coordinateSystemTransFromPC(VelWbVecPoint& point);
  /// The reverse: subtracts one half from `x` and `y`, by a shared formula of its own.
  void coordinateSystemTransToPC(VelWbVecPoint& point);

  /// Guards the three times during a synchronisation; count 1, not re-entrant. Never null.
  std::shared_ptr<Semaphore> semaphore() const;
  /// Replaces the semaphore. Later callers use the new one; current holders and waiters keep the
  /// old. Null is ignored.
  void setSemaphore(const std::shared_ptr<Semaphore>& semaphore);

  /// When the lesson was created, seconds since 1970-01-01: the origin of identifiers. Initially 0.
  double createTs() const;
  /// Stores any value. Takes no semaphore.
  void setCreateTs(double createTs);

  /// The server's time at the last synchronisation, seconds. Initially 0.
  double serverTs() const;
  /// Stores any value. Takes no semaphore.
  void setServerTs(double serverTs);

  /// The local clock's reading at the last synchronisation, seconds. Initially 0.
  double localTs() const;
  /// Stores any value. Takes no semaphore.
  void setLocalTs(double localTs);

  /// The local user, the beginning of each generated identifier. Initially absent; an empty one
  /// gives the same identifiers as an absent one.
  std::optional<std::string> userID() const;
  /// Stores any text, for identifiers from here on. Takes no semaphore.
  void setUserID(const std::optional<std::string>& userID);

  /// Whether the lesson's clock runs, which decides how `genTs` computes. Initially false.
  bool isRunning() const;
  /// Starts or stops the clock; the three times stay. Takes no semaphore.
  void setIsRunning(bool isRunning);

 private:
  VelWbVectorManager();
  ~VelWbVectorManager();

  // Atomic rather than guarded, because operations that take no semaphore also read and write them.
  std::atomic<double> createTs_{0.0};
  std::atomic<double> serverTs_{0.0};
  std::atomic<double> localTs_{0.0};
  std::atomic<bool> isRunning_{false};

  // `userID` and `semaphore` under a lock of their own, which is held only to copy or to replace
  // one of them, never while waiting for the semaphore.
  struct References;
  const std::unique_ptr<References> references_;
};

}  // namespace VelWhiteBoard
