/// @file
/// The user's standard directories, and basic file-system operations.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "VelWhiteBoard/foundation/export.h"

namespace VelWhiteBoard {

/// The user's standard directories, and basic file-system operations.
///
/// One object for the process, made on first use and never destroyed. Paths are UTF-8 and used byte
/// for byte; a relative one starts at the process's working directory. A symbolic link counts as
/// its target, a dangling one as absent; removing or replacing affects the link itself. An empty
/// path and one that contains a NUL byte name nothing: tests return false, creations fail, a
/// removal has nothing to do.
///
/// Failures are reported only by the result: false, or an absent string or list. Nothing is thrown
/// or logged.
///
/// Directories are chosen by number, in two ways that must not be confused:
/// - by directory code (`searchPath`, and every `domain`): 9 the documents directory, 5 the library
///   directory, 13 the caches directory, any other number no directory;
/// - by the argument of `directoryPath`: 0 documents, 1 library, 2 caches, any other number the
///   temporary directory.
///
/// Locations: documents are what the desktop's "user-dirs.dirs" says (~/Documents by default), the
/// library is $XDG_DATA_HOME (~/.local/share), caches are $XDG_CACHE_HOME (~/.cache), the temporary
/// directory is $TMPDIR (/tmp). A value that is not an absolute path counts as not set. No
/// directory path ends in a separator, and the directories need not exist.
///
/// Every operation may be called from any thread, as long as no other thread changes the process's
/// environment meanwhile.
/// @ingroup directories
class VELWHITEBOARD_EXPORT VWBPathManager {
 public:
  /// The one object.
  static VWBPathManager& sharedManager();

  VWBPathManager(const VWBPathManager&) = delete;
  VWBPathManager& operator=(const VWBPathManager&) = delete;

  /// Resets the object to its initial state and returns it.
  VWBPathManager& init();
  /// Reads the four directories from the environment again and empties `rootFolder`.
  void initConfigure();

  /// A sub-folder that `createFolderWithSuffix` puts between the directory and the suffix; no
  /// sub-folder when empty, as initially. Nothing else uses it.
  std::string rootFolder() const;
  /// Stores any text; no folder is made.
  void setRootFolder(const std::string& rootFolder);

  /// The user's documents directory as of the last `initConfigure`; "" when there is none.
  std::string documentDirectory() const;
  /// The user's library directory as of the last `initConfigure`; "" when there is none.
  std::string libraryDirectory() const;
  /// The user's caches directory as of the last `initConfigure`; "" when there is none.
  std::string cacheDirectory() const;
  /// The directory for temporary files as of the last `initConfigure`.
  std::string tempDirectory() const;

  /// The last location of a directory according to the current environment; absent when there is
  /// none.
  /// @param directory a directory code.
  std::optional<std::string> searchPath(std::uint64_t directory);

  /// One of the four directories above.
  /// @param directory 0 documents, 1 library, 2 caches, every other value the temporary directory.
  std::string directoryPath(std::uint64_t directory);

  /// The path of a file in a folder under the caches directory; makes the folder.
  ///
  /// The three parts are joined as plain strings, without separators between them, so
  /// `relativePath` must begin and end with one as needed ("/boards/7/"). The caches directory is
  /// made when it is missing, for its user only (mode 0700); below it only the last folder is made.
  /// The result does not say whether that worked. `rootFolder` is not used.
  std::string storePathWithRelativePath(const std::string& relativePath,
                                        const std::string& fileName);

  /// Makes a folder whose parent exists. True only when it was made: false if anything exists at
  /// the path.
  bool checkShouldCreateDirectoryWithPath(const std::string& path);

  /// Whether a folder lies at the documents directory followed by `suffix`.
  bool isFolderExistWithSuffix(const std::string& suffix);
  /// Whether a folder lies at the given directory followed by `suffix` as plain text: without a
  /// separator, unlike `isFileExistWithSuffix`.
  /// @param suffix begins with a separator, unless it goes on with the directory's name.
  /// @param domain a directory code.
  bool isFolderExistWithSuffix(const std::string& suffix, std::uint64_t domain);
  /// Whether a folder lies at the path.
  bool isFolderExist(const std::string& path);

  /// Whether something other than a folder lies in the documents directory under `suffix`.
  bool isFileExistWithSuffix(const std::string& suffix);
  /// Whether something other than a folder lies at the given directory with `suffix` as a path
  /// component: with exactly one separator between the two, unlike `isFolderExistWithSuffix`.
  /// @param suffix the name of a file, or a relative path.
  /// @param domain a directory code.
  bool isFileExistWithSuffix(const std::string& suffix, std::uint64_t domain);
  /// Whether something other than a folder lies at the path.
  bool isFileExist(const std::string& path);

  /// Makes a folder under the documents directory, see below.
  std::optional<std::string> createFolderWithSuffix(const std::string& suffix);
  /// Makes the folder directory / `rootFolder` / `suffix`, with all missing folders above it; empty
  /// parts are left out. Returns its path, also when it existed already; absent when there is no
  /// such directory or the folder cannot be made.
  /// @param suffix the name of a folder, or a relative path.
  /// @param domain a directory code.
  std::optional<std::string> createFolderWithSuffix(const std::string& suffix,
                                                    std::uint64_t domain);
  /// Makes a folder with all missing ones above it. True also when it existed already.
  bool createFolderWithPath(const std::string& path);

  /// Puts a new, empty file at the path. It replaces an existing file and keeps its permissions; a
  /// program that has the old file open still sees the old contents. False for a folder or a
  /// special file at the path, and when the folder does not exist.
  bool createFile(const std::string& path);

  /// Removes what lies at the path, a folder with all its contents. Symbolic links are removed, not
  /// followed. True when nothing is there in the first place. The first failure ends the removal of
  /// a folder; what was removed before is gone.
  bool removeFolderOrFile(const std::string& path);

  /// The names, not the paths, of everything in a folder that is not a folder itself, one level
  /// deep. Sorted by the bytes of their UTF-8 form, which is the order of their characters:
  /// capitals before small letters, "10.plist" before "2.plist". Absent when there is no such
  /// folder or it cannot be read.
  std::optional<std::vector<std::string>> filesAtPath(const std::string& folder);
  /// The same, only with the names that end in `hasSuffix`, upper and lower case distinguished.
  /// With an absent suffix every name passes, with an empty one no name.
  std::optional<std::vector<std::string>> filesAtPath(const std::string& folder,
                                                      const std::optional<std::string>& hasSuffix);

 private:
  struct Fields;
  struct VELWHITEBOARD_NO_EXPORT State;

  VWBPathManager();
  ~VWBPathManager();

  std::string read(std::string Fields::*field) const;

  const std::unique_ptr<State> state_;
};

}  // namespace VelWhiteBoard
