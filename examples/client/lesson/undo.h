// Taking back what this participant has drawn.
#pragma once

#include <VelWhiteBoard/VelWhiteBoard.h>
#include <map>
#include <string>
#include <vector>

namespace whiteboard {

/// The own entries of each page, oldest first, and what was taken back of them. It makes vectors to
/// be sent; like all others they take effect when they come back.
class Undo {
 public:
  /// No other participant's identifiers begin with `userID` and an underscore.
  explicit Undo(const std::string& userID) : own_(userID + '_') {}

  /// For the change observer.
  void take(const VelWhiteBoard::ChangeReport& report,
            const VelWhiteBoard::VWBVectorStorage& board);

  /// The vector that takes the newest own entry off the current page; null when there is none. Not
  /// while the pen is down: the rest of the stroke would begin it anew.
  VelWhiteBoard::VectorPtr undo(const VelWhiteBoard::VWBVectorStorage& board);
  /// The vector that brings back what was taken back last, on top of the page; null when there is
  /// nothing.
  VelWhiteBoard::VectorPtr redo(const VelWhiteBoard::VWBVectorStorage& board);

  bool canUndo(const std::string& page) const;
  bool canRedo(const std::string& page) const;

 private:
  struct Lists {
    std::vector<std::string> drawn;   // identifiers
    std::vector<std::string> undone;  // whole entries, as texts
  };

  std::string own_;
  std::map<std::string, Lists> pages_;
};

}  // namespace whiteboard
