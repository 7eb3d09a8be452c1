/// @file
/// Finds the standard directories of the user.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace VelWhiteBoard {

/// The user's standard directories.
enum class StandardDirectory {
  kDocuments,  ///< what the user keeps: the desktop's documents folder
  kLibrary,    ///< what programs keep for the user
  kCaches,     ///< what programs can recreate
};

/// What the standard directories depend on outside the file system.
class UserEnvironment {
 public:
  virtual ~UserEnvironment() = default;
  UserEnvironment(const UserEnvironment&) = delete;
  UserEnvironment& operator=(const UserEnvironment&) = delete;

  /// The environment and account of this process.
  static const UserEnvironment& process();

  /// The value of an environment variable.
  virtual std::optional<std::string> variable(const char* name) const = 0;
  /// The home directory that the system's account database names for the user.
  virtual std::optional<std::string> accountHome() const = 0;

 protected:
  UserEnvironment() = default;
};

/// The places of a standard directory of the user, as absolute paths without a separator at the
/// end. The directories need not exist. The list has one entry, or is empty when neither the
/// environment nor the account names a home directory.
///
/// - documents: the entry XDG_DOCUMENTS_DIR of the desktop's "user-dirs.dirs", which lies in
///   $XDG_CONFIG_HOME or ~/.config and is read through FileSystem::current(); else ~/Documents;
/// - library: $XDG_DATA_HOME, else ~/.local/share;
/// - caches: $XDG_CACHE_HOME, else ~/.cache.
///
/// By the XDG base directory rules, an empty or relative value counts as not set. The home
/// directory is $HOME, or the account's when that is not an absolute path.
///
/// Reads the environment at every call. May be called from any thread as long as no other thread
/// changes the environment.
std::vector<std::string> standardDirectories(
    StandardDirectory directory, const UserEnvironment& environment = UserEnvironment::process());

/// The directory for temporary files: $TMPDIR when it is an absolute path, else "/tmp"; without a
/// separator at the end.
std::string temporaryDirectory(const UserEnvironment& environment = UserEnvironment::process());

}  // namespace VelWhiteBoard
