#pragma once

#include <optional>
#include <string>
#include <vector>

namespace VelWhiteBoard {

/// The user's directories that have a place of their own.
enum class StandardDirectory {
  kDocuments,  ///< what the user keeps: the desktop's documents folder
  kLibrary,    ///< what programs keep for the user
  kCaches,     ///< what programs can make again
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
/// end. The directories need not exist. Here the list has one entry, or none when neither the
/// environment nor the account tells a home directory.
///
/// - documents: the entry XDG_DOCUMENTS_DIR of the desktop's "user-dirs.dirs", which lies in
///   $XDG_CONFIG_HOME or ~/.config and is read through FileSystem::current(); else ~/Documents;
/// - library: $XDG_DATA_HOME, else ~/.local/share;
/// - caches: $XDG_CACHE_HOME, else ~/.cache.
///
/// As the XDG base directory rules want it, an empty or relative value counts as not set. The home
/// directory is $HOME, or the account's when that is not an absolute path.
///
/// Asked anew with every call. May be called from any thread as long as no other one changes the
/// environment.
std::vector<std::string> standardDirectories(
    StandardDirectory directory, const UserEnvironment& environment = UserEnvironment::process());

/// The directory for temporary files: $TMPDIR when it is an absolute path, else "/tmp"; without a
/// separator at the end.
std::string temporaryDirectory(const UserEnvironment& environment = UserEnvironment::process());

}  // namespace VelWhiteBoard
