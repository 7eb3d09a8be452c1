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
    /// Whether that was a remove.
    bool isRemoveSent = false;
  };

  /// What a call has changed of the picture.
  struct Change {
    /// The identifier of the ink; empty: nothing has changed.
    std::string ID;
    /// For a stroke that has grown, the first new position of its path; otherwise 0.
    std::size_t firstNew = 0;
    /// Whether any entry of the page may look different; `ID` is empty then.
    bool isOfPage = false;
  };

  /// Shows a change: a piece of a stroke, a box or an update of one, a remove, a clear. `entry` is
  /// the board's entry that it changes; null for a new one.
  ///
  /// A clear hides all that the page has, until it comes back: in the lesson's order, whatever
  /// arrives before it is cleared by it.
  Change show(const std::string& page, const VelWhiteBoard::VelWbBaseVector& change,
              const VelWhiteBoard::VectorPtr& entry);
  /// A change that is shown has been given to the lesson.
  void sent(const VelWhiteBoard::VelWbBaseVector& change);
  /// An own vector has come back, and has been filed; or the lesson does not take it, and the
  /// board's own entry is what there is.
  Change received(const VelWhiteBoard::VelWbBaseVector& vector);
  /// Shows the board's own entry again.
  Change forget(const std::string& ID);
  /// While a pen draws a stroke, its ink stays when its first pieces come back. Empty: none.
  void hold(const std::string& ID) { held_ = ID; }

  /// A copy of the ink with an identifier, for `restore`; none when there is no such ink.
  std::optional<Ink> copyOf(const std::string& ID) const;
  /// Brings back what was shown when `before` was copied.
  Change restore(const std::string& ID, const std::optional<Ink>& before);

  /// The ink with an identifier; null when there is none.
  const Ink* find(const std::string& ID) const;
  const std::map<std::string, Ink>& inks() const { return inks_; }
  /// Whether a clear hides the entries that the board has of a page.
  bool isCleared(const std::string& page) const { return clears_.contains(page); }
  /// A page as it is shown: its entries without those that are covered or hidden, then the ink.
  VelWhiteBoard::VectorList over(const std::string& page,
                                 const VelWhiteBoard::VectorList& entries) const;

 private:
  Change showClear(const std::string& page, const std::string& ID);

  std::map<std::string, Ink> inks_;
  /// Page -> the identifier of the last clear that has not come back.
  std::map<std::string, std::string> clears_;
  std::string held_;
};

}  // namespace whiteboard
