// More clients of the same lesson, to be compared with the first.
#pragma once

#include <VelWhiteBoard/VelWhiteBoard.h>
#include <cstddef>
#include <string>
#include <vector>

#include "player.h"

namespace lesson {

/// How far a client's board is the same as the first one's.
struct Agreement {
  std::size_t pages = 0;
  std::size_t pictures = 0;
  std::size_t files = 0;
  /// What is different, a sentence each; empty when nothing is.
  std::vector<std::string> differences;
};

/// Two clients that receive the lesson through JSON text, as over a network: one receives every
/// record once, the other everything twice.
class OtherClients {
 public:
  /// Makes the boards in folders of their own below `home`.
  OtherClients(const std::string& home, bool fresh);

  /// Sends a record to both. To be called before the first client saves it, which may change it. A
  /// record without an identifier is given one here: every board would make up its own.
  void receive(VelWhiteBoard::VelWbBaseVector& record);
  /// Waits until the boards are written.
  void finish();

  /// The client that received the same must end with the same: pages, logs, pictures, and files to
  /// the last byte.
  Agreement compareSecond(const Player& first, VelWhiteBoard::Size size) const;
  /// Receiving everything twice makes the log longer, but no difference on any page.
  Agreement compareDoubled(const Player& first, VelWhiteBoard::Size size) const;

  const Player& second() const { return second_; }
  const Player& doubled() const { return doubled_; }

 private:
  Player second_;
  Player doubled_;
};

}  // namespace lesson
