#pragma once

#include <map>
#include <set>
#include <string>
#include <vector>

#include "VelWhiteBoard/storage/vector_storage.h"
#include "VelWhiteBoard/vectors/base_vector.h"

/// What a board's files may hold after something went wrong. A generation is the content of one
/// file at one save, written down as a short digest.
namespace VelWhiteBoard {

/// The generation "there is no such file".
inline const std::string kAbsentFile = "absent";
/// No generation: a file that exists and cannot be read.
inline const std::string kUnreadableFile = "unreadable";

/// The generation of a file that holds these vectors, to the last digit of the last number.
std::string digestOf(const VectorList& vectors);
/// The generation that a file holds.
std::string digestOfFile(const std::string& path);

/// The identifiers of the records of a file; none when it is missing or unreadable.
std::set<std::string> identifiersIn(const std::string& path);

/// The names of a page's two files.
std::string wholeName(const std::string& key);
std::string snapName(const std::string& key);
inline const std::string kPagesName = "page.plist";

/// The vectors of a list of page switches.
VectorList vectorsOf(const std::vector<VWBVectorStorage::SwitchPagePtr>& pages);

/// The names in a folder, sorted; none when there is no such folder.
std::vector<std::string> namesIn(const std::string& folder);
/// Those that end in `suffix`.
std::vector<std::string> namesIn(const std::string& folder, const std::string& suffix);

/// For each file the generations that it may hold, oldest first. A file that nothing is known about
/// must be absent.
class Generations {
 public:
  /// From now on the file may hold this, too: a save of it is about to be queued.
  void add(const std::string& name, const std::string& digest);
  /// From now on any file may be missing, and it depends on the scheduler which.
  void addClear();
  /// The queue is empty: of each file only the newest generation is left.
  void settle();
  /// What a file really held, after which nothing was queued.
  void set(const std::string& name, const std::string& digest);
  void forget();

  bool allow(const std::string& name, const std::string& digest) const;
  /// All that is allowed for a file, in one line.
  std::string describe(const std::string& name) const;
  std::set<std::string> names() const;

 private:
  struct File {
    std::vector<std::string> digests = {kAbsentFile};
    bool isUncertain = false;  // a clear may have come in between
  };
  std::map<std::string, File> files_;
};

}  // namespace VelWhiteBoard
