#pragma once

#include <string>

namespace VelWhiteBoard {

/// A fresh folder of a test's own, which goes with everything in it at the end of the scope.
class TemporaryFolder {
 public:
  enum class Volume {
    kTemporary,  ///< where temporary files go, mostly the disk
    kMemory,  ///< a volume in memory if there is one: for thousands of folders, which are slow to
              ///< make and remove on a busy disk
  };

  explicit TemporaryFolder(Volume volume = Volume::kTemporary);
  ~TemporaryFolder();
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  /// Without a separator at the end.
  const std::string& path() const { return path_; }
  /// The path of an entry of the folder.
  std::string at(const std::string& name) const { return path_ + "/" + name; }

 private:
  std::string path_;
};

}  // namespace VelWhiteBoard
