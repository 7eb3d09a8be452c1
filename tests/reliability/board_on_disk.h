#pragma once

#include <cstdint>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "VelWhiteBoard/storage/vector_storage.h"

#include "tests/reliability/generations.h"
#include "tests/support/temporary_folder.h"

namespace VelWhiteBoard {

using Names = std::vector<std::string>;
using Strings = std::set<std::string>;

/// The identifiers of a file's records, in their order; a page switch's is its page key. None when
/// the file is missing or no list.
Names recordsIn(const std::string& path);
/// The names under which a file of the folder was set aside, sorted.
Names setAsideIn(const std::string& folder, const std::string& name);
/// The identifiers that can still be read: in the file and in whatever it was set aside as.
Strings keptIn(const std::string& folder, const std::string& name);

/// A board's folder, looked at past every storage: the files are read as a stranger would read
/// them, each time anew.
class BoardOnDisk {
 public:
  explicit BoardOnDisk(TemporaryFolder::Volume volume = TemporaryFolder::Volume::kMemory)
      : parent_(volume) {}

  const std::string& parent() const { return parent_.path(); }
  std::string folder() const { return parent_.path() + "/whiteBoard"; }
  std::string at(const std::string& name) const { return folder() + "/" + name; }

  /// A new storage of the board, which records.
  std::shared_ptr<VWBVectorStorage> open() const;

  /// All names in the folder, sorted.
  Names names() const { return namesIn(folder()); }
  Names setAside(const std::string& name) const { return setAsideIn(folder(), name); }
  /// Whether a write has left its temporary, under whatever name.
  bool hasTemporaries() const;

  /// The bytes of a file; empty when it is missing.
  std::string contents(const std::string& name) const;
  /// Writes a file in place, as `cp` does.
  void put(const std::string& name, const std::string& contents) const;

  Names identifiers(const std::string& name) const { return recordsIn(at(name)); }
  Strings kept(const std::string& name) const { return keptIn(folder(), name); }

 private:
  TemporaryFolder parent_;
};

/// The identifiers of vectors, in their order.
Names identifiersOf(const VectorList& vectors);

/// The identifiers "PREFIX FIRST" to "PREFIX LAST".
Names numbered(const std::string& prefix, int first, int last);

/// Saves a text for each of these identifiers on the current page.
void draw(VWBVectorStorage& storage, const Names& identifiers);
/// Waits until everything that is queued has been done.
void settle(const VWBVectorStorage& storage);
/// Forces a save and waits for it.
void saveNow(VWBVectorStorage& storage);

/// The names that are missing in `kept`.
Names missing(const Names& wanted, const Strings& kept);

/// The number in an environment variable.
int numberFromEnvironment(const char* variable, int otherwise);

}  // namespace VelWhiteBoard
