// How the participants of a lesson reach one another.
#pragma once

#include <VelWhiteBoard/VelWhiteBoard.h>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace whiteboard {

/// A vector that the lesson has, with its place in the lesson's one order.
struct Arrival {
  /// Counts from 1 in every lesson, without gaps; 0 for what is only shown.
  std::uint64_t sequence = 0;
  /// When the sequencer took it, seconds since 1970-01-01.
  double time = 0;
  /// Whether this program has sent it.
  bool isOwn = false;
  /// The page for which it was made, `VelWbVecSwitchPage::pageInfo()`.
  std::string page;
  VelWhiteBoard::VectorPtr vector;
};

/// A vector of this participant, with the page for which it was made.
struct OwnVector {
  std::string page;
  VelWhiteBoard::VectorPtr vector;
};

/// How it stands with the connection.
struct BusStatus {
  enum class Kind {
    kConnecting,  ///< not connected; goes on trying
    kCatchingUp,  ///< connected; vectors that were missed are arriving
    kLive,        ///< connected; whatever the lesson has, has been handed out or waits in `take`
    kRefused,     ///< the server does not let this participant in, or has no such lesson; goes on
                  ///< trying
  };
  Kind kind = Kind::kConnecting;
  /// What went wrong, for a person; empty when nothing did.
  std::string problem;
  /// When the lesson was created, seconds since 1970-01-01, the same for all participants; 0 while
  /// it is not known.
  double created = 0;
  /// How many vectors wait to be sent.
  std::size_t unsent = 0;
  /// How many messages were dropped: others' that are not valid, own ones that are not accepted.
  std::uint64_t dropped = 0;
};

/// Brings vectors of all participants into one order and hands them to everybody, the sender
/// included. Another transport derives from this class.
///
/// Threads: all operations may be called from any thread.
class Bus {
 public:
  /// Told, on any thread, that there is something to take or that the status has changed. Must be
  /// short, and not call the bus.
  using Notify = std::function<void()>;

  Bus() = default;
  virtual ~Bus() = default;
  Bus(const Bus&) = delete;
  Bus& operator=(const Bus&) = delete;

  /// Begins: everything that the lesson has comes first, then what is new. To be called once.
  virtual void start(Notify notify) = 0;
  /// Sends a vector, which belongs to the bus from here on. Never waits: what cannot be sent now is
  /// sent when there is a connection again, in the order in which it was given. Pieces of a stroke
  /// that wait one behind the other may be joined.
  virtual void publish(const std::string& page, VelWhiteBoard::VectorPtr vector) = 0;
  /// Shows a vector to all who take part now, this participant included. It has no place in the
  /// order and is not kept: whoever joins later does not get it, and without a connection it is
  /// lost. Of several that wait only the last one is sent.
  virtual void show(const std::string& page, VelWhiteBoard::VectorPtr vector) = 0;
  /// What an earlier run of the program could not send, and this one will, oldest first. To be
  /// asked before `start`.
  virtual std::vector<OwnVector> unsentBefore() { return {}; }
  /// Own vectors that the lesson does not take and never will, since the last call: whoever shows
  /// them shows what is not there. `BusStatus` counts them, and says why.
  virtual std::vector<OwnVector> takeRefused() = 0;
  /// The next arrivals, in order; empty when there are none.
  virtual std::vector<Arrival> take(std::size_t atMost) = 0;
  virtual BusStatus status() const = 0;
};

}  // namespace whiteboard
