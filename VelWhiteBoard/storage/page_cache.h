/// @file
/// The lists of the pages that a storage has at hand.
#pragma once

#include <optional>
#include <string>
#include <unordered_map>

#include "VelWhiteBoard/storage/page_list.h"
#include "VelWhiteBoard/storage/page_log.h"

namespace VelWhiteBoard {

/// The lists of one page; one that is absent has not been looked for.
struct CachedPage {
  std::optional<PageLog> whole;
  std::optional<SnapList> snap;
};

/// Page key -> lists. Remembers the page that was asked for last: a pen asks for the same one again
/// and again.
///
/// Threads: as the storage guards it.
class PageCache {
 public:
  using Pages = std::unordered_map<std::string, CachedPage>;

  const Pages& pages() const { return pages_; }

  /// The lists of a page; a page that is not there yet has none.
  CachedPage& at(const std::string& key) {
    if (last_ == nullptr || last_->first != key) last_ = &*pages_.try_emplace(key).first;
    return last_->second;
  }
  /// The same without adding the page; null when it is not there.
  const CachedPage* find(const std::string& key) const {
    const auto found = pages_.find(key);
    return found == pages_.end() ? nullptr : &found->second;
  }

  /// Calls `change` with the lists of each page.
  template <class Change>
  void forEach(const Change& change) {
    for (auto& [key, page] : pages_) change(page);
  }

  void erase(const std::string& key) {
    last_ = nullptr;
    pages_.erase(key);
  }
  void clear() {
    last_ = nullptr;
    pages_.clear();
  }

 private:
  Pages pages_;
  /// An element of the map keeps its address until it is erased.
  Pages::value_type* last_ = nullptr;
};

}  // namespace VelWhiteBoard
