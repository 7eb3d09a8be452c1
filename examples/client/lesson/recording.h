// A lesson as it went, to be played again.
#pragma once

#include <VelWhiteBoard/VelWhiteBoard.h>
#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "lesson/bus.h"

namespace whiteboard {

/// The vectors of a lesson in their order, each with the page for which it was made and its time.
struct Recording {
  struct Event {
    double time = 0;  ///< seconds since the first event, never less than that of the event before
    std::string page;
    VelWhiteBoard::VectorPtr vector;
  };
  std::vector<Event> events;

  bool empty() const { return events.empty(); }
  /// The page of the first vector; null when there is none.
  std::shared_ptr<VelWhiteBoard::VelWbVecSwitchPage> firstPage() const {
    return empty() ? nullptr : VelWhiteBoard::VelWbVecSwitchPage::pageFromInfo(events.front().page);
  }
  double begin() const { return events.empty() ? 0 : events.front().time; }
  double end() const { return events.empty() ? 0 : events.back().time; }
};

/// What came of reading a recording.
struct ReadRecording {
  Recording recording;
  /// Lines that hold no vector.
  std::size_t skipped = 0;
  /// Why there is nothing, for a person; empty when all went well.
  std::string problem;
};

/// Reads a file that has the text of a vector in each line. Their timestamps say when they were
/// made, and their page switches for which page.
ReadRecording readRecording(const std::string& file);

/// Makes a recording of everything that a lesson's bus hands out until it is live, or until
/// `seconds` have passed. The bus must not have been started.
ReadRecording recordLesson(Bus& bus, double seconds);

}  // namespace whiteboard
