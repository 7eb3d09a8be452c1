// What waits to be sent.
#pragma once

#include <VelWhiteBoard/VelWhiteBoard.h>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "lesson/bus.h"

namespace whiteboard {

/// A message with an identifier of its own, by which the server knows it when it comes again.
struct OutgoingMessage {
  std::string id;
  /// As `encodeMessage` makes it.
  std::string text;
};

/// The messages of one participant that wait, in the order in which they are sent.
///
/// Threads: none of its own, and no lock; used under the lock of its owner.
class Outbox {
 public:
  /// Identifiers are `<random>-<running number>`; no two outboxes of any process have the same.
  Outbox();

  /// Puts a vector at the end; it belongs to the outbox from here on, and may be joined to the
  /// piece of its stroke that waits last. Tells whether it was taken: see `canBeSent`.
  bool add(const std::string& page, VelWhiteBoard::VectorPtr vector);
  /// Puts a message of an earlier run at the end, with the identifier that it had.
  void restore(OutgoingMessage message);

  /// The message to send now: the oldest. From here on nothing is joined to it, because the server
  /// may have it. The same again until it is removed. None when nothing waits.
  std::optional<OutgoingMessage> next();
  /// What a message that waits holds; none when it does not wait.
  std::optional<OwnVector> contentOf(std::string_view id) const;
  /// What the messages of an earlier run that wait hold, oldest first.
  std::vector<OwnVector> restored() const;
  /// Takes a message out; tells whether it was waiting.
  bool remove(std::string_view id);

  /// Whether the message was put into this outbox, now or before.
  bool isOwn(std::string_view id) const;
  /// Whether messages of an earlier run are waiting.
  bool hasRestored() const { return restoredWaiting_ > 0; }

  bool empty() const { return waiting_.empty(); }
  std::size_t size() const { return waiting_.size(); }
  /// Copies of all that wait, oldest first.
  std::vector<OutgoingMessage> all() const;

 private:
  struct Waiting {
    std::string id;
    std::string page;
    /// Null for a message of an earlier run.
    VelWhiteBoard::VectorPtr vector;
    /// What is sent; empty while the vector may still grow.
    std::string text;
    bool isRestored = false;
  };

  using Messages = std::deque<Waiting>;

  Messages::const_iterator find(std::string_view id) const;
  static std::optional<OwnVector> contentOf(const Waiting& message);

  std::string prefix_;
  std::uint64_t count_ = 0;
  Messages waiting_;
  std::unordered_set<std::string> restored_;
  std::size_t restoredWaiting_ = 0;
};

}  // namespace whiteboard
