// One board through one session after the other, in a file system in memory.
#pragma once

#include <map>
#include <memory>
#include <string>

#include "VelWhiteBoard/foundation/values/clock.h"
#include "VelWhiteBoard/storage/vector_storage.h"

#include "fuzz/check.h"
#include "tests/support/manual_clock.h"
#include "tests/support/memory_file_system.h"

namespace fuzz {

class BoardSession {
 public:
  BoardSession();
  ~BoardSession();
  BoardSession(const BoardSession&) = delete;
  BoardSession& operator=(const BoardSession&) = delete;

  /// Does one thing, chosen by the bytes.
  void step(Decisions& decisions);

  /// Saves, lets the storage go, opens the board anew and compares every page that was in memory
  /// with what the files give.
  void reopen();

 private:
  struct Lists;
  using Pages = std::map<std::string, Lists>;

  void open();
  void settle() const;
  void settleRemovals();
  void letTimePass(Decisions& decisions);
  void clear();
  void damageAFile(Decisions& decisions);
  void look(Decisions& decisions) const;
  Pages pagesInMemory() const;
  void comparePages(const Pages& before) const;
  void checkNames() const;

  mutable VelWhiteBoard::MemoryFileSystem files_;  // looking at files is no change of the session
  VelWhiteBoard::ScopedFileSystem filesScope_{files_};
  VelWhiteBoard::ManualClock clock_;
  VelWhiteBoard::ScopedClock clockScope_{clock_};
  std::chrono::seconds now_{1'700'000'000};
  std::shared_ptr<VelWhiteBoard::VWBVectorStorage> storage_;
  bool isRemovalQueued_ = false;
};

}  // namespace fuzz
