// What this participant has drawn and the lesson has not yet sent back.
#pragma once

#include <VelWhiteBoard/VelWhiteBoard.h>
#include <cstddef>
#include <map>
#include <optional>
#include <string>

namespace whiteboard {

/// Own changes of one board, shown at once. The board itself takes a change when it comes back from
/// the lesson, as all participants do; until then the change lies over the board.
///
/// Threads: not synchronised; one thread uses it.
class OwnInk {
 public:
  struct Ink {
    std::string page;
    /// What is shown instead of the board's entry; null: the entry is hidden.
    VelWhiteBoard::VectorPtr shown;
    /// The timestamp of what was sent last; 0 while nothing has been sent.
    double sentTs = 0;
  };

  /// What a call has changed of the picture.
  struct Change {
    /// The identifier of the ink; empty: nothing has changed.
    std::string ID;
    /// For a stroke that has grown, the first new position of its path; otherwise 0.
    std::size_t firstNew = 0;
  };

  /// Shows a change: a piece of a stroke, a box or an update of one, a remove. `entry` is the
  /// board's entry that it changes; null for a new one.
  Change show(const std::string& page, const VelWhiteBoard::VelWbBaseVector& change,
              const VelWhiteBoard::VectorPtr& entry);
  /// A change that is shown has been given to the lesson.
  void sent(const VelWhiteBoard::VelWbBaseVector& change);
  /// An own vector has come back, and has been filed.
  Change received(const VelWhiteBoard::VelWbBaseVector& vector);
  /// Shows the board's own entry again.
  Change forget(const std::string& ID);
  /// While a pen draws a stroke, its ink stays when its first pieces come back. Empty: none.
  void hold(const std::string& ID) { held_ = ID; }

  /// A copy of the ink with an identifier, for `restore`; none when there is no such ink.
  std::optional<Ink> copyOf(const std::string& ID) const;
  /// Brings back what was shown when `before` was copied.
  Change restore(const std::string& ID, const std::optional<Ink>& before);
  void clear() { inks_.clear(); }

  /// The ink with an identifier; null when there is none.
  const Ink* find(const std::string& ID) const;
  const std::map<std::string, Ink>& inks() const { return inks_; }

 private:
  std::map<std::string, Ink> inks_;
  std::string held_;
};

}  // namespace whiteboard
