/// @file
/// Files of a board that exist but could not be read.
#pragma once

#include <set>
#include <string>
#include <string_view>

#include "VelWhiteBoard/foundation/mutex.h"

namespace VelWhiteBoard {

/// What is appended to the name of a file that is set aside.
inline constexpr std::string_view kDamagedSuffix = ".damaged";

/// Remembers which files could not be read, so that none is replaced before it has been set aside.
///
/// A damaged file reads as an empty list, and sooner or later the page that began with that list is
/// written. The damaged one may be all that is left of a lesson, and somebody may still be able to
/// recover it, so it is kept beside the new one, under its name with ".damaged" appended.
///
/// Threads: any.
class DamagedFiles {
 public:
  /// The file exists but could not be read.
  void add(const std::string& file);
  /// The file has been read after all, or is gone.
  void remove(const std::string& file);
  /// To be called before the file is replaced. Moves it aside when it is damaged; an earlier one
  /// that was set aside is replaced. False when it could not be moved: then it must not be
  /// replaced.
  bool setAside(const std::string& file);

 private:
  Mutex mutex_;
  std::set<std::string> files_ VELWHITEBOARD_GUARDED_BY(mutex_);
};

}  // namespace VelWhiteBoard
