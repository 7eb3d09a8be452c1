/// @file
/// The lists of the pages that a storage has at hand.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <utility>

#include "VelWhiteBoard/storage/files/queued_write.h"
#include "VelWhiteBoard/storage/files/whole_list.h"
#include "VelWhiteBoard/storage/lists/snap_list.h"

namespace VelWhiteBoard {

/// The lists of one page; one that is absent has not been looked for.
struct CachedPage {
  std::optional<WholeList> whole;
  std::unique_ptr<SnapList> snap;
  /// The files of the last queued write; null before the first.
  std::shared_ptr<const FileSlot> wholeFile;
  std::shared_ptr<const FileSlot> snapFile;
};

/// Page key -> lists. Remembers the page that was asked for last: a pen asks for the same one again
/// and again.
///
/// Threads: as the storage guards it. What is taken out may be dropped without the guard.
class PageCache {
 public:
  using Pages = std::unordered_map<std::string, CachedPage>;

  PageCache() = default;
  ~PageCache() { detachAll(); }
  PageCache(const PageCache&) = delete;
  PageCache& operator=(const PageCache&) = delete;

  const Pages& pages() const { return pages_; }

  /// The lists of a page; a page that is not there yet is added, without lists.
  CachedPage& at(const std::string& key) {
    if (last_ == nullptr || last_->first != key) last_ = &*pages_.try_emplace(key).first;
    return last_->second;
  }
  /// The same without adding the page; null when it is not there.
  const CachedPage* find(const std::string& key) const {
    const auto found = pages_.find(key);
    return found == pages_.end() ? nullptr : &found->second;
  }

  /// A snap list for a page of this cache, to be given to it or dropped under the guard.
  std::unique_ptr<SnapList> newSnap() {
    auto snap = std::make_unique<SnapList>();
    snap->attach(unnamed_);
    return snap;
  }
  /// Gives a page its snap list; null takes it away.
  void setSnap(CachedPage& page, std::unique_ptr<SnapList> snap) {
    if (snap) snap->attach(unnamed_);
    if (page.snap) page.snap->detach();
    std::swap(page.snap, snap);
  }
  /// A vector's identifier has been given or taken back: tells the lists that have it.
  void hasBeenNamed(const VelWbBaseVector& vector) noexcept {
    if (vector.ID) {
      // A list that has been told is no longer in the register for this vector.
      for (auto found = unnamed_.find(&vector); found != unnamed_.end();
           found = unnamed_.find(&vector)) {
        found->second->hasBeenNamed(vector);
      }
      return;
    }
    for (auto& [key, page] : pages_) {
      if (page.snap) page.snap->hasBeenNamed(vector);
    }
  }
  /// Whether some list has the vector as an entry without identifier.
  bool hasUnnamed(const VelWbBaseVector& vector) const { return unnamed_.contains(&vector); }

  /// Takes a page out.
  Pages::node_type take(const std::string& key) noexcept {
    last_ = nullptr;
    auto page = pages_.extract(key);
    if (page && page.mapped().snap) page.mapped().snap->detach();
    return page;
  }
  /// Takes all pages out.
  Pages takeAll() noexcept {
    last_ = nullptr;
    detachAll();
    return std::exchange(pages_, {});
  }
  /// Puts other logs in the place of all; afterwards `logs` holds those that were there.
  void swapLogs(std::unordered_map<std::string, WholeList>& logs) {
    for (auto& [key, log] : logs) static_cast<void>(at(key));
    for (auto& [key, page] : pages_) {
      const auto next = logs.find(key);
      if (next == logs.end()) {
        page.whole.reset();
      } else if (page.whole) {
        std::swap(*page.whole, next->second);
      } else {
        page.whole.emplace(std::move(next->second));
      }
    }
  }
  /// Puts other snap lists in the place of all; afterwards `lists` holds those that were there.
  void swapSnaps(std::unordered_map<std::string, std::unique_ptr<SnapList>>& lists) {
    try {
      for (auto& [key, snap] : lists) {
        static_cast<void>(at(key));  // a page without lists does no harm
        snap->attach(unnamed_);
      }
    } catch (...) {
      for (auto& [key, snap] : lists) snap->detach();
      throw;
    }
    for (auto& [key, page] : pages_) {
      if (page.snap) page.snap->detach();
      const auto next = lists.find(key);
      if (next == lists.end()) {
        page.snap.reset();
      } else {
        std::swap(page.snap, next->second);
      }
    }
  }

 private:
  void detachAll() noexcept {
    for (auto& [key, page] : pages_) {
      if (page.snap) page.snap->detach();
    }
  }

  UnnamedEntries unnamed_;
  Pages pages_;
  /// An element of the map keeps its address until it is taken out.
  Pages::value_type* last_ = nullptr;
};

}  // namespace VelWhiteBoard
