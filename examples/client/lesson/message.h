// What goes over the network.
#pragma once

#include <VelWhiteBoard/VelWhiteBoard.h>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace whiteboard {

/// The longest text of a message, in bytes. Servers take 1 MB by default, with what they add.
constexpr std::size_t kMessageSizeLimit = 1'000'000;

/// A vector, and the page for which it was made.
struct Message {
  std::string page;
  VelWhiteBoard::VectorPtr vector;
};

/// Whether others will accept the vector: the page is the key of one, and the vector has an `ID`.
bool canBeSent(const std::string& page, const VelWhiteBoard::VectorPtr& vector);

/// Whether a vector only says where somebody points: a pointer or a magnifier. It is shown, and is
/// not kept.
bool isPassing(const VelWhiteBoard::VelWbBaseVector& vector);

/// The text of a message: the page key, a line feed, the vector as JSON. Its size is not limited
/// here.
std::string encodeMessage(const std::string& page, const VelWhiteBoard::VelWbBaseVector& vector);

/// The reverse; the vector is new. None if `text`, which may be any bytes, is not a message.
std::optional<Message> decodeMessage(std::string_view text);

}  // namespace whiteboard
