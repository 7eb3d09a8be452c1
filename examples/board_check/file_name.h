// What the name of a file in a board's folder says.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "VelWhiteBoard/vectors/commands.h"

namespace board_check {

struct FileName {
  enum class List { kPages, kWhole, kSnap };
  enum class Role {
    kCurrent,
    kSetAside,   ///< NAME.damaged, NAME.damaged-2, NAME.damaged-3, ...
    kTemporary,  ///< NAME.tmp, NAME.tmp-PROCESS-NUMBER
  };
  List list = List::kPages;
  Role role = Role::kCurrent;
  /// The page's key; empty for the list of pages.
  std::string key;
  /// Of files set aside: 1 for the oldest.
  std::uint64_t number = 0;
};

/// Nullopt for a name that no file of a board has.
std::optional<FileName> parseFileName(std::string_view name);

/// The page of a key that parseFileName gave.
std::shared_ptr<VelWhiteBoard::VelWbVecSwitchPage> pageOfKey(const std::string& key);

/// The name of a page's log or snapshot.
std::string wholeName(const std::string& key);
std::string snapName(const std::string& key);
inline constexpr std::string_view kPageListName = "page.plist";

}  // namespace board_check
