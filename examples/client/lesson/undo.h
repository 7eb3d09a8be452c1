// Taking back what this participant has drawn.
#pragma once

#include <VelWhiteBoard/VelWhiteBoard.h>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace whiteboard {

/// The own entries of each page, oldest first, and what was taken back of them. An entry counts
/// from the moment at which it is sent: a remove that is sent later comes after it for everybody.
///
/// It makes vectors to be sent. Threads: not synchronised; one thread uses it.
class Undo {
 public:
  /// The entry of the current page with an identifier, as it is shown; null when there is none.
  using Shown = std::function<VelWhiteBoard::VectorPtr(const std::string& ID)>;

  /// No other participant's identifiers begin with `userID` and an underscore.
  explicit Undo(const std::string& userID) : own_(userID + '_') {}

  /// An own vector has been sent. A clear, which cannot be taken back, makes the page forget.
  void sent(const std::string& page, const VelWhiteBoard::VelWbBaseVector& vector);
  /// The lesson does not take an own vector: an entry that is not there cannot be taken back, and
  /// one whose remove was refused can be again.
  void refused(const std::string& page, const VelWhiteBoard::VelWbBaseVector& vector);
  /// For the change observer: what the board has.
  void take(const VelWhiteBoard::ChangeReport& report);

  /// The vector that takes the newest own entry off a page, which is the current one; null when
  /// there is none. Not while the pen is down: the rest of the stroke would begin it anew.
  VelWhiteBoard::VectorPtr undo(const std::string& page, const Shown& shown);
  /// The vector that brings back what was taken back last, on top of the page; null when there is
  /// nothing.
  VelWhiteBoard::VectorPtr redo(const std::string& page);

  bool canUndo(const std::string& page) const;
  bool canRedo(const std::string& page) const;

 private:
  struct Entry {
    std::string ID;
    /// Whether it has come back from the lesson.
    bool isFiled = false;
    /// All of it, when it has been taken back.
    std::string text;
  };
  struct Lists {
    std::vector<Entry> drawn;
    std::vector<Entry> undone;
  };

  void filed(const std::string& page, const std::string& ID);

  std::string own_;
  std::map<std::string, Lists> pages_;
};

}  // namespace whiteboard
