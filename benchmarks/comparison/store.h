// Ways to keep a lesson's board, for comparison with the library: what each costs while the lesson
// is recorded, and when its newest page is opened again.
#pragma once

#include <cstddef>
#include <memory>
#include <string>

namespace benchmarks::comparison {

/// What a page holds, to show that all ways keep the same.
struct Content {
  std::size_t entries = 0;
  std::size_t positions = 0;
};

/// One board in a folder that exists. Calls of one thread.
class Store {
 public:
  virtual ~Store() = default;
  Store() = default;
  Store(const Store&) = delete;
  Store& operator=(const Store&) = delete;

  /// Shows a page, which is new; `text` is the page switch.
  virtual void show(const std::string& page, const std::string& text) = 0;
  /// Keeps a vector of the page that is shown: what the pen's thread does for each.
  virtual void take(const std::string& text) = 0;
  /// What an application does every 20 seconds so that little is lost.
  virtual void save() = 0;
  /// Waits for what a save left to be done; not measured.
  virtual void finish() = 0;

  /// Makes the newest page ready to be drawn, in a process that has done nothing yet.
  virtual Content openNewestPage() = 0;
};

std::unique_ptr<Store> velWhiteBoardStore(const std::string& folder);
/// Each text in a row of a table; a page is folded from its rows when it is opened.
std::unique_ptr<Store> sqliteStore(const std::string& folder);
/// All pages in one JSON document in memory, which each save writes as a whole.
std::unique_ptr<Store> documentStore(const std::string& folder);

}  // namespace benchmarks::comparison
